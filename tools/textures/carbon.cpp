#include "artwork.h"
#include "noise.h"

namespace patina::textures {

namespace {

constexpr int kSide = 256;
constexpr int kTows = 8; // bundles of fibres along each side
constexpr int kFibres = 11;

struct Tow {
    bool upright = false; // it runs up the texture here, over the other
    Point inside;         // from the middle of its float: along it, -1 to 1, and across it, -1 to 1
    double identity = 0.0;
};

// Two by two twill: each bundle goes over two and under two, one further along in each row.
Tow towAt(Point p) {
    const double x = p.x * kTows;
    const double y = p.y * kTows;
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const int step = (((column + row) % 4) + 4) % 4;
    const bool upright = step < 2;
    const Lattice lattice{kTows, kTows};
    if (upright) {
        // over rows until column + row leaves 0 and 1
        return {true, {(y - row + step) - 1.0, 2.0 * (x - column) - 1.0}, random(lattice, column, 0, 0, 401)};
    }
    return {false, {(x - column + step - 2) - 1.0, 2.0 * (y - row) - 1.0}, random(lattice, 0, row, 0, 402)};
}

double height(Point p) {
    const Tow tow = towAt(p);
    const double arch = 1.0 - 0.75 * tow.inside.x * tow.inside.x;
    const double round = std::sqrt(saturate(1.0 - 0.92 * tow.inside.y * tow.inside.y));
    return arch * round;
}

double fibres(const Tow& tow, Point p) {
    const double across = (tow.inside.y * 0.5 + 0.5) * kFibres;
    const double strand = 0.5 - 0.5 * std::cos(across * 6.283185307179586);
    const Lattice grain = tow.upright ? Lattice{96, 6} : Lattice{6, 96};
    return 0.5 + 0.25 * (strand - 0.5) + 0.28 * gradientNoise(p, grain, 411);
}

} // namespace

Picture drawWeave() {
    const auto sheen = [](Point p) {
        const Tow tow = towAt(p);
        const double edge = smoothstep(1.0, 0.72, std::abs(tow.inside.y));
        return saturate((0.35 + 0.5 * fibres(tow, p) + 0.12 * (tow.identity - 0.5)) * (0.25 + 0.75 * edge));
    };
    const auto upright = [](Point p) { return towAt(p).upright ? 1.0 : 0.0; };
    const Field red = drawSmoothly(kSide, kSide, sheen);
    const Field green = drawSmoothly(kSide, kSide, height);
    const Field blue = drawSmoothly(kSide, kSide, upright);
    return coloured(mapped(red, [&](double value, int column, int row) {
        return Colour{value, green.at(column, row), blue.at(column, row)};
    }));
}

Picture drawWeaveNormal() {
    const Field heights = drawSmoothly(kSide, kSide, [](Point p) { return 0.020 * height(p); });
    return normals(blurred(heights, 1));
}

} // namespace patina::textures
