// The entry point of the fuzz targets whose inputs are decisions.

#include "tests/fuzz/decisions.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    patina::fuzz::Decisions decisions(data, size);
    patina::fuzz::runDecided(decisions);
    return 0;
}
