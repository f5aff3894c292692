#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::corePlugins;
using testing::maths;
using testing::node;
using testing::output;
using testing::parsed;
using testing::property;

using Lines = std::vector<std::string>;

Lines errorsOf(const CheckReport& report) {
    Lines lines;
    for (const HostError& error : report.errors) {
        lines.emplace_back(error.what());
    }
    return lines;
}

Lines warningsOf(const CheckReport& report) {
    Lines lines;
    for (const Warning& warning : report.warnings) {
        lines.push_back(diagnosticText(warning.position, "warning", warning.text));
    }
    return lines;
}

std::string named(const std::string& name) { return property("Name", "string", name); }

TEST(CheckMaterial, HasNothingToSayOfASoundMaterial) {
    const CheckReport report = checkMaterial(
        parsed(node("c", "CoreConstant", named("Tint")) + output("colour", "c", "read")), corePlugins());
    EXPECT_EQ(errorsOf(report), Lines{});
    EXPECT_EQ(warningsOf(report), Lines{});
}

TEST(CheckMaterial, ReportsEveryErrorByLine) {
    const CheckReport report = checkMaterial(
        parsed(node("uv", "CoreUv", named("map1")) +
               node("t", "CoreTexture", named("Paint") + property("Alpha", "bool", "Perhaps")) +
               node("x", "Strange") + maths("m", "Multiply") + connection("uv", "read", "m", "in_value1") +
               connection("t", "out_colour", "m", "in_value2") + connection("m", "nope", "m", "in_value1") +
               output("alpha", "ghost", "port") + output("colour", "m", "out_value")),
        corePlugins());
    EXPECT_EQ(
        errorsOf(report),
        (Lines{"sample.xml:3: error: node \"t\": property \"Alpha\": \"Perhaps\" is not \"Yes\" or \"No\"",
               "sample.xml:3: error: node \"t\" (\"Paint\"): node \"Paint\" (CoreTexture): please attach a "
               "texture coordinate before exporting",
               "sample.xml:4: error: node \"x\" (\"Default\"): cannot export as the node \"Default\" cannot "
               "be properly created. Please either get the DLL that can load this node or replace with "
               "alternatives.",
               "sample.xml:7: error: node \"m\" (\"Maths\"): its inputs \"in_value1\" (2 components, from "
               "node \"uv\" (\"map1\")) and \"in_value2\" (3 components, from node \"t\" (\"Paint\")) have "
               "different widths; make them equal, or make one a scalar",
               "sample.xml:8: error: node \"m\" (\"Maths\") has no output \"nope\"; it has \"out_value\"",
               "sample.xml:9: error: there is no node with the id \"ghost\""}));
}

