#include "preview/scene.h"
#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace patina::preview {
namespace {

/// A point in the coordinates of the picture, and its depth.
Vec3 projected(const Matrix& matrix, const Vec3& point) {
    Vec4 clip = {};
    for (std::size_t row = 0; row < 4; ++row) {
        clip.at(row) = matrix.at(row * 4) * point[0] + matrix.at(row * 4 + 1) * point[1] +
                       matrix.at(row * 4 + 2) * point[2] + matrix.at(row * 4 + 3);
    }
    return {clip[0] / clip[3], clip[1] / clip[3], clip[2] / clip[3]};
}

struct Extent {
    Vec3 low = {9, 9, 9};
    Vec3 high = {-9, -9, -9};
};

Extent extentOf(const Subject& subject, int width, int height, float turn) {
    const Matrix matrix = viewProjection(frame(subject, width, height, 0.78F)) * worldMatrix(subject, turn);
    Extent extent;
    for (const Vertex& vertex : subject.mesh.vertices) {
        const Vec3 place = projected(matrix, vertex.position);
        for (std::size_t i = 0; i < 3; ++i) {
            extent.low.at(i) = std::min(extent.low.at(i), place.at(i));
            extent.high.at(i) = std::max(extent.high.at(i), place.at(i));
        }
    }
    return extent;
}

class BuiltInSubject : public ::testing::TestWithParam<const char*> {};

TEST_P(BuiltInSubject, FillsMostOfThePictureHoweverItIsTurned) {
    const Subject subject = makeSubject(GetParam());
    for (const auto& [width, height] : {std::pair{512, 512}, std::pair{800, 400}, std::pair{400, 800}}) {
        float widest = 0.0F;
        for (const float turn : {0.0F, 0.1F, 0.25F, 0.4F, 0.85F}) {
            const Extent extent = extentOf(subject, width, height, turn);
            for (std::size_t i = 0; i < 2; ++i) {
                EXPECT_GT(extent.low.at(i), -0.85F);
                EXPECT_LT(extent.high.at(i), 0.85F);
            }
            EXPECT_GT(extent.low[2], 0.0F);
            EXPECT_LT(extent.high[2], 1.0F);
            const float w = static_cast<float>(width) / static_cast<float>(std::min(width, height));
            const float h = static_cast<float>(height) / static_cast<float>(std::min(width, height));
            widest = std::max({widest, 0.5F * (extent.high[0] - extent.low[0]) * w,
                               0.5F * (extent.high[1] - extent.low[1]) * h});
        }
        EXPECT_GT(widest, 0.7F) << width;
    }
}

INSTANTIATE_TEST_SUITE_P(All, BuiltInSubject, ::testing::Values("sphere", "plane", "cube"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST(Subjects, APlaneKeepsItsFrontInSight) {
    const Subject plane = makeSubject("plane");
    for (float turn = 0.0F; turn < 1.0F; turn += 0.05F) {
        EXPECT_GT(worldMatrix(plane, turn).at(10), 0.5F) << turn; // what is left of the front's z
    }
}

TEST(Subjects, OthersGoRoundOnce) {
    const Subject cube = makeSubject("cube");
    EXPECT_NEAR(worldMatrix(cube, 0.5F).at(0), -worldMatrix(cube, 0.0F).at(0), 1e-5F);
    EXPECT_NEAR(worldMatrix(cube, 1.0F).at(0), worldMatrix(cube, 0.0F).at(0), 1e-5F);
}

TEST(Subjects, TheEndingOfAFileMayHaveCapitals) {
    EXPECT_EQ(testing::hostErrorOf([] { makeSubject("/nowhere/MESH.OBJ"); }),
              "/nowhere/MESH.OBJ:1: error: cannot read this file: there is no such file or directory");
}

TEST(Subjects, UnknownMeshesAreRefused) {
    EXPECT_EQ(testing::hostErrorOf([] { makeSubject("spere"); }),
              "error: there is no mesh \"spere\"; give sphere, plane, cube, or a Wavefront file, NAME.obj");
}

TEST(Cameras, TheEyeIsWhereThePictureIsTakenFrom) {
    const Camera camera = frame(makeSubject("cube"), 512, 512, 0.78F);
    const Vec3 eye = eyePosition(camera);
    EXPECT_GT(eye[1], 0.0F);
    // what lies on a line through the eye is in one place
    const Vec3 point = {0.3F, 0.4F, 0.5F};
    const Vec3 beyond = point + (point - eye) * 0.2F;
    const Vec3 first = projected(viewProjection(camera), point);
    const Vec3 second = projected(viewProjection(camera), beyond);
    EXPECT_NEAR(first[0], second[0], 1e-4F);
    EXPECT_NEAR(first[1], second[1], 1e-4F);
    EXPECT_LT(first[2], second[2]);
}

TEST(Cameras, APartFillsThePictureOfItsOwn) {
    const Matrix crop = cropMatrix({0.0F, -0.5F, 0.5F, 0.25F});
    EXPECT_EQ(projected(crop, {0.0F, -0.5F, 0.5F}), (Vec3{-1.0F, -1.0F, 0.5F}));
    EXPECT_EQ(projected(crop, {0.5F, 0.25F, 0.5F}), (Vec3{1.0F, 1.0F, 0.5F}));
}

TEST(Lights, HaveLengthOne) {
    for (const Light& light : studioLighting().lights) {
        EXPECT_NEAR(length(light.direction), 1.0F, 1e-6F);
    }
}

TEST(StudioBackground, IsGreyAndSmooth) {
    const Subject sphere = makeSubject("sphere");
    const Studio studio(sphere, frame(sphere, 512, 512, 0.78F), 0.0F);
    for (float y = -1.0F; y <= 1.0F; y += 0.01F) {
        for (float x = -1.0F; x <= 1.0F; x += 0.01F) {
            const float here = studio.brightness(x, y);
            ASSERT_GT(here, 0.01F);
            ASSERT_LT(here, 0.5F);
            ASSERT_NEAR(here, studio.brightness(x + 0.01F, y), 0.02F) << x << ' ' << y;
            ASSERT_NEAR(here, studio.brightness(x, y + 0.01F), 0.04F) << x << ' ' << y;
        }
    }
}

TEST(StudioBackground, IsDarkWhereSomethingStands) {
    for (const char* mesh : {"sphere", "cube"}) {
        const Subject subject = makeSubject(mesh);
        const Camera camera = frame(subject, 512, 512, 0.78F);
        const Vec3 foot = projected(viewProjection(camera), {0.0F, -1.0F, 0.0F});
        const Studio studio(subject, camera, 0.0F);
        EXPECT_LT(studio.brightness(foot[0], foot[1]), 0.5F * studio.brightness(-1.0F, foot[1])) << mesh;
    }
}

} // namespace
} // namespace patina::preview
