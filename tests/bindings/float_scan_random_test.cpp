#include "tests/bindings/float_scan.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace patina {
namespace {

using testing::expectReadAsScanfReads;
using testing::readByPatina;
using testing::readByScanf;
using testing::Reading;
using testing::readingOf;

std::string printed(const char* format, int precision, double value) {
    std::string text(512, '\0');
    const int size = std::snprintf(text.data(), text.size(), format, precision, value);
    text.resize(static_cast<std::size_t>(size));
    return text;
}

std::string randomText(std::mt19937& random, std::string_view alphabet, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += alphabet[random() % alphabet.size()];
    }
    return text;
}

/// A list of texts that one generator with a fixed seed makes.
std::vector<std::string> randomTexts(std::size_t count,
                                     const std::function<std::string(std::mt19937&)>& make) {
    std::mt19937 random(20240229);
    std::vector<std::string> texts;
    texts.reserve(count);
    while (texts.size() < count) {
        texts.push_back(make(random));
    }
    return texts;
}

TEST(ParseLeadingFloat, ReadsRandomTextsAsScanfDoes) {
    constexpr std::size_t longest = 12;
    expectReadAsScanfReads(randomTexts(200000, [](std::mt19937& random) {
        const std::size_t length = random() % (longest + 1);
        return randomText(random, "0123456789.eE+-xXpPaAfFiInNtTyY() \t", length);
    }));
}

std::string randomHexadecimalText(std::mt19937& random, std::size_t mostDigits) {
    const std::size_t digits = random() % (mostDigits + 1);
    std::string text = random() % 2 == 0 ? "0x" : "-0X";
    text += randomText(random, "0123456789abcdefABCDEF.", digits);
    if (random() % 4 != 0) {
        text += 'p' + std::to_string(static_cast<int>(random() % 400) - 230);
    }
    return text;
}

TEST(ParseLeadingFloat, ReadsRandomHexadecimalTextsAsScanfDoes) {
    std::vector<std::string> texts =
        randomTexts(100000, [](std::mt19937& random) { return randomHexadecimalText(random, 20); });
    // C libraries are known to round denormals twice; these have a test of their own
    std::erase_if(texts, [](const std::string& text) {
        const Reading reading = readByScanf(text);
        const float magnitude = std::abs(std::bit_cast<float>(reading.bits));
        return reading.success && magnitude > 0.0F && magnitude < std::numeric_limits<float>::min();
    });
    ASSERT_GT(texts.size(), 80000U);
    expectReadAsScanfReads(texts);
}

TEST(ParseLeadingFloat, RoundsHexadecimalDenormalsOnce) {
    // halfway for a normal float, above halfway for the denormal
    EXPECT_EQ(readByPatina("0x5be49a4p-155"), (Reading{true, 0x0016F927}));

    std::mt19937 random(13);
    for (int i = 0; i < 100000; ++i) {
        // no more digits than a double holds, so that narrowing it is the one rounding
        const std::string text = randomHexadecimalText(random, 13);
        double exact = 0.0;
        // NOLINTNEXTLINE(cert-err34-c)
        if (std::sscanf(text.c_str(), "%lf", &exact) == 1 &&
            std::abs(exact) < static_cast<double>(std::numeric_limits<float>::min())) {
            ASSERT_EQ(readByPatina(text), readingOf(static_cast<float>(exact))) << text;
        }
    }
}

/// Any float but the infinities and NaNs; denormals as often as other exponents.
float randomFiniteFloat(std::mt19937& random) {
    float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    while (!std::isfinite(value)) {
        value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    }
    return value;
}

TEST(ParseLeadingFloat, ReadsEveryPrintedFloatBack) {
    constexpr int enoughDigits = 9;
    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        const float value = randomFiniteFloat(random);
        const std::string text = printed("%.*g", enoughDigits, static_cast<double>(value));
        ASSERT_EQ(readByPatina(text), readingOf(value)) << text;
        ASSERT_EQ(readByScanf(text), readingOf(value)) << text;
    }
}

TEST(ParseLeadingFloat, RoundsHalfwayTextsAsScanfDoes) {
    constexpr int everyDigit = 120;
    std::mt19937 random(11);
    std::vector<std::string> texts;
    for (int i = 0; i < 10000; ++i) {
        const float value = std::abs(randomFiniteFloat(random));
        const double next = static_cast<double>(std::nextafter(value, INFINITY));
        if (!std::isfinite(next)) {
            continue;
        }
        // a double holds the middle of two floats exactly
        const double middle = (static_cast<double>(value) + next) / 2;
        const std::string halfway = printed("%.*e", everyDigit, middle);
        const std::size_t exponent = halfway.find('e');
        texts.push_back(halfway);
        texts.push_back(halfway.substr(0, exponent) + "0000000001" + halfway.substr(exponent));
        texts.push_back(printed("%.*e", everyDigit, std::nextafter(middle, 0.0)));
        texts.push_back(printed("%.*a", 13, middle));
        texts.push_back(printed("%.*a", 13, std::nextafter(middle, INFINITY)));
        texts.push_back(printed("%.*a", 13, std::nextafter(middle, 0.0)));
    }
    expectReadAsScanfReads(texts);
}

TEST(ParseLeadingFloat, ReadsLongDecimalTextsAsScanfDoes) {
    expectReadAsScanfReads(randomTexts(20000, [](std::mt19937& random) {
        const std::size_t whole = random() % 60;
        const std::size_t fraction = random() % 120;
        std::string text = random() % 2 == 0 ? "" : "-";
        text += std::string(random() % 3, '0') + randomText(random, "0123456789", whole);
        text += '.' + std::string(random() % 50, '0') + randomText(random, "0123456789", fraction);
        if (random() % 2 == 0) {
            text += (random() % 2 == 0 ? 'e' : 'E') + std::to_string(static_cast<int>(random() % 160) - 80);
        }
        return text;
    }));
}

} // namespace
} // namespace patina
