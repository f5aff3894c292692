#include "tests/host/host_checks.h"

#include "host/dynamic_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::documentText;
using testing::hostErrorOf;
using testing::node;
using testing::output;
using testing::property;
using testing::readText;
using testing::TemporaryDirectory;

using Texts = std::vector<std::string>;

const std::string tint =
    node("tint", "CoreConstant", property("Name", "string", "Tint")) + output("colour", "tint", "read");

/// Gives the stage and the target back instead of a program, and may fail at a text of the program.
class EchoTranslator final : public ShaderTranslator {
public:
    std::vector<TranslatedProgram> translate(ProgramStage stage, std::string_view program,
                                             const std::vector<ShaderTarget>& targets) const override {
        const std::size_t blamed = blamedText.empty() ? std::string::npos : program.find(blamedText);
        if (stage == ProgramStage::Fragment && blamed != std::string::npos) {
            const auto line =
                1 + std::count(program.begin(), program.begin() + static_cast<int>(blamed), '\n');
            throw TranslationError("it is\nwrong", static_cast<int>(line) + lineOffset);
        }
        if (isOutOfMemory) {
            throw std::bad_alloc();
        }
        if (stage == ProgramStage::Fragment && failsAnywhere) {
            throw TranslationError("it is wrong", 0);
        }
        std::vector<TranslatedProgram> translated;
        for (const ShaderTarget& target : targets) {
            TranslatedProgram made;
            made.content = std::string(stage == ProgramStage::Vertex ? "vertex " : "fragment ") +
                           targetName(target.language) + targetVersion(target);
            made.parameters = {
                {"Tint", ParameterKind::Uniform, {ComponentType::Half, 3, 1, 1}, "Tint", {}},
                {"lit", ParameterKind::Output, {ComponentType::Half, 4, 1, 1}, "_lit", {{"location", "1"}}}};
            translated.push_back(made);
        }
        return translated;
    }

    std::string blamedText;
    int lineOffset = 0;
    bool failsAnywhere = false;
    bool isOutOfMemory = false;
};

TEST(Targets, GoByNamesAndVersions) {
    EXPECT_EQ(targetsText(),
              "cg; hlsl:5.0, 5.1, 6.0, 6.1, 6.2, 6.3, 6.4, 6.5, 6.6; glsl:330, 450; essl:300, 310; "
              "msl:2.0, 2.1, 2.2, 2.3, 2.4, 3.0; spirv:1.0");
    const struct {
        const char* text;
        ShaderTarget target;
        const char* name;
        const char* version;
        const char* fileEnding;
    } rows[] = {
        {"cg", {TargetLanguage::Cg, 0}, "cg", "", "cg"},
        {"hlsl", {TargetLanguage::Hlsl, 50}, "hlsl", "5.0", "hlsl"},
        {"hlsl:6.2", {TargetLanguage::Hlsl, 62}, "hlsl", "6.2", "hlsl"},
        {"glsl", {TargetLanguage::Glsl, 330}, "glsl", "330", "glsl"},
        {"glsl:450", {TargetLanguage::Glsl, 450}, "glsl", "450", "glsl"},
        {"essl", {TargetLanguage::Essl, 300}, "essl", "300", "essl"},
        {"msl:2.4", {TargetLanguage::Msl, 24}, "msl", "2.4", "metal"},
        {"hlsl:5", {TargetLanguage::Hlsl, 50}, "hlsl", "5.0", "hlsl"},
        {"hlsl:6", {TargetLanguage::Hlsl, 60}, "hlsl", "6.0", "hlsl"},
        {"msl:2", {TargetLanguage::Msl, 20}, "msl", "2.0", "metal"},
        {"msl:3", {TargetLanguage::Msl, 30}, "msl", "3.0", "metal"},
        {"spirv:1", {TargetLanguage::Spirv, 10}, "spirv", "1.0", "spv"},
        {"spirv", {TargetLanguage::Spirv, 10}, "spirv", "1.0", "spv"},
    };
    for (const auto& [text, target, name, version, fileEnding] : rows) {
        EXPECT_EQ(parseTarget(text), target) << text;
        EXPECT_EQ(targetName(target.language), name);
        EXPECT_EQ(targetVersion(target), version);
        EXPECT_EQ(targetFileEnding(target.language), fileEnding);
    }
    constexpr ShaderTarget target = {TargetLanguage::Glsl, 330};
    EXPECT_FALSE(target == (ShaderTarget{TargetLanguage::Essl, 330}));
    EXPECT_FALSE(target == (ShaderTarget{TargetLanguage::Glsl, 450}));
    for (const char* text :
         {"", "gl", "GLSL", "glsl:", "glsl:120", "hlsl:50", "cg:1", "cg:", "glsl:330:1", "hlsl:7", "hlsl:5.",
          "hlsl:.0", "msl:2.00", "glsl:33", "glsl:330.0", "msl:0", "cg:0"}) {
        EXPECT_EQ(parseTarget(text), std::nullopt) << text;
    }
}

