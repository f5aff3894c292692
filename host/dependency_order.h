#pragma once

#include <cstddef>
#include <vector>

namespace patina {

/// For each item, the items that must come before it.
using Dependencies = std::vector<std::vector<std::size_t>>;

/// All items with every dependency before what depends on it; or a cycle that prevents it.
struct DependencyOrder {
    std::vector<std::size_t> order; ///< empty when there is a cycle
    std::vector<std::size_t> cycle; ///< each depends on the next, and the last on the first
};

/// Orders items by their dependencies and otherwise by their index; the same input gives the same order.
/// Linear in items and dependencies, and safe for chains of any length. [thread-safe]
DependencyOrder orderByDependencies(const Dependencies& dependencies);

} // namespace patina
