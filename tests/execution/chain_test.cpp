// Materials of several nodes: conversions between them, and graphs drawn by lot.

#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"
#include "tests/execution/node_rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {
namespace {

using ChainExecution = Execution;

/// A scalar and a vector, uniform or varying, are added. A texture reads the value of one of the three nodes,
/// so that this is float, and all before it.
Case makeSum(InputKind kind, int width, std::size_t floatNode) {
    Graph graph;
    const PortOf scalar = graph.addInput(kind, 1);
    const PortOf vector = graph.addInput(kind, width);
    const std::size_t sum = graph.add("CoreMaths", {choice("Function", "Addition")});
    graph.connect(scalar, sum, "in_value1");
    graph.connect(vector, sum, "in_value2");
    graph.shown = {sum, "out_value"};
    const PortOf read = floatNode == scalar.node ? scalar : floatNode == vector.node ? vector : graph.shown;
    graph.demandFloat(read, floatNode == scalar.node ? 1 : width);
    const std::string title =
        "scalar to " + std::to_string(width) + ", node " + std::to_string(floatNode) + " is float";
    std::vector<InputSet> sets = inputSets(graph, Numbers::Wide, pointsOfCase() / 2, title);
    return {"promoteAndSplat", title, std::move(graph), std::move(sets)};
}

// From a scalar to every width, and from float to half. Half does not come to where float is asked for among
// Core nodes: one reader that needs float makes float of what it reads.
TEST_F(ChainExecution, Conversions) {
    for (const InputKind kind : {InputKind::Varying, InputKind::Uniform}) {
        for (const int width : {1, 2, 3, 4}) {
            for (const std::size_t floatNode : {0U, 1U, 2U}) {
                expectReference(makeSum(kind, width, floatNode));
            }
        }
    }
}

std::size_t addTypedCopy(Graph& graph, const PortOf& source, const std::string& type, int width) {
    const std::size_t copy =
        graph.add("TypedCopy", {{"Component Type", "string", type}, integer("Component Count", width)});
    graph.connect(source, copy, "in_value");
    return copy;
}

/// A value of one type is read as one of another.
Case makeConversion(const std::string& from, int fromWidth, const std::string& to, int toWidth) {
    Graph graph;
    const PortOf source = graph.addInput(InputKind::Varying, fromWidth);
    const std::size_t written = addTypedCopy(graph, source, from, fromWidth);
    const std::size_t read = addTypedCopy(graph, {written, "out_value"}, to, toWidth);
    graph.shown = {read, "out_value"};
    const std::string title = from + std::to_string(fromWidth) + " to " + to + std::to_string(toWidth);
    // fixed ends at 2
    const Numbers numbers = from == "fixed" || to == "fixed" ? Numbers::Unit : Numbers::Wide;
    std::vector<InputSet> sets = inputSets(graph, numbers, pointsOfCase() / 2, title);
    return {"promoteAndSplat from " + from + " to " + to, title, std::move(graph), std::move(sets)};
}

TEST_F(ChainExecution, ConversionsOfEveryPairOfTypes) {
    const std::vector<std::string> types = {"float", "half", "fixed"};
    for (const std::string& from : types) {
        for (const std::string& to : types) {
            for (const int width : {1, 2, 3, 4}) {
                expectReference(makeConversion(from, width, to, width));
                if (width > 1) {
                    expectReference(makeConversion(from, 1, to, width));
                }
            }
        }
    }
}

// One component of a split is read as float, and so all of its input is; another is read as half.
TEST_F(ChainExecution, ConversionsOfSplitVectors) {
    for (const int width : {2, 3, 4}) {
        Graph graph;
        const PortOf vector = graph.addInput(InputKind::Varying, width);
        const std::size_t split =
            graph.add("CoreSwizzle", {choice("Vector Type", "Vector"), integer("Component Count", width)});
        graph.connect(vector, split, "in_vec");
        graph.demandFloat({split, "out_x"}, 1);
        const std::size_t inverted = graph.add("CoreMaths", {choice("Function", "Invert")});
        graph.connect({split, "out_y"}, inverted, "in_value1");
        graph.shown = {inverted, "out_value"};
        std::vector<InputSet> sets = inputSets(graph, Numbers::Wide, pointsOfCase(), "split");
        expectReference(
            {"promoteAndSplat", "float to half, of " + std::to_string(width), graph, std::move(sets)});
    }
}

constexpr const char* functions[] = {"Multiply", "Addition", "Subtraction", "Invert",  "Clamp",
                                     "Range",    "Lerp",     "SmoothStep",  "Compare", "Dot Product",
                                     "Ceil",     "Floor",    "Frac",        "Power",   "Fresnel"};
constexpr const char* modes[] = {"Darken",      "Lighten",      "Multiply",    "Screen",
                                 "Overlay",     "Colour Dodge", "Colour Burn", "Hard Light",
                                 "Vivid Light", "Difference",   "Exclusion"};
constexpr const char* colourTypes[] = {"Colour", "Normal", "Component", "Vector", "DXT5 Normal"};

/// Draws graphs by lot. Every node takes whatever fits of what is there before it.
class GraphLottery {
public:
    explicit GraphLottery(unsigned seed) : random_(seed) {}

