#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace patina::testing {

// A material as its author thinks of it, from which both its document and its reference are made.

struct Setting {
    std::string name;
    std::string kind; ///< as documents name it
    std::string value;
};

Setting choice(const std::string& name, const std::string& item);
Setting flag(const std::string& name, bool value);
Setting integer(const std::string& name, int value);
Setting real(const std::string& name, const std::string& value);

/// An output port of a node of the graph.
struct PortOf {
    std::size_t node = 0;
    std::string port;
};

struct GraphNode {
    std::string type;
    std::vector<Setting> settings;
    std::map<std::string, PortOf> inputs; ///< the connected ones

    /// The value of a setting, or what the node type has by default.
    std::string setting(const std::string& name, const std::string& byDefault) const;
    bool isSet(const std::string& name) const;
    double number(const std::string& name, double byDefault) const;
    std::string name() const;
};

/// Whether an input is set for a draw, or read for each vertex.
enum class InputKind { Varying, Uniform };

/// Nodes in an order in which sources come first, and the output that is looked at.
struct Graph {
    std::vector<GraphNode> nodes;
    PortOf shown;

    std::size_t add(const std::string& type, std::vector<Setting> settings = {});
    void connect(const PortOf& source, std::size_t destination, const std::string& input);
    /// A source of that width, in a node named after its place: In0, In1 ...
    PortOf addInput(InputKind kind, int width);
    /// A texture that nothing shows and that asks for its coordinate as float, and so for all before it.
    void demandFloat(const PortOf& source, int width);
    /// A node with the settings that count: those of the node that it refers to.
    GraphNode meant(std::size_t node) const;
    /// The elements of the document, without outputs.
    std::string elements() const;
    static std::string idOf(std::size_t node);
};

} // namespace patina::testing
