#pragma once

#include "host/dataflow.h"
#include "host/material.h"
#include "host/print.h"

namespace patina {

/// Takes a resolved material through the steps from its nodes' code to what is printed: generates the code,
/// joins and verifies it, places it in stages, names it and gives its parameters registers. Throws HostError
/// when any of them refuses. The shader refers to the material, which must outlive it.
/// Threads: as the material, one thread at a time.
AssembledShader assembleShader(const Material& material, const PrintOptions& options = {},
                               ColourWidth colourWidth = ColourWidth::OneOrThree);

} // namespace patina
