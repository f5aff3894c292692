#include "bench/benchmarks.h"

#include <benchmark/benchmark.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    try {
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return 2;
        }
        patina::bench::registerPluginBenchmarks();
        patina::bench::registerNodeBenchmarks();
        patina::bench::registerExportBenchmarks();
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
