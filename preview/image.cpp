#include "preview/image.h"

#include "host/diagnostic.h"
#include "host/files.h"
#include "nodemodel/text.h"
#include "preview/srgb.h"

#include <png.h>
#include <stb/stb_image.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace patina::preview {

using namespace detail;

namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t fileLimit = std::size_t{1024} * 1024 * 1024;

struct Free {
    void operator()(void* pixels) const { stbi_image_free(pixels); }
};

template <typename Value>
using Pixels = std::unique_ptr<Value, Free>;

constexpr const char* readableKinds = "PNG, JPEG, TGA, BMP, GIF, PSD, PPM, PGM or HDR";

[[noreturn]] void throwUnreadable(const std::filesystem::path& file, const std::string& text) {
    throw HostError({file.string(), 0}, text);
}

/// Throws unless the image is one that there is room for.
void requireSize(const std::filesystem::path& file, std::size_t width, std::size_t height) {
    if (width > imageSideLimit || height > imageSideLimit || width * height > imagePixelLimit) {
        throwUnreadable(file,
                        joinText({"this image has ", std::to_string(width), " by ", std::to_string(height),
                                  " pixels; at most ", std::to_string(imageSideLimit), " on a side and ",
                                  std::to_string(imagePixelLimit), " in all can be used; make it smaller"}));
    }
}

/// The same of a PNG file, of which libstb knows nothing when it is too large.
void requirePngSize(const std::filesystem::path& file, const std::string& content) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, content.data(), content.size()) != 0) {
        png_image_free(&image);
        requireSize(file, image.width, image.height);
    }
}

/// Takes over what the decoder gave, scaled so that `one` becomes 1.
template <typename Value>
void takePixels(Image& image, const Pixels<Value>& pixels, float one, const std::filesystem::path& file) {
    if (!pixels) {
        throwUnreadable(file,
                        joinText({"this image is damaged, or saved in an unusual way; save it again, as ",
                                  readableKinds}));
    }
    image.pixels.resize(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) *
                        channels);
    std::transform(pixels.get(), pixels.get() + image.pixels.size(), image.pixels.begin(),
                   [one](Value value) { return static_cast<float>(value) / one; });
}

using Level = TextureLevel;

std::size_t texelIndex(const Level& level, int column, int row) {
    return (static_cast<std::size_t>(row) * static_cast<std::size_t>(level.width) +
            static_cast<std::size_t>(column)) *
           channels;
}

/// Calls `action` with each texel of a row of `count` that a part of one of `partCount` equal parts covers,
/// and with the length that it covers of it.
template <typename Action>
void forCovered(int part, int partCount, int count, Action&& action) {
    const double begin = static_cast<double>(part) * count / partCount;
    const double end = static_cast<double>(part + 1) * count / partCount;
    for (int i = static_cast<int>(begin); i < count && i < end; ++i) {
        action(i, std::min(end, i + 1.0) - std::max(begin, static_cast<double>(i)));
    }
}

/// The mean over each part of a level.
Level halved(const Level& level) {
    Level half = {std::max(1, level.width / 2), std::max(1, level.height / 2), {}};
    half.texels.resize(static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height) *
                       channels);
    const double area =
        static_cast<double>(level.width) * level.height / (static_cast<double>(half.width) * half.height);
    for (int row = 0; row < half.height; ++row) {
        for (int column = 0; column < half.width; ++column) {
            std::array<double, channels> sum = {};
            forCovered(row, half.height, level.height, [&](int y, double height) {
                forCovered(column, half.width, level.width, [&](int x, double width) {
                    const std::size_t index = texelIndex(level, x, y);
                    for (std::size_t i = 0; i < channels; ++i) {
                        sum.at(i) += static_cast<double>(level.texels[index + i]) * width * height;
                    }
                });
            });
            const std::size_t index = texelIndex(half, column, row);
            for (std::size_t i = 0; i < channels; ++i) {
                half.texels[index + i] = static_cast<float>(sum.at(i) / area);
            }
        }
    }
    return half;
}

template <typename Curve>
void applyToColours(Level& level, Curve curve) {
    for (std::size_t i = 0; i < level.texels.size(); ++i) {
        if (i % channels != channels - 1) {
            level.texels[i] = curve(level.texels[i]);
        }
    }
}

/// The image with its bottom row first.
Level firstLevel(const Image& image) {
    Level level = {image.width, image.height, {}};
    level.texels.reserve(image.pixels.size());
    const auto rowSize = static_cast<std::ptrdiff_t>(channels) * image.width;
    for (auto row = image.pixels.end(); row != image.pixels.begin(); row -= rowSize) {
        level.texels.insert(level.texels.end(), row - rowSize, row);
    }
    return level;
}

} // namespace

Image decodeImage(const std::string& content, const std::filesystem::path& file) {
    if (content.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throwUnreadable(file, "this image file is too large");
    }
    requirePngSize(file, content);
    const auto* bytes = reinterpret_cast<const stbi_uc*>(content.data());
    const auto size = static_cast<int>(content.size());
    Image image;
    const bool isKnown = stbi_info_from_memory(bytes, size, &image.width, &image.height, nullptr) != 0;
    const bool isDeep = stbi_is_16_bit_from_memory(bytes, size) != 0;
    if (!isKnown || (isDeep && content.front() == 'P')) { // libstb takes pixel maps of 16 bits for others
        throwUnreadable(file, joinText({"this is no image that can be read; save it as ", readableKinds}));
    }
    requireSize(file, static_cast<std::size_t>(image.width), static_cast<std::size_t>(image.height));
    constexpr int wanted = static_cast<int>(channels);
    int width = 0;
    int height = 0;
    if (stbi_is_hdr_from_memory(bytes, size) != 0) {
        image.isLinear = true;
        image.depth = TexelFormat::Float;
        const Pixels<float> pixels(stbi_loadf_from_memory(bytes, size, &width, &height, nullptr, wanted));
        takePixels(image, pixels, 1.0F, file);
    } else if (isDeep) {
        image.depth = TexelFormat::Float;
        const Pixels<stbi_us> pixels(stbi_load_16_from_memory(bytes, size, &width, &height, nullptr, wanted));
        takePixels(image, pixels, 65535.0F, file);
    } else {
        const Pixels<stbi_uc> pixels(stbi_load_from_memory(bytes, size, &width, &height, nullptr, wanted));
        takePixels(image, pixels, 255.0F, file);
    }
    return image;
}

Image readImage(const std::filesystem::path& file) {
    std::string content;
    try {
        content = readFile(file, fileLimit);
    } catch (const HostError& error) {
        throwUnreadable(file, error.text()); // an image has no lines
    }
    return decodeImage(content, file);
}

std::vector<TextureLevel> textureLevels(const Image& image, bool srgb) {
    std::vector<Level> levels = {firstLevel(image)};
    if (srgb && !image.isLinear) {
        applyToColours(levels.front(), linearFromSrgb);
    }
    while (levels.back().width > 1 || levels.back().height > 1) {
        levels.push_back(halved(levels.back()));
    }
    if (srgb) {
        for (Level& level : levels) {
            applyToColours(level, srgbFromLinear);
        }
    }
    return levels;
}

std::string encodePng(const Picture& picture) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = picture.hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string content(size, '\0');
    if (png_image_write_to_memory(&image, content.data(), &size, 0, picture.bytes.data(), 0, nullptr) == 0) {
        throw HostError({}, joinText({"cannot make a PNG file: ", image.message}));
    }
    content.resize(size);
    return content;
}

} // namespace patina::preview
