#include "shadergraph/generator_node.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr const char* readPortName = "read";
constexpr const char* writePortName = "write";

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// By the code of a character, whether it may stand in a name.
constexpr std::array<bool, 256> nameCharacters = [] {
    std::array<bool, 256> table = {};
    for (const char letter :
         std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_")) {
        table[static_cast<unsigned char>(letter)] = true;
    }
    return table;
}();

bool isNameCharacter(char letter) { return nameCharacters[static_cast<unsigned char>(letter)]; }

void requireVariableName(const char* role, const std::string& name) {
    if (!isValidVariableName(name)) {
        throw ShaderError(joinText({role, " name \"", name, "\" is not a valid Cg variable name"}));
    }
}

void addParameterPorts(GeneratorNode& node) {
    const GeneratorPort read{readPortName, node.type};
    const GeneratorPort write{writePortName, node.type};
    switch (node.kind) {
    case NodeKind::InterfaceParameter:
    case NodeKind::InterpolantParameter:
        node.outputs.push_back(read);
        node.inputs.push_back(write);
        return;
    case NodeKind::VaryingParameter:
    case NodeKind::UniformParameter:
        node.outputs.push_back(read);
        return;
    case NodeKind::RegisterParameter:
        if (registerEntry(node.registerReference.index).direction == 1) {
            node.inputs.push_back(write);
        } else {
            node.outputs.push_back(read);
        }
        return;
    case NodeKind::Function:
        break;
    }
    throw ShaderError("internal error: unknown parameter type");
}

const char* levelLetter(ExecutionLevel level) {
    switch (level) {
    case ExecutionLevel::Vertex:
        return "v";
    case ExecutionLevel::Fragment:
        return "f";
    case ExecutionLevel::Automatic:
        return "*";
    }
    return "";
}

/// `kind "name" (type : REGISTER)`, the register only when there is one.
std::string describeStageParameter(const char* kindText, const GeneratorNode& node) {
    std::string text = joinText({kindText, " \"", node.name, "\" (", typeText(node.type)});
    if (node.registerReference.index != registers::unknown) {
        appendText(text, {" : ", registerText(node.registerReference)});
    }
    text += ")";
    return text;
}

const GeneratorPort& requirePort(const GeneratorNode& node, const std::vector<GeneratorPort>& ports,
                                 const char* direction, const std::string& name) {
    const auto found = findPort(ports, name);
    if (found == ports.end()) {
        throw ShaderError(joinText({describe(node), ": ", direction, " port \"", name, "\" does not exist"}));
    }
    return *found;
}

} // namespace

std::shared_ptr<GeneratorNode> detail::makeFunctionNode(std::vector<GeneratorPort>&& inputs,
                                                        std::vector<GeneratorPort>&& outputs,
                                                        ExecutionLevel level, const std::string& name,
                                                        std::string code) {
    for (const GeneratorPort& port : inputs) {
        requireVariableName("input port", port.name);
    }
    for (const GeneratorPort& port : outputs) {
        requireVariableName("output port", port.name);
    }
    auto node = std::make_shared<GeneratorNode>();
    node->name = name;
    node->level = level;
    node->code = std::move(code);
    node->inputs = std::move(inputs);
    node->outputs = std::move(outputs);
    return node;
}

std::shared_ptr<GeneratorNode> makeFunctionNode(const ShaderFunction& function) {
    std::vector<GeneratorPort> inputs;
    std::vector<GeneratorPort> outputs;
    for (const FunctionParameter& parameter : function.parameters) {
        (parameter.direction == 1 ? outputs : inputs).push_back({parameter.name, parameter.type});
    }
    return detail::makeFunctionNode(std::move(inputs), std::move(outputs), function.level, function.name,
                                    function.code);
}

std::shared_ptr<GeneratorNode> makeParameterNode(NodeKind kind, const std::string& name,
                                                 const ShaderType& type, std::int32_t flags,
                                                 RegisterReference reference) {
    auto node = std::make_shared<GeneratorNode>();
    node->kind = kind;
    node->name = name;
    node->type = type;
    node->flags = flags;
    node->registerReference = reference;
    addParameterPorts(*node);
    if (kind == NodeKind::VaryingParameter || kind == NodeKind::UniformParameter) {
        requireVariableName("parameter", name);
    }
    return node;
}

std::shared_ptr<GeneratorNode> makeVaryingParameter(const std::string& name, const ShaderType& type) {
    return makeParameterNode(NodeKind::VaryingParameter, name, type);
}

std::shared_ptr<GeneratorNode> makeUniformParameter(const std::string& name, const ShaderType& type) {
    return makeParameterNode(NodeKind::UniformParameter, name, type);
}

std::string describe(const GeneratorNode& node) {
    switch (node.kind) {
    case NodeKind::Function:
        return joinText({"function \"", node.name, "\" (", std::to_string(node.inputs.size()), "/",
                         std::to_string(node.outputs.size()), "/", levelLetter(node.level), ")"});
    case NodeKind::InterfaceParameter:
        return joinText({"interface parameter \"", node.name, "\" (", typeText(node.type),
                         ",flags=", std::to_string(node.flags), ")"});
    case NodeKind::VaryingParameter:
        return describeStageParameter("varying parameter", node);
    case NodeKind::UniformParameter:
        return describeStageParameter("uniform parameter", node);
    case NodeKind::RegisterParameter:
        return joinText(
            {"Cg register parameter ", registerText(node.registerReference), " (", typeText(node.type), ")"});
    case NodeKind::InterpolantParameter:
        return joinText({"interpolant parameter (", typeText(node.type), ")"});
    }
    throw ShaderError("unknown node type");
}

const GeneratorPort& inputPort(const GeneratorNode& node, const std::string& name) {
    return requirePort(node, node.inputs, "input", name);
}

const GeneratorPort& outputPort(const GeneratorNode& node, const std::string& name) {
    return requirePort(node, node.outputs, "output", name);
}

bool isValidVariableName(std::string_view name) {
    return !name.empty() && !isDigit(name.front()) && std::all_of(name.begin(), name.end(), isNameCharacter);
}

} // namespace patina
