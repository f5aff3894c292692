#include "tests/host/host_checks.h"
#include "tests/host/sample_flow.h"

#include "shadergraph/shadergraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using testing::expectError;
using testing::Flow;
using testing::hostErrorOf;
using testing::typeOf;

using Indices = std::vector<std::size_t>;

/// The nodes whose values cross.
Indices crossing(const StagedShader& shader) {
    Indices nodes;
    for (const Interpolant& interpolant : shader.interpolants) {
        nodes.push_back(interpolant.value.node);
    }
    return nodes;
}

constexpr auto vertexLevel = ExecutionLevel::Vertex;
constexpr auto fragmentLevel = ExecutionLevel::Fragment;
constexpr auto automaticLevel = ExecutionLevel::Automatic;

// A chain: a varying, a function of one level, a function of another, which is the colour.

struct ChainRow {
    ExecutionLevel first;
    ExecutionLevel second;
    Indices vertex;
    Indices fragment;
    Indices crossing;
};

const ChainRow chains[] = {
    {automaticLevel, automaticLevel, {}, {1, 2}, {0}}, {automaticLevel, fragmentLevel, {}, {1, 2}, {0}},
    {automaticLevel, vertexLevel, {1, 2}, {}, {2}},    {fragmentLevel, automaticLevel, {}, {1, 2}, {0}},
    {fragmentLevel, fragmentLevel, {}, {1, 2}, {0}},   {vertexLevel, automaticLevel, {1}, {2}, {1}},
    {vertexLevel, fragmentLevel, {1}, {2}, {1}},       {vertexLevel, vertexLevel, {1, 2}, {}, {2}},
};

TEST(PlaceInStages, PlacesChains) {
    for (const ChainRow& row : chains) {
        Flow flow;
        const std::size_t first = flow.function(row.first, {flow.varying("v")});
        const StagedShader shader = flow.place(flow.function(row.second, {first}));
        const std::string trace =
            describe(*flow.flow.nodes[1].generated) + " -> " + describe(*flow.flow.nodes[2].generated);
        EXPECT_EQ(shader.vertex.functions, row.vertex) << trace;
        EXPECT_EQ(shader.fragment.functions, row.fragment) << trace;
        EXPECT_EQ(crossing(shader), row.crossing) << trace;
        EXPECT_EQ(shader.attributes, Indices{0}) << trace;
    }
}

TEST(PlaceInStages, RefusesAFragmentValueForAVertexFunction) {
    Flow flow;
    const std::size_t fragment = flow.function(fragmentLevel, {flow.varying("v")});
    const std::size_t vertex = flow.function(vertexLevel, {fragment});
    expectError(hostErrorOf([&] { flow.place(vertex); }), "flow.xml:11",
                {"node \"item1\" (\"Item\")", "node \"item2\" (\"Item\")"});
}

TEST(PlaceInStages, NamesTheVertexFunctionBehindAutomaticOnes) {
    Flow flow;
    const std::size_t fragment = flow.function(fragmentLevel, {flow.varying("v")});
    const std::size_t between = flow.function(automaticLevel, {flow.function(automaticLevel, {fragment})});
    const std::size_t vertex = flow.function(vertexLevel, {between});
    expectError(hostErrorOf([&] { flow.place(flow.function(automaticLevel, {vertex})); }), "flow.xml:11",
                {"node \"item1\"", "node \"item4\""});
}

TEST(PlaceInStages, RunsAnAutomaticFunctionInBothWhenBothNeedIt) {
    Flow flow;
    const std::size_t varying = flow.varying("v");
    const std::size_t uniform = flow.uniform("u");
    const std::size_t inner = flow.function(automaticLevel, {varying, uniform});
    const std::size_t vertex = flow.function(vertexLevel, {inner});
    const StagedShader shader = flow.place(flow.function(automaticLevel, {inner, vertex}));
    EXPECT_EQ(shader.vertex.functions, (Indices{2, 3}));
    EXPECT_EQ(shader.fragment.functions, (Indices{2, 4}));
    EXPECT_EQ(shader.vertex.uniforms, Indices{1});
    EXPECT_EQ(shader.fragment.uniforms, Indices{1});
    EXPECT_EQ(crossing(shader), (Indices{0, 3}));
}

TEST(PlaceInStages, CrossesEachValueOnce) {
    Flow flow;
    const std::size_t vertex = flow.function(vertexLevel, {flow.varying("v")});
    const std::size_t a = flow.function(automaticLevel, {vertex});
    const std::size_t b = flow.function(fragmentLevel, {vertex});
    const StagedShader shader = flow.place(flow.function(automaticLevel, {a, b, vertex}));
    EXPECT_EQ(crossing(shader), Indices{1});
}

