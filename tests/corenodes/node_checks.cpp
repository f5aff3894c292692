#include "tests/corenodes/node_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <locale>
#include <sstream>

namespace patina::testing {

namespace {

constexpr std::size_t standardPropertyCount = 8;

struct StandardRow {
    const char* name;
    PropertyType kind;
    const char* value;
    const char* help;
    bool editable;
    bool visible;
    std::uint32_t stringStyle;
};

std::array<StandardRow, standardPropertyCount> standardRows(const char* typeName, const char* name) {
    return {{
        {"Type", PropertyType::String, typeName, "Type: the internal type of the node.", false, true, 0},
        {"Name", PropertyType::String, name,
         "Name: the name entered here will correspond to the binding name presented in Maya.", true, true, 0},
        {"BindingIndex", PropertyType::Integer, "0", "", true, false, 0},
        {"BindingGroup", PropertyType::String, "", "", true, false, 0},
        {"PositionX", PropertyType::Float, "0", "", true, false, 0},
        {"PositionY", PropertyType::Float, "0", "", true, false, 0},
        {"Description", PropertyType::String, "",
         "Description: if this node generates a Maya binding, then this description will be used a tooltip "
         "for the binding. Otherwise this is a space for general notes about the node.",
         true, true, 1},
        {"Help Url", PropertyType::String, "",
         "Help Url: if this node generates a Maya binding then this Url will be accessable from a button on "
         "the binding Ui.",
         true, true, 2},
    }};
}

std::string numberText(float value) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << value;
    return text.str();
}

template <typename Flag>
Texts ownProperties(const MaterialNode& node, Flag flag) {
    Texts names;
    const auto& items = node.properties->items;
    for (std::size_t i = standardPropertyCount; i < items.size(); ++i) {
        if (flag(*items[i])) {
            names.push_back(items[i]->name);
        }
    }
    return names;
}

std::string writtenType(const ShaderType& type) {
    static constexpr const char* names[] = {"unknown",   "void",      "float",       "half",
                                            "fixed",     "int",       "bool",        "sampler1D",
                                            "sampler2D", "sampler3D", "samplerCUBE", "samplerRECT"};
    EXPECT_EQ(type.rows, 1);
    EXPECT_EQ(type.arraySize, 1);
    const auto code = static_cast<std::size_t>(type.componentType);
    if (code >= std::size(names)) {
        return "(no type)";
    }
    return vectorText(names[code], static_cast<std::uint32_t>(type.columns));
}

Texts portTexts(const std::vector<GeneratorPort>& ports) {
    Texts texts;
    for (const GeneratorPort& port : ports) {
        texts.push_back(writtenType(port.type) + " " + port.name);
    }
    return texts;
}

std::string placeText(const GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& node,
                      const std::string& port) {
    if (node == nullptr) {
        return "none";
    }
    const auto& nodes = generator.graph->nodes;
    const auto found = std::find(nodes.begin(), nodes.end(), node);
    const std::string place = found == nodes.end() ? "?" : std::to_string(found - nodes.begin());
    return node->name + "#" + place + "." + port;
}

} // namespace

std::string valueText(const Property& property) {
    const auto& values = property.floatValues;
    switch (property.kind) {
    case PropertyType::Bool:
        return property.intValue == 1 ? "true" : "false";
    case PropertyType::Integer:
        return std::to_string(property.intValue);
    case PropertyType::Float:
        return numberText(values[0]);
    case PropertyType::Colour:
        return numberText(values[0]) + ", " + numberText(values[1]) + ", " + numberText(values[2]);
    case PropertyType::String:
    case PropertyType::Enum:
        return property.stringValue;
    case PropertyType::Node:
        return property.nodeValue ? property.nodeValue->nameProperty->stringValue : "none";
    }
    return "(no kind)";
}

