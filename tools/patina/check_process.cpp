#include "tools/patina/check_process.h"

#include "host/child_process.h"
#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <csignal>
#include <string_view>

namespace patina::tool {

using namespace detail;
using nlohmann::ordered_json;

namespace {

// The report: a JSON object for each event, a line each.
constexpr const char* examiningKey = "examining"; ///< with a node type and a situation
constexpr const char* foundKey = "found";         ///< with a node type and a text
constexpr const char* skippedKey = "skipped";     ///< with a reason
constexpr const char* doneKey = "done";

constexpr std::size_t shownLines = 20;

struct SignalName {
    int signal;
    const char* name;
};

constexpr std::array<SignalName, 6> signalNames = {{
    {SIGABRT, "abort"},
    {SIGFPE, "arithmetic error"},
    {SIGILL, "illegal instruction"},
    {SIGINT, "interrupt"},
    {SIGSEGV, "segmentation fault"},
    {SIGTERM, "termination"},
}};

class Reporter final : public CheckListener {
public:
    void examining(const std::string& nodeType, const std::string& situation) override {
        write({{examiningKey, {nodeType, situation}}});
    }
    void found(const std::string& nodeType, const std::string& text) override {
        write({{foundKey, {nodeType, text}}});
    }
    void skipped(const std::string& reason) override { write({{skippedKey, reason}}); }
    void done() { write({{doneKey, true}}); }

private:
    void write(const ordered_json& event) {
        // plug-ins may use names that are not UTF-8
        output_.write(event.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n");
    }

    PrivateOutput output_;
};

/// What a report says, and where it ends.
struct Report {
    CheckResult result;
    std::string nodeType;
    std::string situation;
    bool done = false;

    void add(const ordered_json& event) {
        if (event.contains(examiningKey)) {
            nodeType = event[examiningKey][0];
            situation = event[examiningKey][1];
        } else if (event.contains(foundKey)) {
            result.findings.push_back({event[foundKey][0], event[foundKey][1]});
        } else if (event.contains(skippedKey)) {
            result.skippedBecause = event[skippedKey];
        } else {
            done = event.contains(doneKey);
        }
    }
};

/// The first line of a text, which it is taken from.
std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

Report readReport(std::string_view text) {
    Report report;
    while (!text.empty()) {
        const ordered_json event = ordered_json::parse(takeLine(text), nullptr, false);
        if (!event.is_discarded()) { // the last line of a killed process may be torn
            report.add(event);
        }
    }
    return report;
}

std::string firstLines(std::string_view text) {
    std::string lines;
    for (std::size_t i = 0; i < shownLines && !text.empty(); ++i) {
        appendText(lines, {oneLine(takeLine(text)), "\n"});
    }
    return lines;
}

std::string signalText(int signal) {
    const auto* found = std::find_if(signalNames.begin(), signalNames.end(),
                                     [&](const SignalName& entry) { return entry.signal == signal; });
    return joinText({"signal ", std::to_string(signal), found == signalNames.end() ? "" : ", ",
                     found == signalNames.end() ? "" : found->name});
}

/// What is wrong with the way in which the process ended; empty when nothing is.
std::string endText(const ChildOutcome& outcome, const Report& report, std::chrono::seconds timeLimit) {
    const char* when = report.done ? " after the check was over" : " before the check was over";
    switch (outcome.end) {
    case ChildOutcome::End::TimedOut:
        return joinText({"still running after ", std::to_string(timeLimit.count()), " s"});
    case ChildOutcome::End::TooMuchOutput:
        return "found more than a report can hold";
    case ChildOutcome::End::Signalled:
        return joinText({"crashed (", signalText(outcome.code), ")", when});
    case ChildOutcome::End::Exited:
        break;
    }
    if (report.done && outcome.code == 0) {
        return {};
    }
    return joinText({"ended the process with exit code ", std::to_string(outcome.code), when});
}

} // namespace

CheckResult makeCheck(const std::filesystem::path& program, const PluginCheck& check,
                      const std::filesystem::path& plugin, std::chrono::seconds timeLimit) {
    const ChildOutcome outcome = runChild(
        program, {"validate", runCheckOption, check.name, "--", plugin.string()}, {.timeLimit = timeLimit});
    Report report = readReport(outcome.output);
    const std::string end = endText(outcome, report, timeLimit);
    if (!end.empty()) {
        report.result.findings.push_back(
            {report.nodeType,
             report.situation.empty() ? end : joinText({"with ", report.situation, ": ", end})});
        report.result.output = firstLines(outcome.errors);
    }
    return report.result;
}

void reportCheck(const PluginCheck& check, const std::filesystem::path& plugin) {
    Reporter reporter;
    runPluginCheck(check, plugin, reporter);
    reporter.done();
}

} // namespace patina::tool
