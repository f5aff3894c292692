#include "preview/scene.h"

#include "bindings/binding_kinds.h"
#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace patina::preview {

using namespace detail;

namespace {

constexpr float pi = std::numbers::pi_v<float>;
constexpr float degree = pi / 180.0F;

constexpr float fieldOfView = 30.0F * degree; ///< of the smaller side
constexpr float groundHeight = -1.0F;         ///< on which the subject stands
constexpr float nearDepth = 2.0F;             ///< in front of the origin, and behind it, that is drawn

float focalLength() { return 1.0F / std::tan(0.5F * fieldOfView); }

float angleOf(const Subject& subject, float turn) {
    constexpr float swing = 40.0F * degree;
    return subject.yaw + (subject.swings ? swing * std::sin(2.0F * pi * turn) : 2.0F * pi * turn);
}

/// What a mesh sweeps when it turns: rings by their height and radius.
std::vector<Vec2> sweptRings(const Mesh& mesh) {
    constexpr std::size_t bandCount = 128;
    std::vector<float> radii(bandCount + 1, -1.0F);
    for (const Vertex& vertex : mesh.vertices) {
        const Vec3& p = vertex.position;
        const auto band = static_cast<std::size_t>(std::lround((0.5F + 0.5F * p[1]) * bandCount));
        radii.at(band) = std::max(radii.at(band), std::hypot(p[0], p[2]));
    }
    std::vector<Vec2> rings;
    for (std::size_t i = 0; i <= bandCount; ++i) {
        if (radii[i] >= 0.0F) {
            rings.push_back({2.0F * static_cast<float>(i) / bandCount - 1.0F, radii[i]});
        }
    }
    return rings;
}

struct Bounds {
    float halfWidth = 0.0F;
    float bottom = 1.0e9F;
    float top = -1.0e9F;

