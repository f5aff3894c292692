#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::expectGraphSize;
using testing::float2Type;
using testing::float3Type;
using testing::float4Type;
using testing::floatType;
using testing::half3Type;
using testing::makeInterface;
using testing::makeSink;
using testing::makeSource;
using testing::shaderErrorOf;

using Nodes = std::vector<std::shared_ptr<GeneratorNode>>;

void expectEdge(const GeneratorEdge& edge, const std::shared_ptr<GeneratorNode>& tail, const char* tailPort,
                const std::shared_ptr<GeneratorNode>& head, const char* headPort) {
    EXPECT_EQ(edge.tail.lock(), tail);
    EXPECT_EQ(edge.tailPort, tailPort);
    EXPECT_EQ(edge.head.lock(), head);
    EXPECT_EQ(edge.headPort, headPort);
    EXPECT_FALSE(edge.flag);
}

TEST(GraphGenerator, StartsWithAnEmptyGraphOfItsOwn) {
    const GraphGenerator generator;
    EXPECT_TRUE(generator.nodeMap.empty());
    EXPECT_TRUE(generator.portLinks.empty());
    ASSERT_NE(generator.graph, nullptr);
    expectGraphSize(*generator.graph, 0, 0);
    EXPECT_NE(generator.graph, GraphGenerator().graph);
    testing::expectFieldOrder({&generator.nodeMap, &generator.portLinks, &generator.graph});
}

TEST(AddNode, InsertsTheNodeAndMapsItOntoItself) {
    GraphGenerator generator;
    const Nodes nodes = {makeSource(floatType), makeVaryingParameter("uv", float2Type),
                         makeUniformParameter("rim", float4Type), makeInterface("eye", float3Type),
                         makeParameterNode(NodeKind::InterpolantParameter, "", floatType)};
    for (const auto& node : nodes) {
        generator.addNode(node);
    }
    EXPECT_EQ(generator.graph->nodes, nodes);
    EXPECT_EQ(generator.nodeMap.size(), nodes.size());
    for (const auto& node : nodes) {
        EXPECT_EQ(generator.nodeMap.at(node), node);
        EXPECT_EQ(generator.findNode(node), node);
    }
    EXPECT_TRUE(generator.portLinks.empty());
}

TEST(AddNode, RefusesANodeThatWasAddedBefore) {
    GraphGenerator generator;
    const struct {
        std::shared_ptr<GeneratorNode> node;
        const char* message;
    } rows[] = {
        {makeSource(floatType), "function \"source\" (0/1/*) already added to the graph generator"},
        {makeVaryingParameter("uv", float2Type),
         "varying parameter \"uv\" (float2) already added to the graph generator"},
        {makeInterface("uv", float2Type, 3),
         "interface parameter \"uv\" (float2,flags=3) already added to the graph generator"},
    };
    for (const auto& row : rows) {
        generator.addNode(row.node);
        EXPECT_EQ(shaderErrorOf([&] { generator.addNode(row.node); }), row.message);
    }
    EXPECT_EQ(generator.nodeMap.size(), 3U);
    expectGraphSize(*generator.graph, 3, 0);
}

TEST(AddNode, RefusesANodeThatTheGraphGotOtherwise) {
    GraphGenerator generator;
    const auto node = makeSource(floatType);
    generator.graph->insertNode(node);
    EXPECT_EQ(shaderErrorOf([&] { generator.addNode(node); }), "node for addition already exists in graph");
    EXPECT_TRUE(generator.nodeMap.empty());
}

TEST(AddNode, MapsAnEqualInterfaceParameterOntoTheFirst) {
    GraphGenerator generator;
    const auto first = makeInterface("uv", float2Type);
    const auto second = makeInterface("uv", float2Type);
    const auto otherFlags = makeInterface("uv", float2Type, 1);
    generator.addNode(first);
    generator.addNode(second);
    generator.addNode(otherFlags);
    EXPECT_EQ(generator.findNode(first), first);
    EXPECT_EQ(generator.findNode(second), first);
    EXPECT_EQ(generator.findNode(otherFlags), otherFlags);
    EXPECT_EQ(generator.nodeMap.size(), 3U);
    EXPECT_EQ(generator.graph->nodes, (Nodes{first, otherFlags}));
    EXPECT_EQ(generator.graph->interfaces.size(), 2U);
    EXPECT_EQ(shaderErrorOf([&] { generator.addNode(second); }),
              "interface parameter \"uv\" (float2,flags=0) already added to the graph generator");
}

