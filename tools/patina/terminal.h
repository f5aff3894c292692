#pragma once

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

} // namespace patina::tool
