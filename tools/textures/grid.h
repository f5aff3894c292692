// A rectangle of values that goes on for ever: every texture tiles.

#pragma once

#include "shapes.h"

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace patina::textures {

template <typename T>
class Grid {
public:
    Grid(int width, int height)
        : width_(width), height_(height),
          values_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    // Columns count from the left and rows from the top; both wrap around.
    [[nodiscard]] const T& at(int column, int row) const { return values_[index(column, row)]; }
    [[nodiscard]] T& at(int column, int row) { return values_[index(column, row)]; }

private:
    static int wrapped(int i, int count) { return ((i % count) + count) % count; }
    [[nodiscard]] std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(wrapped(row, height_)) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(wrapped(column, width_));
    }

    int width_;
    int height_;
    std::vector<T> values_;
};

using Field = Grid<double>;

// Where the middle of a pixel lies in the texture: u to the right and v upwards, both in 0 to 1.
inline Point centreOf(int column, int row, int width, int height) {
    return {(column + 0.5) / width, 1.0 - (row + 0.5) / height};
}

// Fills a grid with what `paint` makes of the middle of each pixel.
template <typename Paint>
[[nodiscard]] auto draw(int width, int height, const Paint& paint) {
    Grid<std::decay_t<decltype(paint(Point{}))>> grid(width, height);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            grid.at(column, row) = paint(centreOf(column, row, width, height));
        }
    }
    return grid;
}

// The same for numbers with hard edges: each pixel is the mean of 3 by 3 samples.
template <typename Paint>
[[nodiscard]] Field drawSmoothly(int width, int height, const Paint& paint) {
    constexpr int kSamples = 3;
    const auto mean = [&](Point centre) {
        double sum = 0.0;
        for (int i = 0; i < kSamples * kSamples; ++i) {
            const double across = (i % kSamples + 0.5) / kSamples - 0.5;
            const double up = (i / kSamples + 0.5) / kSamples - 0.5;
            sum += paint(Point{centre.x + across / width, centre.y + up / height});
        }
        return sum / (kSamples * kSamples);
    };
    return draw(width, height, mean);
}

// The same grid with each value replaced by what `change` makes of it and of where it is.
template <typename T, typename Change>
[[nodiscard]] auto mapped(const Grid<T>& grid, const Change& change) {
    Grid<std::decay_t<decltype(change(grid.at(0, 0), 0, 0))>> result(grid.width(), grid.height());
    for (int row = 0; row < grid.height(); ++row) {
        for (int column = 0; column < grid.width(); ++column) {
            result.at(column, row) = change(grid.at(column, row), column, row);
        }
    }
    return result;
}

// Smooths with a bell of the given radius in pixels, across the edges.
[[nodiscard]] Field blurred(const Field& field, int radius);

} // namespace patina::textures
