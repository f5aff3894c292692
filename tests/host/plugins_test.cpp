#include "tests/host/host_checks.h"

#include "bindings/bindings.h"
#include "host/dynamic_library.h"
#include "nodemodel/shader_error.h"
#include "shadergraph/shadergraph.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <stdlib.h> // NOLINT: setenv is POSIX

#include <optional>
#include <string>

namespace patina {
namespace {

using testing::connection;
using testing::expectError;
using testing::hostErrorOf;
using testing::node;
using testing::output;
using testing::TemporaryDirectory;

std::filesystem::path testPlugin(const std::string& name) {
    return std::filesystem::path(PATINA_TEST_PLUGINS) / (name + DynamicLibrary::extension());
}

struct BrokenPlugin {
    const char* name;
    std::vector<std::string_view> pieces;
};

TEST(LoadPlugin, RefusesModulesThatAreNoPlugins) {
    const BrokenPlugin rows[] = {
        {"no_entry_points", {"GetMaterialLibVersion"}},
        {"no_factory_entry", {"CreateNodeFactory"}},
        {"other_version", {"6", "5"}},
        {"no_factory_made", {"no node factory"}},
    };
    for (const auto& [name, pieces] : rows) {
        const auto file = testPlugin(name);
        const std::string error = hostErrorOf([&] { Plugin::load(file); });
        expectError(error, file.string(), {});
        for (const std::string_view piece : pieces) {
            EXPECT_NE(error.find(piece), std::string::npos) << error;
        }
    }
}

TEST(LoadPlugin, ReportsWhatAFactoryThrows) {
    const auto file = testPlugin("throwing_factory");
    expectError(hostErrorOf([&] { Plugin::load(file); }), file.string(), {"the licence is missing"});
}

TEST(LoadPlugin, RefusesFilesThatAreNoModules) {
    const TemporaryDirectory directory;
    const auto text = directory.write(std::string("text") + DynamicLibrary::extension(), "no module\n");
    expectError(hostErrorOf([&] { Plugin::load(text); }), text.string(), {"cannot load"});
    const auto empty = directory.write(std::string("empty") + DynamicLibrary::extension(), "");
    expectError(hostErrorOf([&] { Plugin::load(empty); }), empty.string(), {"cannot load"});
    const auto missing = directory / "missing.so";
    expectError(hostErrorOf([&] { Plugin::load(missing); }), missing.string(), {"cannot load"});
    expectError(hostErrorOf([&] { Plugin::load(directory.path()); }), directory.path().string(),
                {"cannot load"});
}

TEST(LoadPlugin, LooksForABareNameInTheCurrentDirectoryOnly) {
    const TemporaryDirectory directory;
    expectError(hostErrorOf([] { Plugin::load("libxml2.so.2"); }), "libxml2.so.2", {"cannot load"});
    const auto before = std::filesystem::current_path();
    std::filesystem::copy_file(PATINA_CORENODES, directory / "bare.so");
    std::filesystem::current_path(directory.path());
    EXPECT_EQ(Plugin::load("bare.so")->nodeLibrary().size(), 9U);
    std::filesystem::current_path(before);
}

TEST(LoadPlugin, OffersTheNodeLibrary) {
    const auto plugin = Plugin::load(PATINA_CORENODES);
    EXPECT_EQ(plugin->file(), PATINA_CORENODES);
    ASSERT_EQ(plugin->nodeLibrary().size(), 9U);
    EXPECT_EQ(plugin->nodeLibrary()[0].typeName, "CoreDefault");
    EXPECT_EQ(plugin->nodeLibrary()[8].displayName, "Animated Uv");
    EXPECT_EQ(plugin->createNode("CoreUv")->typeName(), "CoreUv");
    EXPECT_EQ(testing::shaderErrorOf([&] { plugin->createNode("CoreFancy"); }),
              "cannot create \"CoreFancy\" node");
}

TEST(LoadPlugin, TakesNoNodeForAnAnswerAsAFailure) {
    const auto plugin = Plugin::load(testPlugin("hostile_nodes"));
    EXPECT_EQ(testing::shaderErrorOf([&] { plugin->createNode("Nothing"); }),
              "cannot create \"Nothing\" node");
}

TEST(PluginLifetime, NodesKeepTheirPluginLoaded) {
    auto plugin = Plugin::load(PATINA_CORENODES);
    const std::weak_ptr<Plugin> watched = plugin;
    auto first = plugin->createNode("CoreMaths");
    auto second = plugin->createNode("CoreUv");
    plugin.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(first->caption(), "Multiply"); // runs the plug-in's code
    first.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(second->outputPort("read").componentCount, 2U);
    second.reset();
    EXPECT_TRUE(watched.expired());
}

TEST(PluginLifetime, AMaterialOutlivesItsPluginSet) {
    std::optional<PluginSet> plugins(std::in_place);
    plugins->add(PATINA_CORENODES);
    const std::weak_ptr<Plugin> watched = plugins->plugins().at(0);
    {
        Warnings warnings;
        Material material = buildMaterial(
            testing::parsed(node("m", "CoreMaths") + output("colour", "m", "out_value")), *plugins, warnings);
        plugins.reset();
        EXPECT_NE(testing::exportedFrom(material).fragmentProgram.content.find("mathsCode"),
                  std::string::npos);
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(PluginLifetime, AFailedMaterialLeavesNothingBehind) {
    const auto reference = [](const std::string& id, const std::string& to) {
        return node(id, "CoreTexture", testing::property("Reference", "node", to));
    };
    const std::string bodies[] = {
        reference("a", "a"),
        reference("a", "b") + reference("b", "a"),
        node("a", "CoreMaths") + node("b", "CoreMaths") + connection("a", "out_value", "b", "in_value1") +
            connection("b", "out_value", "a", "in_value1"),
        node("a", "CoreMaths", testing::property("Function", "enum", "Nope")),
    };
    for (const std::string& body : bodies) {
        std::optional<PluginSet> plugins(std::in_place);
        plugins->add(PATINA_CORENODES);
        const std::weak_ptr<Plugin> watched = plugins->plugins().at(0);
        Warnings warnings;
        EXPECT_NE(hostErrorOf([&] { buildMaterial(testing::parsed(body), *plugins, warnings); }),
                  testing::noError);
        plugins.reset();
        EXPECT_TRUE(watched.expired()) << body;
    }
}

TEST(PluginSet, FindsTheOneThatOffersAType) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(testPlugin("hostile_nodes"));
    EXPECT_EQ(plugins.plugins().size(), 2U);
    EXPECT_TRUE(plugins.offers("CoreUv"));
    EXPECT_TRUE(plugins.offers("Plain"));
    EXPECT_FALSE(plugins.offers("coreuv"));
    EXPECT_EQ(plugins.createNode("Plain")->typeName(), "Plain");
    EXPECT_EQ(plugins.createNode("CoreUv")->typeName(), "CoreUv");
    EXPECT_EQ(testing::shaderErrorOf([&] { plugins.createNode("CoreFancy"); }),
              "cannot create \"CoreFancy\" node");
}

TEST(PluginSet, RefusesTwoPluginsWithOneType) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    const auto second = testPlugin("second_uv");
    expectError(hostErrorOf([&] { plugins.add(second); }), second.string(), {"\"CoreUv\"", PATINA_CORENODES});
    EXPECT_EQ(plugins.plugins().size(), 1U);
    EXPECT_FALSE(plugins.offers("SecondNode"));
}

TEST(PluginSet, LoadsAFileOnceWhateverPathLeadsToIt) {
    const TemporaryDirectory directory;
    const auto link = directory / (std::string("other") + DynamicLibrary::extension());
    std::filesystem::create_symlink(PATINA_CORENODES, link);
    PluginSet plugins;
    plugins.add(link);
    plugins.add(PATINA_CORENODES);
    plugins.add(std::filesystem::path(PATINA_CORENODES).parent_path() / "." /
                std::filesystem::path(PATINA_CORENODES).filename());
    ASSERT_EQ(plugins.plugins().size(), 1U);
    EXPECT_EQ(plugins.plugins()[0]->file(), link);
}

TEST(PluginSet, LoadsFilesOfOneNameThatAreGiven) {
    const TemporaryDirectory directory;
    const auto second = directory / std::filesystem::path(PATINA_CORENODES).filename();
    std::filesystem::copy_file(testPlugin("hostile_nodes"), second);
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(second);
    ASSERT_EQ(plugins.plugins().size(), 2U);
    EXPECT_EQ(plugins.plugins()[1]->file(), second);
    EXPECT_TRUE(plugins.offers("Plain"));
}

TEST(PluginSet, TakesTheFirstOfOneFileNameOfTheSearchPath) {
    const TemporaryDirectory first;
    const TemporaryDirectory second;
    const std::string name = std::string("nodes") + DynamicLibrary::extension();
    std::filesystem::copy_file(PATINA_CORENODES, first / name);
    std::filesystem::copy_file(testPlugin("hostile_nodes"), second / name);
    PluginSet plugins;
    plugins.addDirectory(first.path());
    plugins.addDirectory(second.path());
    ASSERT_EQ(plugins.plugins().size(), 1U);
    EXPECT_EQ(plugins.plugins()[0]->file(), first / name);
    PluginSet given;
    given.add(second / name);
    given.addDirectory(first.path());
    ASSERT_EQ(given.plugins().size(), 1U) << "what is given comes before the search path";
    EXPECT_EQ(given.plugins()[0]->file(), second / name);
}

TEST(PluginSet, FollowsTheLinksOfADirectory) {
    const TemporaryDirectory first;
    const TemporaryDirectory second;
    const std::string extension = DynamicLibrary::extension();
    std::filesystem::copy_file(PATINA_CORENODES, first / ("nodes-1.2" + extension));
    std::filesystem::create_symlink("nodes-1.2" + extension, first / ("nodes" + extension));
    std::filesystem::copy_file(testPlugin("second_uv"), second / ("nodes" + extension));
    PluginSet plugins;
    plugins.addDirectory(first.path());
    ASSERT_EQ(plugins.plugins().size(), 1U);
    EXPECT_EQ(plugins.plugins()[0]->file(), first / ("nodes-1.2" + extension));
    plugins.addDirectory(second.path());
    EXPECT_EQ(plugins.plugins().size(), 1U) << "the link's name counts too";
}

TEST(PluginSet, AddsTheModulesOfADirectoryByName) {
    const TemporaryDirectory directory;
    const std::string extension = DynamicLibrary::extension();
    std::filesystem::copy_file(PATINA_CORENODES, directory / ("b" + extension));
    std::filesystem::copy_file(testPlugin("hostile_nodes"), directory / ("a" + extension));
    directory.write("c.txt", "no module");
    directory.write("c" + extension + ".bak", "no module");
    PluginSet plugins;
    plugins.addDirectory(directory.path());
    ASSERT_EQ(plugins.plugins().size(), 2U);
    EXPECT_EQ(plugins.plugins()[0]->file(), directory / ("a" + extension));
    EXPECT_EQ(plugins.plugins()[1]->file(), directory / ("b" + extension));
}

TEST(PluginSet, SkipsMissingDirectoriesAndRefusesBrokenModules) {
    const TemporaryDirectory directory;
    PluginSet plugins;
    plugins.addDirectory(directory / "missing");
    EXPECT_TRUE(plugins.plugins().empty());
    const auto broken = directory.write(std::string("broken") + DynamicLibrary::extension(), "no module");
    expectError(hostErrorOf([&] { plugins.addDirectory(directory.path()); }), broken.string(), {});
}

/// Sets the search path while it lives.
class SearchPath {
public:
    explicit SearchPath(const char* value) {
        if (const char* before = std::getenv(name)) {
            before_ = before;
        }
        set(value);
    }
    ~SearchPath() { set(before_ ? before_->c_str() : nullptr); }
    SearchPath(const SearchPath&) = delete;
    SearchPath& operator=(const SearchPath&) = delete;

private:
    static void set(const char* value) {
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }
    static constexpr const char* name = "PATINA_PLUGIN_PATH";
    std::optional<std::string> before_;
};

TEST(PluginSearchPath, EndsBesideTheProgram) {
    using Paths = std::vector<std::filesystem::path>;
    const std::filesystem::path beside = "/opt/patina/lib/patina/plugins";
    const struct {
        const char* variable;
        Paths paths;
    } rows[] = {
        {nullptr, {beside}},
        {"", {beside}},
        {":", {beside}},
        {"/a", {"/a", beside}},
        {"/b:/a", {"/b", "/a", beside}},
        {":/a::b c:", {"/a", "b c", beside}},
    };
    for (const auto& [variable, paths] : rows) {
        const SearchPath set(variable);
        EXPECT_EQ(pluginSearchPath("/opt/patina/bin/patina"), paths);
    }
}

/// What a material of a hostile node and Core nodes reports.
struct Hostile {
    const char* type;
    std::vector<std::string_view> pieces;
};

TEST(HostileNodes, FailWithTheNodeNamed) {
    const Hostile rows[] = {
        {"Interface", {"node \"h\" (\"Interface\")", "interface parameter \"lamp\" (float,flags=0)"}},
        {"Interpolant", {"node \"h\" (\"Interpolant\")", "\"write\"", "interpolant parameter (float)"}},
        {"VertexInt", {"node \"h\" (\"VertexInt\")", "int"}},
        {"Loop", {"node \"h\" (\"Loop\")", "itself"}},
        {"Unfed", {"node \"h\" (\"Unfed\")", "\"in_value\"", "function \"hungry\" (1/1/*)"}},
        {"Silent", {"node \"h\" (\"Silent\")", "\"out_value\""}},
        {"WrongPort", {"node \"h\" (\"WrongPort\")", "\"out_value\""}},
        {"DuplicateParameter",
         {"node \"h\" (\"DuplicateParameter\")",
          "parameter name \"out_value\" is duplicated in function \"unknown\""}},
        {"ThrowingCode", {"node \"h\" (\"ThrowingCode\")", "the node is out of order"}},
        {"ThrowingBinding", {"node \"h\" (\"ThrowingBinding\")", "the node is out of order"}},
        {"ThrowingUpdate", {"node \"h\" (\"ThrowingUpdate\")", "the node is out of order"}},
        {"ThrowingResolution", {"node \"h\" (\"ThrowingResolution\")", "the node is out of order"}},
        {"ThrowingPrecision", {"node \"h\" (\"ThrowingPrecision\")", "the node is out of order"}},
        {"ThrowingLoad", {"node \"h\" (\"ThrowingLoad\")", "the node is out of order"}},
        {"ThrowingConstructor", {"node \"h\"", "the node is out of order"}},
        {"Nothing", {"node \"h\"", "cannot create \"Nothing\" node"}},
    };
    for (const auto& [type, pieces] : rows) {
        PluginSet plugins;
        plugins.add(PATINA_CORENODES);
        plugins.add(testPlugin("hostile_nodes"));
        std::string error;
        try {
            Warnings warnings;
            Material material =
                buildMaterial(testing::parsed("\n" + node("h", type) + output("colour", "h", "out_value")),
                              plugins, warnings);
            testing::exportedFrom(material);
            ADD_FAILURE() << type << " does not fail";
        } catch (const HostError& hostError) {
            error = hostError.what();
        } catch (const std::exception& other) {
            ADD_FAILURE() << type << " fails with no HostError but: " << other.what();
            continue;
        }
        EXPECT_EQ(error.rfind("sample.xml:", 0), 0U) << error;
        for (const std::string_view piece : pieces) {
            EXPECT_NE(error.find(piece), std::string::npos) << piece << " in: " << error;
        }
        const CheckReport report = checkMaterial(
            testing::parsed("\n" + node("h", type) + output("colour", "h", "out_value")), plugins);
        ASSERT_EQ(report.errors.size(), 1U) << type;
        EXPECT_EQ(report.errors[0].what(), error);
    }
}

TEST(HostileNodes, MayNameTheirFunctionsAsTheyLike) {
    PluginSet plugins;
    plugins.add(testPlugin("hostile_nodes"));
    Warnings warnings;
    Material material = buildMaterial(
        testing::parsed(node("h", "ConversionName") + output("colour", "h", "out_value")), plugins, warnings);
    const std::string program = testing::exportedFrom(material).fragmentProgram.content;
    EXPECT_NE(program.find("void promoteAndSplat( out float out_value )\n{\n\tout_value = 1.0;\n}\n"),
              std::string::npos)
        << program;
}

TEST(HostileNodes, MayRunOutOfMemory) {
    for (const char* type : {"HungryCode", "HungryLoad", "HungryConstructor"}) {
        PluginSet plugins;
        plugins.add(testPlugin("hostile_nodes"));
        const auto exportIt = [&] {
            Warnings warnings;
            Material material = buildMaterial(
                testing::parsed(node("h", type) + output("colour", "h", "out_value")), plugins, warnings);
            exportMaterial(material, warnings);
        };
        EXPECT_THROW(exportIt(), std::bad_alloc) << type;
    }
    PluginSet plugins;
    plugins.add(testPlugin("hostile_nodes"));
    EXPECT_THROW(summariseNode(plugins, "HungryConstructor"), std::bad_alloc);
}

TEST(HostileNodes, MayFixTheirPrecision) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(testPlugin("hostile_nodes"));
    Warnings warnings;
    Material material = buildMaterial(testing::parsed(node("h", "Plain") + testing::maths("m", "Invert") +
                                                      connection("h", "out_value", "m", "in_value1") +
                                                      output("colour", "m", "out_value")),
                                      plugins, warnings);
    resolveMaterial(material);
    EXPECT_EQ(material.items[0].node->outputPort("out_value").getPrecision(), 2U);
}

TEST(HostileNodes, LeaveAMaterialAsItWasWhenTheyTakeNoEdit) {
    PluginSet plugins;
    plugins.add(testPlugin("hostile_nodes"));
    Warnings warnings;
    Material material = buildMaterial(
        testing::parsed(node("h", "Tired") + output("colour", "h", "out_value")), plugins, warnings);
    const MaterialDocument before = material.document;
    EXPECT_NE(hostErrorOf([&] { setProperty(material, "h", "Description", "new"); }), testing::noError);
    EXPECT_TRUE(material.document == before);
    EXPECT_EQ(material.items[0].node->descriptionProperty->getString(), "");
    EXPECT_EQ(hostErrorOf([&] { addNode(material, plugins, "Nothing"); }),
              "sample.xml: error: node \"nothing1\": cannot create \"Nothing\" node");
}

} // namespace
} // namespace patina
