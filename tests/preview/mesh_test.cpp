#include "preview/mesh.h"
#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace patina::preview {
namespace {

constexpr float tolerance = 1.0e-5F;

struct NamedMesh {
    const char* name;
    Mesh (*make)();
    bool isClosed;
};

/// How the lists of tests name it: without this, by its bytes.
void PrintTo(const NamedMesh& mesh, std::ostream* stream) { *stream << mesh.name; }

class BuiltInMesh : public ::testing::TestWithParam<NamedMesh> {
protected:
    Mesh mesh_ = GetParam().make();
};

std::array<long, 3> place(const Vec3& position) {
    return {std::lround(position[0] / tolerance), std::lround(position[1] / tolerance),
            std::lround(position[2] / tolerance)};
}

/// How often each edge is passed in its direction.
std::map<std::pair<std::array<long, 3>, std::array<long, 3>>, int> edges(const Mesh& mesh) {
    std::map<std::pair<std::array<long, 3>, std::array<long, 3>>, int> counts;
    for (std::size_t i = 0; i < mesh.indices.size(); ++i) {
        const std::size_t next = i % 3 == 2 ? i - 2 : i + 1;
        ++counts[{place(mesh.vertices[mesh.indices[i]].position),
                  place(mesh.vertices[mesh.indices[next]].position)}];
    }
    return counts;
}

Vec3 along(const Vertex& vertex) { return {vertex.tangent[0], vertex.tangent[1], vertex.tangent[2]}; }

TEST_P(BuiltInMesh, FitsInItsBox) {
    Vec3 low = {1, 1, 1};
    Vec3 high = {-1, -1, -1};
    for (const Vertex& vertex : mesh_.vertices) {
        for (std::size_t i = 0; i < 3; ++i) {
            low.at(i) = std::min(low.at(i), vertex.position.at(i));
            high.at(i) = std::max(high.at(i), vertex.position.at(i));
        }
    }
    for (std::size_t i = 0; i < (GetParam().isClosed ? 3U : 2U); ++i) {
        EXPECT_NEAR(low.at(i), -1.0F, tolerance);
        EXPECT_NEAR(high.at(i), 1.0F, tolerance);
    }
}

TEST_P(BuiltInMesh, EachEdgeOfAClosedMeshIsPassedOnceInEitherDirection) {
    if (!GetParam().isClosed) {
        GTEST_SKIP() << "a plane has a border";
    }
    const auto counts = edges(mesh_);
    for (const auto& [edge, count] : counts) {
        ASSERT_EQ(count, 1);
        ASSERT_TRUE(counts.contains({edge.second, edge.first}));
    }
}

TEST_P(BuiltInMesh, NormalsAndTangentsAreOrthonormal) {
    for (const Vertex& vertex : mesh_.vertices) {
        ASSERT_NEAR(length(vertex.normal), 1.0F, tolerance);
        ASSERT_NEAR(length(along(vertex)), 1.0F, tolerance);
        ASSERT_NEAR(dot(vertex.normal, along(vertex)), 0.0F, tolerance);
        ASSERT_EQ(vertex.tangent[3], 1.0F);
    }
}

TEST_P(BuiltInMesh, TrianglesFaceTheWayOfTheirNormals) {
    for (std::size_t i = 0; i < mesh_.indices.size(); i += 3) {
        const Vertex& a = mesh_.vertices[mesh_.indices[i]];
        const Vertex& b = mesh_.vertices[mesh_.indices[i + 1]];
        const Vertex& c = mesh_.vertices[mesh_.indices[i + 2]];
        const Vec3 facing = cross(b.position - a.position, c.position - a.position);
        ASSERT_GT(dot(facing, a.normal + b.normal + c.normal), 0.0F) << "triangle " << i / 3;
    }
}

TEST_P(BuiltInMesh, TangentsPointTowardsGreaterUAndTheThirdDirectionTowardsGreaterV) {
    for (std::size_t i = 0; i < mesh_.indices.size(); i += 3) {
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const Vertex& from = mesh_.vertices[mesh_.indices[i + corner]];
            const Vertex& to = mesh_.vertices[mesh_.indices[i + (corner + 1) % 3]];
            const Vec3 step = to.position - from.position;
            const float du = to.uv[0] - from.uv[0];
            const float dv = to.uv[1] - from.uv[1];
            const float scale = length(step) * length(step); // how far a curved surface bends away
            if (dv == 0.0F) {
                ASSERT_GT(dot(step, along(from)) * du, -scale) << "triangle " << i / 3;
            }
            if (du == 0.0F) {
                ASSERT_GT(dot(step, cross(from.normal, along(from))) * dv, -scale) << "triangle " << i / 3;
            }
        }
    }
}

