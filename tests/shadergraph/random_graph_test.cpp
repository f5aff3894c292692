#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using testing::shaderErrorOf;

constexpr ShaderType types[] = {
    {ComponentType::Float, 1, 1, 1}, {ComponentType::Float, 2, 1, 1}, {ComponentType::Float, 3, 1, 1},
    {ComponentType::Half, 1, 1, 1},  {ComponentType::Half, 3, 1, 1},  {ComponentType::Sampler2D, 1, 1, 1},
    {ComponentType::Float, 4, 4, 1}, {ComponentType::Float, 1, 1, 4},
};

bool isVector(const ShaderType& type) { return type.rows == 1 && type.arraySize == 1; }

bool convertible(const ShaderType& from, const ShaderType& to) {
    return isVector(from) && isVector(to) && (from.columns == 1 || from.columns == to.columns);
}

/// Grows a graph by random calls and keeps count of what must have come of them.
class RandomGraph {
public:
    explicit RandomGraph(std::uint32_t seed) : random_(seed) {}

    void addNodes(int count) {
        for (int i = 0; i < count; ++i) {
            addNode(randomNode());
        }
    }

    void connectPorts(int count) {
        for (int i = 0; i < count; ++i) {
            const auto& tail = submitted_[below(submitted_.size())];
            const auto& head = submitted_[below(submitted_.size())];
            if (!tail->outputs.empty() && !head->inputs.empty()) {
                connectPorts(tail, tail->outputs[below(tail->outputs.size())], head,
                             head->inputs[below(head->inputs.size())]);
            }
        }
    }

    /// What holds of every graph that a generator built.
    void expectInvariants() const {
        const Graph& graph = *generator_.graph;
        EXPECT_EQ(graph.nodes.size(), graphNodes_ + conversions_);
        EXPECT_EQ(graph.edges.size(), plainEdges_ + 2 * conversions_);
        EXPECT_EQ(std::set(graph.nodes.begin(), graph.nodes.end()),
                  std::set(graph.nodeSet.begin(), graph.nodeSet.end()));
        EXPECT_EQ(graph.nodeSet.size(), graph.nodes.size());
        EXPECT_TRUE(std::is_sorted(graph.nodeSet.begin(), graph.nodeSet.end()));
        EXPECT_EQ(std::set(graph.edges.begin(), graph.edges.end()),
                  std::set(graph.edgeSet.begin(), graph.edgeSet.end()));
        EXPECT_EQ(graph.edgeSet.size(), graph.edges.size());
        EXPECT_TRUE(std::is_sorted(graph.edgeSet.begin(), graph.edgeSet.end()));
        EXPECT_EQ(generator_.nodeMap.size(), submitted_.size());
        for (const auto& [node, graphNode] : generator_.nodeMap) {
            EXPECT_EQ(graph.nodeSet.count(graphNode), 1U);
        }
        expectEdges(graph);
        expectConversions(graph);
        expectInterfaces(graph);
    }

    std::size_t conversions() const { return conversions_; }
    std::size_t plainEdges() const { return plainEdges_; }
    std::size_t refusals() const { return refusals_; }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    const ShaderType& randomType() { return types[below(std::size(types))]; }

    std::shared_ptr<GeneratorNode> randomNode() {
        switch (below(5)) {
        case 0:
            return makeVaryingParameter("varying", randomType());
        case 1:
            return makeUniformParameter("uniform", randomType());
        case 2:
            return makeParameterNode(NodeKind::InterfaceParameter, std::string(1, "abc"[below(3)]),
                                     types[below(2)], static_cast<std::int32_t>(below(2)));
        case 3:
            return makeParameterNode(NodeKind::InterpolantParameter, "", randomType());
        default:
            return randomFunction();
        }
    }

    std::shared_ptr<GeneratorNode> randomFunction() {
        FunctionBuilder builder;
        const std::size_t parameters = below(6);
        for (std::size_t i = 0; i < parameters; ++i) {
            const std::string name = "p" + std::to_string(i);
            if (below(2) == 0) {
                builder.addInput(randomType(), name);
            } else {
                builder.addOutput(randomType(), name);
            }
        }
        return builder.makeNode(static_cast<ExecutionLevel>(below(3)), "function" + std::to_string(below(4)));
    }

    void addNode(const std::shared_ptr<GeneratorNode>& node) {
        const auto standing = sameInterface(*node);
        const auto add = [&] { generator_.addNode(node); };
        if (standing != nullptr && standing->type != node->type) {
            EXPECT_NE(shaderErrorOf(add).find(" expected to have type "), std::string::npos);
            ++refusals_;
            return;
        }
        add();
        submitted_.push_back(node);
        EXPECT_EQ(generator_.findNode(node), standing != nullptr ? standing : node);
        if (standing == nullptr) {
            ++graphNodes_;
        }
        EXPECT_EQ(shaderErrorOf(add), describe(*node) + " already added to the graph generator");
    }

