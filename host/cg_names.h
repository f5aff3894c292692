#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace patina {

/// Whether a name belongs to Cg (a keyword, type or standard function, or anything that begins with "__") or
/// to the framework. [thread-safe]
bool isReservedName(std::string_view name);

/// A text made into a Cg name: every other character than letters and digits becomes "_". [thread-safe]
std::string toCgName(std::string_view text);

/// Gives out names that are told apart from one another and from reserved ones.
/// Threads: one thread at a time.
class NameAllocator {
public:
    /// Takes a name as it is, whatever it is.
    void take(const std::string& name);

    /// The wanted name, or that with the lowest free suffix: "name_2", "name_3". The wanted one is as
    /// toCgName makes it, so that a suffix can help.
    std::string allocate(const std::string& wanted);

private:
    std::unordered_set<std::string> taken_;
    std::unordered_map<std::string, int> nextSuffix_;
};

} // namespace patina
