#include "bindings/bindings.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

std::uint32_t bitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// The C library's answer; this program stays in the "C" locale.
void compareWithScanf(const std::string& text) {
    float expected = 0.0F;
    const bool found = std::sscanf(text.c_str(), "%f", &expected) == 1;
    const auto value = patina::detail::parseLeadingFloat(text);
    require(value.has_value() == found);
    if (!found || (std::isnan(*value) && std::isnan(expected))) {
        return;
    }
    // C libraries are known to round some denormals twice
    const std::uint32_t tolerance = std::fpclassify(expected) == FP_NORMAL ? 0 : 1;
    require(std::signbit(*value) == std::signbit(expected));
    require(bitsOf(*value) - bitsOf(expected) + tolerance <= 2 * tolerance);
}

} // namespace

/// A number is read as the C library reads it; a list changes all of a binding's values or none; and what a
/// binding prints it reads back to the same text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    compareWithScanf(text);

    const auto binding =
        patina::createBinding(patina::BindingKind::Float, "value", static_cast<std::uint32_t>(1 + size % 5));
    binding->parseDefault(text);
    require(binding->hasDefault == patina::detail::parseFloatList(text).has_value());
    if (binding->hasDefault) {
        const std::string printed = binding->formatDefault();
        binding->parseDefault(printed);
        // cppcheck-suppress knownConditionTrueFalse ; parsing what was printed may change it
        require(binding->formatDefault() == printed);
    }
    return 0;
}
