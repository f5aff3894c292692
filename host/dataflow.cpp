#include "host/dataflow.h"

#include "host/dependency_order.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>

namespace patina {

using namespace detail;

namespace {

std::optional<std::size_t> findPort(const std::vector<GeneratorPort>& ports, const std::string& name) {
    const auto found = std::find_if(ports.begin(), ports.end(),
                                    [&](const GeneratorPort& port) { return port.name == name; });
    if (found == ports.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - ports.begin());
}

/// Collects the sources of all inputs.
class Joiner {
public:
    Joiner(const Material& material, const GeneratedGraph& graph, Errors* errors)
        : material_(material), graph_(graph), errors_(errors) {}

    Dataflow join() {
        enterNodes();
        joinInnerEdges();
        joinConnections();
        selectOutputs();
        passInterfaces();
        Dataflow needed = withoutSources();
        attempt(errors_, [&] { needed = keepNeeded(); });
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
        return !material_.items[item].faulty && !graph_.incomplete[item];
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

    const MaterialItem& ownerOf(std::size_t node) const { return material_.items[flow_.nodes[node].owner]; }

    std::size_t enter(const std::shared_ptr<GeneratorNode>& generated, std::size_t owner) {
        const std::size_t index = flow_.nodes.size();
        flow_.nodes.push_back({generated, owner,
                               std::vector<ValueSource>(generated->inputs.size(), ValueSource{noSource, 0}),
                               false});
        return index;
    }

    void enterNodes() {
        const auto& nodes = graph_.generator.graph->nodes;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            indexByNode_.emplace(nodes[i].get(), enter(nodes[i], graph_.owners[i]));
        }
    }

