#include "host/checks/checks.h"

#include "host/diagnostic.h"
#include "host/dynamic_library.h"
#include "host/elf_symbols.h"
#include "host/files.h"
#include "host/plugins.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <latch>
#include <optional>
#include <thread>

namespace patina::detail {

namespace {

constexpr std::array<const char*, 2> entryPoints = {versionEntryPoint, factoryEntryPoint};

constexpr std::size_t largestModule = std::size_t{1024} * 1024 * 1024;
constexpr std::size_t listedExports = 10;

constexpr int threadCount = 8;
constexpr int creationsPerThread = 50;
constexpr int loadCount = 5;

// what system linkers add to every module
constexpr std::array<const char*, 6> linkerSymbols = {"_init", "_fini",       "_edata",
                                                      "_end",  "__bss_start", "_fbss"};

template <std::size_t count>
bool contains(const std::array<const char*, count>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

template <typename Function>
Function* requireEntryPoint(const DynamicLibrary& library, const char* name) {
    auto* function = library.find<Function>(name);
    if (function == nullptr) {
        throw HostError({}, joinText({"the entry point ", inQuotes(name), " is not exported"}));
    }
    return function;
}

std::uint32_t spokenVersion(const DynamicLibrary& library) {
    return requireEntryPoint<std::uint32_t()>(library, versionEntryPoint)();
}

std::unique_ptr<NodeFactory> makeFactory(const DynamicLibrary& library) {
    return std::unique_ptr<NodeFactory>(requireEntryPoint<NodeFactory*()>(library, factoryEntryPoint)());
}

std::vector<std::string> typeNames(const NodeLibrary& library) {
    std::vector<std::string> names;
    for (const NodeDescription& type : library) {
        names.push_back(type.typeName);
    }
    return names;
}

struct Failure {
    std::string nodeType;
    std::string text;
};

/// Creates nodes of all types over and over; the first failure, if there is one.
std::optional<Failure> createMany(Plugin& plugin) {
    for (int i = 0; i < creationsPerThread; ++i) {
        for (const NodeDescription& type : plugin.nodeLibrary()) {
            try {
                plugin.createNode(type.typeName)->updateFromProperties(nullptr);
            } catch (...) {
                return Failure{type.typeName, currentExceptionText()};
            }
        }
    }
    return std::nullopt;
}

} // namespace

// What a plug-in throws is its code: it must be gone before the module is, hence the examinations within.

void checkEntryPoints(CheckContext& context) {
    const DynamicLibrary library(context.file());
    context.examine({}, {}, [&] {
        for (const char* name : entryPoints) {
            context.require(
                library.find<void()>(name) != nullptr,
                {"the entry point ", inQuotes(name), " is not exported; declare it as plugin/plugin.h does"});
        }
        // whether a factory may be made depends on the version
        if (auto* version = library.find<std::uint32_t()>(versionEntryPoint)) {
            version();
        }
    });
}

void checkExports(CheckContext& context) {
    const auto symbols = exportedElfSymbols(readFile(context.file(), largestModule));
    if (!symbols) {
        context.skip("only ELF modules can be looked into");
        return;
    }
    std::size_t others = 0;
    for (const std::string& symbol : *symbols) {
        if (!contains(entryPoints, symbol) && !contains(linkerSymbols, symbol) && ++others <= listedExports) {
            context.report({inQuotes(symbol), " is exported too; hide everything but the entry points"});
        }
    }
    context.require(others <= listedExports,
                    {"and ", std::to_string(others - std::min(others, listedExports)), " more exports"});
}

void checkVersion(CheckContext& context) {
    const DynamicLibrary library(context.file());
    context.examine({}, {}, [&] {
        const std::uint32_t spoken = spokenVersion(library);
        context.require(spoken == materialLibVersion,
                        {"it speaks version ", std::to_string(spoken), ", and this host version ",
                         std::to_string(materialLibVersion), "; rebuild it with this host's SDK"});
        context.require(spokenVersion(library) == spoken, {"it gives another version each time"});
    });
}

void checkFactory(CheckContext& context) {
    const DynamicLibrary library(context.file());
    context.examine({}, {}, [&] {
        if (spokenVersion(library) != materialLibVersion) {
            context.report({"no factory was made, since the plug-in speaks another version"});
            return;
        }
        const std::unique_ptr<NodeFactory> first = makeFactory(library);
        std::unique_ptr<NodeFactory> second = makeFactory(library);
        context.require(first && second, {inQuotes(factoryEntryPoint), " made no factory"});
        if (first && second == first) {
            static_cast<void>(second.release());
            context.report({inQuotes(factoryEntryPoint),
                            " gives the same factory twice; make a new one, since hosts delete each"});
        }
    });
}

void checkThreads(CheckContext& context) {
    Plugin& plugin = context.plugin();
    std::array<std::optional<Failure>, threadCount> failures;
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (std::optional<Failure>& failure : failures) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            failure = createMany(plugin);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::optional<Failure>& failure : failures) {
        if (failure) {
            context.examine(failure->nodeType, {}, [&] {
                context.report({"creation fails while other threads create nodes: ", failure->text});
            });
        }
    }
}

void checkReloading(CheckContext& context) {
    std::vector<std::string> offered;
    for (int i = 0; i < loadCount; ++i) {
        const std::shared_ptr<Plugin> plugin = Plugin::load(context.file());
        std::vector<std::shared_ptr<MaterialNode>> nodes;
        for (const NodeDescription& type : plugin->nodeLibrary()) {
            context.examine(type.typeName, {}, [&] { nodes.push_back(plugin->createNode(type.typeName)); });
        }
        const std::vector<std::string> names = typeNames(plugin->nodeLibrary());
        context.require(i == 0 || names == offered, {"it offers other node types when it is loaded again"});
        offered = names;
    }
}

} // namespace patina::detail
