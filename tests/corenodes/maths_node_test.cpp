#include "corenodes/maths_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

const Texts functionNames = {"Multiply",    "Addition", "Subtraction", "Invert",     "Power",
                             "Clamp",       "Range",    "Lerp",        "SmoothStep", "Compare",
                             "Dot Product", "Fresnel",  "Ceil",        "Floor",      "Frac"};

TEST(MathsNode, HasItsProperties) {
    const MathsNode node;
    expectProperties(
        node, "CoreMaths", "Maths",
        {{"Function", PropertyType::Enum, "Multiply",
          "Function: the type of mathematical function to perform.", functionNames},
         {"Default Value 1", PropertyType::Float, "0",
          "Default Value 1: the default value for the port \"in1\" (or \"in\") when no edge is connected."},
         {"Default Value 2", PropertyType::Float, "0",
          "Default Value 2: the default value for the port \"in2\" when no edge is connected."},
         {"Default Blend", PropertyType::Float, "0.5",
          "Default Blend: the default value for the port \"blend\" when no edge is connected."},
         {"Default Min", PropertyType::Float, "0",
          "Default Min: the default value for the port \"min\" when no edge is connected."},
         {"Default Max", PropertyType::Float, "1",
          "Default Max: the default value for the port \"max\" when no edge is connected."},
         {"Default Old Min", PropertyType::Float, "0",
          "Default Old Min: the default value for the port \"old min\" when no edge is connected."},
         {"Default Old Max", PropertyType::Float, "1",
          "Default Old Max: the default value for the port \"old max\" when no edge is connected."},
         {"Default Test 1", PropertyType::Float, "0",
          "Default Test 1: the default value for the port \"test1\" when no edge is connected."},
         {"Default Test 2", PropertyType::Float, "0",
          "Default Test 2: the default value for the port \"test2\" when no edge is connected."},
         {"Default Power", PropertyType::Float, "5",
          "Default Power: the default value for the port \"power\" when no edge is connected.  The default "
          "for fresnel should be 5."},
         {"Default Scale", PropertyType::Float, "1",
          "Default Scale: the default value for the port \"scale\" when no edge is connected."},
         {"Execution Level",
          PropertyType::Enum,
          "Automatic",
          "Execution Level: force the maths to be done either per-vertex or per-fragment, for example to "
          "force some uv arithmetic to be done per-vertex (possibly using more interpolants to do so). "
          "Usually this should be left at \"Automatic\".",
          {"Automatic", "Vertex", "Fragment"}}});
    expectColours(node, 1.0F, 0.5F, 0.5F);
}

struct Configuration {
    const char* function;
    std::vector<PortRow> inputs;
    PortRow output;
    Texts visible;
};

const std::vector<Configuration> configurations = {
    {"Multiply",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Execution Level"}},
    {"Addition",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Execution Level"}},
    {"Subtraction",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Execution Level"}},
    {"Invert",
     {{"in_value1", "in", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Execution Level"}},
    {"Power",
     {{"in_value1", "in", 0}, {"in_power", "power", 1}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Power", "Execution Level"}},
    {"Clamp",
     {{"in_value1", "in", 0}, {"in_min", "min", 0}, {"in_max", "max", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Min", "Default Max", "Execution Level"}},
    {"Range",
     {{"in_value1", "in", 0},
      {"in_min", "min", 0},
      {"in_max", "max", 0},
      {"in_oldmin", "old min", 0},
      {"in_oldmax", "old max", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Min", "Default Max", "Default Old Min", "Default Old Max",
      "Execution Level"}},
    {"Lerp",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}, {"in_blend", "blend", 1}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Default Blend", "Execution Level"}},
    {"SmoothStep",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}, {"in_blend", "blend", 1}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Default Blend", "Execution Level"}},
    {"Compare",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}, {"in_test1", "test1", 1}, {"in_test2", "test2", 1}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Default Test 1", "Default Test 2",
      "Execution Level"}},
    {"Dot Product",
     {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Default Value 2", "Execution Level"}},
    {"Fresnel",
     {{"in_facing", "facing", 1}, {"in_min", "min", 0}, {"in_scale", "scale", 0}, {"in_power", "power", 1}},
     {"out_value", "out", 1},
     {"Function", "Default Min", "Default Power", "Default Scale", "Execution Level"}},
    {"Ceil",
     {{"in_value1", "in", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Execution Level"}},
    {"Floor",
     {{"in_value1", "in", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Execution Level"}},
    {"Frac",
     {{"in_value1", "in", 0}},
     {"out_value", "out", 0},
     {"Function", "Default Value 1", "Execution Level"}},
};

void select(MathsNode& node, const Configuration& row) {
    property(node, "Function").setEnum(row.function);
    node.updateFromProperties(nullptr);
}

void expectConfiguration(const MathsNode& node, const Configuration& row) {
    SCOPED_TRACE(row.function);
    expectPorts(node.inputs, row.inputs);
    expectPorts(node.outputs, {row.output});
    EXPECT_EQ(visibleProperties(node), row.visible);
    EXPECT_EQ(editableProperties(node).size(), 13U);
    EXPECT_EQ(node.caption(), row.function);
    EXPECT_EQ(node.name(), "Maths");
}

TEST(MathsNode, StartsAsAMultiplication) { expectConfiguration(MathsNode(), configurations[0]); }

TEST(MathsNode, HasAConfigurationForEveryFunction) {
    Texts names;
    for (const Configuration& row : configurations) {
        names.emplace_back(row.function);
    }
    EXPECT_EQ(names, functionNames);
}

TEST(MathsNode, RebuildsPortsAndFlags) {
    for (const Configuration& row : configurations) {
        MathsNode node;
        select(node, row);
        expectConfiguration(node, row);
    }
}

TEST(MathsNode, ForgetsTheFunctionBefore) {
    MathsNode node;
    for (const Configuration& before : configurations) {
        for (const Configuration& row : configurations) {
            select(node, before);
            select(node, row);
            expectConfiguration(node, row);
        }
    }
}

TEST(MathsNode, ChangesItsPortsOnlyWhenItIsUpdated) {
    MathsNode node;
    property(node, "Function").setEnum("Fresnel");
    expectPorts(node.inputs, configurations[0].inputs);
    EXPECT_EQ(visibleProperties(node), configurations[0].visible);
    EXPECT_EQ(node.caption(), "Fresnel");
}

TEST(MathsNode, StartsItsPortsAfresh) {
    MathsNode node;
    resolve(node, floatPrecision, 3);
    node.inputPort("in_value1").connected = true;
    node.updateFromProperties(&node);
    expectConfiguration(node, configurations[0]);
}

TEST(MathsNode, IsWithoutPortsWhenItsFunctionIsNoEnum) {
    MathsNode node;
    property(node, "Function").setInteger(3);
    EXPECT_EQ(shaderErrorOf([&] { node.updateFromProperties(nullptr); }),
              "cannot read enum value from non-enum property \"Function\"");
    EXPECT_TRUE(node.inputs.empty());
    EXPECT_TRUE(node.outputs.empty());
}

TEST(MathsNode, HasNoBinding) {
    MathsNode node;
    EXPECT_FALSE(node.generatesBinding());
    EXPECT_TRUE(bindingsOf(node).empty());
}

} // namespace
} // namespace patina
