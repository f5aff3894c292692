#include "translation/front_end.h"

#include "nodemodel/text.h"
#include "translation/cg_text.h"
#include "translation/prelude.h"

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <mutex>
#include <string>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr const char* entryPoint = "main";

// how a message begins: with the number of the text, which is 1 for the program behind the prelude
constexpr std::string_view errorMark = "ERROR: ";
constexpr std::string_view programMark = "ERROR: 1:";

void initialiseOnce() {
    static std::once_flag initialised;
    std::call_once(initialised, [] { glslang::InitializeProcess(); });
}

std::string_view firstLineWith(std::string_view log, std::string_view mark) {
    std::size_t begin = 0;
    while (begin < log.size()) {
        const std::size_t end = std::min(log.find('\n', begin), log.size());
        const std::string_view line = log.substr(begin, end - begin);
        if (line.substr(0, mark.size()) == mark) {
            return line;
        }
        begin = end + 1;
    }
    return {};
}

/// The compiler's words without what it says for its own developers.
std::string readable(std::string_view message) {
    constexpr std::pair<std::string_view, std::string_view> replacements[] = {
        {"'' : ", ""}, {" :  ", ": "}, {" : ", ": "}, {"' temp ", "'"}};
    std::string text(message.substr(0, message.find_last_not_of(' ') + 1));
    for (const auto& [from, to] : replacements) {
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

/// The first error of a log, `ERROR: 1:23: 'name' : what is wrong`, without what every message has.
TranslationError errorIn(std::string_view log) {
    const std::string_view inProgram = firstLineWith(log, programMark);
    if (inProgram.empty()) {
        std::string_view message = firstLineWith(log, errorMark);
        message.remove_prefix(std::min(errorMark.size(), message.size()));
        return {message.empty() ? std::string("the compiler gave no reason") : std::string(message), 0};
    }
    std::string_view rest = inProgram.substr(programMark.size());
    int line = 0;
    const auto number = std::from_chars(rest.data(), rest.data() + rest.size(), line);
    rest.remove_prefix(static_cast<std::size_t>(number.ptr - rest.data()));
    rest.remove_prefix(std::min(rest.find_first_not_of(": "), rest.size()));
    return {readable(rest), line};
}

} // namespace

std::vector<std::uint32_t> detail::compileCg(ProgramStage stage, std::string_view program) {
    initialiseOnce();
    const EShLanguage language = stage == ProgramStage::Vertex ? EShLangVertex : EShLangFragment;
    const std::string_view prelude = translationPrelude();
    const std::string readableProgram = rewriteForHlsl(program);
    const std::array<const char*, 2> texts = {prelude.data(), readableProgram.data()};
    const std::array<int, 2> lengths = {static_cast<int>(prelude.size()),
                                        static_cast<int>(readableProgram.size())};
    constexpr int version = 100; // of the input language; for HLSL it has no meaning

    glslang::TShader shader(language);
    shader.setStringsWithLengths(texts.data(), lengths.data(), static_cast<int>(texts.size()));
    shader.setEntryPoint(entryPoint);
    shader.setSourceEntryPoint(entryPoint);
    shader.setEnvInput(glslang::EShSourceHlsl, language, glslang::EShClientVulkan, version);
    shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    // keeps the semantics, by which inputs and outputs get their places
    shader.setEnvTargetHlslFunctionality1();
    const auto messages = static_cast<EShMessages>(EShMsgSpvRules | EShMsgVulkanRules | EShMsgReadHlsl |
                                                   EShMsgHlslDX9Compatible);
    if (!shader.parse(GetDefaultResources(), version, false, messages)) {
        throw errorIn(shader.getInfoLog());
    }
    glslang::TProgram linked;
    linked.addShader(&shader);
    if (!linked.link(messages)) {
        throw errorIn(linked.getInfoLog());
    }
    std::vector<std::uint32_t> words;
    glslang::SpvOptions options;
    options.disableOptimizer = true;
    glslang::GlslangToSpv(*linked.getIntermediate(language), words, &options);
    return words;
}

} // namespace patina
