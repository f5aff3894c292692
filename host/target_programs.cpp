#include "host/target_programs.h"

#include "host/targets.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace patina {

using namespace detail;

namespace {

bool isCg(const ShaderTarget& target) { return target.language == TargetLanguage::Cg; }

/// A program to be translated, and where its lines come from.
struct CgProgram {
    ProgramStage stage;
    std::string text;
    std::string middle; ///< of the names of its files: ".vert."
    CodeMap map;
};

CgProgram vertexProgramOf(const AssembledShader& shader) {
    CgProgram program = {ProgramStage::Vertex, {}, ".vert.", {}};
    program.text = printVertexProgram(shader, &program.map);
    return program;
}

CgProgram fragmentProgramOf(const AssembledShader& shader) {
    CgProgram program = {ProgramStage::Fragment, {}, ".frag.", {}};
    program.text = printFragmentProgram(shader, &program.map);
    return program;
}

/// The lines of a program, counted from 1.
std::string_view linesOf(std::string_view program, int first, int last) {
    std::size_t begin = 0;
    std::size_t end = 0;
    for (int line = 1; line <= last; ++line) {
        begin = line == first ? end : begin;
        end = std::min(program.find('\n', end), program.size() - 1) + 1;
    }
    return program.substr(begin, end - begin);
}

/// Whether code closes every brace that it opens, and no more; those in comments do not count.
bool hasMatchingBraces(std::string_view code) {
    int depth = 0;
    for (std::size_t at = 0; at < code.size() && depth >= 0; ++at) {
        if (code.substr(at, 2) == "//") {
            at = std::min(code.find('\n', at), code.size());
        } else if (code.substr(at, 2) == "/*") {
            at = std::min(code.find("*/", at + 2), code.size());
        } else {
            depth += code[at] == '{' ? 1 : code[at] == '}' ? -1 : 0;
        }
    }
    return depth == 0;
}

/// The code that a failure is to be laid at: braces that do not match fail in what comes behind them.
CodeMap::const_iterator findBlamed(const CgProgram& program, int errorLine) {
    const auto opens = [&](const CodeRange& range) {
        return range.firstLine <= errorLine &&
               !hasMatchingBraces(linesOf(program.text, range.firstLine, range.lastLine));
    };
    const auto holds = [&](const CodeRange& range) {
        return errorLine >= range.firstLine && errorLine <= range.lastLine;
    };
    const auto open = std::find_if(program.map.begin(), program.map.end(), opens);
    return open != program.map.end() ? open : std::find_if(program.map.begin(), program.map.end(), holds);
}

/// The failure at the node whose code holds the line, or at the material when that is nobody's.
HostError failureIn(const AssembledShader& shader, const CgProgram& program, const TranslationError& error) {
    const Material& material = shader.material;
    const std::string file = joinText({material.name, program.middle, "cg"});
    const auto range = findBlamed(program, error.line());
    if (range == program.map.end()) {
        const std::string line =
            error.line() > 0 ? joinText({" (line ", std::to_string(error.line()), ")"}) : "";
        return {{material.file, material.line},
                joinText({file, line, " cannot be translated: ", error.what()})};
    }
    const DataflowNode& node = shader.flow.nodes[range->node];
    const bool isInside = error.line() <= range->lastLine;
    const char* advice = node.owner == frameworkOwner
                             ? "); take out what a node's code redefines, or export it in Cg alone"
                             : "); correct what the node emits, or export it in Cg alone";
    return {ownerPosition(material, node),
            joinText({ownerTitle(material, node), ": ", range->what,
                      " does not compile: ", isInside ? "" : "its braces do not match, ",
                      oneLine(error.what()), " (line ", std::to_string(error.line()), " of ", file, advice})};
}

} // namespace

bool wantsCg(const std::vector<ShaderTarget>& targets) {
    return targets.empty() || std::any_of(targets.begin(), targets.end(), isCg);
}

std::vector<TargetProgram> translatePrograms(const AssembledShader& shader,
                                             const std::vector<ShaderTarget>& targets,
                                             const ShaderTranslator* translator) {
    std::vector<ShaderTarget> others = targets;
    std::erase_if(others, isCg);
    if (others.empty()) {
        return {};
    }
    const SourcePosition position = {shader.material.file, shader.material.line};
    if (translator == nullptr) {
        throw HostError(position, "there is nothing that translates programs; export them in Cg alone");
    }
    if (!shader.options.framework) {
        throw HostError(position, "programs without the framework's functions cannot be translated; export "
                                  "them with the framework, or in Cg alone");
    }
    std::vector<TargetProgram> result;
    for (const CgProgram& program : {vertexProgramOf(shader), fragmentProgramOf(shader)}) {
        std::vector<TranslatedProgram> translated;
        try {
            translated = translator->translate(program.stage, program.text, others);
        } catch (const TranslationError& error) {
            throw failureIn(shader, program, error);
        }
        for (std::size_t i = 0; i < others.size(); ++i) {
            // the two programs of a target stand side by side
            const auto place = result.begin() + static_cast<std::ptrdiff_t>(
                                                    program.stage == ProgramStage::Vertex ? i : 2 * i + 1);
            result.insert(
                place,
                {others[i],
                 program.stage,
                 {joinText({shader.material.name, program.middle, targetFileEnding(others[i].language)}),
                  std::move(translated[i].content)},
                 std::move(translated[i].parameters)});
        }
    }
    return result;
}

} // namespace patina
