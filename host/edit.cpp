#include "host/edit.h"

#include "host/artist_values.h"
#include "host/bindings_file.h"
#include "host/files.h"
#include "host/material_steps.h"
#include "host/property_text.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace patina {

using namespace detail;

namespace {

using Flags = std::vector<bool>;

[[noreturn]] void fail(const Material& material, int line, std::initializer_list<std::string_view> pieces) {
    throw HostError({material.file, line}, joinText(pieces));
}

/// Runs code of a plug-in on behalf of what has that name, and names it in an error of whatever that throws.
/// std::bad_alloc passes.
template <typename Action>
auto onBehalfOfNamed(const Material& material, std::string_view noun, std::string_view name,
                     Action&& action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        fail(material, 0, {noun, " \"", name, "\": ", currentExceptionText()});
    }
}

void requireText(const Material& material, std::string_view what, const std::string& text) {
    if (!isDocumentText(text)) {
        fail(material, 0, {what, " \"", text, "\" has a character that a document cannot hold; remove it"});
    }
}

std::size_t requireNode(const Material& material, const std::string& id) {
    const auto found = std::find_if(material.items.begin(), material.items.end(),
                                    [&](const MaterialItem& item) { return item.id == id; });
    if (found == material.items.end()) {
        fail(material, 0, {"there is no node with the id \"", id, "\""});
    }
    return static_cast<std::size_t>(found - material.items.begin());
}

/// Everything of a property that an update may change.
struct PropertyState {
    std::shared_ptr<Property> property;
    PropertyContent value;
    std::shared_ptr<MaterialNode> nodeValue;
    std::string label;
    std::string help;
    bool editable;
    bool visible;
    std::uint32_t stringStyle;
    std::vector<std::string> allowedValues;
};

/// A node and what is saved of it, before an edit.
struct NodeState {
    std::size_t index;
    DocumentNode saved;
    std::vector<OverriddenProperty> overridden;
    PropertySet properties;
    std::vector<PropertyState> values;
    std::vector<Port> inputs;
    std::vector<Port> outputs;
    std::array<float, 4> textColour;
    std::array<float, 4> bodyColour;
};

NodeState stateOf(const Material& material, std::size_t index) {
    const MaterialItem& item = material.items[index];
    const MaterialNode& node = *item.node;
    NodeState state = {index,
                       material.document.nodes[index],
                       item.overridden,
                       *node.properties,
                       {},
                       node.inputs,
                       node.outputs,
                       node.textColour,
                       node.bodyColour};
    for (const std::shared_ptr<Property>& property : *node.properties) {
        state.values.push_back({property, valueOf(*property), property->nodeValue, property->label,
                                property->help, property->editable, property->visible, property->stringStyle,
                                property->allowedValues});
    }
    return state;
}

/// Puts nodes back as they were, unless the edit is through.
class Undo {
public:
    explicit Undo(Material& material) : material_(material) {}
    ~Undo() {
        for (const NodeState& state : states_) {
            restoreValues(state);
        }
        for (const NodeState& state : states_) {
            updateAgain(*material_.items[state.index].node);
        }
        for (NodeState& state : states_) {
            restore(state);
        }
    }
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;

    /// To be called before a node is changed; the first call for it counts.
    void keep(std::size_t index) {
        if (kept_.insert(index).second) {
            states_.push_back(stateOf(material_, index));
        }
    }

    void commit() { states_.clear(); }

private:
    static void restoreValues(const NodeState& state) {
        for (const PropertyState& value : state.values) {
            setValue(*value.property, value.value);
            value.property->nodeValue = value.nodeValue;
            value.property->allowedValues = value.allowedValues;
        }
    }

    /// For what a node keeps to itself. It took these values before; should it not take them now, there is
    /// nothing better to be done.
    static void updateAgain(MaterialNode& node) {
        try {
            node.updateFromProperties(nullptr);
        } catch (...) {
            return;
        }
    }

