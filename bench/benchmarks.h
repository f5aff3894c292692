#pragma once

namespace patina::bench {

// Each registers the benchmarks of one subject, under names of the form "what/of which".

/// Loading the plug-in and creating its nodes.
void registerPluginBenchmarks();

/// What a host asks of a node.
void registerNodeBenchmarks();

/// Whole exports of large materials.
void registerExportBenchmarks();

} // namespace patina::bench
