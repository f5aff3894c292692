#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

/// How a child process ended, and what it printed until then.
struct ChildOutcome {
    enum class End {
        Exited,    ///< by itself
        Signalled, ///< it crashed, or was killed
        TimedOut   ///< it was killed because its time was over
    };

    End end = End::Exited;
    int code = 0;       ///< the exit code, or the number of the signal
    std::string output; ///< from standard output
    std::string errors; ///< from standard error
};

/// Runs a program with arguments, which do not begin with the program itself, and waits for its end. It has
/// this process's environment and no standard input. What is kept of each stream ends after 16 MiB.
///
/// A child that is not over in time is killed; processes that it started are not. Throws HostError when the
/// program cannot be started. [thread-safe]
ChildOutcome runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      std::chrono::milliseconds timeLimit);

/// Keeps standard output to itself: whatever else this process prints there goes to standard error while this
/// object lives. For a child whose output is a report, and whose libraries may print.
///
/// Make it before there are other threads, and at most one. Throws HostError when there is no standard
/// output.
class PrivateOutput {
public:
    PrivateOutput();
    ~PrivateOutput();
    PrivateOutput(const PrivateOutput&) = delete;
    PrivateOutput& operator=(const PrivateOutput&) = delete;

    /// Writes a text at once, without a buffer that a crash could lose. Throws HostError when nobody reads
    /// it.
    void write(std::string_view text);

private:
    int descriptor_ = -1;
};

} // namespace patina