TEST(AddNode, MapsAnInterfaceParameterThatTheGraphGotOtherwise) {
    GraphGenerator generator;
    const auto uv = makeInterface("uv", float2Type);
    generator.graph->insertNode(uv);
    const auto submitted = makeInterface("uv", float2Type);
    generator.addNode(submitted);
    generator.addNode(uv);
    EXPECT_EQ(generator.findNode(submitted), uv);
    EXPECT_EQ(generator.findNode(uv), uv);
    expectGraphSize(*generator.graph, 1, 0);
}

TEST(AddNode, HoldsAnInterfaceParameterToTheTypeOfTheFirst) {
    GraphGenerator generator;
    generator.addNode(makeInterface("uv", float2Type));
    const auto wider = makeInterface("uv", float3Type);
    EXPECT_EQ(shaderErrorOf([&] { generator.addNode(wider); }),
              "interface parameter \"uv\" (float2,flags=0) expected to have type float3");
    EXPECT_EQ(generator.nodeMap.count(wider), 0U);
    expectGraphSize(*generator.graph, 1, 0);
    EXPECT_EQ(shaderErrorOf([&] { generator.findNode(wider); }),
              "interface parameter \"uv\" (float3,flags=0) not yet been added to the graph generator");
}

TEST(AddNode, SharesOnlyInterfaceParameters) {
    GraphGenerator generator;
    const Nodes nodes = {makeVaryingParameter("uv", float2Type), makeVaryingParameter("uv", float2Type),
                         makeUniformParameter("uv", float2Type), makeInterface("uv", float2Type)};
    for (const auto& node : nodes) {
        generator.addNode(node);
    }
    EXPECT_EQ(generator.graph->nodes, nodes);
}

TEST(FindNode, RefusesANodeThatWasNeverAdded) {
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { generator.findNode(makeUniformParameter("rim", float4Type)); }),
              "uniform parameter \"rim\" (float4) not yet been added to the graph generator");
    // being in the graph is not enough
    const auto node = makeSource(floatType);
    generator.graph->insertNode(node);
    EXPECT_EQ(shaderErrorOf([&] { generator.findNode(node); }),
              "function \"source\" (0/1/*) not yet been added to the graph generator");
    EXPECT_TRUE(generator.nodeMap.empty());
}

/// A generator with a float source and a float3 source, sink and half3 sink in it.
struct Generator : ::testing::Test {
    Generator() {
        for (const auto& node : {scalar, vector, sink, halfSink}) {
            generator.addNode(node);
        }
    }

    std::string connecting(const std::shared_ptr<GeneratorNode>& tail, const char* tailPort,
                           const std::shared_ptr<GeneratorNode>& head, const char* headPort) {
        return shaderErrorOf([&] { generator.connect(tail, tailPort, head, headPort); });
    }

    GraphGenerator generator;
    std::shared_ptr<GeneratorNode> scalar = makeSource(floatType);
    std::shared_ptr<GeneratorNode> vector = makeSource(float3Type);
    std::shared_ptr<GeneratorNode> sink = makeSink(float3Type);
    std::shared_ptr<GeneratorNode> halfSink = makeSink(half3Type);
};

TEST_F(Generator, JoinsEqualTypesByOneEdge) {
    generator.connect(vector, "out", sink, "in");
    expectGraphSize(*generator.graph, 4, 1);
    expectEdge(*generator.graph->edges[0], vector, "out", sink, "in");
    EXPECT_EQ(generator.nodeMap.size(), 4U);
}

TEST_F(Generator, JoinsDifferentTypesThroughAConversion) {
    generator.connect(scalar, "out", sink, "in");
    expectGraphSize(*generator.graph, 5, 2);
    const auto conversion = generator.graph->nodes[4];
    EXPECT_EQ(describe(*conversion), "function \"promoteAndSplat\" (1/1/*)");
    EXPECT_EQ(conversion->code, "\tout_value = in_value.xxx;\n");
    expectEdge(*generator.graph->edges[0], scalar, "out", conversion, "in_value");
    expectEdge(*generator.graph->edges[1], conversion, "out_value", sink, "in");
    ASSERT_EQ(conversion->inEdges.size(), 1U);
    EXPECT_EQ(conversion->inEdges[0].lock(), generator.graph->edges[0]);
    ASSERT_EQ(conversion->outEdges.size(), 1U);
    EXPECT_EQ(conversion->outEdges[0].lock(), generator.graph->edges[1]);
}

