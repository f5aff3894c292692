#include "artwork.h"
#include "noise.h"

namespace patina::textures {

namespace {

constexpr int kSide = 512;

// How firmly the paint holds: most of it does, and it lets go in a few ragged flakes.
double hold(Point p) {
    const double broad = fractalNoise(p, {5, 5}, {5, 0.55}, 11);
    const double ragged = fractalNoise(p, {24, 24}, {3, 0.6}, 23);
    const double flakes = smoothstep(-0.36, -0.25, broad + 0.30 * ragged);
    const double firmness = 0.62 + 0.55 * broad + 0.35 * ragged;
    return flakes * std::clamp(firmness, 0.25, 1.0);
}

// The fine waves that sprayed paint dries with.
double orangePeel(Point p) { return gradientNoise(p, {40, 40}, 31) + 0.5 * gradientNoise(p, {70, 70}, 32); }

double grime(Point p) {
    const double stains = fractalNoise(p, {4, 4}, {5, 0.5}, 41);
    const double streaks = fractalNoise(p, {26, 3}, {3, 0.5}, 42);
    return smoothstep(0.0, 0.75, 0.5 * stains + 0.6 * streaks + 0.12);
}

} // namespace

Picture drawPaint() {
    constexpr Colour kFresh{0.85, 0.84, 0.83};
    constexpr Colour kDirty{0.62, 0.56, 0.50};
    constexpr Colour kRust{0.50, 0.34, 0.23};
    const Field alpha = drawSmoothly(kSide, kSide, hold);
    const Field around = blurred(alpha, 9);
    const Colours colours = mapped(around, [&](double holding, int column, int row) {
        const Point p = centreOf(column, row, kSide, kSide);
        const double rusty = smoothstep(0.50, 0.12, holding);
        const double fading = 0.5 + 0.5 * fractalNoise(p, {3, 3}, {3, 0.5}, 51);
        return mix(mix(kFresh * (0.94 + 0.08 * fading), kDirty, 0.6 * grime(p)), kRust, 0.8 * rusty);
    });
    return coloured(colours, alpha);
}

Picture drawBumps() {
    const Field height = drawSmoothly(kSide, kSide, [](Point p) {
        const double film = smoothstep(0.05, 0.30, hold(p));
        const double dents = fractalNoise(p, {4, 4}, {2, 0.4}, 61);
        return 0.0035 * film + 0.00012 * orangePeel(p) * film + 0.004 * dents;
    });
    return normalsInAlphaAndGreen(blurred(height, 1));
}

Picture drawRain() {
    constexpr int kFrames = 4; // along each side
    return grey(drawSmoothly(kSide, kSide, [](Point p) {
        const double frame = std::floor(p.x * kFrames) + kFrames * std::floor(p.y * kFrames);
        const double time = frame / (kFrames * kFrames);
        const Point inside{frac(p.x * kFrames), frac(p.y * kFrames)};
        // rivulets wander from side to side on their way, and what runs down them does so once in a round
        const Point bent{inside.x + 0.035 * gradientNoise(inside, {3, 4}, 71), inside.y};
        const double rivulets = smoothstep(0.12, 0.45,
                                           gradientNoise({bent.x, bent.y * 0.0}, {12, 1}, 72) +
                                               0.35 * gradientNoise(bent, {8, 3}, 73));
        const double flow = 0.5 + 0.5 * fractalNoise({bent.x, bent.y + time}, {14, 3}, {3, 0.5}, 74);
        const double film =
            smoothstep(-0.2, 0.5, fractalNoise({inside.x, inside.y + time}, {5, 2}, {3, 0.5}, 75));
        return saturate(rivulets * (0.45 + 0.75 * flow) + 0.30 * film);
    }));
}

} // namespace patina::textures
