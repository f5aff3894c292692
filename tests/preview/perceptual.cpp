#include "tests/preview/perceptual.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <stdexcept>

namespace patina::testing {
namespace {

using Triple = std::array<double, 3>;
using Plane = std::vector<Triple>;

double linear(std::uint8_t stored) {
    const double s = stored / 255.0;
    return s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
}

Plane linearPlane(const Picture& picture) {
    Plane plane(picture.bytes.size() / 3);
    for (std::size_t i = 0; i < plane.size(); ++i) {
        plane[i] = {linear(picture.bytes[3 * i]), linear(picture.bytes[3 * i + 1]),
                    linear(picture.bytes[3 * i + 2])};
    }
    return plane;
}

/// One direction of a bell of one pixel; beyond its edges the picture goes on as it ends.
Plane blurredAlong(const Plane& plane, int width, int height, int across, int down) {
    constexpr std::array<double, 7> bell = {0.004433, 0.054006, 0.242036, 0.399050,
                                            0.242036, 0.054006, 0.004433};
    Plane result(plane.size());
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            Triple& sum = result[static_cast<std::size_t>(row * width + column)];
            for (int i = -3; i <= 3; ++i) {
                const int x = std::clamp(column + i * across, 0, width - 1);
                const int y = std::clamp(row + i * down, 0, height - 1);
                const Triple& from = plane[static_cast<std::size_t>(y * width + x)];
                for (std::size_t c = 0; c < 3; ++c) {
                    sum.at(c) += bell.at(static_cast<std::size_t>(i + 3)) * from.at(c);
                }
            }
        }
    }
    return result;
}

double labCurve(double t) {
    constexpr double d = 6.0 / 29.0;
    return t > d * d * d ? std::cbrt(t) : t / (3.0 * d * d) + 4.0 / 29.0;
}

/// Of linear sRGB, seen under its own white.
Triple labOf(const Triple& rgb) {
    const double x = (0.412453 * rgb[0] + 0.357580 * rgb[1] + 0.180423 * rgb[2]) / 0.950456;
    const double y = 0.212671 * rgb[0] + 0.715160 * rgb[1] + 0.072169 * rgb[2];
    const double z = (0.019334 * rgb[0] + 0.119193 * rgb[1] + 0.950227 * rgb[2]) / 1.088754;
    return {116.0 * labCurve(y) - 16.0, 500.0 * (labCurve(x) - labCurve(y)),
            200.0 * (labCurve(y) - labCurve(z))};
}

double distance(const Triple& left, const Triple& right) {
    return std::hypot(left[0] - right[0], left[1] - right[1], left[2] - right[2]);
}

Plane labPlane(const Picture& picture) {
    const int width = picture.width;
    const int height = picture.height;
    Plane plane = blurredAlong(blurredAlong(linearPlane(picture), width, height, 1, 0), width, height, 0, 1);
    std::transform(plane.begin(), plane.end(), plane.begin(), labOf);
    return plane;
}

} // namespace

Picture readPng(const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file.string().c_str()) == 0) {
        throw std::runtime_error(file.string() + ": " + image.message);
    }
    image.format = PNG_FORMAT_RGB;
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.bytes.resize(PNG_IMAGE_SIZE(image));
    const png_color black{};
    if (png_image_finish_read(&image, &black, picture.bytes.data(), 0, nullptr) == 0) {
        throw std::runtime_error(file.string() + ": " + image.message);
    }
    return picture;
}

Difference differenceOf(const Picture& left, const Picture& right) {
    if (left.width != right.width || left.height != right.height) {
        throw std::runtime_error("the pictures are not of one size");
    }
    const Plane from = labPlane(left);
    const Plane to = labPlane(right);
    std::vector<double> distances(from.size());
    std::transform(from.begin(), from.end(), to.begin(), distances.begin(), distance);
    const double sum = std::accumulate(distances.begin(), distances.end(), 0.0);
    const auto nearEnd = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() * 99 / 100);
    std::nth_element(distances.begin(), nearEnd, distances.end());
    return {sum / static_cast<double>(distances.size()), *nearEnd};
}

} // namespace patina::testing
