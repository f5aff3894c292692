#pragma once

#include <cstddef>
#include <initializer_list>
#include <limits>
#include <vector>

namespace patina {

/// For each item, the items that must come before it, in the order in which they were added.
/// Threads: any number may read.
class Dependencies {
public:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    Dependencies() = default;
    explicit Dependencies(std::size_t itemCount) : ends_(itemCount) {}
    Dependencies(std::initializer_list<std::initializer_list<std::size_t>> dependenciesOfItems);

    /// Both are below size().
    void add(std::size_t item, std::size_t dependency);

    std::size_t size() const { return ends_.size(); }

    /// @name The dependencies of an item, one by one
    /// @{
    std::size_t first(std::size_t item) const { return ends_[item].first; } ///< none when it has none
    std::size_t next(std::size_t link) const { return links_[link].next; }  ///< none behind the last
    std::size_t dependency(std::size_t link) const { return links_[link].dependency; }
    /// @}

private:
    struct Ends {
        std::size_t first = none;
        std::size_t last = none;
    };
    struct Link {
        std::size_t dependency;
        std::size_t next;
    };
    std::vector<Ends> ends_;  ///< of the links, by item
    std::vector<Link> links_; ///< of all items
};

/// All items with every dependency before what depends on it; or a cycle that prevents it.
struct DependencyOrder {
    std::vector<std::size_t> order; ///< empty when there is a cycle
    std::vector<std::size_t> cycle; ///< each depends on the next, and the last on the first
};

/// Orders items by their dependencies and otherwise by their index; the same input gives the same order.
/// Linear in items and dependencies, and safe for chains of any length. [thread-safe]
DependencyOrder orderByDependencies(const Dependencies& dependencies);

} // namespace patina
