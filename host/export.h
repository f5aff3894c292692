#pragma once

#include "host/diagnostic.h"
#include "host/files.h"
#include "host/material.h"
#include "host/print.h"
#include "host/saved_bindings.h"
#include "host/target_programs.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace patina {

// Threads: any number may export at once, each its own material; two that write into one directory write
// different files. A PluginSet may be shared once all plug-ins are added.

/// What an export does beside what it always does.
struct ExportOptions {
    PrintOptions print = {};
    bool json = false;           ///< write the bindings as JSON too
    bool dependencyFile = false; ///< write NAME.d too, for Make and Ninja
    /// The languages of the programs, each at most once; Cg alone when there are none.
    std::vector<ShaderTarget> targets = {};
    const ShaderTranslator* translator = nullptr; ///< what brings them into other languages than Cg
    /// Take the colour as a value, of one to four components, and no other output: the fragment program gives
    /// (x, x, x, 1), (x, y, 0, 1), (x, y, z, 1) or (x, y, z, w). See showOutput.
    bool showValue = false;
};

/// What a material becomes, before anything is written.
struct ExportedMaterial {
    std::string name;
    OutputFile vertexProgram;                  ///< NAME.vert.cg
    OutputFile fragmentProgram;                ///< NAME.frag.cg
    bool lit = false;                          ///< whether the fragment program shades; see Dataflow
    bool writesCg = true;                      ///< whether these two are to be written
    std::vector<TargetProgram> targetPrograms; ///< in the order of the targets, the vertex program first
    OutputFile bindings;                       ///< NAME.bindings.xml
    std::optional<OutputFile> bindingsJson;    ///< NAME.bindings.json, when it was asked for
    std::optional<OutputFile> dependencies;    ///< NAME.d, when it was asked for
    std::size_t nodeCount = 0;
    std::size_t connectionCount = 0;
    std::size_t vertexFunctionCount = 0; ///< calls in the vertex program
    std::size_t fragmentFunctionCount = 0;
    std::size_t interpolantCount = 0; ///< registers
    std::size_t bindingCount = 0;
};

/// Resolves, generates, joins, places, names and prints a live material. Its bindings have what the document
/// saves of them, and then what an artist changed in the bindings file of an earlier export; warns of what of
/// these has no effect. See saved_bindings.h. Throws HostError when any step refuses.
ExportedMaterial exportMaterial(Material& material, Warnings& warnings, const ExportOptions& options = {},
                                const SavedBindings& saved = {});

/// Reads a document and exports its material, as for a directory, into which nothing is written yet. What an
/// artist changed in the bindings file that is there already is carried over. Throws HostError.
ExportedMaterial prepareExport(const std::filesystem::path& document, const std::filesystem::path& directory,
                               const PluginSet& plugins, Warnings& warnings,
                               const ExportOptions& options = {});

/// Writes what was prepared into the directory, all files or none, and gives the number of files that
/// changed; see writeFiles. Throws HostError.
std::size_t writeExport(const ExportedMaterial& exported, const std::filesystem::path& directory);

/// prepareExport and writeExport in one.
ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings,
                                const ExportOptions& options = {});

} // namespace patina
