// `patina nodes`, `describe` and `graph`, colours on terminals, completion and the manual page.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include "host/dynamic_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace patina {
namespace {

using nlohmann::ordered_json;
using testing::connection;
using testing::documentText;
using testing::Environment;
using testing::maths;
using testing::node;
using testing::Outcome;
using testing::output;
using testing::readText;
using testing::TemporaryDirectory;

using Names = std::vector<std::string>;

Outcome patina(const std::vector<std::string>& arguments, const Environment& environment = {}) {
    return testing::run(PATINA_COMMAND, arguments, environment);
}

bool isInstalled(const std::string& program) {
    return testing::run("sh", {"-c", "command -v " + program}).exitCode == 0;
}

std::string testPlugin(const std::string& name) {
    return std::string(PATINA_TEST_PLUGINS) + "/" + name + DynamicLibrary::extension();
}

Names linesOf(const std::string& text) {
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// What the command prints, when it prints no more than that.
std::string outputOf(const std::vector<std::string>& arguments, const Environment& environment = {}) {
    const Outcome outcome = patina(arguments, environment);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    return outcome.output;
}

ordered_json jsonOf(const std::vector<std::string>& arguments, const Environment& environment = {}) {
    return ordered_json::parse(outputOf(arguments, environment));
}

const Names coreTypes = {"CoreDefault", "CoreVertexColour", "CoreUv",         "CoreTexture",   "CoreConstant",
                         "CoreMaths",   "CoreSwizzle",      "CoreLayerBlend", "CoreAnimatedUv"};

// nodes

TEST(NodesCommand, PrintsAlignedColumns) {
    const Names lines = linesOf(outputOf({"nodes"}));
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], "TYPE              NAME               CATEGORY  OFFERED  PLUG-IN");
    EXPECT_EQ(lines[1],
              std::string("CoreDefault       Default            Core      no       ") + PATINA_CORENODES);
    EXPECT_EQ(lines[2],
              std::string("CoreVertexColour  Vertex Colour Set  Core      yes      ") + PATINA_CORENODES);
    EXPECT_EQ(lines[9],
              std::string("CoreAnimatedUv    Animated Uv        Core      yes      ") + PATINA_CORENODES);
}

TEST(NodesCommand, PrintsJson) {
    const ordered_json document = jsonOf({"nodes", "--json"});
    ASSERT_EQ(document["nodeTypes"].size(), 9U);
    const ordered_json expected = {{"typeName", "CoreUv"},
                                   {"displayName", "Uv Set"},
                                   {"category", "Core"},
                                   {"creatable", true},
                                   {"plugin", PATINA_CORENODES}};
    EXPECT_EQ(document["nodeTypes"][2], expected);
    EXPECT_EQ(document["nodeTypes"][0]["creatable"], false);
}

TEST(NodesCommand, PrintsNamesForOtherPrograms) {
    EXPECT_EQ(linesOf(outputOf({"nodes", "--names"})), coreTypes);
    const Names more = linesOf(outputOf({"nodes", "--names", "--plugin", testPlugin("hostile_nodes")}));
    EXPECT_EQ(more.size(), coreTypes.size() + 24);
    EXPECT_EQ(more.front(), "Plain");
}

// describe

const char* const uvDescription =
    "  Category     Core\n"
    "  Offered      yes\n"
    "  Plug-in      " PATINA_CORENODES "\n"
    "  Version      0\n"
    "  Caption      Uv\n"
    "  Body colour  0.8, 0.8, 1, alpha 0.9\n"
    "  Text colour  0, 0, 0, alpha 1\n"
    "  Ports\n"
    "    out  read  uv  2\n"
    "  Properties\n"
    "    Type          string   \"CoreUv\"  not editable\n"
    "      the internal type of the node.\n"
    "    Name          string   \"Uv\"\n"
    "      the name entered here will correspond to the binding name presented in\n"
    "      Maya.\n"
    "    BindingIndex  integer  0         hidden\n"
    "    BindingGroup  string   \"\"        hidden\n"
    "    PositionX     float    0         hidden\n"
    "    PositionY     float    0         hidden\n"
    "    Description   string   \"\"        free text\n"
    "      if this node generates a Maya binding, then this description will be used\n"
    "      a tooltip for the binding. Otherwise this is a space for general notes\n"
    "      about the node.\n"
    "    Help Url      string   \"\"        web address\n"
    "      if this node generates a Maya binding then this Url will be accessable\n"
    "      from a button on the binding Ui.\n"
    "    Primary       bool     No\n"
    "      this box can be checked to hint this uv for use when generating tangents\n"
    "      and binormals. Most of the time this is not necessary to set manually and\n"
    "      should be left unchecked.\n";

