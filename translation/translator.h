#pragma once

#include "host/translation.h"

#include <memory>

namespace patina {

/// The translator that this library was built with. Threads: thread-safe.
/// Throws HostError when it was built without one, and says what was missing.
std::unique_ptr<ShaderTranslator> makeTranslator();

} // namespace patina
