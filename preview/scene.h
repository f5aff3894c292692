#pragma once

#include "preview/mesh.h"
#include "preview/vectors.h"

#include <filesystem>
#include <string>

namespace patina::preview {

// What is drawn beside the material: the mesh, how it stands, the camera, the lights and the background.
// World space has the mesh at its origin, y upwards and the camera in front, towards positive z. All colours
// are linear light. [thread-safe]

/// What stands on the ground, for the shadow under it.
enum class Footprint { None, Disc, Square };

/// A mesh and how it is shown.
struct Subject {
    Mesh mesh;
    float yaw = 0.0F;    ///< how far it is turned, in radians, to the right
    float pitch = 0.0F;  ///< how high the camera looks down from, in radians
    bool swings = false; ///< it has a front only: a turntable shows it from side to side
    Footprint footprint = Footprint::None;
};

/// "sphere", "plane", "cube", or else an OBJ file. Throws HostError.
Subject makeSubject(const std::string& mesh);

/// Object space to world space, at a part of a turn from 0 to 1.
Matrix worldMatrix(const Subject& subject, float turn);

/// A long lens that looks at the origin.
struct Camera {
    float pitch = 0.0F;
    float distance = 0.0F; ///< of the eye from the origin
    float rise = 0.0F;     ///< by how much the picture is shifted up, in halves of its smaller side
    float aspect = 1.0F;   ///< width through height
};

/// A camera for which the subject fills that share of the smaller side of a picture, however it is
/// turned.
Camera frame(const Subject& subject, int width, int height, float share);

Vec3 eyePosition(const Camera& camera);

/// World space to clip space; depth is within 0 to w.
Matrix viewProjection(const Camera& camera);

/// A part of a picture in its own coordinates, -1 to 1 from left to right and from the bottom up.
struct Window {
    float left = -1.0F;
    float bottom = -1.0F;
    float right = 1.0F;
    float top = 1.0F;
};

/// Clip space of the picture to clip space of a part that is drawn alone.
Matrix cropMatrix(const Window& window);

/// Up to three lights, far away, and what surrounds them.
struct Light {
    Vec3 direction; ///< towards it, of length 1
    Vec3 colour;
};

struct Lighting {
    std::array<Light, 3> lights;
    Vec3 above;
    Vec3 below;
};

/// A warm light from above, the left and the front; a cool one from the right; one from behind.
const Lighting& studioLighting();

/// The wall and floor of a studio, grey, with the soft shadow of what stands on it.
class Studio {
public:
    Studio(const Subject& subject, const Camera& camera, float turn);

    /// At a place of the picture, -1 to 1 from left to right and from the bottom up.
    float brightness(float x, float y) const;

private:
    float shade(const Vec3& ground) const;

    Footprint footprint_;
    Camera camera_;
    Vec3 eye_;
    float angle_; ///< by which the subject is turned
};

} // namespace patina::preview
