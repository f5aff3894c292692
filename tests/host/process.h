#pragma once

#include <string>
#include <utility>
#include <vector>

namespace patina::testing {

using Environment = std::vector<std::pair<std::string, std::string>>;

/// How a program ended.
struct Outcome {
    int exitCode = 0; ///< 128 and the signal's number when a signal ended it
    std::string output;
    std::string errors;
};

/// Runs a program with arguments, and with variables beside those of this process.
Outcome run(const std::string& program, const std::vector<std::string>& arguments,
            const Environment& environment = {});

} // namespace patina::testing
