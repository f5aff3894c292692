#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include "host/dynamic_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::documentText;
using testing::Environment;
using testing::maths;
using testing::node;
using testing::Outcome;
using testing::output;
using testing::property;
using testing::readText;
using testing::TemporaryDirectory;

using Names = std::vector<std::string>;

const std::string good = maths("m", "Invert") + output("colour", "m", "out_value");

Outcome patina(const std::vector<std::string>& arguments, const Environment& environment = {}) {
    return testing::run(PATINA_COMMAND, arguments, environment);
}

std::string testPlugin(const std::string& name) {
    return std::string(PATINA_TEST_PLUGINS) + "/" + name + DynamicLibrary::extension();
}

std::size_t lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// A file's digest as another program computes it.
std::string sha256Of(const std::filesystem::path& file) {
    const Outcome outcome = testing::run("sha256sum", {file.string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return outcome.output.substr(0, 64);
}

/// The bytes and times of all files in a directory.
auto stateOf(const std::filesystem::path& directory) {
    std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>> state;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        state[entry.path().string()] = {entry.is_regular_file() ? readText(entry.path()) : "",
                                        entry.last_write_time()};
    }
    return state;
}

TEST(Export, WritesThreeFiles) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(good, "Rusty"));
    const auto target = directory / "new/out";
    const Outcome outcome = patina({"export", material.string(), "-o", target.string()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_NE(outcome.output.find("Rusty"), std::string::npos) << outcome.output;
    EXPECT_EQ(stateOf(target).size(), 3U);
    EXPECT_EQ(readText(target / "Rusty.vert.cg").rfind("// Vertex program.", 0), 0U);
    EXPECT_EQ(readText(target / "Rusty.frag.cg").rfind("// Fragment program.", 0), 0U);
    EXPECT_EQ(readText(target / "Rusty.bindings.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<bindings version=\"1\" material=\"Rusty\">\n"
              "  <program stage=\"vertex\" file=\"Rusty.vert.cg\" sha256=\"" +
                  sha256Of(target / "Rusty.vert.cg") +
                  "\"/>\n"
                  "  <program stage=\"fragment\" file=\"Rusty.frag.cg\" sha256=\"" +
                  sha256Of(target / "Rusty.frag.cg") +
                  "\"/>\n"
                  "</bindings>\n");
}

TEST(Export, WritesJsonWhenAsked) {
    const TemporaryDirectory directory;
    const Outcome outcome = patina({"export", PATINA_EXAMPLE, "--json", "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(directory.names(), (Names{"PaintedMetal.bindings.json", "PaintedMetal.bindings.xml",
                                        "PaintedMetal.frag.cg", "PaintedMetal.vert.cg"}));
    EXPECT_NE(outcome.output.find("PaintedMetal.bindings.json: 7 bindings\n"), std::string::npos)
        << outcome.output;
    const auto json = nlohmann::json::parse(readText(directory / "PaintedMetal.bindings.json"));
    EXPECT_EQ(json.at("programs").at(0).at("sha256"), sha256Of(directory / "PaintedMetal.vert.cg"));
    EXPECT_EQ(json.at("bindings").at(3).at("tag"), "Tint");
    EXPECT_EQ(json.at("bindings").at(3).at("default"), (std::vector<double>{0.5, 0.022, 0.014}));
    EXPECT_EQ(json.at("bindings").at(2).at("srgb"), true);
    EXPECT_EQ(json.at("bindings").at(4).at("landings").at(0).at("register"), "c4");
}

TEST(Export, CarriesOverWhatAnArtistChanged) {
    const TemporaryDirectory directory;
    const std::vector<std::string> arguments = {"export", PATINA_EXAMPLE, "-q", "-o",
                                                directory.path().string()};
    EXPECT_EQ(patina(arguments).exitCode, 0);
    const auto file = directory / "PaintedMetal.bindings.xml";
    std::string bindings = readText(file);
    const std::string initial = " default=\"0.5, 0.022, 0.014\"";
    ASSERT_NE(bindings.find(initial), std::string::npos) << bindings;
    bindings.replace(bindings.find(initial), initial.size(), " default=\"0.1, 0.3, 0.9\"");
    testing::writeText(file, bindings);
    EXPECT_EQ(patina(arguments).exitCode, 0);
    EXPECT_EQ(readText(file), bindings);
}

TEST(Export, LeavesAMalformedBindingsFileAlone) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(good));
    const auto bindings = directory.write("Sample.bindings.xml", "<bindings version=\"1\">\n<binding/>\n");
    directory.write("Sample.vert.cg", "old");
    const auto before = stateOf(directory.path());
    const Outcome outcome = patina({"export", material.string(), "--json", "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(lines(outcome.errors), 1U) << outcome.errors;
    EXPECT_EQ(outcome.errors.rfind(bindings.string() + ":3: error: ", 0), 0U) << outcome.errors;
    EXPECT_NE(outcome.errors.find("move it away"), std::string::npos) << outcome.errors;
    EXPECT_EQ(stateOf(directory.path()), before);
}

TEST(Export, IsQuietWhenAsked) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(good));
    const Outcome outcome =
        patina({"export", "-q", material.string(), "--output", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output + outcome.errors, "");
}

