#pragma once

#include "host/artist_values.h"
#include "host/bindings_file.h"
#include "host/diagnostic.h"
#include "host/material.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// What was saved of bindings: in the material's document, and in the bindings file of an earlier export. Both
// tell what the artist changed in the same way: it is whatever differs from what they say was exported.
//
// Threads: reading is thread-safe; the rest is as the material and its bindings, one thread at a time.

/// A binding as it stands in the file.
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

/// Sets on bindings fresh from the graph what the material's document says that the artist changed, by name
/// and kind. Warns of changes to bindings that no node presents, unless it may be one whose type is missing
/// or of which errors were reported. Throws HostError, saying where, for a change that means nothing, and
/// when a binding refuses it. With `errors`, goes on with the next binding and puts them there.
void restoreSavedValues(const Material& material, const BindingCollection& bindings, Warnings& warnings,
                        Errors* errors = nullptr);

/// Does the same with what the artist changed in the earlier file. Warns of changes to bindings that are
/// gone. Throws HostError, saying where, when a binding refuses its annotations.
void carryOverArtistValues(const SavedBindings& saved, std::vector<ExportedBinding>& bindings,
                           Warnings& warnings);

} // namespace patina
