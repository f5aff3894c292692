#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

/// The names of the symbols that an ELF module defines for others, in the order of its dynamic symbol table.
/// Nothing for a file of another format. Throws HostError, without a file name, when the module is damaged or
/// has no section table. [thread-safe]
std::optional<std::vector<std::string>> exportedElfSymbols(std::string_view content);

} // namespace patina