    Graph draw() {
        for (const int width : {1, 2, 3, 4}) {
            offer(graph_.addInput(width % 2 == 0 || below(2) == 0 ? InputKind::Varying : InputKind::Uniform,
                                  width),
                  width, false);
        }
        const std::size_t count = 3 + below(6);
        for (std::size_t i = 0; i < count; ++i) {
            addNode();
        }
        graph_.shown = offers_.back().port;
        if (below(2) == 0) {
            graph_.demandFloat(graph_.shown, offers_.back().width);
        }
        return graph_;
    }

private:
    struct Offer {
        PortOf port;
        int width = 1;
        bool perFragment = false; ///< must be computed there
    };

    std::size_t below(std::size_t count) { return random_() % count; }

    template <typename Items>
    const char* oneOf(const Items& items) {
        return items[below(std::size(items))];
    }

    void offer(const PortOf& port, int width, bool perFragment) {
        offers_.push_back({port, width, perFragment});
    }

    void addNode() {
        const std::size_t node = graph_.add({});
        GraphNode made = makeNode(node);
        graph_.nodes[node].type = made.type;
        graph_.nodes[node].settings = made.settings;
        bool perFragment = made.type == "CoreTexture";
        int width = 1;
        for (const InputRule& input : portsOf(made).inputs) {
            // only a Fresnel's facing and a texture's uv must be there
            const bool isNeeded = input.name == "in_facing" || input.name == "in_uv";
            if (isNeeded || below(5) != 0) {
                perFragment = feed(node, input, width) || perFragment;
            }
        }
        setLevel(graph_.nodes[node], perFragment);
        const Reference reference(graph_);
        for (const OutputRule& output : portsOf(made).outputs) {
            offer({node, output.name}, reference.widthOf({node, output.name}), perFragment);
        }
    }

    GraphNode makeNode(std::size_t node) {
        switch (below(8)) {
        case 0:
            return {"CoreSwizzle",
                    {choice("Vector Type", "Vector"),
                     integer("Component Count", 2 + static_cast<int>(below(3))),
                     flag("Reverse", below(2) == 0)},
                    {}};
        case 1:
            return {"CoreTexture",
                    {{"Name", "string", "Picture" + std::to_string(node)},
                     choice("Colour Type", oneOf(colourTypes)),
                     choice("Texture Type", below(2) == 0 ? "1D" : "2D"),
                     flag("sRGB", below(2) == 0)},
                    {}};
        case 2:
            return {"CoreAnimatedUv", {choice("Mode", below(2) == 0 ? "Basic" : "Advanced")}, {}};
        case 3:
        case 4:
            return {"CoreLayerBlend", {choice("Mode", oneOf(modes))}, {}};
        default:
            return {"CoreMaths", {choice("Function", oneOf(functions))}, {}};
        }
    }

    /// Connects an input to the last fitting value or one before it, and gives whether that is per fragment.
    /// `width` is that of the node so far.
    bool feed(std::size_t node, const InputRule& input, int& width) {
        std::vector<const Offer*> fitting;
        for (const Offer& offer : offers_) {
            const int wanted = input.width == nodeWidth ? width : input.width;
            const bool isFree = input.width == nodeWidth && width == 1 && !isFresnel(node);
            if (offer.width == 1 || isFree || offer.width == wanted) {
                fitting.push_back(&offer);
            }
        }
        // the newest ones most, so that chains get long
        const std::size_t back = std::min(below(fitting.size()), below(fitting.size()));
        const Offer& chosen = *fitting[fitting.size() - 1 - back];
        graph_.connect(chosen.port, node, input.name);
        if (input.width == nodeWidth) {
            width = std::max(width, chosen.width);
        }
        return chosen.perFragment;
    }

    bool isFresnel(std::size_t node) const { return graph_.nodes[node].setting("Function", {}) == "Fresnel"; }

    void setLevel(GraphNode& node, bool& perFragment) {
        const std::string function = node.setting("Function", {});
        if (node.type != "CoreMaths" && node.type != "CoreAnimatedUv") {
            return;
        }
        const bool isVertex = !perFragment && below(3) == 0;
        if (isVertex || node.type == "CoreAnimatedUv" || below(2) == 0) {
            node.settings.push_back(choice("Execution Level", isVertex ? "Vertex" : "Fragment"));
            perFragment = !isVertex;
        } else if (function == "Ceil" || function == "Floor" || function == "Frac") {
            perFragment = true;
        }
    }

    std::mt19937 random_;
    Graph graph_;
    std::vector<Offer> offers_;
};

Case drawCase(unsigned seed) {
    const Graph graph = GraphLottery(seed).draw();
    const std::string title = "graph " + std::to_string(seed);
    return {"graphs", title, graph, inputSets(graph, Numbers::Unit, pointsOfCase() / 4, title)};
}

TEST_F(ChainExecution, RandomGraphs) {
    const unsigned count = PATINA_TEST_THINNED != 0 ? 40 : 250;
    for (unsigned seed = 0; seed < count; ++seed) {
        expectReference(drawCase(seed));
    }
}

using CompiledChains = CompiledExecution;

TEST_F(CompiledChains, CompiledGraphs) {
    constexpr unsigned first = 1000;
    const unsigned count = PATINA_TEST_THINNED != 0 ? 5 : 40;
    for (unsigned seed = first; seed < first + count; ++seed) {
        expectReference(drawCase(seed));
    }
}

} // namespace
} // namespace patina::testing
