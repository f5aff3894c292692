// Materials, exported in other languages than Cg.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "translation/translator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::node;
using testing::output;
using testing::property;

const ShaderTranslator& translator() {
    static const std::unique_ptr<ShaderTranslator> made = makeTranslator();
    return *made;
}

ExportedMaterial exportedIn(Material& material, const std::vector<ShaderTarget>& targets) {
    ExportOptions options;
    options.targets = targets;
    options.translator = &translator();
    return testing::exportedFrom(material, options);
}

/// A texture, tinted.
const std::string& tintedTexture() {
    static const std::string body =
        node("uv", "CoreUv") + node("paint", "CoreTexture", property("Name", "string", "Paint")) +
        node("tint", "CoreConstant", property("Name", "string", "Tint")) +
        testing::maths("tinted", "Multiply") + connection("uv", "read", "paint", "in_uv") +
        connection("paint", "out_colour", "tinted", "in_value1") +
        connection("tint", "read", "tinted", "in_value2") + output("colour", "tinted", "out_value");
    return body;
}

std::vector<std::string> declarationsIn(const std::string& program) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < program.size()) {
        const std::size_t end = program.find('\n', begin);
        const std::string line = program.substr(begin, end - begin);
        for (const char* word : {"uniform ", "layout(", "in ", "out "}) {
            if (line.rfind(word, 0) == 0) {
                lines.push_back(line);
            }
        }
        begin = end + 1;
    }
    return lines;
}

TEST(ExportedTargets, GlslHasPlainUniforms) {
    Material material = testing::built(tintedTexture());
    const ExportedMaterial exported = exportedIn(material, {{TargetLanguage::Glsl, 330}});
    EXPECT_FALSE(exported.writesCg);
    ASSERT_EQ(exported.targetPrograms.size(), 2U);
    const TargetProgram& vertex = exported.targetPrograms[0];
    EXPECT_EQ(vertex.stage, ProgramStage::Vertex);
    EXPECT_EQ(vertex.file.name, "Sample.vert.glsl");
    EXPECT_EQ(vertex.file.content.substr(0, 13), "#version 330\n");
    EXPECT_EQ(declarationsIn(vertex.file.content),
              (std::vector<std::string>{"uniform mat4 worldViewProjection;",
                                        "layout(location = 0) in vec4 position;",
                                        "layout(location = 1) in vec2 Uv;", "out vec2 interpolant0;"}));
    const TargetProgram& fragment = exported.targetPrograms[1];
    EXPECT_EQ(fragment.stage, ProgramStage::Fragment);
    EXPECT_EQ(fragment.file.name, "Sample.frag.glsl");
    EXPECT_EQ(declarationsIn(fragment.file.content),
              (std::vector<std::string>{"uniform sampler2D Paint;", "uniform vec3 Tint;",
                                        "in vec2 interpolant0;", "layout(location = 0) out vec4 colour;"}));
}

TEST(ExportedTargets, ComeBesideCgWhenBothAreWanted) {
    Material material = testing::built(tintedTexture());
    const ExportedMaterial exported = exportedIn(
        material, {{TargetLanguage::Msl, 20}, {TargetLanguage::Cg, 0}, {TargetLanguage::Spirv, 10}});
    EXPECT_TRUE(exported.writesCg);
    std::vector<std::string> names;
    for (const TargetProgram& program : exported.targetPrograms) {
        names.push_back(program.file.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Sample.vert.metal", "Sample.frag.metal", "Sample.vert.spv",
                                               "Sample.frag.spv"}));
}

TEST(ExportedTargets, StandInTheBindingsFile) {
    Material material = testing::built(tintedTexture());
    ExportedMaterial exported = exportedIn(material, {{TargetLanguage::Hlsl, 51}});
    EXPECT_NE(exported.bindings.content.find("  <program stage=\"fragment\" target=\"hlsl\" version=\"5.1\" "
                                             "file=\"Sample.frag.hlsl\" sha256=\""),
              std::string::npos);
    EXPECT_NE(
        exported.bindings.content.find(
            "    <parameter name=\"Paint\" kind=\"sampler\" type=\"sampler2D\" texture=\"0\" "
            "sampler=\"0\"/>\n"
            "    <parameter name=\"Tint\" kind=\"uniform\" type=\"half3\" buffer=\"0\" offset=\"0\"/>\n"),
        std::string::npos)
        << exported.bindings.content;
    EXPECT_EQ(exported.bindings.content.find("Sample.frag.cg"), std::string::npos);
}

