#include "artwork.h"
#include "noise.h"

#include <array>

namespace patina::textures {

namespace {

constexpr int kFrames = 4; // along each side
constexpr int kSide = 512;

// The heat at a point of one frame, x from -1 to 1 and y from 0 at the bottom to 1. A round of frames ends
// where it began: the noise rises by whole periods of its lattice.
double heat(Point p, double time) {
    const auto rising = [&](double drawnOut, double speed, const Lattice& lattice, const Octaves& octaves,
                            std::uint32_t seed) {
        return fractalNoise({p.x * 0.5 + 0.5, p.y * drawnOut - speed * time}, lattice, octaves, seed, time);
    };
    // the flame sways as a whole, curls, and parts into tongues, each the more the higher it gets
    const double sway = rising(0.5, 1.0, {2, 2, 2}, {1, 0.5}, 201);
    const double curl = rising(0.8, 1.0, {5, 4, 2}, {3, 0.45}, 202);
    const double tongues = rising(0.45, 1.0, {5, 3, 2}, {2, 0.5}, 203);
    const double x = p.x + 0.45 * sway * p.y + 0.55 * curl * (0.12 + p.y * std::sqrt(p.y));
    // a drop: round at the bottom and drawn to a point
    const double belly = std::sqrt(ramp(0.0, 0.30, p.y)) * (1.0 - 0.95 * p.y);
    const double across = x / std::max(0.92 * belly, 0.001);
    const double body = 1.0 - across * across;
    const double fuel = 0.95 * body + 1.1 * tongues * (0.15 + p.y) - 0.50 * p.y + 0.05;
    const double ends =
        smoothstep(0.0, 0.10, p.y) * smoothstep(1.0, 0.85, p.y) * smoothstep(0.98, 0.80, std::abs(p.x));
    return saturate(fuel) * ends;
}

} // namespace

Picture drawFlames() {
    return grey(drawSmoothly(kSide, kSide, [](Point p) {
        const double frame = std::floor(p.x * kFrames) + kFrames * std::floor(p.y * kFrames);
        const double time = frame / (kFrames * kFrames);
        return heat({frac(p.x * kFrames) * 2.0 - 1.0, frac(p.y * kFrames)}, time);
    }));
}

Picture drawFireRamp() {
    struct Stop {
        double heat;
        Colour colour;
    };
    static const std::array<Stop, 7> kStops{{{0.00, hex(0x000000)},
                                             {0.10, hex(0x6a1204)},
                                             {0.28, hex(0xb92a06)},
                                             {0.50, hex(0xf0600a)},
                                             {0.70, hex(0xffa820)},
                                             {0.88, hex(0xffe27a)},
                                             {1.00, hex(0xfffbe8)}}};
    return coloured(draw(256, 1, [](Point p) {
        for (std::size_t i = 1; i < kStops.size(); ++i) {
            const Stop& from = kStops.at(i - 1);
            const Stop& to = kStops.at(i);
            if (p.x <= to.heat) {
                return mix(from.colour, to.colour, ramp(from.heat, to.heat, p.x));
            }
        }
        return kStops.back().colour;
    }));
}

} // namespace patina::textures
