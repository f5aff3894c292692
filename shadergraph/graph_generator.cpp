#include "shadergraph/graph_generator.h"

#include "nodemodel/material_node.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

namespace patina {

using namespace detail;

GraphGenerator::GraphGenerator()
    : memory_(std::make_unique<std::pmr::monotonic_buffer_resource>()), nodeMap(memory_.get()),
      portLinks(memory_.get()), graph(std::make_shared<Graph>()) {}

void GraphGenerator::addNode(const std::shared_ptr<GeneratorNode>& node) {
    if (nodeMap.count(node) != 0) {
        throw ShaderError(joinText({describe(*node), " already added to the graph generator"}));
    }
    if (node->kind == NodeKind::InterfaceParameter && graph->hasInterfaceNode(node->name, node->flags)) {
        nodeMap.emplace(node, graph->findInterfaceNode(node->name, node->flags, node->type));
    } else {
        graph->insertNode(node);
        nodeMap.emplace(node, node);
    }
}

std::shared_ptr<GeneratorNode> GraphGenerator::findNode(const std::shared_ptr<GeneratorNode>& node) const {
    const auto found = nodeMap.find(node);
    if (found == nodeMap.end()) {
        throw ShaderError(joinText({describe(*node), " not yet been added to the graph generator"}));
    }
    return found->second;
}

void GraphGenerator::connect(const std::shared_ptr<GeneratorNode>& tail, const std::string& tailPort,
                             const std::shared_ptr<GeneratorNode>& head, const std::string& headPort) {
    const auto mappedTail = findNode(tail);
    const auto mappedHead = findNode(head);
    const ShaderType& from = outputPort(*mappedTail, tailPort).type;
    const ShaderType& to = inputPort(*mappedHead, headPort).type;
    if (from == to) {
        graph->connect(mappedTail, tailPort, mappedHead, headPort);
        return;
    }
    const auto conversion = makePromoteAndSplat(from, to);
    graph->insertNode(conversion);
    graph->connect(mappedTail, tailPort, conversion, "in_value");
    graph->connect(conversion, "out_value", mappedHead, headPort);
}

void GraphGenerator::linkOutputPort(const std::shared_ptr<NodeConnection>& connection,
                                    const std::shared_ptr<GeneratorNode>& node, const std::string& portName) {
    PortLinkEnd& producer = portLinks[connection].producer;
    producer.port = portName; // before its node, to which the name may belong
    producer.node = node;
}

void GraphGenerator::linkInputPort(const std::shared_ptr<NodeConnection>& connection,
                                   const std::shared_ptr<GeneratorNode>& node, const std::string& portName) {
    portLinks[connection].consumers.push_back({node, portName});
}

void MaterialNode::attachLinks(GraphGenerator& generator,
                               const std::shared_ptr<GeneratorNode>& generatedNode) {
    for (const std::weak_ptr<NodeConnection>& link : inputLinks) {
        const std::shared_ptr<NodeConnection> connection(link);
        generator.linkInputPort(connection, generatedNode, connection->destinationPort);
    }
    for (const std::weak_ptr<NodeConnection>& link : outputLinks) {
        const std::shared_ptr<NodeConnection> connection(link);
        generator.linkOutputPort(connection, generatedNode, connection->sourcePort);
    }
}

} // namespace patina
