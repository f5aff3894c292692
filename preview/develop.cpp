#include "preview/develop.h"

#include "preview/srgb.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace patina::preview {

namespace {

/// A colour multiplied by its alpha.
struct Exposure {
    Vec3 colour = {};
    float alpha = 0.0F;
};

/// Linear up to a shoulder, and never quite 1.
float rollOff(float light) {
    constexpr float shoulder = 0.55F;
    constexpr float room = 1.0F - shoulder;
    return light <= shoulder ? light : shoulder + room * (1.0F - std::exp((shoulder - light) / room));
}

/// A value from 0 up; what is not a number is 0.
float cleaned(float value) { return value > 0.0F ? value : 0.0F; }

/// The mean of the samples of a pixel.
Exposure meanOf(const std::vector<float>& samples, int side, int sampleColumn, int sampleRow, int count,
                bool isLit) {
    Exposure sum;
    for (int y = 0; y < count; ++y) {
        for (int x = 0; x < count; ++x) {
            const auto index = (static_cast<std::size_t>(sampleRow + y) * static_cast<std::size_t>(side) +
                                static_cast<std::size_t>(sampleColumn + x)) *
                               4;
            const float alpha = std::min(cleaned(samples[index + 3]), 1.0F);
            for (std::size_t i = 0; i < 3; ++i) {
                const float light = cleaned(samples[index + i]);
                sum.colour.at(i) += alpha * (isLit ? rollOff(light) : std::min(light, 1.0F));
            }
            sum.alpha += alpha;
        }
    }
    const float share = 1.0F / static_cast<float>(count * count);
    return {sum.colour * share, sum.alpha * share};
}

/// From -1/2 to 1/2, in a pattern of 8 by 8 that has each value once and neighbours far apart.
float pattern(int column, int row) {
    unsigned int value = 0;
    const auto x = static_cast<unsigned int>(column);
    const auto y = static_cast<unsigned int>(row);
    for (unsigned int bit = 0; bit < 3; ++bit) {
        value = value << 2U | ((x ^ y) >> bit & 1U) << 1U | (y >> bit & 1U);
    }
    return (static_cast<float>(value) + 0.5F) / 64.0F - 0.5F;
}

std::uint8_t byteOf(float value, float offset) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(255.0F * value + offset, 0.0F, 255.0F)));
}

void writeColour(std::uint8_t* pixel, const Vec3& light, float offset) {
    for (std::size_t i = 0; i < light.size(); ++i) {
        pixel[i] = byteOf(srgbFromLinear(light.at(i)), offset);
    }
}

/// A coordinate of a pixel's middle, -1 to 1.
float place(int index, int count) {
    return (2.0F * static_cast<float>(index) + 1.0F) / static_cast<float>(count) - 1.0F;
}

std::size_t channelsOf(const Picture& picture) { return picture.hasAlpha ? 4 : 3; }

} // namespace

Picture Development::start() const {
    Picture picture = {
        options_.width, options_.height, options_.background == PreviewBackground::Transparent, {}};
    picture.bytes.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                         channelsOf(picture));
    return picture;
}

/// How much of a pixel changes slowly.
float Development::patternStrength(float alpha) const {
    const bool isGradual = options_.background == PreviewBackground::Studio;
    return (isLit_ ? alpha : 0.0F) + (isGradual ? 1.0F - alpha : 0.0F);
}

Vec3 Development::backgroundAt(int column, int row) const {
    if (options_.background != PreviewBackground::Studio) {
        return options_.colour;
    }
    const float grey = studio_.brightness(place(column, options_.width), -place(row, options_.height));
    return {grey, grey, grey};
}

void Development::develop(Picture& picture, const Tile& tile, const std::vector<float>& samples) const {
    const int count = options_.samples;
    const int sampleSide = tile.side * count;
    for (int row = tile.top; row < std::min(tile.top + tile.side, picture.height); ++row) {
        for (int column = tile.left; column < std::min(tile.left + tile.side, picture.width); ++column) {
            const int sampleRow = sampleSide - (row - tile.top + 1) * count;
            const Exposure mean =
                meanOf(samples, sampleSide, (column - tile.left) * count, sampleRow, count, isLit_);
            std::uint8_t* pixel =
                &picture.bytes[(static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width) +
                                static_cast<std::size_t>(column)) *
                               channelsOf(picture)];
            const float offset = pattern(column, row) * patternStrength(mean.alpha);
            if (picture.hasAlpha) {
                writeColour(pixel, mean.alpha > 0.0F ? mean.colour * (1.0F / mean.alpha) : Vec3{}, offset);
                pixel[3] = byteOf(mean.alpha, 0.0F);
            } else {
                writeColour(pixel, mean.colour + backgroundAt(column, row) * (1.0F - mean.alpha), offset);
            }
        }
    }
}

} // namespace patina::preview
