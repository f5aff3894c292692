#include "tools/patina/graphviz_program.h"

#include "host/child_process.h"
#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <cstddef>
#include <iostream>
#include <vector>

namespace patina::tool {

using namespace detail;

namespace {

constexpr const char* program = "dot";
constexpr std::size_t drawingLimit = std::size_t{1024} * 1024 * 1024;

std::string runProgram(const std::string& dot, const std::string& format) {
    std::vector<std::string> arguments = {"-T" + format, "-q"};
    if (format == "png") {
        constexpr int dotsPerInch = 72 * pixelsPerPoint;
        arguments.push_back(joinText({"-Gdpi=", std::to_string(dotsPerInch)}));
        arguments.push_back(joinText({"-Gsize=", std::to_string(drawingSide / dotsPerInch)})); // in inches
    }
    const ChildOutcome outcome = runChild(program, arguments, {.input = dot, .outputLimit = drawingLimit});
    std::cerr << outcome.errors;
    if (outcome.end == ChildOutcome::End::TooMuchOutput) {
        throw HostError({program, 0}, "this program's drawing is larger than 1 GiB");
    }
    if (outcome.end != ChildOutcome::End::Exited || outcome.code != 0) {
        throw HostError({program, 0}, "this program failed");
    }
    return outcome.output;
}

} // namespace

std::string drawGraph(const std::string& dot, const std::string& format, std::string_view otherWay) {
    try {
        return runProgram(dot, format);
    } catch (const HostError& failure) {
        throw HostError(failure, joinText({"install Graphviz", otherWay}));
    }
}

} // namespace patina::tool
