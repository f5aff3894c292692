#include "tools/patina/command.h"
#include "tools/patina/terminal.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <system_error>
#include <vector>

namespace {

std::filesystem::path programPath(const char* firstArgument) {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::absolute(firstArgument) : path;
}

/// The arguments in the order that the parser takes them, last first. Compilers' -MD becomes a long option:
/// the parser would read it as -M and -D.
std::vector<std::string> withLongOptions(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::replace(arguments.begin(), arguments.end(), std::string("-MD"), std::string("--depfile"));
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

/// What is wrong with the name of a command, when anything is; the parser would only ask for one.
std::string complaintAbout(const std::string& name, const CLI::App& parser) {
    std::string commands;
    for (const CLI::App* command : parser.get_subcommands({})) {
        if (command->get_name() == name) {
            return {};
        }
        commands += (commands.empty() ? "" : ", ") + command->get_name();
    }
    return "there is no command \"" + name + "\"; the commands are " + commands;
}

int run(int argc, char** argv) {
    patina::tool::CommandLine commandLine{
        .parser = CLI::App("Patina: material graphs to Cg shaders and bindings.", "patina"),
        .program = programPath(argv[0])};
    CLI::App& parser = commandLine.parser;
    parser.require_subcommand(1);
    parser.set_version_flag("--version", "patina " PATINA_VERSION);
    patina::tool::addExportCommand(commandLine);
    patina::tool::addCheckCommand(commandLine);
    patina::tool::addNodesCommand(commandLine);
    patina::tool::addDescribeCommand(commandLine);
    patina::tool::addGraphCommand(commandLine);
    patina::tool::addPreviewCommand(commandLine);
    patina::tool::addValidateCommand(commandLine);
    const std::string complaint = argc > 1 && *argv[1] != '-' ? complaintAbout(argv[1], parser) : "";
    if (!complaint.empty()) {
        patina::tool::printDiagnostic(patina::diagnosticText({}, "error", complaint));
        return patina::tool::wrongUsage;
    }
    try {
        parser.parse(withLongOptions(argc, argv));
    } catch (const CLI::ParseError& error) {
        return parser.exit(error) == 0 ? patina::tool::success : patina::tool::wrongUsage;
    }
    return commandLine.run();
}

int runGuarded(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        static_cast<void>(std::fputs("error: out of memory\n", stderr)); // without taking more
    } catch (...) {
        patina::tool::printDiagnostic(patina::tool::errorLine());
    }
    return patina::tool::failure;
}

} // namespace

int main(int argc, char** argv) {
    const int exitCode = runGuarded(argc, argv);
    if (!std::cout.flush()) {
        static_cast<void>(std::fputs("error: cannot write to standard output\n", stderr));
        return patina::tool::failure;
    }
    return exitCode;
}
