#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include "host/dynamic_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace patina {
namespace {

using nlohmann::json;
using testing::Outcome;
using testing::TemporaryDirectory;

const std::string sound = "";

std::string testPlugin(const std::string& name) {
    return std::string(PATINA_TEST_PLUGINS) + "/" + name + DynamicLibrary::extension();
}

/// Runs `patina validate` with the plug-in that is wrong in the way named.
Outcome validate(const std::vector<std::string>& arguments, const std::string& fault = sound) {
    std::vector<std::string> all = {"validate"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return testing::run(PATINA_COMMAND, all, {{"PATINA_TEST_FAULT", fault}});
}

/// What one check says of a plug-in.
json checked(const std::string& check, const std::string& plugin, const std::string& fault = sound) {
    const Outcome outcome = validate({"--json", "--timeout", "60", "--only", check, plugin}, fault);
    const json document = json::parse(outcome.output, nullptr, false);
    if (document.is_discarded()) {
        ADD_FAILURE() << check << ", " << fault << ": " << outcome.output << outcome.errors;
        return {};
    }
    const json result = document["plugins"][0]["checks"][0];
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.exitCode, result["status"] == "failed" ? 1 : 0);
    EXPECT_EQ(document["plugins"][0]["passed"], result["status"] != "failed");
    EXPECT_EQ(document["plugins"][0]["file"], plugin);
    EXPECT_EQ(document["plugins"][0]["checks"].size(), 1U);
    EXPECT_EQ(result["name"], check);
    return result;
}

// Every fault is found

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

    {"library", "no types", "", "it offers no node type"},
    {"library", "empty type name", "", "the type name \"\" is empty or not printable"},
    {"library", "type twice", "Sample", "the type is listed twice"},
    {"library", "empty category", "Sample", "the category is empty or not printable"},
    {"library", "unprintable display name", "Sample", "the display name is empty or not printable"},

    {"creation", "null node", "Sample", "createNode gives nothing"},
    {"creation", "other type name", "Sample", "its nodes call themselves \"Simple\""},
    {"creation", "shared node", "Sample", "a new node belongs to somebody else too"},
    {"creation", "type listed only", "Missing", "failed: cannot create \"Missing\" node"},
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
    {"bindings", "binding text", "Sample",
     "with \"Bright\" = \"Yes\": the annotation \"desc\" of the binding \"Sample\" is no text in UTF-8, or "
     "has "
     "control characters"},
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

bool hasFinding(const json& result, const std::string& nodeType, const std::string& pattern) {
    const std::regex text(pattern);
    return std::any_of(result["findings"].begin(), result["findings"].end(), [&](const json& finding) {
        return finding["nodeType"] == nodeType && std::regex_match(finding["text"].get<std::string>(), text);
    });
}

void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.fault; }

class Faults : public ::testing::TestWithParam<Fault> {};

TEST_P(Faults, AreFound) {
    const Fault& expected = GetParam();
    const json result = checked(expected.check, testPlugin("faulty_nodes"), expected.fault);
    EXPECT_EQ(result["status"], "failed") << expected.fault;
    EXPECT_TRUE(hasFinding(result, expected.nodeType, expected.text)) << expected.fault << ": " << result;
}