TEST(ExportedTargets, LandInRegistersOfCgOnlyWhereThereIsCg) {
    Material material = testing::built(tintedTexture());
    const std::string landing = "<landing stage=\"fragment\" register=\"c0\" name=\"Tint\"/>";
    const std::string beside =
        exportedIn(material, {{TargetLanguage::Glsl, 330}, {TargetLanguage::Cg, 0}}).bindings.content;
    EXPECT_NE(beside.find(landing), std::string::npos) << beside;
    const std::string alone = exportedIn(material, {{TargetLanguage::Glsl, 330}}).bindings.content;
    EXPECT_NE(alone.find("tag=\"Tint\""), std::string::npos) << alone;
    EXPECT_EQ(alone.find("landing"), std::string::npos) << alone;
}

TEST(ExportedTargets, AnArtistsChangesAreReadBesideThem) {
    const testing::TemporaryDirectory directory;
    const std::string document = directory.write("m.xml", testing::documentText(tintedTexture())).string();
    Warnings warnings;
    ExportOptions options;
    options.targets = {{TargetLanguage::Glsl, 330}};
    options.translator = &translator();
    exportDocument(document, directory.path(), testing::corePlugins(), warnings, options);
    const std::filesystem::path file = directory / "Sample.bindings.xml";
    std::string text = testing::readText(file);
    const std::string unset = "default=\"0, 0, 0\"";
    const std::size_t at = text.find(unset);
    ASSERT_NE(at, std::string::npos) << text;
    text.replace(at, unset.size(), "default=\"0.5, 0, 0\"");
    testing::writeText(file, text);
    exportDocument(document, directory.path(), testing::corePlugins(), warnings, options);
    EXPECT_NE(testing::readText(file).find("default=\"0.5, 0, 0\""), std::string::npos);
    EXPECT_TRUE(warnings.empty());
}

/// What an export says of a node whose code no compiler takes; nothing may have been written.
std::string untranslatable(const std::string& type, const std::string& otherOutputs = "") {
    PluginSet plugins;
    plugins.add(PATINA_UNTRANSLATABLE);
    const testing::TemporaryDirectory directory;
    const std::string document =
        directory
            .write("m.xml", testing::documentText(node("bad", type) + output("colour", "bad", "out_colour") +
                                                  otherOutputs))
            .string();
    Warnings warnings;
    ExportOptions options;
    options.targets = {{TargetLanguage::Cg, 0}, {TargetLanguage::Glsl, 330}};
    options.translator = &translator();
    std::string message = testing::hostErrorOf(
        [&] { exportDocument(document, directory / "out", plugins, warnings, options); });
    EXPECT_FALSE(std::filesystem::exists(directory / "out"));
    return message.substr(message.find("m.xml"));
}

TEST(ExportedTargets, ErrorsAreReportedAtTheNode) {
    EXPECT_EQ(
        untranslatable("UndeclaredName"),
        "m.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: 'nowhere': "
        "unknown variable (line 15 of Sample.frag.cg); correct what the node emits, or export it in Cg "
        "alone");
    EXPECT_EQ(
        untranslatable("WrongType"),
        "m.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: '=': cannot "
        "convert from '3-component vector of float' to 'sampler2D' (line 15 of Sample.frag.cg); correct "
        "what the node emits, or export it in Cg alone");
    EXPECT_EQ(
        untranslatable("MovesLines"),
        "m.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: 'nowhere': "
        "unknown variable (line 16 of Sample.frag.cg); correct what the node emits, or export it in Cg "
        "alone");
}

TEST(ExportedTargets, ErrorsInTheFrameworksCodeAreReportedAtTheMaterial) {
    EXPECT_EQ(untranslatable("RenamesTheFramework", output("emissive", "bad", "out_colour")),
              "m.xml:1: error: the framework: its function \"surfaceCode\" does not compile: 'Nothing': no "
              "matching overloaded function found (line 103 of Sample.frag.cg); take out what a node's code "
              "redefines, or export it in Cg alone");
}

TEST(ExportedTargets, AnOpenBraceIsReportedAtItsNode) {
    for (const auto& [outputs, line] :
         {std::pair{std::string(), "26"}, {output("emissive", "bad", "out_colour"), "119"}}) {
        EXPECT_EQ(untranslatable("OpenBrace", outputs),
                  "m.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: "
                  "its braces do not match, 'declaration': Expected (line " +
                      std::string(line) +
                      " of Sample.frag.cg); correct what the node emits, or export it in Cg alone");
    }
}

TEST(ExportedTargets, WhatIsNestedTooDeepIsRefusedBeforeACompilerSeesIt) {
    for (const auto& [kind, excess] : {std::pair{"Brackets", "256 brackets within one another"},
                                       {"Blocks", "256 brackets within one another"},
                                       {"Signs", "8192 names and signs in one statement"},
                                       {"Loops", "128 loops"},
                                       {"Alternatives", "1024 times \"else\""}}) {
        for (const std::string depth : {"TooDeep", "Absurd"}) {
            EXPECT_EQ(
                untranslatable(depth + kind),
                "m.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" is nested too deep "
                "to be translated: it has more than " +
                    std::string(excess) + "; split what the node emits, or export it in Cg alone");
        }
    }
}

