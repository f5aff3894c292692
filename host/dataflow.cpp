#include "host/dataflow.h"

#include "host/dependency_order.h"
#include "host/framework_surface.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory_resource>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace patina {

using namespace detail;

namespace {

std::optional<std::size_t> indexOfPort(const std::vector<GeneratorPort>& ports, std::string_view name) {
    const auto port = findPort(ports, name);
    if (port == ports.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(port - ports.begin());
}

/// An output that a material may have, and what it takes.
struct OutputRule {
    std::string_view name;
    bool scalar;
    bool vector; ///< of three components
    const char* widths;
};

constexpr std::string_view colourName = "colour";
constexpr std::string_view alphaName = "alpha";
constexpr std::string_view normalName = "normal";
constexpr std::string_view emissiveName = "emissive";
constexpr std::string_view glossName = "gloss";

constexpr std::array<OutputRule, 5> outputRules = {{
    {colourName, true, true, "three components or one"},
    {alphaName, true, false, "one component"},
    {normalName, false, true, "three components"},
    {emissiveName, true, true, "three components or one"},
    {glossName, true, false, "one component"},
}};

std::string listOfOutputs() {
    std::string list;
    for (const OutputRule& rule : outputRules) {
        const bool isLast = rule.name == outputRules.back().name;
        appendText(list, {list.empty() ? "\"" : isLast ? " and \"" : ", \"", rule.name, "\""});
    }
    return list;
}

bool isFitting(const ShaderType& type, const OutputRule& rule) {
    return (rule.scalar && type.columns == 1) || (rule.vector && type.columns == 3);
}

/// A function, told apart from those that are not the same text in the end; its level does not matter.
class FunctionText {
public:
    explicit FunctionText(const GeneratorNode& function)
        : function_(function), hash_(std::hash<std::string_view>()(function.code)) {
        mix(std::hash<std::string_view>()(function.name));
        for (const GeneratorPort& output : function.outputs) {
            mix(static_cast<std::size_t>(output.type.componentType));
            mix(static_cast<std::size_t>(output.type.columns));
        }
    }

    std::size_t hash() const { return hash_; }

    bool operator==(const FunctionText& other) const {
        // GCOVR_EXCL_BR_START: other names or code of one hash are not known
        if (function_.name != other.function_.name || function_.code != other.function_.code) {
            return false; // GCOVR_EXCL_LINE: likewise
        }
        // GCOVR_EXCL_BR_STOP
        return arePortsEqual(function_.inputs, other.function_.inputs) &&
               arePortsEqual(function_.outputs, other.function_.outputs);
    }

private:
    void mix(std::size_t value) {
        constexpr std::size_t factor = 31;
        hash_ = hash_ * factor + value;
    }

    static bool arePortsEqual(const std::vector<GeneratorPort>& left,
                              const std::vector<GeneratorPort>& right) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [](const GeneratorPort& one, const GeneratorPort& other) {
                              return one.type == other.type && one.name == other.name;
                          });
    }

    const GeneratorNode& function_;
    std::size_t hash_;
};

struct FunctionTextHash {
    std::size_t operator()(const FunctionText& function) const { return function.hash(); }
};

/// Collects the sources of all inputs.
class Joiner {
public:
    Joiner(const Material& material, const GeneratedGraph& graph, Errors* errors, ColourWidth colourWidth)
        : material_(material), graph_(graph), errors_(errors), colourWidth_(colourWidth) {
        flow_.nodes.reserve(graph.generator.graph->nodes.size());
        firstNodes_.resize(material.items.size(), noSource);
    }

    Dataflow join() {
        enterNodes(graph_.owners);
        joinInnerEdges();
        joinConnections();
        selectOutputs();
        useOutputs();
        provideInterfaces();
        passInterfaces();
        Dataflow needed = withoutSources();
        attempt(errors_, [&] { needed = takeNeeded(); });
        needed.functions = firstOfEachFunction(needed.nodes);
        return needed;
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({material_.file, line}, joinText(pieces));
    }