    /// The interface parameter that was submitted first under that name and flags.
    std::shared_ptr<GeneratorNode> sameInterface(const GeneratorNode& node) const {
        const auto found = std::find_if(submitted_.begin(), submitted_.end(), [&](const auto& other) {
            return node.kind == NodeKind::InterfaceParameter && other->kind == node.kind &&
                   other->name == node.name && other->flags == node.flags;
        });
        return found != submitted_.end() ? *found : nullptr;
    }

    void connectPorts(const std::shared_ptr<GeneratorNode>& tail, const GeneratorPort& from,
                      const std::shared_ptr<GeneratorNode>& head, const GeneratorPort& to) {
        const auto connect = [&] { generator_.connect(tail, from.name, head, to.name); };
        if (from.type == to.type && generator_.findNode(tail) == generator_.findNode(head)) {
            EXPECT_EQ(shaderErrorOf(connect), "edge head and tail are the same node");
            ++refusals_;
        } else if (from.type == to.type) {
            connect();
            ++plainEdges_;
        } else if (convertible(from.type, to.type)) {
            connect();
            ++conversions_;
        } else {
            EXPECT_EQ(shaderErrorOf(connect),
                      "cannot convert " + typeText(from.type) + " to " + typeText(to.type));
            ++refusals_;
        }
    }

    static std::size_t timesListed(const std::vector<std::weak_ptr<GeneratorEdge>>& entries,
                                   const std::shared_ptr<GeneratorEdge>& edge) {
        return static_cast<std::size_t>(std::count_if(
            entries.begin(), entries.end(), [&](const auto& entry) { return entry.lock() == edge; }));
    }

    /// Each edge joins two nodes of the graph, ports of equal type, and is listed once at each end.
    static void expectEdges(const Graph& graph) {
        std::size_t outEdges = 0;
        std::size_t inEdges = 0;
        for (const auto& node : graph.nodes) {
            outEdges += node->outEdges.size();
            inEdges += node->inEdges.size();
        }
        EXPECT_EQ(outEdges, graph.edges.size());
        EXPECT_EQ(inEdges, graph.edges.size());
        for (const auto& edge : graph.edges) {
            const auto tail = edge->tail.lock();
            const auto head = edge->head.lock();
            EXPECT_EQ(graph.nodeSet.count(tail), 1U);
            EXPECT_EQ(graph.nodeSet.count(head), 1U);
            EXPECT_NE(tail, head);
            EXPECT_EQ(timesListed(tail->outEdges, edge), 1U);
            EXPECT_EQ(timesListed(head->inEdges, edge), 1U);
            EXPECT_EQ(outputPort(*tail, edge->tailPort).type, inputPort(*head, edge->headPort).type);
        }
    }

    /// Every node that was not submitted is a conversion between two different types, with one edge a side.
    void expectConversions(const Graph& graph) const {
        std::set<std::shared_ptr<GeneratorNode>> standing;
        for (const auto& [node, graphNode] : generator_.nodeMap) {
            standing.insert(graphNode);
        }
        std::size_t found = 0;
        for (const auto& node : graph.nodes) {
            if (standing.count(node) != 0) {
                EXPECT_NE(node->name, "promoteAndSplat");
                continue;
            }
            ++found;
            EXPECT_EQ(node->name, "promoteAndSplat");
            EXPECT_NE(inputPort(*node, "in_value").type, outputPort(*node, "out_value").type);
            EXPECT_EQ(node->inEdges.size(), 1U);
            EXPECT_EQ(node->outEdges.size(), 1U);
        }
        EXPECT_EQ(found, conversions_);
    }

    /// The table holds exactly the interface parameters of the graph, each under its own key.
    static void expectInterfaces(const Graph& graph) {
        std::size_t interfaces = 0;
        for (const auto& node : graph.nodes) {
            if (node->kind == NodeKind::InterfaceParameter) {
                ++interfaces;
                EXPECT_EQ(graph.interfaces.at({node->name, node->flags}), node);
            }
        }
        EXPECT_EQ(graph.interfaces.size(), interfaces);
    }

    std::mt19937 random_;
    GraphGenerator generator_;
    std::vector<std::shared_ptr<GeneratorNode>> submitted_;
    std::size_t graphNodes_ = 0;
    std::size_t plainEdges_ = 0;
    std::size_t conversions_ = 0;
    std::size_t refusals_ = 0;
};

TEST(RandomGraph, KeepsItsInvariants) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        RandomGraph graph(seed);
        for (int round = 0; round < 4; ++round) {
            graph.addNodes(15);
            graph.connectPorts(60);
            graph.expectInvariants();
        }
        // the walk went everywhere
        EXPECT_GT(graph.plainEdges(), 0U);
        EXPECT_GT(graph.conversions(), 0U);
        EXPECT_GT(graph.refusals(), 0U);
    }
}

} // namespace
} // namespace patina
