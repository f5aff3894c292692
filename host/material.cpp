#include "host/material.h"

#include "host/dependency_order.h"
#include "nodemodel/text.h"

#include <charconv>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr const char* placeholderType = "CoreDefault";
constexpr const char* typePropertyName = "Type";

/// The number that makes up the whole text, in decimal.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool decimal = text.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !decimal) {
        return std::nullopt;
    }
    return number;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::array<float, 3>> parseColour(std::string_view text) {
    std::array<float, 3> colour{};
    for (std::size_t i = 0; i < colour.size(); ++i) {
        const std::size_t comma = text.find(',');
        const bool last = i + 1 == colour.size();
        if (last != (comma == std::string_view::npos)) {
            return std::nullopt;
        }
        const auto component = parseNumber<float>(trimmed(text.substr(0, comma)));
        if (!component) {
            return std::nullopt;
        }
        colour[i] = *component;
        text.remove_prefix(last ? text.size() : comma + 1);
    }
    return colour;
}

std::string listOf(const std::vector<Port>& ports) {
    std::string text;
    for (const Port& port : ports) {
        appendText(text, {text.empty() ? "\"" : ", \"", port.name, "\""});
    }
    return text.empty() ? "it has none" : "it has " + text;
}

void clearReferences(const MaterialNode& node) {
    for (const std::shared_ptr<Property>& property : *node.properties) {
        property->nodeValue.reset();
    }
}

/// Builds one material, step by step.
class MaterialBuilder {
public:
    MaterialBuilder(const MaterialDocument& document, const PluginSet& plugins, Warnings& warnings,
                    Errors* errors)
        : document_(document), plugins_(plugins), warnings_(warnings), errors_(errors) {
        material_.file = document.file;
        material_.line = document.line;
        material_.name = document.name;
    }

    Material build() {
        createNodes();
        restoreProperties();
        updateInReferenceOrder();
        connectNodes();
        connectOutputs();
        orderDownstream();
        return std::move(material_);
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({document_.file, line}, joinText(pieces));
    }

    void createNodes() {
        for (const DocumentNode& saved : document_.nodes) {
            MaterialItem item;
            item.id = saved.id;
            item.line = saved.line;
            item.placeholder = saved.type == placeholderType || !plugins_.offers(saved.type);
            if (item.placeholder && !plugins_.offers(placeholderType)) {
                fail(saved.line, {"no plug-in offers the type \"", saved.type, "\" of node \"", saved.id,
                                  "\", nor a placeholder for it; load the Core plug-in"});
            }
            const bool isMade = attempt(errors_, [&] { item.node = createNode(item, saved); });
            if (!isMade) {
                item.placeholder = true;
                item.node = createNode(item, saved);
            }
            if (item.placeholder && saved.type != placeholderType) {
                warnings_.push_back({{document_.file, saved.line},
                                     joinText({"no plug-in offers the type \"", saved.type, "\" of node \"",
                                               saved.id, "\"; a placeholder stands in for it"})});
            }
            indexById_.emplace(saved.id, material_.items.size());
            indexByNode_.emplace(item.node.get(), material_.items.size());
            material_.items.push_back(std::move(item));
        }
    }

    std::shared_ptr<MaterialNode> createNode(const MaterialItem& item, const DocumentNode& saved) const {
        try {
            return plugins_.createNode(item.placeholder ? placeholderType : saved.type);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            fail(saved.line, {"node \"", saved.id, "\": ", currentExceptionText()});
        }
    }

    std::size_t requireNode(const std::string& id, int line) const {
        const auto found = indexById_.find(id);
        if (found == indexById_.end()) {
            fail(line, {"there is no node with the id \"", id, "\""});
        }
        return found->second;
    }

