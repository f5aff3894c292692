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
    std::int32_t number = 0;         ///< of the TEXCOORD register
};

/// What runs and what is read in one of the two programs, as indices into Dataflow::nodes in their order.
struct ShaderStage {
    std::vector<std::size_t> functions; ///< and interpolant parameters, in the vertex program
    std::vector<std::size_t> uniforms;
    std::vector<std::size_t> registerInputs;  ///< register parameters that are read
    std::vector<std::size_t> registerOutputs; ///< register parameters that are written
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
/// program, and in the vertex program where a vertex function needs them. What is written to an interpolant
/// parameter, or to a register of the vertex program, is computed per vertex. Values that cross are packed
/// into as few interpolant registers as possible; half and float values share one only where that saves one.
/// Interpolant registers that nodes name themselves are left to them.
///
/// Throws HostError, naming the nodes, when the vertex program needs what only the fragment program can
/// compute, when there are too few interpolant registers, and when nodes claim a register that does not
/// exist, that belongs to the framework, or that another node claims for something else. With `errors`, goes
/// on with the next node and puts them there; the division is incomplete then, as it is where the dataflow
/// lacks sources. Threads: as the material, one thread at a time.
StagedShader placeInStages(const Material& material, const Dataflow& flow, Errors* errors = nullptr);

} // namespace patina
