#include "host/verify.h"

#include "host/cg_names.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <string_view>

namespace patina {

using namespace detail;

namespace {

bool isWordCharacter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '_' || letter == '.';
}

/// The next word, or single other character, of Cg code; empty at the end. Comments and blanks are skipped.
std::string_view takeToken(std::string_view& code) {
    for (;;) {
        code.remove_prefix(std::min(code.find_first_not_of(" \t\r\n"), code.size()));
        if (code.substr(0, 2) == "//") {
            code.remove_prefix(std::min(code.find('\n'), code.size()));
        } else if (code.substr(0, 2) == "/*") {
            const std::size_t end = code.find("*/", 2); // the asterisk of "/*" ends nothing
            code.remove_prefix(end == std::string_view::npos ? code.size() : end + 2);
        } else {
            break;
        }
    }
    std::size_t length = 0;
    while (length < code.size() && isWordCharacter(code[length])) {
        ++length;
    }
    const std::string_view token = code.substr(0, std::max<std::size_t>(length, 1));
    code.remove_prefix(token.size());
    return token;
}

bool hasPort(const GeneratorNode& function, std::string_view name) {
    return findPort(function.inputs, name) != function.inputs.end() ||
           findPort(function.outputs, name) != function.outputs.end();
}

/// The constant in a function's code that is no number, or nothing. A variable of that name is none.
std::string_view findNonNumber(const GeneratorNode& function) {
    std::string_view rest = function.code;
    std::string_view previous;
    std::string_view found;
    for (std::string_view token = takeToken(rest); !token.empty(); token = takeToken(rest)) {
        if (token == "inf" || token == "nan") {
            const bool isDeclared =
                !previous.empty() && isWordCharacter(previous.front()) && previous != "return";
            if (isDeclared || hasPort(function, token)) {
                return {};
            }
            found = token;
        }
        previous = token;
    }
    return found;
}

void verifyPorts(const GeneratorNode& function) {
    for (const auto* ports : {&function.inputs, &function.outputs}) {
        for (const GeneratorPort& port : *ports) {
            if (isReservedName(port.name)) {
                throw ShaderError(joinText({describe(function), " has a port \"", port.name,
                                            "\", and that name is reserved in Cg or by the shader framework; "
                                            "report this to the author of its plug-in"}));
            }
        }
    }
}

void verifyConstants(const GeneratorNode& function) {
    const std::string_view constant = findNonNumber(function);
    if (!constant.empty()) {
        throw ShaderError(joinText({"the code of this node holds the constant \"", constant,
                                    "\", which no shader can; one of its numbers, such as a count of rows "
                                    "or columns, is zero or too large"}));
    }
}

} // namespace

void verifyCode(const Material& material, const Dataflow& flow, Errors* errors) {
    std::vector<char> isFine(flow.nodes.size(), 0); // by the first node of each function
    for (std::size_t i = 0; i < flow.nodes.size(); ++i) {
        const DataflowNode& node = flow.nodes[i];
        const std::size_t function = flow.functions[i];
        if (node.generated->kind != NodeKind::Function || node.owner == frameworkOwner || isFine[function]) {
            continue;
        }
        const MaterialItem& item = material.items[node.owner];
        isFine[function] = attempt(errors, [&] {
            onBehalfOf(material, item, item.line, [&] {
                verifyPorts(*node.generated);
                verifyConstants(*node.generated);
            });
        });
    }
}

} // namespace patina
