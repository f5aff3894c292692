#include "shadergraph/function_builder.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace patina {

using namespace detail;

ShaderType detail::portType(const Port& port) {
    return {static_cast<ComponentType>(port.getPrecision()),
            static_cast<std::int32_t>(port.getComponentCount()), 1, 1};
}

std::string detail::splat(std::int32_t columns) {
    return std::string(static_cast<std::size_t>(std::max(columns, 0)), 'x');
}

void FunctionBuilder::addParameter(std::int32_t direction, const ShaderType& type, const std::string& name) {
    for (const FunctionParameter& parameter : function_.parameters) {
        if (parameter.name == name) {
            // a plain string on purpose: handlers of ShaderError must not see this one
            throw joinText(
                {"parameter name \"", name, "\" is duplicated in function \"", function_.name, "\""});
        }
    }
    FunctionParameter& parameter = function_.parameters.emplace_back();
    parameter.direction = direction;
    parameter.type = type;
    parameter.name = name;
}

void FunctionBuilder::addInput(const ShaderType& type, const std::string& name) {
    addParameter(0, type, name);
}

void FunctionBuilder::addOutput(const ShaderType& type, const std::string& name) {
    addParameter(1, type, name);
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
    body_.append(" ).", splat(type.columns), ";\n");
}

void FunctionBuilder::declarePortConstant(const Port& port, float value) {
    declareConstant(portType(port), port.name, value);
}

void FunctionBuilder::reserve(std::size_t parameterCount) { function_.parameters.reserve(parameterCount); }

std::shared_ptr<GeneratorNode> FunctionBuilder::makeNode(ExecutionLevel level, const std::string& name) {
    return makeFunctionNode(function_.parameters, level, name, std::string(body_.view()));
}

std::shared_ptr<GeneratorNode> FunctionBuilder::finish(ExecutionLevel level, const std::string& name) {
    return makeFunctionNode(function_.parameters, level, name, body_.take());
}

} // namespace patina
