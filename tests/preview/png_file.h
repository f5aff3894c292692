#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace patina::testing {

using Colour = std::vector<int>; ///< three bytes, or four with alpha

/// A PNG file as libpng alone reads it.
class PngFile {
public:
    explicit PngFile(const std::filesystem::path& file);

    int width() const { return width_; }
    int height() const { return height_; }
    /// From the top left corner.
    Colour at(int column, int row) const;
    Colour middle() const { return at(width_ / 2, height_ / 2); }

private:
    int width_ = 0;
    int height_ = 0;
    int channels_ = 0;
    std::vector<std::uint8_t> bytes_;
};

/// The bytes of a PNG file with three bytes a pixel, from the top left corner.
std::string pngText(int width, int height, const std::vector<std::uint8_t>& pixels);

} // namespace patina::testing
