#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace patina::detail {

// Text building for messages and generated code. Nothing here looks at the locale of the process.
// [thread-safe]

/// The pieces one after another. A message is written as its fixed pieces and the names between them:
/// `joinText({"cannot create \"", typeName, "\" node"})`.
std::string joinText(std::initializer_list<std::string_view> pieces);

/// Appends the pieces one after another to `text`.
void appendText(std::string& text, std::initializer_list<std::string_view> pieces);

/// A number as a standard stream with default settings prints it in the "C" locale: general notation with six
/// significant digits, so 1.0 gives "1", 0.1 gives "0.1" and 1234567 gives "1.23457e+06".
std::string formatFloat(float value);

/// Appends such a number.
void appendFloat(std::string& text, float value);

} // namespace patina::detail
