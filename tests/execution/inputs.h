#pragma once

#include "tests/execution/reference.h"

#include <cstddef>
#include <string>
#include <vector>

namespace patina::testing {

/// Which numbers the sources of a graph give.
enum class Numbers {
    Wide, ///< zero, thresholds, equal operands, negative, small and large numbers, and those from zero to one
    Unit, ///< from zero to one
};

/// How many points each case has.
std::size_t pointsOfCase();

/// Points for the sources of a graph, the same for the same seed. Large numbers are those of the format.
std::vector<InputSet> inputSets(const Graph& graph, Numbers numbers, std::size_t count,
                                const std::string& seed);

/// Coordinates, as In0, of the middles of texels, in the picture and to all sides of it, where it repeats.
std::vector<InputSet> texelCentres(int dimensions);

/// Coordinates, as In0, that lie exactly on the picture's edges and middles, in it and where it repeats.
std::vector<InputSet> texelEdges(int dimensions);

} // namespace patina::testing
