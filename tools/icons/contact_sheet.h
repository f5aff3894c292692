// One picture of all the icons, to judge them as a family.

#pragma once

#include "raster.h"

#include <string>
#include <vector>

namespace patina::icons {

// Shows each icon enlarged, with itself at its own size beneath it on a dark,
// the middle and a light ground. Throws std::runtime_error where the PNG cannot
// be written.
void writeContactSheet(const std::vector<Raster>& icons, const std::string& path);

} // namespace patina::icons
