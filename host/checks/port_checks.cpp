#include "host/checks/checks.h"
#include "host/checks/wiring.h"

#include "nodemodel/text.h"
#include "shadergraph/shadergraph.h"

namespace patina::detail {

namespace {

bool isCount(std::uint32_t count) { return count >= 1 && count <= 4; }

bool isPrecision(std::uint32_t code) {
    return code > static_cast<std::uint32_t>(ComponentType::Void) &&
           code <= static_cast<std::uint32_t>(ComponentType::SamplerRect);
}

void checkPort(CheckContext& context, const char* direction, const Port& port) {
    const std::string title = joinText({"the ", direction, " port ", inQuotes(port.name)});
    context.require(isValidVariableName(port.name),
                    {title, " has a name that is no Cg variable name; use letters, digits and \"_\""});
    context.require(!port.label.empty(), {title, " has no label"});
    context.require(!port.componentCountKnown || isCount(port.componentCount),
                    {title, " has ", std::to_string(port.componentCount), " components, not 1 to 4"});
    context.require(!port.precisionKnown || isPrecision(port.precision),
                    {title, " has the precision ", std::to_string(port.precision),
                     ", which is the code of no value's type"});
    context.require(port.componentCountKnown || !port.componentCountFixed,
                    {title, " has a fixed width that is not known"});
    context.require(port.precisionKnown || !port.precisionFixed,
                    {title, " has a fixed precision that is not known"});
    context.require(!port.connected, {title, " is connected; only hosts say so"});
}

void checkPortList(CheckContext& context, const char* direction, const std::vector<Port>& ports) {
    std::set<std::string> names;
    for (const Port& port : ports) {
        checkPort(context, direction, port);
        context.require(names.insert(port.name).second,
                        {"there are two ", direction, " ports ", inQuotes(port.name)});
    }
}

void requireKnown(CheckContext& context, const std::vector<Port>& ports) {
    for (const Port& port : ports) {
        context.require(port.componentCountKnown && isCount(port.componentCount),
                        {"the port ", inQuotes(port.name), " has no width from 1 to 4 when it is resolved"});
        context.require(port.precisionKnown,
                        {"the port ", inQuotes(port.name), " has no precision when it is resolved"});
    }
}

bool isInConflict(const MaterialNode& node) {
    for (const Port& input : node.inputs) {
        if (input.componentCountConflict) {
            return true;
        }
    }
    return false;
}

NodeState resolvedState(const MaterialNode& node) {
    NodeState state = portState(node);
    state.push_back("resolved component count " + std::to_string(node.resolvedComponentCount));
    state.push_back("resolved precision " + std::to_string(node.resolvedPrecision));
    return state;
}

void checkResolved(CheckContext& context, MaterialNode& node, const Demand& demand) {
    pushWidths(node, demand);
    node.resolveComponentCounts();
    const NodeState counted = resolvedState(node);
    node.resolveComponentCounts();
    requireSame(context, "resolving component counts again changed the node", counted, resolvedState(node));

    pushPrecision(node, demand);
    node.resolvePrecision();
    const NodeState resolved = resolvedState(node);
    node.resolvePrecision();
    requireSame(context, "resolving precision again changed the node", resolved, resolvedState(node));
    if (!isInConflict(node)) {
        requireKnown(context, node.inputs);
        requireKnown(context, node.outputs);
    }
}

} // namespace

void checkPorts(CheckContext& context) {
    forEachConfiguration(context, Types::All, [&](const Configuration& configuration) {
        const auto node = configuration.makeUpdatedNode();
        checkPortList(context, "input", node->inputs);
        checkPortList(context, "output", node->outputs);
    });
}

void checkUpdate(CheckContext& context) {
    forEachConfiguration(context, Types::All, [&](const Configuration& configuration) {
        const auto node = configuration.makeUpdatedNode();
        const NodeState once = nodeState(*node);
        node->updateFromProperties(nullptr);
        requireSame(context, "updating the node again changed it", once, nodeState(*node));
    });
}

void checkResolution(CheckContext& context) {
    forEachConfiguration(context, Types::All, [&](const Configuration& configuration) {
        for (const Demand& demand : allDemands()) {
            checkResolved(context, *configuration.makeUpdatedNode(), demand);
        }
    });
}

} // namespace patina::detail
