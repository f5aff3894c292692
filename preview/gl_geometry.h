#pragma once

#include "preview/gl_object.h"

#include <cstdint>
#include <span>
#include <vector>

namespace patina::preview {

/// What a vertex attribute reads, vertex after vertex.
struct GlAttribute {
    int location = 0;
    int components = 4; ///< 1 to 4 for each vertex; where the program reads more, they are 0, 0 and 1
    std::span<const float> values;
};

/// Triangles that can be drawn. Attributes that it does not have read as (0, 0, 0, 1).
/// Threads: as the context.
class GlGeometry {
public:
    /// Each three indices are a triangle, seen from its front counter-clockwise. The values are copied.
    /// Throws HostError when the driver has no room for them.
    GlGeometry(std::span<const GlAttribute> attributes, std::span<const std::uint32_t> indices);

    /// Draws all triangles with the program in use into the bound target.
    void draw() const;

private:
    GlObject array_;
    std::vector<GlObject> buffers_;
    int indexCount_;
};

} // namespace patina::preview
