#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::expectGraphSize;
using testing::float3Type;
using testing::floatType;
using testing::makeEdge;
using testing::makeInterface;
using testing::makeSink;
using testing::makeSource;
using testing::shaderErrorOf;

using Nodes = std::vector<std::shared_ptr<GeneratorNode>>;
using Edges = std::vector<std::shared_ptr<GeneratorEdge>>;

Edges lockedEdges(const std::vector<std::weak_ptr<GeneratorEdge>>& entries) {
    Edges edges;
    for (const auto& entry : entries) {
        edges.push_back(entry.lock());
    }
    return edges;
}

/// A weak reference whose target has gone.
std::weak_ptr<GeneratorEdge> staleEdge() { return std::make_shared<GeneratorEdge>(); }

/// A graph with a source and a sink in it, and an edge between them that is not.
struct Pair : ::testing::Test {
    Pair() {
        graph.insertNode(source);
        graph.insertNode(sink);
    }

    std::string addingFails() {
        return shaderErrorOf([this] { graph.addEdge(edge); });
    }

    Graph graph;
    std::shared_ptr<GeneratorNode> source = makeSource(floatType);
    std::shared_ptr<GeneratorNode> sink = makeSink(floatType);
    std::shared_ptr<GeneratorEdge> edge = makeEdge(source, sink);
};

TEST(GeneratorEdge, StartsWithoutEnds) {
    const GeneratorEdge edge;
    EXPECT_TRUE(edge.tail.expired());
    EXPECT_TRUE(edge.head.expired());
    EXPECT_EQ(edge.tailPort, "");
    EXPECT_EQ(edge.headPort, "");
    EXPECT_FALSE(edge.flag);
    testing::expectFieldOrder({&edge.tail, &edge.head, &edge.tailPort, &edge.headPort, &edge.flag});
    static_assert(sizeof(edge.flag) == 1);
}

TEST(Graph, StartsEmpty) {
    const Graph graph;
    expectGraphSize(graph, 0, 0);
    EXPECT_TRUE(graph.interfaces.empty());
    EXPECT_TRUE(graph.interfaceProviders.empty());
    testing::expectFieldOrder({&graph.nodes, &graph.edges, &graph.nodeSet, &graph.edgeSet, &graph.interfaces,
                               &graph.interfaceProviders});
}

TEST(InsertNode, KeepsNodesOfEveryKindInOrder) {
    Graph graph;
    const Nodes inserted = {
        makeSource(floatType),
        makeInterface("uv", floatType),
        makeVaryingParameter("uv", floatType),
        makeUniformParameter("uv", floatType),
        makeParameterNode(NodeKind::RegisterParameter, "", floatType, 0, {4, 0}),
        makeParameterNode(NodeKind::InterpolantParameter, "", floatType),
        makeSource(floatType),
    };
    for (const auto& node : inserted) {
        graph.insertNode(node);
    }
    EXPECT_EQ(graph.nodes, inserted);
    EXPECT_TRUE(std::is_sorted(graph.nodeSet.begin(), graph.nodeSet.end()));
    EXPECT_EQ(std::set(graph.nodeSet.begin(), graph.nodeSet.end()),
              std::set(inserted.begin(), inserted.end()));
    // only the interface parameter has an entry
    ASSERT_EQ(graph.interfaces.size(), 1U);
    EXPECT_EQ(graph.interfaces.begin()->second, inserted[1]);
}

TEST(InsertNode, RefusesTheSameNodeTwice) {
    Graph graph;
    const Nodes once = {
        makeSource(floatType),
        makeVaryingParameter("a", floatType),
        makeUniformParameter("b", floatType),
        makeParameterNode(NodeKind::RegisterParameter, "", floatType, 0, {4, 0}),
        makeParameterNode(NodeKind::InterpolantParameter, "", floatType),
    };
    for (const auto& node : once) {
        graph.insertNode(node);
        EXPECT_EQ(shaderErrorOf([&] { graph.insertNode(node); }),
                  "node for addition already exists in graph");
    }
    EXPECT_EQ(graph.nodes, once);
    expectGraphSize(graph, 5, 0);
}

TEST(InsertNode, TellsNodesApartByIdentity) {
    Graph graph;
    const auto node = makeSource(floatType);
    const auto copy = std::make_shared<GeneratorNode>(*node);
    graph.insertNode(node);
    graph.insertNode(copy);
    EXPECT_EQ(graph.nodes, (Nodes{node, copy}));
}

