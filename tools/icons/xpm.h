// XPM 3 text that a C++ source can include as well as a viewer can read.

#pragma once

#include "raster.h"

#include <string>

namespace patina::icons {

// Two-character icons declare the transparent colour first, with a blank key;
// one-character icons have no transparency and declare white first instead.
// Throws std::runtime_error where the drawing does not suit its key length.
[[nodiscard]] std::string formatXpm(const Raster& raster, const std::string& arrayName, int keyLength);

} // namespace patina::icons
