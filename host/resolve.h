#pragma once

#include "host/material.h"

namespace patina {

/// Resolves the ports of a whole material: component counts from sources to destinations, then precisions
/// from destinations back to sources. What an earlier resolution found is forgotten first.
///
/// Throws HostError when the inputs of a node have different widths, naming both sources. With `errors`, goes
/// on with the next node, puts them there, and marks the node as faulty.
/// Threads: as the material, one thread at a time.
void resolveMaterial(Material& material, Errors* errors = nullptr);

} // namespace patina