TEST_F(Generator, DoesNotMapConversions) {
    generator.connect(vector, "out", halfSink, "in");
    EXPECT_EQ(generator.nodeMap.size(), 4U);
    const auto conversion = generator.graph->nodes.back();
    EXPECT_EQ(generator.nodeMap.count(conversion), 0U);
    EXPECT_EQ(shaderErrorOf([&] { generator.findNode(conversion); }),
              "function \"promoteAndSplat\" (1/1/*) not yet been added to the graph generator");
    EXPECT_EQ(connecting(conversion, "out_value", halfSink, "in"),
              "function \"promoteAndSplat\" (1/1/*) not yet been added to the graph generator");
    EXPECT_EQ(shaderErrorOf([&] { generator.addNode(conversion); }),
              "node for addition already exists in graph");
}

TEST_F(Generator, MakesANewConversionForEachConnection) {
    generator.connect(scalar, "out", sink, "in");
    generator.connect(scalar, "out", sink, "in");
    generator.connect(vector, "out", halfSink, "in");
    expectGraphSize(*generator.graph, 7, 6);
    for (std::size_t i = 4; i < 7; ++i) {
        EXPECT_EQ(generator.graph->nodes[i]->name, "promoteAndSplat");
    }
    EXPECT_EQ(scalar->outEdges.size(), 2U);
    EXPECT_EQ(sink->inEdges.size(), 2U);
}

TEST_F(Generator, NeedsBothEndsAdded) {
    const auto strangeTail = makeUniformParameter("tail", float3Type);
    const auto strangeHead = makeSink(float2Type);
    EXPECT_EQ(connecting(strangeTail, "read", sink, "in"),
              "uniform parameter \"tail\" (float3) not yet been added to the graph generator");
    EXPECT_EQ(connecting(vector, "out", strangeHead, "in"),
              "function \"sink\" (1/0/*) not yet been added to the graph generator");
    // the tail is looked up first, and both ends before any port
    EXPECT_EQ(connecting(strangeTail, "none", strangeHead, "none"),
              "uniform parameter \"tail\" (float3) not yet been added to the graph generator");
    EXPECT_EQ(connecting(vector, "none", strangeHead, "none"),
              "function \"sink\" (1/0/*) not yet been added to the graph generator");
    expectGraphSize(*generator.graph, 4, 0);
}

TEST_F(Generator, NeedsBothPorts) {
    EXPECT_EQ(connecting(vector, "none", sink, "in"),
              "function \"source\" (0/1/*): output port \"none\" does not exist");
    EXPECT_EQ(connecting(vector, "out", sink, "none"),
              "function \"sink\" (1/0/*): input port \"none\" does not exist");
    // the output is looked up first
    EXPECT_EQ(connecting(vector, "none", sink, "none"),
              "function \"source\" (0/1/*): output port \"none\" does not exist");
    // an input is no output
    EXPECT_EQ(connecting(sink, "in", vector, "out"),
              "function \"sink\" (1/0/*): output port \"in\" does not exist");
    expectGraphSize(*generator.graph, 4, 0);
}

TEST_F(Generator, LeavesTheGraphAloneWhenTypesCannotBeConverted) {
    const auto narrow = makeSink(float2Type);
    generator.addNode(narrow);
    EXPECT_EQ(connecting(vector, "out", narrow, "in"), "cannot convert float3 to float2");
    expectGraphSize(*generator.graph, 5, 0);
    EXPECT_TRUE(vector->outEdges.empty());
    EXPECT_TRUE(narrow->inEdges.empty());
}