TEST(PlaceInStages, CrossesOnlyThePortsThatAreRead) {
    Flow flow;
    FunctionBuilder builder;
    builder.addOutput(typeOf(ComponentType::Float, 3), "a");
    builder.addOutput(typeOf(ComponentType::Float, 2), "b");
    builder.addOutput(typeOf(ComponentType::Float, 1), "c");
    const std::size_t many = flow.add(builder.makeNode(vertexLevel, "many"), {});
    FunctionBuilder reader;
    reader.addInput(typeOf(ComponentType::Float, 1), "in");
    reader.addOutput(typeOf(ComponentType::Float, 1), "out");
    const StagedShader shader =
        flow.place(flow.add(reader.makeNode(automaticLevel, "reader"), {ValueSource{many, 2}}));
    ASSERT_EQ(shader.interpolants.size(), 1U);
    EXPECT_EQ(shader.interpolants[0].value, (ValueSource{many, 2}));
}

TEST(PlaceInStages, KeepsUniformsOutOfTheOtherProgram) {
    Flow flow;
    const std::size_t vertexUniform = flow.uniform("u0");
    const std::size_t fragmentUniform = flow.uniform("u1");
    const std::size_t vertex = flow.function(vertexLevel, {vertexUniform});
    const StagedShader shader = flow.place(flow.function(automaticLevel, {vertex, fragmentUniform}));
    EXPECT_EQ(shader.vertex.uniforms, Indices{vertexUniform});
    EXPECT_EQ(shader.fragment.uniforms, Indices{fragmentUniform});
    EXPECT_TRUE(shader.attributes.empty());
}

TEST(PlaceInStages, CrossesAVaryingThatIsTheColour) {
    Flow flow;
    const StagedShader shader = flow.place(flow.varying("v", typeOf(ComponentType::Half, 3)));
    EXPECT_EQ(crossing(shader), Indices{0});
    ASSERT_EQ(shader.registers.size(), 1U);
    EXPECT_EQ(shader.registers[0].componentType, ComponentType::Half);
    EXPECT_EQ(shader.registers[0].componentCount, 3);
}

TEST(PlaceInStages, RefusesTypesThatCannotCross) {
    for (const ShaderType& type :
         {typeOf(ComponentType::Int, 1), typeOf(ComponentType::Bool, 1),
          ShaderType{ComponentType::Float, 4, 4, 1}, ShaderType{ComponentType::Float, 2, 1, 2},
          typeOf(ComponentType::Sampler2D, 1)}) {
        Flow flow;
        const std::size_t vertex = flow.function(vertexLevel, {}, type);
        const std::size_t last = flow.function(fragmentLevel, {vertex});
        expectError(hostErrorOf([&] { flow.place(last); }), "flow.xml:10",
                    {"node \"item0\"", typeText(type)});
    }
}

TEST(PlaceInStages, RefusesAnInterfaceParameterThatWasNotJoined) {
    Flow flow;
    const auto parameter =
        makeParameterNode(NodeKind::InterfaceParameter, "p", typeOf(ComponentType::Float, 1));
    expectError(hostErrorOf([&] { flow.place(flow.add(parameter, {})); }), "flow.xml:10",
                {"node \"item0\" (\"Item\")", "interface parameter \"p\" (float,flags=0)"});
}

// Declarations that several nodes share

TEST(PlaceInStages, CrossesAVaryingOfSeveralNodesOnce) {
    Flow flow;
    const std::size_t a = flow.varying("normal", typeOf(ComponentType::Float, 3));
    const std::size_t b = flow.varying("normal", typeOf(ComponentType::Float, 3));
    const std::size_t other = flow.varying("tangent", typeOf(ComponentType::Float, 3));
    const StagedShader shader = flow.place(flow.function(automaticLevel, {b, a, other}));
    EXPECT_EQ(crossing(shader), (Indices{a, other}));
    EXPECT_EQ(shader.registers.size(), 2U);
    EXPECT_EQ(shader.declarations, (Indices{0, 0, 2, 3}));
    EXPECT_EQ(shader.attributes, (Indices{a, b, other}));
    EXPECT_TRUE(shader.positions.empty());
}

TEST(PlaceInStages, CrossesTheFirstDeclarationWhereOnlyTheSecondCrosses) {
    Flow flow;
    const std::size_t a = flow.varying("v");
    const std::size_t b = flow.varying("v");
    const std::size_t vertex = flow.function(vertexLevel, {a});
    EXPECT_EQ(crossing(flow.place(flow.function(automaticLevel, {vertex, b}))), (Indices{a, vertex}));
}

