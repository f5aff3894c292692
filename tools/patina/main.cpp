#include "tools/patina/command.h"
#include "tools/patina/terminal.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>

namespace {

std::filesystem::path programPath(const char* firstArgument) {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::absolute(firstArgument) : path;
}

int run(int argc, char** argv) {
    patina::tool::CommandLine commandLine{
        .parser = CLI::App("Patina: material graphs to Cg shaders and bindings.", "patina"),
        .program = programPath(argv[0])};
    CLI::App& parser = commandLine.parser;
    parser.require_subcommand(1);
    parser.set_version_flag("--version", "patina " PATINA_VERSION);
    patina::tool::addExportCommand(commandLine);
    patina::tool::addNodesCommand(commandLine);
    patina::tool::addDescribeCommand(commandLine);
    patina::tool::addGraphCommand(commandLine);
    try {
        parser.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return parser.exit(error) == 0 ? patina::tool::success : patina::tool::wrongUsage;
    }
    return commandLine.run();
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const patina::HostError& error) {
        patina::tool::printDiagnostic(error.what());
    } catch (const std::bad_alloc&) {
        std::fputs("error: out of memory\n", stderr); // without taking more
    } catch (const std::exception& error) {
        patina::tool::printDiagnostic(patina::diagnosticText({}, "error", error.what()));
    } catch (...) {
        patina::tool::printDiagnostic("error: a plug-in failed with something that is no exception");
    }
    return patina::tool::failure;
}
