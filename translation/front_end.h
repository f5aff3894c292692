#pragma once

#include "host/translation.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace patina::detail {

/// A Cg program as a SPIR-V module with one entry point, "main". Functions, and the names of everything, are
/// those of the program; no pass rearranges its arithmetic. Throws TranslationError when it does not compile.
/// [thread-safe]
std::vector<std::uint32_t> compileCg(ProgramStage stage, std::string_view program);

} // namespace patina::detail
