#pragma once

#include "host/document.h"

#include <string>

namespace patina {

/// The document of a material that shows one value of another: an output of a node, by its port's name or,
/// when that is empty, the node's first one. It has a single output, "colour", which is that port; of the
/// nodes, connections and saved bindings it keeps what that port depends on, by connections and by
/// references. So a value can be shown while other parts of the material are broken or unfinished.
///
/// To be exported with ExportOptions::showValue, which takes a colour of any width. What no longer reads a
/// value no longer asks precision of it: it is half unless what is kept asks for more. A node that hands
/// others a value as an interface parameter, and neither feeds the port nor is referred to, is left out.
///
/// Throws HostError when there is no such node. buildMaterial throws it when the node has no such port, and
/// lists those that it has. [thread-safe]
MaterialDocument showOutput(MaterialDocument document, const std::string& nodeId, const std::string& port);

} // namespace patina
