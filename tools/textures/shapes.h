// Points and the few curves that the drawings are made of.

#pragma once

#include <algorithm>
#include <cmath>

namespace patina::textures {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, double s) { return {a.x * s, a.y * s}; }
// Not std::hypot, whose last bit varies between libraries.
inline double length(Point a) { return std::sqrt(a.x * a.x + a.y * a.y); }

inline double saturate(double v) { return std::clamp(v, 0.0, 1.0); }
inline double mix(double a, double b, double t) { return a + (b - a) * t; }
inline double frac(double v) { return v - std::floor(v); }

// 0 at `from` and 1 at `to`, which may be the smaller one.
inline double ramp(double from, double to, double v) { return saturate((v - from) / (to - from)); }
inline double smoothstep(double from, double to, double v) {
    const double t = ramp(from, to, v);
    return t * t * (3.0 - 2.0 * t);
}

// The square around the origin with round corners: negative inside, positive outside.
inline double roundedBox(Point p, Point half, double corner) {
    const Point q{std::abs(p.x) - half.x + corner, std::abs(p.y) - half.y + corner};
    return length({std::max(q.x, 0.0), std::max(q.y, 0.0)}) + std::min(std::max(q.x, q.y), 0.0) - corner;
}

} // namespace patina::textures
