#include "tests/host/host_checks.h"

#include "host/checks/check_context.h"
#include "host/dynamic_library.h"
#include "nodemodel/shader_error.h"

#include <gtest/gtest.h>

#include <stdlib.h> // NOLINT: setenv is POSIX

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::TemporaryDirectory;

using Texts = std::vector<std::string>;

std::filesystem::path testPlugin(const std::string& name) {
    return std::filesystem::path(PATINA_TEST_PLUGINS) / (name + DynamicLibrary::extension());
}

/// Keeps what a check says.
class Recorder final : public CheckListener {
public:
    struct Finding {
        std::string nodeType;
        std::string text;
    };

    void examining(const std::string& nodeType, const std::string& situation) override {
        examined.insert(nodeType + (situation.empty() ? "" : " with " + situation));
    }
    void found(const std::string& nodeType, const std::string& text) override {
        findings.push_back({nodeType, text});
    }
    void skipped(const std::string& reason) override { reasons.push_back(reason); }

    /// Whether a finding matches a regular expression as a whole.
    bool has(const std::string& nodeType, const std::string& pattern) const {
        const std::regex text(pattern);
        return std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
            return finding.nodeType == nodeType && std::regex_match(finding.text, text);
        });
    }

    std::string allText() const {
        std::string text;
        for (const Finding& finding : findings) {
            text += "\n" + finding.nodeType + ": " + finding.text;
        }
        return text;
    }

    std::set<std::string> examined;
    std::vector<Finding> findings;
    Texts reasons;
};

/// Makes a check of a plug-in, which is wrong in the way named when that is not empty.
void check(const std::string& name, const std::filesystem::path& plugin, Recorder& recorder,
           const std::string& fault = "") {
    const PluginCheck* const found = findPluginCheck(name);
    ASSERT_NE(found, nullptr) << name;
    setenv("PATINA_TEST_FAULT", fault.c_str(), 1);
    unsetenv("PATINA_TEST_LOADED");
    runPluginCheck(*found, plugin, recorder);
    unsetenv("PATINA_TEST_FAULT");
}

struct Fault {
    const char* check;
    const char* fault;
    const char* nodeType;
    const char* text; ///< a regular expression for the whole of a finding
};

