#pragma once

#include "bindings/bindings.h"
#include "host/artist_values.h"
#include "host/files.h"
#include "host/material.h"
#include "host/registers.h"
#include "host/target_programs.h"

#include <memory>
#include <string>
#include <vector>

namespace patina {

// Threads: as the material and its bindings, one thread at a time.

/// The stages as a bindings file names them.
inline constexpr const char* vertexStageName = "vertex";
inline constexpr const char* fragmentStageName = "fragment";

/// What stands before an artist's key where a bindings file says what the graph set.
inline constexpr const char* exportedPrefix = "exported_";

/// What a bindings file says of a program.
struct ExportedProgram {
    std::string stage;
    std::string file;
    std::string sha256; ///< of its bytes
    // of a program in another language than Cg
    std::string target;
    std::string version;
    std::vector<ProgramParameter> parameters;
};

/// Where a program reads the parameter of a binding.
struct Landing {
    std::string stage;
    std::string registerName; ///< the first register: "c4", "TEXUNIT0", "ATTR1"
    std::string parameter;    ///< its name in the program
};

/// A binding, and what a bindings file says of it beside its annotations.
struct ExportedBinding {
    std::shared_ptr<Binding> binding;
    Annotations exported; ///< the artist's keys as the graph set them, before anything was carried over
    std::vector<Landing> landings;
};

/// What a bindings file says.
struct BindingsFile {
    std::string material;
    std::vector<ExportedProgram> programs;
    std::vector<ExportedBinding> bindings;
};

/// Why a bindings file with this binding could not be read again as it was written, as can be with one of a
/// plug-in; empty when it can. Throws what the binding throws.
std::string whyNotWritable(const Binding& binding);

/// The bindings of a material's nodes, by "BindingIndex" and then in document order.
/// Their code may be a plug-in's: they must not outlive the material.
/// Throws HostError, naming the nodes, when two of them present a binding of one name. With `errors`, goes on
/// with the next node and puts them there.
BindingCollection collectBindings(const Material& material, Errors* errors = nullptr);

/// A program as a bindings file refers to it.
ExportedProgram describeProgram(const std::string& stage, const OutputFile& program);
ExportedProgram describeProgram(const TargetProgram& program);

/// What a bindings file says of a parameter, in order: name, kind and type as Cg has them, the name in the
/// target where it is another, and the place.
Annotations describeParameter(const ProgramParameter& parameter);

/// The bindings with their landings: those of the uniform or varying that has the binding's `cgName`, or its
/// name when that is empty. Shares the bindings. Throws what the bindings throw.
std::vector<ExportedBinding> describeBindings(const BindingCollection& bindings, const Dataflow& flow,
                                              const RegisterAssignment& registers);

/// The annotations of a binding as a bindings file has them: also an artist's key that was emptied, and
/// behind them, as "exported_" and the key, what the graph set. Throws what the binding throws.
Annotations fileAnnotations(const ExportedBinding& exported);

/// The file as an XML document; docs/bindings-file.md describes it. Throws what the bindings throw.
std::string printBindings(const BindingsFile& file);

} // namespace patina