    float halfHeight() const { return 0.5F * (top - bottom); }
};

/// Where rings come to lie in the picture, in halves of its smaller side.
Bounds project(const std::vector<Vec2>& rings, float pitch, float distance) {
    constexpr int steps = 32;
    Bounds bounds;
    for (const auto& [height, radius] : rings) {
        for (int i = 0; i < steps; ++i) {
            const float angle = 2.0F * pi * static_cast<float>(i) / steps;
            const float x = radius * std::sin(angle);
            const float z = radius * std::cos(angle);
            const float depth = distance - (height * std::sin(pitch) + z * std::cos(pitch));
            const float scale = focalLength() / std::max(depth, 0.01F);
            const float y = (height * std::cos(pitch) - z * std::sin(pitch)) * scale;
            bounds.halfWidth = std::max(bounds.halfWidth, x * scale);
            bounds.bottom = std::min(bounds.bottom, y);
            bounds.top = std::max(bounds.top, y);
        }
    }
    return bounds;
}

float smoothStep(float begin, float end, float x) {
    const float t = std::clamp((x - begin) / (end - begin), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

} // namespace

Subject makeSubject(const std::string& mesh) {
    if (mesh == "sphere") {
        return {.mesh = makeSphere(), .pitch = 8.0F * degree, .footprint = Footprint::Disc};
    }
    if (mesh == "plane") {
        return {.mesh = makePlane(), .yaw = -16.0F * degree, .pitch = 12.0F * degree, .swings = true};
    }
    if (mesh == "cube") {
        return {.mesh = makeCube(),
                .yaw = -33.0F * degree,
                .pitch = 20.0F * degree,
                .footprint = Footprint::Square};
    }
    if (lowerCase(std::filesystem::path(mesh).extension().string()) != ".obj") {
        throw HostError({}, joinText({"there is no mesh \"", mesh,
                                      "\"; give sphere, plane, cube, or a Wavefront file, NAME.obj"}));
    }
    return {.mesh = readObj(mesh), .yaw = -20.0F * degree, .pitch = 12.0F * degree};
}

Matrix worldMatrix(const Subject& subject, float turn) { return rotationAboutY(angleOf(subject, turn)); }

Camera frame(const Subject& subject, int width, int height, float share) {
    const std::vector<Vec2> rings = sweptRings(subject.mesh);
    float nearest = 2.5F; // in front of which the subject would be cut off
    float farthest = 40.0F;
    Bounds bounds;
    for (int i = 0; i < 40; ++i) {
        const float distance = 0.5F * (nearest + farthest);
        bounds = project(rings, subject.pitch, distance);
        (std::max(bounds.halfWidth, bounds.halfHeight()) > share ? nearest : farthest) = distance;
    }
    return {subject.pitch, farthest, -0.5F * (bounds.bottom + bounds.top),
            static_cast<float>(width) / static_cast<float>(height)};
}

Vec3 eyePosition(const Camera& camera) {
    return {0.0F, camera.distance * std::sin(camera.pitch), camera.distance * std::cos(camera.pitch)};
}

Matrix viewProjection(const Camera& camera) {
    const float x = focalLength() / std::max(camera.aspect, 1.0F);
    const float y = focalLength() * std::min(camera.aspect, 1.0F);
    const float rise = camera.rise * std::min(camera.aspect, 1.0F);
    const float nearest = camera.distance - nearDepth;
    const float farthest = camera.distance + nearDepth;
    const float depth = farthest / (farthest - nearest);
    const Matrix projection = {x, 0, 0,      0,                //
                               0, y, -rise,  0,                //
                               0, 0, -depth, -nearest * depth, //
                               0, 0, -1,     0};
    return projection * translation({0.0F, 0.0F, -camera.distance}) * rotationAboutX(camera.pitch);
}

Matrix cropMatrix(const Window& window) {
    const float x = 2.0F / (window.right - window.left);
    const float y = 2.0F / (window.top - window.bottom);
    return {x, 0, 0, -0.5F * x * (window.left + window.right), //
            0, y, 0, -0.5F * y * (window.bottom + window.top), //
            0, 0, 1, 0,                                        //
            0, 0, 0, 1};
}

const Lighting& studioLighting() {
    static const Lighting lighting = {
        .lights = {{{normalised({-0.60F, 0.72F, 0.62F}, {}), {1.16F, 1.10F, 1.02F}},
                    {normalised({0.90F, 0.18F, 0.42F}, {}), {0.17F, 0.21F, 0.27F}},
                    {normalised({0.42F, 0.46F, -0.80F}, {}), {0.90F, 0.93F, 0.97F}}}},
        .above = {0.22F, 0.235F, 0.26F},
        .below = {0.095F, 0.09F, 0.085F}};
    return lighting;
}

Studio::Studio(const Subject& subject, const Camera& camera, float turn)
    : footprint_(subject.footprint), camera_(camera), eye_(eyePosition(camera)),
      angle_(angleOf(subject, turn)) {}

float Studio::brightness(float x, float y) const {
    const float sx = x * std::max(camera_.aspect, 1.0F);
    const float sy = y / std::min(camera_.aspect, 1.0F);
    const float wall = 0.30F - 0.07F * smoothStep(-1.0F, 1.0F, y);
    const float pool = 0.10F * std::exp(-(sx * sx + (sy + 0.1F) * (sy + 0.1F)) / 0.9F);
    const float vignette = 1.0F - 0.25F * smoothStep(0.55F, 1.5F, std::hypot(x, y));
    const float behind = (wall + pool) * vignette;
    if (footprint_ == Footprint::None) {
        return behind;
    }
    const float vertical = (sy - camera_.rise) / focalLength();
    const float cosine = std::cos(camera_.pitch);
    const float sine = std::sin(camera_.pitch);
    const Vec3 ray = {sx / focalLength(), vertical * cosine - sine, -vertical * sine - cosine};
    if (ray[1] >= 0.0F) {
        return behind;
    }
    return behind * shade(eye_ + ray * ((groundHeight - eye_[1]) / ray[1]));
}

/// The part of the light that arrives at a place on the ground: dark where the subject stands, and somewhat
/// where it takes the key light.
float Studio::shade(const Vec3& ground) const {
    const float x = std::cos(angle_) * ground[0] - std::sin(angle_) * ground[2];
    const float z = std::sin(angle_) * ground[0] + std::cos(angle_) * ground[2];
    const float radius = std::hypot(ground[0], ground[2]);
    const float cast = std::hypot(ground[0] - 0.35F, 1.3F * (ground[2] + 0.20F));
    if (footprint_ == Footprint::Disc) {
        const float occlusion = std::pow(1.0F + radius * radius, -1.5F); // of a sphere on its ground
        return (1.0F - 0.80F * occlusion) * (1.0F - 0.30F * std::exp(-cast * cast / 0.7F));
    }
    const float dx = std::max(std::abs(x) - 0.88F, 0.0F);
    const float dz = std::max(std::abs(z) - 0.88F, 0.0F);
    const float distance = std::hypot(dx, dz);
    return (1.0F - 0.65F * std::exp(-distance / 0.10F)) * (1.0F - 0.40F * std::exp(-distance / 0.55F));
}

} // namespace patina::preview
