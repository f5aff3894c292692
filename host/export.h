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
    bool dependencyFile = false; ///< write NAME.d too, for Make and Ninja
};

/// What a material becomes, before anything is written.
struct ExportedMaterial {
    std::string name;
    OutputFile vertexProgram;   ///< NAME.vert.cg
    OutputFile fragmentProgram; ///< NAME.frag.cg
    OutputFile bindings;        ///< NAME.bindings.xml
    OutputFile dependencies;    ///< NAME.d; without a name when it was not asked for
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

/// Reads a document and exports its material, as for a directory, into which nothing is written yet.
/// Throws HostError.
ExportedMaterial prepareExport(const std::filesystem::path& document, const std::filesystem::path& directory,
                               const PluginSet& plugins, Warnings& warnings,
                               const ExportOptions& options = {});

/// Writes what was prepared into the directory, all files or none; see writeFiles. Throws HostError.
std::size_t writeExport(const ExportedMaterial& exported, const std::filesystem::path& directory);

/// prepareExport and writeExport in one.
ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings,
                                const ExportOptions& options = {});

} // namespace patina
