#pragma once

#include "preview/gl_texture.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace patina::preview {

// Images on the CPU, top row first. [thread-safe]

/// An image as a texture holds it.
struct Image {
    int width = 0;
    int height = 0;
    bool isLinear = false;                 ///< holds light, and not what a file of bytes does: HDR
    TexelFormat depth = TexelFormat::Byte; ///< how finely the file told the values apart
    std::vector<float> pixels;             ///< four for each, red first; from 0 to 1 unless isLinear
};

/// The most pixels on a side of an image, and in all.
inline constexpr int imageSideLimit = 16384;
inline constexpr std::size_t imagePixelLimit = std::size_t{1} << 26U;

/// Reads a PNG, JPEG, TGA, BMP, GIF, PSD, PPM, PGM or HDR file; of an animation, the first image.
/// Throws HostError, naming the file, when it cannot be read, is no such image or a damaged one, or is larger
/// than the limits.
Image readImage(const std::filesystem::path& file);

/// The same from the bytes of a file; `file` is only what messages name.
Image decodeImage(const std::string& content, const std::filesystem::path& file);

/// The levels of a texture, which begins with its bottom row. Each has half the width and height of the one
/// before, down to 1 by 1, and the mean of what it covers; that of light for `srgb`, when the image holds
/// sRGB colours. An image that holds light then becomes sRGB, which is what the shader reads.
std::vector<TextureLevel> textureLevels(const Image& image, bool srgb);

/// What stands in for a texture that is not there: a grey checker that bears a name.
Image labelledChecker(const std::string& label);

/// The same for a texture that holds no colours: its greys become the slopes of a nearly flat surface, so
/// that it may stand in for normals, be they in red, green and blue or in alpha and green.
Image labelledSlopes(const std::string& label);

/// A picture of bytes as sRGB colours, red first.
struct Picture {
    int width = 0;
    int height = 0;
    bool hasAlpha =
        false; ///< four bytes a pixel, alpha last, which the colours are not multiplied by; else three
    std::vector<std::uint8_t> bytes;
};

/// The bytes of a PNG file, which depend on the picture only. Throws HostError when there is no room.
std::string encodePng(const Picture& picture);

} // namespace patina::preview
