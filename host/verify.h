#pragma once

#include "host/dataflow.h"
#include "host/material.h"

namespace patina {

/// Refuses generated code that no compiler takes, while it is known whose code it is: ports of functions with
/// names that are reserved in Cg or by the shader framework, and the constants `inf` and `nan`, which come of
/// a division by a setting that is zero. Throws HostError, naming the node; with `errors`, puts one there for
/// each such node. Threads: as the material, one thread at a time.
void verifyCode(const Material& material, const Dataflow& flow, Errors* errors = nullptr);

} // namespace patina
