#include "artwork.h"
#include "noise.h"

#include <array>

namespace patina::textures {

namespace {

constexpr int kSide = 256;
constexpr double kTurn = 6.283185307179586;
constexpr double kStitchLine = 0.44; // of the seam's stitches, from the middle of the patch

double stitches(Point p) {
    const Point q{std::abs(p.x - 0.5), std::abs(p.y - 0.5)};
    const bool upright = q.x > q.y;
    const double across = (upright ? q.x : q.y) - kStitchLine;
    const double along = frac((upright ? p.y : p.x) * 16.0) - 0.5;
    const double thread = roundedBox({across, along / 16.0}, {0.0065, 0.022}, 0.0065);
    return std::max(upright ? q.y : q.x, 0.0) > kStitchLine ? 0.0 : smoothstep(0.004, -0.004, thread);
}

double quiltHeight(Point p) {
    const Point q{2.0 * p.x - 1.0, 2.0 * p.y - 1.0};
    const double pillow = (1.0 - q.x * q.x) * (1.0 - q.y * q.y);
    const double puff = std::sqrt(std::max(pillow, 0.0));
    const double seam = std::max(std::abs(p.x - 0.5), std::abs(p.y - 0.5));
    const double furrow = smoothstep(0.05, 0.0, std::abs(seam - kStitchLine));
    // the thread gathers the cloth
    const double gathers = fractalNoise(p, {5, 5}, {3, 0.5}, 501) * smoothstep(0.0, 0.3, pillow);
    return 0.105 * puff - 0.012 * furrow + 0.012 * stitches(p) + 0.016 * gathers;
}

double dots(Point p) {
    const Point q{frac(p.x * 4.0) - 0.5, frac(p.y * 4.0) - 0.5};
    return smoothstep(0.02, -0.02, length(q) - 0.27);
}

double stripes(Point p) {
    const double wide = std::abs(frac((p.x + p.y) * 4.0) - 0.5);
    const double fine = std::abs(frac((p.x + p.y) * 4.0 + 0.5) - 0.5);
    return std::max(smoothstep(0.17, 0.15, wide), 0.6 * smoothstep(0.05, 0.03, fine));
}

double flowers(Point p) {
    const double row = std::floor(p.y * 4.0);
    const double shift = std::fmod(row, 2.0) * 0.5;
    const Point q{frac(p.x * 4.0 + shift) - 0.5, frac(p.y * 4.0) - 0.5};
    const double angle = std::atan2(q.y, q.x);
    const double petals = 0.29 + 0.11 * std::cos(5.0 * angle);
    const double flower = smoothstep(0.015, -0.015, length(q) - petals);
    const double middle = smoothstep(0.015, -0.015, length(q) - 0.10);
    return flower - 0.55 * middle;
}

double zigzag(Point p) {
    const double wave = std::abs(frac(p.x * 4.0) - 0.5) * 2.0;
    const double band = frac(p.y * 4.0 + 0.55 * wave);
    return smoothstep(0.02, 0.04, band) * smoothstep(0.48, 0.46, band);
}

} // namespace

Picture drawQuilt() { return normals(blurred(drawSmoothly(kSide, kSide, quiltHeight), 1)); }

Picture drawMotifs() {
    return fourFields(drawSmoothly(kSide, kSide, dots), drawSmoothly(kSide, kSide, stripes),
                      drawSmoothly(kSide, kSide, flowers), drawSmoothly(kSide, kSide, zigzag));
}

Picture drawFabric() {
    constexpr int kThreads = 32;
    constexpr int kFabricSide = 256;
    const auto thread = [](Point p) {
        const double x = p.x * kThreads;
        const double y = p.y * kThreads;
        const bool over = (static_cast<int>(std::floor(x)) + static_cast<int>(std::floor(y))) % 2 == 0;
        const double across = over ? frac(x) : frac(y);
        const double along = over ? frac(y) : frac(x);
        return std::sin(across * kTurn * 0.5) * (0.65 + 0.35 * std::sin(along * kTurn * 0.5));
    };
    const Field threads = drawSmoothly(kFabricSide, kFabricSide, thread);
    const Colours colours = mapped(threads, [](double value, int column, int row) {
        const Point p = centreOf(column, row, kFabricSide, kFabricSide);
        const double slub = gradientNoise(p, {3, 48}, 511) + gradientNoise(p, {48, 3}, 512);
        const double shade = 0.78 + 0.16 * value + 0.05 * slub;
        return Colour{shade, shade * 0.985, shade * 0.96};
    });
    return coloured(colours, threads);
}

Picture drawPatches() {
    static const std::array<Colour, 16> kColours{hex(0xc8553d), hex(0x3f6c65), hex(0x4d7ea8), hex(0xe0a458),
                                                 hex(0xf4a6a0), hex(0x7d5a8c), hex(0x8fb8c9), hex(0x588157),
                                                 hex(0xa63d57), hex(0xf2c14e), hex(0xc8d5b9), hex(0x2f6690),
                                                 hex(0xe07a5f), hex(0xf1e3d0), hex(0x3f6c65), hex(0x6a994e)};
    return coloured(draw(256, 1, [](Point p) { return kColours.at(static_cast<std::size_t>(p.x * 16.0)); }));
}

} // namespace patina::textures
