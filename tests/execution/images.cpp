#include "tests/execution/images.h"

#include <cstddef>
#include <map>
#include <random>
#include <utility>

namespace patina::testing {

namespace {

Image makeImage(const std::string& texture, int dimensions) {
    std::seed_seq seed(texture.begin(), texture.end());
    std::mt19937 random(seed);
    Image image = {imageWidth, dimensions == 1 ? 1 : imageHeight, {}};
    image.channels.resize(4 * static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height));
    for (std::uint8_t& channel : image.channels) {
        channel = static_cast<std::uint8_t>(random());
    }
    // the ends of the range, and both sides of the sRGB curve's knee
    constexpr std::uint8_t edges[] = {0, 255, 10, 11, 128, 127, 1, 254};
    for (std::size_t i = 0; i < std::size(edges); ++i) {
        image.channels[i] = edges[i];
    }
    return image;
}

} // namespace

const std::uint8_t* Image::texel(int x, int y) const {
    return &channels[4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                          static_cast<std::size_t>(x))];
}

const Image& imageOf(const std::string& texture, int dimensions) {
    static std::map<std::pair<std::string, int>, Image> images;
    const auto [image, isNew] = images.try_emplace({texture, dimensions});
    if (isNew) {
        image->second = makeImage(texture, dimensions);
    }
    return image->second;
}

} // namespace patina::testing
