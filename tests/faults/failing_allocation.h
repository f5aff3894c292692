#pragma once

#include <cstddef>

namespace patina::testing {

// Operator new of this program and of the plug-ins that it loads, and what libxml2 allocates: a test makes
// either fail. Threads: one.

enum class Heap { OperatorNew, Xml };

/// Allocations of operator new that were made and not given back. Those of libxml2 are not counted: it loses
/// some of its own where one fails.
std::size_t liveAllocations();

/// Lets that many allocations pass, and fails the one that follows. Whoever asks operator new for one that
/// may fail by giving null, as the algorithms of the standard library do, is not counted.
void failAllocationAfter(Heap heap, std::size_t passing);

/// Ends that; gives whether there was such an allocation.
bool stopFailing();

/// Has libxml2 allocate here. To be called before anything else is asked of it.
void watchXmlAllocations();

} // namespace patina::testing
