#include "noise.h"

#include <array>
#include <cstddef>

namespace patina::textures {

namespace {

constexpr double kHashRange = 4294967296.0;

std::uint32_t scrambled(std::uint32_t bits) {
    bits ^= bits >> 16U;
    bits *= 0x7feb352dU;
    bits ^= bits >> 15U;
    bits *= 0x846ca68bU;
    bits ^= bits >> 16U;
    return bits;
}

std::uint32_t wrapped(int i, int count) { return static_cast<std::uint32_t>(((i % count) + count) % count); }

std::uint32_t hash(const Lattice& lattice, int column, int row, int layer, std::uint32_t seed) {
    std::uint32_t bits = scrambled(seed + 0x9e3779b9U);
    bits = scrambled(bits ^ wrapped(column, lattice.columns));
    bits = scrambled(bits ^ (wrapped(row, lattice.rows) + 0x68bc21ebU));
    return scrambled(bits ^ (wrapped(layer, lattice.layers) + 0x02e5be93U));
}

struct Corner {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

// The slope at a lattice point: one of the twelve edges of a cube.
double slopeAlong(std::uint32_t bits, const Corner& way) {
    const double first = (bits & 1U) != 0 ? 1.0 : -1.0;
    const double second = (bits & 2U) != 0 ? 1.0 : -1.0;
    switch ((bits >> 2U) % 3U) {
    case 0:
        return first * way.x + second * way.y;
    case 1:
        return first * way.x + second * way.z;
    default:
        return first * way.y + second * way.z;
    }
}

double eased(double t) { return t * t * t * (t * (t * 6.0 - 15.0) + 10.0); }

} // namespace

double random(const Lattice& lattice, int column, int row, int layer, std::uint32_t seed) {
    return hash(lattice, column, row, layer, seed) / kHashRange;
}

double gradientNoise(Point p, const Lattice& lattice, std::uint32_t seed, double time) {
    const Corner at{p.x * lattice.columns, p.y * lattice.rows, time * lattice.layers};
    const std::array<int, 3> base{static_cast<int>(std::floor(at.x)), static_cast<int>(std::floor(at.y)),
                                  static_cast<int>(std::floor(at.z))};
    const Corner inside{at.x - base[0], at.y - base[1], at.z - base[2]};
    double sum = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        const int right = corner & 1;
        const int up = (corner >> 1) & 1;
        const int later = (corner >> 2) & 1;
        const double weight = eased(right != 0 ? inside.x : 1.0 - inside.x) *
                              eased(up != 0 ? inside.y : 1.0 - inside.y) *
                              eased(later != 0 ? inside.z : 1.0 - inside.z);
        const std::uint32_t bits = hash(lattice, base[0] + right, base[1] + up, base[2] + later, seed);
        sum += weight * slopeAlong(bits, {inside.x - right, inside.y - up, inside.z - later});
    }
    return sum;
}

double fractalNoise(Point p, Lattice lattice, const Octaves& octaves, std::uint32_t seed, double time) {
    double sum = 0.0;
    double weights = 0.0;
    double weight = 1.0;
    for (int i = 0; i < octaves.count; ++i) {
        sum += weight * gradientNoise(p, lattice, seed + static_cast<std::uint32_t>(i), time);
        weights += weight;
        weight *= octaves.gain;
        lattice = {lattice.columns * 2, lattice.rows * 2, lattice.layers * 2};
    }
    return sum / weights;
}

Neighbours cellularNoise(Point p, const Lattice& lattice, double jitter, std::uint32_t seed) {
    const Point at{p.x * lattice.columns, p.y * lattice.rows};
    const int column = static_cast<int>(std::floor(at.x));
    const int row = static_cast<int>(std::floor(at.y));
    Neighbours found{8.0, 8.0, {}, 0.0};
    for (int neighbour = 0; neighbour < 25; ++neighbour) {
        const int x = column + neighbour % 5 - 2;
        const int y = row + neighbour / 5 - 2;
        const Point centre{x + 0.5 + jitter * (random(lattice, x, y, 0, seed) - 0.5),
                           y + 0.5 + jitter * (random(lattice, x, y, 0, seed + 1) - 0.5)};
        const double distance = length(centre - at);
        if (distance < found.nearest) {
            found = {distance, found.nearest, centre - at, random(lattice, x, y, 0, seed + 2)};
        } else if (distance < found.second) {
            found.second = distance;
        }
    }
    return found;
}

} // namespace patina::textures
