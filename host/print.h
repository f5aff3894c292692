#pragma once

#include "host/dataflow.h"
#include "host/naming.h"
#include "host/registers.h"
#include "host/stages.h"

#include <string>

namespace patina {

/// Everything that the printed programs are made from.
struct AssembledShader {
    const Material& material;
    const Dataflow& flow;
    const StagedShader& stages;
    const ShaderNames& names;
    const RegisterAssignment& registers;
};

// Complete Cg programs: the framework, uniforms, each distinct function once, and `main`. The text depends on
// the material alone, to the byte.

std::string printVertexProgram(const AssembledShader& shader);
std::string printFragmentProgram(const AssembledShader& shader);

} // namespace patina
