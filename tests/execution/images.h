#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace patina::testing {

/// The pictures that textures of the tests hold: noise that depends on the texture's name alone.
struct Image {
    int width = 0;
    int height = 0;                     ///< 1 for a 1D texture
    std::vector<std::uint8_t> channels; ///< four each, row by row, the row at v = 0 first

    const std::uint8_t* texel(int x, int y) const;
};

inline constexpr int imageWidth = 32; ///< of 1D textures too
inline constexpr int imageHeight = 16;

/// Threads: one at a time.
const Image& imageOf(const std::string& texture, int dimensions);

} // namespace patina::testing
