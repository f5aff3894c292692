#include "bench/benchmarks.h"
#include "bench/samples.h"

#include <benchmark/benchmark.h>

namespace patina::bench {

namespace {

void loadPlugin(benchmark::State& state) {
    const std::filesystem::path file = corePluginFile();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Plugin::load(file));
    }
}

void createNode(benchmark::State& state, const std::string& type) {
    NodeFactory& factory = coreFactory();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(factory.createNode(type));
    }
}

} // namespace

void registerPluginBenchmarks() {
    // the first to run: while the plug-in is in use, loading it again would only count a reference
    benchmark::RegisterBenchmark("load/plug-in", loadPlugin)->Unit(benchmark::kMicrosecond);
    for (const std::string& type : nodeTypes()) {
        benchmark::RegisterBenchmark(("create/" + type).c_str(), createNode, type);
    }
}

} // namespace patina::bench
