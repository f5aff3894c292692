// Any value of a material as a material of its own.

#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::expectErrorAt;
using testing::exportedFrom;
using testing::hostErrorOf;
using testing::maths;
using testing::node;
using testing::output;
using testing::parsed;
using testing::property;

Material shown(const std::string& body, const std::string& nodeId, const std::string& port) {
    Warnings warnings;
    Material material =
        buildMaterial(showOutput(parsed(body), nodeId, port), testing::corePlugins(), warnings);
    EXPECT_TRUE(warnings.empty());
    return material;
}

std::string fragmentOf(const std::string& body, const std::string& nodeId, const std::string& port) {
    Material material = shown(body, nodeId, port);
    return exportedFrom(material, {.showValue = true}).fragmentProgram.content;
}

/// The last statement of `main`, which writes the colour.
std::string lastStatement(const std::string& program) {
    const std::size_t end = program.rfind(";\n}\n");
    const std::size_t begin = program.rfind('\t', end);
    return program.substr(begin + 1, end - begin);
}

std::string constant(const std::string& type, const std::string& properties = {}) {
    return node("c", "CoreConstant",
                property("Name", "string", "C") + property("Constant Type", "enum", type) + properties);
}

struct WidthRow {
    std::string body;
    const char* node;
    const char* port;
    const char* declared; ///< in the fragment program
    const char* statement;
};

TEST(ShowOutput, TakesEveryWidth) {
    const auto width = [](const char* count) {
        return constant("Vector", property("Component Count", "integer", count));
    };
    const WidthRow rows[] = {
        {constant("Scalar"), "c", "read", "uniform half C : register( c0 );",
         "colour = float4( C.xxx, 1.0 );"},
        {width("2"), "c", "read", "uniform half2 C : register( c0 );", "colour = float4( C, 0.0, 1.0 );"},
        {width("3"), "c", "read", "uniform half3 C : register( c0 );", "colour = float4( C, 1.0 );"},
        {width("4"), "c", "read", "uniform half4 C : register( c0 );", "colour = float4( C );"},
        {node("uv", "CoreUv"), "uv", "read", "half2 interpolant0 : TEXCOORD0",
         "colour = float4( Uv, 0.0, 1.0 );"},
    };
    for (const WidthRow& row : rows) {
        const std::string program = fragmentOf(row.body, row.node, row.port);
        EXPECT_NE(program.find(row.declared), std::string::npos) << row.declared << " in " << program;
        EXPECT_EQ(lastStatement(program), row.statement);
    }
}

TEST(ShowOutput, ConnectsAPortThatNothingReads) {
    const std::string body = node("uv", "CoreUv") +
                             node("t", "CoreTexture", property("Alpha", "bool", "Yes")) +
                             connection("uv", "read", "t", "in_uv") + output("colour", "t", "out_colour");
    EXPECT_EQ(lastStatement(fragmentOf(body, "t", "out_alpha")), "colour = float4( t_out_alpha.xxx, 1.0 );");
    Material material = shown(body, "t", "out_alpha");
    EXPECT_TRUE(material.items.back().node->outputPort("out_alpha").connected);
    EXPECT_FALSE(material.items.back().node->outputPort("out_colour").connected);
}

TEST(ShowOutput, TakesTheFirstPortForNone) {
    const std::string body = node("v", "CoreVertexColour", property("Colour Type", "enum", "Component")) +
                             output("colour", "v", "out_blue");
    const Material material = shown(body, "v", "");
    EXPECT_EQ(material.outputs.front().record->sourcePort, "out_red");
    EXPECT_EQ(material.document.outputs.front().port, "out_red");
}

TEST(ShowOutput, NeedsNoColourAndNoWholeMaterial) {
    // the texture lacks its coordinate, "far" has a type that nobody offers, and neither feeds "b"
    const std::string body =
        maths("a", "Invert") + maths("b", "Invert") + node("t", "CoreTexture") + node("far", "NoSuchType") +
        maths("c", "Addition") + connection("a", "out_value", "b", "in_value1") +
        connection("b", "out_value", "c", "in_value1") + connection("t", "out_colour", "c", "in_value2") +
        connection("far", "out", "no such node", "in") + output("alpha", "t", "out_colour") +
        output("fog", "b", "nope");
    const MaterialDocument document = showOutput(parsed(body), "b", "out_value");
    ASSERT_EQ(document.nodes.size(), 2U);
    EXPECT_EQ(document.nodes[0].id, "a");
    EXPECT_EQ(document.nodes[1].id, "b");
    ASSERT_EQ(document.connections.size(), 1U);
    EXPECT_EQ(document.connections[0].destination, "b");
    ASSERT_EQ(document.outputs.size(), 1U);
    EXPECT_EQ(document.outputs[0].name, "colour");
    EXPECT_EQ(lastStatement(fragmentOf(body, "b", "out_value")), "colour = float4( b_out_value.xxx, 1.0 );");
}

