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

TEST(CheckMaterial, ReportsWhatOnlyTheShaderShows) {
    // two names that Cg has taken, found when everything before is sound
    const CheckReport report = checkMaterial(
        parsed(node("a", "CoreConstant", named("half")) + node("b", "CoreConstant", named("lerp")) +
               maths("m", "Multiply") + connection("a", "read", "m", "in_value1") +
               connection("b", "read", "m", "in_value2") + output("colour", "m", "out_value") +
               output("shine", "m", "out_value")),
        corePlugins());
    EXPECT_EQ(errorsOf(report),
              Lines{"sample.xml:8: error: there is no output \"shine\" to a material; the outputs are "
                    "\"colour\" and \"alpha\""});
    const CheckReport names = checkMaterial(
        parsed(node("a", "CoreConstant", named("half")) + node("b", "CoreConstant", named("lerp")) +
               maths("m", "Multiply") + connection("a", "read", "m", "in_value1") +
               connection("b", "read", "m", "in_value2") + output("colour", "m", "out_value")),
        corePlugins());
    EXPECT_EQ(errorsOf(names),
              (Lines{"sample.xml:2: error: node \"a\" (\"half\"): the name \"half\" is reserved in Cg or by "
                     "the shader framework; rename the node",
                     "sample.xml:3: error: node \"b\" (\"lerp\"): the name \"lerp\" is reserved in Cg or by "
                     "the shader framework; rename the node"}));
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

} // namespace
} // namespace patina
