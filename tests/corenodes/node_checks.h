#pragma once

// What the tests of the Core nodes share: rows against which a node is held, and a host's part in generating
// code and bindings. Texts that describe what a node made are written here, not by the library.

#include "bindings/bindings.h"
#include "nodemodel/nodemodel.h"
#include "shadergraph/shadergraph.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace patina::testing {

using Texts = std::vector<std::string>;

/// A property of a new node.
struct PropertyRow {
    const char* name;
    PropertyType kind;
    const char* value; ///< as valueText writes it
    const char* help;
    Texts allowedValues = {};
};

/// A property's value in words: "true", "4", "0.5", "0, 0, 0", the text itself, or the referred node's name.
std::string valueText(const Property& property);

/// Holds all properties of a new node against its rows, the eight standard ones first.
void expectProperties(const MaterialNode& node, const char* typeName, const char* name,
                      const std::vector<PropertyRow>& rows);

/// Holds the colours of a new node against its body colour.
void expectColours(const MaterialNode& node, float red, float green, float blue);

/// The names of the node's own properties that are visible, or editable, in order.
Texts visibleProperties(const MaterialNode& node);
Texts editableProperties(const MaterialNode& node);

Property& property(const MaterialNode& node, const char* name);
/// Gives an enum a text that is not among its values, as only a careless host can.
void setUnknownEnum(const MaterialNode& node, const char* name);

/// A port after a rebuild.
struct PortRow {
    const char* name;
    const char* label;
    std::uint32_t componentCount; ///< fixed; 0: not known
    std::uint32_t precision = 0;  ///< fixed; 0: not known
};

void expectPorts(const std::vector<Port>& ports, const std::vector<PortRow>& rows);

/// The two precisions that resolution chooses between.
struct Precision {
    std::uint32_t code;
    std::string word;
};
inline const Precision precisions[] = {{2, "float"}, {3, "half"}};
inline const Precision floatPrecision = precisions[0];
inline const Precision halfPrecision = precisions[1];

/// "float3" from "float" and 3; a scalar has no digit.
std::string vectorText(const std::string& word, std::uint32_t width);
/// The line that declares a constant: "\tfloat3 in_value = float( 0.5 ).xxx;\n".
std::string constantLine(const std::string& word, std::uint32_t width, const std::string& name,
                         const std::string& value);

/// Does what a host does before it generates code: pushes a width into the free inputs and a precision into
/// the outputs, and resolves.
void resolve(MaterialNode& node, const Precision& precision, std::uint32_t width = 1);

/// A host's connections: kept here, entered in the nodes, whose ports become connected.
class Connections {
public:
    std::shared_ptr<NodeConnection> into(MaterialNode& node, const std::string& port);
    std::shared_ptr<NodeConnection> outOf(MaterialNode& node, const std::string& port);
    std::shared_ptr<NodeConnection> between(MaterialNode& source, const std::string& sourcePort,
                                            MaterialNode& destination, const std::string& destinationPort);

private:
    std::vector<std::shared_ptr<NodeConnection>> kept_;
};

/// The generator after the node has generated its code into it.
GraphGenerator generated(MaterialNode& node);

bool isUntouched(const GraphGenerator& generator);

/// The names of the graph's nodes in order; all were submitted, none was made by a conversion.
Texts nodeNames(const GraphGenerator& generator);

/// The edges in order, each as "tail#0.port -> head#1.port" with the nodes' places in the graph.
Texts edges(const GraphGenerator& generator);

/// "producer#0.port -> consumer#1.port, ..."; "none" where there is no producer or consumer.
std::string portLink(const GraphGenerator& generator, const std::shared_ptr<NodeConnection>& connection);

/// A generated function; ports are written as "float3 in_value".
struct FunctionRow {
    const char* name;
    ExecutionLevel level;
    Texts inputs;
    Texts outputs;
    std::string code;
};

/// Holds the graph's node at that place against a function.
void expectFunction(const GraphGenerator& generator, std::size_t place, const FunctionRow& row);
/// The same for a varying or uniform parameter, which has one output "read".
void expectParameter(const GraphGenerator& generator, std::size_t place, NodeKind kind,
                     const std::string& name, const std::string& type);

/// What the node adds to an empty collection.
std::vector<std::shared_ptr<Binding>> bindingsOf(MaterialNode& node);

/// Writes the three texts that a node copies into its bindings, and looks for them in one.
void describeNode(MaterialNode& node);
void expectDescribed(const Binding& binding);

/// The attributes that a binding writes on an element, in order, each as "key=value".
Texts annotations(Binding& binding);

} // namespace patina::testing