void expectProperties(const MaterialNode& node, const char* typeName, const char* name,
                      const std::vector<PropertyRow>& rows) {
    const auto& items = node.properties->items;
    EXPECT_EQ(node.properties->version, 0);
    EXPECT_EQ(node.properties->byName.size(), items.size());
    ASSERT_EQ(items.size(), standardPropertyCount + rows.size());
    for (const std::shared_ptr<Property>& item : items) {
        SCOPED_TRACE(item->name);
        EXPECT_EQ(node.properties->byName.at(item->name), item);
        EXPECT_EQ(item->label, "");
    }

    const std::shared_ptr<Property> handles[] = {
        node.typeProperty,      node.nameProperty,      node.bindingIndexProperty, node.bindingGroupProperty,
        node.positionXProperty, node.positionYProperty, node.descriptionProperty,  node.helpUrlProperty};
    const auto standard = standardRows(typeName, name);
    for (std::size_t i = 0; i < standardPropertyCount; ++i) {
        const StandardRow& row = standard[i];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(items[i], handles[i]);
        EXPECT_EQ(items[i]->name, row.name);
        EXPECT_EQ(items[i]->kind, row.kind);
        EXPECT_EQ(valueText(*items[i]), row.value);
        EXPECT_EQ(items[i]->help, row.help);
        EXPECT_EQ(items[i]->editable, row.editable);
        EXPECT_EQ(items[i]->visible, row.visible);
        EXPECT_EQ(items[i]->stringStyle, row.stringStyle);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const PropertyRow& row = rows[i];
        const Property& item = *items[standardPropertyCount + i];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(item.name, row.name);
        EXPECT_EQ(item.kind, row.kind);
        EXPECT_EQ(valueText(item), row.value);
        EXPECT_EQ(item.help, row.help);
        EXPECT_EQ(item.allowedValues, row.allowedValues);
        EXPECT_EQ(item.stringStyle, 0U);
    }
}

void expectColours(const MaterialNode& node, float red, float green, float blue) {
    EXPECT_EQ(node.bodyColour, (std::array<float, 4>{red, green, blue, 0.9F}));
    EXPECT_EQ(node.textColour, (std::array<float, 4>{0.0F, 0.0F, 0.0F, 1.0F}));
}

Texts visibleProperties(const MaterialNode& node) {
    return ownProperties(node, [](const Property& item) { return item.visible; });
}

Texts editableProperties(const MaterialNode& node) {
    return ownProperties(node, [](const Property& item) { return item.editable; });
}

Property& property(const MaterialNode& node, const char* name) { return *node.properties->find(name); }

void setUnknownEnum(const MaterialNode& node, const char* name) {
    property(node, name).stringValue = "Something Else";
}

void expectPorts(const std::vector<Port>& ports, const std::vector<PortRow>& rows) {
    ASSERT_EQ(ports.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Port& port = ports[i];
        const PortRow& row = rows[i];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(port.name, row.name);
        EXPECT_EQ(port.label, row.label);
        EXPECT_EQ(port.componentCount, row.componentCount);
        EXPECT_EQ(port.componentCountKnown, row.componentCount != 0);
        EXPECT_EQ(port.componentCountFixed, row.componentCount != 0);
        EXPECT_FALSE(port.componentCountConflict);
        EXPECT_EQ(port.precision, row.precision == 0 ? 1 : row.precision);
        EXPECT_EQ(port.precisionKnown, row.precision != 0);
        EXPECT_EQ(port.precisionFixed, row.precision != 0);
        EXPECT_FALSE(port.connected);
    }
}

std::string vectorText(const std::string& word, std::uint32_t width) {
    return width == 1 ? word : word + std::to_string(width);
}

std::string constantLine(const std::string& word, std::uint32_t width, const std::string& name,
                         const std::string& value) {
    return "\t" + vectorText(word, width) + " " + name + " = " + word + "( " + value + " )." +
           std::string(width, 'x') + ";\n";
}

void resolve(MaterialNode& node, const Precision& precision, std::uint32_t width) {
    for (Port& input : node.inputs) {
        if (!input.componentCountFixed) {
            input.componentCount = width;
            input.componentCountKnown = true;
        }
    }
    for (Port& output : node.outputs) {
        output.precision = precision.code;
        output.precisionKnown = true;
    }
    node.resolveComponentCounts();
    node.resolvePrecision();
}

std::shared_ptr<NodeConnection> Connections::into(MaterialNode& node, const std::string& port) {
    const auto connection = kept_.emplace_back(std::make_shared<NodeConnection>());
    connection->sourcePort = "out_elsewhere";
    connection->destinationPort = port;
    node.inputLinks.push_back(connection);
    node.inputPort(port).connected = true;
    return connection;
}

std::shared_ptr<NodeConnection> Connections::outOf(MaterialNode& node, const std::string& port) {
    const auto connection = kept_.emplace_back(std::make_shared<NodeConnection>());
    connection->sourcePort = port;
    connection->destinationPort = "in_elsewhere";
    node.outputLinks.push_back(connection);
    node.outputPort(port).connected = true;
    return connection;
}

std::shared_ptr<NodeConnection> Connections::between(MaterialNode& source, const std::string& sourcePort,
                                                     MaterialNode& destination,
                                                     const std::string& destinationPort) {
    const auto connection = outOf(source, sourcePort);
    connection->destinationPort = destinationPort;
    destination.inputLinks.push_back(connection);
    destination.inputPort(destinationPort).connected = true;
    return connection;
}

