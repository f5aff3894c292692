// Colours of the icon drawings.

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace patina::icons {

// A colour in linear light, so that mixing and shading behave as light does.
struct Colour {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

inline Colour operator+(const Colour& a, const Colour& b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }

inline Colour operator*(const Colour& a, double s) { return {a.r * s, a.g * s, a.b * s}; }

inline Colour operator*(const Colour& a, const Colour& b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }

inline Colour mix(const Colour& a, const Colour& b, double t) { return a * (1.0 - t) + b * t; }

inline double linearFromDisplay(double v) {
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

inline double displayFromLinear(double v) {
    const double c = std::clamp(v, 0.0, 1.0);
    return c <= 0.0031308 ? c * 12.92 : 1.055 * std::pow(c, 1.0 / 2.4) - 0.055;
}

// A colour given the way a colour picker shows it.
inline Colour display(double r, double g, double b) {
    return {linearFromDisplay(r), linearFromDisplay(g), linearFromDisplay(b)};
}

// A display colour written as 0xRRGGBB.
inline Colour hex(std::uint32_t rgb) {
    return display(static_cast<double>((rgb >> 16U) & 0xFFU) / 255.0,
                   static_cast<double>((rgb >> 8U) & 0xFFU) / 255.0,
                   static_cast<double>(rgb & 0xFFU) / 255.0);
}

// Rounds a linear colour to the 24 bits that a file holds.
inline std::uint32_t toRgb24(const Colour& c) {
    const auto channel = [](double v) {
        return static_cast<std::uint32_t>(std::lround(displayFromLinear(v) * 255.0));
    };
    return (channel(c.r) << 16U) | (channel(c.g) << 8U) | channel(c.b);
}

} // namespace patina::icons