const Fault faults[] = {
    {"version", "version changes", "", "it gives another version each time"},
    {"factory", "same factory", "",
     "\"CreateNodeFactory\" gives the same factory twice; make a new one, since hosts delete each"},
    {"factory", "second factory missing", "", "\"CreateNodeFactory\" made no factory"},

    {"library", "no types", "", "it offers no node type"},
    {"library", "empty type name", "", "the type name \"\" is empty or not printable"},
    {"library", "type twice", "Sample", "the type is listed twice"},
    {"library", "empty category", "Sample", "the category is empty or not printable"},
    {"library", "unprintable display name", "Sample", "the display name is empty or not printable"},
    {"library", "delete in the category", "Sample", "the category is empty or not printable"},

    {"creation", "null node", "Sample", "createNode gives nothing"},
    {"creation", "other type name", "Sample", "its nodes call themselves \"Simple\""},
    {"creation", "shared node", "Sample", "a new node belongs to somebody else too"},
    {"creation", "type listed only", "Missing", "failed: cannot create \"Missing\" node"},
    {"creation", "type with a blank", "Sample ", "failed: cannot create \"Sample \" node"},
    {"creation", "null for unknown types", "",
     "createNode gives nothing for the unknown type \"no such node type\"; throw ShaderError"},
    {"creation", "null for unknown types", "",
     "createNode gives nothing for the unknown type \"\"; throw ShaderError"},
    {"creation", "node for unknown types", "Sample",
     "createNode gives a node for the unknown type \"Sample \"; throw ShaderError"},
    {"creation", "odd exception for unknown types", "",
     "failed with something other than ShaderError: it failed with something that is no exception"},

    {"icons", "no icon", "Sample", "the type can be created and has no icon"},
    {"icons", "icon key", "Sample", "the icon is wrong: pixel row 1 has the key \" \", which has no colour"},
    {"icons", "icon size", "Sample", "the icon is wrong: it is 16 by 32 pixels, not 32 by 32"},

    {"standard-properties", "Name before Type", "Sample", "property 1 is \"Name\", not \"Type\""},
    {"standard-properties", "PositionX a text", "Sample",
     "the property \"PositionX\" is of kind string, not float"},
    {"standard-properties", "Type editable", "Sample", "the property \"Type\" can be edited"},
    {"standard-properties", "PositionX of no kind", "Sample",
     "the property \"PositionX\" is of kind unknown, not float"},

    {"standard-properties", "Name unreachable", "Sample",
     "the node's handle of \"Name\" is another property"},
    {"standard-properties", "few properties", "Sample", "property 8 is missing, not \"Help Url\""},

    {"help-texts", "help text without name", "Sample",
     "the help text of the property \"Bright\" does not begin with \"Bright:\""},
    {"help-texts", "no help text", "Sample", "the visible property \"Bright\" has no help text"},

    {"properties", "property twice", "Sample", "there are two properties \"Bright\""},
    {"properties", "property twice", "Sample", "the list of properties and their index differ in length"},
    {"properties", "property nameless", "Sample", "a property has no name"},
    {"properties", "property unlisted", "Sample", "the property \"Bright\" is not found by its name"},
    {"properties", "property replaced", "Sample", "the property \"Bright\" is not found by its name"},
    {"properties", "value infinite", "Sample", "the value of the property \"PositionX\" is not finite"},
    {"properties", "enum value unknown", "Sample",
     "the value \"Halved\" of the property \"Mode\" is not one of its allowed values"},
    {"properties", "enum value twice", "Sample", "the property \"Mode\" allows a value twice"},

    {"ports", "input twice", "Sample", "there are two input ports \"in_value\""},
    {"ports", "output twice", "Sample", "there are two output ports \"out_value\""},
    {"ports", "port name", "Sample",
     "the output port \"out value\" has a name that is no Cg variable name; .*"},
    {"ports", "no label", "Sample", "the input port \"in_value\" has no label"},
    {"ports", "five components", "Sample", "the output port \"out_value\" has 5 components, not 1 to 4"},
    {"ports", "no components", "Sample", "the output port \"out_value\" has 0 components, not 1 to 4"},
    {"ports", "precision code beyond all", "Sample",
     "the output port \"out_value\" has the precision 99, which is the code of no value's type"},
    {"ports", "precision code", "Sample",
     "the output port \"out_value\" has the precision 1, which is the code of no value's type"},
    {"ports", "fixed width unknown", "Sample",
     "the output port \"out_value\" has a fixed width that is not known"},
    {"ports", "fixed precision unknown", "Sample",
     "the output port \"out_value\" has a fixed precision that is not known"},
    {"ports", "port connected", "Sample", "the input port \"in_value\" is connected; only hosts say so"},

    {"update", "update keeps ports", "Sample",
     "with \"Mode\" = \"Scaled\": updating the node again changed it: .*"},
    {"update", "update toggles", "Sample",
     "updating the node again changed it: property \"Bright\" with value 0 became property \"Bright\" with "
     "value 0, not visible"},

    {"resolution", "resolution grows", "Sample", "resolving component counts again changed the node: .*"},
    {"resolution", "precision alternates", "Sample",
     "resolving precision again changed the node: input port \"in_value\" labelled \"in\" of 1 components "
     "and precision 3 became input port \"in_value\" labelled \"in\" of 1 components and precision 2"},
    {"resolution", "resolution leaves unknown", "Sample",
     "the port \"out_value\" has no width from 1 to 4 when it is resolved"},
    {"resolution", "five components", "Sample",
     "the port \"out_value\" has no width from 1 to 4 when it is resolved"},

    {"loading", "loading newer", "Sample",
     "it loads properties of version 1, although its own have version 0; throw ShaderError"},
    {"loading", "loading newer", "Sample",
     "properties of a newer version changed the node: property \"Name\" with value \"Sample\" became "
     "property \"Name\" with value \"newer\""},
    {"loading", "loading renames", "Sample", "loading a node's own properties changed it: .*"},
    {"loading", "loading forgets", "Sample",
     "with \"Mode\" = \"Scaled\": a new node that loads the properties is another: property \"Mode\" with "
     "value \"Scaled\" became property \"Mode\" with value \"Plain\""},

    {"generation", "generation throws", "Sample",
     "failed with something other than ShaderError: no code today"},
    {"generation", "generation opens a bracket", "Sample",
     "the brackets in the code of \"sample\" are not balanced: a \"\\(\" has no counterpart"},
    {"generation", "generation closes a bracket", "Sample",
     "the brackets in the code of \"sample\" are not balanced: a \"\\)\" has no counterpart"},
    {"generation", "generation closes another bracket", "Sample",
     "the brackets in the code of \"sample\" are not balanced: a \"\\]\" has no counterpart"},
    {"generation", "generation reads nothing", "Sample",
     "nothing is linked to the connected input \"in_value\""},
    {"generation", "generation infinite", "Sample",
     "the code of \"sample\" has a constant \"inf\", which Cg does not know"},
    {"generation", "generation links nothing", "Sample",
     "nothing is linked to the connected input \"in_value\""},
    {"generation", "generation links nothing", "Sample", "nothing is linked to the port \"out_value\""},
    {"generation", "generation misses a port", "Sample",
     "the port \"out_value\" is linked to the port \"out_value\" of function \"sample\" .*, which has no "
     "such port"},
    {"generation", "generation forgets a node", "Sample",
     "the port \"in_value\" is linked to function \"sample\" .*, which was not added to the generator"},
    {"generation", "generation feeds nothing", "Sample",
     "nothing gives a value to the input \"in_forgotten\" of function \"sample\" .*"},
    {"generation", "generation feeds itself", "Sample",
     "the generated nodes feed each other in a circle: one is function .*"},

    {"determinism", "generation counts", "Sample",
     "an equal node generates other code: function \"sample1\" .* became function \"sample2\" .*"},

    {"bindings", "binding announced in vain", "Sample",
     "addBindings adds nothing, although generatesBinding says that it does"},
    {"bindings", "binding unannounced", "Sample",
     "with \"Bright\" = \"Yes\": addBindings adds bindings, although generatesBinding says that it does not"},
    {"bindings", "binding null", "Sample",
     "with \"Bright\" = \"Yes\": addBindings adds nothing in place of a binding"},
    {"bindings", "binding nameless", "Sample", "with \"Bright\" = \"Yes\": a binding has no name"},
    {"bindings", "binding of no kind", "Sample",
     "with \"Bright\" = \"Yes\": the binding \"odd\" has no valid kind or no components"},
    {"bindings", "binding of another class", "Sample",
     "with \"Bright\" = \"Yes\": the texture binding \"odd\" is no TextureBinding"},
    {"bindings", "binding text", "Sample",
     "with \"Bright\" = \"Yes\": the binding \"Sample\" cannot stand in a bindings file: its \"desc\" is no "
     "text in UTF-8, or has control characters"},
    {"bindings", "binding cut short", "Sample",
     "with \"Bright\" = \"Yes\": the binding \"Sample\" cannot stand in a bindings file: its \"group\" is no "
     "text in UTF-8, or has control characters"},
    {"bindings", "binding unknown control", "Sample",
     "with \"Bright\" = \"Yes\": the ui type of the float binding \"Sample\" is not read back as it was "
     "written"},

    {"threads", "one thread", "Sample",
     "creation fails while other threads create nodes: the factory is busy"},

    {"reloading", "works once", "", "it offers other node types when it is loaded again"},
};

