// How different two pictures look.

#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace patina::testing {

/// Rows of sRGB pixels from the top, three bytes each.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    bool operator==(const Picture&) const = default;
};

/// Throws std::runtime_error when there is no such PNG.
Picture readPng(const std::filesystem::path& file);

/// Distances in CIE L*a*b*, in which 2.3 is just noticeable where two even colours lie side by side. Both
/// pictures are blurred first, with a bell of one pixel, in linear light: that takes away what a rasteriser
/// may choose (rounding, how the edge of a triangle is sampled, which of two mipmaps a pixel reads), and
/// leaves what a material decides.
struct Difference {
    double mean = 0.0;
    double percentile99 = 0.0; ///< all but one pixel in a hundred are at most so different
};

/// Throws std::runtime_error when the sizes differ.
Difference differenceOf(const Picture& left, const Picture& right);

} // namespace patina::testing
