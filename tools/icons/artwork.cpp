#include "artwork.h"

#include "canvas.h"
#include "colour.h"
#include "shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace patina::icons {

namespace {

const Colour kInk = hex(0x1B1A26);
const Colour kWhite{1.0, 1.0, 1.0};
const Colour kRed = hex(0xF2383A);
const Colour kGreen = hex(0x2FC64B);
const Colour kBlue = hex(0x2F62F5);

constexpr double kSide = kIconSide;
constexpr double kOutline = 1.0;
constexpr double kCorner = 6.0;

const Shape kTile = box({0.0, 0.0}, {kSide, kSide}, kCorner);
const Shape kTileFace = grow(kTile, -kOutline);

Colour deepen(const Colour& c, double power) {
    return {std::pow(c.r, power), std::pow(c.g, power), std::pow(c.b, power)};
}

// The tile, in the colour of its node, that every icon with transparency sits on.
void drawTile(Canvas& canvas, const Colour& body) {
    const Colour edge = mix(kInk, deepen(body, 2.0) * 0.1, 0.5);
    canvas.fill(kTile, vertical(mix(edge, body, 0.06), edge, 0.0, kSide));

    const Colour top = mix(body, kWhite, 0.25);
    const Colour middle = deepen(body, 1.1) * 0.94;
    const Colour bottom = deepen(body, 1.35) * 0.7;
    const auto face = [=](Point p) {
        // A broad glow under the light keeps the face from looking flat.
        const double glow = 1.0 - smoothstep(0.0, 26.0, length(p - Point{10.0, 2.0}));
        const double t = p.y / kSide;
        const Colour c = t < 0.5 ? mix(top, middle, t * 2.0) : mix(middle, bottom, t * 2.0 - 1.0);
        return mix(c, kWhite, 0.22 * glow);
    };
    canvas.fill(kTileFace, face);
    canvas.bevel(kTileFace, 1.6, 0.75, 0.45, edge);
}

// Something lying on a tile: its shadow, outline, fill and rim.
void drawPiece(Canvas& canvas, const Shape& shape, const Paint& paint, double rim = 1.4) {
    canvas.shadow(grow(shape, kOutline), 1.1, 1.0, kInk, 0.38);
    canvas.outline(shape, kOutline, flat(kInk), 0.92);
    canvas.fill(shape, paint);
    if (rim > 0.0) {
        canvas.bevel(shape, rim, 0.55, 0.35, kInk);
    }
}

// Something let into a tile, darker under its upper edge.
void drawWell(Canvas& canvas, const Shape& shape, const Paint& paint) {
    canvas.outline(displace(shape, {0.0, 0.7}), kOutline, flat(kWhite), 0.4);
    canvas.outline(shape, kOutline, flat(kInk), 0.92);
    canvas.fill(shape, paint);
}

void drawBead(Canvas& canvas, Point centre, double radius, const Colour& colour) {
    const auto ball = [=](Point p) {
        const double glint = length(p - centre - Point{-0.3, -0.42} * radius) / radius;
        const double fall = length(p - centre - Point{-0.2, -0.35} * radius) / (radius * 1.45);
        const Colour c = mix(mix(colour, kWhite, 0.12), colour * 0.6, smoothstep(0.2, 1.0, fall));
        return mix(kWhite, c, 0.15 + 0.85 * smoothstep(0.1, 0.55, glint));
    };
    drawPiece(canvas, circle(centre, radius), ball, 0.0);
}

// A fixed scatter of numbers from 0 up to 1.
double scatter(int x, int y) {
    std::uint32_t h =
        static_cast<std::uint32_t>(x) * 0x9E3779B1U ^ static_cast<std::uint32_t>(y) * 0x85EBCA77U;
    h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12U)) * 0x297A2D39U;
    h ^= h >> 15U;
    return static_cast<double>(h >> 8U) / 16777216.0;
}

// Scatter smoothed between whole coordinates.
double noise(double x, double y) {
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const int ix = static_cast<int>(fx);
    const int iy = static_cast<int>(fy);
    const double u = smoothstep(0.0, 1.0, x - fx);
    const double v = smoothstep(0.0, 1.0, y - fy);
    const double top = scatter(ix, iy) * (1.0 - u) + scatter(ix + 1, iy) * u;
    const double low = scatter(ix, iy + 1) * (1.0 - u) + scatter(ix + 1, iy + 1) * u;
    return top * (1.0 - v) + low * v;
}