TEST(DescribeCommand, PrintsEverythingAboutAType) {
    EXPECT_EQ(outputOf({"describe", "CoreUv"}), std::string("CoreUv (Uv Set)\n") + uvDescription);
}

TEST(DescribeCommand, PrintsTheModesOfEachProperty) {
    const std::string text = outputOf({"describe", "CoreUv", "CoreAnimatedUv"});
    EXPECT_NE(text.find("\n\nCoreAnimatedUv (Animated Uv)\n"), std::string::npos) << text;
    const std::string modes = "  By Mode\n"
                              "    Basic\n"
                              "      caption  Animated Uv\n"
                              "      in       in_frame (frame, 1), in_uv (uv, 2)\n"
                              "      out      out_uv1 (uv1, 2), out_uv2 (uv2, 2), out_blend (blend, 1)\n"
                              "    Advanced\n"
                              "      caption  Animated Uv\n"
                              "      in       in_frame (frame, 1)\n"
                              "      out      out_offset1 (offset1, 2), out_offset2 (offset2, 2), out_scale\n"
                              "               (scale, 2), out_blend (blend, 1)\n";
    ASSERT_GE(text.size(), modes.size());
    EXPECT_EQ(text.substr(text.size() - modes.size()), modes);
}

TEST(DescribeCommand, PrintsWhatAModeShows) {
    const std::string text = outputOf({"describe", "CoreMaths"});
    EXPECT_NE(text.find("    Power\n"
                        "      caption  Power\n"
                        "      in       in_value1 (in, any), in_power (power, 1)\n"
                        "      out      out_value (out, any)\n"
                        "      shows    Default Value 1, Default Power\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("      one of Automatic, Vertex, Fragment\n"), std::string::npos) << text;
}

TEST(DescribeCommand, PrintsJson) {
    const ordered_json document =
        jsonOf({"describe", "CoreConstant", "CoreTexture", "--json"}, {{"LC_ALL", "de_DE.UTF-8"}});
    ASSERT_EQ(document["nodeTypes"].size(), 2U);
    const ordered_json& constant = document["nodeTypes"][0];
    EXPECT_EQ(constant["typeName"], "CoreConstant");
    EXPECT_EQ(constant["bodyColour"].dump(), "[0.8,1.0,0.8,0.9]");
    EXPECT_EQ(constant["inputs"].dump(), "[]");
    EXPECT_EQ(constant["outputs"].dump(), R"([{"name":"read","label":"colour","componentCount":3,)"
                                          R"("componentCountFixed":true}])");
    EXPECT_EQ(constant["properties"][10].dump(),
              R"({"name":"Default Colour","kind":"colour","default":[0.0,0.0,0.0],"stringStyle":0,)"
              R"("help":"Default Colour: the default value for colour constants.",)"
              R"("editable":true,"visible":true})");
    EXPECT_EQ(constant["properties"][8]["allowedValues"].dump(),
              R"(["Colour","Scalar","Component","Vector"])");
    EXPECT_EQ(constant["modes"][0]["property"], "Constant Type");
    EXPECT_EQ(constant["modes"][0]["values"][1]["value"], "Scalar");
    EXPECT_EQ(constant["modes"][0]["values"][1]["outputs"][0]["label"], "scalar");
    EXPECT_EQ(constant["modes"][1]["values"][1]["value"], true);
    EXPECT_EQ(document["nodeTypes"][1]["properties"][8]["default"], "");
}

TEST(DescribeCommand, GivesNoCountWhereItIsFound) {
    const ordered_json document = jsonOf({"describe", "CoreMaths", "--json"});
    EXPECT_EQ(document["nodeTypes"][0]["inputs"][0].dump(),
              R"({"name":"in_value1","label":"in1","componentCount":null,"componentCountFixed":false})");
}

TEST(DescribeCommand, SuggestsTheNearestTypeAndPrintsNothing) {
    const Outcome outcome = patina({"describe", "CoreUv", "CoreMath"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "error: no plug-in offers the node type \"CoreMath\"; did you mean \"CoreMaths\"?\n");
}

TEST(DescribeCommand, SurvivesNodesThatThrow) {
    const Outcome outcome =
        patina({"describe", "ThrowingConstructor", "--plugin", testPlugin("hostile_nodes")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, testPlugin("hostile_nodes") +
                                  ": error: node type \"ThrowingConstructor\": the node is out of order\n");
}

// graph

const std::string sample = maths("m", "Invert") + output("colour", "m", "out_value");

TEST(GraphCommand, PrintsDot) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(sample));
    const std::string graph = outputOf({"graph", material.string()});
    EXPECT_EQ(graph.rfind("digraph \"Sample\" {\n", 0), 0U) << graph;
    EXPECT_NE(graph.find("label=\"Sample\"];"), std::string::npos) << graph;
    const std::string shader = outputOf({"graph", material.string(), "--shader"});
    EXPECT_NE(shader.find("label=\"Sample, shader\"];"), std::string::npos) << shader;

    EXPECT_EQ(outputOf({"graph", material.string(), "-o", (directory / "new/m.dot").string()}), "");
    EXPECT_EQ(readText(directory / "new/m.dot"), graph);
    EXPECT_EQ(outputOf({"graph", material.string(), "-o", (directory / "m.svg").string(), "--format", "dot"}),
              "");
    EXPECT_EQ(readText(directory / "m.svg"), graph);
}

TEST(GraphCommand, DrawsSvg) {
    if (!isInstalled("dot")) {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    const TemporaryDirectory directory;
    const auto file = directory / "metal.svg";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"graph", PATINA_EXAMPLE}, {"graph", PATINA_EXAMPLE, "--shader"}}) {
        auto toFile = arguments;
        toFile.insert(toFile.end(), {"-o", file.string()});
        EXPECT_EQ(outputOf(toFile), "");
        const std::string svg = readText(file);
        EXPECT_NE(svg.find("<svg "), std::string::npos);
        EXPECT_NE(svg.find(">Overlay</text>"), std::string::npos);
        EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
        auto printed = arguments;
        printed.insert(printed.end(), {"--format", "svg"});
        EXPECT_EQ(outputOf(printed), svg);
    }
}