    static Dataflow withoutSources() {
        Dataflow flow;
        flow.colour.node = noSource;
        flow.alpha.node = noSource;
        return flow;
    }

    /// Whether the item shows what is meant, so that an error at it does not only follow from another.
    bool isCertain(std::size_t item) const {
        return item == frameworkOwner || (!material_.items[item].faulty && !graph_.incomplete[item]);
    }

    bool areAllCertain() const {
        for (std::size_t item = 0; item < material_.items.size(); ++item) {
            if (!isCertain(item)) {
                return false;
            }
        }
        return true;
    }

    /// Where errors belong that come of how two items are joined.
    Errors* errorsBetween(std::size_t source, std::size_t destination) {
        return errors_ == nullptr || (isCertain(source) && isCertain(destination)) ? errors_ : &ignored_;
    }

    std::string titleOf(std::size_t node) const { return ownerTitle(material_, flow_.nodes[node]); }

    int lineOf(std::size_t node) const { return ownerPosition(material_, flow_.nodes[node]).line; }

    std::size_t enter(const std::shared_ptr<GeneratorNode>& generated, std::size_t owner,
                      std::span<ValueSource> inputs) {
        flow_.nodes.push_back({generated, owner, inputs, false});
        return flow_.nodes.size() - 1;
    }

    std::size_t enter(const std::shared_ptr<GeneratorNode>& generated, std::size_t owner) {
        return enter(generated, owner, flow_.makeInputs(generated->inputs.size()));
    }

