#pragma once

#include "preview/gl_object.h"

#include <span>
#include <vector>

namespace patina::preview {

// Texels are four floats each, red first, from coordinate 0 on: the first row is at v = 0.

enum class TexelFormat { Byte, Float }; ///< bytes hold 0 to 1, rounded
enum class TextureFilter { Nearest, Linear };
enum class TextureWrap { Repeat, Clamp };

struct TextureOptions {
    TexelFormat format = TexelFormat::Float;
    TextureFilter filter = TextureFilter::Linear; ///< between texels, and between levels
    TextureWrap wrap = TextureWrap::Repeat;
    float anisotropy = 1.0F; ///< at most GlContext::anisotropyLimit; of two dimensions
};

/// A size of a texture, and its texels.
struct TextureLevel {
    int width = 0;
    int height = 0;
    std::vector<float> texels;
};

/// A texture of one or two dimensions. Threads: as the context.
class GlTexture {
public:
    /// Two dimensions; each level after the first has half the width and height, rounded down, at least 1,
    /// down to 1 by 1, or there is one level only. Throws HostError when the driver takes no such texture.
    GlTexture(std::span<const TextureLevel> levels, const TextureOptions& options);
    /// One dimension, one level.
    GlTexture(std::span<const float> texels, const TextureOptions& options);

    /// Lets samplers of a unit read this texture. Units count from 0; every driver has 48. The unit is the
    /// active one afterwards.
    void bind(int unit) const;

private:
    unsigned int target_;
    GlObject object_;
};

} // namespace patina::preview
