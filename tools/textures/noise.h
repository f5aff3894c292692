// Noise that tiles: each is defined on a lattice of so many columns and rows to the texture, and goes around
// at its edges. Lattice points are hashed with integers, so that every compiler draws the same.

#pragma once

#include "shapes.h"

#include <cstdint>

namespace patina::textures {

struct Lattice {
    int columns = 1;
    int rows = 1;
    int layers = 1; // for noise that changes with time
};

// A number in 0 to 1 for a lattice point, which is taken modulo the lattice.
[[nodiscard]] double random(const Lattice& lattice, int column, int row, int layer, std::uint32_t seed);

// Gradient noise in -1 to 1 at a point of the texture and, where the lattice has layers, a time in 0 to 1.
[[nodiscard]] double gradientNoise(Point p, const Lattice& lattice, std::uint32_t seed, double time = 0.0);

// Octaves of gradient noise, each twice as fine as the one before and `gain` times as strong; in -1 to 1.
struct Octaves {
    int count = 4;
    double gain = 0.5;
};
[[nodiscard]] double fractalNoise(Point p, Lattice lattice, const Octaves& octaves, std::uint32_t seed,
                                  double time = 0.0);

// One point strewn into each cell of the lattice: the distances to the nearest and the second nearest, in
// cells, the way to the nearest, and a number in 0 to 1 that is its own.
struct Neighbours {
    double nearest = 0.0;
    double second = 0.0;
    Point offset;
    double identity = 0.0;
};
[[nodiscard]] Neighbours cellularNoise(Point p, const Lattice& lattice, double jitter, std::uint32_t seed);

} // namespace patina::textures
