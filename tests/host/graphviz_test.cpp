#include "host/graphviz.h"
#include "tests/host/host_checks.h"
#include "tests/host/sample_flow.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <string>

namespace patina {
namespace {

using testing::built;
using testing::connection;
using testing::corePlugins;
using testing::documentText;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

/// A material with placeholders, whose warnings are expected.
std::string graphOf(const std::string& text) {
    Warnings warnings;
    return printMaterialGraph(buildMaterial(parseMaterial(text, "m.xml"), corePlugins(), warnings));
}

std::string shaderGraphOf(const std::string& body) {
    Material material = built(body);
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    return printShaderGraph(material, flow, placeInStages(material, flow));
}

void expectPiece(const std::string& text, const std::string& piece) {
    EXPECT_NE(text.find(piece), std::string::npos) << piece << "\nin: " << text;
}

std::size_t count(const std::string& text, const std::string& piece) {
    std::size_t found = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
        ++found;
    }
    return found;
}

const std::string header =
    "\tgraph [rankdir=LR, nodesep=0.3, ranksep=0.8, pad=0.4, bgcolor=\"#ffffff\", labelloc=t, "
    "fontname=\"Helvetica\", fontsize=20, label=";
const std::string defaults =
    "];\n"
    "\tnode [shape=box, style=\"rounded,filled\", margin=0.04, penwidth=1.2, fontname=\"Helvetica\", "
    "fontsize=11];\n"
    "\tedge [arrowsize=0.6, penwidth=1.4, fontname=\"Helvetica\", fontsize=8];\n\n";
const std::string table = "[label=<<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">"
                          "<TR><TD COLSPAN=\"2\">";
const std::string result = "</TABLE>>, fillcolor=\"#2f3640\", color=\"#2f3640\", fontcolor=\"#ffffff\"];\n";

TEST(MaterialGraph, ShowsNodesWithoutPorts) {
    expectPiece(graphOf(documentText(node("x", "Strange"))), "x</FONT></TD></TR></TABLE>>");
}

TEST(MaterialGraph, ShowsNodesPortsAndConnections) {
    const std::string text = printMaterialGraph(
        built(node("wear", "CoreVertexColour") + maths("m", "Invert") +
              connection("wear", "out_colour", "m", "in_value1") + output("colour", "m", "out_value")));
    EXPECT_EQ(text, "digraph \"Sample\" {\n" + header + "\"Sample\"" + defaults + "\tn0 " + table +
                        "<B>VertexColour</B><BR/><FONT POINT-SIZE=\"9\">wear</FONT></TD></TR><HR/>"
                        "<TR><TD></TD><TD PORT=\"o0\" ALIGN=\"RIGHT\">colour</TD></TR></TABLE>>, "
                        "fillcolor=\"#ffccffe6\", color=\"#997a99ff\", fontcolor=\"#000000ff\", "
                        "tooltip=\"CoreVertexColour wear\"];\n"
                        "\tn1 " +
                        table +
                        "<B>Invert</B><BR/><FONT POINT-SIZE=\"9\">Maths \xC2\xB7 m</FONT></TD></TR><HR/>"
                        "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">in</TD>"
                        "<TD PORT=\"o0\" ALIGN=\"RIGHT\">out</TD></TR></TABLE>>, "
                        "fillcolor=\"#ff8080e6\", color=\"#994d4dff\", fontcolor=\"#000000ff\", "
                        "tooltip=\"CoreMaths m\"];\n"
                        "\tmaterial " +
                        table +
                        "<B>Sample</B><BR/><FONT POINT-SIZE=\"9\">material</FONT></TD></TR><HR/>"
                        "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">colour</TD><TD></TD></TR>" +
                        result +
                        "\tn0:o0:e -> n1:i0:w [color=\"#997a99ff\"];\n"
                        "\tn1:o0:e -> material:i0:w [color=\"#994d4dff\"];\n"
                        "}\n");
}

TEST(MaterialGraph, ShowsAPlaceholderDashedWithThePortsThatAreConnected) {
    const std::string text = graphOf(documentText(
        node("fur", "StudioFur") + maths("m", "Invert") + maths("noise", "Frac") +
        connection("fur", "out_length", "m", "in_value1") +
        connection("noise", "out_value", "fur", "in_noise") + output("alpha", "fur", "out_alpha")));
    expectPiece(text, "<B>Default?</B><BR/><FONT POINT-SIZE=\"9\">Default \xC2\xB7 fur</FONT></TD></TR><HR/>"
                      "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">in_noise</TD>"
                      "<TD PORT=\"o0\" ALIGN=\"RIGHT\">out_length</TD></TR>"
                      "<TR><TD></TD><TD PORT=\"o1\" ALIGN=\"RIGHT\">out_alpha</TD></TR></TABLE>>, "
                      "fillcolor=\"#ffffffe6\", color=\"#999999ff\", fontcolor=\"#ff0000ff\", tooltip=");
    expectPiece(text, "\", style=\"rounded,filled,dashed\"];\n");
    EXPECT_EQ(count(text, "dashed"), 1U);
    expectPiece(text, "\tn0:o0:e -> n1:i0:w [");
    expectPiece(text, "\tn2:o0:e -> n0:i0:w [");
    expectPiece(text, "\tn0:o1:e -> material:i0:w [");
}

TEST(MaterialGraph, ShowsReferencesDotted) {
    const std::string text = printMaterialGraph(
        built(node("a", "CoreTexture") + node("b", "CoreTexture", property("Reference", "node", "a"))));
    expectPiece(text, "\tn1 -> n0 [style=dotted, constraint=false, arrowhead=vee, color=\"#8a8a8a\", "
                      "fontcolor=\"#8a8a8a\", label=\"Reference\"];\n");
    expectPiece(text, "fontcolor=\"#999999ff\", tooltip=\"CoreTexture b\"]"); // greyed by the node
    EXPECT_EQ(text.find("material"), std::string::npos) << "without outputs there is nothing to feed";
}

TEST(MaterialGraph, EscapesEveryText) {
    const std::string text = graphOf(
        "<material version=\"1\" name=\"A &amp; B\">"
        "<node id=\"a\\N&lt;b>\" type=\"CoreTexture\">"
        "<property name=\"Name\" kind=\"string\" value=\"&quot;\\G&quot; &lt;B>\xC3\xA9&#10;two\"/>"
        "<property name=\"Description\" kind=\"string\" value=\"say &quot;\\N&quot; &amp;amp; \\\"/></node>"
        "<output name=\"colour\" source=\"a\\N&lt;b>\" port=\"out_colour\"/></material>");
    expectPiece(text, "digraph \"A &amp; B\" {\n");
    expectPiece(text, "<B>&quot;\\\\G&quot; &lt;B&gt;\xC3\xA9 two</B>");
    expectPiece(text, ">a\\\\N&lt;b&gt;</FONT>");
    expectPiece(text, "tooltip=\"CoreTexture a\\\\\\\\N<b>: say &quot;\\\\\\\\N&quot; &amp;amp; \\\\\\\\\"]");
}

TEST(MaterialGraph, ShowsPicturesBetweenTitleAndPorts) {
    const std::string text = printMaterialGraph(
        built(node("a", "CoreUv") + maths("m", "Invert") + output("colour", "m", "out_value")),
        {{"a & b.png", ""}, "whole.png"});
    const std::string cell = "<TR><TD COLSPAN=\"2\" FIXEDSIZE=\"TRUE\" WIDTH=\"96\" HEIGHT=\"96\">"
                             "<IMG SCALE=\"TRUE\" SRC=\"";
    expectPiece(text, "a</FONT></TD></TR>" + cell + "a &amp; b.png\"/></TD></TR><HR/>");
    expectPiece(text, "material</FONT></TD></TR>" + cell + "whole.png\"/></TD></TR><HR/>");
    EXPECT_EQ(count(text, "<IMG"), 2U) << "a node without a picture has none";
}

TEST(MaterialGraph, IsDenseWhereThatIsWanted) {
    const std::string text = printMaterialGraph(built(node("a", "CoreUv") + output("colour", "a", "read")),
                                                {{"a.png"}, "whole.png", true});
    const std::string cell = "<TD COLSPAN=\"2\" FIXEDSIZE=\"TRUE\" WIDTH=\"56\" HEIGHT=\"56\"><IMG";
    EXPECT_EQ(count(text, cell), 2U) << text;
    expectPiece(text, "\tgraph [rankdir=LR, nodesep=0.1, ranksep=0.4, pad=0.4, ");
}

TEST(MaterialGraph, ReplacesWhatIsNoUtf8AndNoColour) {
    Material material = built(node("u", "CoreUv"));
    material.items[0].node->setName("caf\xE9\x01");
    material.items[0].node->bodyColour = {-1.0F, 2.0F, std::numeric_limits<float>::quiet_NaN(), 0.5F};
    const std::string text = printMaterialGraph(material);
    expectPiece(text, "<B>caf? </B>");
    expectPiece(text, "fillcolor=\"#00ff0080\"");
    // UTF-8, but no character of XML, as which labels are read
    material.items[0].node->setName("a\xEF\xBF\xBE");
    expectPiece(printMaterialGraph(material), "<B>a\?\?\?</B>");
}

TEST(MaterialGraph, NamesTheNodeWhoseCaptionFails) {
    class Speechless final : public MaterialNode {
    public:
        Speechless() : MaterialNode("Speechless") {}
        std::string caption() const override { throw ShaderError("no words"); }
        void generateCode(GraphGenerator& /*generator*/) override {}
    };
    Material material = built(node("u", "CoreUv"));
    material.items[0].node = std::make_shared<Speechless>();
    testing::expectErrorAt(testing::hostErrorOf([&] { printMaterialGraph(material); }), 2,
                           {"node \"u\" (\"Speechless\"): no words"});
}

TEST(ShaderGraph, ShowsBothProgramsWithTypesAndInterpolants) {
    const std::string text =
        shaderGraphOf(node("uv", "CoreUv", property("Name", "string", "map1")) +
                      node("paint", "CoreTexture", property("Name", "string", "Paint")) +
                      connection("uv", "read", "paint", "in_uv") + output("colour", "paint", "out_colour"));
    EXPECT_EQ(text,
              "digraph \"Sample\" {\n" + header + "\"Sample, shader\"" + defaults +
                  "\tsubgraph cluster_vertex {\n"
                  "\t\tgraph [label=\"Vertex program\", labeljust=l, style=\"rounded,filled\", "
                  "fillcolor=\"#eef4fc\", color=\"#9db8da\", fontsize=15];\n"
                  "\t\ta0 " +
                  table +
                  "<B>map1</B><BR/><FONT POINT-SIZE=\"9\">attribute float2</FONT></TD></TR><HR/>"
                  "<TR><TD></TD><TD PORT=\"o0\" ALIGN=\"RIGHT\">read</TD></TR></TABLE>>, "
                  "fillcolor=\"#e3d5f2\", color=\"#80619f\"];\n"
                  "\t}\n"
                  "\tsubgraph cluster_fragment {\n"
                  "\t\tgraph [label=\"Fragment program\", labeljust=l, style=\"rounded,filled\", "
                  "fillcolor=\"#fdf3ea\", color=\"#deb58c\", fontsize=15];\n"
                  "\t\tu1 " +
                  table +
                  "<B>Paint</B><BR/><FONT POINT-SIZE=\"9\">uniform sampler2D</FONT></TD></TR><HR/>"
                  "<TR><TD></TD><TD PORT=\"o0\" ALIGN=\"RIGHT\">read</TD></TR></TABLE>>, "
                  "fillcolor=\"#d3ecce\", color=\"#5f9455\"];\n"
                  "\t\tf2 " +
                  table +
                  "<B>Paint</B><BR/><FONT POINT-SIZE=\"9\">textureCode \xC2\xB7 paint</FONT></TD></TR><HR/>"
                  "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">in_uv</TD>"
                  "<TD PORT=\"o0\" ALIGN=\"RIGHT\">out_colour</TD></TR>"
                  "<TR><TD PORT=\"i1\" ALIGN=\"LEFT\">in_sampler</TD><TD></TD></TR></TABLE>>, "
                  "fillcolor=\"#fbd9b8\", color=\"#b07a42\"];\n"
                  "\t\tmaterial " +
                  table +
                  "<B>Sample</B><BR/><FONT POINT-SIZE=\"9\">material</FONT></TD></TR><HR/>"
                  "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">colour</TD><TD></TD></TR>" +
                  result +
                  "\t}\n"
                  "\ta0:o0:e -> f2:i0:w [label=\"float2 TEXCOORD0.xy\", color=\"#c0392b\", "
                  "fontcolor=\"#c0392b\", penwidth=2];\n"
                  "\tu1:o0:e -> f2:i1:w [label=\"sampler2D\", color=\"#5a6270\", "
                  "fontcolor=\"#5a6270\"];\n"
                  "\tf2:o0:e -> material:i0:w [label=\"half3\", color=\"#5a6270\", "
                  "fontcolor=\"#5a6270\"];\n"
                  "}\n");
}

/// A scalar uniform that a vertex function and a fragment function read.
const std::string shared =
    node("c", "CoreConstant", property("Constant Type", "enum", "Scalar") + property("Name", "string", "S")) +
    maths("v", "Invert", "Vertex") + maths("f", "Multiply", "Fragment") +
    connection("c", "read", "v", "in_value1") + connection("v", "out_value", "f", "in_value1") +
    connection("c", "read", "f", "in_value2") + output("colour", "f", "out_value");

TEST(ShaderGraph, PutsWhatBothProgramsReadOutsideOfBoth) {
    const std::string text = shaderGraphOf(shared);
    EXPECT_EQ(count(text, "uniform half"), 1U) << text;
    EXPECT_LT(text.find("uniform half"), text.find("cluster_vertex"));
}

TEST(ShaderGraph, DrawsAFunctionInBothProgramsWhereBothRunIt) {
    const std::string text = shaderGraphOf(
        node("c", "CoreConstant", property("Constant Type", "enum", "Scalar")) + maths("both", "Invert") +
        maths("v", "Invert", "Vertex") + maths("f", "Multiply", "Fragment") +
        connection("c", "read", "both", "in_value1") + connection("both", "out_value", "v", "in_value1") +
        connection("v", "out_value", "f", "in_value1") + connection("both", "out_value", "f", "in_value2") +
        output("colour", "f", "out_value"));
    EXPECT_EQ(count(text, "mathsCode \xC2\xB7 both"), 2U) << text;
    // each program computes it for itself, so that only the vertex function's value crosses
    EXPECT_EQ(count(text, "TEXCOORD"), 1U) << text;
}

TEST(ShaderGraph, DrawsAParameterOfOneNameOnce) {
    const std::string text =
        shaderGraphOf(node("uv", "CoreUv") + node("a", "CoreTexture") +
                      node("b", "CoreTexture", property("Reference", "node", "a")) + maths("m", "Multiply") +
                      connection("uv", "read", "a", "in_uv") + connection("uv", "read", "b", "in_uv") +
                      connection("a", "out_colour", "m", "in_value1") +
                      connection("b", "out_colour", "m", "in_value2") + output("colour", "m", "out_value"));
    EXPECT_EQ(count(text, "uniform sampler2D"), 1U) << text;
    EXPECT_EQ(count(text, "label=\"sampler2D\""), 2U) << text;
}

TEST(ShaderGraph, ShowsConversionsAndAlpha) {
    const std::string text =
        shaderGraphOf(node("s", "CoreConstant", property("Constant Type", "enum", "Scalar")) +
                      node("split", "CoreSwizzle") + connection("s", "read", "split", "in_vec") +
                      output("colour", "split", "out_x") + output("alpha", "s", "read"));
    EXPECT_EQ(count(text, "<B>promoteAndSplat</B><BR/><FONT POINT-SIZE=\"9\">conversion</FONT>"), 1U) << text;
    EXPECT_EQ(count(text, "fillcolor=\"#ececec\", color=\"#8a8a8a\"];"), 1U) << text;
    EXPECT_EQ(count(text, "[label=\"half3\""), 1U) << text;
    expectPiece(text, "<TR><TD PORT=\"i0\" ALIGN=\"LEFT\">colour</TD><TD></TD></TR>"
                      "<TR><TD PORT=\"i1\" ALIGN=\"LEFT\">alpha</TD><TD></TD></TR>");
    expectPiece(text, " -> material:i1:w [label=\"half\"");
}

TEST(ShaderGraph, DrawsWhatTheFrameworkAdds) {
    const std::string text = shaderGraphOf(node("c", "CoreConstant") + output("colour", "c", "read") +
                                           output("emissive", "c", "read"));
    EXPECT_EQ(count(text, "<B>the framework</B>"), 3U) << text;
    expectPiece(text, "<B>the framework</B><BR/><FONT POINT-SIZE=\"9\">surfaceCode</FONT>");
    expectPiece(text, "uniform float3[3]");
}

TEST(Graphs, AreTheSameInEveryLocale) {
    const std::string materialGraph = printMaterialGraph(built(shared));
    const std::string shaderGraph = shaderGraphOf(shared);
    const testing::CommaLocale comma;
    EXPECT_EQ(printMaterialGraph(built(shared)), materialGraph);
    EXPECT_EQ(shaderGraphOf(shared), shaderGraph);
}

TEST(ShaderGraph, DrawsWhatSeveralNodesDeclare) {
    testing::Flow flow;
    const ShaderType float3 = {ComponentType::Float, 3, 1, 1};
    const std::size_t first = flow.varying("normal", float3);
    const std::size_t second = flow.varying("normal", float3);
    const StagedShader stages = flow.place(flow.function(ExecutionLevel::Fragment, {first, second}, float3));
    const std::string graph = printShaderGraph(flow.material, flow.flow, stages);
    EXPECT_EQ(count(graph, "label=\"float3 TEXCOORD0.xyz\""), 2U) << graph;
}

} // namespace
} // namespace patina
