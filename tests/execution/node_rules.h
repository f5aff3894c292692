#pragma once

#include "tests/execution/bounded.h"
#include "tests/execution/graph.h"
#include "tests/execution/reference.h"

#include <map>
#include <string>
#include <vector>

namespace patina::testing {

// What each node type means.

inline constexpr int nodeWidth = 0; ///< of a port that takes the width of the node

struct InputRule {
    std::string name;
    int width = nodeWidth;
    std::string setting = {}; ///< whose value an unconnected input has
    double byDefault = 0;     ///< the value without that
    bool isFloat = false;     ///< whatever the readers of the node ask for
};

struct OutputRule {
    std::string name;
    int width = nodeWidth;
};

struct NodePorts {
    std::vector<InputRule> inputs;
    std::vector<OutputRule> outputs;
    const Format* format = nullptr; ///< of all of them, whatever the readers ask for
};

NodePorts portsOf(const GraphNode& node);

/// The inputs of a node at one point, and what is resolved of it.
struct NodeCall {
    const GraphNode& node;
    const InputSet& values; ///< of sources
    Arithmetic arithmetic;  ///< in the node's format
    int width = 1;          ///< of the ports that take the node's
    std::map<std::string, BoundedVector> inputs;

    const BoundedVector& operator[](const std::string& input) const { return inputs.at(input); }
};

/// The outputs, before they are rounded to their formats.
std::map<std::string, BoundedVector> evaluateNode(const NodeCall& call);

/// The exact sRGB curve.
Bounded linearFromSrgb(const Arithmetic& arithmetic, const Bounded& value);

} // namespace patina::testing