    /// Enters the nodes of the graph that are not yet, as those of these items.
    void enterNodes(const std::vector<std::size_t>& owners) {
        const std::span nodes =
            std::span(graph_.generator.graph->nodes).subspan(enteredNodes_, owners.size());
        std::size_t inputCount = 0;
        for (const std::shared_ptr<GeneratorNode>& node : nodes) {
            inputCount += node->inputs.size();
        }
        std::span<ValueSource> inputs = flow_.makeInputs(inputCount);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const std::size_t owner = owners[i];
            const std::size_t index = enter(nodes[i], owner, inputs.first(nodes[i]->inputs.size()));
            inputs = inputs.subspan(nodes[i]->inputs.size());
            if (owner != frameworkOwner && firstNodes_[owner] == noSource) {
                firstNodes_[owner] = index;
            }
        }
        enteredNodes_ += owners.size();
    }

    /// The index of a node that is entered, or noSource.
    std::size_t indexOf(const GeneratorNode* node) {
        for (; indexedNodes_ < flow_.nodes.size(); ++indexedNodes_) {
            indexByNode_.emplace(flow_.nodes[indexedNodes_].generated.get(), indexedNodes_);
        }
        const auto found = indexByNode_.find(node);
        return found == indexByNode_.end() ? noSource : found->second;
    }

    /// The same of the node that stands for one that the code of an item added: most are among its own few.
    std::size_t indexOf(const std::shared_ptr<GeneratorNode>& added, std::size_t item) {
        constexpr std::size_t few = 8;
        const std::size_t first = firstNodes_[item];
        for (std::size_t index = first; index < flow_.nodes.size() && index - first < few; ++index) {
            if (flow_.nodes[index].generated == added) {
                return index;
            }
        }
        const auto mapped = graph_.generator.nodeMap.find(added);
        return indexOf(mapped == graph_.generator.nodeMap.end() ? added.get() : mapped->second.get());
    }

    /// What node code itself joined, as far as it is not entered yet.
    void joinInnerEdges() {
        const auto& edges = graph_.generator.graph->edges;
        while (joinedEdges_ < edges.size()) {
            // by value: a provider may add edges later
            const std::shared_ptr<GeneratorEdge> edge = edges[joinedEdges_++];
            const std::size_t tail = indexOf(edge->tail.lock().get());
            const std::size_t head = indexOf(edge->head.lock().get());
            if (tail == noSource || head == noSource) {
                continue;
            }
            const auto output = indexOfPort(flow_.nodes[tail].generated->outputs, edge->tailPort);
            const auto input = indexOfPort(flow_.nodes[head].generated->inputs, edge->headPort);
            if (!output || !input) {
                continue;
            }
            Errors* errors = errorsBetween(flow_.nodes[tail].owner, flow_.nodes[head].owner);
            if (!attempt(errors, [&] { feed(head, *input, {tail, *output}); })) {
                excused_.insert({head, *input});
            }
        }
    }

    void feed(std::size_t head, std::size_t input, const ValueSource& value) {
        const GeneratorNode& generated = *flow_.nodes[head].generated;
        const ValueSource earlier = flow_.nodes[head].inputs[input];
        if (earlier.node != noSource) {
            fail(lineOf(value.node),
                 {titleOf(value.node), ": this feeds \"", generated.inputs[input].name, "\" of ",
                  describe(generated), ", and so does ", titleOf(earlier.node), "; only one of them can"});
        }
        const ValueSource converted =
            convert(value, generated.inputs[input].type, [&](std::string_view reason) {
                fail(lineOf(value.node),
                     {titleOf(value.node), ", ", describe(*flow_.nodes[value.node].generated), ", to \"",
                      generated.inputs[input].name, "\" of ", describe(generated), ": ", reason});
            });
        flow_.nodes[head].inputs[input] = converted;
        noteRead(converted);
    }

    [[noreturn]] void failAtPort(const MaterialItem& item, std::string_view port, int line) const {
        fail(line, {nodeTitle(item), ": the code of this node does not provide the port \"", port,
                    "\"; report this to the author of its plug-in"});
    }

    /// The port that a link record names.
    ValueSource endOf(const PortLinkEnd& end, std::vector<GeneratorPort> GeneratorNode::*ports,
                      std::size_t item, int line) {
        const std::size_t node = indexOf(end.node, item);
        if (node != noSource) {
            if (const auto port = indexOfPort((*flow_.nodes[node].generated).*ports, end.port)) {
                return {node, *port};
            }
        }
        failAtPort(material_.items[item], end.port, line);
    }

    /// Without an end at either side when no code realises the connection.
    const PortLink& linkOf(const std::shared_ptr<NodeConnection>& record) const {
        const auto link = graph_.generator.portLinks.find(record);
        return link == graph_.generator.portLinks.end() ? unlinked_ : link->second;
    }

    ValueSource producerOf(const PortLink& link, const std::shared_ptr<NodeConnection>& record,
                           std::size_t source, int line) {
        if (!link.producer.node) {
            failAtPort(material_.items[source], record->sourcePort, line);
        }
        return endOf(link.producer, &GeneratorNode::outputs, source, line);
    }

    ValueSource producerOf(const MaterialOutput& output) {
        return producerOf(linkOf(output.record), output.record, output.source, output.line);
    }

    void joinConnections() {
        for (const MaterialConnection& connection : material_.connections) {
            Errors* errors = errorsBetween(connection.source, connection.destination);
            if (!attempt(errors, [&] { joinConnection(connection); })) {
                excuseConsumers(connection);
            }
        }
    }

    /// Their lack of a source follows from an error that is reported.
    void excuseConsumers(const MaterialConnection& connection) {
        for (const PortLinkEnd& end : linkOf(connection.record).consumers) {
            attempt(&ignored_, [&] {
                const ValueSource consumer = consumerOf(end, connection);
                excused_.insert({consumer.node, consumer.port});
            });
        }
    }

    ValueSource consumerOf(const PortLinkEnd& end, const MaterialConnection& connection) {
        return endOf(end, &GeneratorNode::inputs, connection.destination, connection.line);
    }

    void joinConnection(const MaterialConnection& connection) {
        const PortLink& link = linkOf(connection.record);
        const ValueSource producer = producerOf(link, connection.record, connection.source, connection.line);
        for (const PortLinkEnd& end : link.consumers) {
            const ValueSource consumer = consumerOf(end, connection);
            const GeneratorNode& reader = *flow_.nodes[consumer.node].generated;
            const GeneratorPort& input = reader.inputs[consumer.port];
            const ValueSource value = convert(producer, input.type, [&](std::string_view reason) {
                fail(connection.line, {nodeTitle(material_.items[connection.source]), ", output \"",
                                       connection.record->sourcePort, "\", to ",
                                       nodeTitle(material_.items[connection.destination]), ", input \"",
                                       connection.record->destinationPort, "\": ", reason});
            });
            ValueSource& source = flow_.nodes[consumer.node].inputs[consumer.port];
            if (source.node != noSource && source != value) {
                fail(connection.line, {nodeTitle(material_.items[connection.destination]), ", input \"",
                                       connection.record->destinationPort, "\": this connection feeds \"",
                                       input.name, "\" of ", describe(reader), ", and so does the code of ",
                                       titleOf(source.node), "; only one of them can"});
            }
            source = value;
            noteRead(value);
        }
    }

    /// The value as `type`: itself, or a conversion that all readers of that type share. `refuse` is called
    /// with the reason, and throws, when the types do not convert.
    template <typename Refuse>
    ValueSource convert(const ValueSource& value, const ShaderType& type, Refuse&& refuse) {
        const ShaderType from = flow_.port(value).type;
        if (from == type) {
            return value;
        }
        const auto key = std::make_tuple(value.node, value.port, typeText(type));
        const auto found = conversions_.find(key);
        if (found != conversions_.end()) {
            return found->second;
        }
        std::shared_ptr<GeneratorNode> conversion;
        try {
            conversion = makePromoteAndSplat(from, type);
            // GCOVR_EXCL_BR_START: nothing else is thrown while there is memory, and refuse does not return
        } catch (const ShaderError& error) {
            refuse(error.what());
        }
        // GCOVR_EXCL_BR_STOP
        const std::size_t node = enter(conversion, flow_.nodes[value.node].owner);
        flow_.nodes[node].inputs[0] = value;
        flow_.nodes[node].conversion = true;
        noteRead(value);
        return conversions_.emplace(key, ValueSource{node, 0}).first->second;
    }

    ValueSource selectOutput(const MaterialOutput& output, const OutputRule& rule) {
        const ValueSource source = producerOf(output);
        const ShaderType& type = flow_.port(source).type;
        const bool isNumeric =
            type.componentType >= ComponentType::Float && type.componentType <= ComponentType::Int;
        const bool isAnyWidth = colourWidth_ == ColourWidth::Any;
        if (!isNumeric || type.rows != 1 || type.arraySize != 1 || !(isAnyWidth || isFitting(type, rule))) {
            fail(output.line,
                 {"output \"", output.name, "\" takes ", isAnyWidth ? "one to four components" : rule.widths,
                  ", and ", nodeTitle(material_.items[output.source]), " gives \"", output.record->sourcePort,
                  "\" as ", typeText(type)});
        }
        return source;
    }

    void selectOutputs() {
        bool hasColour = false;
        for (const MaterialOutput& output : material_.outputs) {
            if (colourWidth_ == ColourWidth::Any && output.name != colourName) {
                continue;
            }
            hasColour = hasColour || output.name == colourName;
            attempt(errorsBetween(output.source, output.source), [&] { selectNamed(output); });
            // what an output that is refused should have shown is looked at all the same
            attempt(&ignored_, [&] {
                roots_.push_back(producerOf(output));
                hasColourRoot_ = hasColourRoot_ || output.name == colourName;
            });
        }
        if (!hasColour && !isColourRefused()) {
            attempt(errors_, [&] {
                fail(material_.line,
                     {"this material has no \"colour\" output; connect one with an <output> element"});
            });
        }
    }

    /// Whether an output that is left out of the material was, or may have been, its colour.
    bool isColourRefused() const {
        const MaterialDocument& document = material_.document;
        const auto isColour = [](const DocumentOutput& output) { return output.name == colourName; };
        const auto mayBeColour = [&](const DocumentOutput& output) {
            return isColour(output) || output.name.empty();
        };
        return errors_ != nullptr &&
               (std::any_of(document.outputs.begin(), document.outputs.end(), isColour) ||
                std::any_of(document.leftOut.outputs.begin(), document.leftOut.outputs.end(), mayBeColour));
    }

    void selectNamed(const MaterialOutput& output) {
        const auto rule = std::find_if(outputRules.begin(), outputRules.end(),
                                       [&](const OutputRule& entry) { return entry.name == output.name; });
        if (rule == outputRules.end()) {
            fail(output.line, {"there is no output \"", output.name, "\" to a material; the outputs are ",
                               listOfOutputs()});
        }
        outputs_[rule->name] = selectOutput(output, *rule);
    }

    /// Nothing when the material has no such output, or a refused one.
    ValueSource selected(std::string_view name) const {
        const auto found = outputs_.find(name);
        return found == outputs_.end() ? ValueSource{noSource, 0} : found->second;
    }

    void useOutputs() {
        flow_.colour = selected(colourName);
        flow_.alpha = selected(alphaName);
        flow_.hasAlpha = flow_.alpha.node != noSource;
        const SurfaceOutputs outputs = {precisionOf(colourName).value_or(ComponentType::Half),
                                        precisionOf(normalName), precisionOf(emissiveName),
                                        precisionOf(glossName)};
        const bool isLit = outputs.normal || outputs.emissive || outputs.gloss;
        if (isLit && flow_.colour.node != noSource) {
            lightSurface(outputs);
        }
    }

    /// What an output of the material asks of whoever reads it: half is enough for what is no more itself.
    std::optional<ComponentType> precisionOf(std::string_view name) const {
        const ValueSource source = selected(name);
        if (source.node == noSource) {
            return std::nullopt;
        }
        const ComponentType type = flow_.port(source).type.componentType;
        const bool isHalf = type == ComponentType::Half || type == ComponentType::Fixed;
        return isHalf ? ComponentType::Half : ComponentType::Float;
    }

    void lightSurface(const SurfaceOutputs& outputs) {
        Graph& graph = *graph_.generator.graph;
        const std::shared_ptr<GeneratorNode> surface = insertSurface(graph, outputs);
        enterNodes(std::vector<std::size_t>(graph.nodes.size() - enteredNodes_, frameworkOwner));
        joinInnerEdges();
        const std::size_t node = indexOf(surface.get());
        for (const auto& [output, input] : {std::pair{colourName, surfaceColour},
                                            {normalName, surfaceNormal},
                                            {emissiveName, surfaceEmissive},
                                            {glossName, surfaceGloss}}) {
            if (const ValueSource value = selected(output); value.node != noSource) {
                feed(node, *indexOfPort(surface->inputs, input), value);
            }
        }
        flow_.colour = {node, *indexOfPort(surface->outputs, litColour)};
        flow_.lit = true;
        roots_.push_back(flow_.colour);
    }

    /// Asks the providers for every interface parameter that is read and that no node writes. What one of
    /// them adds may read others, and be asked for in turn.
    void provideInterfaces() {
        noteRead(flow_.colour);
        noteRead(flow_.alpha);
        for (std::size_t node = 0; !readInterfaces_.empty() && node < flow_.nodes.size(); ++node) {
            if (readInterfaces_.count(node) != 0 && flow_.nodes[node].inputs.front().node == noSource) {
                attempt(errors_, [&] { provide(node); });
            }
        }
    }

    void noteRead(const ValueSource& value) {
        if (value.node != noSource && isInterface(value.node)) {
            readInterfaces_.insert(value.node);
        }
    }

    /// What providers add belongs to the item that reads it. Does nothing when none of them knows the
    /// parameter; who needs it fails then.
    void provide(std::size_t parameter) {
        Graph& graph = *graph_.generator.graph;
        const std::size_t owner = flow_.nodes[parameter].owner;
        const std::shared_ptr<GeneratorNode> wanted = flow_.nodes[parameter].generated;
        if (!asked_.insert({wanted->name, wanted->flags}).second) {
            return; // a provider gave the parameter itself, without a value
        }
        const MaterialItem& item = material_.items[owner];
        const std::shared_ptr<GeneratorNode> provided = onBehalfOf(material_, item, item.line, [&] {
            for (const std::shared_ptr<InterfaceProvider>& provider : graph.interfaceProviders) {
                if (auto node = provider->provideInterfaceNode(wanted->name, wanted->flags, graph)) {
                    return node;
                }
            }
            return std::shared_ptr<GeneratorNode>();
        });
        enterNodes(std::vector<std::size_t>(graph.nodes.size() - enteredNodes_, owner));
        joinInnerEdges();
        if (!provided || provided == wanted) {
            return;
        }
        const auto output = indexOfPort(provided->outputs, "read");
        if (!output) {
            fail(item.line,
                 {nodeTitle(item), ": this reads ", describe(*wanted), ", for which a provider gives ",
                  describe(*provided), ", which has no value; report this to the author of its plug-in"});
        }
        const std::size_t entered = indexOf(provided.get());
        feed(parameter, 0, {entered == noSource ? enter(provided, owner) : entered, *output});
    }

    bool isInterface(std::size_t node) const {
        return flow_.nodes[node].generated->kind == NodeKind::InterfaceParameter;
    }

    /// What an interface parameter stands for: the value written to it, or itself when there is none.
    ValueSource written(ValueSource value) const {
        for (std::size_t steps = 0; value.node != noSource && isInterface(value.node); ++steps) {
            const ValueSource& source = flow_.nodes[value.node].inputs.front();
            if (source.node == noSource || steps == flow_.nodes.size()) {
                break;
            }
            value = source;
        }
        return value;
    }

    void passInterfaces() {
        for (std::size_t node = 0; !readInterfaces_.empty() && node < flow_.nodes.size(); ++node) {
            for (std::size_t input = 0; !isInterface(node) && input < flow_.nodes[node].inputs.size();
                 ++input) {
                ValueSource& source = flow_.nodes[node].inputs[input];
                if (source.node != noSource && isInterface(source.node)) {
                    passed_.emplace(std::pair{node, input}, source.node);
                    source = written(source);
                }
            }
        }
        flow_.colour = written(flow_.colour);
        if (flow_.hasAlpha) {
            flow_.alpha = written(flow_.alpha);
        }
        std::transform(roots_.begin(), roots_.end(), roots_.begin(),
                       [&](const ValueSource& root) { return written(root); });
        for (std::size_t node = 0; node < flow_.nodes.size(); ++node) {
            const GeneratorNode& generated = *flow_.nodes[node].generated;
            if (generated.kind == NodeKind::RegisterParameter && !generated.inputs.empty()) {
                flow_.sinks.push_back(node);
            }
        }
    }

    /// Whether every source stands before what reads it.
    bool isInOrder() const {
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            for (const ValueSource& input : flow_.nodes[i].inputs) {
                if (input.node >= i && input.node != noSource) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Moves what the outputs depend on, sources first.
    Dataflow takeNeeded() {
        const std::vector<char> needed = findNeeded();
        if (isInOrder() && std::find(needed.begin(), needed.end(), 0) == needed.end()) {
            return std::move(flow_);
        }
        Dependencies sources(flow_.nodes.size());
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            for (const ValueSource& input : flow_.nodes[i].inputs) {
                if (needed[i] && input.node != noSource && needed[input.node]) {
                    sources.add(i, input.node);
                }
            }
        }
        // connections were checked for cycles, and conversions add none; edges within the code of a node and
        // interface parameters can
        const DependencyOrder order = orderByDependencies(sources);
        if (!order.cycle.empty()) {
            failAtCycle(order.cycle);
        }
        Dataflow result = withoutSources();
        result.memory = flow_.memory;
        result.nodes.reserve(static_cast<std::size_t>(std::count(needed.begin(), needed.end(), 1)));
        std::vector<std::size_t> position(flow_.nodes.size(), noSource);
        const auto moved = [&](const ValueSource& source) {
            return source.node == noSource ? source : ValueSource{position[source.node], source.port};
        };
        for (const std::size_t index : order.order) {
            if (!needed[index]) {
                continue;
            }
            position[index] = result.nodes.size();
            result.nodes.push_back(std::move(flow_.nodes[index]));
            for (ValueSource& input : result.nodes.back().inputs) {
                input = moved(input);
            }
        }
        result.colour = moved(flow_.colour);
        result.hasAlpha = flow_.hasAlpha;
        result.lit = flow_.lit;
        result.alpha = moved(flow_.alpha);
        for (const std::size_t sink : flow_.sinks) {
            result.sinks.push_back(position[sink]);
        }
        return result;
    }

    /// Each node of the cycle reads the next, and the last reads the first.
    [[noreturn]] void failAtCycle(const std::vector<std::size_t>& cycle) const {
        std::vector<std::string> owners;
        std::vector<std::string> parameters;
        const auto addOnce = [](std::vector<std::string>& list, std::string text) {
            if (std::find(list.begin(), list.end(), text) == list.end()) {
                list.push_back(std::move(text));
            }
        };
        for (std::size_t i = 0; i < cycle.size(); ++i) {
            addOnce(owners, titleOf(cycle[i]));
            const std::size_t source = cycle[(i + 1) % cycle.size()];
            for (std::size_t input = 0; input < flow_.nodes[cycle[i]].inputs.size(); ++input) {
                const auto passed = passed_.find({cycle[i], input});
                if (flow_.nodes[cycle[i]].inputs[input].node == source && passed != passed_.end()) {
                    addOnce(parameters, describe(*flow_.nodes[passed->second].generated));
                }
            }
        }
        const int line = lineOf(cycle.front());
        if (owners.size() == 1) {
            fail(line, {owners.front(), ": the code of this node depends on itself",
                        parameters.empty() ? "" : " through ", joined(parameters),
                        "; report this to the author of its plug-in"});
        }
        owners.erase(owners.begin());
        fail(line,
             {titleOf(cycle.front()), ": this needs its own value, through ", joined(owners),
              parameters.empty() ? "" : " and ", joined(parameters), "; take one of them out of the cycle"});
    }

    static std::string joined(const std::vector<std::string>& texts) {
        std::string list;
        for (const std::string& text : texts) {
            appendText(list, {list.empty() ? "" : " and ", text});
        }
        return list;
    }

    std::vector<char> findNeeded() const {
        std::vector<char> needed(flow_.nodes.size(), 0);
        std::vector<std::size_t> pending = flow_.sinks;
        for (const ValueSource& root : roots_) {
            pending.push_back(root.node);
        }
        while (!pending.empty()) {
            const std::size_t node = pending.back();
            pending.pop_back();
            if (needed[node]) {
                continue;
            }
            needed[node] = 1;
            for (std::size_t input = 0; input < flow_.nodes[node].inputs.size(); ++input) {
                const bool isFed = attempt(errors_, [&] { requireSource(node, input); });
                if (isFed && flow_.nodes[node].inputs[input].node != noSource) {
                    pending.push_back(flow_.nodes[node].inputs[input].node);
                }
            }
        }
        for (std::size_t node = 0; node < needed.size(); ++node) {
            // whoever should read an interface parameter that is left now has no source
            needed[node] = (needed[node] || !hasColourRoot_) && !isInterface(node);
        }
        return needed;
    }

    void requireSource(std::size_t node, std::size_t input) const {
        const DataflowNode& entry = flow_.nodes[node];
        if (entry.inputs[input].node != noSource && !isInterface(node)) {
            return;
        }
        const bool isExcused = excused_.count({node, input}) != 0 || !isCertain(entry.owner);
        if (isInterface(node)) { // one that is written has given way to what is written
            const bool isWritten = entry.inputs[input].node != noSource;
            if (!isExcused && areAllCertain()) {
                fail(lineOf(node), {titleOf(node), ": this reads ", describe(*entry.generated),
                                    isWritten ? ", which is written from itself; write another value to it"
                                              : ", and no node writes it; add one that does"});
            }
        } else if (!isExcused) {
            fail(lineOf(node),
                 {titleOf(node), ": nothing feeds \"", entry.generated->inputs[input].name, "\" of ",
                  describe(*entry.generated), "; report this to the author of its plug-in"});
        }
    }

    const Material& material_;
    const GeneratedGraph& graph_;
    const PortLink unlinked_;
    Errors* errors_;
    ColourWidth colourWidth_;
    Errors ignored_; ///< only follow from errors that were reported
    Dataflow flow_ = withoutSources();
    std::vector<ValueSource> roots_; ///< of the outputs
    bool hasColourRoot_ = false;
    std::map<std::string_view, ValueSource> outputs_;       ///< by the names of their rules
    std::set<std::pair<std::size_t, std::size_t>> excused_; ///< inputs, by node, that may lack a source
    std::set<InterfaceKey> asked_;                          ///< of the providers
    std::size_t enteredNodes_ = 0;                          ///< of the graph
    std::size_t joinedEdges_ = 0;                           ///< of the graph
    /// By node and input, the first interface parameter through which it is read.
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> passed_;
    std::set<std::size_t> readInterfaces_; ///< nodes
    std::vector<std::size_t> firstNodes_;  ///< by item, the first that belongs to it
    std::pmr::monotonic_buffer_resource memory_;
    std::size_t indexedNodes_ = 0;
    std::pmr::unordered_map<const GeneratorNode*, std::size_t> indexByNode_{&memory_}; ///< of the indexed
    std::map<std::tuple<std::size_t, std::size_t, std::string>, ValueSource> conversions_;
};

} // namespace