Shape letterU(Point topLeft, double width, double height, double weight) {
    const double r = width * 0.5;
    return [=](Point p) {
        const Point q = p - topLeft - Point{r, 0.0};
        const double stem = height - r;
        if (q.y > stem) {
            return std::abs(length(q - Point{0.0, stem}) - r) - weight * 0.5;
        }
        const Point over{std::abs(std::abs(q.x) - r), std::max(-q.y, 0.0)};
        return length(over) - weight * 0.5;
    };
}

Shape letterV(Point topLeft, double width, double height, double weight) {
    const Point foot = topLeft + Point{width * 0.5, height};
    return join(stroke(topLeft, foot, weight), stroke(topLeft + Point{width, 0.0}, foot, weight));
}

} // namespace

Raster drawVertexColour() {
    Canvas canvas;
    drawTile(canvas, display(1.0, 0.8, 1.0));

    const Point a{16.0, 6.8};
    const Point b{6.4, 24.8};
    const Point c{25.6, 24.8};
    const auto blend = [=](Point p) {
        const double area = cross(b - a, c - a);
        const double wa = std::clamp(cross(b - p, c - p) / area, 0.0, 1.0);
        const double wb = std::clamp(cross(c - p, a - p) / area, 0.0, 1.0);
        const double wc = std::clamp(1.0 - wa - wb, 0.0, 1.0);
        const Colour mean = kRed * wa + kGreen * wb + kBlue * wc;
        // Lifted where the three meet, which would otherwise be a dull grey.
        return mean * (1.0 + 0.9 * (1.0 - std::max({wa, wb, wc})));
    };
    const Shape face = grow(triangle(a, b, c), 1.6);
    drawPiece(canvas, face, blend);

    // The mesh: edges between the midpoints.
    const Point ab = mix(a, b, 0.5);
    const Point bc = mix(b, c, 0.5);
    const Point ca = mix(c, a, 0.5);
    const Shape edges = join(stroke(ab, bc, 0.8), join(stroke(bc, ca, 0.8), stroke(ca, ab, 0.8)));
    canvas.fill(edges, flat(kWhite), 0.6);

    drawBead(canvas, a, 3.0, kRed);
    drawBead(canvas, b, 3.0, kGreen);
    drawBead(canvas, c, 3.0, kBlue);
    return canvas.resolve();
}

Raster drawUv() {
    Canvas canvas;
    drawTile(canvas, display(0.8, 0.8, 1.0));

    const Point from{4.0, 4.0};
    const Point to{28.0, 28.0};
    const Shape panel = box(from, to, 2.5);
    const auto ramp = [=](Point p) {
        const double u = std::clamp((p.x - from.x) / (to.x - from.x), 0.0, 1.0);
        const double v = std::clamp((to.y - p.y) / (to.y - from.y), 0.0, 1.0);
        const Colour c = display(0.1 + 0.9 * u, 0.1 + 0.85 * v, 0.22);
        const int column = static_cast<int>(std::floor(u * 4.0));
        const int row = static_cast<int>(std::floor(v * 4.0));
        return (column + row) % 2 == 0 ? c * 0.66 : mix(c, kWhite, 0.22);
    };
    drawWell(canvas, panel, ramp);

    const Shape u = letterU({9.0, 12.0}, 5.0, 9.0, 2.0);
    const Shape v = letterV({18.0, 12.0}, 5.0, 8.6, 2.0);
    drawPiece(canvas, join(u, v), flat(kWhite), 0.8);
    return canvas.resolve();
}

