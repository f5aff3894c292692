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
class Lines {
public:
    explicit Lines(std::string_view program) : program_(program), begins_(1, 0) {
        for (std::size_t end = program.find('\n'); end < program.size(); end = program.find('\n', end + 1)) {
            begins_.push_back(end + 1);
        }
        begins_.push_back(program.size());
    }

    std::string_view text(int first, int last) const {
        const std::size_t begin = beginOf(first);
        return program_.substr(begin, beginOf(last + 1) - begin);
    }

private:
    std::size_t beginOf(int line) const {
        return begins_[std::min(static_cast<std::size_t>(line), begins_.size()) - 1];
    }

    std::string_view program_;
    std::vector<std::size_t> begins_; ///< the last is the program's end
};

constexpr std::string_view nameLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

/// Calls an action with each token of code: a name or number, or any other letter. Comments are none.
template <typename Action>
void forEachToken(std::string_view code, Action&& action) {
    for (std::size_t at = 0; at < code.size();) {
        std::size_t end = at + 1;
        if (code.substr(at, 2) == "//") {
            end = std::min(code.find('\n', at), code.size());
        } else if (code.substr(at, 2) == "/*") {
            end = std::min(code.find("*/", at + 2), code.size() - 2) + 2;
        } else if (std::string_view(" \t\r\n\f\v").find(code[at]) == std::string_view::npos) {
            end = std::max(end, std::min(code.find_first_not_of(nameLetters, at), code.size()));
            action(code.substr(at, end - at));
        }
        at = end;
    }
}

/// Whether code closes every brace that it opens, and no more.
bool hasMatchingBraces(std::string_view code) {
    int depth = 0;
    int lowest = 0;
    forEachToken(code, [&](std::string_view token) {
        depth += token == "{" ? 1 : token == "}" ? -1 : 0;
        lowest = std::min(lowest, depth);
    });
    return depth == 0 && lowest == 0;
}

// Compilers descend into what is nested, and end the process when it is nested too deep for their stack. That
// grows with brackets, with the operators of an expression, with alternatives, and with loops.
constexpr int bracketLimit = 256;
constexpr int tokenLimit = 8192; // of a statement
constexpr int elseLimit = 1024;
constexpr int loopLimit = 128;

/// How deep a compiler must descend into code.
class Nesting {
public:
    explicit Nesting(std::string_view code) {
        forEachToken(code, [this](std::string_view token) { add(token); });
    }

    /// What there is too much of; nothing when a compiler can take it.
    std::string excess() const {
        const auto tooMany = [](int limit, std::string_view what) {
            return joinText({"it has more than ", std::to_string(limit), what});
        };
        return deepest_ > bracketLimit  ? tooMany(bracketLimit, " brackets within one another")
               : loopCount_ > loopLimit ? tooMany(loopLimit, " loops")
               : longest_ > tokenLimit  ? tooMany(tokenLimit, " names and signs in one statement")
               : elseCount_ > elseLimit ? tooMany(elseLimit, " times \"else\"")
                                        : std::string();
    }

private:
    void add(std::string_view token) {
        const bool isBrace = token == "{" || token == "}";
        const bool isOpening = token == "(" || token == "[" || token == "{";
        const bool isClosing = token == ")" || token == "]" || token == "}";
        depth_ += isOpening ? 1 : isClosing && depth_ > 0 ? -1 : 0;
        roundDepth_ += token == "(" ? 1 : token == ")" && roundDepth_ > 0 ? -1 : 0;
        deepest_ = std::max(deepest_, depth_);
        elseCount_ += token == "else" ? 1 : 0;
        loopCount_ += token == "for" || token == "while" ? 1 : 0;
        // what stands between the semicolons of `for ( ;; )` is no statement of its own
        const bool endsStatement = isBrace || (token == ";" && roundDepth_ == 0);
        length_ = endsStatement ? 0 : length_ + 1;
        longest_ = std::max(longest_, length_);
    }

    int depth_ = 0;
    int roundDepth_ = 0;
    int deepest_ = 0;
    int length_ = 0;
    int longest_ = 0;
    int elseCount_ = 0;
    int loopCount_ = 0;
};

/// The code that a failure is to be laid at: braces that do not match fail in what comes behind them.
CodeMap::const_iterator findBlamed(const CgProgram& program, int errorLine) {
    const Lines lines(program.text);
    const auto opens = [&](const CodeRange& range) {
        return range.firstLine <= errorLine &&
               !hasMatchingBraces(lines.text(range.firstLine, range.lastLine));
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

/// Throws HostError at the node whose code no compiler can take.
void requireModestNesting(const AssembledShader& shader, const CgProgram& program) {
    const Lines lines(program.text);
    for (const CodeRange& range : program.map) {
        const std::string excess = Nesting(lines.text(range.firstLine, range.lastLine)).excess();
        if (!excess.empty()) {
            const DataflowNode& node = shader.flow.nodes[range.node];
            throw HostError(ownerPosition(shader.material, node),
                            joinText({ownerTitle(shader.material, node), ": ", range.what,
                                      " is nested too deep to be translated: ", excess,
                                      "; split what the node emits, or export it in Cg alone"}));
        }
    }
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
        requireModestNesting(shader, program);
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
