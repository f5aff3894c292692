#include "corenodes/layer_blend_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

const Texts modeNames = {"Darken",      "Lighten",    "Multiply",    "Screen",     "Overlay",  "Colour Dodge",
                         "Colour Burn", "Hard Light", "Vivid Light", "Difference", "Exclusion"};

const std::vector<PortRow> inputRows = {{"in_value1", "in1", 0}, {"in_value2", "in2", 0}};
const std::vector<PortRow> outputRows = {{"out_value", "out", 0}};

TEST(LayerBlendNode, HasItsProperties) {
    const LayerBlendNode node;
    expectProperties(
        node, "CoreLayerBlend", "LayerBlend",
        {{"Mode", PropertyType::Enum, "Darken", "Mode: the layer blend to perform.", modeNames}});
    expectColours(node, 0.44F, 0.71F, 0.19F);
    EXPECT_EQ(visibleProperties(node), Texts{"Mode"});
    EXPECT_EQ(editableProperties(node), Texts{"Mode"});
}

TEST(LayerBlendNode, HasTheSamePortsInEveryMode) {
    LayerBlendNode node;
    expectPorts(node.inputs, inputRows);
    expectPorts(node.outputs, outputRows);
    for (const std::string& mode : modeNames) {
        SCOPED_TRACE(mode);
        property(node, "Mode").setEnum(mode);
        node.updateFromProperties(nullptr);
        expectPorts(node.inputs, inputRows);
        expectPorts(node.outputs, outputRows);
    }
}

TEST(LayerBlendNode, NeverRebuildsItsPorts) {
    LayerBlendNode node;
    resolve(node, floatPrecision, 3);
    node.inputPort("in_value1").connected = true;
    property(node, "Mode").setEnum("Exclusion");
    node.updateFromProperties(&node);
    EXPECT_EQ(node.inputs.size(), 2U);
    EXPECT_EQ(node.outputs.size(), 1U);
    EXPECT_TRUE(node.inputPort("in_value1").connected);
    EXPECT_EQ(node.outputPort("out_value").getComponentCount(), 3U);
}

TEST(LayerBlendNode, IsCaptionedWithItsMode) {
    LayerBlendNode node;
    for (const std::string& mode : modeNames) {
        property(node, "Mode").setEnum(mode);
        EXPECT_EQ(node.caption(), mode);
    }
}

TEST(LayerBlendNode, HasNoBinding) {
    LayerBlendNode node;
    EXPECT_FALSE(node.generatesBinding());
    EXPECT_TRUE(bindingsOf(node).empty());
}

struct BlendRow {
    const char* mode;
    bool one;
    bool half;
    std::vector<const char*> locals; ///< each behind a tab and the type
    const char* line;
};

const std::vector<BlendRow> blendRows = {
    {"Darken", false, false, {}, "\tout_value = ( in_value1 < in_value2 ) ? in_value1 : in_value2;\n"},
    {"Lighten", false, false, {}, "\tout_value = ( in_value1 > in_value2 ) ? in_value1 : in_value2;\n"},
    {"Multiply", false, false, {}, "\tout_value = in_value1*in_value2;\n"},
    {"Screen", true, false, {}, "\tout_value = in_one - ( in_one - in_value1 )*( in_one - in_value2 );\n"},
    {"Overlay",
     true,
     true,
     {" multiplied = 2.0f*in_value1*in_value2;\n",
      " screened = in_one - 2.0f*( in_one - in_value1 )*( in_one - in_value2 );\n"},
     "\tout_value = ( in_value1 < in_half ) ? multiplied : screened;\n"},
    {"Colour Dodge", true, false, {}, "\tout_value = in_value1/( in_one - in_value2 );\n"},
    {"Colour Burn", true, false, {}, "\tout_value = in_one - ( in_one - in_value1 )/in_value2;\n"},
    {"Hard Light",
     true,
     true,
     {" multiplied = 2.0f*in_value1*in_value2;\n",
      " screened = in_one - 2.0f*( in_one - in_value1 )*( in_one - in_value2 );\n"},
     "\tout_value = ( in_value2 < in_half ) ? multiplied : screened;\n"},
    {"Vivid Light",
     true,
     true,
     {" burned = in_one - 0.5f*( in_one - in_value1 )/in_value2;\n",
      " dodged = 0.5f*in_value1/( in_one - in_value2 );\n"},
     "\tout_value = ( in_value2 < in_half ) ? burned : dodged;\n"},
    {"Difference", false, false, {}, "\tout_value = abs( in_value1 - in_value2 );\n"},
    {"Exclusion", false, false, {}, "\tout_value = in_value1 + in_value2 - 2.0f*in_value1*in_value2;\n"},
};

