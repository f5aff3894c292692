#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace patina::preview {

// Vectors, and matrices as Cg has them: row by row, for column vectors. [thread-safe]

using Vec2 = std::array<float, 2>;
using Vec3 = std::array<float, 3>;
using Vec4 = std::array<float, 4>;
using Matrix = std::array<float, 16>;

inline Vec3 operator+(const Vec3& a, const Vec3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vec3 operator-(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vec3 operator*(const Vec3& a, float scale) { return {a[0] * scale, a[1] * scale, a[2] * scale}; }

inline float dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

inline Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline float length(const Vec3& a) { return std::sqrt(dot(a, a)); }

/// The vector with length 1, or `otherwise` when it has none.
inline Vec3 normalised(const Vec3& a, const Vec3& otherwise) {
    const float size = length(a);
    return size > 0.0F ? a * (1.0F / size) : otherwise;
}

inline Matrix operator*(const Matrix& a, const Matrix& b) {
    Matrix product = {};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t i = 0; i < 4; ++i) {
                product.at(row * 4 + column) += a.at(row * 4 + i) * b.at(i * 4 + column);
            }
        }
    }
    return product;
}

inline Matrix translation(const Vec3& by) {
    return {1, 0, 0, by[0], 0, 1, 0, by[1], 0, 0, 1, by[2], 0, 0, 0, 1};
}

/// Turns z towards x.
inline Matrix rotationAboutY(float radians) {
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
}

/// Turns y towards z.
inline Matrix rotationAboutX(float radians) {
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1};
}

} // namespace patina::preview