    void restore(NodeState& state) {
        MaterialItem& item = material_.items[state.index];
        *item.node->properties = std::move(state.properties);
        restoreValues(state);
        for (PropertyState& value : state.values) {
            value.property->label = std::move(value.label);
            value.property->help = std::move(value.help);
            value.property->editable = value.editable;
            value.property->visible = value.visible;
            value.property->stringStyle = value.stringStyle;
        }
        item.node->inputs = std::move(state.inputs);
        item.node->outputs = std::move(state.outputs);
        item.node->textColour = state.textColour;
        item.node->bodyColour = state.bodyColour;
        item.overridden = std::move(state.overridden);
        material_.document.nodes[state.index] = std::move(state.saved);
    }

    Material& material_;
    std::unordered_set<std::size_t> kept_;
    std::vector<NodeState> states_;
};

/// Saves a property's value, in place of an earlier one.
void saveProperty(DocumentNode& saved, const std::string& name, PropertyType kind, const std::string& value) {
    const auto found = std::find_if(saved.properties.begin(), saved.properties.end(),
                                    [&](const DocumentProperty& property) { return property.name == name; });
    if (found != saved.properties.end()) {
        found->value = value;
    } else {
        saved.properties.push_back({name, kind, value, saved.line});
    }
}

/// The values of a node by name, but for its references.
std::map<std::string, PropertyContent> valuesOf(const MaterialNode& node) {
    std::map<std::string, PropertyContent> values;
    for (const std::shared_ptr<Property>& property : *node.properties) {
        if (property->kind != PropertyType::Node) {
            values.emplace(property->name, valueOf(*property));
        }
    }
    return values;
}

/// Updates a node from its live values, which is what the artist expects, and saves what differs then from
/// what the document gives. What is saved of a placeholder is not its own to change.
void settle(Material& material, std::size_t index) {
    MaterialItem& item = material.items[index];
    if (item.placeholder) {
        updateItem(material, item);
        return;
    }
    std::map<std::string, PropertyContent> given = valuesOf(*item.node);
    for (OverriddenProperty& overridden : item.overridden) {
        given[overridden.property] = std::move(overridden.given);
    }
    onBehalfOf(material, item, item.line, [&] {
        item.node->updateFromProperties(nullptr);
        for (const std::shared_ptr<Property>& property : *item.node->properties) {
            const auto earlier = given.find(property->name);
            if (earlier != given.end() && !hasValue(*property, earlier->second)) {
                saveProperty(material.document.nodes[index], property->name, property->kind,
                             propertyText(*property, {}));
            }
        }
    });
    item.overridden.clear();
}

/// Updates nodes and those that refer to them, each after those it refers to, and tells which they are.
Flags updateDependents(Material& material, Flags changed, Undo& undo) {
    const Dependencies references = referencesOf(material, indexNodes(material));
    for (const std::size_t index : updateOrder(material, references)) {
        bool mustChange = changed[index];
        for (std::size_t link = references.first(index); link != Dependencies::none;
             link = references.next(link)) {
            mustChange = mustChange || changed[references.dependency(link)];
        }
        if (mustChange) {
            undo.keep(index);
            settle(material, index);
            changed[index] = true;
        }
    }
    return changed;
}

/// Makes link lists and flags of nodes those that buildMaterial makes.
void relink(const Material& material, const Flags& touched) {
    for (std::size_t i = 0; i < material.items.size(); ++i) {
        if (!touched[i]) {
            continue;
        }
        MaterialNode& node = *material.items[i].node;
        node.inputLinks.clear();
        node.outputLinks.clear();
        for (std::vector<Port>* ports : {&node.inputs, &node.outputs}) {
            for (Port& port : *ports) {
                port.connected = false;
            }
        }
    }
    for (const MaterialConnection& connection : material.connections) {
        if (touched[connection.source]) {
            linkSource(*material.items[connection.source].node, connection.record);
        }
        if (touched[connection.destination]) {
            linkDestination(*material.items[connection.destination].node, connection.record);
        }
    }
    for (const MaterialOutput& output : material.outputs) {
        if (touched[output.source]) {
            linkSource(*material.items[output.source].node, output.record);
        }
    }
}

