#pragma once

#include "host/bindings_file.h"

#include <string>

namespace patina {

/// A bindings file as a JSON document that says the same: numbers and booleans as such, a list for the limits
/// and the default of a float binding. A number that JSON does not have is null.
/// Throws what the bindings throw. Threads: as the bindings, one thread at a time.
std::string printBindingsJson(const BindingsFile& file);

} // namespace patina