    /// A property that carries the saved value; its other fields do not matter.
    std::shared_ptr<Property> savedProperty(const DocumentNode& node, const DocumentProperty& saved) const {
        const auto refuse = [&](const char* wanted) {
            fail(saved.line, {"node \"", node.id, "\": property \"", saved.name, "\": \"", saved.value,
                              "\" is not ", wanted});
        };
        auto property = makeProperty(saved.name);
        switch (saved.kind) {
        case PropertyType::Bool:
            if (saved.value != "Yes" && saved.value != "No") {
                refuse("\"Yes\" or \"No\"");
            }
            property->setBool(saved.value == "Yes");
            break;
        case PropertyType::Integer: {
            const auto value = parseNumber<std::int32_t>(saved.value);
            if (!value) {
                refuse("a whole number of 32 bits");
            }
            property->setInteger(*value);
            break;
        }
        case PropertyType::Float: {
            const auto value = parseNumber<float>(saved.value);
            if (!value) {
                refuse("a decimal number that a float can hold");
            }
            property->setFloat(*value);
            break;
        }
        case PropertyType::String:
            property->setString(saved.value);
            break;
        case PropertyType::Colour: {
            const auto colour = parseColour(saved.value);
            if (!colour) {
                refuse("a colour, \"red, green, blue\"");
            }
            property->setColour((*colour)[0], (*colour)[1], (*colour)[2]);
            break;
        }
        case PropertyType::Enum:
            property->addEnumValue(saved.value);
            break;
        case PropertyType::Node:
            property->kind = PropertyType::Node;
            if (!saved.value.empty()) {
                property->nodeValue = material_.items[requireNode(saved.value, saved.line)].node;
            }
            break;
        }
        return property;
    }

    void restoreProperties() {
        for (std::size_t i = 0; i < document_.nodes.size(); ++i) {
            const DocumentNode& saved = document_.nodes[i];
            const MaterialItem& item = material_.items[i];
            const auto set = std::make_shared<PropertySet>();
            set->version = saved.version;
            // the type stands on the node; a placeholder takes it from here
            const auto type = makeProperty(typePropertyName);
            type->setString(saved.type);
            set->add(type);
            for (const DocumentProperty& property : saved.properties) {
                attempt(errors_, [&] { addSaved(*set, saved, property, item); });
            }
            attempt(errors_, [&] { load(item, saved, set); });
        }
    }

    void load(const MaterialItem& item, const DocumentNode& saved, const std::shared_ptr<PropertySet>& set) {
        try {
            item.node->loadProperties(set);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            fail(lineOfRefused(saved, item, *set), {nodeTitle(item), ": ", currentExceptionText()});
        }
    }

    void addSaved(PropertySet& set, const DocumentNode& node, const DocumentProperty& saved,
                  const MaterialItem& item) {
        if (saved.name == typePropertyName) {
            if (saved.kind != PropertyType::String || saved.value != node.type) {
                fail(saved.line, {"node \"", node.id, "\": the saved \"Type\" is not the node's type \"",
                                  node.type, "\""});
            }
            return;
        }
        if (!item.placeholder && item.node->properties->byName.count(saved.name) == 0) {
            warnings_.push_back({{document_.file, saved.line},
                                 joinText({"node \"", node.id, "\": type \"", node.type,
                                           "\" has no property \"", saved.name, "\"; it is ignored"})});
        }
        set.add(savedProperty(node, saved));
    }

    /// The line of the saved property that the node did not take, or of the node when it refused the whole
    /// set.
    static int lineOfRefused(const DocumentNode& saved, const MaterialItem& item, const PropertySet& set) {
        if (set.version <= item.node->properties->version) {
            for (const DocumentProperty& property : saved.properties) {
                const auto target = item.node->properties->byName.find(property.name);
                if (target == item.node->properties->byName.end()) {
                    continue;
                }
                try {
                    Property probe(*target->second);
                    probe.copyFrom(*set.find(property.name));
                } catch (const ShaderError&) {
                    return property.line;
                }
            }
        }
        return saved.line;
    }

