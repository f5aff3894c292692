#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace patina {

/// What is wrong with an XPM 3 image held as strings; empty when nothing is. `size` is the width and height
/// that it must have. The array must be as long as its first string says: its length cannot be seen.
/// [thread-safe]
std::vector<std::string> xpmFaults(const char* const* image, std::size_t size);

} // namespace patina
