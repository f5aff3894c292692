#pragma once

namespace patina::preview {

// The exact curves between linear light and sRGB. Beyond 1 the upper branch goes on; below 0 the lower one
// does. [thread-safe]

float srgbFromLinear(float linear);
float linearFromSrgb(float srgb);

} // namespace patina::preview
