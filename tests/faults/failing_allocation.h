#pragma once

#include <cstddef>

namespace patina::testing {

// Operator new of this program, of the plug-ins that it loads, and of libxml2, which one test makes fail.
// Threads: one.

/// Allocations that were made and not given back.
std::size_t liveAllocations();

/// Lets that many allocations pass, and fails the one that follows. Whoever asks for one that may fail by
/// giving null, as the algorithms of the standard library do, is not counted.
void failAllocationAfter(std::size_t passing);

/// Ends that; gives whether there was such an allocation.
bool stopFailing();

/// Has libxml2 allocate here. To be called before anything else is asked of it.
void watchXmlAllocations();

} // namespace patina::testing