/// A module that is wrong as a whole.
struct FaultyModule {
    const char* check;
    const char* plugin;
    const char* text; ///< as that of a fault
};

const FaultyModule faultyModules[] = {
    {"entry-points", "no_entry_points", "the entry point \"GetMaterialLibVersion\" is not exported; .*"},
    {"entry-points", "no_entry_points", "the entry point \"CreateNodeFactory\" is not exported; .*"},
    {"entry-points", "no_factory_entry", "the entry point \"CreateNodeFactory\" is not exported; .*"},
    {"exports", "extra_export", "\"studioHelper\" is exported too; hide everything but the entry points"},
    {"exports", "many_exports", "and [1-9][0-9]* more exports"},
    {"version", "other_version",
     "it speaks version 6, and this host version 5; rebuild it with this host's SDK"},
    {"version", "no_entry_points", ".*the entry point \"GetMaterialLibVersion\" is not exported"},
    {"factory", "other_version", "no factory was made, since the plug-in speaks another version"},
    {"factory", "no_factory_made", "\"CreateNodeFactory\" made no factory"},
    {"factory", "throwing_factory", "failed with something other than ShaderError: the licence is missing"},
    {"icons", "no_entry_points",
     ".*: error: this is no plug-in: it does not export \"GetMaterialLibVersion\""},
    {"icons", "missing", ".*: error: cannot load this plug-in: .*"},
};

TEST(PluginChecks, FindEveryFault) {
    for (const auto& [name, fault, nodeType, text] : faults) {
        Recorder recorder;
        check(name, testPlugin("faulty_nodes"), recorder, fault);
        EXPECT_TRUE(recorder.has(nodeType, text))
            << name << ", " << fault << ", " << nodeType << ": " << text << recorder.allText();
    }
}

TEST(PluginChecks, FindWhatIsWrongWithModules) {
    for (const auto& [name, plugin, text] : faultyModules) {
        Recorder recorder;
        check(name, testPlugin(plugin), recorder);
        EXPECT_TRUE(recorder.has("", text)) << name << ", " << plugin << ": " << text << recorder.allText();
    }
}