TEST(CheckMaterial, ReportsEveryCycleOnce) {
    const CheckReport report = checkMaterial(
        parsed(maths("a", "Invert") + maths("b", "Invert") + maths("c", "Invert") +
               node("r", "CoreTexture", named("R") + property("Reference", "node", "s")) +
               node("s", "CoreTexture", named("S") + property("Reference", "node", "r")) +
               connection("a", "out_value", "b", "in_value1") +
               connection("b", "out_value", "a", "in_value1") +
               connection("c", "out_value", "c", "in_value1") + output("colour", "b", "out_value")),
        corePlugins());
    int connectionCycles = 0;
    int referenceCycles = 0;
    for (const std::string& error : errorsOf(report)) {
        connectionCycles += error.find("the connections form a cycle: ") != std::string::npos ? 1 : 0;
        referenceCycles += error.find("nodes refer to one another in a cycle: ") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(connectionCycles, 2);
    EXPECT_EQ(referenceCycles, 1);
}

TEST(CheckMaterial, TellsAHundredCycles) {
    std::string body = maths("end", "Invert") + output("colour", "end", "out_value");
    for (int i = 0; i < 102; ++i) {
        const std::string id = "m" + std::to_string(i);
        body += maths(id, "Invert") + connection(id, "out_value", id, "in_value1");
    }
    int cycles = 0;
    for (const std::string& error : errorsOf(checkMaterial(parsed(body), corePlugins()))) {
        cycles += error.find("the connections form a cycle: ") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(cycles, 100);
}

TEST(CheckMaterial, ReportsWhatOnlyTheShaderShows) {
    // two names that Cg has taken, beside an error that is found earlier
    const CheckReport report = checkMaterial(
        parsed(node("a", "CoreConstant", named("half")) + node("b", "CoreConstant", named("lerp")) +
               maths("m", "Multiply") + connection("a", "read", "m", "in_value1") +
               connection("b", "read", "m", "in_value2") + output("colour", "m", "out_value") +
               output("shine", "m", "out_value")),
        corePlugins());
    EXPECT_EQ(errorsOf(report),
              (Lines{"sample.xml:2: error: node \"a\" (\"half\"): the name \"half\" is reserved in Cg or by "
                     "the shader framework; rename the node",
                     "sample.xml:3: error: node \"b\" (\"lerp\"): the name \"lerp\" is reserved in Cg or by "
                     "the shader framework; rename the node",
                     "sample.xml:8: error: there is no output \"shine\" to a material; the outputs are "
                     "\"colour\", \"alpha\", \"normal\", \"emissive\" and \"gloss\""}));
}

TEST(CheckMaterial, HoldsEveryOutputAgainstItsWidths) {
    const auto message = [](const char* line, const char* name, const char* takes, const char* given) {
        return "sample.xml:" + std::string(line) + ": error: output \"" + name + "\" takes " + takes +
               ", and node \"" + given;
    };
    const std::string two = "v2\" (\"V2\") gives \"read\" as half2";
    const std::string three = "c\" (\"C\") gives \"read\" as half3";
    const std::string one = "s\" (\"S\") gives \"read\" as half";
    const std::string nodes =
        node("c", "CoreConstant", named("C")) +
        node("s", "CoreConstant", named("S") + property("Constant Type", "enum", "Scalar")) +
        node("v2", "CoreConstant",
             named("V2") + property("Constant Type", "enum", "Vector") +
                 property("Component Count", "integer", "2"));
    EXPECT_EQ(errorsOf(checkMaterial(parsed(nodes + output("colour", "v2", "read") +
                                            output("alpha", "c", "read") + output("normal", "s", "read") +
                                            output("emissive", "v2", "read") + output("gloss", "c", "read")),
                                     corePlugins())),
              (Lines{message("5", "colour", "three components or one", two.c_str()),
                     message("6", "alpha", "one component", three.c_str()),
                     message("7", "normal", "three components", one.c_str()),
                     message("8", "emissive", "three components or one", two.c_str()),
                     message("9", "gloss", "one component", three.c_str())}));
    EXPECT_EQ(errorsOf(checkMaterial(parsed(nodes + output("colour", "s", "read") +
                                            output("alpha", "s", "read") + output("normal", "c", "read") +
                                            output("emissive", "s", "read") + output("gloss", "s", "read")),
                                     corePlugins())),
              Lines{});
}

TEST(CheckMaterial, HoldsNamesAgainstTheFrameworkOfALitMaterial) {
    const std::string nodes = node("c", "CoreConstant", named("eyePosition")) +
                              node("n", "CoreUv", named("normal")) +
                              node("t", "CoreTexture", named("Paint") + property("Alpha", "bool", "Yes")) +
                              connection("n", "read", "t", "in_uv") + maths("m", "Multiply") +
                              connection("t", "out_colour", "m", "in_value1") +
                              connection("c", "read", "m", "in_value2") + output("colour", "m", "out_value");
    EXPECT_EQ(errorsOf(checkMaterial(parsed(nodes + output("alpha", "t", "out_alpha")), corePlugins())),
              Lines{});
    EXPECT_EQ(
        errorsOf(checkMaterial(parsed(nodes + output("gloss", "t", "out_alpha")), corePlugins())),
        (Lines{"sample.xml:2: error: node \"c\" (\"eyePosition\"): uniform parameter \"eyePosition\" "
               "(half3) has the name of uniform parameter \"eyePosition\" (float3) of the framework; "
               "rename the node",
               "sample.xml:3: error: node \"n\" (\"normal\"): varying parameter \"normal\" (float2) has "
               "the name of varying parameter \"normal\" (float3) of the framework; rename the node"}));
}

TEST(CheckMaterial, ReportsEveryNodeWithConstantsThatAreNoNumbers) {
    const std::string zero = property("Rows", "integer", "0");
    const CheckReport report = checkMaterial(
        parsed(node("uv", "CoreUv", named("map1")) + node("f", "CoreAnimatedUv", zero) +
               node("g", "CoreAnimatedUv", zero) + node("t", "CoreTexture", named("Paint")) +
               connection("uv", "read", "f", "in_uv") + connection("f", "out_uv1", "g", "in_uv") +
               connection("f", "out_blend", "g", "in_frame") + connection("g", "out_uv1", "t", "in_uv") +
               output("colour", "t", "out_colour")),
        corePlugins());
    ASSERT_EQ(report.errors.size(), 2U);
    EXPECT_EQ(report.errors[0].position().line, 3);
    EXPECT_EQ(report.errors[1].position().line, 4);
}

TEST(CheckMaterial, WarnsOfWhatAnExportLetsPass) {
    const CheckReport report = checkMaterial(
        parsed(node("c", "CoreConstant") + node("e", "CoreConstant", named("")) + maths("f", "Fresnel") +
               maths("unused", "Invert") + node("r", "CoreTexture", named("Base")) +
               node("t", "CoreTexture", named("Layer") + property("Reference", "node", "r")) +
               node("uv", "CoreUv", named("map1")) + connection("uv", "read", "t", "in_uv") +
               connection("uv", "read", "r", "in_uv") + connection("c", "read", "f", "in_power") +
               output("colour", "t", "out_colour") + output("alpha", "f", "out_value")),
        corePlugins());
    EXPECT_EQ(
        warningsOf(report),
        (Lines{"sample.xml:2: warning: node \"c\" (\"Constant\"): its binding is called \"Constant\", like "
               "that of every node of its type; set the \"Name\"",
               "sample.xml:3: warning: node \"e\" (\"\"): its binding has no name; set the \"Name\"",
               "sample.xml:3: warning: node \"e\" (\"\"): nothing that leaves the material needs this node; "
               "connect it or remove it",
               "sample.xml:4: warning: node \"f\" (\"Maths\"): input \"in_facing\" is not connected, and has "
               "no default to set",
               "sample.xml:5: warning: node \"unused\" (\"Maths\"): nothing that leaves the material needs "
               "this node; connect it or remove it"}));
}

TEST(CheckMaterial, FailsOnlyWhereNothingCanStandIn) {
    const CheckReport report = checkMaterial(parsed(node("a", "Strange")), PluginSet());
    ASSERT_EQ(report.errors.size(), 1U);
    testing::expectErrorAt(report.errors[0].what(), 2, {"\"Strange\"", "load the Core plug-in"});
}

// Several errors at once

TEST(CheckMaterial, ReportsTheErrorsOfAllSteps) {
    const std::string nodes =
        node("a", "CoreConstant", named("Tint")) + node("b", "CoreConstant", named("Tint")) +
        node("c", "CoreConstant", named("float")) + maths("m", "Multiply") + maths("n", "Multiply") +
        connection("a", "read", "m", "in_value1") + connection("b", "read", "m", "in_value2") +
        connection("m", "out_value", "n", "in_value1") + connection("c", "read", "n", "in_value2");
    const Lines expected = {
        "sample.xml:1: error: this material has no \"colour\" output; connect one with an <output> element",
        "sample.xml:3: error: node \"b\" (\"Tint\"): its binding has the name of that of node \"a\" "
        "(\"Tint\"); rename one of the nodes",
        "sample.xml:4: error: node \"c\" (\"float\"): the name \"float\" is reserved in Cg or by the shader "
        "framework; rename the node",
        "sample.xml:11: error: there is no output \"fog\" to a material; the outputs are \"colour\", "
        "\"alpha\", \"normal\", \"emissive\" and \"gloss\""};
    EXPECT_EQ(errorsOf(checkMaterial(parsed(nodes + output("fog", "n", "out_value")), corePlugins())),
              expected);
    // which nodes the missing output will need is not known
    EXPECT_EQ(errorsOf(checkMaterial(parsed(nodes + output("fog", "a", "read")), corePlugins())), expected);
}

TEST(CheckMaterial, ReportsErrorsOfTheShaderBesideAFailingNode) {
    const CheckReport report = checkMaterial(
        parsed(node("t", "CoreTexture", named("Paint")) + node("c", "CoreConstant", named("float")) +
               node("x", "Strange") + maths("m", "Lerp") + connection("t", "out_colour", "m", "in_value1") +
               connection("c", "read", "m", "in_value2") + connection("x", "any", "m", "in_blend") +
               output("colour", "m", "out_value")),
        corePlugins());
    EXPECT_EQ(
        errorsOf(report),
        (Lines{"sample.xml:2: error: node \"t\" (\"Paint\"): node \"Paint\" (CoreTexture): please attach "
               "a texture coordinate before exporting",
               "sample.xml:3: error: node \"c\" (\"float\"): the name \"float\" is reserved in Cg or "
               "by the shader framework; rename the node",
               "sample.xml:4: error: node \"x\" (\"Default\"): cannot export as the node \"Default\" "
               "cannot be properly created. Please either get the DLL that can load this node or "
               "replace with alternatives."}));
}

CheckReport checkText(const std::string& body) {
    const testing::TemporaryDirectory directory;
    const auto file = directory.write("m.xml", testing::documentText(body));
    CheckReport report = checkFile(file, corePlugins());
    for (HostError& error : report.errors) {
        error = HostError({"m.xml", error.position().line}, error.text());
    }
    for (Warning& warning : report.warnings) {
        warning.position.file = "m.xml";
    }
    return report;
}

TEST(CheckFile, MissesNothingThatAnErrorTookAway) {
    const std::string coordinate = node("uv", "CoreUv", named("map1"));
    const std::string texture =
        node("t", "CoreTexture", named("Paint")) + output("colour", "t", "out_colour");
    const struct {
        std::string body;
        std::string error;
    } rows[] = {
        // the texture would be without a coordinate, or the coordinate without a reader
        {"<node id=\"uv\"/>\n" + texture + connection("uv", "read", "t", "in_uv"),
         "m.xml:2: error: the <node> element has no \"type\" attribute"},
        {"<node id=\"uv\" type=\"CoreUv\" version=\"new\"/>\n" + texture +
             connection("uv", "read", "t", "in_uv"),
         "m.xml:2: error: \"new\" is no version number"},
        {coordinate + texture + "<connection source=\"uv\" destination=\"t\" input=\"in_uv\"/>\n",
         "m.xml:5: error: the <connection> element has no \"output\" attribute"},
        {coordinate + texture + connection("uv", "nope", "t", "in_uv"),
         "m.xml:5: error: node \"uv\" (\"map1\") has no output \"nope\"; it has \"read\""},
        {texture + connection("ghost", "read", "t", "in_uv"),
         "m.xml:4: error: there is no node with the id \"ghost\""},
        // the colour would be missing
        {node("c", "CoreConstant", named("Tint")) + output("colour", "c", "nope"),
         "m.xml:3: error: node \"c\" (\"Tint\") has no output \"nope\"; it has \"read\""},
        {output("colour", "ghost", "read"), "m.xml:2: error: there is no node with the id \"ghost\""},
        {node("c", "CoreConstant", named("Tint")) + "<output source=\"c\" port=\"read\"/>\n",
         "m.xml:3: error: the <output> element has no \"name\" attribute"},
        {node("c", "CoreConstant", named("Tint")) + "<output name=\"colour\" port=\"read\"/>\n",
         "m.xml:3: error: the <output> element has no \"source\" attribute"},
        {"<node id=\"c\"/>\n" + output("colour", "c", "read"),
         "m.xml:2: error: the <node> element has no \"type\" attribute"},
        // the second node has the port
        {node("c", "CoreConstant", named("Tint")) + node("c", "CoreMaths") +
             output("colour", "c", "out_value"),
         "m.xml:3: error: there is another node with the id \"c\""},
        // the function has the input
        {node("m", "CoreMaths", property("Function", "enum", "Lerrp")) +
             node("c", "CoreConstant", named("Tint")) + connection("c", "read", "m", "in_blend") +
             output("colour", "m", "out_value"),
         "m.xml:2: error: node \"m\" (\"Maths\"): cannot copy property \"Function\" as enum \"Lerrp\" is not "
         "a known enum value"},
        {node("m", "CoreMaths", "<property name=\"Function\" kind=\"choice\" value=\"Lerp\"/>") +
             node("c", "CoreConstant", named("Tint")) + connection("c", "read", "m", "in_blend") +
             output("colour", "m", "out_value"),
         "m.xml:2: error: property \"Function\" is of the unknown kind \"choice\"; the kinds are bool, "
         "integer, float, string, colour, enum and node"},
        // the node would go by the name of its type, as the other does
        {node("a", "CoreConstant", property("Name", "string", "Constant")) +
             node("b", "CoreConstant", property("Name", "text", "Gloss")) + maths("m", "Multiply") +
             connection("a", "read", "m", "in_value1") + connection("b", "read", "m", "in_value2") +
             output("colour", "m", "out_value"),
         "m.xml:3: error: property \"Name\" is of the unknown kind \"text\"; the kinds are bool, integer, "
         "float, string, colour, enum and node"},
        {node("b", "CoreConstant",
              property("Name", "text", "Gloss") + property("Description", "string", "What shines")) +
             node("a", "CoreConstant", property("Name", "string", "Constant")) + maths("m", "Multiply") +
             connection("a", "read", "m", "in_value1") + connection("b", "read", "m", "in_value2") +
             output("colour", "m", "out_value"),
         "m.xml:2: error: property \"Name\" is of the unknown kind \"text\"; the kinds are bool, integer, "
         "float, string, colour, enum and node"},
        {node("b", "CoreConstant", property("Name", "integer", "7")) +
             node("a", "CoreConstant", property("Name", "string", "Constant")) + maths("m", "Multiply") +
             connection("a", "read", "m", "in_value1") + connection("b", "read", "m", "in_value2") +
             output("colour", "m", "out_value"),
         "m.xml:2: error: node \"b\" (\"Constant\"): cannot copy property \"Name\" from property with "
         "non-matching type"},
        {node("t", "CoreTexture", named("Paint") + property("Colour Type", "enum", "Compnent")) +
             node("uv", "CoreUv", named("map1")) + maths("m", "Invert") +
             connection("uv", "read", "t", "in_uv") + connection("t", "out_red", "m", "in_value1") +
             output("colour", "m", "out_value"),
         "m.xml:2: error: node \"t\" (\"Paint\"): cannot copy property \"Colour Type\" as enum \"Compnent\" "
         "is not a "
         "known enum value"},
        // the saved values may be of the node that is not as it should be
        {node("c", "CoreConstant", named("Tint") + property("Constant Type", "enum", "Tensor")) +
             output("colour", "c", "read") + "<binding tag=\"Gone\" kind=\"float\" default=\"1\"/>\n",
         "m.xml:2: error: node \"c\" (\"Tint\"): cannot copy property \"Constant Type\" as enum \"Tensor\" "
         "is "
         "not a known enum value"},
        // the reference would be to a node of another type
        {"<node id=\"r\"/>\n" + coordinate + node("t", "CoreTexture", property("Reference", "node", "r")) +
             connection("uv", "read", "t", "in_uv") + output("colour", "t", "out_colour"),
         "m.xml:2: error: the <node> element has no \"type\" attribute"},
        // the cycle's inputs would lack their source
        {maths("a", "Invert") + maths("b", "Invert") + connection("a", "out_value", "b", "in_value1") +
             connection("b", "out_value", "a", "in_value1") + output("colour", "b", "out_value"),
         "m.xml:3: error: the connections form a cycle: node \"b\" (\"Maths\") -> node \"a\" (\"Maths\") -> "
         "node \"b\" (\"Maths\")"},
        // the inputs' widths would not convert either
        {coordinate +
             node("c", "CoreConstant",
                  named("Tint") + property("Constant Type", "enum", "Vector") +
                      property("Component Count", "integer", "3")) +
             maths("m", "Multiply") + connection("uv", "read", "m", "in_value1") +
             connection("c", "read", "m", "in_value2") + output("colour", "m", "out_value"),
         "m.xml:6: error: node \"m\" (\"Maths\"): its inputs \"in_value1\" (2 components, from node \"uv\" "
         "(\"map1\")) and \"in_value2\" (3 components, from node \"c\" (\"Tint\")) have different widths; "
         "make them equal, or make one a scalar"},
    };
    for (const auto& [body, error] : rows) {
        const CheckReport report = checkText(body);
        EXPECT_EQ(errorsOf(report), Lines{error}) << body;
        for (const std::string& warning : warningsOf(report)) {
            EXPECT_NE(warning.find("its binding is called \"Constant\""), std::string::npos) << warning;
        }
    }
}

TEST(CheckFile, MissesTheColourBesideAnotherOutput) {
    const std::string missing = "m.xml:1: error: this material has no \"colour\" output; connect one with an "
                                "<output> element";
    const std::string tint = node("c", "CoreConstant", named("Tint"));
    EXPECT_EQ(errorsOf(checkText(tint + "<output name=\"alpha\" port=\"read\"/>\n")),
              (Lines{missing, "m.xml:3: error: the <output> element has no \"source\" attribute"}));
    EXPECT_EQ(errorsOf(checkText(tint + output("emissive", "c", "read"))), Lines{missing}) << "lit";
}

TEST(CheckFile, ReportsRefusedSavedBindingsTogether) {
    const CheckReport report =
        checkText(node("c", "CoreConstant", named("Tint")) + output("colour", "c", "read") +
                  "<binding tag=\"Tint\" kind=\"float\" default=\"bright\"/>\n"
                  "<binding tag=\"Paint\" kind=\"texture\" uiunittype=\"inches\"/>\n");
    EXPECT_EQ(errorsOf(report),
              (Lines{"m.xml:4: error: binding \"Tint\": the default \"bright\" is no list of finite numbers",
                     "m.xml:5: error: binding \"Paint\": \"inches\" is no unit type; they are raw, linear, "
                     "angular and srgbcolour"}));
}

TEST(CheckFile, CallsNoNodeUnusedWhenAnOutputIsRefused) {
    const CheckReport report =
        checkText(node("c", "CoreConstant", named("Tint")) + output("colour", "lamp", "read"));
    EXPECT_EQ(errorsOf(report), Lines{"m.xml:3: error: there is no node with the id \"lamp\""});
    EXPECT_TRUE(report.warnings.empty());
}

TEST(CheckFile, ReportsWhatIsWrongBesideARefusedProperty) {
    const std::string refusedType = property("Constant Type", "enum", "Tensor");
    EXPECT_EQ(
        errorsOf(checkText(node("a", "CoreConstant",
                                named("Tint") + refusedType + property("Type", "string", "CoreConstant") +
                                    property("Foo", "bool", "Yes")) +
                           node("b", "CoreConstant", named("Tint")) + maths("m", "Multiply") +
                           connection("a", "read", "m", "in_value1") +
                           connection("b", "read", "m", "in_value2") + output("colour", "m", "out_value"))),
        (Lines{"m.xml:2: error: node \"a\" (\"Tint\"): cannot copy property \"Constant Type\" as enum "
               "\"Tensor\" "
               "is not a known enum value",
               "m.xml:3: error: node \"b\" (\"Tint\"): its binding has the name of that of node \"a\" "
               "(\"Tint\"); rename one of the nodes"}));
}

TEST(CheckFile, ReportsWhatHasNoNode) {
    EXPECT_EQ(errorsOf(checkText(
                  "<node type=\"CoreUv\"/>\n<output name=\"colour\" source=\"ghost\" port=\"\"/>\n")),
              (Lines{"m.xml:2: error: the <node> element has no \"id\" attribute",
                     "m.xml:3: error: there is no node with the id \"ghost\""}));
    EXPECT_EQ(
        errorsOf(checkText(node("c", "CoreConstant", named("Tint")) + output("colour", "c", "") +
                           node("x", "Strange") + output("alpha", "x", ""))),
        (Lines{"m.xml:4: error: node \"x\" (\"Default\"): cannot export as the node \"Default\" cannot be "
               "properly created. Please either get the DLL that can load this node or replace with "
               "alternatives."}));
    // all but one connection of a cycle stay
    EXPECT_EQ(errorsOf(checkText(maths("a", "Invert") + maths("b", "Invert") + maths("c", "Invert") +
                                 connection("a", "out_value", "b", "in_value1") +
                                 connection("b", "out_value", "c", "in_value1") +
                                 connection("b", "out_value", "a", "in_value1") +
                                 output("colour", "c", "out_value"))),
              (Lines{"m.xml:3: error: the connections form a cycle: node \"b\" (\"Maths\") -> node \"a\" "
                     "(\"Maths\") -> node \"b\" (\"Maths\")"}));
}

TEST(CheckMaterial, ReportsANodeThatRefusesAllThatIsLeft) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "hostile_nodes.so");
    const CheckReport report =
        checkMaterial(parsed(node("h", "ThrowingLoad", property("Name", "integer", "7")) +
                             output("colour", "h", "out_value")),
                      plugins);
    ASSERT_EQ(report.errors.size(), 2U);
    testing::expectErrorAt(report.errors[0].what(), 2,
                           {"cannot copy property \"Name\" from property with non-matching type"});
    testing::expectErrorAt(report.errors[1].what(), 2, {"the node is out of order"});
}

