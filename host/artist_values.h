#pragma once

#include "bindings/bindings.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina {

// Which annotations of a binding are the artist's: the default, and how the value is shown and where its data
// comes from. The graph decides all others at each export. Threads: one thread at a time for each binding.

/// Annotations as keys and texts.
using Annotations = std::vector<std::pair<std::string, std::string>>;

/// Whether a key is the artist's. [thread-safe]
bool isArtistKey(std::string_view key);

/// The text of a key, or null when it is missing. It lives as long as `annotations` stay as they are.
const std::string* findAnnotation(const Annotations& annotations, std::string_view key);

/// Why a binding of that kind would pass over one of the annotations in silence; empty when it would not.
/// [thread-safe]
std::string whyNotUnderstood(std::string_view kind, const Annotations& annotations);

/// The annotations of a binding in the order in which it writes them. Throws what the binding throws.
Annotations annotationsOf(const Binding& binding);

/// Those of them that are the artist's.
Annotations artistValues(const Binding& binding);

/// Sets what `annotations` say under the artist's keys on a binding fresh from the graph, and nothing else.
/// Throws what the binding throws; it may have taken over a part by then.
void restoreArtistValues(Binding& binding, const Annotations& annotations);

} // namespace patina
