// A finished icon: one 24-bit colour, or nothing, for each pixel.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace patina::icons {

constexpr int kIconSide = 32;

using Pixel = std::optional<std::uint32_t>; // 0xRRGGBB, or transparent

struct Raster {
    std::array<Pixel, static_cast<std::size_t>(kIconSide) * kIconSide> pixels;

    [[nodiscard]] const Pixel& at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * kIconSide + static_cast<std::size_t>(x)];
    }
    [[nodiscard]] Pixel& at(int x, int y) {
        return pixels[static_cast<std::size_t>(y) * kIconSide + static_cast<std::size_t>(x)];
    }
};

} // namespace patina::icons
