#include "shadergraph/function_builder.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cstddef>

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
    FunctionParameter parameter;
    parameter.direction = direction;
    parameter.type = type;
    parameter.name = name;
    function_.parameters.push_back(parameter);
}

void FunctionBuilder::addInput(const ShaderType& type, const std::string& name) {
    addParameter(0, type, name);
}

void FunctionBuilder::addOutput(const ShaderType& type, const std::string& name) {
    addParameter(1, type, name);
}

void FunctionBuilder::addInputPort(const Port& port) { addInput(portType(port), port.name); }

void FunctionBuilder::addOutputPort(const Port& port) { addOutput(portType(port), port.name); }

void FunctionBuilder::appendCode(std::string_view text) { body_ += text; }

void FunctionBuilder::declareConstant(const ShaderType& type, const std::string& name, float value) {
    appendText(body_, {"\t", declaration(type, name), " = "});
    if (type.componentType != ComponentType::Float && type.componentType != ComponentType::Half) {
        throw ShaderError(joinText({"cannot determine zero type for ", typeText(type)}));
    }
    // a scalar gets its one-component swizzle too
    appendText(body_, {componentTypeName(type), "( ", formatFloat(value), " ).", splat(type.columns), ";\n"});
}

void FunctionBuilder::declarePortConstant(const Port& port, float value) {
    declareConstant(portType(port), port.name, value);
}

std::shared_ptr<GeneratorNode> FunctionBuilder::makeNode(ExecutionLevel level, const std::string& name) {
    ShaderFunction function = function_;
    function.level = level;
    function.name = name;
    function.code = body_;
    return makeFunctionNode(function);
}

} // namespace patina
