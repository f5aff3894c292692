#pragma once

#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace patina {

/// Whether a name belongs to Cg (a keyword, type or standard function, or anything that begins with "__") or
/// to the framework. [thread-safe]
bool isReservedName(std::string_view name);

/// A text made into a Cg name: every other character than letters and digits becomes "_", and several side by
/// side become one. [thread-safe]
std::string toCgName(std::string_view text);

/// Gives out names that are told apart from one another and from reserved ones.
/// Threads: one thread at a time. What it gives out lasts as long as it.
class NameAllocator {
public:
    /// Takes a name as it is, whatever it is, and gives it back.
    std::string_view take(std::string_view name);

    /// What toCgName makes of a text, or that with the lowest free suffix: "name_2", "name_3".
    std::string_view allocate(std::string_view text);

    /// Makes room for that many names, beyond which there may still be more.
    void reserve(std::size_t count);

private:
    std::string_view keep(std::string_view name);

    std::pmr::monotonic_buffer_resource memory_; ///< of the names and of what follows
    std::pmr::unordered_set<std::string_view> taken_{&memory_};
    std::pmr::unordered_map<std::string_view, int> nextSuffix_{&memory_};
};

} // namespace patina
