#include "picture.h"

#include <png.h>

#include <array>
#include <initializer_list>
#include <stdexcept>

namespace patina::textures {

namespace {

std::uint8_t quantised(double value) {
    return static_cast<std::uint8_t>(std::lround(saturate(value) * 255.0));
}

Picture blank(int width, int height, int channels) {
    Picture picture{width, height, channels, {}};
    picture.bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                          static_cast<std::size_t>(channels));
    return picture;
}

void append(Picture& picture, std::initializer_list<double> values) {
    for (const double value : values) {
        picture.bytes.push_back(quantised(value));
    }
}

// Calls `paint` with each column and row, from the top.
template <typename Paint>
Picture paintEach(int width, int height, int channels, const Paint& paint) {
    Picture picture = blank(width, height, channels);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            paint(picture, column, row);
        }
    }
    return picture;
}

struct Normal {
    double x = 0.0;
    double y = 0.0;
    double z = 1.0;
};

Normal normalAt(const Field& height, int column, int row) {
    const double across = (height.at(column + 1, row) - height.at(column - 1, row)) * 0.5 * height.width();
    const double up = (height.at(column, row - 1) - height.at(column, row + 1)) * 0.5 * height.height();
    const double size = std::sqrt(across * across + up * up + 1.0);
    return {-across / size, -up / size, 1.0 / size};
}

double stored(double component) { return component * 0.5 + 0.5; }

} // namespace

Picture grey(const Field& field) {
    return paintEach(field.width(), field.height(), 1, [&](Picture& picture, int column, int row) {
        append(picture, {field.at(column, row)});
    });
}

Picture coloured(const Colours& colours) {
    return paintEach(colours.width(), colours.height(), 3, [&](Picture& picture, int column, int row) {
        const Colour& c = colours.at(column, row);
        append(picture, {c.r, c.g, c.b});
    });
}

Picture coloured(const Colours& colours, const Field& alpha) {
    return paintEach(colours.width(), colours.height(), 4, [&](Picture& picture, int column, int row) {
        const Colour& c = colours.at(column, row);
        append(picture, {c.r, c.g, c.b, alpha.at(column, row)});
    });
}

Picture fourFields(const Field& red, const Field& green, const Field& blue, const Field& alpha) {
    return paintEach(red.width(), red.height(), 4, [&](Picture& picture, int column, int row) {
        append(picture,
               {red.at(column, row), green.at(column, row), blue.at(column, row), alpha.at(column, row)});
    });
}

Picture normals(const Field& height) {
    return paintEach(height.width(), height.height(), 3, [&](Picture& picture, int column, int row) {
        const Normal n = normalAt(height, column, row);
        append(picture, {stored(n.x), stored(n.y), stored(n.z)});
    });
}

Picture normalsInAlphaAndGreen(const Field& height) {
    return paintEach(height.width(), height.height(), 4, [&](Picture& picture, int column, int row) {
        const Normal n = normalAt(height, column, row);
        append(picture, {1.0, stored(n.y), 1.0, stored(n.x)});
    });
}

void writePng(const Picture& picture, const std::string& path) {
    constexpr std::array<png_uint_32, 5> kFormats{0, PNG_FORMAT_GRAY, 0, PNG_FORMAT_RGB, PNG_FORMAT_RGBA};
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = kFormats.at(static_cast<std::size_t>(picture.channels));
    if (png_image_write_to_file(&image, path.c_str(), 0, picture.bytes.data(), 0, nullptr) == 0) {
        throw std::runtime_error(path + ": " + image.message);
    }
}

} // namespace patina::textures
