#include "nodemodel/text.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <limits>

namespace patina {

using namespace detail;

namespace {

struct FloatText {
    float value;
    const char* text;
};

constexpr FloatText floatTexts[] = {
    {0.0F, "0"},
    {-0.0F, "-0"},
    {1.0F, "1"},
    {0.5F, "0.5"},
    {0.1F, "0.1"},
    {-2.25F, "-2.25"},
    {100000.0F, "100000"},
    {1000000.0F, "1e+06"},
    {1234567.0F, "1.23457e+06"},
    {0.0001F, "0.0001"},
    {0.00001F, "1e-05"},
    {1.0F / 3.0F, "0.333333"},
    {-0.5F, "-0.5"},
    {10.0F, "10"},
    {123.456F, "123.456"},
    {0.000123456F, "0.000123456"},
    {0.00009999999F, "0.0001"},
    {0.000099999F, "9.9999e-05"},
    {99999.95F, "100000"},
    {100000.5F, "100000"},
    {100001.5F, "100002"},
    {999999.0F, "999999"},
    {999999.5F, "1e+06"},
    {-999999.5F, "-1e+06"},
    {9.9999995F, "10"},
    {0.99999997F, "1"},
    // just below the middle between two texts
    {0.0100001497F, "0.0100001"},
    {0.001000055F, "0.00100005"},
    {0.0001000915F, "0.000100091"},
    {std::numeric_limits<float>::infinity(), "inf"},
    {-std::numeric_limits<float>::infinity(), "-inf"},
    {std::numeric_limits<float>::quiet_NaN(), "nan"},
    {std::numeric_limits<float>::max(), "3.40282e+38"},
    {std::numeric_limits<float>::denorm_min(), "1.4013e-45"},
};

TEST(FormatFloat, PrintsSixSignificantDigitsInGeneralNotation) {
    for (const auto& [value, text] : floatTexts) {
        EXPECT_EQ(formatFloat(value), text);
    }
}

TEST(FormatFloat, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    for (const auto& [value, text] : floatTexts) {
        EXPECT_EQ(formatFloat(value), text);
    }
}

TEST(JoinText, PutsThePiecesOneAfterAnother) {
    EXPECT_EQ(joinText({}), "");
    EXPECT_EQ(joinText({"cannot create \"", "CoreFancy", "\" node"}), "cannot create \"CoreFancy\" node");
}

} // namespace
} // namespace patina
