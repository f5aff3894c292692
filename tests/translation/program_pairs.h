#pragma once

#include <string>
#include <vector>

namespace patina::testing {

/// The two programs of a material in Cg, under the name that a failure shows.
struct ProgramPair {
    std::string name;
    std::string vertex;
    std::string fragment;
};

/// The example material's.
ProgramPair examplePair();

/// Those of every Core node in every mode.
std::vector<ProgramPair> nodePairs();

/// With parameters that name registers.
ProgramPair registerPair();

/// Whose parameters, functions and local variables have names that other languages keep for themselves: each
/// name once as each of these.
std::vector<ProgramPair> awkwardPairs();

/// That writes the size of points.
ProgramPair pointPair();

} // namespace patina::testing
