#pragma once

#include "host/diagnostic.h"
#include "host/document.h"
#include "host/plugins.h"
#include "preview/preview.h"

#include <string>

namespace patina::tool {

/// A PNG file of a material's graph in which each node shows what its first output gives, and the result the
/// material, all drawn as `options` say but for their size and background, after that many seconds. A node
/// without an output has no picture; one whose value cannot be shown has none and is an error, as it is that
/// the material cannot be shown. Throws HostError when the document is no material, and where Graphviz is
/// missing.
std::string drawContactSheet(const MaterialDocument& document, const PluginSet& plugins,
                             const PreviewOptions& options, double seconds, Warnings& warnings,
                             Errors& errors);

} // namespace patina::tool
