#pragma once

#include "host/material.h"
#include "shadergraph/graph_generator.h"

#include <cstddef>
#include <vector>

namespace patina {

/// The shader graph of a material. Its nodes are made by plug-ins: it must not outlive the material.
struct GeneratedGraph {
    GraphGenerator generator;
    std::vector<std::size_t> owners; ///< for each node of the graph, the item that emitted it
    std::vector<bool> incomplete;    ///< for each item, whether some of its code is missing
};

/// Has every node of a resolved material emit its code, in document order.
/// Throws HostError, naming the node, when one cannot: first of all for a placeholder. With `errors`, goes on
/// with the next node and puts them there; the graph is incomplete then.
/// Threads: as the material, one thread at a time.
GeneratedGraph generateGraph(const Material& material, Errors* errors = nullptr);

} // namespace patina
