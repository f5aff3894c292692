// A supersampled surface that shapes are painted on.

#pragma once

#include "colour.h"
#include "raster.h"
#include "shapes.h"

#include <functional>
#include <vector>

namespace patina::icons {

using Paint = std::function<Colour(Point)>;

inline Paint flat(const Colour& c) {
    return [c](Point) { return c; };
}

// Blends from one colour at height `top` to another at height `bottom`.
inline Paint vertical(const Colour& from, const Colour& to, double top, double bottom) {
    return [=](Point p) { return mix(from, to, std::clamp((p.y - top) / (bottom - top), 0.0, 1.0)); };
}

class Canvas {
public:
    Canvas();

    // Paints the inside of the shape.
    void fill(const Shape& shape, const Paint& paint, double opacity = 1.0);

    // Paints the inside of the shape with an opacity of its own at each point.
    void glaze(const Shape& shape, const Paint& paint, const std::function<double(Point)>& opacity);

    // Paints a band of the given width along the outside of the shape.
    void outline(const Shape& shape, double width, const Paint& paint, double opacity = 1.0);

    // Paints a blurred copy of the shape, displaced away from the light.
    void shadow(const Shape& shape, double drop, double blur, const Colour& colour, double opacity);

    // Lights the inner rim of the shape from the family's light and shades the
    // rim that faces away from it.
    void bevel(const Shape& shape, double width, double highlight, double shade, const Colour& shadeColour);

    // Averages the samples of each pixel. A pixel that is less than half
    // covered becomes transparent; the rest become wholly opaque.
    [[nodiscard]] Raster resolve() const;

private:
    struct Sample {
        Colour colour; // multiplied by cover
        double cover = 0.0;
    };

    static constexpr int kSamples = 16; // along each side of a pixel
    static constexpr int kWidth = kIconSide * kSamples;

    template <typename Brush>
    void paintEach(const Brush& brush);

    std::vector<Sample> samples_;
};

} // namespace patina::icons
