#include "shadergraph/generator_node.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace patina {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view validNames[] = {
    "_",
    "a",
    "z",
    "A",
    "Z",
    "_a1",
    "A",
    "x_2",
    "__",
    "_0",
    "a0123456789",
    "in_value1",
    "out_colour",
    "aB_9",
    // words of the language itself
    "float",
    "float4",
    "return",
    "main",
    "uniform",
};

constexpr std::string_view invalidNames[] = {
    ""sv,
    "1a"sv,
    "0"sv,
    "9_"sv,
    "a-b"sv,
    "a b"sv,
    " a"sv,
    "a "sv,
    "a.b"sv,
    "a\n"sv,
    "\ta"sv,
    "$a"sv,
    "a$"sv,
    "a[0]"sv,
    "a::b"sv,
    "a\0b"sv,
    "\0"sv,
    "a\0"sv,
    // bytes outside ASCII, in UTF-8 and alone
    "couleur\xC3\xA9"sv,
    "\xC3\xA9"sv,
    "\xE9"sv,
    "a\x80"sv,
    "a\xFF"sv,
};

constexpr std::string_view letters = "_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view digits = "0123456789";

void expectNames() {
    for (const std::string_view name : validNames) {
        EXPECT_TRUE(isValidVariableName(name)) << name;
    }
    for (const std::string_view name : invalidNames) {
        EXPECT_FALSE(isValidVariableName(name)) << name;
    }
}

void expectEveryByte() {
    for (int code = 0; code < 256; ++code) {
        const char byte = static_cast<char>(static_cast<unsigned char>(code));
        const bool letter = letters.find(byte) != std::string_view::npos;
        const bool digit = digits.find(byte) != std::string_view::npos;
        EXPECT_EQ(isValidVariableName(std::string{byte}), letter) << code;
        EXPECT_EQ(isValidVariableName(std::string{'a', byte}), letter || digit) << code;
        EXPECT_EQ(isValidVariableName(std::string{'_', byte, 'Z'}), letter || digit) << code;
    }
}

TEST(VariableName, IsALetterOrUnderscoreThenLettersUnderscoresAndDigits) { expectNames(); }

TEST(VariableName, IsJudgedByteByByte) { expectEveryByte(); }

TEST(VariableName, IsJudgedAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    expectNames();
    expectEveryByte();
}

TEST(VariableName, HasNoLengthLimit) {
    const std::string longName(1000000, 'x');
    EXPECT_TRUE(isValidVariableName(longName));
    EXPECT_FALSE(isValidVariableName(longName + "-"));
}

} // namespace
} // namespace patina