std::span<ValueSource> Dataflow::makeInputs(std::size_t count) {
    std::pmr::polymorphic_allocator<ValueSource> allocator(memory.get());
    const std::span<ValueSource> inputs(allocator.allocate(count), count);
    std::uninitialized_fill(inputs.begin(), inputs.end(), ValueSource{noSource, 0});
    return inputs;
}

std::vector<std::size_t> firstOfEachFunction(const std::vector<DataflowNode>& nodes) {
    std::pmr::monotonic_buffer_resource memory;
    std::pmr::unordered_map<FunctionText, std::size_t, FunctionTextHash> firstNodes(&memory);
    std::vector<std::size_t> functions(nodes.size());
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const GeneratorNode& node = *nodes[i].generated;
        const bool isFunction = node.kind == NodeKind::Function;
        functions[i] = isFunction ? firstNodes.try_emplace(FunctionText(node), i).first->second : i;
    }
    return functions;
}

std::string ownerTitle(const Material& material, const DataflowNode& node) {
    return node.owner == frameworkOwner ? "the framework" : nodeTitle(material.items[node.owner]);
}

SourcePosition ownerPosition(const Material& material, const DataflowNode& node) {
    return {material.file, node.owner == frameworkOwner ? material.line : material.items[node.owner].line};
}

Dataflow joinGraph(const Material& material, const GeneratedGraph& graph, Errors* errors,
                   ColourWidth colourWidth) {
    return Joiner(material, graph, errors, colourWidth).join();
}

} // namespace patina