TEST(PlaceInStages, CrossesARegisterOfSeveralNodesOnce) {
    Flow flow;
    const auto attribute = [&](std::int32_t number) {
        return flow.add(makeParameterNode(NodeKind::RegisterParameter, {}, typeOf(ComponentType::Float, 4), 0,
                                          {registers::vertexAttribute, number}),
                        {});
    };
    const std::size_t a = attribute(5);
    const std::size_t b = attribute(5);
    const std::size_t other = attribute(6);
    const StagedShader shader = flow.place(flow.function(fragmentLevel, {a, b, other}));
    EXPECT_EQ(crossing(shader), (Indices{a, other}));
}

TEST(PlaceInStages, CrossesThePositionOnce) {
    Flow flow;
    const auto varying = [&](const std::string& name, std::int32_t number) {
        return flow.add(makeParameterNode(NodeKind::VaryingParameter, name, typeOf(ComponentType::Float, 4),
                                          0, {registers::vertexAttribute, number}),
                        {});
    };
    const std::size_t a = varying("position", 0);
    const std::size_t b = varying("objPos", 0);
    const std::size_t named = flow.varying("objPos", typeOf(ComponentType::Float, 4));
    const std::size_t other = varying("other", 3);
    const StagedShader shader = flow.place(flow.function(fragmentLevel, {a, b, named, other}));
    EXPECT_EQ(shader.positions, (Indices{a, b, named}));
    EXPECT_EQ(crossing(shader), (Indices{a, other}));

    const std::size_t elsewhere = varying("objPos", 7);
    EXPECT_EQ(
        hostErrorOf([&] { flow.place(flow.function(fragmentLevel, {elsewhere})); }),
        "flow.xml:15: error: node \"item5\" (\"Item\"): varying parameter \"objPos\" (float4 : ATTR7) names "
        "another register than the position of the vertex, which has that name too; rename one of the "
        "nodes");
}

// Packing

struct Item {
    std::int32_t width;
    ComponentType component;
};

/// A fragment function of vertex values of those types.
StagedShader packed(const std::vector<Item>& items) {
    Flow flow;
    Indices inputs;
    for (const Item& item : items) {
        inputs.push_back(flow.function(vertexLevel, {}, typeOf(item.component, item.width)));
    }
    return flow.place(flow.function(fragmentLevel, inputs));
}

/// The fewest registers of four that hold items of one to four: fours alone, a one beside each three, twos in
/// pairs, ones wherever there is room.
std::size_t fewestRegisters(const std::vector<Item>& items) {
    std::map<std::int32_t, std::int32_t> count;
    for (const Item& item : items) {
        ++count[item.width];
    }
    const std::int32_t twos = (count[2] + 1) / 2;
    const std::int32_t onesLeft = count[1] - count[3] - (count[2] % 2) * 2;
    return static_cast<std::size_t>(count[4] + count[3] + twos + (onesLeft > 0 ? (onesLeft + 3) / 4 : 0));
}

TEST(PackInterpolants, TakesAsFewRegistersAsPossible) {
    std::mt19937 random(7); // the same sizes on every machine
    std::uniform_int_distribution<std::int32_t> widths(1, 4);
    std::uniform_int_distribution<std::size_t> counts(1, 16);
    std::bernoulli_distribution isHalf(0.5);
    for (int round = 0; round < 2000; ++round) {
        std::vector<Item> items(counts(random));
        for (Item& item : items) {
            item = {widths(random), isHalf(random) ? ComponentType::Half : ComponentType::Float};
        }
        const std::size_t fewest = fewestRegisters(items);
        if (fewest > 10) {
            expectError(hostErrorOf([&] { packed(items); }), "flow.xml:2", {std::to_string(fewest), "10"});
            continue;
        }
        const StagedShader shader = packed(items);
        ASSERT_EQ(shader.registers.size(), fewest);
        ASSERT_EQ(shader.interpolants.size(), items.size());
        std::vector<std::vector<bool>> used(fewest, std::vector<bool>(4, false));
        std::vector<bool> allHalf(fewest, true);
        for (const Interpolant& interpolant : shader.interpolants) {
            const Item& item = items.at(interpolant.value.node);
            for (std::int32_t i = 0; i < item.width; ++i) {
                auto place = used.at(interpolant.registerIndex).begin() + (interpolant.firstComponent + i);
                ASSERT_LT(interpolant.firstComponent + i, 4);
                ASSERT_FALSE(*place) << "two values in one place";
                *place = true;
            }
            if (item.component != ComponentType::Half) {
                allHalf[interpolant.registerIndex] = false;
            }
        }
        for (std::size_t i = 0; i < fewest; ++i) {
            EXPECT_EQ(shader.registers[i].componentCount, std::count(used[i].begin(), used[i].end(), true));
            EXPECT_EQ(shader.registers[i].componentType,
                      allHalf[i] ? ComponentType::Half : ComponentType::Float);
        }
    }
}