ExportedMaterial exportedIn(const std::vector<ShaderTarget>& targets) {
    const EchoTranslator translator;
    ExportOptions options;
    options.targets = targets;
    options.translator = &translator;
    Material material = testing::built(tint);
    return testing::exportedFrom(material, options);
}

TEST(ExportMaterial, PutsTheProgramsOfATargetSideBySide) {
    const ExportedMaterial exported =
        exportedIn({{TargetLanguage::Msl, 24}, {TargetLanguage::Cg, 0}, {TargetLanguage::Spirv, 10}});
    EXPECT_TRUE(exported.writesCg);
    Texts programs;
    for (const TargetProgram& program : exported.targetPrograms) {
        programs.push_back(program.file.name + ": " + program.file.content);
    }
    EXPECT_EQ(programs, (Texts{"Sample.vert.metal: vertex msl2.4", "Sample.frag.metal: fragment msl2.4",
                               "Sample.vert.spv: vertex spirv1.0", "Sample.frag.spv: fragment spirv1.0"}));
}

TEST(ExportMaterial, SaysInTheBindingsFileWhereParametersAre) {
    const std::string bindings = exportedIn({{TargetLanguage::Glsl, 330}}).bindings.content;
    EXPECT_EQ(bindings.find(".cg\""), std::string::npos) << bindings;
    EXPECT_NE(
        bindings.find("  <program stage=\"vertex\" target=\"glsl\" version=\"330\" file=\"Sample.vert.glsl\" "
                      "sha256=\""),
        std::string::npos)
        << bindings;
    EXPECT_NE(bindings.find("    <parameter name=\"Tint\" kind=\"uniform\" type=\"half3\"/>\n"
                            "    <parameter name=\"lit\" kind=\"output\" type=\"half4\" target_name=\"_lit\" "
                            "location=\"1\"/>\n"),
              std::string::npos)
        << bindings;
}

TEST(ExportMaterial, NeedsTheFrameworkAndATranslatorForOtherLanguages) {
    ExportOptions options;
    options.targets = {{TargetLanguage::Glsl, 330}};
    Material material = testing::built(tint);
    EXPECT_EQ(hostErrorOf([&] { testing::exportedFrom(material, options); }),
              "sample.xml:1: error: there is nothing that translates programs; export them in Cg alone");
    const EchoTranslator translator;
    options.translator = &translator;
    options.print.framework = false;
    EXPECT_EQ(hostErrorOf([&] { testing::exportedFrom(material, options); }),
              "sample.xml:1: error: programs without the framework's functions cannot be translated; export "
              "them with the framework, or in Cg alone");
}

/// What an export says when the translator fails.
std::string failureOf(const std::string& body, const EchoTranslator& translator) {
    PluginSet plugins;
    plugins.add(std::filesystem::path(PATINA_TEST_PLUGINS) /
                (std::string("untranslatable_nodes") + DynamicLibrary::extension()));
    plugins.add(PATINA_CORENODES);
    Warnings warnings;
    Material material = buildMaterial(testing::parsed(body), plugins, warnings);
    ExportOptions options;
    options.targets = {{TargetLanguage::Glsl, 330}};
    options.translator = &translator;
    return hostErrorOf([&] { exportMaterial(material, warnings, options); });
}

