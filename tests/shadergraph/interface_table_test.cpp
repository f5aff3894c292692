#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::expectGraphSize;
using testing::float2Type;
using testing::float3Type;
using testing::float4Type;
using testing::makeInterface;
using testing::shaderErrorOf;

constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

/// Supplies one node, or none, and keeps a diary of what it is asked.
class ShelfProvider : public InterfaceProvider {
public:
    ShelfProvider(std::string name, std::shared_ptr<GeneratorNode> node, std::vector<std::string>& diary)
        : name_(std::move(name)), node_(std::move(node)), diary_(diary) {}

    std::shared_ptr<GeneratorNode> provideInterfaceNode(const std::string& name, std::int32_t flags,
                                                        Graph& graph) override {
        diary_.push_back(name_ + ":" + name + "/" + std::to_string(flags));
        lastGraph = &graph;
        return node_;
    }

    const Graph* lastGraph = nullptr;

private:
    std::string name_;
    std::shared_ptr<GeneratorNode> node_;
    std::vector<std::string>& diary_;
};

using Diary = std::vector<std::string>;

TEST(InterfaceKey, HasNoFlagsUnlessTheyAreGiven) { EXPECT_EQ(InterfaceKey{"uv"}.flags, 0); }

TEST(InterfaceKey, IsOrderedByNameByteByByteThenBySignedFlags) {
    const InterfaceKey ascending[] = {
        {"", smallest},
        {"", 0},
        {"A", largest},
        {"Uv", 0},
        {std::string("a\0", 2), 0},
        {"ab", 0},
        {"uv", -1},
        {"uv", 0},
        {"uv", 1},
        {"uv", 10},
        {"uv", largest},
        {"uv1", -5},
        {"uv10", 0},
        {"uv2", 0},
        {"v", 0},
        {"\x7F", 0},
        {"\x80", 0},
        {"\xC3\xA9", smallest},
        {"\xFF", 0},
    };
    std::map<InterfaceKey, int> positions;
    for (std::size_t i = std::size(ascending); i-- > 0;) {
        positions[ascending[i]] = static_cast<int>(i);
    }
    ASSERT_EQ(positions.size(), std::size(ascending));
    int expected = 0;
    for (const auto& [key, position] : positions) {
        EXPECT_EQ(position, expected++) << key.name << " " << key.flags;
    }
    testing::expectFieldOrder({&ascending[0].name, &ascending[0].flags});
}

TEST(InterfaceTable, HoldsOneEntryForEachNameAndFlags) {
    Graph graph;
    const auto uv0 = makeInterface("uv", float2Type, 0);
    const auto uv1 = makeInterface("uv", float2Type, 1);
    const auto uvMinus = makeInterface("uv", float3Type, -1);
    const auto upper = makeInterface("UV", float2Type, 0);
    for (const auto& node : {uv0, uv1, uvMinus, upper}) {
        graph.registerInterface(node);
    }
    EXPECT_EQ(graph.interfaces.size(), 4U);
    EXPECT_EQ(graph.interfaces.at({"uv", 0}), uv0);
    EXPECT_EQ(graph.interfaces.at({"uv", 1}), uv1);
    EXPECT_EQ(graph.interfaces.at({"uv", -1}), uvMinus);
    EXPECT_EQ(graph.interfaces.at({"UV", 0}), upper);
    // registering is not inserting
    expectGraphSize(graph, 0, 0);
}

TEST(InterfaceTable, RefusesATakenKey) {
    Graph graph;
    const auto first = makeInterface("uv", float2Type, 1000);
    const auto second = makeInterface("uv", float3Type, 1000);
    graph.registerInterface(first);
    const testing::CommaLocale comma;
    EXPECT_EQ(shaderErrorOf([&] { graph.registerInterface(second); }),
              "interface parameter \"uv\" (float3,flags=1000) already exists in graph");
    EXPECT_EQ(shaderErrorOf([&] { graph.registerInterface(first); }),
              "interface parameter \"uv\" (float2,flags=1000) already exists in graph");
    ASSERT_EQ(graph.interfaces.size(), 1U);
    EXPECT_EQ(graph.interfaces.begin()->second, first);
}

