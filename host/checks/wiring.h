#pragma once

// A node as it is in a material: with neighbours, connections, and what comes along them.

#include "nodemodel/material_node.h"
#include "nodemodel/node_connection.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace patina::detail {

/// What the neighbours of a node hand to it.
struct Demand {
    std::array<std::uint32_t, 2> widths; ///< of the inputs in turn; 0 leaves one unknown
    std::uint32_t precision;             ///< of every output; 0 leaves it unknown
};

/// Every demand that nodes are tried with: equal, mixed, conflicting and no widths, at each precision.
std::span<const Demand> allDemands();

/// Hands the widths to the inputs that the node leaves free.
void pushWidths(MaterialNode& node, const Demand& demand);

/// Hands the precision to the outputs that the node leaves free.
void pushPrecision(MaterialNode& node, const Demand& demand);

/// A node with a connection at every port, to neighbours of its own. Lets the links go when destroyed.
class WiredNode {
public:
    explicit WiredNode(std::shared_ptr<MaterialNode> node);
    ~WiredNode();
    WiredNode(const WiredNode&) = delete;
    WiredNode& operator=(const WiredNode&) = delete;

    MaterialNode& node() { return *node_; }
    const std::vector<std::shared_ptr<NodeConnection>>& incoming() const { return incoming_; }
    const std::vector<std::shared_ptr<NodeConnection>>& outgoing() const { return outgoing_; }

private:
    std::shared_ptr<MaterialNode> node_;
    std::shared_ptr<MaterialNode> neighbour_;
    std::vector<std::shared_ptr<NodeConnection>> incoming_;
    std::vector<std::shared_ptr<NodeConnection>> outgoing_;
};

} // namespace patina::detail
