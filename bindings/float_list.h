#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace patina::detail {

// Numbers as annotations carry them, whatever the locale of the process. [thread-safe]

/// The number at the start of `text`, read as sscanf reads "%f" in the "C" locale: leading blanks, a sign,
/// decimal and hexadecimal floats, "inf", "infinity" and "nan" in any case; what follows the number is
/// ignored. A number too large for a float gives an infinity, one too small a zero. Empty when there is no
/// number.
std::optional<float> parseLeadingFloat(std::string_view text);

/// The numbers between commas; empty pieces are dropped. Empty when any other piece does not start with a
/// number.
std::optional<std::vector<float>> parseFloatList(std::string_view text);

} // namespace patina::detail
