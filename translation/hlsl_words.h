#pragma once

#include <string>
#include <string_view>

namespace patina::detail {

// Words that HLSL keeps for itself and Cg does not, so that a Cg program may name something by one.
// [thread-safe]

bool isHlslWord(std::string_view name);

/// Definitions for the preprocessor that give each such word in a program another name.
std::string renameHlslWords(std::string_view program);

/// The name in the Cg program, given that behind the preprocessor.
std::string nameInCg(std::string_view name);

} // namespace patina::detail