void relink(const Material& material, std::initializer_list<std::size_t> nodes) {
    Flags touched(material.items.size(), false);
    for (const std::size_t node : nodes) {
        touched[node] = true;
    }
    relink(material, touched);
}

/// Removes what stands at the same place in a list and in the document's, and gives what the document said.
template <typename Live, typename Saved, typename Predicate>
std::vector<Saved> removeBoth(std::vector<Live>& live, std::vector<Saved>& saved,
                              const Predicate& isRemoved) {
    std::vector<Saved> removed;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < live.size(); ++i) {
        if (isRemoved(live[i])) {
            removed.push_back(std::move(saved[i]));
            continue;
        }
        if (kept != i) {
            live[kept] = std::move(live[i]);
            saved[kept] = std::move(saved[i]);
        }
        ++kept;
    }
    live.erase(live.begin() + static_cast<std::ptrdiff_t>(kept), live.end());
    saved.erase(saved.begin() + static_cast<std::ptrdiff_t>(kept), saved.end());
    return removed;
}

bool lacksOutput(const MaterialItem& item, const NodeConnection& record) {
    return !item.placeholder && item.node->findOutputPortIndex(record.sourcePort) < 0;
}

bool lacksInput(const MaterialItem& item, const NodeConnection& record) {
    return !item.placeholder && item.node->findInputPortIndex(record.destinationPort) < 0;
}

/// Removes the connections and outputs that lost an end: a port of a node that was updated, or a node that
/// goes. Links all others of those nodes and their former neighbours anew.
EditResult removeLost(Material& material, Flags touched, std::size_t goingNode) {
    const Flags updated = touched;
    EditResult result;
    result.connections = removeBoth(
        material.connections, material.document.connections, [&](const MaterialConnection& connection) {
            const MaterialItem& source = material.items[connection.source];
            const MaterialItem& destination = material.items[connection.destination];
            const bool lost =
                connection.source == goingNode || connection.destination == goingNode ||
                (updated[connection.source] && lacksOutput(source, *connection.record)) ||
                (updated[connection.destination] && lacksInput(destination, *connection.record));
            if (lost) {
                touched[connection.source] = true;
                touched[connection.destination] = true;
            }
            return lost;
        });
    result.outputs =
        removeBoth(material.outputs, material.document.outputs, [&](const MaterialOutput& output) {
            return output.source == goingNode ||
                   (updated[output.source] && lacksOutput(material.items[output.source], *output.record));
        });
    relink(material, touched);
    return result;
}

constexpr std::size_t noNode = static_cast<std::size_t>(-1);

/// Empties the references of one node to another, in the document and in the live node; tells whether there
/// were any.
bool emptyReferences(Material& material, std::size_t index, std::size_t target, Undo& undo,
                     std::vector<EditResult::Reference>& emptied) {
    const MaterialItem& item = material.items[index];
    const MaterialItem& targetItem = material.items[target];
    std::vector<DocumentProperty>& saved = material.document.nodes[index].properties;
    const PropertySet& live = *item.node->properties;
    const auto isSaved = [&](const DocumentProperty& property) {
        return property.kind == PropertyType::Node && property.value == targetItem.id;
    };
    const auto isLive = [&](const std::shared_ptr<Property>& property) {
        return property->nodeValue == targetItem.node;
    };
    if (std::none_of(saved.begin(), saved.end(), isSaved) && std::none_of(live.begin(), live.end(), isLive)) {
        return false;
    }
    undo.keep(index);
    for (DocumentProperty& property : saved) {
        if (isSaved(property)) {
            property.value.clear();
            emptied.push_back({item.id, property.name});
        }
    }
    for (const std::shared_ptr<Property>& property : live) {
        if (isLive(property)) {
            property->nodeValue.reset();
        }
    }
    return true;
}

/// Takes a node out of the material when nothing is joined to it any more.
void eraseNode(Material& material, std::size_t index) {
    const auto position = static_cast<std::ptrdiff_t>(index);
    material.items.erase(material.items.begin() + position);
    material.document.nodes.erase(material.document.nodes.begin() + position);
    const auto shift = [index](std::size_t& item) { item -= item > index ? 1U : 0U; };
    for (MaterialConnection& connection : material.connections) {
        shift(connection.source);
        shift(connection.destination);
    }
    for (MaterialOutput& output : material.outputs) {
        shift(output.source);
    }
}

