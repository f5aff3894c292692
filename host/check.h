#pragma once

#include "host/diagnostic.h"
#include "host/document.h"
#include "host/material.h"
#include "host/plugins.h"

#include <filesystem>

namespace patina {

/// Everything that is to be said of a material.
struct CheckReport {
    Errors errors;     ///< what keeps it from being exported, by line
    Warnings warnings; ///< what its author should look at, by line
};

/// Runs the steps of an export on a live material, each with what those before it have, and adds all that
/// they refuse to the errors, in the order of the steps; exportMaterial succeeds exactly where there is
/// nothing. Adds to the warnings which saved bindings no node presents. Threads: as the material, one thread
/// at a time.
void findErrors(Material& material, Errors& errors, Warnings& warnings);

/// Takes a material through the steps of an export, going on where one finds something wrong, and looks for
/// what an export lets pass: inputs without a connection and without a default, nodes that no output needs,
/// bindings that have no name of their own, and saved ones that no node presents. Writes nothing.
/// [thread-safe]
CheckReport checkMaterial(const MaterialDocument& document, const PluginSet& plugins);

/// The same with a file, whose own errors it reports too. [thread-safe]
CheckReport checkFile(const std::filesystem::path& file, const PluginSet& plugins);

} // namespace patina