TEST(InsertNode, RefusesAnInterfaceParameterTwiceByItsKey) {
    Graph graph;
    const auto uv = makeInterface("uv", floatType, 2);
    graph.insertNode(uv);
    EXPECT_EQ(shaderErrorOf([&] { graph.insertNode(uv); }),
              "interface parameter \"uv\" (float,flags=2) already exists in graph");
    // the description is that of the node to be inserted
    const auto other = makeInterface("uv", float3Type, 2);
    EXPECT_EQ(shaderErrorOf([&] { graph.insertNode(other); }),
              "interface parameter \"uv\" (float3,flags=2) already exists in graph");
    EXPECT_EQ(graph.nodes, Nodes{uv});
    ASSERT_EQ(graph.interfaces.size(), 1U);
    EXPECT_EQ(graph.interfaces.begin()->second, uv);
}

TEST(InsertNode, LeavesTheNewInterfaceEntryOfANodeThatItRefuses) {
    Graph graph;
    const auto node = makeInterface("uv", floatType);
    graph.insertNode(node);
    node->name = "renamed";
    EXPECT_EQ(shaderErrorOf([&] { graph.insertNode(node); }), "node for addition already exists in graph");
    EXPECT_TRUE(graph.hasInterfaceNode("uv", 0));
    EXPECT_TRUE(graph.hasInterfaceNode("renamed", 0));
    EXPECT_EQ(graph.findInterfaceNode("renamed", 0), node);
    expectGraphSize(graph, 1, 0);
}

TEST_F(Pair, AnEdgeIsEnteredInTheGraphAndAtBothEnds) {
    graph.addEdge(edge);
    EXPECT_EQ(graph.edges, Edges{edge});
    EXPECT_EQ(std::set(graph.edgeSet.begin(), graph.edgeSet.end()), std::set{edge});
    EXPECT_EQ(lockedEdges(source->outEdges), Edges{edge});
    EXPECT_TRUE(source->inEdges.empty());
    EXPECT_EQ(lockedEdges(sink->inEdges), Edges{edge});
    EXPECT_TRUE(sink->outEdges.empty());
}

TEST_F(Pair, EdgesAreToldApartByIdentity) {
    const auto equal = makeEdge(source, sink);
    const auto copy = std::make_shared<GeneratorEdge>(*edge);
    graph.addEdge(edge);
    graph.addEdge(equal);
    graph.addEdge(copy);
    EXPECT_EQ(graph.edges, (Edges{edge, equal, copy}));
    EXPECT_EQ(lockedEdges(source->outEdges), (Edges{edge, equal, copy}));
    EXPECT_EQ(lockedEdges(sink->inEdges), (Edges{edge, equal, copy}));
    expectGraphSize(graph, 2, 3);
}

TEST_F(Pair, ConnectMakesANewEdgeBetweenThePortsAsNamed) {
    graph.connect(source, "out", sink, "in");
    graph.connect(source, "no such output", sink, "");
    graph.connect(sink, "back", source, "again");
    ASSERT_EQ(graph.edges.size(), 3U);
    EXPECT_EQ(graph.edges[0]->tail.lock(), source);
    EXPECT_EQ(graph.edges[0]->head.lock(), sink);
    EXPECT_EQ(graph.edges[0]->tailPort, "out");
    EXPECT_EQ(graph.edges[0]->headPort, "in");
    EXPECT_FALSE(graph.edges[0]->flag);
    EXPECT_EQ(graph.edges[1]->tailPort, "no such output");
    EXPECT_EQ(graph.edges[1]->headPort, "");
    EXPECT_EQ(graph.edges[2]->tail.lock(), sink);
    EXPECT_EQ(graph.edges[2]->head.lock(), source);
    EXPECT_EQ(lockedEdges(source->outEdges), (Edges{graph.edges[0], graph.edges[1]}));
    EXPECT_EQ(lockedEdges(source->inEdges), Edges{graph.edges[2]});
    EXPECT_EQ(lockedEdges(sink->inEdges), (Edges{graph.edges[0], graph.edges[1]}));
    EXPECT_EQ(lockedEdges(sink->outEdges), Edges{graph.edges[2]});
}

TEST_F(Pair, ConnectFailsLikeAddEdge) {
    EXPECT_EQ(shaderErrorOf([&] { graph.connect(source, "out", source, "in"); }),
              "edge head and tail are the same node");
    EXPECT_EQ(shaderErrorOf([&] { graph.connect(makeSource(floatType), "out", sink, "in"); }),
              "tail node on edge for addition does not exist in graph");
    EXPECT_EQ(shaderErrorOf([&] { graph.connect(source, "out", makeSink(floatType), "in"); }),
              "head node on edge for addition does not exist in graph");
    EXPECT_EQ(shaderErrorOf([&] { graph.connect(nullptr, "out", sink, "in"); }),
              "edge tail node has been deleted");
    EXPECT_EQ(shaderErrorOf([&] { graph.connect(source, "out", nullptr, "in"); }),
              "edge head node has been deleted");
    expectGraphSize(graph, 2, 0);
}

