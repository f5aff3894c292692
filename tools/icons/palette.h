// Reduction of a drawing to an exact number of colours.

#pragma once

#include "raster.h"

#include <cstddef>

namespace patina::icons {

// How many distinct colours the opaque pixels show.
[[nodiscard]] std::size_t countColours(const Raster& raster);

// Merges the opaque colours, the least visible difference first, until exactly
// `wanted` are left. Every colour that is left is distinct and shown by some
// pixel. Throws std::runtime_error where the drawing has fewer to begin with.
void reduceColours(Raster& raster, std::size_t wanted);

} // namespace patina::icons
