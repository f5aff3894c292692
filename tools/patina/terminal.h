#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace patina::tool {

enum class Stream { Output, Errors };

/// Whether a stream shows colours: it goes to a terminal that is not a dumb one, and NO_COLOR is not set.
/// [thread-safe]
bool showsColours(Stream stream);

/// The text in bold where standard output shows colours, else as it is. [thread-safe]
std::string heading(std::string_view text);

/// Prints a line that diagnosticText wrote to standard error, with its place and severity brought out where
/// colours are shown.
void printDiagnostic(std::string_view line);

/// A line at the foot of standard error that says how far a long run is; nothing where that is no terminal.
/// It is gone with the object. Threads: one thread at a time.
class Progress {
public:
    Progress(std::size_t total, bool isWanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::size_t done, std::string_view name);
    /// Makes room for something else to be printed.
    void clear();

private:
    std::size_t total_;
    bool isShown_;
};

} // namespace patina::tool
