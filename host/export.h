#pragma once

#include "host/diagnostic.h"
#include "host/files.h"
#include "host/material.h"
#include "host/print.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace patina {

struct ExportOptions {
    PrintOptions print;
};

/// What a material becomes, before anything is written.
struct ExportedMaterial {
    std::string name;
    OutputFile vertexProgram;   ///< NAME.vert.cg
    OutputFile fragmentProgram; ///< NAME.frag.cg
    OutputFile bindings;        ///< NAME.bindings.xml
    std::size_t nodeCount = 0;
    std::size_t connectionCount = 0;
    std::size_t vertexFunctionCount = 0; ///< calls in the vertex program
    std::size_t fragmentFunctionCount = 0;
    std::size_t interpolantCount = 0; ///< registers
    std::size_t bindingCount = 0;
};

/// Resolves, generates, joins, places, names and prints a live material.
/// Throws HostError when any step refuses.
ExportedMaterial exportMaterial(Material& material, const ExportOptions& options = {});

/// Reads a document, exports its material, and writes the three files into a directory, all of them or none.
/// Throws HostError.
ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings,
                                const ExportOptions& options = {});

} // namespace patina
