#include "tools/patina/check_process.h"
#include "tools/patina/command.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace patina::tool {

using nlohmann::ordered_json;

namespace {

struct ValidateOptions {
    std::vector<std::string> plugins;
    std::vector<std::string> only; ///< empty: all checks
    std::string runCheck;          ///< the one check to make in this process; empty for users
    unsigned timeLimit = 30;       ///< seconds
    bool list = false;
    bool json = false;
};

struct NamedResult {
    const PluginCheck* check;
    CheckResult result;
};

const char* statusName(const CheckResult& result) {
    if (result.failed()) {
        return "failed";
    }
    return result.skippedBecause.empty() ? "ok" : "skipped";
}

std::vector<std::string> checkNames() {
    std::vector<std::string> names;
    for (const PluginCheck& check : pluginChecks()) {
        names.emplace_back(check.name);
    }
    return names;
}

bool isWanted(const PluginCheck& check, const ValidateOptions& options) {
    return options.only.empty() ||
           std::find(options.only.begin(), options.only.end(), check.name) != options.only.end();
}

// Printing

/// The width of the first column: of the longest check's name, or of a status.
constexpr int nameWidth = 22;
constexpr int statusWidth = 9;
constexpr const char* findingIndent = "             ";

void printJson(const ordered_json& json) {
    std::cout << json.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

void printResult(const NamedResult& named) {
    const CheckResult& result = named.result;
    std::cout << "  " << std::left << std::setw(statusWidth)
              << (result.failed() ? "FAILED" : statusName(result)) << named.check->name;
    std::cout << (result.skippedBecause.empty() ? "" : ": ") << result.skippedBecause << '\n';
    for (const CheckFinding& finding : result.findings) {
        std::cout << findingIndent << finding.nodeType << (finding.nodeType.empty() ? "" : ": ")
                  << finding.text << '\n';
    }
    std::string_view output = result.output;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n') + 1);
        std::cout << findingIndent << "| " << line;
        output.remove_prefix(line.size());
    }
    std::cout << std::flush;
}

void printSummary(const std::vector<NamedResult>& results) {
    const auto count = [&](const std::string& status) {
        return std::count_if(results.begin(), results.end(),
                             [&](const NamedResult& named) { return statusName(named.result) == status; });
    };
    std::cout << counted(results.size(), "check") << ": " << count("ok") << " passed, " << count("failed")
              << " failed, " << count("skipped") << " skipped\n";
}

ordered_json jsonOf(const NamedResult& named) {
    ordered_json json = {{"name", named.check->name}, {"status", statusName(named.result)}};
    if (!named.result.skippedBecause.empty()) {
        json["reason"] = named.result.skippedBecause;
    }
    json["findings"] = ordered_json::array();
    for (const CheckFinding& finding : named.result.findings) {
        json["findings"].push_back({{"nodeType", finding.nodeType}, {"text", finding.text}});
    }
    if (!named.result.output.empty()) {
        json["output"] = named.result.output;
    }
    return json;
}

int listChecks(const ValidateOptions& options) {
    ordered_json json = ordered_json::array();
    for (const PluginCheck& check : pluginChecks()) {
        if (options.json) {
            json.push_back({{"name", check.name}, {"description", check.description}});
        } else {
            std::cout << std::left << std::setw(nameWidth) << check.name << check.description << '\n';
        }
    }
    if (options.json) {
        printJson(json);
    }
    return success;
}

// Checking

/// Makes the wanted checks of a plug-in one after another, and prints each unless all are printed in the end.
std::vector<NamedResult> checkPlugin(const std::string& plugin, const ValidateOptions& options,
                                     const CommandLine& commandLine) {
    std::vector<NamedResult> results;
    const PluginCheck* obstacle = nullptr;
    for (const PluginCheck& check : pluginChecks()) {
        if (!isWanted(check, options)) {
            continue;
        }
        CheckResult result;
        if (obstacle != nullptr) {
            result.skippedBecause = std::string("the check ") + obstacle->name + " failed";
        } else {
            result = makeCheck(commandLine.program, check, plugin, std::chrono::seconds(options.timeLimit));
        }
        if (result.failed() && check.basic) {
            obstacle = &check;
        }
        results.push_back({&check, std::move(result)});
        if (!options.json) {
            printResult(results.back());
        }
    }
    return results;
}

int validate(const ValidateOptions& options, const CommandLine& commandLine) {
    bool allPassed = true;
    ordered_json json = {{"plugins", ordered_json::array()}};
    for (const std::string& plugin : options.plugins) {
        if (!options.json) {
            std::cout << oneLine(plugin) << '\n' << std::flush;
        }
        const std::vector<NamedResult> results = checkPlugin(plugin, options, commandLine);
        const bool passed = std::none_of(results.begin(), results.end(),
                                         [](const NamedResult& named) { return named.result.failed(); });
        allPassed = allPassed && passed;
        ordered_json entry = {{"file", plugin}, {"passed", passed}, {"checks", ordered_json::array()}};
        for (const NamedResult& named : results) {
            entry["checks"].push_back(jsonOf(named));
        }
        json["plugins"].push_back(std::move(entry));
        if (!options.json) {
            printSummary(results);
        }
    }
    if (options.json) {
        printJson(json);
    }
    return allPassed ? success : failure;
}

int runValidate(const ValidateOptions& options, const CommandLine& commandLine) {
    if (!options.runCheck.empty()) {
        reportCheck(*findPluginCheck(options.runCheck), options.plugins.front());
        return success;
    }
    return options.list ? listChecks(options) : validate(options, commandLine);
}

} // namespace

void addValidateCommand(CommandLine& commandLine) {
    constexpr unsigned longestTimeLimit = 24 * 60 * 60;
    const auto options = std::make_shared<ValidateOptions>();
    CLI::App* command = commandLine.parser.add_subcommand("validate", "Check plug-ins for mistakes.");
    CLI::Option* plugins = command->add_option("plugin", options->plugins, "the plug-ins to check")
                               ->type_name("PLUGIN")
                               ->check(notEmpty());
    command->add_option("--only", options->only, "make only this check; may be given repeatedly")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(CLI::IsMember(checkNames()).description("")); // --list has them
    command->add_option("--timeout", options->timeLimit, "how long a check may take; 30 unless given")
        ->type_name("SECONDS")
        ->check(CLI::Range(1U, longestTimeLimit).description(""));
    command->add_flag("--list", options->list, "list the checks and do nothing else");
    command->add_flag("--json", options->json, "print JSON");
    command->add_option(runCheckOption, options->runCheck)
        ->check(CLI::IsMember(checkNames()))
        ->group(""); // for the command itself
    command->footer(
        "Makes each check in a process of its own, so that a crash, an exit or a hang is a finding "
        "too.\n\n"
        "Examples:\n"
        "  patina validate studio_nodes.so\n"
        "  patina validate studio_nodes.so --only icons --only help-texts\n"
        "  patina validate --json build/*.so\n"
        "  patina validate --list\n\n"
        "Exit code: 0 when all checks passed, 1 when one failed, 2 for wrong usage.");
    command->callback([options, plugins, &commandLine] {
        if (options->plugins.empty() && !options->list) {
            throw CLI::RequiredError(plugins->get_name());
        }
        commandLine.run = [options, &commandLine] { return runValidate(*options, commandLine); };
    });
}

} // namespace patina::tool
