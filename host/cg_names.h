#pragma once

#include <initializer_list>
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
void makeCgName(std::string& name, std::initializer_list<std::string_view> pieces); ///< of a text in pieces

/// Gives out names that are told apart from one another and from reserved ones.
/// Threads: one thread at a time. What it gives out lasts as long as it.
class NameAllocator {
public:
    /// Takes a name as it is, whatever it is, and gives it back.
    std::string_view take(std::string_view name);

    /// The wanted name, or that with the lowest free suffix: "name_2", "name_3". The wanted one is as
    /// toCgName makes it, so that a suffix can help.
    std::string_view allocate(std::string_view wanted);

private:
    std::string_view keep(std::string_view name);

    std::pmr::monotonic_buffer_resource memory_; ///< of the names and of what follows
    std::pmr::unordered_set<std::string_view> taken_{&memory_};
    std::pmr::unordered_map<std::string_view, int> nextSuffix_{&memory_};
};

} // namespace patina
