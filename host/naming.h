#pragma once

#include "host/dataflow.h"
#include "host/stages.h"

#include <string>
#include <vector>

namespace patina {

/// The names of everything in the two programs.
struct ShaderNames {
    std::vector<std::string> functions; ///< by dataflow node; equal functions have one name
    std::vector<std::vector<std::string>>
        values;                            ///< by dataflow node and output port; a written register's one
    std::vector<std::string> interpolants; ///< by interpolant register
    std::string position;                  ///< the vertex program's input
    std::string clipPosition;              ///< and its output
    std::string colour;                    ///< the fragment program's output
};

/// Names the functions and values of a shader. Uniforms and varyings keep their own names, since bindings go
/// by them; functions and values get suffixes where needed. The same material always gets the same names.
///
/// Throws HostError, naming the nodes, when a parameter has a reserved name, or when two parameters of one
/// name differ in kind or type. With `errors`, goes on with the next parameter and puts them there.
/// Threads: as the material, one thread at a time.
ShaderNames nameShader(const Material& material, const Dataflow& flow, const StagedShader& shader,
                       Errors* errors = nullptr);

} // namespace patina
