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
    std::vector<std::size_t> positions;  ///< those of them that read the vertex position
    /// By dataflow node: the first one that declares the same varying or register. Its value is the one that
    /// crosses. Other nodes stand for themselves.
    std::vector<std::size_t> declarations;
    std::vector<Interpolant> interpolants;
    std::vector<InterpolantRegister> registers;
};

/// Places every function: vertex and fragment functions in their program, automatic ones in the fragment
/// program, and in the vertex program where a vertex function needs them. What is written to an interpolant
/// parameter, or to a register of the vertex program, is computed per vertex. Varyings of one name and type
/// are one value, and so are readers of one register; a float4 varying in the first vertex attribute, and
/// others of its name, read the position.
///
/// Values that cross are packed into interpolant registers, widest first, each into the first register with
/// room. Of three ways to do so that one is taken which needs the fewest registers, then the one with the
/// fewest registers that mix half with float, then the first:
/// - half and float apart;
/// - float alone, then halves in the room that is left, in as many registers as save one, roomiest first;
///   what half need not be there has registers of its own;
/// - all together, which needs no more registers than any packing does.
/// Interpolant registers that nodes name themselves are left to them.
///
/// Throws HostError, naming the nodes, when the vertex program needs what only the fragment program can
/// compute, when there are too few interpolant registers, when nodes claim a register that does not exist,
/// that belongs to the framework, or that another node claims for something else, and when the fragment
/// program reads an interpolant register that no node writes per vertex in that type. With `errors`, goes on
/// with the next node and puts them there; the division is incomplete then, as it is where the dataflow lacks
/// sources. Threads: as the material, one thread at a time.
StagedShader placeInStages(const Material& material, const Dataflow& flow, Errors* errors = nullptr);

} // namespace patina
