#pragma once

#include "bindings/binding.h"
#include "nodemodel/material_node.h"
#include "shadergraph/function_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// What the Core nodes share. Threads and errors: as MaterialNode.

/// How a port is declared in a table of ports.
struct PortDeclaration {
    std::string_view name; ///< empty where there is none
    std::string_view label;
    std::uint32_t componentCount; ///< fixed; 0 leaves it to resolution
};

/// The row of a table that bears the name, or the one that stands for any other text.
template <typename Row, std::size_t Count>
const Row& findRow(const std::array<Row, Count>& table, const std::string& name, const Row& otherwise) {
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const Row& row) { return row.name == name; });
    return found == table.end() ? otherwise : *found;
}

/// The first of the properties that a node's table declares beyond the standard ones.
std::vector<std::shared_ptr<Property>>::const_iterator ownPropertiesOf(const MaterialNode& node);

/// Gives each handle one of these, in the order of the table.
void takeOwnProperties(const MaterialNode& node, std::initializer_list<std::shared_ptr<Property>*> handles);

void addPort(std::vector<Port>& ports, const PortDeclaration& declaration);

/// Replaces both port lists by empty ones.
void clearPorts(MaterialNode& node);

/// Makes a new property an enum of these values, which differ from each other; the first is the default.
void setEnumValues(Property& property, std::initializer_list<std::string_view> values);

/// The same with the names of a table's rows.
template <typename Row, std::size_t Count>
void setEnumValues(Property& property, const std::array<Row, Count>& table) {
    property.allowedValues.reserve(Count);
    for (const Row& row : table) {
        property.allowedValues.emplace_back(row.name);
    }
    property.setEnum(table.front().name);
}

/// The type of the node's resolved precision with that many columns.
ShaderType resolvedType(const MaterialNode& node, std::int32_t columns);

/// The type of the node's resolved precision and component count.
ShaderType resolvedType(const MaterialNode& node);

/// Whether the node has an output of that name to which the host attached a connection.
bool isOutputConnected(const MaterialNode& node, std::string_view portName);

/// Makes a function input of every connected input, and of every other one a constant that `defaultFor`
/// supplies.
template <typename DefaultFor>
void declareInputs(FunctionBuilder& builder, const MaterialNode& node, const DefaultFor& defaultFor) {
    builder.reservePorts(node.inputs.size(), node.outputs.size());
    for (const Port& input : node.inputs) {
        if (input.connected) {
            builder.addInputPort(input);
        } else {
            builder.declarePortConstant(input, defaultFor(input));
        }
    }
}

/// The same with zero for every input that is not connected.
void declareInputs(FunctionBuilder& builder, const MaterialNode& node);

/// Makes a function output of every output.
void declareOutputs(FunctionBuilder& builder, const MaterialNode& node);

/// Makes the function of the builder, which is good for nothing else then, adds it to the generator and links
/// it to the node's connections.
void emitFunction(GraphGenerator& generator, MaterialNode& node, FunctionBuilder& builder,
                  ExecutionLevel level, const std::string& functionName);

/// Copies the node's description, group and help link into a binding that it made.
void describeBinding(Binding& binding, const MaterialNode& node);

/// Checks the width of a vector: 2 to 4, or a ShaderError.
std::uint32_t vectorComponentCount(const Property& componentCount);

} // namespace patina
