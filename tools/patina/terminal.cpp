#include "tools/patina/terminal.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <array>
#include <cstdlib>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace patina::tool {

using namespace detail;

namespace {

constexpr const char* bold = "\x1b[1m";
constexpr const char* boldRed = "\x1b[1;31m";
constexpr const char* boldMagenta = "\x1b[1;35m";
constexpr const char* plain = "\x1b[0m";

bool isTerminal(Stream stream) {
#if defined(_WIN32)
    return _isatty(stream == Stream::Output ? 1 : 2) != 0;
#else
    return isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0;
#endif
}

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

struct Severity {
    std::string_view word;
    const char* colour;
};

constexpr std::array<Severity, 2> severities = {{{"error:", boldRed}, {"warning:", boldMagenta}}};

/// Where a severity stands in a line: at its beginning, or behind a place.
std::size_t findSeverity(std::string_view line, std::string_view word) {
    if (line.substr(0, word.size()) == word) {
        return 0;
    }
    const std::size_t found = line.find(joinText({": ", word}));
    return found == std::string_view::npos ? found : found + 2;
}

std::string coloured(std::string_view line) {
    const Severity* severity = nullptr;
    std::size_t position = std::string_view::npos;
    for (const Severity& candidate : severities) {
        const std::size_t found = findSeverity(line, candidate.word);
        if (found < position) {
            severity = &candidate;
            position = found;
        }
    }
    if (severity == nullptr) {
        return std::string(line);
    }
    return joinText({bold, line.substr(0, position), severity->colour, severity->word, plain,
                     line.substr(position + severity->word.size())});
}

} // namespace

bool showsColours(Stream stream) {
    return environment("NO_COLOR").empty() && environment("TERM") != "dumb" && isTerminal(stream);
}

std::string heading(std::string_view text) {
    return showsColours(Stream::Output) ? joinText({bold, text, plain}) : std::string(text);
}

void printDiagnostic(std::string_view line) {
    std::cerr << (showsColours(Stream::Errors) ? coloured(line) : std::string(line)) << '\n';
}

Progress::Progress(std::size_t total, bool isWanted)
    : total_(total), isShown_(isWanted && environment("TERM") != "dumb" && isTerminal(Stream::Errors)) {}

Progress::~Progress() { clear(); }

void Progress::show(std::size_t done, std::string_view name) {
    if (isShown_) {
        clear();
        std::cerr << joinText({"[", std::to_string(done), "/", std::to_string(total_), "] ", oneLine(name)})
                  << std::flush;
    }
}

void Progress::clear() {
    if (isShown_) {
        std::cerr << "\r\x1b[K" << std::flush;
    }
}

} // namespace patina::tool
