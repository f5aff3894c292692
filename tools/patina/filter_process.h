#pragma once

#include <string>
#include <vector>

namespace patina::tool {

/// Runs a program, found as a shell finds it but without one, on an input, and gives what it writes to its
/// standard output; what it has to complain of goes to this process's standard error.
/// Throws HostError, ending with `advice`, when there is no such program, and when it fails.
std::string runFilter(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input, const std::string& advice);

} // namespace patina::tool