TEST_F(Generator, JoinsWhatStandsForASubmittedInterfaceParameter) {
    const auto first = makeInterface("tint", float3Type);
    const auto second = makeInterface("tint", float3Type);
    generator.addNode(first);
    generator.addNode(second);
    generator.connect(second, "read", sink, "in");
    generator.connect(vector, "out", second, "write");
    generator.connect(scalar, "out", second, "write");
    expectGraphSize(*generator.graph, 6, 4);
    const auto conversion = generator.graph->nodes[5];
    expectEdge(*generator.graph->edges[0], first, "read", sink, "in");
    expectEdge(*generator.graph->edges[1], vector, "out", first, "write");
    expectEdge(*generator.graph->edges[2], scalar, "out", conversion, "in_value");
    expectEdge(*generator.graph->edges[3], conversion, "out_value", first, "write");
    EXPECT_TRUE(second->outEdges.empty());
    EXPECT_TRUE(second->inEdges.empty());
}

TEST_F(Generator, LooksPortsUpOnWhatStandsForTheNode) {
    const auto first = makeInterface("tint", float3Type);
    const auto second = makeInterface("tint", float3Type);
    generator.addNode(first);
    generator.addNode(second);
    second->outputs.clear();
    generator.connect(second, "read", sink, "in");
    first->outputs.clear();
    EXPECT_EQ(connecting(second, "read", sink, "in"),
              "interface parameter \"tint\" (float3,flags=0): output port \"read\" does not exist");
}

TEST_F(Generator, TakesTheHeadsTypeFromWhatStandsForTheNode) {
    const auto first = makeInterface("tint", float3Type);
    const auto second = makeInterface("tint", float3Type);
    generator.addNode(first);
    generator.addNode(second);
    second->inputs.clear();
    generator.connect(scalar, "out", second, "write");
    first->inputs.clear();
    EXPECT_EQ(connecting(scalar, "out", second, "write"),
              "interface parameter \"tint\" (float3,flags=0): input port \"write\" does not exist");
}

TEST_F(Generator, RefusesToJoinANodeToItself) {
    const auto first = makeInterface("tint", float3Type);
    const auto second = makeInterface("tint", float3Type);
    generator.addNode(first);
    generator.addNode(second);
    EXPECT_EQ(connecting(first, "read", first, "write"), "edge head and tail are the same node");
    EXPECT_EQ(connecting(first, "read", second, "write"), "edge head and tail are the same node");
    expectGraphSize(*generator.graph, 5, 0);
}

TEST_F(Generator, LeavesAnEdgeBehindWhenAnEntryIsStale) {
    sink->inEdges.push_back(std::make_shared<GeneratorEdge>());
    EXPECT_THROW(generator.connect(scalar, "out", sink, "in"), std::bad_weak_ptr);
    // the conversion and both edges are in the graph; the second is not entered at the sink
    expectGraphSize(*generator.graph, 5, 2);
    EXPECT_EQ(sink->inEdges.size(), 1U);
    EXPECT_EQ(generator.graph->nodes.back()->outEdges.size(), 1U);
}

TEST(GraphGenerator, JoinsFunctionsOverSeveralPorts) {
    GraphGenerator generator;
    FunctionBuilder builder;
    builder.addInput(float3Type, "in_a");
    builder.addInput(floatType, "in_b");
    builder.addOutput(float3Type, "out_value");
    builder.addOutput(floatType, "out_w");
    const auto first = builder.makeNode(ExecutionLevel::Automatic, "first");
    const auto second = builder.makeNode(ExecutionLevel::Automatic, "second");
    generator.addNode(first);
    generator.addNode(second);
    generator.connect(first, "out_value", second, "in_a");
    generator.connect(first, "out_w", second, "in_b");
    generator.connect(first, "out_w", second, "in_a");
    expectGraphSize(*generator.graph, 3, 4);
    expectEdge(*generator.graph->edges[0], first, "out_value", second, "in_a");
    expectEdge(*generator.graph->edges[1], first, "out_w", second, "in_b");
    expectEdge(*generator.graph->edges[2], first, "out_w", generator.graph->nodes[2], "in_value");
}

TEST(GraphGenerator, LetsItsNodesGo) {
    std::weak_ptr<GeneratorNode> conversion;
    {
        GraphGenerator generator;
        const auto source = makeSource(floatType);
        const auto sink = makeSink(float3Type);
        generator.addNode(source);
        generator.addNode(sink);
        generator.connect(source, "out", sink, "in");
        conversion = generator.graph->nodes.back();
        EXPECT_FALSE(conversion.expired());
    }
    EXPECT_TRUE(conversion.expired());
}

} // namespace
} // namespace patina
