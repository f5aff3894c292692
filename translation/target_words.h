#pragma once

#include "host/translation.h"

#include <string>
#include <string_view>

namespace patina::detail {

// Names of Cg in other languages. [thread-safe]

/// Whether a language, or the back end that writes it, has a name for itself.
bool isTargetWord(TargetLanguage language, std::string_view name);

/// What a name of Cg is in a language: the name itself, or another for one that the language has. It depends
/// on nothing else, so that it is the same in both programs of a material, and two names stay two.
std::string nameInTarget(TargetLanguage language, std::string_view name);

} // namespace patina::detail
