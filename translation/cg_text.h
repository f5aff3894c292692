#pragma once

#include <string>
#include <string_view>

namespace patina::detail {

/// A Cg program as the front end for HLSL reads it, behind the prelude: semantics that Cg spells otherwise
/// have HLSL's names, and names that HLSL keeps for itself are others (see hlsl_words.h). Every line stays
/// where it is, and is counted from the program's first: `#line` is taken out. [thread-safe]
std::string rewriteForHlsl(std::string_view program);

} // namespace patina::detail