TEST(ExportedTargets, WhatIsNestedLessIsTranslated) {
    PluginSet plugins;
    plugins.add(PATINA_UNTRANSLATABLE);
    const testing::TemporaryDirectory directory;
    for (const char* kind : {"Brackets", "Blocks", "Signs", "Loops", "Alternatives"}) {
        const std::string body =
            node("deep", std::string("Deep") + kind) + output("colour", "deep", "out_colour");
        Warnings warnings;
        Material material = buildMaterial(readMaterial(directory.write("m.xml", testing::documentText(body))),
                                          plugins, warnings);
        EXPECT_EQ(exportedIn(material, {{TargetLanguage::Glsl, 330}}).targetPrograms.size(), 2U) << kind;
    }
}

std::string refusal(const ExportOptions& options) {
    Material material = testing::built(tintedTexture());
    return testing::hostErrorOf([&] { testing::exportedFrom(material, options); });
}

TEST(ExportedTargets, NeedTheFrameworkAndATranslator) {
    ExportOptions options;
    options.targets = {{TargetLanguage::Glsl, 330}};
    testing::expectErrorAt(refusal(options), 1, {"there is nothing that translates programs"});
    options.translator = &translator();
    options.print.framework = false;
    testing::expectErrorAt(refusal(options), 1, {"without the framework's functions cannot be translated"});
    options.targets = {{TargetLanguage::Cg, 0}};
    EXPECT_EQ(refusal(options), testing::noError);
}

testing::Outcome exportCommand(const testing::TemporaryDirectory& directory,
                               const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"export", PATINA_EXAMPLE, "-o", (directory / "out").string()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return testing::run(PATINA_COMMAND, arguments);
}

TEST(TargetOption, WritesThoseThatAreNamed) {
    const testing::TemporaryDirectory directory;
    EXPECT_EQ(exportCommand(directory, {"--target", "glsl,spirv", "--target", "msl:2.1", "-q"}).exitCode, 0);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "out")) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"PaintedMetal.bindings.xml", "PaintedMetal.frag.glsl",
                                               "PaintedMetal.frag.metal", "PaintedMetal.frag.spv",
                                               "PaintedMetal.vert.glsl", "PaintedMetal.vert.metal",
                                               "PaintedMetal.vert.spv"}));
}

TEST(TargetOption, RefusesUnknownTargetsAndLanguagesTwice) {
    const testing::TemporaryDirectory directory;
    const testing::Outcome unknown = exportCommand(directory, {"--target", "glsl:120"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_NE(unknown.errors.find(
                  "there is no \"glsl:120\"; there are cg; hlsl:5.0, 5.1, 6.0, 6.1, 6.2, 6.3, 6.4, "
                  "6.5, 6.6; glsl:330, 450; essl:300, 310; msl:2.0, 2.1, 2.2, 2.3, 2.4, 3.0; spirv:1.0"),
              std::string::npos)
        << unknown.errors;
    const testing::Outcome twice = exportCommand(directory, {"--target", "glsl", "--target", "glsl:450"});
    EXPECT_EQ(twice.exitCode, 2);
    EXPECT_NE(twice.errors.find("\"glsl\" is there twice"), std::string::npos) << twice.errors;
    EXPECT_FALSE(std::filesystem::exists(directory / "out"));
}

TEST(TargetOption, RefusesAnEmptyItem) {
    const testing::TemporaryDirectory directory;
    for (const char* list : {",", "glsl,", ",glsl", "glsl,,msl"}) {
        const testing::Outcome outcome = exportCommand(directory, {"--target", list});
        EXPECT_EQ(outcome.exitCode, 2) << list;
        EXPECT_NE(
            outcome.errors.find("--target: a language is missing beside a comma; there are cg; hlsl:5.0"),
            std::string::npos)
            << list << ": " << outcome.errors;
    }
}

TEST(TargetOption, SeveralMaterialsAtOnceGiveTheSame) {
    const testing::TemporaryDirectory directory;
    std::vector<std::string> arguments = {"export", "--target", "glsl,essl,hlsl,msl,spirv", "-q"};
    for (int i = 0; i < 8; ++i) {
        const std::string name = "M" + std::to_string(i);
        arguments.push_back(
            directory.write(name + ".xml", testing::documentText(tintedTexture(), name)).string());
    }
    const auto exportWith = [&](const std::string& jobs) {
        std::vector<std::string> all = arguments;
        all.insert(all.end(), {"-j", jobs, "-o", (directory / jobs).string()});
        EXPECT_EQ(testing::run(PATINA_COMMAND, all).exitCode, 0);
    };
    exportWith("1");
    exportWith("4");
    for (const auto& entry : std::filesystem::directory_iterator(directory / "1")) {
        EXPECT_EQ(testing::readText(entry.path()),
                  testing::readText(directory / "4" / entry.path().filename()));
    }
}

} // namespace
} // namespace patina
