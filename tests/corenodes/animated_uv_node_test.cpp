#include "corenodes/animated_uv_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

const Texts allProperties = {"Rows", "Columns", "Mode", "Execution Level"};

TEST(AnimatedUvNode, HasItsProperties) {
    const AnimatedUvNode node;
    expectProperties(
        node, "CoreAnimatedUv", "CoreAnimatedUv",
        {{"Rows", PropertyType::Integer, "4", "Rows: the number of rows of frames in the texture"},
         {"Columns", PropertyType::Integer, "4", "Columns: the number of columns of frames in the texture"},
         {"Mode",
          PropertyType::Enum,
          "Basic",
          "Mode: how the offsets are exposed.  Use \"Basic\" to apply the offsets and scale to "
          "a single uv set automatically, or use \"Advanced\" to exposed these parameters for "
          "custom use.",
          {"Basic", "Advanced"}},
         {"Execution Level",
          PropertyType::Enum,
          "Vertex",
          "Execution Level: force the animation to be done either per-vertex or "
          "per-fragment.Usually this should be left at \"Vertex\".",
          {"Vertex", "Fragment"}}});
    expectColours(node, 1.0F, 0.0F, 0.5F);
}

void expectBasicPorts(const AnimatedUvNode& node) {
    expectPorts(node.inputs, {{"in_frame", "frame", 1}, {"in_uv", "uv", 2}});
    expectPorts(node.outputs, {{"out_uv1", "uv1", 2}, {"out_uv2", "uv2", 2}, {"out_blend", "blend", 1}});
}

void expectAdvancedPorts(const AnimatedUvNode& node) {
    expectPorts(node.inputs, {{"in_frame", "frame", 1}});
    expectPorts(node.outputs, {{"out_offset1", "offset1", 2},
                               {"out_offset2", "offset2", 2},
                               {"out_scale", "scale", 2},
                               {"out_blend", "blend", 1}});
}

TEST(AnimatedUvNode, RebuildsItsPortsByMode) {
    AnimatedUvNode node;
    expectBasicPorts(node);
    property(node, "Mode").setEnum("Advanced");
    node.updateFromProperties(nullptr);
    expectAdvancedPorts(node);
    resolve(node, floatPrecision);
    node.updateFromProperties(&node);
    expectAdvancedPorts(node);
    property(node, "Mode").setEnum("Basic");
    node.updateFromProperties(nullptr);
    expectBasicPorts(node);
}

TEST(AnimatedUvNode, TakesAnUnknownModeForAdvanced) {
    AnimatedUvNode node;
    setUnknownEnum(node, "Mode");
    node.updateFromProperties(nullptr);
    expectAdvancedPorts(node);
}

TEST(AnimatedUvNode, ShowsEveryPropertyInEveryMode) {
    AnimatedUvNode node;
    for (const char* mode : {"Basic", "Advanced"}) {
        property(node, "Mode").setEnum(mode);
        node.updateFromProperties(nullptr);
        EXPECT_EQ(visibleProperties(node), allProperties);
        EXPECT_EQ(editableProperties(node), allProperties);
    }
}

TEST(AnimatedUvNode, KeepsItsCaptionWhateverItsName) {
    AnimatedUvNode node;
    EXPECT_EQ(node.caption(), "Animated Uv");
    node.setName("flipBook");
    EXPECT_EQ(node.caption(), "Animated Uv");
}

TEST(AnimatedUvNode, HasNoBinding) {
    AnimatedUvNode node;
    EXPECT_FALSE(node.generatesBinding());
    EXPECT_TRUE(bindingsOf(node).empty());
}

constexpr const char* frameLines = "float2 scale = float2( numColsRcp, numRowsRcp );\n"
                                   "float frame1 = in_frame;\n"
                                   "float frame2 = in_frame + 1.0f;\n"
                                   "float2 st1 = float2( frame1, frame1*numColsRcp );\n"
                                   "float2 st2 = float2( frame2, frame2*numColsRcp );\n"
                                   "float2 offset1 = floor( st1 );\n"
                                   "float2 offset2 = floor( st2 );\n"
                                   "out_blend = st1.x - offset1.x;\n";
constexpr const char* basicLines = "out_uv1 = ( in_uv + offset1 )*scale;\n"
                                   "out_uv2 = ( in_uv + offset2 )*scale;\n";
constexpr const char* advancedLines = "out_offset1 = offset1;\n"
                                      "out_offset2 = offset2;\n"
                                      "out_scale = scale;\n";
constexpr const char* quarterLines = "\tfloat numRowsRcp = float( 0.25 ).x;\n"
                                     "\tfloat numColsRcp = float( 0.25 ).x;\n";

void expectAnimation(AnimatedUvNode& node, ExecutionLevel level, const Texts& inputs, const Texts& outputs,
                     const std::string& code) {
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"animatedUv"});
    expectFunction(generator, 0, {"animatedUv", level, inputs, outputs, code});
    EXPECT_EQ(edges(generator), Texts{});
}