/// The type's name without "Core", in lower case, and the first number that makes an id of it.
std::string makeId(const Material& material, const std::string& typeName) {
    constexpr std::string_view prefix = "Core";
    const bool isCore = typeName.size() > prefix.size() && typeName.compare(0, prefix.size(), prefix) == 0;
    const std::string stem = lowerCase(isCore ? typeName.substr(prefix.size()) : typeName);
    std::unordered_set<std::string_view> taken;
    for (const MaterialItem& item : material.items) {
        taken.insert(item.id);
    }
    for (std::size_t number = 1;; ++number) {
        std::string id = stem + std::to_string(number);
        if (taken.count(id) == 0) {
            return id;
        }
    }
}

void requireCreatable(const Material& material, const PluginSet& plugins, const std::string& typeName) {
    for (const std::shared_ptr<Plugin>& plugin : plugins.plugins()) {
        for (const NodeDescription& description : plugin->nodeLibrary()) {
            if (description.typeName == typeName && !description.creatable) {
                fail(material, 0, {"nodes of type \"", typeName, "\" are not for artists to create"});
            }
        }
    }
    if (!plugins.offers(typeName)) {
        fail(material, 0, {"no plug-in offers the type \"", typeName, "\"; load the one that does"});
    }
}

/// The attributes of a binding's element that saveBindings writes anew.
bool isAnnotation(std::string_view name) {
    constexpr std::array<std::string_view, 12> names = {
        "components", "group",        "gui",  "cgname",          "desc",      "helpUrl", "min",
        "max",        "basic_colour", "srgb", "signed_expanded", "normalised"};
    constexpr std::string_view prefix = exportedPrefix;
    return isArtistKey(name) || std::find(names.begin(), names.end(), name) != names.end() ||
           (name.substr(0, prefix.size()) == prefix && isArtistKey(name.substr(prefix.size())));
}

/// The graph's own values of a binding, of which those on the binding may be an artist's changes.
Annotations graphValuesOf(const Binding& binding, const BindingCollection& graph) {
    const auto found = std::find_if(graph.bindings.begin(), graph.bindings.end(), [&](const auto& own) {
        return own->name == binding.name && bindingKindName(*own) == bindingKindName(binding);
    });
    return found == graph.bindings.end() ? Annotations() : artistValues(**found);
}

DocumentBinding savedBinding(const Material& material, const std::shared_ptr<Binding>& binding,
                             const BindingCollection& graph) {
    DocumentBinding saved;
    saved.name = binding->name;
    saved.kind = bindingKindName(*binding);
    saved.annotations.emplace_back("components", std::to_string(binding->componentCount()));
    if (!binding->group.empty()) {
        saved.annotations.emplace_back("group", binding->group);
    }
    Annotations annotations = onBehalfOfNamed(material, "binding", binding->name, [&] {
        ExportedBinding exported;
        exported.binding = binding;
        exported.exported = graphValuesOf(*binding, graph);
        return fileAnnotations(exported);
    });
    for (auto& annotation : annotations) {
        if (annotation.first != "tag") {
            saved.annotations.push_back(std::move(annotation));
        }
    }
    for (const auto& [name, value] : saved.annotations) {
        requireText(material, joinText({"annotation \"", name, "\" of binding \"", binding->name, "\":"}),
                    value);
    }
    return saved;
}

/// Keeps a binding where it stood in the document, with the attributes that are others'.
void takeOver(DocumentBinding& saved, const DocumentBinding& former) {
    saved.line = former.line;
    saved.origin = former.origin;
    for (const auto& annotation : former.annotations) {
        const bool written = std::any_of(saved.annotations.begin(), saved.annotations.end(),
                                         [&](const auto& other) { return other.first == annotation.first; });
        if (!written && !isAnnotation(annotation.first)) {
            saved.annotations.push_back(annotation);
        }
    }
}

} // namespace