// Each edge breaks a rule and, where it can, every later one too: the message shows which is examined first.

TEST_F(Pair, ADeletedTailIsFoundFirst) {
    graph.addEdge(edge);
    edge->tail.reset();
    EXPECT_EQ(addingFails(), "edge tail node has been deleted");
    edge->head.reset();
    EXPECT_EQ(addingFails(), "edge tail node has been deleted");
    edge = makeEdge(makeSource(floatType), sink);
    EXPECT_EQ(addingFails(), "edge tail node has been deleted");
    expectGraphSize(graph, 2, 1);
}

TEST_F(Pair, ThenADeletedHead) {
    graph.addEdge(edge);
    const auto outside = makeSource(floatType);
    edge->tail = outside;
    edge->head.reset();
    EXPECT_EQ(addingFails(), "edge head node has been deleted");
    edge = makeEdge(source, makeSink(floatType));
    EXPECT_EQ(addingFails(), "edge head node has been deleted");
    expectGraphSize(graph, 2, 1);
}

TEST_F(Pair, ThenOneNodeAtBothEnds) {
    graph.addEdge(edge);
    const auto outside = makeSource(floatType);
    edge->tail = outside;
    edge->head = outside;
    EXPECT_EQ(addingFails(), "edge head and tail are the same node");
    edge = makeEdge(source, source, "out", "another port");
    EXPECT_EQ(addingFails(), "edge head and tail are the same node");
    expectGraphSize(graph, 2, 1);
}

TEST_F(Pair, ThenAnEdgeThatWasAddedBefore) {
    graph.addEdge(edge);
    EXPECT_EQ(addingFails(), "edge for addition already exists in graph");
    const auto outside = makeSource(floatType);
    const auto farOutside = makeSink(floatType);
    edge->tail = outside;
    edge->head = farOutside;
    EXPECT_EQ(addingFails(), "edge for addition already exists in graph");
    EXPECT_EQ(lockedEdges(source->outEdges), Edges{edge});
    expectGraphSize(graph, 2, 1);
}

TEST_F(Pair, ThenATailOutsideTheGraph) {
    const auto outside = makeSource(floatType);
    const auto farOutside = makeSink(floatType);
    edge = makeEdge(outside, farOutside);
    EXPECT_EQ(addingFails(), "tail node on edge for addition does not exist in graph");
    edge = makeEdge(outside, sink);
    EXPECT_EQ(addingFails(), "tail node on edge for addition does not exist in graph");
    EXPECT_TRUE(outside->outEdges.empty());
    EXPECT_TRUE(sink->inEdges.empty());
    expectGraphSize(graph, 2, 0);
}

TEST_F(Pair, ThenAHeadOutsideTheGraph) {
    const auto outside = makeSink(floatType);
    edge = makeEdge(source, outside);
    EXPECT_EQ(addingFails(), "head node on edge for addition does not exist in graph");
    // a node of another graph is outside too
    Graph other;
    other.insertNode(outside);
    EXPECT_EQ(addingFails(), "head node on edge for addition does not exist in graph");
    EXPECT_TRUE(source->outEdges.empty());
    EXPECT_TRUE(outside->inEdges.empty());
    expectGraphSize(graph, 2, 0);
}

// The last two steps come when the edge is in the graph already, and leave it there.

TEST_F(Pair, ThenAnEntryInTheOutEdgesOfTheTail) {
    source->outEdges.push_back(edge);
    sink->inEdges.push_back(edge);
    EXPECT_EQ(addingFails(), "out-edge entry for addition already exists on node");
    EXPECT_EQ(graph.edges, Edges{edge});
    EXPECT_EQ(graph.edgeSet.count(edge), 1U);
    EXPECT_EQ(source->outEdges.size(), 1U);
    EXPECT_EQ(sink->inEdges.size(), 1U);
    EXPECT_EQ(addingFails(), "edge for addition already exists in graph");
}

TEST_F(Pair, ThenAnEntryInTheInEdgesOfTheHead) {
    sink->inEdges.push_back(edge);
    EXPECT_EQ(addingFails(), "in-edge entry for addition already exists on node");
    EXPECT_EQ(graph.edges, Edges{edge});
    EXPECT_EQ(graph.edgeSet.count(edge), 1U);
    EXPECT_EQ(lockedEdges(source->outEdges), Edges{edge});
    EXPECT_EQ(sink->inEdges.size(), 1U);
}

