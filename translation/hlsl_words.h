#pragma once

#include <string>
#include <string_view>

namespace patina::detail {

// Words that HLSL keeps for itself and Cg does not, so that a Cg program may name something by one.
// [thread-safe]

bool isHlslWord(std::string_view name);

/// Whether a name of a Cg program would be no plain name to the front end that reads it as HLSL: such a word,
/// or one that the front end itself knows.
bool meansMoreInHlsl(std::string_view name);

/// What such a name is in a program that is read as HLSL.
std::string nameInHlsl(std::string_view name);

/// The name in the Cg program, given that in the program that is read as HLSL.
std::string nameInCg(std::string_view name);

} // namespace patina::detail