std::string addNode(Material& material, const PluginSet& plugins, const std::string& typeName,
                    const std::string& wantedId) {
    requireCreatable(material, plugins, typeName);
    requireText(material, "the id", wantedId);
    MaterialItem item;
    item.id = wantedId.empty() ? makeId(material, typeName) : wantedId;
    for (const MaterialItem& other : material.items) {
        if (other.id == item.id) {
            fail(material, other.line, {"there is another node with the id \"", item.id, "\""});
        }
    }
    item.node = onBehalfOfNamed(material, "node", item.id, [&] { return plugins.createNode(typeName); });
    const std::int32_t version = item.node->properties->version;
    onBehalfOf(material, item, 0, [&] { item.node->loadProperties(makeSavedSet(typeName, version)); });
    updateItem(material, item);
    DocumentNode saved;
    saved.id = item.id;
    saved.type = typeName;
    saved.version = version;
    material.document.nodes.push_back(std::move(saved));
    material.items.push_back(std::move(item));
    material.downstream = downstreamOrder(material);
    return material.items.back().id;
}

EditResult removeNode(Material& material, const std::string& id) {
    const std::size_t index = requireNode(material, id);
    Undo undo(material);
    Flags changed(material.items.size(), false);
    std::vector<EditResult::Reference> references;
    for (std::size_t i = 0; i < material.items.size(); ++i) {
        changed[i] = i != index && emptyReferences(material, i, index, undo, references);
    }
    const Flags updated = updateDependents(material, std::move(changed), undo);
    undo.commit();
    EditResult result = removeLost(material, updated, index);
    result.references = std::move(references);
    eraseNode(material, index);
    material.downstream = downstreamOrder(material);
    return result;
}

EditResult setProperty(Material& material, const std::string& id, const std::string& propertyName,
                       const std::string& valueText) {
    const std::size_t index = requireNode(material, id);
    MaterialItem& item = material.items[index];
    const auto found = item.node->properties->byName.find(propertyName);
    if (propertyName == typePropertyName) {
        fail(material, item.line, {nodeTitle(item), ": the type of a node cannot be changed"});
    }
    if (found == item.node->properties->byName.end()) {
        fail(material, item.line,
             {nodeTitle(item), " has no property \"", propertyName, "\"",
              item.placeholder ? "; only the standard ones of a placeholder can be set" : ""});
    }
    requireText(material, joinText({nodeTitle(item), ": property \"", propertyName, "\":"}), valueText);
    Property& property = *found->second;
    const auto value = savedProperty(material.file, id, {propertyName, property.kind, valueText, item.line},
                                     [&](const std::string& target, int /*line*/) {
                                         return material.items[requireNode(material, target)].node;
                                     });
    Undo undo(material);
    undo.keep(index);
    if (!item.placeholder || found->second != item.node->descriptionProperty) {
        onBehalfOf(material, item, item.line, [&] { property.copyFrom(*value); });
    }
    item.overridden.erase(std::remove_if(item.overridden.begin(), item.overridden.end(),
                                         [&](const OverriddenProperty& overridden) {
                                             return overridden.property == propertyName;
                                         }),
                          item.overridden.end());
    saveProperty(material.document.nodes[index], propertyName, property.kind, valueText);
    Flags changed(material.items.size(), false);
    changed[index] = true;
    Flags updated = updateDependents(material, std::move(changed), undo);
    undo.commit();
    EditResult result = removeLost(material, std::move(updated), noNode);
    material.downstream = downstreamOrder(material);
    return result;
}