    void updateInReferenceOrder() {
        DependencyOrder order = orderByDependencies(findReferences());
        while (!order.cycle.empty()) {
            attempt(errors_, [&] { failAtCycle("nodes refer to one another in a cycle: ", order.cycle); });
            clearReferences(*material_.items[order.cycle.front()].node);
            order = orderByDependencies(findReferences());
        }
        for (const std::size_t index : order.order) {
            const MaterialItem& item = material_.items[index];
            attempt(errors_, [&] {
                onBehalfOf(material_, item, item.line, [&] { item.node->updateFromProperties(nullptr); });
            });
        }
    }

    Dependencies findReferences() const {
        Dependencies references(material_.items.size());
        for (std::size_t i = 0; i < material_.items.size(); ++i) {
            for (const std::shared_ptr<Property>& property : *material_.items[i].node->properties) {
                if (property->kind == PropertyType::Node && property->nodeValue) {
                    references[i].push_back(indexByNode_.at(property->nodeValue.get()));
                }
            }
        }
        return references;
    }

    /// Reports a cycle whose items each depend on the next.
    [[noreturn]] void failAtCycle(const char* what, const std::vector<std::size_t>& cycle) const {
        constexpr std::size_t shown = 8;
        std::string path;
        for (std::size_t i = 0; i < cycle.size() && i < shown; ++i) {
            appendText(path, {nodeTitle(material_.items[cycle[i]]), " -> "});
        }
        if (cycle.size() > shown) {
            path += "... -> ";
        }
        fail(material_.items[cycle.front()].line, {what, path, nodeTitle(material_.items[cycle.front()])});
    }

    Port* findPort(std::vector<Port>& ports, int index) {
        return index < 0 ? nullptr : &ports[static_cast<std::size_t>(index)];
    }

    /// The named output, or null on a placeholder, which has no ports.
    Port* requireOutput(const MaterialItem& item, const std::string& name, int line) {
        Port* port = findPort(item.node->outputs, item.node->findOutputPortIndex(name));
        if (port == nullptr && !item.placeholder) {
            fail(line, {nodeTitle(item), " has no output \"", name, "\"; ", listOf(item.node->outputs)});
        }
        return port;
    }

    Port* requireInput(const MaterialItem& item, const std::string& name, int line) {
        Port* port = findPort(item.node->inputs, item.node->findInputPortIndex(name));
        if (port == nullptr && !item.placeholder) {
            fail(line, {nodeTitle(item), " has no input \"", name, "\"; ", listOf(item.node->inputs)});
        }
        return port;
    }

    void connectNodes() {
        ConnectedInputs connectedInputs;
        for (const DocumentConnection& saved : document_.connections) {
            attempt(errors_, [&] { connectNode(saved, connectedInputs); });
        }
    }

    using ConnectedInputs = std::map<std::pair<std::size_t, std::string>, int>; // to the connection's line

    void connectNode(const DocumentConnection& saved, ConnectedInputs& connectedInputs) {
        MaterialConnection connection;
        connection.source = requireNode(saved.source, saved.line);
        connection.destination = requireNode(saved.destination, saved.line);
        connection.line = saved.line;
        const MaterialItem& source = material_.items[connection.source];
        const MaterialItem& destination = material_.items[connection.destination];
        Port* output = requireOutput(source, saved.output, saved.line);
        Port* input = requireInput(destination, saved.input, saved.line);
        const auto [earlier, isNew] =
            connectedInputs.try_emplace({connection.destination, saved.input}, saved.line);
        if (!isNew) {
            fail(saved.line, {nodeTitle(destination), ": input \"", saved.input,
                              "\" is connected twice; the first connection is in line ",
                              std::to_string(earlier->second)});
        }
        connection.record = std::make_shared<NodeConnection>();
        connection.record->sourceNode = source.node;
        connection.record->destinationNode = destination.node;
        connection.record->sourcePort = saved.output;
        connection.record->destinationPort = saved.input;
        if (output != nullptr) {
            output->connected = true;
            source.node->outputLinks.push_back(connection.record);
        }
        if (input != nullptr) {
            input->connected = true;
            destination.node->inputLinks.push_back(connection.record);
        }
        material_.connections.push_back(std::move(connection));
    }

