// Node creation while memory runs out: the error comes through and nothing is left behind.

#include "plugin/core_node_factory.h"

#include "tests/plugin/loaded_module.h"
#include "tests/plugin/node_types.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

constexpr long unlimited = -1;
long allocationsLeft = unlimited;
long liveAllocations = 0;

void* allocate(std::size_t size) noexcept {
    if (allocationsLeft == 0) {
        return nullptr;
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) {
        ++liveAllocations;
    }
    return memory;
}

void* allocateOrThrow(std::size_t size) {
    void* memory = allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void release(void* memory) noexcept {
    if (memory != nullptr) {
        --liveAllocations;
        std::free(memory);
    }
}

} // namespace

void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }

namespace patina {
namespace {

enum class Outcome { Done, Failed };

/// Runs an action that may allocate only so often.
template <typename Action>
Outcome withAllocations(long allowed, Action&& action) {
    allocationsLeft = allowed;
    Outcome outcome = Outcome::Done;
    try {
        action();
    } catch (const std::bad_alloc&) {
        outcome = Outcome::Failed;
    }
    allocationsLeft = unlimited;
    return outcome;
}

/// Lets each allocation of an action fail in turn, until there are enough.
template <typename Action>
void expectNothingLeftBehind(Action&& action) {
    long allowed = 0;
    Outcome outcome = Outcome::Failed;
    while (outcome == Outcome::Failed) {
        const long before = liveAllocations;
        outcome = withAllocations(allowed, action);
        EXPECT_EQ(liveAllocations, before) << "with " << allowed << " allocations";
        ++allowed;
    }
    EXPECT_GT(allowed, 1) << "the allocator of this program is not in use";
}

void createEveryType(NodeFactory& factory) {
    for (const char* typeName : testing::nodeTypeNames) {
        SCOPED_TRACE(typeName);
        const std::string name = typeName;
        expectNothingLeftBehind([&] { (void)factory.createNode(name); });
    }
}

TEST(OutOfMemory, HalfBuiltNodesAreFreed) {
    CoreNodeFactory factory;
    createEveryType(factory);
}

TEST(OutOfMemory, HalfBuiltNodesOfTheModuleAreFreed) {
    const testing::LoadedModule module;
    const auto factory = module.makeFactory();
    createEveryType(*factory);
}

TEST(OutOfMemory, HalfBuiltFactoriesAreFreed) {
    expectNothingLeftBehind([] { const CoreNodeFactory factory; });
}

TEST(OutOfMemory, TheModuleMakesNoFactoryWithoutMemoryForIt) {
    const testing::LoadedModule module;
    std::unique_ptr<NodeFactory> factory;
    long allowed = 0;
    while (factory == nullptr) {
        SCOPED_TRACE(allowed);
        const long before = liveAllocations;
        ASSERT_EQ(withAllocations(allowed, [&] { factory = module.makeFactory(); }), Outcome::Done);
        if (factory == nullptr) {
            EXPECT_EQ(liveAllocations, before);
        }
        ++allowed;
    }
    EXPECT_GT(allowed, 2) << "the list of nodes takes memory too";
}

TEST(OutOfMemory, ReleasedNodesLeaveNothingBehind) {
    CoreNodeFactory factory;
    const long before = liveAllocations;
    for (const char* typeName : testing::nodeTypeNames) {
        const auto node = factory.createNode(typeName);
        node->updateFromProperties(nullptr);
    }
    EXPECT_EQ(liveAllocations, before);
}

} // namespace
} // namespace patina