Raster drawTexture() {
    Canvas canvas;
    drawTile(canvas, display(1.0, 1.0, 0.5));

    const Shape picture = box({4.0, 4.0}, {28.0, 28.0}, 2.5);
    const auto paint = [](Point p) {
        const double horizon = 21.0;
        // Sky, warm towards the sun.
        const Point sun{20.5, 10.5};
        const double t = std::clamp((p.y - 4.0) / (horizon - 4.0), 0.0, 1.0);
        Colour c = mix(hex(0x2E7FD6), hex(0xBFE6F5), t);
        const double fromSun = length(p - sun);
        c = mix(c, hex(0xFFE3A0), 0.85 * (1.0 - smoothstep(1.5, 11.0, fromSun)));
        if (fromSun < 2.9) {
            c = mix(hex(0xFFFDE0), hex(0xFFC93A), fromSun / 2.9);
        }
        // A far range with snow, lit from the sun's side.
        const auto ridge = [](double x) {
            const double first = 9.0 + std::abs(x - 11.0) * 1.05;
            const double second = 14.0 + std::abs(x - 22.5) * 0.85;
            return std::min(first, second) + 0.8 * (noise(x * 0.9, 3.0) - 0.5);
        };
        const double top = ridge(p.x);
        if (p.y > top) {
            const bool lit = ridge(p.x + 0.4) > top;
            const double depth = p.y - top;
            c = lit ? hex(0x8C83B4) : hex(0x54497F);
            c = mix(c, hex(0x9FB4CC), smoothstep(0.0, 12.0, depth) * 0.5);
            if (p.y < 13.2 + 1.6 * noise(p.x * 1.1, 9.0)) {
                c = lit ? hex(0xFFFFFF) : hex(0xB9C6EA);
            }
        }
        // Hills before it.
        const double hill = 19.5 - 2.2 * smoothstep(12.0, 28.0, p.x) + 1.4 * smoothstep(4.0, 14.0, p.x);
        if (p.y > hill) {
            c = mix(hex(0x7CC04A), hex(0x2C7A3C), smoothstep(0.0, 7.0, p.y - hill));
        }
        const double near = 22.5 + 3.6 * smoothstep(6.0, 28.0, p.x);
        if (p.y > near) {
            c = mix(hex(0x3E9A45), hex(0x0F4A34), smoothstep(0.0, 5.5, p.y - near));
        }
        return c * (0.94 + 0.12 * noise(p.x * 1.7, p.y * 1.7));
    };
    drawWell(canvas, picture, paint);
    return canvas.resolve();
}

Raster drawConstant() {
    Canvas canvas;
    drawTile(canvas, display(0.8, 1.0, 0.8));

    const Shape swatch = box({6.0, 6.0}, {26.0, 17.0}, 2.5);
    drawPiece(canvas, swatch, vertical(hex(0xFFB04A), hex(0xF26A2A), 6.0, 17.0), 1.6);

    const Shape track = box({6.0, 21.8}, {26.0, 24.2}, 1.2);
    drawWell(canvas, track, flat(hex(0x4A5A55)));
    canvas.fill(intersect(track, box({0.0, 0.0}, {18.0, 32.0}, 0.0)),
                vertical(hex(0xFFB04A), hex(0xF26A2A), 21.0, 25.0));
    drawBead(canvas, {18.5, 23.0}, 3.2, hex(0xF4F6F8));
    return canvas.resolve();
}

Raster drawMaths() {
    Canvas canvas;
    drawTile(canvas, display(1.0, 0.5, 0.5));

    const double near = 9.5;
    const double far = 22.5;
    const double arm = 4.5;
    const double half = 1.5;
    const auto bar = [](Point centre, double halfWidth, double halfHeight) {
        const Point reach{halfWidth, halfHeight};
        return box(centre - reach, centre + reach, 0.6);
    };
    const auto sign = [&](const Shape& shape) {
        drawPiece(canvas, shape, vertical(kWhite, hex(0xFFEFE6), 4.0, 28.0), 0.7);
    };

    const Point plus{near, near};
    sign(join(bar(plus, arm, half), bar(plus, half, arm)));

    sign(bar({far, near}, arm, half));

    const Shape upright = join(bar({0.0, 0.0}, 5.3, 1.3), bar({0.0, 0.0}, 1.3, 5.3));
    const auto times = [=](Point p) {
        const Point q = p - Point{near, far};
        return upright(Point{q.x + q.y, q.y - q.x} * std::sqrt(0.5));
    };
    sign(times);

    const Point divide{far, far};
    sign(join(bar(divide, arm, half),
              join(circle(divide - Point{0.0, 3.9}, 1.4), circle(divide + Point{0.0, 3.9}, 1.4))));
    return canvas.resolve();
}

