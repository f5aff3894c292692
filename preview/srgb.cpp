#include "preview/srgb.h"

#include <cmath>

namespace patina::preview {

float srgbFromLinear(float linear) {
    return linear <= 0.0031308F ? 12.92F * linear : 1.055F * std::pow(linear, 1.0F / 2.4F) - 0.055F;
}

float linearFromSrgb(float srgb) {
    return srgb <= 0.04045F ? srgb / 12.92F : std::pow((srgb + 0.055F) / 1.055F, 2.4F);
}

} // namespace patina::preview
