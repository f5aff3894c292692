#pragma once

#include "preview/vectors.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina::preview {

// What materials are shown on. [thread-safe]

struct Vertex {
    Vec3 position = {};
    Vec3 normal = {0.0F, 0.0F, 1.0F};
    Vec4 tangent = {1.0F, 0.0F, 0.0F, 1.0F}; ///< towards greater u; w is the sign of cross(normal, tangent)
    Vec2 uv = {};
    Vec4 colour = {1.0F, 1.0F, 1.0F, 1.0F};
};

/// Triangles, each seen from its front counter-clockwise. Everything lies within -1 to 1, y upwards, z to the
/// front.
struct Mesh {
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
};

// The vertex colours of the first three: red grows from the bottom to the top, green along x, blue along z,
// each from 0 to 1; alpha is the light that comes from above, the left and the front.

/// A sphere with poles above and below. u goes round it from 0 to 2, so that a square of the texture is
/// square on the equator, and is 0.5 in front; v is 0 at the bottom and 1 at the top.
Mesh makeSphere();

/// A square of many squares that faces the front; u and v from 0 to 1.
Mesh makePlane();

/// A cube with rounded edges; u and v from 0 to 1 on each of its sides.
Mesh makeCube();

/// Reads a Wavefront OBJ file, centred, and scaled so that it fits. It may have colours, red, green and blue
/// behind each position; without, it is white. Missing normals are those of the triangles around a position;
/// missing texture coordinates are the position's x and y. Throws HostError, naming file and line, where it
/// cannot be read or understood, or has no triangle.
Mesh readObj(const std::filesystem::path& file);

/// The same from text; `file` is only what messages name.
Mesh parseObj(std::string_view text, const std::string& file);

} // namespace patina::preview
