#pragma once

#include "translation/spirv_module.h"

#include <vector>

namespace patina::detail {

/// A module with its places in a target. Throws TranslationError when the target cannot express it.
/// [thread-safe]
TranslatedProgram writeTarget(ProgramStage stage, const SpirvModule& module,
                              const std::vector<SpirvParameter>& parameters, const ShaderTarget& target);

} // namespace patina::detail