TEST(CheckFile, CallsNoNodeUnusedWhenAConnectionIsLost) {
    const CheckReport report =
        checkText(node("c", "CoreConstant", named("Tint")) + node("m", "CoreMaths") +
                  output("colour", "c", "read") + connection("lamp", "read", "fan", "in"));
    EXPECT_EQ(errorsOf(report), Lines{"m.xml:5: error: there is no node with the id \"lamp\""});
    EXPECT_TRUE(report.warnings.empty());
}

TEST(CheckMaterial, LooksForDefaultsByTheNamesOfInputs) {
    PluginSet plugins;
    plugins.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "hostile_nodes.so");
    const CheckReport report =
        checkMaterial(parsed(node("h", "LooseInputs") + output("colour", "h", "out_value")), plugins);
    EXPECT_EQ(
        warningsOf(report),
        (Lines{"sample.xml:2: warning: node \"h\" (\"LooseInputs\"): input \"light\" is not connected, and "
               "has no default to set"}));
}

TEST(CheckMaterial, GoesOnWithoutRegistersWhereAStageIsWrong) {
    PluginSet plugins;
    plugins.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "hostile_nodes.so");
    const CheckReport report =
        checkMaterial(parsed(node("h", "VertexInt") + output("colour", "h", "out_value")), plugins);
    ASSERT_EQ(report.errors.size(), 1U);
    testing::expectErrorAt(report.errors[0].what(), 2, {"node \"h\" (\"VertexInt\")", "int"});
}

TEST(CheckFile, ReportsOneErrorOfWhatIsNoMaterial) {
    const testing::TemporaryDirectory directory;
    for (const char* text : {"", "<material version=\"1\" name=\"A\">", "<shader/>"}) {
        const CheckReport report = checkFile(directory.write("m.xml", text), corePlugins());
        EXPECT_EQ(report.errors.size(), 1U) << text;
        EXPECT_TRUE(report.warnings.empty()) << text;
    }
}

} // namespace
} // namespace patina
