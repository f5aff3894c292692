#include "shadergraph/register_table.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>

namespace patina {

using namespace detail;

namespace {

using testing::shaderErrorOf;

struct RegisterRow {
    std::int32_t index;
    std::int32_t direction;
    const char* semantic;
    const char* suffix;
    std::int32_t registers;
    std::int32_t stage;
    std::int32_t flag;
    const char* first; ///< text of number 0
    const char* third; ///< text of number 3, which only a kind with several registers shows
};

constexpr RegisterRow registerRows[] = {
    {0, 0, "UNKNOWN", "", 1, 0, 1, "UNKNOWN", "UNKNOWN"},
    {1, 0, "ATTR", "", 16, 0, 1, "ATTR0", "ATTR3"},
    {2, 0, "register( c", " )", 1024, 0, 1, "register( c0 )", "register( c3 )"},
    {3, 0, "TEXUNIT", "", 4, 0, 0, "TEXUNIT0", "TEXUNIT3"},
    {4, 1, "POSITION", "", 1, 0, 1, "POSITION", "POSITION"},
    {5, 1, "PSIZE", "", 1, 0, 1, "PSIZE", "PSIZE"},
    {6, 1, "FOG", "", 1, 0, 1, "FOG", "FOG"},
    {7, 1, "COLOR", "", 2, 0, 0, "COLOR0", "COLOR3"},
    {8, 1, "BCOLOR", "", 2, 0, 1, "BCOLOR0", "BCOLOR3"},
    {9, 1, "TEXCOORD", "", 10, 0, 1, "TEXCOORD0", "TEXCOORD3"},
    {10, 0, "WPOS", "", 1, 1, 1, "WPOS", "WPOS"},
    {11, 0, "COLOR", "", 2, 1, 1, "COLOR0", "COLOR3"},
    {12, 0, "FACE", "", 1, 1, 1, "FACE", "FACE"},
    {13, 0, "FOG", "", 1, 1, 1, "FOG", "FOG"},
    {14, 0, "TEXCOORD", "", 10, 1, 1, "TEXCOORD0", "TEXCOORD3"},
    {15, 0, "TEXUNIT", "", 16, 1, 0, "TEXUNIT0", "TEXUNIT3"},
    {16, 1, "COLOR", "", 4, 1, 0, "COLOR0", "COLOR3"},
    {17, 1, "DEPTH", "", 1, 1, 1, "DEPTH", "DEPTH"},
};
static_assert(std::size(registerRows) == 18);

constexpr std::int32_t indicesOutside[] = {
    -1, 18, 19, -18, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};

TEST(RegisterTable, HoldsEveryColumnOfEveryRow) {
    for (const RegisterRow& row : registerRows) {
        SCOPED_TRACE(row.index);
        const RegisterEntry& entry = registerEntry(row.index);
        EXPECT_EQ(entry.direction, row.direction);
        EXPECT_STREQ(entry.semantic, row.semantic);
        EXPECT_STREQ(entry.suffix, row.suffix);
        EXPECT_EQ(entry.registerCount, row.registers);
        EXPECT_EQ(entry.stage, row.stage);
        EXPECT_EQ(entry.flag, row.flag);
    }
}

TEST(RegisterTable, EndsAtBothSides) {
    for (const std::int32_t index : indicesOutside) {
        EXPECT_EQ(shaderErrorOf([&] { registerEntry(index); }), "invalid register type") << index;
        EXPECT_EQ(shaderErrorOf([&] { registerText({index, 0}); }), "invalid register type") << index;
    }
}

TEST(RegisterTable, HasNamesForIndices) {
    EXPECT_STREQ(registerEntry(registers::unknown).semantic, "UNKNOWN");
    EXPECT_EQ(registers::vertexAttribute, 1);
    EXPECT_EQ(registers::vertexConstant, 2);
    EXPECT_EQ(registers::vertexSampler, 3);
    EXPECT_EQ(registers::vertexPosition, 4);
    EXPECT_EQ(registers::vertexInterpolant, 9);
    EXPECT_EQ(registers::fragmentInterpolant, 14);
    EXPECT_EQ(registers::fragmentSampler, 15);
    EXPECT_EQ(registers::fragmentColour, 16);
}

TEST(RegisterText, ShowsTheNumberWhereThereAreSeveralRegisters) {
    for (const RegisterRow& row : registerRows) {
        EXPECT_EQ(registerText({row.index, 0}), row.first);
        EXPECT_EQ(registerText({row.index, 3}), row.third);
    }
}

struct RegisterTextRow {
    RegisterReference reference;
    const char* text;
};

constexpr RegisterTextRow registerTexts[] = {
    {{9, 3}, "TEXCOORD3"},
    {{2, 12}, "register( c12 )"},
    {{4, 0}, "POSITION"},
    {{4, 1}, "POSITION"},
    {{4, 2000}, "POSITION"},
    {{11, 1}, "COLOR1"},
    {{17, 0}, "DEPTH"},
    {{15, 15}, "TEXUNIT15"},
    {{2, 1000}, "register( c1000 )"},
    {{2, 1023}, "register( c1023 )"},
    // the number is not held against the count
    {{2, 1234567}, "register( c1234567 )"},
    {{14, 10}, "TEXCOORD10"},
    {{1, -1}, "ATTR-1"},
};

TEST(RegisterText, IsSemanticNumberAndSuffix) {
    for (const auto& [reference, text] : registerTexts) {
        EXPECT_EQ(registerText(reference), text);
    }
}

TEST(RegisterText, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    for (const auto& [reference, text] : registerTexts) {
        EXPECT_EQ(registerText(reference), text);
    }
}

TEST(RegisterReference, StartsAtIndexAndNumberZero) {
    const RegisterReference reference;
    EXPECT_EQ(reference.index, 0);
    EXPECT_EQ(reference.number, 0);
    testing::expectFieldOrder({&reference.index, &reference.number});
}

} // namespace
} // namespace patina
