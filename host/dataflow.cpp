#include "host/dataflow.h"

#include "host/dependency_order.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>

namespace patina {

using namespace detail;

namespace {

constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

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
        if (errors_ != nullptr && !errors_->empty()) {
            return {};
        }
        passInterfaces();
        Dataflow needed;
        attempt(errors_, [&] { needed = keepNeeded(); });
        return needed;
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({material_.file, line}, joinText(pieces));
    }

    const MaterialItem& ownerOf(std::size_t node) const { return material_.items[flow_.nodes[node].owner]; }

    std::size_t enter(const std::shared_ptr<GeneratorNode>& generated, std::size_t owner) {
        const std::size_t index = flow_.nodes.size();
        flow_.nodes.push_back({generated, owner,
                               std::vector<ValueSource>(generated->inputs.size(), ValueSource{nowhere, 0}),
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
            if (output && input) {
                attempt(errors_, [&] { feed(head, *input, {tail, *output}); });
            }
        }
    }

    void feed(std::size_t head, std::size_t input, const ValueSource& value) {
        const MaterialItem& item = ownerOf(value.node);
        // by value: a conversion adds a node
        const std::shared_ptr<GeneratorNode> generated = flow_.nodes[head].generated;
        const ValueSource earlier = flow_.nodes[head].inputs[input];
        if (earlier.node != nowhere) {
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
            attempt(errors_, [&] { joinConnection(connection); });
        }
    }

    void joinConnection(const MaterialConnection& connection) {
        const ValueSource producer = producerOf(connection.record, connection.source, connection.line);
        for (const PortLinkEnd& end : graph_.generator.portLinks.at(connection.record).consumers) {
            const ValueSource consumer = endOf(
                end, [](const GeneratorNode& node) -> const auto& { return node.inputs; },
                material_.items[connection.destination], connection.line);
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
        const auto [found, isNew] = conversions_.try_emplace({value.node, value.port, typeText(type)},
                                                             ValueSource{flow_.nodes.size(), 0});
        if (isNew) {
            std::shared_ptr<GeneratorNode> conversion;
            try {
                conversion = makePromoteAndSplat(from, type);
            } catch (const ShaderError& error) {
                refuse(error.what());
            }
            const std::size_t node = enter(conversion, flow_.nodes[value.node].owner);
            flow_.nodes[node].inputs[0] = value;
            flow_.nodes[node].conversion = true;
        }
        return found->second;
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
            attempt(errors_, [&] { selectNamed(output); });
        }
        if (!hasColour) {
            attempt(errors_, [&] {
                fail(material_.line,
                     {"this material has no \"colour\" output; connect one with an <output> element"});
            });
        }
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
        for (std::size_t steps = 0; value.node != nowhere && isInterface(value.node); ++steps) {
            const ValueSource& source = flow_.nodes[value.node].inputs.front();
            if (source.node == nowhere || steps == flow_.nodes.size()) {
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
            for (std::size_t input = 0; needed[i] && input < flow_.nodes[i].inputs.size(); ++input) {
                sources[i].push_back(flow_.nodes[i].inputs[input].node);
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
        Dataflow result;
        std::vector<std::size_t> position(flow_.nodes.size(), nowhere);
        const auto moved = [&](const ValueSource& source) {
            return ValueSource{position[source.node], source.port};
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
        if (flow_.hasAlpha) {
            result.alpha = moved(flow_.alpha);
        }
        for (const std::size_t sink : flow_.sinks) {
            result.sinks.push_back(position[sink]);
        }
        return result;
    }

    std::vector<bool> findNeeded() const {
        std::vector<bool> needed(flow_.nodes.size(), false);
        std::vector<std::size_t> pending = flow_.sinks;
        pending.push_back(flow_.colour.node);
        if (flow_.hasAlpha) {
            pending.push_back(flow_.alpha.node);
        }
        while (!pending.empty()) {
            const std::size_t node = pending.back();
            pending.pop_back();
            if (needed[node]) {
                continue;
            }
            needed[node] = true;
            for (std::size_t input = 0; input < flow_.nodes[node].inputs.size(); ++input) {
                pending.push_back(requireSource(node, input).node);
            }
        }
        return needed;
    }

    const ValueSource& requireSource(std::size_t node, std::size_t input) const {
        const DataflowNode& entry = flow_.nodes[node];
        const MaterialItem& item = ownerOf(node);
        if (entry.generated->kind == NodeKind::InterfaceParameter) {
            fail(item.line, {nodeTitle(item), ": this reads ", describe(*entry.generated),
                             ", and no node writes it; add one that does"});
        }
        if (entry.inputs[input].node == nowhere) {
            fail(item.line,
                 {nodeTitle(item), ": nothing feeds \"", entry.generated->inputs[input].name, "\" of ",
                  describe(*entry.generated), "; report this to the author of its plug-in"});
        }
        return entry.inputs[input];
    }

    const Material& material_;
    const GeneratedGraph& graph_;
    Errors* errors_;
    Dataflow flow_;
    std::unordered_map<const GeneratorNode*, std::size_t> indexByNode_;
    std::map<std::tuple<std::size_t, std::size_t, std::string>, ValueSource> conversions_;
};

} // namespace

Dataflow joinGraph(const Material& material, const GeneratedGraph& graph, Errors* errors) {
    return Joiner(material, graph, errors).join();
}

} // namespace patina
