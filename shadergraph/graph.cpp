#include "shadergraph/graph.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <cstddef>

namespace patina {

using namespace detail;

namespace {

/// Appends the edge to a node's list. Turning a dead entry into an owning one throws std::bad_weak_ptr.
void enterEdge(std::vector<std::weak_ptr<GeneratorEdge>>& entries, const std::shared_ptr<GeneratorEdge>& edge,
               const char* duplicateMessage) {
    for (const std::weak_ptr<GeneratorEdge>& entry : entries) {
        if (std::shared_ptr<GeneratorEdge>(entry) == edge) {
            throw ShaderError(duplicateMessage);
        }
    }
    entries.push_back(edge);
}

} // namespace

InterfaceProvider::~InterfaceProvider() = default;

Graph::Graph() : nodeSet(&memory_), edgeSet(&memory_) {}

Graph::~Graph() = default;

void Graph::insertNode(const std::shared_ptr<GeneratorNode>& node) {
    if (node->kind == NodeKind::InterfaceParameter) {
        registerInterface(node); // and stays registered when the node is refused below
    }
    const std::size_t count = nodeSet.size();
    nodeSet.insert(nodeSet.end(), node); // new nodes often lie behind the earlier ones
    if (nodeSet.size() == count) {
        throw ShaderError("node for addition already exists in graph");
    }
    nodes.push_back(node);
}

void Graph::addEdge(const std::shared_ptr<GeneratorEdge>& edge) {
    const std::shared_ptr<GeneratorNode> tail = edge->tail.lock();
    const std::shared_ptr<GeneratorNode> head = edge->head.lock();
    if (!tail) {
        throw ShaderError("edge tail node has been deleted");
    }
    if (!head) {
        throw ShaderError("edge head node has been deleted");
    }
    if (head == tail) {
        throw ShaderError("edge head and tail are the same node");
    }
    if (edgeSet.count(edge) != 0) {
        throw ShaderError("edge for addition already exists in graph");
    }
    if (nodeSet.count(tail) == 0) {
        throw ShaderError("tail node on edge for addition does not exist in graph");
    }
    if (nodeSet.count(head) == 0) {
        throw ShaderError("head node on edge for addition does not exist in graph");
    }
    edgeSet.insert(edge);
    edges.push_back(edge); // and stays in the graph when an end refuses it below
    enterEdge(tail->outEdges, edge, "out-edge entry for addition already exists on node");
    enterEdge(head->inEdges, edge, "in-edge entry for addition already exists on node");
}

void Graph::connect(const std::shared_ptr<GeneratorNode>& tail, const std::string& tailPort,
                    const std::shared_ptr<GeneratorNode>& head, const std::string& headPort) {
    auto edge = std::make_shared<GeneratorEdge>();
    edge->tail = tail;
    edge->head = head;
    edge->tailPort = tailPort;
    edge->headPort = headPort;
    addEdge(edge);
}

void Graph::registerInterface(const std::shared_ptr<GeneratorNode>& node) {
    if (!interfaces.try_emplace({node->name, node->flags}, node).second) {
        throw ShaderError(joinText({describe(*node), " already exists in graph"}));
    }
}

bool Graph::hasInterfaceNode(const std::string& name, std::int32_t flags) const {
    return interfaces.count({name, flags}) != 0;
}

std::shared_ptr<GeneratorNode> Graph::findInterfaceNode(const std::string& name, std::int32_t flags) {
    const auto found = interfaces.find({name, flags});
    if (found != interfaces.end()) {
        return found->second;
    }
    for (const std::shared_ptr<InterfaceProvider>& provider : interfaceProviders) {
        if (auto node = provider->provideInterfaceNode(name, flags, *this)) {
            return node;
        }
    }
    throw ShaderError(
        joinText({"failed to find interface node \"", name, "\" (flags=", std::to_string(flags), ")"}));
}

std::shared_ptr<GeneratorNode> Graph::findInterfaceNode(const std::string& name, std::int32_t flags,
                                                        const ShaderType& type) {
    auto node = findInterfaceNode(name, flags);
    if (node->type != type) {
        throw ShaderError(joinText({describe(*node), " expected to have type ", typeText(type)}));
    }
    return node;
}

} // namespace patina
