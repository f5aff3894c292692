#pragma once

#include <string>
#include <string_view>

namespace patina {

/// The SHA-256 of bytes, in lower-case hexadecimal. [thread-safe]
std::string sha256Text(std::string_view bytes);

} // namespace patina
