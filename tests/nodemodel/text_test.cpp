#include "nodemodel/text.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

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

TEST(TextBuilder, PutsPiecesOfAnyLengthOneAfterAnother) {
    const std::string name = "name";
    for (const std::size_t length : {0U, 1U, 119U, 120U, 121U, 128U, 129U, 1000U}) {
        const std::string piece(length, 'x');
        TextBuilder text;
        text.append("float", " ", name, std::string_view(";\n"));
        text.append(piece);
        text.append("a", piece, "b");
        EXPECT_EQ(text.size(), 14 + 2 * length);
        const std::string expected = "float name;\n" + piece + "a" + piece + "b";
        EXPECT_EQ(text.view(), expected);
        text.append("!");
        EXPECT_EQ(text.view(), expected + "!");
        EXPECT_EQ(text.take(), expected + "!");
        EXPECT_EQ(text.size(), 0U);
        text.append("again");
        EXPECT_EQ(text.take(), "again");
    }
}

TEST(TextBuilder, GrowsPieceByPiece) {
    TextBuilder text;
    text.reserve(100);
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        text.append("ab");
        expected += "ab";
        EXPECT_EQ(text.size(), expected.size());
    }
    EXPECT_EQ(text.take(), expected);
}

TEST(TextBuilder, StartsAnew) {
    TextBuilder text;
    for (const std::size_t length : {5U, 500U}) {
        text.append(std::string(length, 'x'), "y");
        text.clear();
        EXPECT_EQ(text.size(), 0U);
        EXPECT_EQ(text.view(), "");
        text.append("b");
        EXPECT_EQ(text.view(), "b");
    }
}

TEST(TextBuilder, AppendsNumbersWhereverItStands) {
    for (std::size_t length = 100; length <= 130; ++length) {
        TextBuilder text;
        text.append(std::string(length, 'x'));
        text.appendFloat(-1.17549435e-38F);
        text.appendFloat(0.5F);
        EXPECT_EQ(text.take(), std::string(length, 'x') + "-1.17549e-380.5");
    }
}

} // namespace
} // namespace patina
