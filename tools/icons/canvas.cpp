#include "canvas.h"

#include <cstddef>

namespace patina::icons {

namespace {

// Towards the light, which stands above the icon and a little to its left.
constexpr Point kLight{-0.3511, -0.9363};

constexpr Colour kWhite{1.0, 1.0, 1.0};

} // namespace

Canvas::Canvas() : samples_(static_cast<std::size_t>(kWidth) * kWidth) {}

// The brush maps a point to how much paint lands there, and calls back for the
// colour only where some does.
template <typename Brush>
void Canvas::paintEach(const Brush& brush) {
    std::size_t index = 0;
    for (int y = 0; y < kWidth; ++y) {
        for (int x = 0; x < kWidth; ++x, ++index) {
            const Point p{(x + 0.5) / kSamples, (y + 0.5) / kSamples};
            Colour colour;
            const double cover = brush(p, colour);
            if (cover <= 0.0) {
                continue;
            }
            Sample& s = samples_[index];
            s.colour = s.colour * (1.0 - cover) + colour * cover;
            s.cover = s.cover * (1.0 - cover) + cover;
        }
    }
}

void Canvas::fill(const Shape& shape, const Paint& paint, double opacity) {
    glaze(shape, paint, [opacity](Point) { return opacity; });
}

void Canvas::glaze(const Shape& shape, const Paint& paint, const std::function<double(Point)>& opacity) {
    paintEach([&](Point p, Colour& colour) {
        if (shape(p) > 0.0) {
            return 0.0;
        }
        colour = paint(p);
        return opacity(p);
    });
}

void Canvas::outline(const Shape& shape, double width, const Paint& paint, double opacity) {
    paintEach([&](Point p, Colour& colour) {
        const double d = shape(p);
        if (d <= 0.0 || d > width) {
            return 0.0;
        }
        colour = paint(p);
        return opacity;
    });
}

void Canvas::shadow(const Shape& shape, double drop, double blur, const Colour& colour, double opacity) {
    const Point away = kLight * -drop;
    paintEach([&](Point p, Colour& into) {
        into = colour;
        return opacity * (1.0 - smoothstep(-blur, blur, shape(p - away)));
    });
}

void Canvas::bevel(const Shape& shape, double width, double highlight, double shade,
                   const Colour& shadeColour) {
    paintEach([&](Point p, Colour& colour) {
        const double d = shape(p);
        if (d > 0.0 || d < -width) {
            return 0.0;
        }
        constexpr double kStep = 0.05;
        const Point normal{shape({p.x + kStep, p.y}) - shape({p.x - kStep, p.y}),
                           shape({p.x, p.y + kStep}) - shape({p.x, p.y - kStep})};
        const double size = length(normal);
        if (size <= 0.0) {
            return 0.0;
        }
        const double facing = dot(normal, kLight) / size;
        const double fade = 1.0 - smoothstep(0.4 * width, width, -d);
        colour = facing > 0.0 ? kWhite : shadeColour;
        return fade * (facing > 0.0 ? highlight * facing : -shade * facing);
    });
}

Raster Canvas::resolve() const {
    Raster raster;
    for (int y = 0; y < kIconSide; ++y) {
        for (int x = 0; x < kIconSide; ++x) {
            Sample sum;
            for (int j = 0; j < kSamples; ++j) {
                for (int i = 0; i < kSamples; ++i) {
                    const int row = y * kSamples + j;
                    const int column = x * kSamples + i;
                    const Sample& s =
                        samples_[static_cast<std::size_t>(row) * kWidth + static_cast<std::size_t>(column)];
                    sum.colour = sum.colour + s.colour;
                    sum.cover += s.cover;
                }
            }
            if (sum.cover >= 0.5 * kSamples * kSamples) {
                raster.at(x, y) = toRgb24(sum.colour * (1.0 / sum.cover));
            }
        }
    }
    return raster;
}

} // namespace patina::icons