TEST_P(BuiltInMesh, ColoursTellPositionAndLight) {
    for (const Vertex& vertex : mesh_.vertices) {
        ASSERT_NEAR(vertex.colour[0], (vertex.position[1] + 1.0F) / 2.0F, tolerance);
        ASSERT_NEAR(vertex.colour[1], (vertex.position[0] + 1.0F) / 2.0F, tolerance);
        ASSERT_NEAR(vertex.colour[2], (vertex.position[2] + 1.0F) / 2.0F, tolerance);
        const float towardsLight = (-vertex.normal[0] + vertex.normal[1] + vertex.normal[2]) * 0.57735027F;
        ASSERT_NEAR(vertex.colour[3], 0.5F + 0.5F * towardsLight, tolerance);
    }
}

INSTANTIATE_TEST_SUITE_P(All, BuiltInMesh,
                         ::testing::Values(NamedMesh{"Sphere", makeSphere, true},
                                           NamedMesh{"Plane", makePlane, false},
                                           NamedMesh{"Cube", makeCube, true}),
                         [](const auto& instance) { return std::string(instance.param.name); });

/// The vertex at a position.
const Vertex& vertexAt(const Mesh& mesh, const Vec3& position) {
    return *std::min_element(mesh.vertices.begin(), mesh.vertices.end(),
                             [&](const Vertex& a, const Vertex& b) {
                                 return length(a.position - position) < length(b.position - position);
                             });
}

TEST(SphereMesh, HasTwoSquaresOfTheTextureAroundIt) {
    const Mesh sphere = makeSphere();
    EXPECT_EQ(vertexAt(sphere, {0, 0, 1}).uv, (Vec2{0.5F, 0.5F}));
    EXPECT_EQ(vertexAt(sphere, {1, 0, 0}).uv, (Vec2{1.0F, 0.5F}));
    EXPECT_EQ(vertexAt(sphere, {0, 0, -1}).uv, (Vec2{1.5F, 0.5F}));
    EXPECT_EQ(vertexAt(sphere, {0, -1, 0}).uv[1], 0.0F);
    EXPECT_EQ(vertexAt(sphere, {0, 1, 0}).uv[1], 1.0F);
}

TEST(PlaneMesh, HasTheTextureOnceUpright) {
    const Mesh plane = makePlane();
    EXPECT_EQ(vertexAt(plane, {-1, -1, 0}).uv, (Vec2{0, 0}));
    EXPECT_EQ(vertexAt(plane, {1, -1, 0}).uv, (Vec2{1, 0}));
    EXPECT_EQ(vertexAt(plane, {-1, 1, 0}).uv, (Vec2{0, 1}));
}

