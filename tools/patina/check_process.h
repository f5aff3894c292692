#pragma once

#include "host/plugin_checks.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace patina::tool {

// Threads: makeCheck is thread-safe; reportCheck is for a process that does nothing else.

/// Something that a check found wrong.
struct CheckFinding {
    std::string nodeType; ///< empty: the plug-in as a whole
    std::string text;
};

/// How a check went.
struct CheckResult {
    std::vector<CheckFinding> findings; ///< none: it passed, or was skipped
    std::string skippedBecause;         ///< empty: it was made
    std::string output;                 ///< what the plug-in printed, when it ended the process

    bool failed() const { return !findings.empty(); }
};

/// The option with which the command starts itself for one check.
inline constexpr const char* runCheckOption = "--run-check";

/// Makes a check in a process of its own, which runs `program validate --run-check CHECK -- PLUGIN`. However
/// that process ends, and that it is not over in time, is a finding. Throws HostError when it cannot start.
CheckResult makeCheck(const std::filesystem::path& program, const PluginCheck& check,
                      const std::filesystem::path& plugin, std::chrono::seconds timeLimit);

/// The other side: makes the check in this process and reports to standard output.
void reportCheck(const PluginCheck& check, const std::filesystem::path& plugin);

} // namespace patina::tool