TEST(InterfaceTable, IsFilledByInsertion) {
    Graph graph;
    const auto uv = makeInterface("uv", float2Type, 3);
    graph.insertNode(uv);
    EXPECT_TRUE(graph.hasInterfaceNode("uv", 3));
    EXPECT_EQ(graph.findInterfaceNode("uv", 3), uv);
    EXPECT_EQ(graph.findInterfaceNode("uv", 3, float2Type), uv);
}

TEST(InterfaceTable, KnowsOnlyTheExactKey) {
    Graph graph;
    EXPECT_FALSE(graph.hasInterfaceNode("uv", 0));
    graph.insertNode(makeInterface("uv", float2Type, 0));
    EXPECT_TRUE(graph.hasInterfaceNode("uv", 0));
    EXPECT_FALSE(graph.hasInterfaceNode("uv", 1));
    EXPECT_FALSE(graph.hasInterfaceNode("UV", 0));
    EXPECT_FALSE(graph.hasInterfaceNode("", 0));
    EXPECT_EQ(graph.interfaces.size(), 1U);
}

struct MissingRow {
    const char* name;
    std::int32_t flags;
    const char* message;
};

constexpr MissingRow missing[] = {
    {"uv", 2, "failed to find interface node \"uv\" (flags=2)"},
    {"uv", -1, "failed to find interface node \"uv\" (flags=-1)"},
    {"", 0, "failed to find interface node \"\" (flags=0)"},
    {"a \"b\"", 1234567, "failed to find interface node \"a \"b\"\" (flags=1234567)"},
    {"uv", smallest, "failed to find interface node \"uv\" (flags=-2147483648)"},
};

TEST(InterfaceLookup, FailsWithNameAndFlags) {
    Graph graph;
    graph.insertNode(makeInterface("uv", float2Type, 0));
    const testing::CommaLocale comma;
    for (const MissingRow& row : missing) {
        EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode(row.name, row.flags); }), row.message);
        EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode(row.name, row.flags, float2Type); }),
                  row.message);
    }
    EXPECT_EQ(graph.interfaces.size(), 1U);
    expectGraphSize(graph, 1, 0);
}

TEST(InterfaceLookup, ChecksAllFourFieldsOfTheType) {
    Graph graph;
    const ShaderType type{ComponentType::Half, 4, 3, 1000};
    const auto node = makeInterface("bones", type, 5);
    graph.insertNode(node);
    EXPECT_EQ(graph.findInterfaceNode("bones", 5, type), node);

    const struct {
        ShaderType expected;
        const char* message;
    } rows[] = {
        {{ComponentType::Float, 4, 3, 1000},
         "interface parameter \"bones\" (half3x4[1000],flags=5) expected to have type float3x4[1000]"},
        {{ComponentType::Half, 2, 3, 1000},
         "interface parameter \"bones\" (half3x4[1000],flags=5) expected to have type half3x2[1000]"},
        {{ComponentType::Half, 4, 4, 1000},
         "interface parameter \"bones\" (half3x4[1000],flags=5) expected to have type half4x4[1000]"},
        {{ComponentType::Half, 4, 3, 1},
         "interface parameter \"bones\" (half3x4[1000],flags=5) expected to have type half3x4"},
        {float3Type, "interface parameter \"bones\" (half3x4[1000],flags=5) expected to have type float3"},
    };
    const testing::CommaLocale comma;
    for (const auto& row : rows) {
        EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode("bones", 5, row.expected); }), row.message);
    }
    EXPECT_EQ(graph.findInterfaceNode("bones", 5), node);
}

TEST(InterfaceLookup, ChecksTypesThatPrintAlike) {
    Graph graph;
    graph.insertNode(makeInterface("uv", float2Type));
    EXPECT_EQ(shaderErrorOf([&] {
                  graph.findInterfaceNode("uv", 0, {ComponentType::Float, 2, 0, 1});
              }),
              "interface parameter \"uv\" (float2,flags=0) expected to have type float2");
}