GraphGenerator generated(MaterialNode& node) {
    GraphGenerator generator;
    node.generateCode(generator);
    return generator;
}

bool isUntouched(const GraphGenerator& generator) {
    const Graph& graph = *generator.graph;
    return generator.nodeMap.empty() && generator.portLinks.empty() && graph.nodes.empty() &&
           graph.edges.empty() && graph.nodeSet.empty() && graph.edgeSet.empty() && graph.interfaces.empty();
}

Texts nodeNames(const GraphGenerator& generator) {
    Texts names;
    EXPECT_EQ(generator.nodeMap.size(), generator.graph->nodes.size());
    for (const std::shared_ptr<GeneratorNode>& node : generator.graph->nodes) {
        names.push_back(node->name);
        EXPECT_EQ(generator.findNode(node), node);
    }
    return names;
}

Texts edges(const GraphGenerator& generator) {
    Texts texts;
    for (const std::shared_ptr<GeneratorEdge>& edge : generator.graph->edges) {
        texts.push_back(placeText(generator, edge->tail.lock(), edge->tailPort) + " -> " +
                        placeText(generator, edge->head.lock(), edge->headPort));
        EXPECT_FALSE(edge->flag);
    }
    return texts;
}

std::string portLink(const GraphGenerator& generator, const std::shared_ptr<NodeConnection>& connection) {
    const auto found = generator.portLinks.find(connection);
    if (found == generator.portLinks.end()) {
        return "(no record)";
    }
    const PortLink& link = found->second;
    std::string text = placeText(generator, link.producer.node, link.producer.port) + " -> ";
    if (link.consumers.empty()) {
        text += "none";
    }
    for (std::size_t i = 0; i < link.consumers.size(); ++i) {
        text += (i == 0 ? "" : ", ") + placeText(generator, link.consumers[i].node, link.consumers[i].port);
    }
    return text;
}

void expectFunction(const GraphGenerator& generator, std::size_t place, const FunctionRow& row) {
    ASSERT_LT(place, generator.graph->nodes.size());
    const GeneratorNode& node = *generator.graph->nodes[place];
    EXPECT_EQ(node.kind, NodeKind::Function);
    EXPECT_EQ(node.name, row.name);
    EXPECT_EQ(node.level, row.level);
    EXPECT_EQ(portTexts(node.inputs), row.inputs);
    EXPECT_EQ(portTexts(node.outputs), row.outputs);
    EXPECT_EQ(node.code, row.code);
}

void expectParameter(const GraphGenerator& generator, std::size_t place, NodeKind kind,
                     const std::string& name, const std::string& type) {
    ASSERT_LT(place, generator.graph->nodes.size());
    const GeneratorNode& node = *generator.graph->nodes[place];
    EXPECT_EQ(node.kind, kind);
    EXPECT_EQ(node.name, name);
    EXPECT_EQ(writtenType(node.type), type);
    EXPECT_EQ(node.level, ExecutionLevel::Automatic);
    EXPECT_EQ(node.code, "");
    EXPECT_EQ(node.flags, 0);
    EXPECT_EQ(node.registerReference, RegisterReference{});
    EXPECT_EQ(portTexts(node.inputs), Texts{});
    EXPECT_EQ(portTexts(node.outputs), Texts{type + " read"});
}

std::vector<std::shared_ptr<Binding>> bindingsOf(MaterialNode& node) {
    BindingCollection collection;
    node.addBindings(collection);
    return collection.bindings;
}

void describeNode(MaterialNode& node) {
    node.descriptionProperty->setString("How it looks.");
    node.bindingGroupProperty->setString("Surface");
    node.helpUrlProperty->setString("https://example.org/surface");
}

void expectDescribed(const Binding& binding) {
    EXPECT_EQ(binding.description, "How it looks.");
    EXPECT_EQ(binding.group, "Surface");
    EXPECT_EQ(binding.helpUrl, "https://example.org/surface");
}

Texts annotations(Binding& binding) {
    const std::unique_ptr<xmlNode, void (*)(xmlNode*)> element(
        xmlNewNode(nullptr, reinterpret_cast<const xmlChar*>("binding")), xmlFreeNode);
    binding.writeAnnotations(element.get());
    Texts texts;
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        const std::string key = reinterpret_cast<const char*>(attribute->name);
        texts.push_back(key + "=" + readAttribute(element.get(), key));
    }
    return texts;
}

} // namespace patina::testing
