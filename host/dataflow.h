#pragma once

#include "host/generate.h"
#include "host/material.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <vector>

namespace patina {

/// The node of a source that is missing.
inline constexpr std::size_t noSource = std::numeric_limits<std::size_t>::max();

/// An output of a node of the dataflow.
struct ValueSource {
    std::size_t node = 0; ///< index into Dataflow::nodes
    std::size_t port = 0; ///< index into its outputs

    bool operator==(const ValueSource&) const = default;
};

/// The owner of what the framework adds to a material.
inline constexpr std::size_t frameworkOwner = noSource;

/// A generator node with the sources of all its inputs.
struct DataflowNode {
    std::shared_ptr<GeneratorNode> generated;
    std::size_t owner = 0; ///< the material item whose code it is, or whose value it converts; frameworkOwner
    std::span<ValueSource> inputs; ///< in the memory of the dataflow
    bool conversion = false;       ///< put in between two material nodes to convert a value
};

/// A material's shader as one graph of functions and parameters in which every input has its source.
struct Dataflow {
    std::shared_ptr<std::pmr::monotonic_buffer_resource> memory = ///< of the inputs; copies share both
        std::make_shared<std::pmr::monotonic_buffer_resource>();
    std::vector<DataflowNode> nodes; ///< only what an output needs; every source before what reads it
    ValueSource colour;              ///< three components, or one that is to be splatted; see ColourWidth
    ValueSource alpha;
    bool hasAlpha = false; ///< otherwise alpha is 1
    bool lit = false;      ///< whether the colour is what the framework makes of the material's outputs
    std::vector<std::size_t>
        sinks; ///< register parameters that are written: outputs besides colour and alpha
    /// By node: the first one with the same function, which is the same but for its level. Other nodes stand
    /// for themselves.
    std::vector<std::size_t> functions;

    /// The inputs of one more node, which lack their sources.
    std::span<ValueSource> makeInputs(std::size_t count);

    const GeneratorPort& port(const ValueSource& source) const {
        return nodes[source.node].generated->outputs[source.port];
    }
};

/// What Dataflow::functions must be for these nodes.
std::vector<std::size_t> firstOfEachFunction(const std::vector<DataflowNode>& nodes);

/// How messages and comments name the owner of a node: as nodeTitle does, or "the framework".
std::string ownerTitle(const Material& material, const DataflowNode& node);

/// Where the owner stands in its file; of the framework, the material.
SourcePosition ownerPosition(const Material& material, const DataflowNode& node);

/// How wide a material's colour may be.
enum class ColourWidth {
    OneOrThree, ///< a colour that is drawn
    Any ///< one to four components, for a value that is shown as it is; there are no other outputs then
};

/// Joins the generator nodes of connected material nodes, inserting conversions where types differ (one for
/// each value and type), and leaves out what no output of the material needs. Whoever reads an interface
/// parameter gets what is written to it; the parameter itself is gone then. For each one that is read and
/// that no node writes, the providers of the graph are asked in their order, wherever it stands in the
/// document; what they insert in the graph belongs to the node that reads it first. A material with an output
/// "normal", "emissive" or "gloss" is lit: what insertSurface inserts reads its outputs, and gives the
/// colour.
///
/// Throws HostError, naming the line and both nodes, for a connection whose types do not convert, for
/// missing, unknown and misshapen outputs, for interface parameters and inputs that nobody or more than one
/// writes, for a cycle through interface parameters or within the code of a node, and for what a provider
/// throws. With `errors`, goes on with the next connection or output and puts them there, but for what only
/// follows from nodes that are faulty or whose code is incomplete. Sources may be missing then, of inputs,
/// the colour and alpha; without a colour output, every node counts as needed. Threads: as the material, one
/// thread at a time.
Dataflow joinGraph(const Material& material, const GeneratedGraph& graph, Errors* errors = nullptr,
                   ColourWidth colourWidth = ColourWidth::OneOrThree);

} // namespace patina