TEST(PluginChecks, FindNothingWrongWithSoundPlugins) {
    for (const std::filesystem::path& plugin :
         {std::filesystem::path(PATINA_CORENODES), testPlugin("faulty_nodes")}) {
        for (const PluginCheck& each : pluginChecks()) {
            Recorder recorder;
            check(each.name, plugin, recorder);
            EXPECT_EQ(recorder.allText(), "") << each.name << ", " << plugin;
        }
    }
}

TEST(PluginChecks, HaveAFaultEach) {
    std::set<std::string> proven;
    for (const Fault& fault : faults) {
        proven.insert(fault.check);
    }
    for (const FaultyModule& module : faultyModules) {
        proven.insert(module.check);
    }
    std::set<std::string> listed;
    for (const PluginCheck& each : pluginChecks()) {
        listed.insert(each.name);
    }
    EXPECT_EQ(proven, listed);
    EXPECT_EQ(findPluginCheck("frob"), nullptr);
}

TEST(PluginChecks, TryEverySettingOfEveryType) {
    Recorder recorder;
    check("update", testPlugin("faulty_nodes"), recorder);
    EXPECT_EQ(recorder.examined,
              (std::set<std::string>{
                  "", "Sample", "Sample with \"Bright\" = \"No\"", "Sample with \"Bright\" = \"Yes\"",
                  "Sample with \"Mode\" = \"Plain\"", "Sample with \"Mode\" = \"Scaled\"", "SampleStandIn",
                  "SampleStandIn with \"Bright\" = \"No\"", "SampleStandIn with \"Bright\" = \"Yes\"",
                  "SampleStandIn with \"Mode\" = \"Plain\"", "SampleStandIn with \"Mode\" = \"Scaled\""}));
}

TEST(PluginChecks, OnlyLookIntoElfModules) {
    const TemporaryDirectory directory;
    Recorder recorder;
    check("exports", directory.write("plugin.dll", "MZ"), recorder);
    EXPECT_EQ(recorder.reasons, Texts{"only ELF modules can be looked into"});
    EXPECT_EQ(recorder.allText(), "");
}

class PlainNode final : public MaterialNode {
public:
    PlainNode() : MaterialNode("Plain") {}
    void generateCode(GraphGenerator& /*generator*/) override {}
};

TEST(PluginChecks, ShowTheFirstDifferenceOfTwoStates) {
    Recorder recorder;
    detail::CheckContext context("nowhere.so", recorder);
    requireSame(context, "equal", {"a", "b"}, {"a", "b"});
    requireSame(context, "other", {"a", "b", "c"}, {"a", "x", "y"});
    requireSame(context, "longer", {"a"}, {"a", "b"});
    requireSame(context, "shorter", {"a", "b"}, {"a"});
    EXPECT_EQ(recorder.allText(),
              "\n: other: b became x\n: longer: nothing became b\n: shorter: b became nothing");
}

TEST(PluginChecks, TakeOnlyShaderErrorForARefusal) {
    EXPECT_TRUE(detail::isRefused([] { throw ShaderError("no"); }));
    EXPECT_FALSE(detail::isRefused([] {}));
    EXPECT_THROW(detail::isRefused([] { throw std::runtime_error("broken"); }), std::runtime_error);
}

TEST(PluginChecks, SeeTheValuesOfPropertiesOfEveryKind) {
    PlainNode node;
    node.properties->items.clear();
    const auto fresh = [&](const char* name) {
        const auto property = makeProperty(name);
        node.properties->add(property);
        return property;
    };
    fresh("bool")->setBool(true);
    fresh("integer")->setInteger(-7);
    fresh("float")->setFloat(0.5F);
    fresh("string")->setString("text");
    fresh("colour")->setColour(0.0F, 0.5F, 1.0F);
    fresh("odd")->kind = static_cast<PropertyType>(99);
    const auto choice = fresh("enum");
    choice->addEnumValue("One");
    choice->editable = false;
    const auto none = fresh("none");
    none->addNodeTypename("Plain");
    none->visible = false;
    const auto other = fresh("other");
    other->addNodeTypename("Plain");
    other->nodeValue = std::make_shared<PlainNode>();
    EXPECT_EQ(detail::propertyState(node),
              (Texts{"property \"bool\" with value 1", "property \"integer\" with value -7",
                     "property \"float\" with value 0.5", "property \"string\" with value \"text\"",
                     "property \"colour\" with value 0, 0.5, 1", "property \"odd\" with value \"\"",
                     "property \"enum\" with value \"One\", not editable",
                     "property \"none\" with value no node, not visible",
                     "property \"other\" with value node \"Plain\" (Plain)"}));
}

} // namespace
} // namespace patina
