#pragma once

// The system's own number reading against sscanf, which it must follow to the letter.

#include "bindings/float_list.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <locale>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace patina::testing {

/// What was read from a text; all NaNs are one, the two zeros are not.
struct Reading {
    bool success;
    std::uint32_t bits;

    bool operator==(const Reading&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Reading& reading) {
    if (!reading.success) {
        return stream << "(no number)";
    }
    std::ostringstream number;
    number.imbue(std::locale::classic());
    number << std::setprecision(9) << std::bit_cast<float>(reading.bits) << " (bits 0x" << std::hex
           << reading.bits << ')';
    return stream << number.str();
}

inline constexpr Reading noNumber = {false, 0};

inline Reading readingOf(float value) {
    constexpr std::uint32_t anyNan = 0x7FC00000;
    return {true, std::isnan(value) ? anyNan : std::bit_cast<std::uint32_t>(value)};
}

inline Reading readByScanf(const std::string& text) {
    float value = 0.0F;
    // NOLINTNEXTLINE(cert-err34-c): the very conversion to be compared with
    return std::sscanf(text.c_str(), "%f", &value) == 1 ? readingOf(value) : noNumber;
}

inline Reading readByPatina(std::string_view text) {
    const std::optional<float> value = detail::parseLeadingFloat(text);
    return value ? readingOf(*value) : noNumber;
}

inline void expectSameReadings(const std::vector<std::string>& texts, const std::vector<Reading>& expected) {
    constexpr int mostReported = 20;
    int differences = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const Reading reading = readByPatina(texts[i]);
        if (reading != expected[i] && ++differences <= mostReported) {
            ADD_FAILURE() << '"' << texts[i] << "\" reads as " << reading << ", but sscanf reads "
                          << expected[i];
        }
    }
    EXPECT_EQ(differences, 0) << "of " << texts.size() << " texts";
}

/// In the "C" locale, and then against the same expectations where the decimal point is a comma.
inline void expectReadAsScanfReads(const std::vector<std::string>& texts) {
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    std::vector<Reading> expected;
    expected.reserve(texts.size());
    for (const std::string& text : texts) {
        expected.push_back(readByScanf(text));
    }
    expectSameReadings(texts, expected);

    const CommaLocale comma;
    SCOPED_TRACE("with a decimal comma");
    expectSameReadings(texts, expected);
}

} // namespace patina::testing
