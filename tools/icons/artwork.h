// The drawings themselves, at full colour.

#pragma once

#include "raster.h"

namespace patina::icons {

[[nodiscard]] Raster drawVertexColour();
[[nodiscard]] Raster drawUv();
[[nodiscard]] Raster drawTexture();
[[nodiscard]] Raster drawConstant();
[[nodiscard]] Raster drawMaths();
[[nodiscard]] Raster drawSwizzle();

// Opaque throughout, and already down to its few flat colours.
[[nodiscard]] Raster drawLayerBlend();

} // namespace patina::icons
