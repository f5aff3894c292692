#include "host/check.h"
#include "tools/patina/command.h"
#include "tools/patina/terminal.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace patina::tool {

namespace {

struct CheckOptions {
    std::vector<std::string> materials;
    bool warningsAreErrors = false;
    bool quiet = false;
};

/// Errors and warnings of one material, by line.
void printReport(const CheckReport& report) {
    auto warning = report.warnings.begin();
    for (const HostError& error : report.errors) {
        while (warning != report.warnings.end() && warning->position.line < error.position().line) {
            printWarnings({*warning++});
        }
        printDiagnostic(error.what());
    }
    printWarnings({warning, report.warnings.end()});
}

int runCheck(const CheckOptions& options, const CommandLine& commandLine) {
    const PluginSet plugins = loadPlugins(commandLine);
    bool isSound = true;
    for (const std::string& file : options.materials) {
        const CheckReport report = checkFile(file, plugins);
        printReport(report);
        isSound = isSound && report.errors.empty() && (!options.warningsAreErrors || report.warnings.empty());
        if (!options.quiet) {
            std::cout << oneLine(file) << ": " << counted(report.errors.size(), "error") << ", "
                      << counted(report.warnings.size(), "warning") << '\n';
        }
    }
    return isSound ? success : failure;
}

} // namespace

void addCheckCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* command =
        commandLine.parser.add_subcommand("check", "Report everything that is wrong with materials.");
    command->add_option("materials", options->materials, "material documents, XML files")
        ->required()
        ->type_name("MATERIAL.xml")
        ->check(notEmpty());
    addPluginOption(*command, commandLine);
    command->add_flag("--werror", options->warningsAreErrors, "let warnings fail the check too");
    command->add_flag("-q,--quiet", options->quiet, "print nothing but warnings and errors");
    command->footer(
        "Takes each material through all that an export does, goes on where something is wrong, and\n"
        "writes nothing. Warns of inputs without a value, of nodes that nothing needs, and of\n"
        "bindings without a name of their own.\n\n"
        "Examples:\n"
        "  patina check painted_metal.xml\n"
        "  patina check --werror materials/*.xml\n\n"
        "Exit code: 0 when there are no errors, 1 when there are, 2 for wrong usage.");
    command->callback(
        [options, &commandLine] { commandLine.run = [&] { return runCheck(*options, commandLine); }; });
}

} // namespace patina::tool