TEST(InterfaceProviders, AreAskedInOrderUntilOneAnswers) {
    Graph graph;
    Diary diary;
    const auto supplied = makeInterface("anything", float2Type, 9);
    const auto ignored = makeInterface("ignored", float2Type);
    const auto empty = std::make_shared<ShelfProvider>("a", nullptr, diary);
    const auto full = std::make_shared<ShelfProvider>("b", supplied, diary);
    graph.interfaceProviders = {empty, full, std::make_shared<ShelfProvider>("c", ignored, diary)};

    EXPECT_EQ(graph.findInterfaceNode("uv", -7), supplied);
    EXPECT_EQ(diary, (Diary{"a:uv/-7", "b:uv/-7"}));
    EXPECT_EQ(empty->lastGraph, &graph);
    EXPECT_EQ(full->lastGraph, &graph);
}

TEST(InterfaceProviders, AnswerWithoutEnteringAnything) {
    Graph graph;
    Diary diary;
    const auto supplied = makeInterface("uv", float2Type);
    graph.interfaceProviders = {std::make_shared<ShelfProvider>("a", supplied, diary)};
    EXPECT_EQ(graph.findInterfaceNode("uv", 0), supplied);
    EXPECT_EQ(graph.findInterfaceNode("uv", 0, float2Type), supplied);
    EXPECT_EQ(diary, (Diary{"a:uv/0", "a:uv/0"}));
    EXPECT_FALSE(graph.hasInterfaceNode("uv", 0));
    EXPECT_TRUE(graph.interfaces.empty());
    expectGraphSize(graph, 0, 0);
}

TEST(InterfaceProviders, AreNotAskedForWhatTheTableHolds) {
    Graph graph;
    Diary diary;
    graph.interfaceProviders = {std::make_shared<ShelfProvider>("a", makeInterface("uv", float2Type), diary)};
    const auto uv = makeInterface("uv", float2Type);
    graph.insertNode(uv);
    EXPECT_EQ(graph.findInterfaceNode("uv", 0), uv);
    EXPECT_EQ(graph.findInterfaceNode("uv", 0, float2Type), uv);
    EXPECT_TRUE(graph.hasInterfaceNode("uv", 0));
    EXPECT_FALSE(graph.hasInterfaceNode("uv", 1));
    EXPECT_TRUE(diary.empty());
    graph.findInterfaceNode("uv", 1);
    EXPECT_EQ(diary, Diary{"a:uv/1"});
}

TEST(InterfaceProviders, MayAllHaveNothing) {
    Graph graph;
    Diary diary;
    graph.interfaceProviders = {std::make_shared<ShelfProvider>("a", nullptr, diary),
                                std::make_shared<ShelfProvider>("b", nullptr, diary)};
    EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode("uv", 2); }),
              "failed to find interface node \"uv\" (flags=2)");
    EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode("uv", 2, float2Type); }),
              "failed to find interface node \"uv\" (flags=2)");
    EXPECT_EQ(diary, (Diary{"a:uv/2", "b:uv/2", "a:uv/2", "b:uv/2"}));
}

TEST(InterfaceProviders, AreHeldToTheTypeToo) {
    Graph graph;
    Diary diary;
    // whatever a provider returns is the answer, be its kind, name and flags what they may
    graph.interfaceProviders = {
        std::make_shared<ShelfProvider>("a", makeUniformParameter("tint", float3Type), diary),
        std::make_shared<ShelfProvider>("b", makeInterface("uv", float2Type), diary)};
    EXPECT_EQ(shaderErrorOf([&] { graph.findInterfaceNode("uv", 0, float2Type); }),
              "uniform parameter \"tint\" (float3) expected to have type float2");
    EXPECT_EQ(diary, Diary{"a:uv/0"});
}

TEST(InterfaceProviders, AreNotAskedWhenAGeneratorAddsANode) {
    GraphGenerator generator;
    Diary diary;
    generator.graph->interfaceProviders = {
        std::make_shared<ShelfProvider>("a", makeInterface("uv", float4Type), diary)};
    const auto uv = makeInterface("uv", float2Type);
    generator.addNode(uv);
    EXPECT_EQ(generator.findNode(uv), uv);
    EXPECT_TRUE(generator.graph->hasInterfaceNode("uv", 0));
    EXPECT_TRUE(diary.empty());
}

} // namespace
} // namespace patina
