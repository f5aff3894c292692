#pragma once

#include "host/artist_values.h"
#include "host/bindings_file.h"
#include "host/diagnostic.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// A bindings file that an earlier export wrote and an artist may have changed since.

/// A binding as it stands there.
struct SavedBinding {
    std::string name;
    std::string kind;
    Annotations annotations; ///< all its attributes
    int line = 0;
};

struct SavedBindings {
    std::string file; ///< as messages name it
    std::vector<SavedBinding> bindings;
};

/// Reads a bindings file; one that is not there has no bindings. Names are unique within what comes back.
/// Throws HostError, saying where, when it cannot be read, is not well-formed, or is no such file.
SavedBindings readBindings(const std::filesystem::path& file);

/// The same from text; `file` is only what messages name.
SavedBindings parseBindings(std::string_view text, const std::string& file);

/// Sets on the bindings what the artist changed in the earlier file, by name and kind. The artist changed
/// what differs from what the file says was exported. A default that was changed wins over the graph's;
/// anything else does where the graph sets nothing. Warns of changes to bindings that are gone.
/// Throws HostError, saying where, when a binding refuses its annotations.
void carryOverArtistValues(const SavedBindings& saved, std::vector<ExportedBinding>& bindings,
                           Warnings& warnings);

} // namespace patina
