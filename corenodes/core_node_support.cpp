#include "corenodes/core_node_support.h"

#include "nodemodel/shader_error.h"
#include "shadergraph/graph_generator.h"

namespace patina {

std::vector<std::shared_ptr<Property>>::const_iterator ownPropertiesOf(const MaterialNode& node) {
    return node.properties->items.begin() + detail::standardDeclarations.size();
}

void takeOwnProperties(const MaterialNode& node, std::initializer_list<std::shared_ptr<Property>*> handles) {
    auto own = ownPropertiesOf(node);
    for (std::shared_ptr<Property>* const handle : handles) {
        *handle = *own++;
    }
}

void addPort(std::vector<Port>& ports, const PortDeclaration& declaration) {
    Port& port = ports.emplace_back(declaration.name, declaration.label);
    if (declaration.componentCount != 0) {
        port.setComponentCount(declaration.componentCount);
    }
}

void clearPorts(MaterialNode& node) {
    node.inputs.clear();
    node.outputs.clear();
}

void setEnumValues(Property& property, std::initializer_list<std::string_view> values) {
    property.allowedValues.assign(values.begin(), values.end());
    property.setEnum(*values.begin());
}

ShaderType resolvedType(const MaterialNode& node, std::int32_t columns) {
    return {static_cast<ComponentType>(node.resolvedPrecision), columns, 1, 1};
}

ShaderType resolvedType(const MaterialNode& node) {
    return resolvedType(node, static_cast<std::int32_t>(node.resolvedComponentCount));
}

bool isOutputConnected(const MaterialNode& node, std::string_view portName) {
    return node.findOutputPortIndex(portName) >= 0 && node.outputPort(portName).connected;
}

void declareInputs(FunctionBuilder& builder, const MaterialNode& node) {
    declareInputs(builder, node, [](const Port& /*input*/) { return 0.0F; });
}

void declareOutputs(FunctionBuilder& builder, const MaterialNode& node) {
    for (const Port& output : node.outputs) {
        builder.addOutputPort(output);
    }
}

void emitFunction(GraphGenerator& generator, MaterialNode& node, FunctionBuilder& builder,
                  ExecutionLevel level, const std::string& functionName) {
    const auto function = builder.finish(level, functionName);
    generator.addNode(function);
    node.attachLinks(generator, function);
}

void describeBinding(Binding& binding, const MaterialNode& node) {
    binding.description = node.descriptionProperty->getString();
    binding.group = node.bindingGroupProperty->getString();
    binding.helpUrl = node.helpUrlProperty->getString();
}

std::uint32_t vectorComponentCount(const Property& componentCount) {
    const std::int32_t count = componentCount.getInteger();
    if (count < 2 || count > 4) {
        throw ShaderError("component count must be between 2 and 4");
    }
    return static_cast<std::uint32_t>(count);
}

} // namespace patina