TEST(Export, ExportsThePaintedMetal) {
    const TemporaryDirectory directory;
    const Outcome outcome = patina({"export", PATINA_EXAMPLE, "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(directory.names(),
              (Names{"PaintedMetal.bindings.xml", "PaintedMetal.frag.cg", "PaintedMetal.vert.cg"}));
}

// Bad input

struct BadInput {
    const char* what;
    std::string text;
};

const BadInput badInputs[] = {
    {"nothing", ""},
    {"no XML", "material"},
    {"a torn document", "<material version=\"1\" name=\"Sample\">"},
    {"bad UTF-8", "<material version=\"1\" name=\"Sample\xFF\"/>"},
    {"bad EUC-JP",
     "<?xml version=\"1.0\" encoding=\"EUC-JP\"?><material version=\"1\" name=\"Sample\xFF\xFF\xFF\"/>"},
    {"another document", "<html/>"},
    {"another version", "<material version=\"2\" name=\"Sample\"/>"},
    {"a document type", "<!DOCTYPE material><material version=\"1\" name=\"Sample\"/>"},
    {"no output", documentText("")},
    {"an unknown id", documentText(good + connection("x", "out_value", "m", "in_value1"))},
    {"an unknown port", documentText(good + connection("m", "out", "m", "in_value1"))},
    {"a cycle", documentText(good + connection("m", "out_value", "m", "in_value1"))},
    {"a cycle of references",
     documentText(good + node("t", "CoreTexture", property("Reference", "node", "t")))},
    {"a bad value", documentText(good + node("u", "CoreUv", property("Primary", "bool", "yes")))},
    {"a newer node", documentText("<node id=\"u\" type=\"CoreUv\" version=\"1\"/>\n" + good)},
    {"a node that cannot export", documentText(good + node("t", "CoreTexture"))},
    {"an id of two lines", documentText(good + node("a&#10;b", "CoreTexture"))},
};

TEST(Export, ReportsBadInputInOneLineAndTouchesNothing) {
    for (const auto& [what, text] : badInputs) {
        const TemporaryDirectory directory;
        const auto material = directory.write("m.xml", text);
        for (const char* name : {"Sample.vert.cg", "Sample.frag.cg", "Sample.other"}) {
            directory.write(name, std::string("old ") + name);
        }
        directory.write("Sample.bindings.xml", "<bindings version=\"1\" material=\"Old\"/>");
        const auto before = stateOf(directory.path());
        const Outcome outcome = patina({"export", material.string(), "-o", directory.path().string()});
        EXPECT_EQ(outcome.exitCode, 1) << what;
        EXPECT_EQ(lines(outcome.errors), 1U) << what << ": " << outcome.errors;
        const std::regex place(R"(.*/m\.xml:[1-9][0-9]*: error: .+\n)");
        EXPECT_TRUE(std::regex_match(outcome.errors, place)) << what << ": " << outcome.errors;
        EXPECT_EQ(outcome.output, "") << what;
        EXPECT_EQ(stateOf(directory.path()), before) << what;
    }
}

TEST(Export, MakesNoDirectoryForBadInput) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(""));
    EXPECT_EQ(patina({"export", material.string(), "-o", (directory / "out").string()}).exitCode, 1);
    EXPECT_EQ(directory.names(), Names{"m.xml"});
}

TEST(Export, ReportsUnreadableFiles) {
    const TemporaryDirectory directory;
    for (const std::string& file : {directory.path().string(), (directory / "missing.xml").string()}) {
        const Outcome outcome = patina({"export", file, "-o", directory.path().string()});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(lines(outcome.errors), 1U) << outcome.errors;
        EXPECT_EQ(outcome.errors.rfind(file + ":1: error: ", 0), 0U) << outcome.errors;
    }
    EXPECT_TRUE(directory.names().empty());
}

TEST(Export, WritesNoneOfTheFilesWhenOneCannotBe) {
    for (const char* blocked :
         {"Sample.vert.cg", "Sample.frag.cg", "Sample.bindings.xml", "Sample.bindings.json"}) {
        const TemporaryDirectory directory;
        const auto material = directory.write("m.xml", documentText(good));
        std::filesystem::create_directory(directory / blocked);
        const auto before = stateOf(directory.path());
        const Outcome outcome =
            patina({"export", material.string(), "--json", "-o", directory.path().string()});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.errors.rfind((directory / blocked).string() + ": error: ", 0), 0U)
            << outcome.errors;
        EXPECT_EQ(stateOf(directory.path()), before) << blocked;
    }
}

