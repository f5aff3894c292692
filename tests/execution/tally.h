#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace patina::testing {

/// What was executed.
struct Executed {
    std::size_t programs = 0;
    std::size_t inputSets = 0;
    std::size_t numbers = 0; ///< compared; those that may be anything are not among them
    double worst = 0;        ///< the largest error, in units of its bound
};

/// By what was executed: a node type, what it was set to, and the format, as in "CoreMaths, Lerp, half".
using Tally = std::map<std::string, Executed>;

/// The least numbers that a file demands: lines of a name, programs, input sets and numbers, between tabs.
Tally readMinimum(const std::string& text);

/// Such lines, with the largest error behind them.
std::string printTally(const Tally& tally);

/// What the tally lacks of the minimum, line by line, of the rows whose names begin so; empty when nothing.
/// A row that the minimum does not have is a lack too, of a line in the file.
std::string shortfall(const Tally& tally, const Tally& minimum, const std::string& prefix);

} // namespace patina::testing
