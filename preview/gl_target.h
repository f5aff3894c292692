#pragma once

#include "preview/gl_object.h"

#include <array>
#include <vector>

namespace patina::preview {

/// An image of floats with a depth buffer that can be drawn into. Threads: as the context.
class GlTarget {
public:
    /// Throws HostError when the driver takes no image of that size.
    GlTarget(int width, int height);

    /// What is drawn from now on is drawn here, over the whole image, the nearest in front. Blending, culling
    /// and clamping stay as they are in the context: off, when it is new.
    void bind() const;

    /// Fills the bound target with a colour, and its depth with the farthest.
    void clear(const std::array<float, 4>& colour) const;

    /// The pixels, four floats each, red first, from the bottom row up. Throws HostError when drawing failed.
    std::vector<float> read() const;

private:
    int width_;
    int height_;
    GlObject colour_;
    GlObject depth_;
    GlObject framebuffer_;
};

} // namespace patina::preview
