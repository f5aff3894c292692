#pragma once

#include "host/dataflow.h"
#include "host/stages.h"

#include <cstddef>
#include <string>
#include <vector>

namespace patina {

/// A parameter of a program, and the first of the registers that hold it.
struct PlacedParameter {
    std::size_t node = 0; ///< index into Dataflow::nodes; the first of those that share the parameter's name
    RegisterReference place;
};

/// The registers of the parameters of both programs. Every parameter stands once, in the order of the
/// dataflow.
struct RegisterAssignment {
    std::vector<PlacedParameter> vertexUniforms;
    std::vector<PlacedParameter> fragmentUniforms;
    std::vector<PlacedParameter> attributes; ///< of the vertex program
    RegisterReference position = {registers::vertexAttribute, 0};
};

/// Gives every uniform and varying of a shader its registers. Each program numbers its own samplers and
/// constants from 0; a constant takes a register for each of its rows. A parameter that names a register gets
/// that one, and those of register parameters are avoided. The position is the first vertex attribute, which
/// a varying of its type may name too, and the first constants of the vertex program are the framework's.
///
/// Throws HostError, naming the nodes, for a register that two parameters name, that is the framework's, that
/// does not exist, or that the program cannot hold the parameter in; and when there are too few.
RegisterAssignment assignRegisters(const Material& material, const Dataflow& flow,
                                   const StagedShader& shader);

/// How a bindings file names a register: "c4", "TEXUNIT0", "ATTR1". Throws ShaderError for an index outside
/// the register table. [thread-safe]
std::string registerName(const RegisterReference& reference);

} // namespace patina
