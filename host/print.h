#pragma once

#include "host/dataflow.h"
#include "host/naming.h"
#include "host/registers.h"
#include "host/stages.h"

#include <cstddef>
#include <string>
#include <vector>

namespace patina {

struct PrintOptions {
    bool framework = true; ///< whether the functions of host/framework.cg are in the text
    bool annotate = false; ///< whether a comment over each call in `main` gives node and types
};

/// Everything that the printed programs are made from; see assembleShader.
struct AssembledShader {
    const Material& material;
    Dataflow flow;
    StagedShader stages;
    ShaderNames names;
    RegisterAssignment registers;
    PrintOptions options;
};

// Complete Cg programs: the framework, uniforms, each distinct function once, and `main`. The text depends on
// the material alone, to the byte, and not on its name. Threads: as the material, one thread at a time.

/// Lines of a program that come from one node of the dataflow, counted from 1.
struct CodeRange {
    std::size_t node = 0;
    int firstLine = 0;
    int lastLine = 0;
    std::string what; ///< for messages: `its function "mathsCode"`
};

using CodeMap = std::vector<CodeRange>;

// With `map`, what nodes wrote is put there: their uniforms, their functions, each once, and the calls.

std::string printVertexProgram(const AssembledShader& shader, CodeMap* map = nullptr);
std::string printFragmentProgram(const AssembledShader& shader, CodeMap* map = nullptr);

} // namespace patina
