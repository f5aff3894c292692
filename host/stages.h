#pragma once

#include "host/dataflow.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace patina {

/// A value that crosses from the vertex to the fragment program, and its place among the interpolants.
struct Interpolant {
    ValueSource value;
    std::size_t registerIndex = 0; ///< index into StagedShader::registers
    std::int32_t firstComponent = 0;
};

/// An interpolant register: half when all it carries is half, else float.
struct InterpolantRegister {
    ComponentType componentType = ComponentType::Half;
    std::int32_t componentCount = 0; ///< components in use
};

/// What runs and what is read in one of the two programs, as indices into Dataflow::nodes in their order.
struct ShaderStage {
    std::vector<std::size_t> functions;
    std::vector<std::size_t> uniforms;
};

/// A dataflow divided into a vertex and a fragment program.
struct StagedShader {
    ShaderStage vertex;
    ShaderStage fragment;
    std::vector<std::size_t> attributes; ///< varying parameters, read by the vertex program
    std::vector<Interpolant> interpolants;
    std::vector<InterpolantRegister> registers;
};

/// Places every function: vertex and fragment functions in their program, automatic ones in the fragment
/// program, and in the vertex program where a vertex function needs them. Values that cross are packed into
/// as few interpolant registers as possible.
///
/// Throws HostError, naming the nodes, when a vertex function needs what only the fragment program can
/// compute, when there are too few registers, and for a kind of parameter that this host does not supply.
StagedShader placeInStages(const Material& material, const Dataflow& flow);

} // namespace patina