TEST(GraphCommand, EscapesWhatGraphvizWouldReplace) {
    if (!isInstalled("dot")) {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    const TemporaryDirectory directory;
    const auto material = directory.write(
        "m.xml",
        documentText("<node id=\"a\\N&lt;b>\" type=\"CoreTexture\">"
                     "<property name=\"Name\" kind=\"string\" value=\"&quot;\\G\\\\n&quot; &amp;lt;\"/>"
                     "</node>",
                     "A &amp;amp; B"));
    const std::string svg = outputOf({"graph", material.string(), "--format", "svg"});
    for (const char* piece : {">A &amp;amp; B</text>", ">&quot;\\G\\\\n&quot; &amp;lt;</text>",
                              ">a\\N&lt;b&gt;</text>", "xlink:title=\"CoreTexture a\\N&lt;b&gt;\""}) {
        EXPECT_NE(svg.find(piece), std::string::npos) << piece << " in: " << svg;
    }
}

TEST(GraphCommand, DrawsLargeMaterials) {
    // more text than a pipe holds, both ways
    constexpr int count = 800;
    const TemporaryDirectory directory;
    std::string body;
    for (int i = 0; i < count; ++i) {
        body += node("u" + std::to_string(i), "CoreUv");
    }
    const auto material = directory.write("m.xml", documentText(body));
    EXPECT_GT(outputOf({"graph", material.string()}).size(), 200000U);
    if (isInstalled("dot")) {
        EXPECT_GT(outputOf({"graph", material.string(), "--format", "svg"}).size(), 200000U);
    }
}

TEST(GraphCommand, DrawsTheMaterialWhereAPluginIsMissing) {
    const TemporaryDirectory directory;
    const auto material = directory.write(
        "m.xml", documentText(node("f", "StudioFur") + sample + connection("f", "out", "m", "in_value1")));
    const std::string warning = material.string() +
                                ":2: warning: no plug-in offers the type \"StudioFur\" of node \"f\"; "
                                "a placeholder stands in for it\n";
    const Outcome drawn = patina({"graph", material.string()});
    EXPECT_EQ(drawn.exitCode, 0);
    EXPECT_EQ(drawn.errors, warning);
    EXPECT_NE(drawn.output.find("rounded,filled,dashed"), std::string::npos) << drawn.output;

    const Outcome shader = patina({"graph", material.string(), "--shader"});
    EXPECT_EQ(shader.exitCode, 1);
    EXPECT_EQ(shader.output, "");
    EXPECT_EQ(shader.errors.rfind(warning + material.string() + ":2: error: ", 0), 0U) << shader.errors;
}

TEST(GraphCommand, SaysWhenGraphvizIsMissing) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(sample));
    const Outcome outcome = patina({"graph", material.string(), "-o", (directory / "m.svg").string()},
                                   {{"PATH", directory.path().string()}});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "dot: error: cannot start this program: there is no such file or directory; install Graphviz, "
              "or write the graph with --format dot and draw it elsewhere\n");
    EXPECT_EQ(directory.names(), Names{"m.xml"});
}