TEST(CubeMesh, HasTheTextureOnceOnEachSide) {
    const Mesh cube = makeCube();
    constexpr std::array<Vec3, 6> sides = {
        {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};
    for (const Vec3& side : sides) {
        EXPECT_NEAR(vertexAt(cube, side).uv[0], 0.5F, tolerance);
        EXPECT_NEAR(vertexAt(cube, side).uv[1], 0.5F, tolerance);
    }
}

// OBJ files

constexpr const char* triangle = "v -2 0 0\nv 2 0 0\nv -2 4 0\n";

std::string parseError(const std::string& text) {
    return testing::hostErrorOf([&] { parseObj(text, "mesh.obj"); });
}

TEST(ObjFile, IsCentredAndScaled) {
    const Mesh mesh = parseObj(std::string(triangle) + "f 1 2 3\n", "mesh.obj");
    ASSERT_EQ(mesh.vertices.size(), 3U);
    EXPECT_EQ(mesh.vertices[0].position, (Vec3{-1, -1, 0}));
    EXPECT_EQ(mesh.vertices[1].position, (Vec3{1, -1, 0}));
    EXPECT_EQ(mesh.vertices[2].position, (Vec3{-1, 1, 0}));
    EXPECT_EQ(mesh.indices, (std::vector<std::uint32_t>{0, 1, 2}));
}

TEST(ObjFile, WhatItDoesNotSayIsComputed) {
    const Mesh mesh = parseObj(std::string(triangle) + "f 1 2 3\n", "mesh.obj");
    for (const Vertex& vertex : mesh.vertices) {
        EXPECT_EQ(vertex.normal, (Vec3{0, 0, 1}));
        EXPECT_EQ(vertex.tangent, (Vec4{1, 0, 0, 1}));
        EXPECT_EQ(vertex.colour, (Vec4{1, 1, 1, 1}));
    }
    EXPECT_EQ(mesh.vertices[0].uv, (Vec2{0, 0}));
    EXPECT_EQ(mesh.vertices[1].uv, (Vec2{1, 0}));
    EXPECT_EQ(mesh.vertices[2].uv, (Vec2{0, 1}));
}

TEST(ObjFile, CornersNameTextureCoordinatesAndNormals) {
    const Mesh mesh =
        parseObj(std::string(triangle) + "vt 0.5 0.25 0\nvt 1\nvn 0 2 0\nf 1/1/1 2/2/1 3/1/1\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[0].uv, (Vec2{0.5F, 0.25F}));
    EXPECT_EQ(mesh.vertices[1].uv, (Vec2{1.0F, 0.0F}));
    EXPECT_EQ(mesh.vertices[0].normal, (Vec3{0, 1, 0}));
}

TEST(ObjFile, NormalsWithoutTextureCoordinates) {
    const Mesh mesh = parseObj(std::string(triangle) + "vn 1 0 0\nf 1//1 2//1 3//1\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[2].normal, (Vec3{1, 0, 0}));
}

TEST(ObjFile, IndicesCountBackFromTheEnd) {
    const Mesh mesh = parseObj(std::string(triangle) + "f -3 -2 -1\nv 9 9 9\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[1].position, (Vec3{1, -1, 0}));
}

TEST(ObjFile, PolygonsBecomeFans) {
    const Mesh mesh = parseObj("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n", "mesh.obj");
    EXPECT_EQ(mesh.indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3}));
}

TEST(ObjFile, PositionsMayHaveColours) {
    const Mesh mesh = parseObj("v 0 0 0 1 0 0\nv 1 0 0 0 0.5 0\nv 1 1 0 0 0 1\nf 1 2 3\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[1].colour, (Vec4{0, 0.5F, 0, 1}));
}

TEST(ObjFile, MirroredTextureCoordinatesTurnTheThirdDirection) {
    const Mesh mesh = parseObj(std::string(triangle) + "vt 1 0\nvt 0 0\nvt 1 1\nf 1/1 2/2 3/3\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[0].tangent, (Vec4{-1, 0, 0, -1}));
}

TEST(ObjFile, CommentsGroupsMaterialsAndLineEndsOfWindowsArePassedOver) {
    const Mesh mesh = parseObj("# a mesh\r\no thing\r\nmtllib a.mtl\r\n\r\nv 0 0 0\r\nv\t1 0 0 # corner\r\n"
                               "v 0 1 0\r\nusemtl red\r\ns off\r\nf 1 2 3",
                               "mesh.obj");
    EXPECT_EQ(mesh.indices.size(), 3U);
}

TEST(ObjFile, AByteOrderMarkIsPassedOver) {
    const Mesh plain = parseObj(std::string(triangle) + "f 1 2 3\n", "mesh.obj");
    const Mesh marked = parseObj("\xEF\xBB\xBF" + std::string(triangle) + "f 1 2 3\n", "mesh.obj");
    ASSERT_EQ(marked.vertices.size(), plain.vertices.size());
    EXPECT_EQ(marked.vertices[0].position, plain.vertices[0].position);
}

TEST(ObjFile, NormalsOfAClosedMeshPointOutwards) {
    const Mesh mesh =
        parseObj("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4\n", "mesh.obj");
    for (const Vertex& vertex : mesh.vertices) {
        EXPECT_GT(dot(vertex.normal, vertex.position - Vec3{-0.5F, -0.5F, -0.5F}), 0.0F);
    }
}

TEST(ObjFile, LargeCoordinatesKeepTheShape) {
    const Mesh far = parseObj(
        "v 16777216 16777216 0\nv 16777218 16777216 0\nv 16777216 16777217 0\nf 1 2 3\n", "mesh.obj");
    EXPECT_EQ(far.vertices[0].position, (Vec3{-1, -0.5F, 0}));
    EXPECT_EQ(far.vertices[1].position, (Vec3{1, -0.5F, 0}));
    EXPECT_EQ(far.vertices[2].position, (Vec3{-1, 0.5F, 0}));
}

TEST(ObjFile, NothingLiesBeyondOne) {
    for (const char* text : {"v 0 16777216 0\nv 1 16777217 0\nv 0 16777219 0\nf 1 2 3\n",
                             "v 5e17 0 0\nv 5.00000000000000064e17 0 0\nv 5e17 7 0\nf 1 2 3\n",
                             "v 1e-300 0 0\nv 0 1e-300 0\nv 0 0 3e-300\nf 1 2 3\n"}) {
        for (const Vertex& vertex : parseObj(text, "mesh.obj").vertices) {
            for (const float coordinate : vertex.position) {
                EXPECT_LE(std::abs(coordinate), 1.0F) << text;
            }
        }
    }
}

TEST(ObjFile, NumbersMayHaveAPlusSignAndBeTooSmall) {
    const Mesh mesh = parseObj("v +0 1e-400 -1E-400\nv +2 -0.0e0 0\nv 0 +2e+0 0\nf +1 2 3\n", "mesh.obj");
    EXPECT_EQ(mesh.vertices[0].position, (Vec3{-1, -1, 0}));
    EXPECT_EQ(mesh.vertices[1].position, (Vec3{1, -1, 0}));
    EXPECT_EQ(mesh.vertices[2].position, (Vec3{-1, 1, 0}));
    EXPECT_EQ(
        parseObj("v 0." + std::string(400, '0') + "1 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3", "").vertices.size(),
        3U);
    EXPECT_EQ(parseError("v 1 2 +-3\n"), "mesh.obj:1: error: \"+-3\" is no number");
    EXPECT_EQ(parseError("v 1 2 +\n"), "mesh.obj:1: error: \"+\" is no number");
    EXPECT_EQ(parseError("v 1 2 1e400\n"), "mesh.obj:1: error: \"1e400\" is no number");
}

TEST(ObjFile, ABackslashContinuesALine) {
    const Mesh mesh = parseObj("v 0 \\\n0 0\nv 1 0 0\nv 0 1 0\nf 1\\\r\n2 \\\n3 # last \\\n", "mesh.obj");
    EXPECT_EQ(mesh.indices, (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(parseError("v 0 0 \\\n0\n\nv 1 \\\n2\n"), "mesh.obj:4: error: \"v\" needs 3 numbers");
    EXPECT_EQ(parseError("v 0 0 \\"), "mesh.obj:1: error: \"v\" needs 3 numbers");
}

TEST(ObjFile, ErrorsNameTheLine) {
    EXPECT_EQ(parseError("v 1 2\n"), "mesh.obj:1: error: \"v\" needs 3 numbers");
    EXPECT_EQ(parseError("\nv 1 2 x\n"), "mesh.obj:2: error: \"x\" is no number");
    EXPECT_EQ(parseError("v 1 2 nan\n"), "mesh.obj:1: error: \"nan\" is no number");
    EXPECT_EQ(parseError("v 1 2 1e300\n"), "mesh.obj:1: error: \"1e300\" is no number");
    EXPECT_EQ(parseError("v 1 2 3\nf 1 1\n"), "mesh.obj:2: error: a face needs at least 3 corners");
    EXPECT_EQ(parseError("v 1 2 3\nf 1 1 2\n"),
              "mesh.obj:2: error: there is no position 2; there are 1 up to here");
    EXPECT_EQ(parseError("v 1 2 3\nf 1 1 -2\n"),
              "mesh.obj:2: error: there is no position -2; there are 1 up to here");
    EXPECT_EQ(parseError("v 1 2 3\nf 1 1 0\n"),
              "mesh.obj:2: error: there is no position 0; there are 1 up to here");
    EXPECT_EQ(parseError("v 1 2 3\nf 1/1 1/1 1/1\n"),
              "mesh.obj:2: error: there is no texture coordinate 1; there are 0 up to here");
    EXPECT_EQ(parseError("v 1 2 3\nf 1//1 1 1\n"),
              "mesh.obj:2: error: there is no normal 1; there are 0 up to here");
    EXPECT_EQ(parseError("v 1 2 3\nf 1.5 1 1\n"), "mesh.obj:2: error: \"1.5\" is no index of a position");
    EXPECT_EQ(parseError("v 1 2 3\nf /1 1 1\n").substr(0, 18), "mesh.obj:2: error:");
    EXPECT_EQ(parseError("v 1 2 3\nf 1///2 1 1\n"),
              "mesh.obj:2: error: a corner of a face is POSITION, POSITION/TEXTURE, POSITION//NORMAL or "
              "POSITION/TEXTURE/NORMAL");
}

TEST(ObjFile, NeedsASurface) {
    EXPECT_EQ(parseError(triangle),
              "mesh.obj: error: this file has no faces to show; save a mesh as Wavefront OBJ");
    EXPECT_EQ(parseError("v 1 2 3\nf 1 1 1\n"),
              "mesh.obj: error: this mesh has no size: all its corners are in one place");
}

TEST(ObjFile, MustBeThere) {
    EXPECT_EQ(testing::hostErrorOf([] { readObj("/nowhere/mesh.obj"); }),
              "/nowhere/mesh.obj:1: error: cannot read this file: there is no such file or directory");
}

} // namespace
} // namespace patina::preview
