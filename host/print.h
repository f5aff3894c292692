#pragma once

#include "host/dataflow.h"
#include "host/naming.h"
#include "host/registers.h"
#include "host/stages.h"

#include <string>

namespace patina {

struct PrintOptions {
    bool framework = true; ///< whether the functions of host/framework.cg are in the text
    bool annotate = false; ///< whether a comment over each call in `main` gives node and types
};

/// Everything that the printed programs are made from.
struct AssembledShader {
    const Material& material;
    const Dataflow& flow;
    const StagedShader& stages;
    const ShaderNames& names;
    const RegisterAssignment& registers;
    const PrintOptions& options;
};

// Complete Cg programs: the framework, uniforms, each distinct function once, and `main`. The text depends on
// the material alone, to the byte, and not on its name. Threads: as the material, one thread at a time.

std::string printVertexProgram(const AssembledShader& shader);
std::string printFragmentProgram(const AssembledShader& shader);

} // namespace patina