std::string testName(const ::testing::TestParamInfo<Fault>& info) {
    std::string name = std::to_string(info.index) + "_" + info.param.check + "_" + info.param.fault;
    std::replace_if(
        name.begin(), name.end(), [](char letter) { return letter == ' ' || letter == '-'; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Validate, Faults, ::testing::ValuesIn(faults), testName);

TEST(Validate, FindsWhatIsWrongWithModules) {
    for (const auto& [check, plugin, text] : faultyModules) {
        const json result = checked(check, testPlugin(plugin));
        EXPECT_EQ(result["status"], "failed") << plugin;
        EXPECT_TRUE(hasFinding(result, "", text)) << plugin << ": " << result;
    }
}

TEST(Validate, HasAFaultForEachCheck) {
    std::set<std::string> proven;
    for (const Fault& fault : faults) {
        proven.insert(fault.check);
    }
    for (const FaultyModule& module : faultyModules) {
        proven.insert(module.check);
    }
    std::set<std::string> listed;
    for (const json& check : json::parse(validate({"--list", "--json"}).output)) {
        listed.insert(check["name"]);
    }
    EXPECT_EQ(proven, listed);
}

TEST(Validate, FindsThatAPluginEndsTheProcess) {
    const struct {
        const char* check;
        const char* fault;
        const char* nodeType;
        const char* text; ///< sanitizers turn some signals into exit codes
    } ends[] = {
        {"creation", "crashes", "Sample",
         "(crashed \\(signal 11, segmentation fault\\)|ended the process with exit code [1-9][0-9]*) before "
         "the check was over"},
        {"creation", "aborts", "Sample", "crashed \\(signal 6, abort\\) before the check was over"},
        {"creation", "exits", "Sample", "ended the process with exit code 0 before the check was over"},
        {"entry-points", "version crashes", "", "crashed \\(signal 6, abort\\) before the check was over"},
        {"generation", "generation crashes", "Sample",
         "with \"Mode\" = \"Scaled\": crashed \\(signal 6, abort\\) before the check was over"},
    };
    for (const auto& [check, fault, nodeType, text] : ends) {
        const json result = checked(check, testPlugin("faulty_nodes"), fault);
        EXPECT_EQ(result["status"], "failed") << fault;
        EXPECT_TRUE(hasFinding(result, nodeType, text)) << fault << ": " << result;
    }
}

TEST(Validate, EndsWhatDoesNotEnd) {
    for (const auto& [check, fault] :
         {std::pair("creation", "hangs"), std::pair("resolution", "resolution hangs")}) {
        const Outcome outcome =
            validate({"--timeout", "1", "--only", check, testPlugin("faulty_nodes")}, fault);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_NE(outcome.output.find("             Sample: still running after 1 s\n"), std::string::npos)
            << outcome.output;
    }
}

// Sound plug-ins

TEST(Validate, PassesSoundPlugins) {
    const Outcome outcome = validate({"--json", PATINA_CORENODES, testPlugin("faulty_nodes")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    const json document = json::parse(outcome.output);
    ASSERT_EQ(document["plugins"].size(), 2U);
    for (const json& plugin : document["plugins"]) {
        EXPECT_EQ(plugin["passed"], true);
        EXPECT_EQ(plugin["checks"].size(), 19U);
        for (const json& check : plugin["checks"]) {
            const bool skipped = check["name"] == "exports" && check["status"] == "skipped";
            EXPECT_TRUE(skipped || check["status"] == "ok") << check;
            EXPECT_EQ(check["findings"], json::array());
        }
    }
}

// What is printed

TEST(Validate, PrintsALineForEachCheckAndItsFindings) {
    const std::string plugin = testPlugin("faulty_nodes");
    const Outcome outcome = validate({"--only", "icons", "--only", "library", plugin}, "no icon");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, plugin + "\n"
                                       "  ok       library\n"
                                       "  FAILED   icons\n"
                                       "             Sample: the type can be created and has no icon\n"
                                       "2 checks: 1 passed, 1 failed, 0 skipped\n");
}

TEST(Validate, SkipsWhatCannotBeChecked) {
    const std::string plugin = testPlugin("no_factory_made");
    const Outcome outcome = validate({plugin, "--only", "ports", "--only", "factory"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, plugin + "\n"
                                       "  FAILED   factory\n"
                                       "             \"CreateNodeFactory\" made no factory\n"
                                       "  skipped  ports: the check factory failed\n"
                                       "2 checks: 0 passed, 1 failed, 1 skipped\n");
}

TEST(Validate, OnlyLooksIntoElfModules) {
    const TemporaryDirectory directory;
    const auto file = directory.write("plugin.dll", "MZ");
    const json result = checked("exports", file.string());
    EXPECT_EQ(result["status"], "skipped");
    EXPECT_EQ(result["reason"], "only ELF modules can be looked into");
}

TEST(Validate, ChecksEveryPluginWhateverTheFirstIs) {
    const std::string first = testPlugin("no_entry_points");
    const std::string second = testPlugin("faulty_nodes");
    const Outcome outcome = validate({"--only", "entry-points", first, second});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.output.find("\n" + second + "\n  ok       entry-points\n"), std::string::npos)
        << outcome.output;
}

TEST(Validate, ListsItsChecks) {
    const Outcome text = validate({"--list"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_NE(text.output.find("icons                 every creatable type has a well-formed XPM icon of 32 "
                               "by 32\n"),
              std::string::npos)
        << text.output;
    const json list = json::parse(validate({"--list", "--json"}).output);
    ASSERT_EQ(list.size(), 19U);
    EXPECT_EQ(list[0]["name"], "entry-points");
    EXPECT_EQ(list[0]["description"], "both entry points are exported and can be called");
}

TEST(Validate, RefusesWrongUsage) {
    const std::vector<std::string> wrong[] = {
        {},
        {"--only", "frob", "a.so"},
        {"--only", "a.so"},
        {"--timeout", "0", "a.so"},
        {"--timeout", "soon", "a.so"},
        {"--run-check", "frob", "a.so"},
        {"--frob"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = validate(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.errors;
        EXPECT_NE(outcome.errors, "");
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(Validate, HelpsWithExamples) {
    const Outcome outcome = validate({"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.output.find("patina validate studio_nodes.so --only icons --only help-texts"),
              std::string::npos);
    EXPECT_EQ(outcome.output.find("run-check"), std::string::npos);
}

} // namespace
} // namespace patina
