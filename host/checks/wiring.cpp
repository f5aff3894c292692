#include "host/checks/wiring.h"

#include "shadergraph/shader_type.h"

namespace patina::detail {

namespace {

constexpr auto floatPrecision = static_cast<std::uint32_t>(ComponentType::Float);
constexpr auto halfPrecision = static_cast<std::uint32_t>(ComponentType::Half);

constexpr std::array<std::array<std::uint32_t, 2>, 7> triedWidths = {
    {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {3, 1}, {2, 3}, {0, 0}}};
constexpr std::array<std::uint32_t, 3> triedPrecisions = {0, halfPrecision, floatPrecision};

constexpr auto makeDemands() {
    std::array<Demand, triedWidths.size() * triedPrecisions.size()> demands = {};
    for (std::size_t i = 0; i < demands.size(); ++i) {
        demands[i] = {triedWidths[i / triedPrecisions.size()], triedPrecisions[i % triedPrecisions.size()]};
    }
    return demands;
}

constexpr auto demands = makeDemands();

/// The other end of every connection.
class NeighbourNode final : public MaterialNode {
public:
    NeighbourNode() : MaterialNode("PatinaNeighbour") {
        inputs.emplace_back("in_value");
        outputs.emplace_back("out_value");
    }
    void generateCode(GraphGenerator& /*generator*/) override {} // GCOVR_EXCL_LINE: nobody asks it to
};

} // namespace

std::span<const Demand> allDemands() { return demands; }

void pushWidths(MaterialNode& node, const Demand& demand) {
    for (std::size_t i = 0; i < node.inputs.size(); ++i) {
        Port& input = node.inputs[i];
        const std::uint32_t width = demand.widths[i % demand.widths.size()];
        if (!input.componentCountFixed && width != 0) {
            input.componentCount = width;
            input.componentCountKnown = true;
        }
    }
}

void pushPrecision(MaterialNode& node, const Demand& demand) {
    for (Port& output : node.outputs) {
        if (!output.precisionFixed && demand.precision != 0) {
            output.precision = demand.precision;
            output.precisionKnown = true;
        }
    }
}

WiredNode::WiredNode(std::shared_ptr<MaterialNode> node)
    : node_(std::move(node)), neighbour_(std::make_shared<NeighbourNode>()) {
    for (Port& input : node_->inputs) {
        input.connected = true;
        incoming_.push_back(std::make_shared<NodeConnection>(
            NodeConnection{neighbour_, node_, neighbour_->outputs.front().name, input.name}));
        node_->inputLinks.push_back(incoming_.back());
    }
    for (Port& output : node_->outputs) {
        output.connected = true;
        outgoing_.push_back(std::make_shared<NodeConnection>(
            NodeConnection{node_, neighbour_, output.name, neighbour_->inputs.front().name}));
        node_->outputLinks.push_back(outgoing_.back());
    }
}

WiredNode::~WiredNode() {
    node_->inputLinks.clear();
    node_->outputLinks.clear();
}

} // namespace patina::detail