TEST(ExportMaterial, BlamesTheNodeWhoseCodeCannotBeTranslated) {
    const auto wrong = [](const char* type) {
        return node("bad", type) + output("colour", "bad", "out_colour");
    };
    const std::string lit = node("c", "CoreConstant", property("Name", "string", "C")) +
                            output("colour", "c", "read") + output("emissive", "c", "read");
    const struct {
        std::string body;
        const char* blamedText;
        int lineOffset;
        const char* message;
    } rows[] = {
        {wrong("UndeclaredName"), "nowhere", 0,
         "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: it is "
         "wrong (line 15 of Sample.frag.cg); correct what the node emits, or export it in Cg alone"},
        {wrong("OpenBrace"), "void main", 1,
         "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: its "
         "braces do not match, it is wrong (line 20 of Sample.frag.cg); correct what the node emits, or "
         "export it in "
         "Cg alone"},
        {wrong("ClosedBrace"), "void main", 1,
         "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: its "
         "braces do not match, it is wrong (line 20 of Sample.frag.cg); correct what the node emits, or "
         "export it in "
         "Cg alone"},
        {wrong("ReversedBraces"), "void main", 1,
         "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: its "
         "braces do not match, it is wrong (line 21 of Sample.frag.cg); correct what the node emits, or "
         "export it in Cg alone"},
        {wrong("ClosedBracket"), "value )", 0,
         "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" does not compile: it is "
         "wrong (line 15 of Sample.frag.cg); correct what the node emits, or export it in Cg alone"},
        {wrong("Comments"), "void main", 1,
         "sample.xml:1: error: Sample.frag.cg (line 20) cannot be translated: it is wrong"},
        {lit, "void surfaceCode", 1,
         "sample.xml:1: error: the framework: its function \"surfaceCode\" does not compile: it is wrong "
         "(line 95 of "
         "Sample.frag.cg); take out what a node's code redefines, or export it in Cg alone"},
    };
    for (const auto& [body, blamedText, lineOffset, message] : rows) {
        EchoTranslator translator;
        translator.blamedText = blamedText;
        translator.lineOffset = lineOffset;
        EXPECT_EQ(failureOf(body, translator), message);
    }
    EchoTranslator translator;
    translator.failsAnywhere = true;
    EXPECT_EQ(failureOf(wrong("UndeclaredName"), translator),
              "sample.xml:1: error: Sample.frag.cg cannot be translated: it is wrong");
}

TEST(ExportMaterial, RefusesWhatIsNestedTooDeepBeforeItIsTranslated) {
    EchoTranslator translator;
    for (const auto& [kind, excess] : {std::pair{"Brackets", "256 brackets within one another"},
                                       {"Blocks", "256 brackets within one another"},
                                       {"Signs", "8192 names and signs in one statement"},
                                       {"Loops", "128 loops"},
                                       {"Alternatives", "1024 times \"else\""}}) {
        const auto bodyOf = [name = std::string(kind)](const char* depth) {
            return node("bad", depth + name) + output("colour", "bad", "out_colour");
        };
        EXPECT_EQ(failureOf(bodyOf("Deep"), translator), testing::noError) << kind;
        EXPECT_EQ(
            failureOf(bodyOf("TooDeep"), translator),
            "sample.xml:2: error: node \"bad\" (\"Wrong\"): its function \"wrongCode\" is nested too deep to "
            "be translated: it has more than " +
                std::string(excess) + "; split what the node emits, or export it in Cg alone");
    }
}

TEST(ExportMaterial, LaysWantOfMemoryAtNoNode) {
    EchoTranslator translator;
    translator.isOutOfMemory = true;
    EXPECT_THROW(failureOf(tint, translator), std::bad_alloc);
}

TEST(ExportDocument, WritesAllThatIsAskedFor) {
    const TemporaryDirectory directory;
    const auto document = directory.write("a b#c$d%e|f\\ g\\.xml", documentText(tint, "Rusty 50% #1"));
    const EchoTranslator translator;
    ExportOptions options;
    options.json = true;
    options.dependencyFile = true;
    options.targets = {{TargetLanguage::Glsl, 330}};
    options.translator = &translator;
    Warnings warnings;
    exportDocument(document, directory / "out", testing::corePlugins(), warnings, options);
    const std::string path = directory.path().string();
    EXPECT_EQ(readText(directory / "out/Rusty 50% #1.d"),
              path + "/out/Rusty\\ 50\\%\\ \\#1.vert.glsl " + path + "/out/Rusty\\ 50\\%\\ \\#1.frag.glsl " +
                  path + "/out/Rusty\\ 50\\%\\ \\#1.bindings.xml " + path +
                  "/out/Rusty\\ 50\\%\\ \\#1.bindings.json: " + path +
                  "/a\\ b\\#c$$d%e\\|f\\\\\\ g\\.xml \\\n " +
                  testing::corePlugins().plugins().front()->file().string() + "\n");
    EXPECT_EQ(readText(directory / "out/Rusty 50% #1.frag.glsl"), "fragment glsl330");
}

} // namespace
} // namespace patina
