#pragma once

#include "host/diagnostic.h"
#include "host/material.h"
#include "host/plugins.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace patina::tool {

// Threads: errorLine and counted are thread-safe; all else is for one thread at a time.

// Exit codes.
inline constexpr int success = 0;
inline constexpr int failure = 1;    ///< an error in the input
inline constexpr int wrongUsage = 2; ///< an error on the command line

/// What every subcommand adds itself to: its options to the parser, and itself to what is to be done.
struct CommandLine {
    CLI::App parser;
    std::filesystem::path program;         ///< where the running program is
    std::function<int()> run = {};         ///< of the subcommand that the user chose; gives the exit code
    std::vector<std::string> plugins = {}; ///< given with --plugin
};

// The subcommands, one in each source file (`nodes` and `describe` share theirs). A failure arrives at the
// top as an exception. What they print goes to std::cout, where the top looks whether it arrived.

void addCheckCommand(CommandLine& commandLine);
void addExportCommand(CommandLine& commandLine);
void addNodesCommand(CommandLine& commandLine);
void addDescribeCommand(CommandLine& commandLine);
void addGraphCommand(CommandLine& commandLine);
void addPreviewCommand(CommandLine& commandLine);
void addValidateCommand(CommandLine& commandLine);

/// Gives a subcommand the option --plugin.
void addPluginOption(CLI::App& command, CommandLine& commandLine);

/// Loads the plug-ins named on the command line, then those of the search path. Throws HostError.
PluginSet loadPlugins(const CommandLine& commandLine);

/// Reads a document and makes its material live. Prints the warnings, even where it throws HostError.
Material loadMaterial(const std::filesystem::path& document, const PluginSet& plugins);

/// Refuses an empty name of a file or directory, which an unset variable of a shell gives.
CLI::Validator notEmpty();

/// Prints warnings to standard error, a line each.
void printWarnings(const Warnings& warnings);

/// The line for the user of the exception that is being handled; to be called in a catch clause only.
std::string errorLine();

/// A number and what it counts, `1 node` or `2 nodes`.
std::string counted(std::size_t count, const std::string& noun);

} // namespace patina::tool
