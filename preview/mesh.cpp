#include "preview/mesh.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace patina::preview {

namespace {

constexpr float pi = std::numbers::pi_v<float>;

/// As the position and the light from above, the left and the front make it.
Vec4 bakedColour(const Vec3& position, const Vec3& normal) {
    const Vec3 towardsLight = Vec3{-1.0F, 1.0F, 1.0F} * (1.0F / std::sqrt(3.0F));
    return {0.5F + 0.5F * position[1], 0.5F + 0.5F * position[0], 0.5F + 0.5F * position[2],
            0.5F + 0.5F * dot(normal, towardsLight)};
}

Vertex makeVertex(const Vec3& position, const Vec3& normal, const Vec3& tangent, const Vec2& uv) {
    return {position, normal, {tangent[0], tangent[1], tangent[2], 1.0F}, uv, bakedColour(position, normal)};
}

/// Joins a grid of vertices that was just added, row by row: u grows along a row, v from row to row.
void joinGrid(Mesh& mesh, std::uint32_t columns, std::uint32_t rows) {
    const auto first = static_cast<std::uint32_t>(mesh.vertices.size()) - columns * rows;
    for (std::uint32_t row = 0; row + 1 < rows; ++row) {
        for (std::uint32_t column = 0; column + 1 < columns; ++column) {
            const std::uint32_t corner = first + row * columns + column;
            for (const std::uint32_t index :
                 {corner, corner + 1, corner + columns + 1, corner, corner + columns + 1, corner + columns}) {
                mesh.indices.push_back(index);
            }
        }
    }
}

/// Drops the triangles that two corners at one place leave without an area, as at a pole.
void dropFlatTriangles(Mesh& mesh) {
    std::vector<std::uint32_t> kept;
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const auto place = [&](std::size_t corner) -> const Vec3& {
            return mesh.vertices[mesh.indices[i + corner]].position;
        };
        if (place(0) != place(1) && place(1) != place(2) && place(2) != place(0)) {
            kept.insert(kept.end(), &mesh.indices[i], &mesh.indices[i] + 3);
        }
    }
    mesh.indices = std::move(kept);
}

/// Where the rounded edge of a cube begins.
constexpr float edgeRadius = 0.12F;
constexpr float flatHalf = 1.0F - edgeRadius;

/// Steps from -1 to 1 across the side of a cube, close together on its rounded edges.
std::vector<float> cubeSteps() {
    constexpr int edgeSteps = 8; // of equal angles
    constexpr int flatSteps = 24;
    std::vector<float> steps;
    for (int i = 0; i < edgeSteps; ++i) {
        const float angle = pi / 4.0F * static_cast<float>(edgeSteps - i) / edgeSteps;
        steps.push_back(-flatHalf - edgeRadius * std::tan(angle));
    }
    for (int i = 0; i <= flatSteps; ++i) {
        steps.push_back(flatHalf * (2.0F * static_cast<float>(i) / flatSteps - 1.0F));
    }
    for (int i = edgeSteps; i-- > 0;) {
        steps.push_back(-steps[static_cast<std::size_t>(i)]);
    }
    return steps;
}

/// The side of a cube that has the axes `right` and `up` in it.
void addCubeSide(Mesh& mesh, const Vec3& right, const Vec3& up) {
    const Vec3 front = cross(right, up);
    const std::vector<float> steps = cubeSteps();
    for (const float t : steps) {
        for (const float s : steps) {
            // what is nearest of a smaller cube with sharp edges, and from there on outwards
            const Vec3 inner = right * std::clamp(s, -flatHalf, flatHalf) +
                               up * std::clamp(t, -flatHalf, flatHalf) + front * flatHalf;
            const Vec3 normal = normalised(right * s + up * t + front - inner, front);
            const Vec3 tangent = normalised(right - normal * dot(right, normal), right);
            mesh.vertices.push_back(
                makeVertex(inner + normal * edgeRadius, normal, tangent, {0.5F + 0.5F * s, 0.5F + 0.5F * t}));
        }
    }
    const auto count = static_cast<std::uint32_t>(steps.size());
    joinGrid(mesh, count, count);
}

} // namespace

Mesh makeSphere() {
    constexpr std::uint32_t columns = 257;
    constexpr std::uint32_t rows = 129;
    Mesh mesh;
    for (std::uint32_t row = 0; row < rows; ++row) {
        const float v = static_cast<float>(row) / (rows - 1);
        const bool isPole = row == 0 || row == rows - 1;
        const float height = -std::cos(pi * v);
        const float radius = isPole ? 0.0F : std::sin(pi * v);
        for (std::uint32_t column = 0; column < columns; ++column) {
            const float u = 2.0F * static_cast<float>(column) / (columns - 1);
            const float angle = column == columns - 1 ? -0.5F * pi : pi * (u - 0.5F); // the seam is closed
            const Vec3 position = {radius * std::sin(angle), height, radius * std::cos(angle)};
            const Vec3 tangent = {std::cos(angle), 0.0F, -std::sin(angle)};
            mesh.vertices.push_back(makeVertex(position, position, tangent, {u, v}));
        }
    }
    joinGrid(mesh, columns, rows);
    dropFlatTriangles(mesh);
    return mesh;
}

Mesh makePlane() {
    constexpr std::uint32_t count = 65;
    Mesh mesh;
    for (std::uint32_t row = 0; row < count; ++row) {
        const float v = static_cast<float>(row) / (count - 1);
        for (std::uint32_t column = 0; column < count; ++column) {
            const float u = static_cast<float>(column) / (count - 1);
            mesh.vertices.push_back(
                makeVertex({2.0F * u - 1.0F, 2.0F * v - 1.0F, 0.0F}, {0, 0, 1}, {1, 0, 0}, {u, v}));
        }
    }
    joinGrid(mesh, count, count);
    return mesh;
}

Mesh makeCube() {
    Mesh mesh;
    addCubeSide(mesh, {1, 0, 0}, {0, 1, 0});
    addCubeSide(mesh, {-1, 0, 0}, {0, 1, 0});
    addCubeSide(mesh, {0, 0, -1}, {0, 1, 0});
    addCubeSide(mesh, {0, 0, 1}, {0, 1, 0});
    addCubeSide(mesh, {1, 0, 0}, {0, 0, -1});
    addCubeSide(mesh, {1, 0, 0}, {0, 0, 1});
    return mesh;
}

} // namespace patina::preview
