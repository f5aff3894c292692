#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include "host/dynamic_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <regex>
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

bool hasFinding(const json& result, const std::string& nodeType, const std::string& pattern) {
    const std::regex text(pattern);
    return std::any_of(result["findings"].begin(), result["findings"].end(), [&](const json& finding) {
        return finding["nodeType"] == nodeType && std::regex_match(finding["text"].get<std::string>(), text);
    });
}

// What is wrong is found (plugin_checks_test.cpp has every fault)

TEST(Validate, ReportsWhatAPluginDoesWrong) {
    const json icons = checked("icons", testPlugin("faulty_nodes"), "no icon");
    EXPECT_EQ(icons["status"], "failed");
    EXPECT_TRUE(hasFinding(icons, "Sample", "the type can be created and has no icon")) << icons;
    const json module = checked("icons", testPlugin("missing"));
    EXPECT_EQ(module["status"], "failed");
    EXPECT_TRUE(hasFinding(module, "", ".*: error: cannot load this plug-in: .*")) << module;
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
