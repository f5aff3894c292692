// A finished texture: rows of 8-bit pixels, from the top.

#pragma once

#include "grid.h"

#include <cstdint>
#include <string>
#include <vector>

namespace patina::textures {

struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0; // 1 grey, 3 colour, 4 colour and alpha
    std::vector<std::uint8_t> bytes;
};

// As a painter mixes it: what an 8-bit picture stores, 0 to 1.
struct Colour {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

inline Colour operator*(const Colour& c, double s) { return {c.r * s, c.g * s, c.b * s}; }
inline Colour mix(const Colour& a, const Colour& b, double t) {
    return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t)};
}
inline Colour hex(std::uint32_t rgb) {
    return {((rgb >> 16U) & 0xFFU) / 255.0, ((rgb >> 8U) & 0xFFU) / 255.0, (rgb & 0xFFU) / 255.0};
}

using Colours = Grid<Colour>;

// A surface's slope across and up, for a height in texture widths.
struct Slope {
    double across = 0.0;
    double up = 0.0;
};

[[nodiscard]] Picture grey(const Field& field);
[[nodiscard]] Picture coloured(const Colours& colours);
[[nodiscard]] Picture coloured(const Colours& colours, const Field& alpha);
[[nodiscard]] Picture fourFields(const Field& red, const Field& green, const Field& blue, const Field& alpha);

// The tangent-space normals of a surface of that height, in texture widths: x to the right and y up.
[[nodiscard]] Picture normals(const Field& height);
// The same for the layout that keeps x in alpha and y in green.
[[nodiscard]] Picture normalsInAlphaAndGreen(const Field& height);

// Writes a PNG. Throws std::runtime_error naming the file.
void writePng(const Picture& picture, const std::string& path);

} // namespace patina::textures
