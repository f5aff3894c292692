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

bool hasPort(const std::vector<GeneratorPort>& ports, const std::string& name) {
    for (const GeneratorPort& port : ports) {
        if (port.name == name) {
            return true;
        }
    }
    return false;
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
    if (hasPort(inputs_, name) || hasPort(outputs_, name)) {
        // a plain string on purpose: handlers of ShaderError must not see this one
        throw joinText(
            {"parameter name \"", name, "\" is duplicated in function \"", ShaderFunction().name, "\""});
    }
    if (directions_.size() == directions_.capacity()) {
        directions_.reserve(2 * directions_.size()); // so that either list grows or neither
    }
    (direction == inputDirection ? inputs_ : outputs_).push_back({name, type});
    directions_.push_back(direction);
    if (function_) {
        listParameters();
    }
}

void FunctionBuilder::listParameters() const {
    std::vector<FunctionParameter>& parameters = function_->parameters;
    const auto first = directions_.begin() + static_cast<std::ptrdiff_t>(parameters.size());
    const std::ptrdiff_t listedInputs = std::count(directions_.begin(), first, inputDirection);
    auto input = inputs_.begin() + listedInputs;
    auto output = outputs_.begin() + (first - directions_.begin() - listedInputs);
    for (auto direction = first; direction != directions_.end(); ++direction) {
        const bool isInput = *direction == inputDirection;
        const GeneratorPort& port = isInput ? *input++ : *output++;
        parameters.push_back({isInput ? 0 : 1, port.type, 0, port.name, {}});
    }
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

void FunctionBuilder::reserve(std::size_t inputCount, std::size_t outputCount) {
    inputs_.reserve(inputCount);
    outputs_.reserve(outputCount);
}

std::shared_ptr<GeneratorNode> FunctionBuilder::makeNode(ExecutionLevel level, const std::string& name) {
    return makeFunctionNode(std::vector(inputs_), std::vector(outputs_), level, name,
                            std::string(body_.view()));
}

std::shared_ptr<GeneratorNode> FunctionBuilder::finish(ExecutionLevel level, const std::string& name) {
    return makeFunctionNode(std::move(inputs_), std::move(outputs_), level, name, body_.take());
}

const ShaderFunction& FunctionBuilder::function() const {
    if (!function_) {
        function_.emplace();
    }
    listParameters();
    return *function_;
}

} // namespace patina
