// A factory may be used by any number of threads at once; the thread sanitizer looks on where it is built in.

#include "nodemodel/shader_error.h"
#include "plugin/core_node_factory.h"
#include "tests/plugin/loaded_module.h"
#include "tests/plugin/node_types.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace patina {
namespace {

using testing::nodeTypeNames;

constexpr std::size_t threadCount = 8;
constexpr std::size_t rounds = 100;

void inThreads(const std::function<void(std::size_t thread)>& work) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Creates every type again and again, uses what it got, and asks for a type that there is not.
std::size_t createMany(NodeFactory& factory, std::size_t thread) {
    std::size_t good = 0;
    for (std::size_t i = 0; i < rounds * std::size(nodeTypeNames); ++i) {
        // every thread begins with another type
        const std::string typeName = nodeTypeNames[(i + thread) % std::size(nodeTypeNames)];
        const auto node = factory.createNode(typeName);
        node->setName(typeName + " of a thread");
        node->updateFromProperties(nullptr);
        node->resolveComponentCounts();
        node->resolvePrecision();
        if (node->typeName() == typeName && node->name() == typeName + " of a thread") {
            ++good;
        }
    }
    try {
        (void)factory.createNode("CoreFancy");
    } catch (const ShaderError&) {
        ++good;
    }
    return good;
}

void createInThreads(NodeFactory& factory) {
    std::atomic<std::size_t> good = 0;
    inThreads([&](std::size_t thread) { good += createMany(factory, thread); });
    EXPECT_EQ(good, threadCount * (rounds * std::size(nodeTypeNames) + 1));
}

TEST(Threads, ShareOneFactory) {
    CoreNodeFactory factory;
    createInThreads(factory);
}

TEST(Threads, ShareOneFactoryOfTheModule) {
    const testing::LoadedModule module;
    const auto factory = module.makeFactory();
    createInThreads(*factory);
}

TEST(Threads, MakeTheirOwnFactories) {
    const testing::LoadedModule module;
    std::atomic<std::size_t> listed = 0;
    inThreads([&](std::size_t) {
        for (std::size_t i = 0; i < rounds; ++i) {
            listed += module.makeFactory()->nodeLibrary.size();
        }
    });
    EXPECT_EQ(listed, threadCount * rounds * 9);
}

TEST(Threads, PassNodesToEachOther) {
    CoreNodeFactory factory;
    for (const char* typeName : nodeTypeNames) {
        auto node = factory.createNode(typeName);
        const std::weak_ptr<MaterialNode> watched = node;
        {
            std::vector<std::shared_ptr<MaterialNode>> holders(threadCount, node);
            node.reset();
            inThreads([&](std::size_t thread) { holders[thread].reset(); });
        }
        EXPECT_TRUE(watched.expired());
    }
}

} // namespace
} // namespace patina
