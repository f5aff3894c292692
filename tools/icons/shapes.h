// Signed distances: negative inside a shape, positive outside, in icon pixels.
// The origin is the icon's top left corner and y grows downwards.

#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace patina::icons {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, double s) { return {a.x * s, a.y * s}; }
inline double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
// Not std::hypot, whose last bit varies between libraries.
inline double length(Point a) { return std::sqrt(dot(a, a)); }
inline Point mix(Point a, Point b, double t) { return a * (1.0 - t) + b * t; }

inline double smoothstep(double from, double to, double v) {
    const double t = std::clamp((v - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

using Shape = std::function<double(Point)>;

inline Shape circle(Point centre, double radius) {
    return [=](Point p) { return length(p - centre) - radius; };
}

// A box from its top left to its bottom right corner.
inline Shape box(Point from, Point to, double cornerRadius) {
    return [=](Point p) {
        const Point centre = (from + to) * 0.5;
        const Point half = (to - from) * 0.5;
        const Point q{std::abs(p.x - centre.x) - half.x + cornerRadius,
                      std::abs(p.y - centre.y) - half.y + cornerRadius};
        const Point outside{std::max(q.x, 0.0), std::max(q.y, 0.0)};
        return length(outside) + std::min(std::max(q.x, q.y), 0.0) - cornerRadius;
    };
}

// A straight stroke with round ends.
inline Shape stroke(Point a, Point b, double width) {
    return [=](Point p) {
        const Point along = b - a;
        const double t = std::clamp(dot(p - a, along) / dot(along, along), 0.0, 1.0);
        return length(p - a - along * t) - width * 0.5;
    };
}

inline Shape triangle(Point a, Point b, Point c) {
    return [=](Point p) {
        const auto edge = [p](Point from, Point to) {
            const Point along = to - from;
            const Point rel = p - from;
            const double t = std::clamp(dot(rel, along) / dot(along, along), 0.0, 1.0);
            return length(rel - along * t);
        };
        const double nearest = std::min({edge(a, b), edge(b, c), edge(c, a)});
        const double s = cross(b - a, c - a) > 0.0 ? 1.0 : -1.0;
        const bool inside =
            s * cross(b - a, p - a) > 0.0 && s * cross(c - b, p - b) > 0.0 && s * cross(a - c, p - c) > 0.0;
        return inside ? -nearest : nearest;
    };
}

inline Shape join(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return std::min(a(p), b(p)); };
}

inline Shape intersect(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return std::max(a(p), b(p)); };
}

inline Shape cut(Shape from, Shape away) {
    return [from = std::move(from), away = std::move(away)](Point p) { return std::max(from(p), -away(p)); };
}

inline Shape grow(Shape a, double by) {
    return [a = std::move(a), by](Point p) { return a(p) - by; };
}

inline Shape displace(Shape a, Point by) {
    return [a = std::move(a), by](Point p) { return a(p - by); };
}

// A wire that leaves a to the right and reaches b from the left.
inline Shape wire(Point a, Point b, double width) {
    return [=](Point p) {
        constexpr int kPieces = 24;
        const double reach = (b.x - a.x) * 0.55;
        const Point c1{a.x + reach, a.y};
        const Point c2{b.x - reach, b.y};
        const auto at = [&](double t) {
            const double s = 1.0 - t;
            return a * (s * s * s) + c1 * (3.0 * s * s * t) + c2 * (3.0 * s * t * t) + b * (t * t * t);
        };
        double nearest = 1e9;
        Point from = a;
        for (int i = 1; i <= kPieces; ++i) {
            const Point to = at(static_cast<double>(i) / kPieces);
            const Point along = to - from;
            const double t = std::clamp(dot(p - from, along) / dot(along, along), 0.0, 1.0);
            nearest = std::min(nearest, length(p - from - along * t));
            from = to;
        }
        return nearest - width * 0.5;
    };
}

} // namespace patina::icons
