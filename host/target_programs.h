#pragma once

#include "host/files.h"
#include "host/print.h"
#include "host/translation.h"

#include <string>
#include <vector>

namespace patina {

/// A program of a material in another language than Cg.
struct TargetProgram {
    ShaderTarget target;
    ProgramStage stage = ProgramStage::Vertex;
    OutputFile file; ///< NAME.vert.glsl
    std::vector<ProgramParameter> parameters;
};

/// Whether the programs are wanted in Cg: it is among the targets, or there are none.
bool wantsCg(const std::vector<ShaderTarget>& targets);

/// The programs of a shader in all targets but Cg, in their order, the vertex program first.
///
/// Throws HostError when there are such targets and no translator, when the programs are without the
/// framework's functions, and when one cannot be translated: at the node whose code is to blame, with the
/// compiler's words. Threads: as the material, one thread at a time.
std::vector<TargetProgram> translatePrograms(const AssembledShader& shader,
                                             const std::vector<ShaderTarget>& targets,
                                             const ShaderTranslator* translator);

} // namespace patina
