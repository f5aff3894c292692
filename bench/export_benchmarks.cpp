#include "bench/benchmarks.h"
#include "bench/documents.h"
#include "bench/samples.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

namespace patina::bench {

namespace {

using MakeDocument = MaterialDocument (*)(std::size_t size);

/// Builds, exports and takes down the material of a document. What stays equal from size to size is the time
/// for each node, unless some step does more than linear work.
void exportWhole(benchmark::State& state, MakeDocument makeDocument) {
    const MaterialDocument document = makeDocument(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        Material material = buildQuietly(document);
        Warnings warnings;
        benchmark::DoNotOptimize(exportMaterial(material, warnings));
    }
    const auto nodes = static_cast<double>(document.nodes.size());
    state.counters["nodes"] = nodes;
    state.counters["seconds_per_node"] = benchmark::Counter(
        nodes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void registerExport(const char* name, MakeDocument makeDocument, std::int64_t smallest,
                    std::int64_t largest) {
    benchmark::RegisterBenchmark(name, exportWhole, makeDocument)
        ->RangeMultiplier(10)
        ->Range(smallest, largest)
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

void registerExportBenchmarks() {
    registerExport("export/constant chain", constantChain, 10, 100000);
    registerExport("export/texture chain", textureChain, 10, 100000);
    registerExport("export/summed fan-out", summedFanOut, 100, 10000);
    registerExport("export/unread fan-out", unreadFanOut, 100, 10000);
}

} // namespace patina::bench