void expectAllAnimations() {
    for (const Precision& precision : precisions) {
        const std::string& word = precision.word;
        for (const unsigned connectedInputs : {0U, 1U, 2U, 3U}) {
            SCOPED_TRACE(word);
            SCOPED_TRACE(connectedInputs);
            const bool frame = (connectedInputs & 1U) != 0;
            const bool uv = (connectedInputs & 2U) != 0;
            AnimatedUvNode node;
            node.inputPort("in_frame").connected = frame;
            node.inputPort("in_uv").connected = uv;
            resolve(node, precision);
            Texts inputs;
            std::string code;
            if (frame) {
                inputs.push_back(word + " in_frame");
            } else {
                code += "\t" + word + " in_frame = " + word + "( 0 ).x;\n";
            }
            if (uv) {
                inputs.push_back(word + "2 in_uv");
            } else {
                code += "\t" + word + "2 in_uv = " + word + "( 0 ).xx;\n";
            }
            expectAnimation(node, ExecutionLevel::Vertex, inputs,
                            {word + "2 out_uv1", word + "2 out_uv2", word + " out_blend"},
                            code + quarterLines + frameLines + basicLines);
        }
        for (const bool frame : {false, true}) {
            SCOPED_TRACE(word);
            SCOPED_TRACE(frame);
            AnimatedUvNode node;
            property(node, "Mode").setEnum("Advanced");
            node.updateFromProperties(nullptr);
            node.inputPort("in_frame").connected = frame;
            resolve(node, precision);
            const std::string constant = frame ? "" : "\t" + word + " in_frame = " + word + "( 0 ).x;\n";
            expectAnimation(
                node, ExecutionLevel::Vertex, frame ? Texts{word + " in_frame"} : Texts{},
                {word + "2 out_offset1", word + "2 out_offset2", word + "2 out_scale", word + " out_blend"},
                constant + quarterLines + frameLines + advancedLines);
        }
    }
}

TEST(AnimatedUvCode, FollowsTheMode) { expectAllAnimations(); }

TEST(AnimatedUvCode, IgnoresTheLocaleOfTheProcess) {
    const CommaLocale comma;
    expectAllAnimations();
}

struct ReciprocalRow {
    std::int32_t count;
    const char* text;
};

TEST(AnimatedUvCode, PrintsTheReciprocalsAsFloats) {
    constexpr ReciprocalRow rows[] = {
        {1, "1"},
        {2, "0.5"},
        {3, "0.333333"},
        {4, "0.25"},
        {7, "0.142857"},
        {16, "0.0625"},
        {1000000, "1e-06"},
        {-2, "-0.5"},
        {0, "inf"},
        {16384, "6.10352e-05"},
        {2147483647, "4.65661e-10"},
    };
    const CommaLocale comma;
    for (const ReciprocalRow& row : rows) {
        SCOPED_TRACE(row.count);
        AnimatedUvNode node;
        node.inputPort("in_frame").connected = true;
        node.inputPort("in_uv").connected = true;
        resolve(node, floatPrecision);
        property(node, "Rows").setInteger(row.count);
        property(node, "Columns").setInteger(8);
        EXPECT_EQ(generated(node).graph->nodes.at(0)->code,
                  std::string("\tfloat numRowsRcp = float( ") + row.text +
                      " ).x;\n\tfloat numColsRcp = float( 0.125 ).x;\n" + frameLines + basicLines);
        property(node, "Rows").setInteger(8);
        property(node, "Columns").setInteger(row.count);
        EXPECT_EQ(generated(node).graph->nodes.at(0)->code,
                  std::string("\tfloat numRowsRcp = float( 0.125 ).x;\n\tfloat numColsRcp = float( ") +
                      row.text + " ).x;\n" + frameLines + basicLines);
    }
}

TEST(AnimatedUvCode, RunsAtTheExecutionLevel) {
    AnimatedUvNode node;
    resolve(node, floatPrecision);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->level, ExecutionLevel::Vertex);
    property(node, "Execution Level").setEnum("Fragment");
    EXPECT_EQ(generated(node).graph->nodes.at(0)->level, ExecutionLevel::Fragment);
    property(node, "Execution Level").setEnum("Vertex");
    EXPECT_EQ(generated(node).graph->nodes.at(0)->level, ExecutionLevel::Vertex);
    setUnknownEnum(node, "Execution Level");
    EXPECT_EQ(generated(node).graph->nodes.at(0)->level, ExecutionLevel::Fragment);
}

TEST(AnimatedUvCode, LinksItsPortsToTheFunction) {
    AnimatedUvNode node;
    Connections connections;
    const auto uv = connections.into(node, "in_uv");
    const auto frame = connections.into(node, "in_frame");
    const auto blend = connections.outOf(node, "out_blend");
    const auto second = connections.outOf(node, "out_uv2");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 4U);
    EXPECT_EQ(portLink(generator, uv), "none -> animatedUv#0.in_uv");
    EXPECT_EQ(portLink(generator, frame), "none -> animatedUv#0.in_frame");
    EXPECT_EQ(portLink(generator, blend), "animatedUv#0.out_blend -> none");
    EXPECT_EQ(portLink(generator, second), "animatedUv#0.out_uv2 -> none");
}

TEST(AnimatedUvCode, NeedsAResolvedPrecision) {
    AnimatedUvNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    EXPECT_TRUE(isUntouched(generator));
}

} // namespace
} // namespace patina
