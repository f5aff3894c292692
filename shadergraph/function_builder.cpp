#include "shadergraph/function_builder.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr char inputDirection = 'i';
constexpr char outputDirection = 'o';

FunctionParameter parameterOf(char direction, const GeneratorPort& port) {
    return {direction == outputDirection ? 1 : 0, port.type, 0, port.name, {}};
}

/// For one more entry, so that adding it cannot fail.
template <typename Entries>
void makeRoom(Entries& entries) {
    if (entries.size() == entries.capacity()) {
        entries.reserve(2 * entries.size() + 1);
    }
}

} // namespace

ShaderType detail::portType(const Port& port) {
    return {static_cast<ComponentType>(port.getPrecision()),
            static_cast<std::int32_t>(port.getComponentCount()), 1, 1};
}

std::string detail::splat(std::int32_t columns) {
    return std::string(static_cast<std::size_t>(std::max(columns, 0)), 'x');
}

void FunctionBuilder::addParameter(char direction, const ShaderType& type, const std::string& name) {
    if (findPort(inputs_, name) != inputs_.end() || findPort(outputs_, name) != outputs_.end()) {
        // a plain string on purpose: handlers of ShaderError must not see this one
        throw joinText(
            {"parameter name \"", name, "\" is duplicated in function \"", ShaderFunction().name, "\""});
    }
    std::vector<GeneratorPort>& ports = direction == inputDirection ? inputs_ : outputs_;
    GeneratorPort port{name, type};
    makeRoom(ports);
    makeRoom(directions_);
    if (function_) {
        function_->parameters.push_back(parameterOf(direction, port));
    }
    ports.push_back(std::move(port));
    directions_.push_back(direction);
}

void FunctionBuilder::addInput(const ShaderType& type, const std::string& name) {
    addParameter(inputDirection, type, name);
}

void FunctionBuilder::addOutput(const ShaderType& type, const std::string& name) {
    addParameter(outputDirection, type, name);
}

void FunctionBuilder::addInputPort(const Port& port) { addInput(portType(port), port.name); }

void FunctionBuilder::addOutputPort(const Port& port) { addOutput(portType(port), port.name); }

void FunctionBuilder::appendCode(std::string_view text) { body_.append(text); }

void FunctionBuilder::declareConstant(const ShaderType& type, const std::string& name, float value) {
    appendDeclaration(body_, type, name, "\t", " = ");
    if (type.componentType != ComponentType::Float && type.componentType != ComponentType::Half) {
        throw ShaderError(joinText({"cannot determine zero type for ", typeText(type)}));
    }
    body_.append(componentTypeView(type), "( ");
    body_.appendFloat(value);
    // a scalar gets its one-component swizzle too
    constexpr std::string_view common = "xxxx";
    const auto columns = static_cast<std::size_t>(type.columns);
    if (columns <= common.size()) {
        body_.append(" ).", common.substr(0, columns), ";\n");
    } else {
        body_.append(" ).", splat(type.columns), ";\n");
    }
}

void FunctionBuilder::declarePortConstant(const Port& port, float value) {
    declareConstant(portType(port), port.name, value);
}

void FunctionBuilder::reservePorts(std::size_t inputCount, std::size_t outputCount) {
    inputs_.reserve(inputCount);
    outputs_.reserve(outputCount);
}

std::shared_ptr<GeneratorNode> FunctionBuilder::makeNode(ExecutionLevel level, const std::string& name) {
    return makeFunctionNode(std::vector(inputs_), std::vector(outputs_), level, name,
                            std::string(body_.view()));
}

std::shared_ptr<GeneratorNode> FunctionBuilder::finish(ExecutionLevel level, const std::string& name) {
    auto node =
        makeFunctionNode(std::move(inputs_), std::move(outputs_), level, name, std::string(body_.view()));
    directions_.clear();
    body_.clear();
    if (function_) {
        function_->parameters.clear();
    }
    return node;
}

const ShaderFunction& FunctionBuilder::function() const {
    if (!function_) {
        ShaderFunction function;
        auto input = inputs_.begin();
        auto output = outputs_.begin();
        for (const char direction : directions_) {
            function.parameters.push_back(
                parameterOf(direction, direction == inputDirection ? *input++ : *output++));
        }
        function_ = std::move(function);
    }
    return *function_;
}

} // namespace patina