TEST_F(Pair, AnEntryIsFoundBehindOthers) {
    graph.connect(source, "out", sink, "in");
    source->outEdges.push_back(edge);
    EXPECT_EQ(addingFails(), "out-edge entry for addition already exists on node");
    expectGraphSize(graph, 2, 2);
}

TEST_F(Pair, AnEntryInTheOtherListIsNotLookedAt) {
    source->inEdges.push_back(edge);
    sink->outEdges.push_back(edge);
    graph.addEdge(edge);
    EXPECT_EQ(lockedEdges(source->outEdges), Edges{edge});
    EXPECT_EQ(lockedEdges(sink->inEdges), Edges{edge});
}

TEST_F(Pair, AStaleOutEdgeThrowsBadWeakPtr) {
    source->outEdges.push_back(staleEdge());
    EXPECT_THROW(graph.addEdge(edge), std::bad_weak_ptr);
    EXPECT_EQ(graph.edges, Edges{edge});
    EXPECT_EQ(graph.edgeSet.count(edge), 1U);
    EXPECT_EQ(source->outEdges.size(), 1U);
    EXPECT_TRUE(sink->inEdges.empty());
}

TEST_F(Pair, AStaleInEdgeThrowsBadWeakPtr) {
    sink->inEdges.push_back(staleEdge());
    EXPECT_THROW(graph.addEdge(edge), std::bad_weak_ptr);
    EXPECT_EQ(graph.edges, Edges{edge});
    EXPECT_EQ(graph.edgeSet.count(edge), 1U);
    EXPECT_EQ(lockedEdges(source->outEdges), Edges{edge});
    EXPECT_EQ(sink->inEdges.size(), 1U);
}

TEST_F(Pair, EntriesAreWalkedFromTheFront) {
    source->outEdges = {edge, staleEdge()};
    EXPECT_EQ(addingFails(), "out-edge entry for addition already exists on node");

    const auto second = makeEdge(source, sink);
    source->outEdges = {staleEdge(), second};
    EXPECT_THROW(graph.addEdge(second), std::bad_weak_ptr);

    const auto third = makeEdge(source, sink);
    source->outEdges.clear();
    sink->inEdges = {third, staleEdge()};
    EXPECT_EQ(shaderErrorOf([&] { graph.addEdge(third); }),
              "in-edge entry for addition already exists on node");

    const auto fourth = makeEdge(source, sink);
    sink->inEdges = {staleEdge(), fourth};
    EXPECT_THROW(graph.addEdge(fourth), std::bad_weak_ptr);
}

TEST(Graph, LeavesStaleEntriesOnNodesThatOutliveIt) {
    const auto source = makeSource(floatType);
    const auto sink = makeSink(floatType);
    {
        Graph first;
        first.insertNode(source);
        first.insertNode(sink);
        first.connect(source, "out", sink, "in");
    }
    ASSERT_EQ(source->outEdges.size(), 1U);
    EXPECT_TRUE(source->outEdges[0].expired());
    Graph second;
    second.insertNode(source);
    second.insertNode(sink);
    EXPECT_THROW(second.connect(source, "out", sink, "in"), std::bad_weak_ptr);
    expectGraphSize(second, 2, 1);
}

TEST(Graph, KeepsItsNodesAndEdgesAlive) {
    std::weak_ptr<GeneratorNode> node;
    std::weak_ptr<GeneratorEdge> edge;
    {
        Graph graph;
        {
            const auto source = makeSource(floatType);
            const auto sink = makeSink(floatType);
            graph.insertNode(source);
            graph.insertNode(sink);
            graph.connect(source, "out", sink, "in");
            node = source;
            edge = source->outEdges.at(0);
        }
        EXPECT_FALSE(node.expired());
        EXPECT_FALSE(edge.expired());
    }
    EXPECT_TRUE(node.expired());
    EXPECT_TRUE(edge.expired());
}

TEST(Graph, LeavesAnEdgeThatOutlivesItsEnds) {
    std::shared_ptr<GeneratorEdge> edge;
    {
        Graph graph;
        const auto source = makeSource(floatType);
        const auto sink = makeSink(floatType);
        graph.insertNode(source);
        graph.insertNode(sink);
        edge = makeEdge(source, sink);
        graph.addEdge(edge);
    }
    EXPECT_TRUE(edge->tail.expired());
    EXPECT_TRUE(edge->head.expired());
    Graph graph;
    EXPECT_EQ(shaderErrorOf([&] { graph.addEdge(edge); }), "edge tail node has been deleted");
}

} // namespace
} // namespace patina