TEST(GraphCommand, SaysWhenGraphvizFails) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(sample));
    std::filesystem::permissions(
        directory.write("dot", "#!/bin/sh\necho half a picture\necho ouch >&2\nexit 3\n"),
        std::filesystem::perms::owner_all);
    const Outcome outcome = patina({"graph", material.string(), "-o", (directory / "m.svg").string()},
                                   {{"PATH", directory.path().string()}});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors,
              "ouch\ndot: error: this program failed; install Graphviz, or write the graph with --format dot "
              "and draw it elsewhere\n");
    EXPECT_EQ(directory.names(), (Names{"dot", "m.xml"}));
}

TEST(GraphCommand, WritesToDevicesAndPipes) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("m.xml", documentText(sample)).string();
    const std::string graph = outputOf({"graph", material});
    EXPECT_EQ(outputOf({"graph", material, "-o", "/dev/null"}), "");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    const std::string script =
        "mkfifo \"$2/pipe\"; cat \"$2/pipe\" & \"$0\" graph \"$1\" -o \"$2/pipe\"; wait";
    const Outcome piped =
        testing::run("sh", {"-c", script, PATINA_COMMAND, material, directory.path().string()});
    EXPECT_EQ(piped.exitCode, 0) << piped.errors;
    EXPECT_EQ(piped.output, graph);
    EXPECT_TRUE(std::filesystem::is_fifo(directory / "pipe"));
}

TEST(GraphCommand, WritesToStandardOutputByItsName) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("m.xml", documentText(sample)).string();
    // into the middle of a file
    const std::string script = "{ echo before; \"$0\" graph \"$1\" -o /dev/stdout; echo after; }";
    const Outcome outcome = testing::run("sh", {"-c", script, PATINA_COMMAND, material});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "before\n" + outputOf({"graph", material}) + "after\n");
}

TEST(GraphCommand, ReportsBadMaterials) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", "<html/>");
    const Outcome outcome = patina({"graph", material.string()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors.rfind(material.string() + ":1: error: ", 0), 0U) << outcome.errors;
}

// Usage

