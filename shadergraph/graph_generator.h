#pragma once

#include "nodemodel/node_connection.h"
#include "shadergraph/graph.h"

#include <memory>
#include <memory_resource>
#include <string>
#include <unordered_map>
#include <vector>

namespace patina {

/// A generator node and the name of one of its ports.
struct PortLinkEnd {
    std::shared_ptr<GeneratorNode> node;
    std::string port;
};

/// What realises a host connection in the shader graph: who produces its value, and who consumes it.
struct PortLink {
    PortLinkEnd producer;
    std::vector<PortLinkEnd> consumers;
};

/// What a host hands to MaterialNode::generateCode: collects the generator nodes of all material nodes in one
/// graph, joins their ports, and records which of them realise the host's connections.
///
/// It lives for one code generation pass of a material. Node code adds its nodes, then connects their ports,
/// then links the material node's ports. Ownership: shares what is added. Threads: one thread at a time.
/// Errors: ShaderError, usually the end of the pass; nothing is rolled back.
class GraphGenerator {
    // of the maps, which never shrink; held by pointer, so that they stay where they are when this moves
    std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_;

public:
    /// Starts with an empty graph.
    GraphGenerator();
    GraphGenerator(GraphGenerator&&) noexcept = default;
    GraphGenerator& operator=(GraphGenerator&&) = delete;
    ~GraphGenerator() = default;

    /// From a submitted node to the node that stands for it in the graph.
    std::pmr::unordered_map<std::shared_ptr<GeneratorNode>, std::shared_ptr<GeneratorNode>> nodeMap;
    std::pmr::unordered_map<std::shared_ptr<NodeConnection>, PortLink> portLinks;
    std::shared_ptr<Graph> graph;

    /// Enters a node. An interface parameter whose name and flags the graph already has is mapped onto that
    /// one, which must be of the same type. Throws when the node was added before.
    void addNode(const std::shared_ptr<GeneratorNode>& node);

    /// The graph node that stands for a submitted one. Throws when it was never added.
    std::shared_ptr<GeneratorNode> findNode(const std::shared_ptr<GeneratorNode>& node) const;

    /// Joins an output of one submitted node to an input of another, through a new "promoteAndSplat" function
    /// where the types differ. Throws for unknown nodes and ports and for types that cannot be converted.
    void connect(const std::shared_ptr<GeneratorNode>& tail, const std::string& tailPort,
                 const std::shared_ptr<GeneratorNode>& head, const std::string& headPort);

    /// Sets the producer of a connection's value, in place of an earlier one.
    void linkOutputPort(const std::shared_ptr<NodeConnection>& connection,
                        const std::shared_ptr<GeneratorNode>& node, const std::string& portName);

    /// Appends a consumer of a connection's value.
    void linkInputPort(const std::shared_ptr<NodeConnection>& connection,
                       const std::shared_ptr<GeneratorNode>& node, const std::string& portName);
};

} // namespace patina
