#include "host/material.h"

#include "host/material_steps.h"
#include "host/property_text.h"
#include "nodemodel/text.h"

#include <algorithm>
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
        standInForNodes();
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
                item.faulty = true;
                item.node = createNode(item, saved);
            }
            if (item.placeholder && !item.faulty && saved.type != placeholderType) {
                warnings_.push_back({{document_.file, saved.line},
                                     joinText({"no plug-in offers the type \"", saved.type, "\" of node \"",
                                               saved.id, "\"; a placeholder stands in for it"})});
            }
            enter(std::move(item));
        }
    }

    void enter(MaterialItem item) {
        const auto [entry, isNew] = indexById_.emplace(item.id, material_.items.size());
        if (!isNew) {
            item.faulty = true;
            attempt(errors_, [&] {
                fail(item.line, {"there is another node with the id \"", item.id, "\""});
            });
        }
        material_.items.push_back(std::move(item));
    }

    std::shared_ptr<MaterialNode> createNode(const MaterialItem& item, const DocumentNode& saved) const {
        const std::string type = item.placeholder ? placeholderType : saved.type;
        try {
            return plugins_.createNode(type);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            fail(saved.line, {"node \"", saved.id, "\": ", currentExceptionText()});
        }
    }

    std::optional<std::size_t> findNode(const std::string& id) const {
        const auto found = indexById_.find(id);
        return found == indexById_.end() ? std::nullopt : std::optional(found->second);
    }

    std::size_t requireNode(const std::string& id, int line) const {
        const std::optional<std::size_t> index = findNode(id);
        if (!index) {
            fail(line, {"there is no node with the id \"", id, "\""});
        }
        return *index;
    }

    void standInForNodes() {
        if (errors_ == nullptr) {
            return;
        }
        for (const DocumentNode& saved : document_.leftOut.nodes) {
            const std::size_t index = addStandIn(saved);
            if (!saved.id.empty()) {
                indexById_.try_emplace(saved.id, index);
            }
        }
        for (const std::string& id : document_.leftOut.doubtful) {
            if (const auto index = findNode(id)) {
                material_.items[*index].faulty = true;
            }
        }
    }

    std::size_t addStandIn(const DocumentNode& saved) {
        MaterialItem item;
        item.id = saved.id;
        item.line = saved.line;
        item.placeholder = true;
        item.faulty = true;
        item.node = createNode(item, saved);
        material_.items.push_back(std::move(item));
        return material_.items.size() - 1;
    }

    /// The item at the lost end of connections. One has only outputs or only inputs, so that it closes no
    /// cycles.
    std::size_t lostEnd(std::optional<std::size_t>& index) {
        if (!index) {
            DocumentNode nothing;
            nothing.line = document_.line;
            index = addStandIn(nothing);
        }
        return *index;
    }

    /// What a connection that was refused would have joined is not to be missed at either end.
    void standInFor(const DocumentConnection& saved) {
        standInForReader(saved.source, saved.output, saved.line);
        const auto destination = findNode(saved.destination);
        if (destination) {
            const MaterialNode& node = *material_.items[*destination].node;
            const int port = node.findInputPortIndex(saved.input);
            if (port >= 0 && !node.inputs[static_cast<std::size_t>(port)].connected) {
                join(lostEnd(lostSource_), {}, *destination, saved.input, saved.line);
            }
        }
    }

    void standInForReader(const std::string& id, const std::string& port, int line) {
        if (const auto source = findNode(id)) {
            join(*source, port, lostEnd(lostReader_), {}, line);
        }
    }

    void join(std::size_t source, const std::string& output, std::size_t destination,
              const std::string& input, int line) {
        MaterialNode& sourceNode = *material_.items[source].node;
        MaterialNode& destinationNode = *material_.items[destination].node;
        const auto record =
            makeRecord(material_.items[source].node, output, material_.items[destination].node, input);
        linkSource(sourceNode, record);
        linkDestination(destinationNode, record);
        material_.connections.push_back({record, source, destination, line});
    }

    void restoreProperties() {
        for (std::size_t i = 0; i < document_.nodes.size(); ++i) {
            restore(material_.items[i], document_.nodes[i]);
        }
        for (std::size_t i = document_.nodes.size(); i < material_.items.size(); ++i) {
            restore(material_.items[i], document_.leftOut.nodes[i - document_.nodes.size()]);
        }
    }

    void restore(MaterialItem& item, const DocumentNode& saved) {
        const NodeOfId nodeOfId = [&](const std::string& id, int line) {
            const MaterialItem& referred = material_.items[requireNode(id, line)];
            if (isStandIn(referred)) {
                item.faulty = true;
                return std::shared_ptr<MaterialNode>();
            }
            return referred.node;
        };
        const std::shared_ptr<PropertySet> set = makeSavedSet(saved.type, saved.version);
        for (const DocumentProperty& property : saved.properties) {
            const bool isAdded = attempt(errors_, [&] {
                if (item.placeholder) {
                    addUnderstood(*set, saved, property, item, nodeOfId);
                } else {
                    addSaved(*set, saved, property, item, nodeOfId);
                }
            });
            item.faulty = item.faulty || !isAdded;
        }
        load(item, saved, set);
    }

    /// A refusal of a saved property, or of the whole set.
    struct Refusal {
        int line = 0;
        std::string text;
    };

    void load(MaterialItem& item, const DocumentNode& saved, const std::shared_ptr<PropertySet>& set) {
        const std::optional<std::string> reason = loadInto(item, set);
        if (!reason) {
            return;
        }
        item.faulty = true;
        std::vector<Refusal> refusals;
        const std::shared_ptr<PropertySet> rest = withoutRefused(item, saved, *set, refusals);
        if (refusals.empty()) {
            refusals.push_back({saved.line, *reason});
        } else if (const auto second = loadInto(item, rest)) {
            refusals.push_back({saved.line, *second});
        }
        for (const Refusal& refusal : refusals) {
            attempt(errors_, [&] { fail(refusal.line, {nodeTitle(item), ": ", refusal.text}); });
        }
    }

    /// Gives why the node refused, if it did.
    static std::optional<std::string> loadInto(const MaterialItem& item,
                                               const std::shared_ptr<PropertySet>& set) {
        try {
            item.node->loadProperties(set);
            return std::nullopt;
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            return currentExceptionText();
        }
    }

    /// Refuses a second property of a name. No file has one, as reading it refuses that; a document that a
    /// program made may.
    void addOnce(PropertySet& set, const DocumentNode& node, const DocumentProperty& saved,
                 const std::shared_ptr<Property>& property) const {
        try {
            set.add(property);
        } catch (const ShaderError&) { // GCOVR_EXCL_BR_LINE: what add throws, but for want of memory
            fail(saved.line, {"node \"", node.id, "\": property \"", saved.name, "\" is set twice"});
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
        if (item.node->properties->byName.count(saved.name) == 0) {
            warnings_.push_back({{document_.file, saved.line},
                                 joinText({"node \"", node.id, "\": type \"", node.type,
                                           "\" has no property \"", saved.name, "\"; it is ignored"})});
        }
        addOnce(set, node, saved, savedProperty(document_.file, node.id, saved, nodeOfId));
    }

    /// A placeholder has but the properties of every node. Whatever else is saved, or of another form, means
    /// something to the missing type only; the document keeps it.
    void addUnderstood(PropertySet& set, const DocumentNode& node, const DocumentProperty& saved,
                       const MaterialItem& item, const NodeOfId& nodeOfId) {
        const auto target = item.node->properties->byName.find(saved.name);
        const bool isUnderstood = saved.name != typePropertyName &&
                                  target != item.node->properties->byName.end() &&
                                  target->second->kind == saved.kind;
        if (isUnderstood) {
            std::shared_ptr<Property> property;
            Errors ignored;
            if (attempt(&ignored,
                        [&] { property = savedProperty(document_.file, node.id, saved, nodeOfId); })) {
                addOnce(set, node, saved, property);
            }
        }
    }

    /// The saved properties that the node can take, and why it refuses the others: none when it refused the
    /// whole set.
    static std::shared_ptr<PropertySet> withoutRefused(const MaterialItem& item, const DocumentNode& saved,
                                                       const PropertySet& set,
                                                       std::vector<Refusal>& refusals) {
        auto rest = makeSavedSet(saved.type, saved.version);
        const PropertySet& own = *item.node->properties;
        if (set.version > own.version) {
            return rest;
        }
        for (const DocumentProperty& property : saved.properties) {
            const auto value = set.byName.find(property.name);
            const auto target = own.byName.find(property.name);
            if (property.name == typePropertyName || value == set.byName.end() ||
                rest->byName.count(property.name) != 0) {
                continue;
            }
            try {
                if (target != own.byName.end()) {
                    Property(*target->second).copyFrom(*value->second);
                }
                rest->add(value->second);
            } catch (const ShaderError& error) { // GCOVR_EXCL_BR_LINE: what copyFrom throws
                refusals.push_back({property.line, error.what()});
            }
        }
        return rest;
    }

    /// The last cycle that is told ends it: each takes a walk through the whole material.
    Errors* errorsOfCycle(std::size_t number) const {
        constexpr std::size_t toldCycles = 100;
        return number < toldCycles ? errors_ : nullptr;
    }

    void updateInReferenceOrder() {
        const NodeIndex indexByNode = indexNodes(material_);
        DependencyOrder order = orderByDependencies(referencesOf(material_, indexByNode));
        for (std::size_t cycles = 1; !order.cycle.empty(); ++cycles) {
            attempt(errorsOfCycle(cycles), [&] { failAtReferenceCycle(material_, order.cycle); });
            clearReferences(*material_.items[order.cycle.front()].node);
            material_.items[order.cycle.front()].faulty = true;
            order = orderByDependencies(referencesOf(material_, indexByNode));
        }
        for (const std::size_t index : order.order) {
            MaterialItem& item = material_.items[index];
            item.faulty = !attempt(errors_, [&] { updateItem(material_, item); }) || item.faulty;
        }
    }

    using ConnectedInputs = std::map<std::pair<std::size_t, std::string>, int>; // to the connection's line

    void connectNodes() {
        ConnectedInputs connectedInputs;
        for (const DocumentConnection& saved : document_.connections) {
            const bool isDoubtful =
                lacksOutput(saved.source, saved.output) || lacksInput(saved.destination, saved.input);
            if (isDoubtful || !attempt(errors_, [&] { connectNode(saved, connectedInputs); })) {
                standInFor(saved);
            }
        }
        if (errors_ != nullptr) {
            for (const DocumentConnection& saved : document_.leftOut.connections) {
                standInFor(saved);
            }
        }
    }

    /// Whether a node might have the port if it were not for the errors reported of it.
    /// @{
    bool lacksOutput(const std::string& id, const std::string& port) const {
        const auto index = findNode(id);
        return index && isFaultyNode(*index) && material_.items[*index].node->findOutputPortIndex(port) < 0;
    }

    bool lacksInput(const std::string& id, const std::string& port) const {
        const auto index = findNode(id);
        return index && isFaultyNode(*index) && material_.items[*index].node->findInputPortIndex(port) < 0;
    }
    /// @}

    bool isFaultyNode(std::size_t index) const {
        return material_.items[index].faulty && !material_.items[index].placeholder;
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
        for (DocumentOutput& saved : material_.document.outputs) {
            fillInPort(saved);
            if (lacksOutput(saved.source, saved.port) ||
                !attempt(errors_, [&] { connectOutput(saved, names); })) {
                standInForReader(saved.source, saved.port, saved.line);
            }
        }
        if (errors_ != nullptr) {
            for (const DocumentOutput& saved : document_.leftOut.outputs) {
                standInForReader(saved.source, saved.port, saved.line);
            }
        }
    }

    /// So that an edit that gives the node other ports finds what the output meant.
    void fillInPort(DocumentOutput& saved) const {
        const auto index = findNode(saved.source);
        if (saved.port.empty() && index && !material_.items[*index].node->outputs.empty()) {
            saved.port = material_.items[*index].node->outputs.front().name;
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
        for (std::size_t cycles = 1; !order.cycle.empty(); ++cycles) {
            attempt(errorsOfCycle(cycles), [&] { failAtConnectionCycle(material_, order.cycle); });
            dropConnections(order.cycle.size() > 1 ? order.cycle[1] : order.cycle[0], order.cycle[0]);
            order = orderByDependencies(sourcesOf(material_));
        }
        material_.downstream = std::move(order.order);
    }

    void dropConnections(std::size_t source, std::size_t destination) {
        auto& connections = material_.connections;
        const auto first =
            std::stable_partition(connections.begin(), connections.end(), [&](const auto& connection) {
                return connection.source != source || connection.destination != destination;
            });
        const std::vector<MaterialConnection> dropped(first, connections.end());
        connections.erase(first, connections.end());
        for (const MaterialConnection& connection : dropped) {
            const NodeConnection& record = *connection.record;
            dropLink(material_.items[source].node->outputLinks, connection.record);
            dropLink(material_.items[destination].node->inputLinks, connection.record);
            join(source, record.sourcePort, lostEnd(lostReader_), {}, connection.line);
            join(lostEnd(lostSource_), {}, destination, record.destinationPort, connection.line);
        }
    }

    const PluginSet& plugins_;
    Warnings& warnings_;
    Errors* errors_;
    Material material_;
    const MaterialDocument& document_ = material_.document;
    std::unordered_map<std::string, std::size_t> indexById_;
    std::optional<std::size_t> lostSource_; ///< item that stands for the sources that are missing
    std::optional<std::size_t> lostReader_; ///< and for the readers
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

bool isNameKnown(const Material& material, std::size_t item) {
    if (!material.items[item].faulty) {
        return true;
    }
    // what stands behind the document's nodes are stand-ins, which present nothing
    const DocumentNode& saved = material.document.nodes.at(item);
    const MaterialNode& node = *material.items[item].node;
    return std::any_of(saved.properties.begin(), saved.properties.end(), [&](const auto& property) {
        return property.name == node.nameProperty->name && property.value == node.name();
    });
}

Material buildMaterial(MaterialDocument document, const PluginSet& plugins, Warnings& warnings,
                       Errors* errors) {
    return MaterialBuilder(std::move(document), plugins, warnings, errors).build();
}

} // namespace patina
