#include "tests/execution/tally.h"

#include "nodemodel/text.h"

#include <locale>
#include <sstream>

namespace patina::testing {

namespace {

std::string countsOf(const std::string& name, const Executed& executed) {
    return name + '\t' + std::to_string(executed.programs) + '\t' + std::to_string(executed.inputSets) +
           '\t' + std::to_string(executed.numbers);
}

bool lacks(const Executed& executed, const Executed& minimum) {
    return executed.programs < minimum.programs || executed.inputSets < minimum.inputSets ||
           executed.numbers < minimum.numbers;
}

} // namespace

Tally readMinimum(const std::string& text) {
    Tally minimum;
    std::istringstream lines(text);
    lines.imbue(std::locale::classic());
    std::string name;
    while (std::getline(lines, name, '\t')) {
        Executed& row = minimum[name];
        lines >> row.programs >> row.inputSets >> row.numbers >> std::ws;
    }
    return minimum;
}

std::string printTally(const Tally& tally) {
    std::string text;
    for (const auto& [name, executed] : tally) {
        text +=
            countsOf(name, executed) + "\t" + detail::formatFloat(static_cast<float>(executed.worst)) + "\n";
    }
    return text;
}

std::string shortfall(const Tally& tally, const Tally& minimum, const std::string& prefix) {
    const auto isOfPrefix = [&](const std::string& name) { return name.substr(0, prefix.size()) == prefix; };
    std::string text;
    for (const auto& [name, wanted] : minimum) {
        const auto found = tally.find(name);
        const Executed executed = found == tally.end() ? Executed() : found->second;
        if (isOfPrefix(name) && lacks(executed, wanted)) {
            text += "executed " + countsOf(name, executed) + "\nat least " + countsOf(name, wanted) + "\n";
        }
    }
    for (const auto& [name, executed] : tally) {
        if (isOfPrefix(name) && minimum.count(name) == 0) {
            text += "there is no minimum for " + countsOf(name, executed) + "\n";
        }
    }
    return text;
}

} // namespace patina::testing