TEST(InspectUsage, IsCheckedFirst) {
    const std::vector<std::string> wrong[] = {
        {"nodes", "CoreUv"},
        {"nodes", "--json", "--names"},
        {"describe"},
        {"describe", "CoreUv", "--frob"},
        {"graph"},
        {"graph", "a.xml", "b.xml"},
        {"graph", "a.xml", "--format", "png"},
        {"graph", "a.xml", "-o"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = patina(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.errors;
        EXPECT_NE(outcome.errors, "");
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(InspectUsage, ShowsHelpWithExamplesAndExitCodes) {
    const struct {
        const char* command;
        const char* example;
    } rows[] = {
        {"nodes", "  patina nodes --json --plugin studio_nodes.so\n"},
        {"describe", "  patina describe CoreMaths\n"},
        {"graph", "  patina graph painted_metal.xml --shader -o shader.svg\n"},
    };
    for (const auto& [command, example] : rows) {
        const std::string help = outputOf({command, "--help"});
        EXPECT_NE(help.find(example), std::string::npos) << help;
        EXPECT_NE(help.find("Exit code: 0 when all went well, 1 "), std::string::npos) << help;
    }
}

TEST(Output, ThatCannotBeWrittenIsAnError) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    const TemporaryDirectory directory;
    const std::vector<std::string> rows[] = {
        {"export", PATINA_EXAMPLE, "-o", directory.path().string()},
        {"check", PATINA_EXAMPLE},
        {"nodes"},
        {"nodes", "--json"},
        {"nodes", "--names"},
        {"describe", "CoreUv"},
        {"graph", PATINA_EXAMPLE},
        {"graph", PATINA_EXAMPLE, "-o", "/dev/stdout"},
        {"validate", PATINA_CORENODES, "--only", "icons"},
        {"validate", PATINA_CORENODES, "--only", "icons", "--json"},
        {"validate", "--list"},
        {"--help"},
        {"--version"},
        {"export", "--help"},
    };
    for (const auto& arguments : rows) {
        std::vector<std::string> words = {"-c", "exec \"$0\" \"$@\" >/dev/full", PATINA_COMMAND};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const Outcome outcome = testing::run("sh", words);
        EXPECT_EQ(outcome.exitCode, 1) << arguments[0];
        EXPECT_EQ(outcome.errors, "error: cannot write to standard output\n") << arguments[0];
    }
}

// Colours

/// What the command shows on a terminal of its own.
std::string onTerminal(const std::string& arguments, const Environment& environment) {
    return testing::run("script", {"-qec", std::string(PATINA_COMMAND) + " " + arguments, "/dev/null"},
                        environment)
        .output;
}

TEST(Colours, BringOutMessagesOnTerminalsOnly) {
    if (!isInstalled("script")) {
        GTEST_SKIP() << "script(1) is not installed";
    }
    const Environment colourful = {{"TERM", "xterm"}, {"NO_COLOR", ""}};
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(node("f", "StudioFur")));
    const std::string terminal = onTerminal("graph --shader " + material.string(), colourful);
    EXPECT_NE(
        terminal.find("\x1b[1m" + material.string() + ":2: \x1b[1;35mwarning:\x1b[0m no plug-in offers"),
        std::string::npos)
        << terminal;
    EXPECT_NE(terminal.find("\x1b[1m" + material.string() + ":2: \x1b[1;31merror:\x1b[0m node \"f\""),
              std::string::npos)
        << terminal;
    EXPECT_NE(onTerminal("describe Nope", colourful).find("\x1b[1;31merror:\x1b[0m no plug-in"),
              std::string::npos);
    EXPECT_NE(onTerminal("describe CoreUv", colourful).find("\x1b[1mProperties\x1b[0m"), std::string::npos);

    const Environment plain[] = {{{"TERM", "xterm"}, {"NO_COLOR", "1"}},
                                 {{"TERM", "dumb"}, {"NO_COLOR", ""}}};
    for (const Environment& environment : plain) {
        EXPECT_EQ(onTerminal("describe Nope", environment).find('\x1b'), std::string::npos);
        EXPECT_EQ(onTerminal("describe CoreUv", environment).find('\x1b'), std::string::npos);
    }
    EXPECT_EQ(patina({"describe", "CoreUv"}, colourful).output.find('\x1b'), std::string::npos);
    EXPECT_EQ(patina({"describe", "Nope"}, colourful).errors.find('\x1b'), std::string::npos);
}

// Completion

const std::string completions = PATINA_SOURCE_DIRECTORY "/tools/patina/completions/";

/// What bash offers for the last of the words, in a directory.
std::set<std::string> bashOffers(const std::vector<std::string>& words, const std::string& directory = "/",
                                 const std::string& home = "/") {
    const std::string script =
        "cd \"$1\"; source \"$2\"; shift 2; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
        "_patina; ((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"";
    std::vector<std::string> arguments = {
        "--norc", "-c", script, "bash", directory, completions + "patina.bash", PATINA_COMMAND};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Outcome outcome = testing::run("bash", arguments, {{"HOME", home}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    const Names lines = linesOf(outcome.output);
    return {lines.begin(), lines.end()};
}

using Offers = std::set<std::string>;

TEST(BashCompletion, OffersCommandsOptionsAndValues) {
    const struct {
        std::vector<std::string> words;
        Offers offers;
    } rows[] = {
        {{""},
         {"export", "check", "nodes", "describe", "graph", "preview", "validate", "--help", "--version"}},
        {{"de"}, {"describe"}},
        {{"nodes", "--"}, {"--json", "--names", "--plugin", "--help"}},
        {{"graph", "--f"}, {"--format"}},
        {{"graph", "--format", ""}, {"dot", "svg"}},
        {{"export", "--framework", "n"}, {"none"}},
        {{"export", "-j", ""}, {}},
        {{"validate", "--t"}, {"--timeout"}},
        {{"validate", "--only", "icon"}, {"icons"}},
        {{"nodes", ""}, {}},
        {{"frobnicate", ""}, {}},
    };
    for (const auto& [words, offers] : rows) {
        EXPECT_EQ(bashOffers(words), offers) << words.back();
    }
}

TEST(BashCompletion, OffersNodeTypes) {
    EXPECT_EQ(bashOffers({"describe", ""}), Offers(coreTypes.begin(), coreTypes.end()));
    EXPECT_EQ(bashOffers({"describe", "CoreUv", "CoreT"}), Offers{"CoreTexture"});
    EXPECT_EQ(bashOffers({"describe", "--plugin", testPlugin("hostile_nodes"), "Throwing"}),
              (Offers{"ThrowingCode", "ThrowingBinding", "ThrowingUpdate", "ThrowingResolution",
                      "ThrowingPrecision", "ThrowingLoad", "ThrowingConstructor"}));
    EXPECT_EQ(bashOffers({"describe", "--plugin", "missing.so", "CoreT"}), Offers{"CoreTexture"})
        << "those that there are, and no message";
}

/// A home directory with a plug-in at `my plug-ins/nodes.so`, and the ways to type that.
class TypedPlugin {
public:
    TypedPlugin() {
        std::filesystem::create_directory(home_ / "my plug-ins");
        std::filesystem::copy_file(testPlugin("hostile_nodes"), home_ / "my plug-ins/nodes.so");
    }
    std::string home() const { return home_.path().string(); }
    Names ways() const {
        return {"~/my\\ plug-ins/nodes.so", "~/'my plug-ins/nodes.so'", home() + "/my\\ plug-ins/nodes.so",
                "'" + home() + "/my plug-ins/nodes.so'", "\"" + home() + "/my plug-ins/nodes.so\""};
    }

private:
    TemporaryDirectory home_;
};

TEST(BashCompletion, ReadsPluginsAsTheyAreTyped) {
    const TypedPlugin plugin;
    for (const std::string& typed : plugin.ways()) {
        EXPECT_EQ(bashOffers({"describe", "--plugin", typed, "Pl"}, "/", plugin.home()), Offers{"Plain"})
            << typed;
    }
    EXPECT_EQ(bashOffers({"describe", "--plugin", "$(touch 'run me')", "CoreT"}, plugin.home()),
              Offers{"CoreTexture"});
    EXPECT_FALSE(std::filesystem::exists(plugin.home() + "/run me"));
}

TEST(BashCompletion, OffersTheChecks) {
    const Names checks = linesOf(outputOf({"validate", "--list"}));
    const Offers offers = bashOffers({"validate", "--only", ""});
    EXPECT_EQ(offers.size(), checks.size());
    for (const std::string& line : checks) {
        EXPECT_NE(offers.count(line.substr(0, line.find(' '))), 0U) << line;
    }
}

TEST(BashCompletion, OffersFiles) {
    const TemporaryDirectory directory;
    for (const char* file : {"metal.xml", "my metal.xml", "nodes.so", "notes.txt"}) {
        directory.write(file, "");
    }
    std::filesystem::create_directory(directory / "materials");
    const std::string where = directory.path().string();
    EXPECT_EQ(bashOffers({"export", ""}, where), (Offers{"metal.xml", "my metal.xml", "materials"}));
    EXPECT_EQ(bashOffers({"check", "my"}, where), Offers{"my metal.xml"});
    EXPECT_EQ(bashOffers({"graph", "met"}, where), Offers{"metal.xml"});
    EXPECT_EQ(bashOffers({"export", "-o", ""}, where), Offers{"materials"});
    EXPECT_EQ(bashOffers({"graph", "-o", "no"}, where), (Offers{"nodes.so", "notes.txt"}));
    EXPECT_EQ(bashOffers({"nodes", "--plugin", "n"}, where), Offers{"nodes.so"});
    EXPECT_EQ(bashOffers({"validate", "n"}, where), Offers{"nodes.so"});
}

TEST(ZshCompletion, IsSound) {
    if (!isInstalled("zsh")) {
        GTEST_SKIP() << "zsh is not installed";
    }
    const Outcome outcome = testing::run("zsh", {"-n", completions + "_patina"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(readText(completions + "_patina").rfind("#compdef patina\n", 0), 0U);
}

/// What zsh offers for the last of the words by a function of the completion.
Names zshOffers(const std::string& function, const Names& words, const std::string& home) {
    const std::string script = "_arguments() { : }; _describe() { print -rl -- ${(P)4} }; source $1; "
                               "_patina_program=$2; function=$3; shift 3; words=($@); CURRENT=$#; $function";
    Names arguments = {"-f", "-c", script, "zsh", completions + "_patina", PATINA_COMMAND, function};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Outcome outcome = testing::run("zsh", arguments, {{"HOME", home}});
    EXPECT_EQ(outcome.errors, "");
    return linesOf(outcome.output);
}

TEST(ZshCompletion, ReadsPluginsAsTheyAreTyped) {
    if (!isInstalled("zsh")) {
        GTEST_SKIP() << "zsh is not installed";
    }
    const TypedPlugin plugin;
    for (const std::string& typed : plugin.ways()) {
        const Names offers =
            zshOffers("_patina_node_types", {"describe", "--plugin", typed, "Pl"}, plugin.home());
        EXPECT_EQ(offers.front(), "Plain") << typed;
        EXPECT_EQ(offers.size(), coreTypes.size() + 24) << typed;
    }
    EXPECT_EQ(zshOffers("_patina_node_types", {"describe", "--plugin", "missing.so", "Pl"}, "/"), coreTypes);
}

TEST(ZshCompletion, OffersTheChecks) {
    if (!isInstalled("zsh")) {
        GTEST_SKIP() << "zsh is not installed";
    }
    Names names;
    for (const std::string& line : linesOf(outputOf({"validate", "--list"}))) {
        names.push_back(line.substr(0, line.find(' ')));
    }
    EXPECT_EQ(zshOffers("_patina_checks", {"validate", "--only", ""}, "/"), names);
}

// What is written about options is held against what each command's help says.

Names matches(const std::string& text, const char* pattern) {
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    Names found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

Names commands() {
    const std::string help = outputOf({"--help"});
    return matches(help.substr(help.find("Subcommands:")), R"(^  ([a-z]+) )");
}

/// The options in long form, or in short form where there is no long one.
Names optionsOf(const std::string& command) {
    return matches(outputOf({command, "--help"}), R"(^  (?:-[A-Za-z],)?(-[-A-Za-z]+)[ \n])");
}

/// The text from a beginning to the next end.
std::string section(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t first = text.find(begin);
    EXPECT_NE(first, std::string::npos) << begin;
    return first == std::string::npos ? "" : text.substr(first, text.find(end, first + begin.size()) - first);
}

TEST(Documentation, KnowsEveryCommandAndOption) {
    const std::string zsh =
        std::regex_replace(readText(completions + "_patina"), std::regex(R"(\$plugin)"), "--plugin");
    const std::string manual =
        std::regex_replace(readText(PATINA_SOURCE_DIRECTORY "/docs/patina.1"), std::regex(R"(\\-)"), "-");
    EXPECT_GE(commands().size(), 4U);
    for (const std::string& command : commands()) {
        const Offers offered = bashOffers({command, "-"});
        const std::string inZsh = section(zsh, "        " + command + ")\n", ";;");
        const std::string inManual = section(manual, ".SS patina " + command + "\n", ".S");
        EXPECT_NE(bashOffers({""}).count(command), 0U) << command;
        EXPECT_GE(optionsOf(command).size(), 3U) << command;
        for (const std::string& option : optionsOf(command)) {
            EXPECT_NE(offered.count(option), 0U) << command << ' ' << option;
            EXPECT_NE(inZsh.find(option), std::string::npos) << command << ' ' << option;
            EXPECT_TRUE(option == "--help" || inManual.find(option) != std::string::npos)
                << command << ' ' << option;
        }
    }
}

TEST(Manual, IsWellFormed) {
    if (!isInstalled("groff")) {
        GTEST_SKIP() << "groff is not installed";
    }
    const Outcome outcome =
        testing::run("groff", {"-man", "-ww", "-Tutf8", PATINA_SOURCE_DIRECTORY "/docs/patina.1"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_NE(outcome.output.find("turn material graphs into Cg shaders and bindings"), std::string::npos);
}

} // namespace
} // namespace patina
