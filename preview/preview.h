#pragma once

#include "host/diagnostic.h"
#include "host/material.h"

#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace patina {

/// The most pixels on a side of a picture.
inline constexpr int pictureSideLimit = 8192;

enum class PreviewBackground {
    Studio, ///< grey, with a shadow under what stands on the ground
    Colour, ///< the same everywhere
    Transparent
};

/// How a material is shown.
struct PreviewOptions {
    std::string mesh = "sphere";                           ///< "sphere", "plane", "cube" or an OBJ file
    std::map<std::string, std::filesystem::path> textures; ///< by the names of their bindings
    std::filesystem::path textureDirectory;                ///< where the others are, as NAME.png
    std::map<std::string, std::vector<float>> values;      ///< of float bindings; a single number fills all
    std::map<std::string, std::vector<float>> rates;       ///< by which these grow in a second
    int width = 512;
    int height = 512;
    float share = 0.78F; ///< of the picture's smaller side that what is shown fills
    int samples = 4;     ///< on each side of a pixel, from 1 to 16
    PreviewBackground background = PreviewBackground::Studio;
    std::array<float, 3> colour = {}; ///< of the background, linear light
    bool showValue = false;           ///< see ExportOptions
};

/// A material ready to be drawn. Threads: one preview at a time in a process, and that on one thread.
class Preview {
public:
    virtual ~Preview() = default;

    /// The bytes of a PNG file. The turn, from 0 to 1, goes once round what is shown. Throws HostError where
    /// the graphics driver fails.
    virtual std::string draw(double seconds, float turn) = 0;
};

/// Translates a live material's programs, and reads its textures. A texture that is not there is a grey
/// checker which bears its name; one of `options` that cannot be read is so too, with an error, and a found
/// one with a warning. Whatever else is read and cannot be shown has a warning. The material must outlive the
/// preview.
///
/// Names that no binding has and values that do not fit theirs are errors too, and have no effect. Throws
/// HostError for a material that cannot be exported, a mesh that cannot be read, where there is no OpenGL,
/// and where this library was built without what it needs.
std::unique_ptr<Preview> makePreview(Material& material, const PreviewOptions& options, Warnings& warnings,
                                     Errors& errors);

} // namespace patina