Raster drawSwizzle() {
    Canvas canvas;
    drawTile(canvas, display(0.5, 0.5, 1.0));

    const Point start{6.5, 16.0};
    const Point split{10.0, 16.0};
    const std::array<Point, 3> ends{{{24.5, 7.0}, {24.5, 16.0}, {24.5, 25.0}}};
    const std::array<Colour, 3> colours{{kRed, kGreen, hex(0x2A6CFF)}};
    const std::array<Colour, 3> lit{{hex(0xFF6A62), hex(0x4FE06A), hex(0x5FB0FF)}};
    const double weight = 2.4;

    Shape all = stroke(start, split, weight * 1.4);
    for (const Point& end : ends) {
        all = join(all, wire(split, end, weight));
    }
    canvas.shadow(grow(all, kOutline), 1.1, 1.0, kInk, 0.38);
    canvas.outline(all, kOutline, flat(kInk), 0.92);
    for (const std::size_t i : {std::size_t{0}, std::size_t{2}, std::size_t{1}}) {
        const Colour from = hex(0xF4F4FA);
        const Colour to = lit[i];
        canvas.fill(wire(split, ends[i], weight),
                    [=](Point p) { return mix(from, to, smoothstep(11.0, 15.5, p.x)); });
    }
    canvas.fill(stroke(start, split, weight * 1.4), flat(hex(0xF4F4FA)));
    drawBead(canvas, start, 3.0, hex(0xE9EAF4));
    for (std::size_t i = 0; i < ends.size(); ++i) {
        drawBead(canvas, ends[i], 3.0, colours[i]);
    }
    return canvas.resolve();
}

Raster drawLayerBlend() {
    enum Ink : std::size_t {
        white,
        line,
        softLine,
        ground, // under the layers' shadow
        greenLit,
        green,
        greenShade,
        amberLit,
        amber,
        amberShade,
        bothLit,
        both,
        inkCount
    };
    constexpr std::array<std::uint32_t, inkCount> kInks{0xFFFFFF, 0x1B2416, 0x5C6454, 0xD5DAD0,
                                                        0xB9E07C, 0x70B530, 0x4B8A1F, 0xFFE08F,
                                                        0xF7A93A, 0xC8761A, 0xE6E468, 0xB7B424};

    const Shape back = box({2.0, 2.0}, {21.0, 21.0}, 4.5);
    const Shape front = box({11.0, 11.0}, {30.0, 30.0}, 4.5);
    const Shape backLined = grow(back, kOutline);
    const Shape frontLined = grow(front, kOutline);
    const Shape fallen = displace(join(backLined, frontLined), {0.0, 1.0});

    const auto inside = [](const Shape& shape, Point p) { return shape(p) <= 0.0; };
    const auto layer = [&](const Shape& shape, Point p, Ink lit, Ink body, Ink shade) {
        if (!inside(shape, p - Point{0.0, 1.0})) {
            return lit;
        }
        return inside(shape, p + Point{0.0, 1.0}) ? body : shade;
    };
    const auto inkAt = [&](Point p) {
        if (inside(front, p)) {
            if (inside(back, p)) {
                return layer(front, p, bothLit, both, both);
            }
            // The covered edge shows through.
            return inside(backLined, p) ? amberShade : layer(front, p, amberLit, amber, amberShade);
        }
        if (inside(frontLined, p)) {
            return line;
        }
        if (inside(back, p)) {
            return layer(back, p, greenLit, green, greenShade);
        }
        if (inside(backLined, p)) {
            return line;
        }
        return inside(fallen, p) ? ground : white;
    };

    // Averaging would make new colours, so the ink that covers the most of a
    // pixel takes all of it; only a line that is cut close may soften.
    Raster raster;
    for (int y = 0; y < kIconSide; ++y) {
        for (int x = 0; x < kIconSide; ++x) {
            constexpr int kSamples = 16;
            std::array<int, inkCount> votes{};
            for (int j = 0; j < kSamples; ++j) {
                for (int i = 0; i < kSamples; ++i) {
                    ++votes[inkAt({x + (i + 0.5) / kSamples, y + (j + 0.5) / kSamples})];
                }
            }
            const auto most = std::max_element(votes.begin(), votes.end());
            auto chosen = static_cast<std::size_t>(most - votes.begin());
            const double lineShare = static_cast<double>(votes[line]) / (kSamples * kSamples);
            if (lineShare > 0.28 && lineShare < 0.56) {
                chosen = softLine;
            }
            raster.at(x, y) = kInks[chosen];
        }
    }
    return raster;
}

} // namespace patina::icons
