#include "bindings/float_list.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace patina {

using namespace detail;

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();

struct LeadingNumber {
    const char* text;
    float value;
};

constexpr LeadingNumber leadingNumbers[] = {
    {"0", 0.0F},
    {"-0", -0.0F},
    {"1", 1.0F},
    {"+1", 1.0F},
    {"-1", -1.0F},
    {"0.5", 0.5F},
    {".5", 0.5F},
    {"-.5", -0.5F},
    {"1.", 1.0F},
    {"1e2", 100.0F},
    {"1E+2", 100.0F},
    {"25e-2", 0.25F},
    {"0.1", 0.1F},
    // leading blanks of all six kinds
    {" 1", 1.0F},
    {"\t1", 1.0F},
    {"\n1", 1.0F},
    {"\v1", 1.0F},
    {"\f1", 1.0F},
    {"\r1", 1.0F},
    {" \t\n\v\f\r 1", 1.0F},
    // what follows the number is ignored
    {"1 ", 1.0F},
    {"1 2", 1.0F},
    {"1x", 1.0F},
    {"1.5.5", 1.5F},
    {"1,5", 1.0F},
    {"1-2", 1.0F},
    {"1e5.3", 100000.0F},
    {"2f", 2.0F},
    {"50%", 50.0F},
    // hexadecimal
    {"0x10", 16.0F},
    {"0XfF", 255.0F},
    {"0x1.8p3", 12.0F},
    {"0X.8P-2x", 0.125F},
    {"-0x1p-1", -0.5F},
    // beyond the range of floats
    {"1e39", inf},
    {"-1e39", -inf},
    {"1e99999999999999999999", inf},
    {"1e-46", 0.0F},
    {"-1e-99999999999999999999", -0.0F},
    {"0e999999", 0.0F},
    {"0x1p128", inf},
    {"-0x1p-200", -0.0F},
    {"1e-45", std::numeric_limits<float>::denorm_min()},
    {"3.4028234e38", std::numeric_limits<float>::max()},
    // words
    {"inf", inf},
    {"-INF", -inf},
    {"Infinity", inf},
    {"+iNfInItY", inf},
    {"INFx", inf},
};

constexpr const char* textsWithoutNumber[] = {
    "",   " ",   "\t\n", "+", "-",  ".", "-.", "+.",  "- 1",  "--1",      "+-1", "e5", ".e5", "x1",    "a",
    "#1", "one", ",1",   "i", "in", "n", "na", "-na", "infi", "infinite", "0x",  "0X", "0xg", "-0xp1",
};

void expectLeadingNumbersRead() {
    for (const auto& [text, value] : leadingNumbers) {
        const std::optional<float> number = parseLeadingFloat(text);
        ASSERT_TRUE(number.has_value()) << text;
        EXPECT_EQ(*number, value) << text;
        EXPECT_EQ(std::signbit(*number), std::signbit(value)) << text;
    }
    for (const char* text : {"nan", "NaN", "-nan", "nan(123)", "nanx"}) {
        const std::optional<float> number = parseLeadingFloat(text);
        ASSERT_TRUE(number.has_value()) << text;
        EXPECT_TRUE(std::isnan(*number)) << text;
    }
    for (const char* text : textsWithoutNumber) {
        EXPECT_EQ(parseLeadingFloat(text), std::nullopt) << text;
    }
}

TEST(ParseLeadingFloat, ReadsTheNumberAtTheStart) { expectLeadingNumbersRead(); }

TEST(ParseLeadingFloat, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    expectLeadingNumbersRead();
    EXPECT_EQ(parseLeadingFloat("1.234,5"), 1.234F);
}

struct FloatList {
    const char* text;
    std::vector<float> values;
};

const FloatList floatLists[] = {
    {"", {}},
    {",", {}},
    {",,,", {}},
    {"1", {1.0F}},
    {"1,2", {1.0F, 2.0F}},
    {"1, 2", {1.0F, 2.0F}},
    {"1,2,", {1.0F, 2.0F}},
    {",1,,2,,,", {1.0F, 2.0F}},
    {" 1,\t2,\n3", {1.0F, 2.0F, 3.0F}},
    {"1 ,2 ", {1.0F, 2.0F}},
    {"1 9,2;9,3x", {1.0F, 2.0F, 3.0F}},
    {"0.5, -0.25, 1e2, 0x10", {0.5F, -0.25F, 100.0F, 16.0F}},
    {"1,2,3,4,5,6", {1.0F, 2.0F, 3.0F, 4.0F, 5.0F, 6.0F}},
    {"inf,-infinity", {inf, -inf}},
};

TEST(ParseFloatList, ReadsThePiecesBetweenCommasAndDropsEmptyOnes) {
    for (const auto& [text, values] : floatLists) {
        EXPECT_EQ(parseFloatList(text), values) << text;
    }
}

TEST(ParseFloatList, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    for (const auto& [text, values] : floatLists) {
        EXPECT_EQ(parseFloatList(text), values) << text;
    }
}

TEST(ParseFloatList, FailsWhenAnyPieceGivesNoNumber) {
    for (const char* text : {" ", "1, ", " ,1", "1, ,2", "x", "1,x", "x,1", "1,2,three,4", "1;2,-", "(1,2)",
                             "1,infi", "0x,1", "1,\t"}) {
        EXPECT_EQ(parseFloatList(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace patina
