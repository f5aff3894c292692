#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

/// How a child process ended, and what it printed until then.
struct ChildOutcome {
    enum class End {
        Exited,       ///< by itself
        Signalled,    ///< it crashed, or was killed
        TimedOut,     ///< it was killed because its time was over
        TooMuchOutput ///< it was killed because it printed more than it may
    };

    End end = End::Exited;
    int code = 0;       ///< the exit code, or the number of the signal
    std::string output; ///< from standard output
    std::string errors; ///< from standard error
};

/// What a child process gets, and what it may take.
struct ChildOptions {
    std::string_view input = {};                             ///< all of its standard input
    std::optional<std::chrono::milliseconds> timeLimit = {}; ///< as long as it likes when not given
    std::size_t outputLimit = std::size_t{16} * 1024 * 1024; ///< bytes of each stream
};

/// Runs a program, found as a shell finds it but without one, with arguments, which do not begin with the
/// program itself, and waits for its end. It has this process's environment.
///
/// A child that is not over in time, or prints more to its standard output than it may, is killed; processes
/// that it started are not. What is kept of its standard error ends at the limit. Throws HostError when the
/// program cannot be started, or its input has no room in a temporary file. [thread-safe]
ChildOutcome runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      const ChildOptions& options = {});

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
