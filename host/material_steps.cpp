#include "host/material_steps.h"

#include "nodemodel/text.h"

#include <algorithm>

namespace patina {

using namespace detail;

namespace {

std::string listOf(const std::vector<Port>& ports) {
    std::string text;
    for (const Port& port : ports) {
        appendText(text, {text.empty() ? "\"" : ", \"", port.name, "\""});
    }
    return text.empty() ? "it has none" : "it has " + text;
}

Port* findPort(std::vector<Port>& ports, int index) {
    return index < 0 ? nullptr : &ports[static_cast<std::size_t>(index)];
}

Port* findOutput(MaterialNode& node, const std::string& name) {
    return findPort(node.outputs, node.findOutputPortIndex(name));
}

Port* findInput(MaterialNode& node, const std::string& name) {
    return findPort(node.inputs, node.findInputPortIndex(name));
}

/// Reports a cycle whose items each depend on the next.
[[noreturn]] void failAtCycle(const Material& material, const char* what,
                              const std::vector<std::size_t>& cycle) {
    constexpr std::size_t shown = 8;
    const MaterialItem& first = material.items[cycle.front()];
    std::string path;
    for (std::size_t i = 0; i < cycle.size() && i < shown; ++i) {
        appendText(path, {nodeTitle(material.items[cycle[i]]), " -> "});
    }
    if (cycle.size() > shown) {
        path += "... -> ";
    }
    throw HostError({material.file, first.line}, joinText({what, path, nodeTitle(first)}));
}

} // namespace

PropertyContent detail::valueOf(const Property& property) {
    return {property.kind, property.stringValue, property.intValue, property.floatValues};
}

bool detail::hasValue(const Property& property, const PropertyContent& value) {
    return property.kind == value.kind && property.stringValue == value.text &&
           property.intValue == value.integer && property.floatValues == value.floats;
}

void detail::setValue(Property& property, const PropertyContent& value) {
    property.kind = value.kind;
    property.stringValue = value.text;
    property.intValue = value.integer;
    property.floatValues = value.floats;
}

std::shared_ptr<PropertySet> detail::makeSavedSet(const std::string& type, std::int32_t version) {
    auto set = std::make_shared<PropertySet>();
    set->version = version;
    // the type stands on the node; a placeholder takes it from here
    const auto property = makeProperty(typePropertyName);
    property->setString(type);
    set->add(property);
    return set;
}

void detail::updateItem(const Material& material, MaterialItem& item) {
    const PropertySet& set = *item.node->properties;
    std::vector<PropertyContent> given;
    given.reserve(set.items.size());
    for (const std::shared_ptr<Property>& property : set) {
        given.push_back(valueOf(*property));
    }
    onBehalfOf(material, item, item.line, [&] { item.node->updateFromProperties(nullptr); });
    item.overridden.clear();
    for (std::size_t i = 0; i < std::min(given.size(), set.items.size()); ++i) {
        if (!hasValue(*set.items[i], given[i])) {
            item.overridden.push_back({set.items[i]->name, std::move(given[i])});
        }
    }
}

NodeIndex detail::indexNodes(const Material& material) {
    NodeIndex index;
    for (std::size_t i = 0; i < material.items.size(); ++i) {
        index.emplace(material.items[i].node.get(), i);
    }
    return index;
}

Dependencies detail::referencesOf(const Material& material, const NodeIndex& indexByNode) {
    Dependencies references(material.items.size());
    for (std::size_t i = 0; i < material.items.size(); ++i) {
        for (const std::shared_ptr<Property>& property : *material.items[i].node->properties) {
            if (property->kind == PropertyType::Node && property->nodeValue) {
                references.add(i, indexByNode.at(property->nodeValue.get()));
            }
        }
    }
    return references;
}

std::vector<std::size_t> detail::updateOrder(const Material& material, const Dependencies& references) {
    DependencyOrder order = orderByDependencies(references);
    if (!order.cycle.empty()) {
        failAtReferenceCycle(material, order.cycle);
    }
    return std::move(order.order);
}

Dependencies detail::sourcesOf(const Material& material) {
    Dependencies sources(material.items.size());
    for (const MaterialConnection& connection : material.connections) {
        sources.add(connection.destination, connection.source);
    }
    return sources;
}

std::vector<std::size_t> detail::downstreamOrder(const Material& material) {
    DependencyOrder order = orderByDependencies(sourcesOf(material));
    if (!order.cycle.empty()) {
        failAtConnectionCycle(material, order.cycle);
    }
    return std::move(order.order);
}

void detail::failAtReferenceCycle(const Material& material, const std::vector<std::size_t>& cycle) {
    failAtCycle(material, "nodes refer to one another in a cycle: ", cycle);
}

void detail::failAtConnectionCycle(const Material& material, const std::vector<std::size_t>& cycle) {
    failAtCycle(material, "the connections form a cycle: ", {cycle.rbegin(), cycle.rend()});
}

Port* detail::requireOutput(const Material& material, const MaterialItem& item, const std::string& name,
                            int line) {
    Port* port = findOutput(*item.node, name);
    if (port == nullptr && !item.placeholder) {
        throw HostError({material.file, line}, joinText({nodeTitle(item), " has no output \"", name, "\"; ",
                                                         listOf(item.node->outputs)}));
    }
    return port;
}

Port* detail::requireInput(const Material& material, const MaterialItem& item, const std::string& name,
                           int line) {
    Port* port = findInput(*item.node, name);
    if (port == nullptr && !item.placeholder) {
        throw HostError({material.file, line}, joinText({nodeTitle(item), " has no input \"", name, "\"; ",
                                                         listOf(item.node->inputs)}));
    }
    return port;
}

std::shared_ptr<NodeConnection> detail::makeRecord(const std::shared_ptr<MaterialNode>& source,
                                                   const std::string& output,
                                                   const std::shared_ptr<MaterialNode>& destination,
                                                   const std::string& input) {
    auto record = makeRecord(source, output);
    record->destinationNode = destination;
    record->destinationPort = input;
    return record;
}

std::shared_ptr<NodeConnection> detail::makeRecord(const std::shared_ptr<MaterialNode>& source,
                                                   const std::string& output) {
    auto record = std::make_shared<NodeConnection>();
    record->sourceNode = source;
    record->sourcePort = output;
    return record;
}

void detail::linkSource(MaterialNode& node, const std::shared_ptr<NodeConnection>& record) {
    if (Port* port = findOutput(node, record->sourcePort)) {
        port->connected = true;
        node.outputLinks.push_back(record);
    }
}

void detail::linkDestination(MaterialNode& node, const std::shared_ptr<NodeConnection>& record) {
    if (Port* port = findInput(node, record->destinationPort)) {
        port->connected = true;
        node.inputLinks.push_back(record);
    }
}

} // namespace patina