TEST(Export, WarnsOfUnknownTypesBeforeItFails) {
    const TemporaryDirectory directory;
    const auto material = directory.write(
        "m.xml", documentText("\n" + node("f", "StudioFur", property("Name", "string", "Rim")) +
                              output("colour", "f", "out")));
    const Outcome outcome = patina({"export", material.string(), "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(lines(outcome.errors), 2U) << outcome.errors;
    EXPECT_EQ(outcome.errors.rfind(material.string() + ":3: warning: ", 0), 0U) << outcome.errors;
    EXPECT_NE(outcome.errors.find("\n" + material.string() + ":3: error: "), std::string::npos)
        << outcome.errors;
    EXPECT_NE(
        outcome.errors.find("cannot export as the node \"Rim\" cannot be properly created. Please either get "
                            "the DLL that can load this node or replace with alternatives."),
        std::string::npos)
        << outcome.errors;
    EXPECT_EQ(directory.names(), Names{"m.xml"});
}

TEST(Export, WarnsOfUnknownPropertiesAndGoesOn) {
    const TemporaryDirectory directory;
    const auto material =
        directory.write("m.xml", documentText(good + node("u", "CoreUv", property("Rows", "integer", "1"))));
    const Outcome outcome = patina({"export", "-q", material.string(), "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(lines(outcome.errors), 1U) << outcome.errors;
    EXPECT_EQ(outcome.errors.rfind(material.string() + ":4: warning: ", 0), 0U) << outcome.errors;
    EXPECT_EQ(directory.names().size(), 4U);
}

// Usage

TEST(Usage, IsCheckedBeforeAnythingElse) {
    const std::vector<std::string> wrong[] = {
        {},
        {"export"},
        {"import", "a.xml"},
        {"export", "a.xml", "--frob"},
        {"export", "a.xml", "-o"},
        {"export", "a.xml", "--plugin"},
        {"a.xml"},
        {"--frob"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = patina(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.errors;
        EXPECT_NE(outcome.errors, "");
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(Usage, NamesTheCommandsWhenThereIsNoneOfAName) {
    const std::string commands =
        "; the commands are export, check, nodes, describe, graph, preview, validate\n";
    EXPECT_EQ(patina({"foo"}).errors, "error: there is no command \"foo\"" + commands);
    EXPECT_EQ(patina({"foo", "--help"}).exitCode, 2);
    EXPECT_EQ(patina({""}).errors, "error: there is no command \"\"" + commands);
    EXPECT_EQ(patina({"a\nb"}).errors, "error: there is no command \"a b\"" + commands);
}

TEST(Usage, RefusesEmptyFileNames) {
    const std::vector<std::string> wrong[] = {
        {"export", ""},
        {"export", PATINA_EXAMPLE, "-o", ""},
        {"export", PATINA_EXAMPLE, "--plugin", ""},
        {"check", PATINA_EXAMPLE, ""},
        {"graph", ""},
        {"graph", PATINA_EXAMPLE, "-o", ""},
        {"validate", ""},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = patina(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments[0];
        EXPECT_NE(outcome.errors.find("the name is empty"), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(Export, PrintsNoControlCharactersOfFileNames) {
    const TemporaryDirectory directory;
    const auto target = directory / "a\x1b[2Jb\nc";
    const Outcome outcome = patina({"export", PATINA_EXAMPLE, "-o", target.string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(lines(outcome.output), 4U) << outcome.output;
    EXPECT_NE(outcome.output.find("/a [2Jb c/PaintedMetal.vert.cg: "), std::string::npos) << outcome.output;
}

TEST(Usage, ShowsHelpWithExamples) {
    const Outcome outcome = patina({"export", "--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    for (const char* piece : {"MATERIAL.xml", "--output", "--plugin", "--json", "PATINA_PLUGIN_PATH",
                              "Examples:", "patina export painted_metal.xml"}) {
        EXPECT_NE(outcome.output.find(piece), std::string::npos) << piece << " in: " << outcome.output;
    }
    const Outcome general = patina({"--help"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_NE(general.output.find("export"), std::string::npos);
    const Outcome version = patina({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output.rfind("patina ", 0), 0U) << version.output;
}

// Plug-ins

TEST(Plugins, ComeFromThreePlaces) {
    const TemporaryDirectory directory;
    const auto material =
        directory.write("m.xml", documentText(node("p", "Plain") + maths("m", "Invert") +
                                              connection("p", "out_value", "m", "in_value1") +
                                              output("colour", "m", "out_value")));
    const std::vector<std::string> arguments = {"export", material.string(), "-q", "-o",
                                                directory.path().string()};
    EXPECT_EQ(patina(arguments).exitCode, 1) << "a placeholder";

    auto withPlugin = arguments;
    withPlugin.insert(withPlugin.end(),
                      {"--plugin", testPlugin("hostile_nodes"), "--plugin", PATINA_CORENODES});
    const Outcome given = patina(withPlugin);
    EXPECT_EQ(given.exitCode, 0) << given.errors;

    const TemporaryDirectory plugins;
    std::filesystem::copy_file(testPlugin("hostile_nodes"),
                               plugins / (std::string("studio") + DynamicLibrary::extension()));
    const Outcome found = patina(arguments, {{"PATINA_PLUGIN_PATH", "/missing:" + plugins.path().string()}});
    EXPECT_EQ(found.exitCode, 0) << found.errors;
}

TEST(Plugins, ThatCannotBeLoadedEndTheCommand) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", documentText(good));
    for (const std::string& plugin :
         {testPlugin("no_entry_points"), testPlugin("no_factory_entry"), testPlugin("other_version"),
          testPlugin("no_factory_made"), testPlugin("throwing_factory"), (directory / "missing.so").string(),
          material.string()}) {
        const Outcome outcome =
            patina({"export", material.string(), "-o", directory.path().string(), "--plugin", plugin});
        EXPECT_EQ(outcome.exitCode, 1) << plugin;
        EXPECT_EQ(lines(outcome.errors), 1U) << outcome.errors;
        EXPECT_EQ(outcome.errors.rfind(plugin + ": error: ", 0), 0U) << outcome.errors;
        EXPECT_EQ(directory.names(), Names{"m.xml"});
    }
}

TEST(Plugins, WhoseNodesThrowDoNotCrashTheCommand) {
    for (const char* type : {"ThrowingCode", "ThrowingBinding", "ThrowingUpdate", "ThrowingResolution",
                             "ThrowingLoad", "ThrowingConstructor"}) {
        const TemporaryDirectory directory;
        const auto material = directory.write(
            "m.xml", documentText("\n" + node("h", type) + output("colour", "h", "out_value")));
        const Outcome outcome = patina({"export", material.string(), "-o", directory.path().string(),
                                        "--plugin", testPlugin("hostile_nodes")});
        EXPECT_EQ(outcome.exitCode, 1) << type;
        EXPECT_EQ(lines(outcome.errors), 1U) << type << ": " << outcome.errors;
        EXPECT_EQ(outcome.errors.rfind(material.string() + ":3: error: ", 0), 0U)
            << type << ": " << outcome.errors;
        EXPECT_NE(outcome.errors.find("the node is out of order"), std::string::npos) << type;
        EXPECT_EQ(directory.names(), Names{"m.xml"});
    }
}

// Determinism

TEST(Export, WritesTheSameBytesInEveryRun) {
    const TemporaryDirectory directory;
    const auto exportInto = [&](const std::string& name, const Environment& environment) {
        const auto target = directory / name;
        const Outcome outcome = patina({"export", PATINA_EXAMPLE, "-q", "-o", target.string()}, environment);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        std::vector<std::string> contents;
        for (const char* file :
             {"PaintedMetal.vert.cg", "PaintedMetal.frag.cg", "PaintedMetal.bindings.xml"}) {
            contents.push_back(readText(target / file));
        }
        return contents;
    };
    const auto first = exportInto("first", {});
    for (const std::size_t size : {1U, 100U, 4097U, 100000U}) {
        EXPECT_EQ(exportInto("size" + std::to_string(size), {{"PADDING", std::string(size, 'x')}}), first);
    }
    EXPECT_EQ(exportInto("locale", {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}}), first);
    EXPECT_EQ(exportInto("again", {{"MALLOC_PERTURB_", "165"}}), first);
}

TEST(Export, HoldsDeepMaterials) {
    constexpr int length = 20000;
    const TemporaryDirectory directory;
    std::string body = maths("m0", "Invert");
    for (int i = 1; i < length; ++i) {
        const std::string id = "m" + std::to_string(i);
        body += node(id, "CoreMaths") + connection("m" + std::to_string(i - 1), "out_value", id, "in_value1");
    }
    const auto material =
        directory.write("m.xml", documentText(body + output("colour", "m19999", "out_value")));
    const Outcome outcome = patina({"export", "-q", material.string(), "-o", directory.path().string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(directory.names().size(), 4U);
}

} // namespace
} // namespace patina