void connect(Material& material, const std::string& sourceId, const std::string& output,
             const std::string& destinationId, const std::string& input) {
    MaterialConnection connection;
    connection.source = requireNode(material, sourceId);
    connection.destination = requireNode(material, destinationId);
    const MaterialItem& source = material.items[connection.source];
    const MaterialItem& destination = material.items[connection.destination];
    requireOutput(material, source, output, source.line);
    requireInput(material, destination, input, destination.line);
    requireText(material, "the port", output);
    requireText(material, "the port", input);
    for (const MaterialConnection& other : material.connections) {
        if (other.destination == connection.destination && other.record->destinationPort == input) {
            fail(material, other.line,
                 {nodeTitle(destination), ": input \"", input, "\" is connected already, to ",
                  nodeTitle(material.items[other.source]), "; disconnect it first"});
        }
    }
    connection.record = makeRecord(source.node, output, destination.node, input);
    material.connections.push_back(connection);
    try {
        material.downstream = downstreamOrder(material);
    } catch (...) {
        material.connections.pop_back();
        throw;
    }
    DocumentConnection saved;
    saved.source = sourceId;
    saved.output = output;
    saved.destination = destinationId;
    saved.input = input;
    material.document.connections.push_back(std::move(saved));
    relink(material, {connection.source, connection.destination});
}

void disconnect(Material& material, const std::string& destinationId, const std::string& input) {
    const std::size_t destination = requireNode(material, destinationId);
    std::size_t source = noNode;
    removeBoth(material.connections, material.document.connections,
               [&](const MaterialConnection& connection) {
                   const bool wanted =
                       connection.destination == destination && connection.record->destinationPort == input;
                   source = wanted ? connection.source : source;
                   return wanted;
               });
    if (source == noNode) {
        const MaterialItem& item = material.items[destination];
        fail(material, item.line, {nodeTitle(item), ": input \"", input, "\" is not connected"});
    }
    relink(material, {source, destination});
    material.downstream = downstreamOrder(material);
}

void setOutput(Material& material, const std::string& name, const std::string& sourceId,
               const std::string& port) {
    const std::size_t source = requireNode(material, sourceId);
    const MaterialItem& item = material.items[source];
    requireOutput(material, item, port, item.line);
    requireText(material, "the output", name);
    requireText(material, "the port", port);
    auto found = std::find_if(material.outputs.begin(), material.outputs.end(),
                              [&](const MaterialOutput& output) { return output.name == name; });
    if (found == material.outputs.end()) {
        material.outputs.push_back({name, nullptr, source, 0});
        material.document.outputs.push_back({name, {}, {}});
        found = material.outputs.end() - 1;
    }
    const std::size_t former = found->source;
    found->source = source;
    found->record = makeRecord(item.node, port);
    DocumentOutput& saved =
        material.document.outputs[static_cast<std::size_t>(found - material.outputs.begin())];
    saved.source = sourceId;
    saved.port = port;
    relink(material, {former, source});
}

void removeOutput(Material& material, const std::string& name) {
    std::size_t source = noNode;
    removeBoth(material.outputs, material.document.outputs, [&](const MaterialOutput& output) {
        source = output.name == name ? output.source : source;
        return output.name == name;
    });
    if (source == noNode) {
        fail(material, 0, {"there is no output \"", name, "\""});
    }
    relink(material, {source});
}

void setMaterialName(Material& material, const std::string& name) {
    if (!isFileName(name)) {
        fail(material, material.line, {"the material's name \"", name, "\" cannot be the name of a file"});
    }
    requireText(material, "the material's name", name);
    material.name = name;
    material.document.name = name;
}

void saveBindings(Material& material, const BindingCollection& bindings) {
    std::unordered_map<std::string, const DocumentBinding*> formerByName;
    for (const DocumentBinding& former : material.document.bindings) {
        formerByName.emplace(former.name, &former);
    }
    const BindingCollection graph = collectBindings(material);
    std::vector<DocumentBinding> saved;
    std::unordered_set<std::string> names;
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        saved.push_back(savedBinding(material, binding, graph));
        if (!names.insert(binding->name).second) {
            fail(material, 0, {"there is another binding with the name \"", binding->name, "\""});
        }
        const auto former = formerByName.find(binding->name);
        if (former != formerByName.end()) {
            takeOver(saved.back(), *former->second);
        }
    }
    if (hasPlaceholder(material)) {
        std::copy_if(material.document.bindings.begin(), material.document.bindings.end(),
                     std::back_inserter(saved),
                     [&](const DocumentBinding& former) { return names.count(former.name) == 0; });
    }
    material.document.bindings = std::move(saved);
}

} // namespace patina
