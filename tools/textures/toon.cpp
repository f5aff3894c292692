#include "artwork.h"
#include "noise.h"

namespace patina::textures {

Picture drawToonRamp() {
    // three flat tones with a soft edge between them, cool in the shade
    const Colour shade = hex(0x6d73a8);
    const Colour middle = hex(0xc2b4c8);
    const Colour light = hex(0xfffaf0);
    return coloured(draw(256, 1, [&](Point p) {
        const Colour dark = mix(shade, middle, smoothstep(0.385, 0.405, p.x));
        return mix(dark, light, smoothstep(0.615, 0.635, p.x));
    }));
}

Picture drawHatching() {
    constexpr int kSide = 256;
    constexpr int kStrokes = 10;
    // The light below which a place is inked. Strokes run diagonally, swell and thin, and every other one
    // begins later.
    return grey(drawSmoothly(kSide, kSide, [](Point p) {
        const double wobble = 0.10 * gradientNoise(p, {6, 6}, 301) + 0.05 * gradientNoise(p, {14, 14}, 302);
        const double across = (p.x + p.y) * kStrokes + wobble;
        const int stroke = static_cast<int>(std::floor(across));
        const double from = std::abs(frac(across) - 0.5) * 2.0; // 0 on the stroke, 1 between two
        const double pressure = 0.10 * gradientNoise(p, {5, 5}, 303);
        const double late = (stroke % 2 != 0) ? 0.34 : 0.0;
        return saturate(1.0 - from * 0.9 - late + pressure);
    }));
}

} // namespace patina::textures