TEST(ShowOutput, KeepsWhatANodeRefersTo) {
    const std::string body =
        node("uv", "CoreUv") +
        node("t", "CoreTexture", property("Name", "string", "Paint") + property("Reference", "node", "")) +
        node("u", "CoreTexture", property("Reference", "node", "t")) + node("s", "CoreUv") +
        connection("uv", "read", "t", "in_uv") + connection("uv", "read", "u", "in_uv");
    const MaterialDocument document = showOutput(parsed(body), "u", "out_colour");
    ASSERT_EQ(document.nodes.size(), 3U);
    EXPECT_EQ(document.nodes[1].id, "t");
    const std::string program = fragmentOf(body, "u", "out_colour");
    EXPECT_NE(program.find("uniform sampler2D Paint : TEXUNIT0;"), std::string::npos) << program;
}

TEST(ShowOutput, KeepsTheSavedValuesOfWhatIsShown) {
    const std::string scalar = property("Constant Type", "enum", "Scalar");
    const std::string body = node("a", "CoreConstant", property("Name", "string", "Wear") + scalar) +
                             node("b", "CoreConstant", property("Name", "string", "Rust") + scalar) +
                             "<binding tag=\"Wear\" kind=\"float\" default=\"0.25\"/>\n"
                             "<binding tag=\"Rust\" kind=\"float\" default=\"0.75\"/>\n";
    EXPECT_EQ(showOutput(parsed(node("other", "CoreConstant", property("Name", "string", "Wear")) + body),
                         "a", "read")
                  .bindings.size(),
              1U)
        << "one that is left out has the name too";
    const MaterialDocument document = showOutput(parsed(body), "a", "read");
    ASSERT_EQ(document.bindings.size(), 1U);
    EXPECT_EQ(document.bindings[0].name, "Wear");
    Material material = shown(body, "a", "read");
    EXPECT_NE(exportedFrom(material, {.showValue = true}).bindings.content.find("default=\"0.25\""),
              std::string::npos);
}

TEST(ShowOutput, NamesWhatThereIsToShow) {
    const std::string body = maths("a", "Invert") + maths("b", "Invert");
    expectErrorAt(hostErrorOf([&] { showOutput(parsed(body), "c", ""); }), 1,
                  {"this material has no node \"c\"; it has \"a\", \"b\""});
    expectErrorAt(hostErrorOf([&] { showOutput(parsed(""), "c", ""); }), 1,
                  {"this material has no node \"c\"; it has none"});
    expectErrorAt(hostErrorOf([&] { shown(body, "b", "read"); }), 3,
                  {"node \"b\" (\"Maths\") has no output \"read\"; it has \"out_value\""});
    std::string many;
    for (int i = 0; i < 10; ++i) {
        many += maths("n" + std::to_string(i), "Invert");
    }
    expectErrorAt(hostErrorOf([&] { showOutput(parsed(many), "n", ""); }), 1, {"\"n7\" and 2 more"});
}

TEST(ShowValue, LooksAtTheColourAlone) {
    Material material =
        testing::built(node("v", "CoreVertexColour", property("Colour Type", "enum", "Vector")) +
                       output("colour", "v", "out_colour") + output("fog", "v", "out_colour"));
    EXPECT_EQ(lastStatement(exportedFrom(material, {.showValue = true}).fragmentProgram.content),
              "colour = float4( v_out_colour );");
    Material texture = testing::built(node("uv", "CoreUv") + output("alpha", "uv", "read"));
    testing::expectErrorAt(hostErrorOf([&] { exportedFrom(texture, {.showValue = true}); }), 1,
                           {"no \"colour\" output"});
}

} // namespace
} // namespace patina
