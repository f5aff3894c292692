#include "tools/patina/command.h"
#include "tools/patina/terminal.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
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
    patina::tool::addValidateCommand(commandLine);
    try {
        parser.parse(withLongOptions(argc, argv));
    } catch (const CLI::ParseError& error) {
        return parser.exit(error) == 0 ? patina::tool::success : patina::tool::wrongUsage;
    }
    return commandLine.run();
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("error: out of memory\n", stderr); // without taking more
    } catch (...) {
        patina::tool::printDiagnostic(patina::tool::errorLine());
    }
    return patina::tool::failure;
}