    void connectOutputs() {
        std::set<std::string> names;
        for (const DocumentOutput& saved : document_.outputs) {
            attempt(errors_, [&] { connectOutput(saved, names); });
        }
    }

    void connectOutput(const DocumentOutput& saved, std::set<std::string>& names) {
        if (!names.insert(saved.name).second) {
            fail(saved.line, {"there is another output \"", saved.name, "\""});
        }
        MaterialOutput output;
        output.name = saved.name;
        output.source = requireNode(saved.source, saved.line);
        output.line = saved.line;
        const MaterialItem& source = material_.items[output.source];
        output.record = std::make_shared<NodeConnection>();
        output.record->sourceNode = source.node;
        output.record->sourcePort = saved.port;
        if (Port* port = requireOutput(source, saved.port, saved.line)) {
            port->connected = true;
            source.node->outputLinks.push_back(output.record);
        }
        material_.outputs.push_back(std::move(output));
    }

    void orderDownstream() {
        DependencyOrder order = orderByDependencies(findSources());
        while (!order.cycle.empty()) {
            attempt(errors_, [&] {
                failAtCycle("the connections form a cycle: ", {order.cycle.rbegin(), order.cycle.rend()});
            });
            dropConnections(order.cycle.size() > 1 ? order.cycle[1] : order.cycle[0], order.cycle[0]);
            order = orderByDependencies(findSources());
        }
        material_.downstream = std::move(order.order);
    }

    Dependencies findSources() const {
        Dependencies sources(material_.items.size());
        for (const MaterialConnection& connection : material_.connections) {
            sources[connection.destination].push_back(connection.source);
        }
        return sources;
    }

    void dropConnections(std::size_t source, std::size_t destination) {
        auto& connections = material_.connections;
        for (auto connection = connections.begin(); connection != connections.end();) {
            if (connection->source == source && connection->destination == destination) {
                dropLink(material_.items[source].node->outputLinks, connection->record);
                dropLink(material_.items[destination].node->inputLinks, connection->record);
                connection = connections.erase(connection);
            } else {
                ++connection;
            }
        }
    }

    static void dropLink(std::list<std::weak_ptr<NodeConnection>>& links,
                         const std::shared_ptr<NodeConnection>& record) {
        links.remove_if([&](const std::weak_ptr<NodeConnection>& link) { return link.lock() == record; });
    }

    const MaterialDocument& document_;
    const PluginSet& plugins_;
    Warnings& warnings_;
    Errors* errors_;
    Material material_;
    std::unordered_map<std::string, std::size_t> indexById_;
    std::unordered_map<const MaterialNode*, std::size_t> indexByNode_;
};

} // namespace

Material& Material::operator=(Material&& other) noexcept {
    Material former(std::move(*this));
    file = std::move(other.file);
    line = other.line;
    name = std::move(other.name);
    items = std::move(other.items);
    connections = std::move(other.connections);
    outputs = std::move(other.outputs);
    downstream = std::move(other.downstream);
    return *this;
}

Material::~Material() {
    for (const MaterialItem& item : items) {
        if (item.node) {
            clearReferences(*item.node);
        }
    }
}

std::string nodeTitle(const MaterialItem& item) {
    return joinText({"node \"", item.id, "\" (\"", item.node->name(), "\")"});
}

Material buildMaterial(const MaterialDocument& document, const PluginSet& plugins, Warnings& warnings,
                       Errors* errors) {
    return MaterialBuilder(document, plugins, warnings, errors).build();
}

} // namespace patina
