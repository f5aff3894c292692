#pragma once

#include "shadergraph/graph.h"

#include <memory>

namespace patina {

/// The provider of what the framework offers to nodes as interface parameters, all with flags 0:
///
/// | name | type | value |
/// |---|---|---|
/// | "objectPosition" | float3 | the vertex's position in object space |
///
/// What it gives is in the graph, computed once for all nodes that ask. Where a node has submitted the
/// parameter already, it writes to that one, and gives it. Threads: as the graph it serves.
std::shared_ptr<InterfaceProvider> makeFrameworkValues();

} // namespace patina
