#pragma once

#include "shadergraph/generator_node.h"

#include <cstdint>
#include <map>
#include <memory>
#include <memory_resource>
#include <set>
#include <string>
#include <vector>

namespace patina {

class Graph;

/// A directed edge from an output of one generator node to an input of another.
/// Ownership: shared by the graph; the ends are weak, so an edge can outlive them.
struct GeneratorEdge {
    std::weak_ptr<GeneratorNode> tail; ///< writes the value
    std::weak_ptr<GeneratorNode> head; ///< reads the value
    std::string tailPort;              ///< an output of the tail
    std::string headPort;              ///< an input of the head
    bool flag = false;                 ///< carried as data; false on every edge made here
};

/// The key of a shared interface parameter: ordered by name, byte by byte, then by flags.
struct InterfaceKey {
    std::string name;
    std::int32_t flags = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): there is no null here
    auto operator<=>(const InterfaceKey&) const = default;
};

/// A source of interface parameters that the graph does not hold.
class InterfaceProvider {
public:
    InterfaceProvider() = default;
    InterfaceProvider(const InterfaceProvider&) = delete;
    InterfaceProvider& operator=(const InterfaceProvider&) = delete;
    virtual ~InterfaceProvider();

    /// The node for that name and flags, or an empty handle to let the next provider answer.
    virtual std::shared_ptr<GeneratorNode> provideInterfaceNode(const std::string& name, std::int32_t flags,
                                                                Graph& graph) = 0;
};

/// The plain directed graph of generator nodes and edges. It only grows.
///
/// Nodes and edges are told apart by identity: two equal edge objects are two edges.
/// Ownership: shares what is inserted. Threads: one code generation pass, and so one thread, at a time.
/// Errors: ShaderError; nothing is rolled back.
class Graph {
    std::pmr::monotonic_buffer_resource memory_; // of the sets, which never shrink

public:
    Graph();
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;
    ~Graph();

    std::vector<std::shared_ptr<GeneratorNode>> nodes;     ///< in the order of insertion
    std::vector<std::shared_ptr<GeneratorEdge>> edges;     ///< in the order of insertion
    std::pmr::set<std::shared_ptr<GeneratorNode>> nodeSet; ///< the same, in the order of their addresses
    std::pmr::set<std::shared_ptr<GeneratorEdge>> edgeSet; ///< the same, in the order of their addresses
    std::map<InterfaceKey, std::shared_ptr<GeneratorNode>> interfaces;
    std::vector<std::shared_ptr<InterfaceProvider>> interfaceProviders; ///< asked in order

    /// Adds a node; an interface parameter enters the interface table first. Throws when it is there already.
    void insertNode(const std::shared_ptr<GeneratorNode>& node);

    /// Adds an edge, and enters it at both its ends. Throws when an end is deleted, not in this graph, or the
    /// same as the other, and when the edge was added before; std::bad_weak_ptr when an end lists a deleted
    /// edge.
    void addEdge(const std::shared_ptr<GeneratorEdge>& edge);

    /// Adds a new edge between the named ports, which are not looked up.
    void connect(const std::shared_ptr<GeneratorNode>& tail, const std::string& tailPort,
                 const std::shared_ptr<GeneratorNode>& head, const std::string& headPort);

    /// Enters an interface parameter under its name and flags. Throws, changing nothing, when the key is
    /// taken.
    void registerInterface(const std::shared_ptr<GeneratorNode>& node);

    /// Whether the table holds the key; providers are not asked.
    bool hasInterfaceNode(const std::string& name, std::int32_t flags) const;

    /// The node for the key: from the table, else of the first provider that has one, which is then neither
    /// inserted nor registered. Throws when nobody has it.
    std::shared_ptr<GeneratorNode> findInterfaceNode(const std::string& name, std::int32_t flags);

    /// The same; throws too when the node is not of that type.
    std::shared_ptr<GeneratorNode> findInterfaceNode(const std::string& name, std::int32_t flags,
                                                     const ShaderType& type);
};

} // namespace patina