    /// What node code itself joined.
    void joinInnerEdges() {
        for (const std::shared_ptr<GeneratorEdge>& edge : graph_.generator.graph->edges) {
            const std::size_t tail = indexByNode_.at(edge->tail.lock().get());
            const std::size_t head = indexByNode_.at(edge->head.lock().get());
            const auto output = findPort(flow_.nodes[tail].generated->outputs, edge->tailPort);
            const auto input = findPort(flow_.nodes[head].generated->inputs, edge->headPort);
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
        const MaterialItem& item = ownerOf(value.node);
        // by value: a conversion adds a node
        const std::shared_ptr<GeneratorNode> generated = flow_.nodes[head].generated;
        const ValueSource earlier = flow_.nodes[head].inputs[input];
        if (earlier.node != noSource) {
            fail(item.line, {nodeTitle(item), ": this feeds \"", generated->inputs[input].name, "\" of ",
                             describe(*generated), ", and so does ", nodeTitle(ownerOf(earlier.node)),
                             "; only one of them can"});
        }
        const ValueSource converted =
            convert(value, generated->inputs[input].type, [&](std::string_view reason) {
                fail(item.line,
                     {nodeTitle(item), ", ", describe(*flow_.nodes[value.node].generated), ", to \"",
                      generated->inputs[input].name, "\" of ", describe(*generated), ": ", reason});
            });
        flow_.nodes[head].inputs[input] = converted;
    }

    /// The port that a link record names.
    template <typename Ports>
    ValueSource endOf(const PortLinkEnd& end, const Ports& portsOf, const MaterialItem& item,
                      int line) const {
        const auto generated = graph_.generator.nodeMap.find(end.node);
        if (end.node && generated != graph_.generator.nodeMap.end()) {
            if (const auto port = findPort(portsOf(*generated->second), end.port)) {
                return {indexByNode_.at(generated->second.get()), *port};
            }
        }
        fail(line, {nodeTitle(item), ": the code of this node does not provide the port \"", end.port,
                    "\"; report this to the author of its plug-in"});
    }

    ValueSource producerOf(const std::shared_ptr<NodeConnection>& record, std::size_t source,
                           int line) const {
        const auto link = graph_.generator.portLinks.find(record);
        const PortLinkEnd producer = link == graph_.generator.portLinks.end()
                                         ? PortLinkEnd{nullptr, record->sourcePort}
                                         : link->second.producer;
        return endOf(
            producer, [](const GeneratorNode& node) -> const auto& { return node.outputs; },
            material_.items[source], line);
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
        const auto link = graph_.generator.portLinks.find(connection.record);
        if (link == graph_.generator.portLinks.end()) {
            return;
        }
        for (const PortLinkEnd& end : link->second.consumers) {
            attempt(&ignored_, [&] {
                const ValueSource consumer = consumerOf(end, connection);
                excused_.insert({consumer.node, consumer.port});
            });
        }
    }

    ValueSource consumerOf(const PortLinkEnd& end, const MaterialConnection& connection) const {
        return endOf(
            end, [](const GeneratorNode& node) -> const auto& { return node.inputs; },
            material_.items[connection.destination], connection.line);
    }

    void joinConnection(const MaterialConnection& connection) {
        const ValueSource producer = producerOf(connection.record, connection.source, connection.line);
        for (const PortLinkEnd& end : graph_.generator.portLinks.at(connection.record).consumers) {
            const ValueSource consumer = consumerOf(end, connection);
            const ShaderType type = flow_.nodes[consumer.node].generated->inputs[consumer.port].type;
            const ValueSource value = convert(producer, type, [&](std::string_view reason) {
                fail(connection.line, {nodeTitle(material_.items[connection.source]), ", output \"",
                                       connection.record->sourcePort, "\", to ",
                                       nodeTitle(material_.items[connection.destination]), ", input \"",
                                       connection.record->destinationPort, "\": ", reason});
            });
            flow_.nodes[consumer.node].inputs[consumer.port] = value;
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
        } catch (const ShaderError& error) {
            refuse(error.what());
        }
        const std::size_t node = enter(conversion, flow_.nodes[value.node].owner);
        flow_.nodes[node].inputs[0] = value;
        flow_.nodes[node].conversion = true;
        return conversions_.emplace(key, ValueSource{node, 0}).first->second;
    }

    ValueSource selectOutput(const MaterialOutput& output, bool isVector) const {
        const ValueSource source = producerOf(output.record, output.source, output.line);
        const ShaderType& type = flow_.port(source).type;
        const bool isNumeric =
            type.componentType >= ComponentType::Float && type.componentType <= ComponentType::Int;
        const bool fits = type.columns == 1 || (isVector && type.columns == 3);
        if (!isNumeric || !fits || type.rows != 1 || type.arraySize != 1) {
            fail(output.line, {"output \"", output.name, "\" takes ",
                               isVector ? "three components or one" : "one component", ", and ",
                               nodeTitle(material_.items[output.source]), " gives \"",
                               output.record->sourcePort, "\" as ", typeText(type)});
        }
        return source;
    }

    void selectOutputs() {
        bool hasColour = false;
        for (const MaterialOutput& output : material_.outputs) {
            hasColour = hasColour || output.name == "colour";
            attempt(errorsBetween(output.source, output.source), [&] { selectNamed(output); });
            // what an output that is refused should have shown is looked at all the same
            attempt(&ignored_, [&] {
                roots_.push_back(producerOf(output.record, output.source, output.line));
                hasColourRoot_ = hasColourRoot_ || output.name == "colour";
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
        const auto isColour = [](const DocumentOutput& output) { return output.name == "colour"; };
        const auto mayBeColour = [&](const DocumentOutput& output) {
            return isColour(output) || output.name.empty();
        };
        return errors_ != nullptr &&
               (std::any_of(document.outputs.begin(), document.outputs.end(), isColour) ||
                std::any_of(document.leftOut.outputs.begin(), document.leftOut.outputs.end(), mayBeColour));
    }

    void selectNamed(const MaterialOutput& output) {
        if (output.name == "colour") {
            flow_.colour = selectOutput(output, true);
        } else if (output.name == "alpha") {
            flow_.alpha = selectOutput(output, false);
            flow_.hasAlpha = true;
        } else {
            fail(output.line, {"there is no output \"", output.name,
                               "\" to a material; the outputs are \"colour\" and \"alpha\""});
        }
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
        for (DataflowNode& node : flow_.nodes) {
            if (node.generated->kind != NodeKind::InterfaceParameter) {
                std::transform(node.inputs.begin(), node.inputs.end(), node.inputs.begin(),
                               [&](const ValueSource& input) { return written(input); });
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

    /// Copies what the outputs depend on, sources first.
    Dataflow keepNeeded() const {
        const std::vector<bool> needed = findNeeded();
        Dependencies sources(flow_.nodes.size());
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            for (const ValueSource& input : flow_.nodes[i].inputs) {
                if (needed[i] && input.node != noSource && needed[input.node]) {
                    sources[i].push_back(input.node);
                }
            }
        }
        // connections were checked for cycles, and conversions add none; only a plug-in's own edges can
        const DependencyOrder order = orderByDependencies(sources);
        if (!order.cycle.empty()) {
            const MaterialItem& item = ownerOf(order.cycle.front());
            fail(item.line,
                 {nodeTitle(item), ": the code of this node depends on itself; report this to the author "
                                   "of its plug-in"});
        }
        Dataflow result = withoutSources();
        std::vector<std::size_t> position(flow_.nodes.size(), noSource);
        const auto moved = [&](const ValueSource& source) {
            return source.node == noSource ? source : ValueSource{position[source.node], source.port};
        };
        for (const std::size_t index : order.order) {
            if (!needed[index]) {
                continue;
            }
            position[index] = result.nodes.size();
            DataflowNode node = flow_.nodes[index];
            for (ValueSource& input : node.inputs) {
                input = moved(input);
            }
            result.nodes.push_back(std::move(node));
        }
        result.colour = moved(flow_.colour);
        result.hasAlpha = flow_.hasAlpha;
        result.alpha = moved(flow_.alpha);
        for (const std::size_t sink : flow_.sinks) {
            result.sinks.push_back(position[sink]);
        }
        return result;
    }

    std::vector<bool> findNeeded() const {
        std::vector<bool> needed(flow_.nodes.size(), false);
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
            needed[node] = true;
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
        const MaterialItem& item = ownerOf(node);
        const bool isExcused = excused_.count({node, input}) != 0 || !isCertain(entry.owner);
        if (isInterface(node)) { // one that is written has given way to what is written
            if (!isExcused && areAllCertain()) {
                fail(item.line, {nodeTitle(item), ": this reads ", describe(*entry.generated),
                                 ", and no node writes it; add one that does"});
            }
        } else if (entry.inputs[input].node == noSource && !isExcused) {
            fail(item.line,
                 {nodeTitle(item), ": nothing feeds \"", entry.generated->inputs[input].name, "\" of ",
                  describe(*entry.generated), "; report this to the author of its plug-in"});
        }
    }

    const Material& material_;
    const GeneratedGraph& graph_;
    Errors* errors_;
    Errors ignored_; ///< only follow from errors that were reported
    Dataflow flow_ = withoutSources();
    std::vector<ValueSource> roots_; ///< of the outputs
    bool hasColourRoot_ = false;
    std::set<std::pair<std::size_t, std::size_t>> excused_; ///< inputs, by node, that may lack a source
    std::unordered_map<const GeneratorNode*, std::size_t> indexByNode_;
    std::map<std::tuple<std::size_t, std::size_t, std::string>, ValueSource> conversions_;
};

} // namespace

Dataflow joinGraph(const Material& material, const GeneratedGraph& graph, Errors* errors) {
    return Joiner(material, graph, errors).join();
}

} // namespace patina
