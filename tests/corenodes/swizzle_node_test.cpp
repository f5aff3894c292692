#include "corenodes/swizzle_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <limits>

namespace patina {
namespace {

using namespace testing;

const Texts allProperties = {"Vector Type", "Component Count", "Reverse"};
const Texts countLocked = {"Vector Type", "Reverse"};

TEST(SwizzleNode, HasItsProperties) {
    const SwizzleNode node;
    expectProperties(
        node, "CoreSwizzle", "Swizzle",
        {{"Vector Type",
          PropertyType::Enum,
          "Colour",
          "Vector Type: the quantity to split (or merge) into components.",
          {"Colour", "Uv", "Vector"}},
         // the default 4 has been overwritten: a colour has three components
         {"Component Count", PropertyType::Integer, "3",
          "Component Count: the number of values for vector constants.  This must be between 2 and 4."},
         {"Reverse", PropertyType::Bool, "false",
          "Reverse: when checked, this merges components into a vector value instead of splitting vector "
          "values into components."}});
    expectColours(node, 0.5F, 0.5F, 1.0F);
}

struct Configuration {
    const char* type;
    std::int32_t count;
    bool reverse;
    std::int32_t countAfterwards;
    Texts editable;
    std::vector<PortRow> inputs;
    std::vector<PortRow> outputs;
};

const std::vector<Configuration> configurations = {
    {"Colour",
     4,
     false,
     3,
     countLocked,
     {{"in_vec", "colour", 3}},
     {{"out_x", "red", 1}, {"out_y", "green", 1}, {"out_z", "blue", 1}}},
    {"Colour",
     9,
     true,
     3,
     countLocked,
     {{"in_x", "red", 1}, {"in_y", "green", 1}, {"in_z", "blue", 1}},
     {{"out_vec", "colour", 3}}},
    {"Uv", 4, false, 2, countLocked, {{"in_vec", "uv", 2}}, {{"out_x", "u", 1}, {"out_y", "v", 1}}},
    {"Uv", 0, true, 2, countLocked, {{"in_x", "u", 1}, {"in_y", "v", 1}}, {{"out_vec", "uv", 2}}},
    {"Vector", 2, false, 2, allProperties, {{"in_vec", "vector", 2}}, {{"out_x", "x", 1}, {"out_y", "y", 1}}},
    {"Vector",
     3,
     false,
     3,
     allProperties,
     {{"in_vec", "vector", 3}},
     {{"out_x", "x", 1}, {"out_y", "y", 1}, {"out_z", "z", 1}}},
    {"Vector",
     4,
     false,
     4,
     allProperties,
     {{"in_vec", "vector", 4}},
     {{"out_x", "x", 1}, {"out_y", "y", 1}, {"out_z", "z", 1}, {"out_w", "w", 1}}},
    {"Vector", 2, true, 2, allProperties, {{"in_x", "x", 1}, {"in_y", "y", 1}}, {{"out_vec", "vector", 2}}},
    {"Vector",
     3,
     true,
     3,
     allProperties,
     {{"in_x", "x", 1}, {"in_y", "y", 1}, {"in_z", "z", 1}},
     {{"out_vec", "vector", 3}}},
    {"Vector",
     4,
     true,
     4,
     allProperties,
     {{"in_x", "x", 1}, {"in_y", "y", 1}, {"in_z", "z", 1}, {"in_w", "w", 1}},
     {{"out_vec", "vector", 4}}},
};

void configure(SwizzleNode& node, const char* type, std::int32_t count, bool reverse) {
    property(node, "Vector Type").setEnum(type);
    property(node, "Component Count").setInteger(count);
    property(node, "Reverse").setBool(reverse);
    node.updateFromProperties(nullptr);
}

void expectConfiguration(const SwizzleNode& node, const Configuration& row) {
    SCOPED_TRACE(row.type);
    SCOPED_TRACE(row.reverse);
    EXPECT_EQ(property(node, "Component Count").getInteger(), row.countAfterwards);
    EXPECT_EQ(editableProperties(node), row.editable);
    EXPECT_EQ(visibleProperties(node), allProperties);
    expectPorts(node.inputs, row.inputs);
    expectPorts(node.outputs, row.outputs);
    EXPECT_EQ(node.caption(), "Swizzle");
}

TEST(SwizzleNode, StartsAsASplitColour) { expectConfiguration(SwizzleNode(), configurations[0]); }

TEST(SwizzleNode, RebuildsPortsAndFlags) {
    for (const Configuration& row : configurations) {
        SwizzleNode node;
        configure(node, row.type, row.count, row.reverse);
        expectConfiguration(node, row);
    }
}

TEST(SwizzleNode, ForgetsTheConfigurationBefore) {
    SwizzleNode node;
    for (const Configuration& before : configurations) {
        for (const Configuration& row : configurations) {
            configure(node, before.type, before.count, before.reverse);
            configure(node, row.type, row.count, row.reverse);
            expectConfiguration(node, row);
        }
    }
}

TEST(SwizzleNode, KeepsTheCountThatAFixedTypeWrote) {
    SwizzleNode node;
    property(node, "Vector Type").setEnum("Uv");
    node.updateFromProperties(nullptr);
    property(node, "Vector Type").setEnum("Vector");
    node.updateFromProperties(nullptr);
    expectConfiguration(node, configurations[4]);
}

TEST(SwizzleNode, KeepsItsCaptionWhateverItsName) {
    SwizzleNode node;
    node.setName("split");
    EXPECT_EQ(node.caption(), "Swizzle");
}

TEST(SwizzleNode, TakesAnUnknownTypeForAVector) {
    SwizzleNode node;
    setUnknownEnum(node, "Vector Type");
    property(node, "Component Count").setInteger(2);
    node.updateFromProperties(nullptr);
    expectConfiguration(node, configurations[4]);
}

TEST(SwizzleNode, RefusesVectorsOfOtherWidths) {
    constexpr std::int32_t counts[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 5,
                                       std::numeric_limits<std::int32_t>::max()};
    for (const std::int32_t count : counts) {
        for (const bool reverse : {false, true}) {
            SCOPED_TRACE(count);
            SwizzleNode node;
            EXPECT_EQ(shaderErrorOf([&] { configure(node, "Vector", count, reverse); }),
                      "component count must be between 2 and 4");
            EXPECT_TRUE(node.inputs.empty());
            EXPECT_TRUE(node.outputs.empty());
            EXPECT_EQ(property(node, "Component Count").getInteger(), count);
            EXPECT_EQ(editableProperties(node), allProperties);
            configure(node, "Vector", 2, false);
            expectConfiguration(node, configurations[4]);
        }
    }
}

TEST(SwizzleNode, IsNotWidenedByResolution) {
    SwizzleNode node;
    resolve(node, floatPrecision, 4);
    EXPECT_EQ(node.inputPort("in_vec").getComponentCount(), 3U);
    EXPECT_EQ(node.outputPort("out_x").getComponentCount(), 1U);
    EXPECT_EQ(node.resolvedComponentCount, 1U);
}

TEST(SwizzleNode, HasNoBinding) {
    SwizzleNode node;
    EXPECT_FALSE(node.generatesBinding());
    EXPECT_TRUE(bindingsOf(node).empty());
}

struct SplitRow {
    const char* type;
    std::int32_t count;
    std::uint32_t width;
    const char* code;
};

constexpr SplitRow splitRows[] = {
    {"Colour", 3, 3, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n\tout_z = in_vec.z;\n"},
    {"Uv", 2, 2, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n"},
    {"Vector", 2, 2, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n"},
    {"Vector", 3, 3, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n\tout_z = in_vec.z;\n"},
    {"Vector", 4, 4, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n\tout_z = in_vec.z;\n\tout_w = in_vec.w;\n"},
};

constexpr SplitRow mergeRows[] = {
    {"Colour", 3, 3, "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n\tout_vec.z = in_z;\n"},
    {"Uv", 2, 2, "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n"},
    {"Vector", 2, 2, "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n"},
    {"Vector", 3, 3, "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n\tout_vec.z = in_z;\n"},
    {"Vector", 4, 4, "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n\tout_vec.z = in_z;\n\tout_vec.w = in_w;\n"},
};

constexpr const char* splitPorts[] = {"out_x", "out_y", "out_z", "out_w"};
constexpr const char* mergePorts[] = {"in_x", "in_y", "in_z", "in_w"};

void expectSwizzleCode(SwizzleNode& node, const Texts& inputs, const Texts& outputs,
                       const std::string& code) {
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"swizzleCode"});
    expectFunction(generator, 0, {"swizzleCode", ExecutionLevel::Automatic, inputs, outputs, code});
    EXPECT_EQ(edges(generator), Texts{});
}

TEST(SwizzleCode, Splits) {
    for (const SplitRow& row : splitRows) {
        for (const Precision& precision : precisions) {
            for (const bool connected : {false, true}) {
                SCOPED_TRACE(row.type);
                SCOPED_TRACE(row.width);
                SwizzleNode node;
                configure(node, row.type, row.count, false);
                node.inputPort("in_vec").connected = connected;
                resolve(node, precision);
                Texts outputs;
                for (std::uint32_t i = 0; i < row.width; ++i) {
                    outputs.push_back(precision.word + " " + splitPorts[i]);
                }
                if (connected) {
                    expectSwizzleCode(node, {vectorText(precision.word, row.width) + " in_vec"}, outputs,
                                      row.code);
                } else {
                    expectSwizzleCode(node, {}, outputs,
                                      constantLine(precision.word, row.width, "in_vec", "0") + row.code);
                }
            }
        }
    }
}

TEST(SwizzleCode, Merges) {
    for (const SplitRow& row : mergeRows) {
        for (const Precision& precision : precisions) {
            for (unsigned connectedInputs = 0; connectedInputs < 1U << row.width; ++connectedInputs) {
                SCOPED_TRACE(row.type);
                SCOPED_TRACE(row.width);
                SCOPED_TRACE(connectedInputs);
                SwizzleNode node;
                configure(node, row.type, row.count, true);
                Texts inputs;
                std::string code;
                for (std::uint32_t i = 0; i < row.width; ++i) {
                    const bool connected = (connectedInputs >> i & 1U) != 0;
                    node.inputs.at(i).connected = connected;
                    if (connected) {
                        inputs.push_back(precision.word + " " + mergePorts[i]);
                    } else {
                        code += constantLine(precision.word, 1, mergePorts[i], "0");
                    }
                }
                resolve(node, precision);
                expectSwizzleCode(node, inputs, {vectorText(precision.word, row.width) + " out_vec"},
                                  code + row.code);
            }
        }
    }
}

TEST(SwizzleCode, OfAMergeWithOneInputLeftOutWrittenOut) {
    SwizzleNode node;
    configure(node, "Uv", 2, true);
    node.inputPort("in_x").connected = true;
    resolve(node, floatPrecision);
    expectSwizzleCode(node, {"float in_x"}, {"float2 out_vec"},
                      "\tfloat in_y = float( 0 ).x;\n\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n");
}

struct CountRow {
    std::int32_t count;
    const char* splitCode;
    const char* mergeCode;
};

TEST(SwizzleCode, DoesNotCheckTheCountAgain) {
    constexpr CountRow rows[] = {
        {-1, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n", "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n"},
        {1, "\tout_x = in_vec.x;\n\tout_y = in_vec.y;\n", "\tout_vec.x = in_x;\n\tout_vec.y = in_y;\n"},
        {3, splitRows[3].code, mergeRows[3].code},
        {5, splitRows[4].code, mergeRows[4].code},
    };
    for (const CountRow& row : rows) {
        SCOPED_TRACE(row.count);
        SwizzleNode node;
        configure(node, "Vector", 4, false);
        node.inputPort("in_vec").connected = true;
        resolve(node, floatPrecision);
        property(node, "Component Count").setInteger(row.count);
        expectSwizzleCode(node, {"float4 in_vec"},
                          {"float out_x", "float out_y", "float out_z", "float out_w"}, row.splitCode);

        configure(node, "Vector", 4, true);
        for (Port& input : node.inputs) {
            input.connected = true;
        }
        resolve(node, floatPrecision);
        property(node, "Component Count").setInteger(row.count);
        expectSwizzleCode(node, {"float in_x", "float in_y", "float in_z", "float in_w"}, {"float4 out_vec"},
                          row.mergeCode);
    }
}

TEST(SwizzleCode, LinksItsPortsToTheFunction) {
    SwizzleNode node;
    Connections connections;
    const auto vector = connections.into(node, "in_vec");
    const auto blue = connections.outOf(node, "out_z");
    const auto red = connections.outOf(node, "out_x");
    resolve(node, floatPrecision);
    const GraphGenerator split = generated(node);
    EXPECT_EQ(split.portLinks.size(), 3U);
    EXPECT_EQ(portLink(split, vector), "none -> swizzleCode#0.in_vec");
    EXPECT_EQ(portLink(split, blue), "swizzleCode#0.out_z -> none");
    EXPECT_EQ(portLink(split, red), "swizzleCode#0.out_x -> none");
}

TEST(SwizzleCode, LinksMergedPortsToTheFunction) {
    SwizzleNode node;
    configure(node, "Vector", 4, true);
    Connections connections;
    const auto w = connections.into(node, "in_w");
    const auto vector = connections.outOf(node, "out_vec");
    resolve(node, floatPrecision);
    const GraphGenerator merged = generated(node);
    EXPECT_EQ(merged.portLinks.size(), 2U);
    EXPECT_EQ(portLink(merged, w), "none -> swizzleCode#0.in_w");
    EXPECT_EQ(portLink(merged, vector), "swizzleCode#0.out_vec -> none");
}

TEST(SwizzleCode, NeedsAResolvedPrecision) {
    SwizzleNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    EXPECT_TRUE(isUntouched(generator));
}

} // namespace
} // namespace patina