TEST(PackInterpolants, KeepsHalfApartWhereThatCostsNothing) {
    const Item half2 = {2, ComponentType::Half};
    const Item float2 = {2, ComponentType::Float};
    const auto types = [](const StagedShader& shader) {
        std::vector<ComponentType> list;
        for (const InterpolantRegister& entry : shader.registers) {
            list.push_back(entry.componentType);
        }
        return list;
    };
    using Types = std::vector<ComponentType>;
    EXPECT_EQ(types(packed({half2, float2, half2, float2})),
              (Types{ComponentType::Float, ComponentType::Half}));
    EXPECT_EQ(types(packed({half2, float2})), Types{ComponentType::Float});
}

/// The registers that a packing takes, each as the types of its values in their order.
std::vector<std::string> registersOf(const std::vector<Item>& items) {
    const StagedShader shader = packed(items);
    std::vector<std::map<std::int32_t, std::string>> values(shader.registers.size());
    for (const Interpolant& interpolant : shader.interpolants) {
        const Item& item = items.at(interpolant.value.node);
        values.at(interpolant.registerIndex)[interpolant.firstComponent] =
            typeText(typeOf(item.component, item.width));
    }
    std::vector<std::string> texts;
    for (const auto& entry : values) {
        std::string text;
        for (const auto& [component, type] : entry) {
            appendText(text, {text.empty() ? "" : " ", type});
        }
        texts.push_back(text);
    }
    return texts;
}

struct PackedRow {
    std::vector<Item> items;
    std::vector<std::string> registers;
};

TEST(PackInterpolants, MixesOnlyWhatSavesARegister) {
    const auto half = [](std::int32_t width) { return Item{width, ComponentType::Half}; };
    const auto full = [](std::int32_t width) { return Item{width, ComponentType::Float}; };
    const PackedRow rows[] = {
        {{full(3), half(3), full(2), half(2), half(1)}, {"float3", "float2 half2", "half3 half"}},
        {{full(3), half(3), full(1), half(1)}, {"float3 float", "half3 half"}},
        {{full(3), half(1)}, {"float3 half"}},
        {{full(2), half(1), half(1), half(4)}, {"float2 half half", "half4"}},
        // the room beside the float3 stays empty
        {{full(3), full(2), half(2), half(3)}, {"float3", "float2 half2", "half3"}},
        // one half saves the register, and the other goes where half is
        {{full(2), half(1), half(1), half(3)}, {"float2 half", "half3 half"}},
        {{full(3), full(2), half(2), half(3), half(1), half(4)},
         {"float3", "float2 half2", "half4", "half3 half"}},
        // two mixed registers cannot be avoided, and float alone would leave no room for a half3
        {{full(1), full(1), half(3), half(3)}, {"half3 float", "half3 float"}},
        {{full(2), full(2), full(2), half(2)}, {"float2 float2", "float2 half2"}},
        {{half(2), half(2)}, {"half2 half2"}},
        {{full(4), half(4)}, {"float4", "half4"}},
    };
    for (const PackedRow& row : rows) {
        EXPECT_EQ(registersOf(row.items), row.registers);
    }
}

TEST(PackInterpolants, HoldsTenRegistersAndNoMore) {
    const Item full = {4, ComponentType::Float};
    EXPECT_EQ(packed(std::vector<Item>(10, full)).registers.size(), 10U);
    expectError(hostErrorOf([&] { packed(std::vector<Item>(11, full)); }), "flow.xml:2", {"11", "10"});
    EXPECT_EQ(packed(std::vector<Item>(40, {1, ComponentType::Half})).registers.size(), 10U);
    expectError(hostErrorOf([&] {
                    packed(std::vector<Item>(41, {1, ComponentType::Half}));
                }),
                "flow.xml:2", {"41", "11", "10"});
}

TEST(PackInterpolants, CarriesFixedValuesAsFloat) {
    const StagedShader shader = packed({{2, ComponentType::Fixed}});
    ASSERT_EQ(shader.registers.size(), 1U);
    EXPECT_EQ(shader.registers[0].componentType, ComponentType::Float);
}

} // namespace
} // namespace patina
