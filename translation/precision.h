#pragma once

#include "translation/spirv_module.h"

namespace patina::detail {

/// Takes the lower precision from what Cg computes in float: the front end hands that of a variable on to
/// whatever is assigned to it, functions with all that they compute among it. [thread-safe]
void restorePrecision(SpirvModule& module);

} // namespace patina::detail
