#pragma once

#include "host/translation.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace patina::detail {

// Threads: as any value, one thread at a time.

/// An instruction of SPIR-V: its operands are the words behind the first.
struct SpirvInstruction {
    std::uint32_t opcode = 0;
    std::vector<std::uint32_t> operands;
};

/// A module of SPIR-V, to be looked at and changed.
struct SpirvModule {
    std::vector<std::uint32_t> header;
    std::vector<SpirvInstruction> instructions;

    explicit SpirvModule(const std::vector<std::uint32_t>& words);
    std::vector<std::uint32_t> words() const;

    /// The names of everything.
    std::set<std::string, std::less<>> names() const;
    /// An id that nothing has yet.
    std::uint32_t newId();
};

/// The descriptor binding of the block with a program's uniforms, behind those of the texture units.
inline constexpr std::uint32_t uniformBlockBinding = 16;

/// The descriptor set of all that a program reads.
constexpr std::uint32_t descriptorSet(ProgramStage stage) { return stage == ProgramStage::Vertex ? 0 : 1; }

/// What a module reads or writes, and where Cg has it.
struct SpirvParameter {
    std::string name; ///< in Cg
    ParameterKind kind = ParameterKind::Uniform;
    ShaderType type;
    std::uint32_t id = 0;     ///< the variable; of a uniform, the block
    std::uint32_t member = 0; ///< of the block
    std::uint32_t offset = 0; ///< of the member
    /// The number of the texture unit, attribute or interpolant, or of the colour that is written.
    std::uint32_t number = 0;
    std::string builtIn;  ///< instead of the number: "Position"
    std::string semantic; ///< in Cg
};

/// Gives everything another name: what `rename` makes of that in Cg. The entry point stays.
void renameAll(SpirvModule& module, const std::function<std::string(std::string_view)>& rename);

/// Gives the block with the uniforms, which the front end calls what it likes, a name.
void nameUniformBlock(SpirvModule& module, const std::vector<SpirvParameter>& parameters);

/// The parameters of a module that still has its semantics.
std::vector<SpirvParameter> readParameters(const SpirvModule& module, ProgramStage stage);

/// Gives inputs, outputs, textures and the block their places; takes the semantics out.
void placeParameters(SpirvModule& module, ProgramStage stage, const std::vector<SpirvParameter>& parameters);

/// Makes every uniform of the block a variable of its own, as the OpenGL API has them. The parameters' ids
/// become those of the variables.
void splitUniformBlock(SpirvModule& module, std::vector<SpirvParameter>& parameters);

} // namespace patina::detail
