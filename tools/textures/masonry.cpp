#include "artwork.h"
#include "noise.h"

namespace patina::textures {

namespace {

constexpr int kSide = 512;
constexpr int kMossSide = 512;
constexpr int kAcross = 4; // bricks in a course
constexpr int kCourses = 8;
constexpr Lattice kWall{kAcross, kCourses};

struct Brick {
    Point inside;          // from the brick's middle, in texture widths
    double edge = 0.0;     // how far inside the edge, in texture widths; negative in the mortar
    double identity = 0.0; // 0 to 1
    double other = 0.0;    // another such number
};

// Running bond, with edges that no mould made.
Brick brickAt(Point p) {
    const Point worn{p.x + 0.0035 * fractalNoise(p, {14, 14}, {3, 0.6}, 101),
                     p.y + 0.0035 * fractalNoise(p, {14, 14}, {3, 0.6}, 102)};
    const double y = worn.y * kCourses;
    const int course = static_cast<int>(std::floor(y));
    const double x = worn.x * kAcross + ((course % 2 != 0) ? 0.5 : 0.0);
    const int column = static_cast<int>(std::floor(x));
    const double lift = random(kWall, column, course, 1, 103) - 0.5;
    const Point inside{(x - column - 0.5) / kAcross, (y - course - 0.5) / kCourses + 0.003 * lift};
    const Point half{0.5 / kAcross - 0.0078, 0.5 / kCourses - 0.0078};
    const double chipped = 0.016 * smoothstep(0.12, 0.5, fractalNoise(p, {17, 17}, {3, 0.5}, 106));
    return {inside, -roundedBox(inside, half, 0.012) - chipped, random(kWall, column, course, 0, 104),
            random(kWall, column, course, 0, 105)};
}

// Pits and lost corners.
double damage(Point p) {
    const Neighbours pits = cellularNoise(p, {34, 34}, 1.0, 111);
    const double pit = smoothstep(0.30, 0.05, pits.nearest) * (pits.identity > 0.62 ? 1.0 : 0.0);
    return pit + 1.2 * smoothstep(0.18, 0.55, fractalNoise(p, {9, 9}, {4, 0.6}, 113));
}

// 0 deep in the mortar to 1 on the face of the proudest brick.
double height(Point p) {
    const Brick brick = brickAt(p);
    const double mortar = 0.16 + 0.10 * fractalNoise(p, {40, 40}, {3, 0.6}, 121);
    const double face =
        0.80 + 0.14 * brick.identity + 0.07 * fractalNoise(p, {20, 20}, {4, 0.6}, 122) - 0.16 * damage(p);
    return saturate(mix(mortar, face, smoothstep(-0.001, 0.011, brick.edge)));
}

Colour fired(const Brick& brick, Point p) {
    constexpr Colour kClay{0.60, 0.29, 0.20};
    constexpr Colour kPale{0.70, 0.43, 0.31};
    constexpr Colour kBurnt{0.36, 0.20, 0.18};
    constexpr Colour kOchre{0.68, 0.40, 0.23};
    Colour colour = brick.identity < 0.45 ? mix(kClay, kPale, brick.identity / 0.45)
                                          : mix(kClay, kOchre, (brick.identity - 0.45) / 0.55);
    if (brick.other > 0.80) {
        colour = mix(colour, kBurnt, 0.75);
    }
    const double kiln = fractalNoise(p, {7, 7}, {4, 0.55}, 131);
    return mix(colour, kBurnt, smoothstep(0.1, 0.7, kiln) * 0.55) * (0.90 + 0.16 * brick.other);
}

Colour wall(Point p) {
    constexpr Colour kMortar{0.66, 0.62, 0.56};
    const Brick brick = brickAt(p);
    const double grain = fractalNoise(p, {48, 48}, {2, 0.6}, 141);
    const double lime = smoothstep(0.22, 0.6, fractalNoise(p, {6, 6}, {5, 0.55}, 142));
    const Colour face = mix(fired(brick, p), Colour{0.80, 0.76, 0.71}, 0.35 * lime) * (1.0 + 0.16 * grain);
    const Colour mortar = kMortar * (0.92 + 0.18 * grain);
    return mix(mortar, face, smoothstep(0.000, 0.005, brick.edge));
}

// Cushions of stems: each is a dome, roughened by the tips of its leaves.
Neighbours cushion(Point p) {
    const Point swayed{p.x + 0.012 * fractalNoise(p, {16, 16}, {2, 0.5}, 154),
                       p.y + 0.012 * fractalNoise(p, {16, 16}, {2, 0.5}, 155)};
    return cellularNoise(swayed, {21, 21}, 1.0, 151);
}

double mossHeight(Point p) {
    const Neighbours moss = cushion(p);
    const double dome = std::sqrt(saturate(1.0 - 1.1 * moss.nearest * moss.nearest));
    const double leaves = cellularNoise(p, {96, 96}, 1.0, 156).nearest;
    const double clump = 0.5 + 0.5 * fractalNoise(p, {5, 5}, {3, 0.5}, 153);
    return saturate(0.62 * dome * (0.7 + 0.5 * clump) + 0.34 * (1.0 - leaves));
}

} // namespace

Picture drawBrick() {
    const Field heights = drawSmoothly(kSide, kSide, height);
    const Field around = blurred(heights, 10);
    const Colours colours = mapped(heights, [&](double value, int column, int row) {
        const double hollow = saturate((around.at(column, row) - value) * 1.6);
        return wall(centreOf(column, row, kSide, kSide)) * (1.0 - 0.55 * hollow);
    });
    return coloured(colours, heights);
}

Picture drawBrickNormal() {
    const Field heights = drawSmoothly(kSide, kSide, height);
    return normals(mapped(blurred(heights, 1), [](double value, int, int) { return 0.014 * value; }));
}

Picture drawMoss() {
    constexpr Colour kDeep{0.11, 0.16, 0.06};
    constexpr Colour kFresh{0.42, 0.48, 0.15};
    constexpr Colour kDry{0.47, 0.41, 0.19};
    const Field heights = drawSmoothly(kMossSide, kMossSide, mossHeight);
    const Colours colours = mapped(heights, [&](double value, int column, int row) {
        const Point p = centreOf(column, row, kMossSide, kMossSide);
        const double dry = smoothstep(0.0, 0.5, fractalNoise(p, {4, 4}, {4, 0.5}, 161));
        const double own = cushion(p).identity;
        return mix(kDeep, mix(kFresh, kDry, 0.7 * dry) * (0.82 + 0.28 * own), smoothstep(0.25, 0.95, value));
    });
    return coloured(colours, heights);
}

Picture drawMossNormal() {
    const Field heights = drawSmoothly(kMossSide, kMossSide, mossHeight);
    return normals(mapped(heights, [](double value, int, int) { return 0.012 * value; }));
}

} // namespace patina::textures
