#include "tests/faults/failing_allocation.h"

#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using patina::testing::Heap;

std::size_t live = 0;
std::size_t passing = 0;
Heap armedHeap = Heap::OperatorNew;
bool isArmed = false;
bool hasFailed = false;

/// Whether this allocation is the one that must fail.
bool mustFail(Heap heap) {
    if (!isArmed || heap != armedHeap || passing-- != 0) {
        return false;
    }
    isArmed = false;
    hasFailed = true;
    return true;
}

void* counted(void* memory) {
    live += memory != nullptr ? 1 : 0;
    return memory;
}

void release(void* memory) {
    live -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

void* orThrow(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* allocate(std::size_t size) {
    return mustFail(Heap::OperatorNew) ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    return mustFail(Heap::OperatorNew) ? nullptr
                                       : counted(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void* allocateForXml(std::size_t size) { return mustFail(Heap::Xml) ? nullptr : std::malloc(size); }

void* reallocateForXml(void* memory, std::size_t size) {
    return mustFail(Heap::Xml) ? nullptr : std::realloc(memory, size);
}

char* duplicateForXml(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    void* const copy = allocateForXml(size);
    return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

} // namespace

void* operator new(std::size_t size) { return orThrow(allocate(size)); }
void* operator new[](std::size_t size) { return orThrow(allocate(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return orThrow(allocateAligned(size, alignment));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return counted(std::malloc(size == 0 ? 1 : size));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { release(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { release(memory); }

namespace patina::testing {

std::size_t liveAllocations() { return live; }

void failAllocationAfter(Heap heap, std::size_t count) {
    armedHeap = heap;
    passing = count;
    hasFailed = false;
    isArmed = true;
}

bool stopFailing() {
    isArmed = false;
    return hasFailed;
}

void watchXmlAllocations() {
    xmlMemSetup(std::free, allocateForXml, reallocateForXml, duplicateForXml);
    xmlInitParser();
}

} // namespace patina::testing