void expectBlendCode(const BlendRow& row, bool baseConnected, bool blendConnected, const Precision& precision,
                     std::uint32_t width) {
    const std::string type = vectorText(precision.word, width);
    SCOPED_TRACE(row.mode);
    SCOPED_TRACE(type);
    LayerBlendNode node;
    property(node, "Mode").setEnum(row.mode);
    node.inputPort("in_value1").connected = baseConnected;
    node.inputPort("in_value2").connected = blendConnected;
    resolve(node, precision, width);

    Texts inputs;
    std::string code;
    if (baseConnected) {
        inputs.push_back(type + " in_value1");
    } else {
        code += constantLine(precision.word, width, "in_value1", "0");
    }
    if (blendConnected) {
        inputs.push_back(type + " in_value2");
    } else {
        code += constantLine(precision.word, width, "in_value2", "0");
    }
    if (row.one) {
        code += constantLine(precision.word, width, "in_one", "1");
    }
    if (row.half) {
        code += constantLine(precision.word, width, "in_half", "0.5");
    }
    for (const char* local : row.locals) {
        code += "\t" + type + local;
    }
    code += row.line;
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"mathsCode"});
    expectFunction(generator, 0,
                   {"mathsCode", ExecutionLevel::Automatic, inputs, {type + " out_value"}, code});
    EXPECT_EQ(edges(generator), Texts{});
}

void expectAllBlendCode() {
    for (const BlendRow& row : blendRows) {
        for (const unsigned connectedInputs : {0U, 1U, 2U, 3U}) {
            for (const Precision& precision : precisions) {
                for (std::uint32_t width = 1; width <= 4; ++width) {
                    expectBlendCode(row, (connectedInputs & 1U) != 0, (connectedInputs & 2U) != 0, precision,
                                    width);
                }
            }
        }
    }
}

TEST(LayerBlendCode, FollowsTheMode) { expectAllBlendCode(); }

TEST(LayerBlendCode, IgnoresTheLocaleOfTheProcess) {
    const CommaLocale comma;
    expectAllBlendCode();
}

TEST(LayerBlendCode, OfAnOverlayOfNothingWrittenOut) {
    LayerBlendNode node;
    property(node, "Mode").setEnum("Overlay");
    resolve(node, floatPrecision, 3);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code,
              "\tfloat3 in_value1 = float( 0 ).xxx;\n"
              "\tfloat3 in_value2 = float( 0 ).xxx;\n"
              "\tfloat3 in_one = float( 1 ).xxx;\n"
              "\tfloat3 in_half = float( 0.5 ).xxx;\n"
              "\tfloat3 multiplied = 2.0f*in_value1*in_value2;\n"
              "\tfloat3 screened = in_one - 2.0f*( in_one - in_value1 )*( in_one - in_value2 );\n"
              "\tout_value = ( in_value1 < in_half ) ? multiplied : screened;\n");
}

TEST(LayerBlendCode, TakesTheTypeOfItsLocalsFromTheNode) {
    LayerBlendNode node;
    property(node, "Mode").setEnum("Vivid Light");
    resolve(node, floatPrecision, 3);
    node.inputPort("in_value1").connected = true;
    node.inputPort("in_value2").connected = true;
    node.resolvedPrecision = 3;
    node.resolvedComponentCount = 2;
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {"float3 in_value1", "float3 in_value2"},
                    {"float3 out_value"},
                    "\thalf2 in_one = half( 1 ).xx;\n"
                    "\thalf2 in_half = half( 0.5 ).xx;\n"
                    "\thalf2 burned = in_one - 0.5f*( in_one - in_value1 )/in_value2;\n"
                    "\thalf2 dodged = 0.5f*in_value1/( in_one - in_value2 );\n"
                    "\tout_value = ( in_value2 < in_half ) ? burned : dodged;\n"});
}

TEST(LayerBlendCode, OfAnUnknownModeHasNoFormula) {
    LayerBlendNode node;
    setUnknownEnum(node, "Mode");
    node.inputPort("in_value1").connected = true;
    resolve(node, halfPrecision, 2);
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {"half2 in_value1"},
                    {"half2 out_value"},
                    "\thalf2 in_value2 = half( 0 ).xx;\n"});
}

TEST(LayerBlendCode, IsTheSameAfterTheModeChangedAndChangedBack) {
    LayerBlendNode node;
    property(node, "Mode").setEnum("Screen");
    node.updateFromProperties(nullptr);
    property(node, "Mode").setEnum("Darken");
    node.updateFromProperties(nullptr);
    resolve(node, halfPrecision);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code,
              "\thalf in_value1 = half( 0 ).x;\n"
              "\thalf in_value2 = half( 0 ).x;\n"
              "\tout_value = ( in_value1 < in_value2 ) ? in_value1 : in_value2;\n");
}

TEST(LayerBlendCode, LinksItsPortsToTheFunction) {
    LayerBlendNode node;
    Connections connections;
    const auto base = connections.into(node, "in_value1");
    const auto blend = connections.into(node, "in_value2");
    const auto out = connections.outOf(node, "out_value");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 3U);
    EXPECT_EQ(portLink(generator, base), "none -> mathsCode#0.in_value1");
    EXPECT_EQ(portLink(generator, blend), "none -> mathsCode#0.in_value2");
    EXPECT_EQ(portLink(generator, out), "mathsCode#0.out_value -> none");
}

TEST(LayerBlendCode, NeedsResolvedPorts) {
    LayerBlendNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    node.resolvePrecision();
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown component count");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(LayerBlendCode, HasConstantsOfFloatAndHalfOnly) {
    LayerBlendNode node;
    property(node, "Mode").setEnum("Screen");
    node.inputPort("in_value1").connected = true;
    node.inputPort("in_value2").connected = true;
    resolve(node, floatPrecision, 3);
    node.resolvedPrecision = 5;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot determine zero type for int3");
    EXPECT_TRUE(isUntouched(generator));
}

} // namespace
} // namespace patina
