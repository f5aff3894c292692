#include "host/material.h"

#include "host/material_steps.h"
#include "host/property_text.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <list>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace patina {

using namespace detail;

namespace {

void clearReferences(const MaterialNode& node) {
    for (const std::shared_ptr<Property>& property : *node.properties) {
        property->nodeValue.reset();
    }
}

void dropLink(std::list<std::weak_ptr<NodeConnection>>& links,
              const std::shared_ptr<NodeConnection>& record) {
    links.remove_if([&](const std::weak_ptr<NodeConnection>& link) { return link.lock() == record; });
}

/// Builds one material, step by step.
class MaterialBuilder {
public:
    MaterialBuilder(MaterialDocument document, const PluginSet& plugins, Warnings& warnings, Errors* errors)
        : plugins_(plugins), warnings_(warnings), errors_(errors) {
        material_.document = std::move(document);
        material_.file = document_.file;
        material_.line = document_.line;
        material_.name = document_.name;
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

    void restoreProperties() {
        const NodeOfId nodeOfId = [this](const std::string& id, int line) {
            return material_.items[requireNode(id, line)].node;
        };
        for (std::size_t i = 0; i < document_.nodes.size(); ++i) {
            const DocumentNode& saved = document_.nodes[i];
            const MaterialItem& item = material_.items[i];
            const std::shared_ptr<PropertySet> set = makeSavedSet(saved.type, saved.version);
            for (const DocumentProperty& property : saved.properties) {
                attempt(errors_, [&] { addSaved(*set, saved, property, item, nodeOfId); });
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
                  const MaterialItem& item, const NodeOfId& nodeOfId) {
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
        set.add(savedProperty(document_.file, node.id, saved, nodeOfId));
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
        const NodeIndex indexByNode = indexNodes(material_);
        DependencyOrder order = orderByDependencies(referencesOf(material_, indexByNode));
        while (!order.cycle.empty()) {
            attempt(errors_, [&] { failAtReferenceCycle(material_, order.cycle); });
            clearReferences(*material_.items[order.cycle.front()].node);
            order = orderByDependencies(referencesOf(material_, indexByNode));
        }
        for (const std::size_t index : order.order) {
            attempt(errors_, [&] { updateItem(material_, material_.items[index]); });
        }
    }

    using ConnectedInputs = std::map<std::pair<std::size_t, std::string>, int>; // to the connection's line

    void connectNodes() {
        ConnectedInputs connectedInputs;
        for (const DocumentConnection& saved : document_.connections) {
            attempt(errors_, [&] { connectNode(saved, connectedInputs); });
        }
    }

    void connectNode(const DocumentConnection& saved, ConnectedInputs& connectedInputs) {
        MaterialConnection connection;
        connection.source = requireNode(saved.source, saved.line);
        connection.destination = requireNode(saved.destination, saved.line);
        connection.line = saved.line;
        const MaterialItem& source = material_.items[connection.source];
        const MaterialItem& destination = material_.items[connection.destination];
        requireOutput(material_, source, saved.output, saved.line);
        requireInput(material_, destination, saved.input, saved.line);
        const auto [earlier, isNew] =
            connectedInputs.try_emplace({connection.destination, saved.input}, saved.line);
        if (!isNew) {
            fail(saved.line, {nodeTitle(destination), ": input \"", saved.input,
                              "\" is connected twice; the first connection is in line ",
                              std::to_string(earlier->second)});
        }
        connection.record = makeRecord(source.node, saved.output, destination.node, saved.input);
        linkSource(*source.node, connection.record);
        linkDestination(*destination.node, connection.record);
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
        requireOutput(material_, source, saved.port, saved.line);
        output.record = makeRecord(source.node, saved.port);
        linkSource(*source.node, output.record);
        material_.outputs.push_back(std::move(output));
    }

    void orderDownstream() {
        DependencyOrder order = orderByDependencies(sourcesOf(material_));
        while (!order.cycle.empty()) {
            attempt(errors_, [&] { failAtConnectionCycle(material_, order.cycle); });
            dropConnections(order.cycle.size() > 1 ? order.cycle[1] : order.cycle[0], order.cycle[0]);
            order = orderByDependencies(sourcesOf(material_));
        }
        material_.downstream = std::move(order.order);
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

    const PluginSet& plugins_;
    Warnings& warnings_;
    Errors* errors_;
    Material material_;
    const MaterialDocument& document_ = material_.document;
    std::unordered_map<std::string, std::size_t> indexById_;
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
    document = std::move(other.document);
    return *this;
}

Material::~Material() {
    for (const MaterialItem& item : items) {
        if (item.node) {
            clearReferences(*item.node);
        }
    }
}

bool hasPlaceholder(const Material& material) {
    return std::any_of(material.items.begin(), material.items.end(),
                       [](const MaterialItem& item) { return item.placeholder; });
}

std::string nodeTitle(const MaterialItem& item) {
    return joinText({"node \"", item.id, "\" (\"", item.node->name(), "\")"});
}

Material buildMaterial(MaterialDocument document, const PluginSet& plugins, Warnings& warnings,
                       Errors* errors) {
    return MaterialBuilder(std::move(document), plugins, warnings, errors).build();
}

} // namespace patina
