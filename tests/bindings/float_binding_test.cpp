#include "tests/bindings/binding_state.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::stateOf;

using Component = FloatBinding::Component;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

std::shared_ptr<FloatBinding> makeFloats(std::uint32_t componentCount) {
    return testing::makeBinding<FloatBinding>(BindingKind::Float, componentCount);
}

/// The operations on one of the three values of a component.
struct ValueRow {
    const char* name;
    float (Binding::*get)(std::uint32_t) const;
    void (Binding::*set)(std::uint32_t, float);
    void (Binding::*parse)(const std::string&);
    std::string (Binding::*format)() const;
    bool Binding::*present;
    float Component::*field;
};

constexpr ValueRow valueRows[] = {
    {"min", &Binding::minValue, &Binding::setMinValue, &Binding::parseMin, &Binding::formatMin,
     &Binding::hasMin, &Component::minimum},
    {"max", &Binding::maxValue, &Binding::setMaxValue, &Binding::parseMax, &Binding::formatMax,
     &Binding::hasMax, &Component::maximum},
    {"default", &Binding::defaultValue, &Binding::setDefaultValue, &Binding::parseDefault,
     &Binding::formatDefault, &Binding::hasDefault, &Component::initial},
};

/// One of the three values of every component.
std::vector<float> valuesOf(const FloatBinding& binding, const ValueRow& row) {
    std::vector<float> values;
    for (const Component& component : binding.components) {
        values.push_back(component.*row.field);
    }
    return values;
}

/// That a change to one of the values left the two others alone.
void expectOthersUntouched(const FloatBinding& binding, const ValueRow& changed) {
    for (const ValueRow& row : valueRows) {
        if (row.field != changed.field) {
            EXPECT_FALSE(binding.*row.present) << row.name;
            EXPECT_EQ(valuesOf(binding, row), std::vector<float>(binding.components.size(), 0.0F))
                << row.name;
        }
    }
}

TEST(FloatBinding, StartsWithZeroesForEachComponent) {
    for (const std::uint32_t count : {1U, 2U, 3U, 4U, 9U}) {
        const auto binding = makeFloats(count);
        ASSERT_EQ(binding->components.size(), count);
        for (const ValueRow& row : valueRows) {
            EXPECT_EQ(valuesOf(*binding, row), std::vector<float>(count, 0.0F));
            EXPECT_EQ(((*binding).*row.get)(0), 0.0F);
            EXPECT_EQ(((*binding).*row.format)(), "");
        }
    }
}

TEST(FloatBinding, StoresAValuePerComponentAndMarksItAsPresent) {
    for (const ValueRow& row : valueRows) {
        SCOPED_TRACE(row.name);
        const auto binding = makeFloats(3);
        ((*binding).*row.set)(1, -2.5F);
        EXPECT_TRUE((*binding).*row.present);
        EXPECT_EQ(valuesOf(*binding, row), (std::vector<float>{0.0F, -2.5F, 0.0F}));
        ((*binding).*row.set)(0, 4.0F);
        ((*binding).*row.set)(2, 8.0F);
        EXPECT_EQ(((*binding).*row.get)(0), 4.0F);
        EXPECT_EQ(((*binding).*row.get)(1), -2.5F);
        EXPECT_EQ(((*binding).*row.get)(2), 8.0F);
        expectOthersUntouched(*binding, row);
    }
}

TEST(FloatBinding, IgnoresValuesForComponentsThatItDoesNotHave) {
    for (const ValueRow& row : valueRows) {
        for (const std::uint32_t index : {3U, 4U, 1000U, std::numeric_limits<std::uint32_t>::max()}) {
            const auto binding = makeFloats(3);
            const std::string before = stateOf(*binding);
            ((*binding).*row.set)(index, 1.0F);
            EXPECT_EQ(stateOf(*binding), before) << row.name << ' ' << index;
            EXPECT_FALSE((*binding).*row.present) << row.name << ' ' << index;
        }
    }
}

TEST(FloatBinding, ReadsZeroBeyondItsComponents) {
    for (const ValueRow& row : valueRows) {
        const auto binding = makeFloats(2);
        ((*binding).*row.parse)("5, 6");
        EXPECT_EQ(((*binding).*row.get)(1), 6.0F) << row.name;
        for (const std::uint32_t index : {2U, 3U, 1000U, std::numeric_limits<std::uint32_t>::max()}) {
            EXPECT_EQ(((*binding).*row.get)(index), 0.0F) << row.name << ' ' << index;
        }
    }
}

TEST(FloatBinding, ReadsZeroAndNoListWhileTheValueIsNotPresent) {
    for (const ValueRow& row : valueRows) {
        const auto binding = makeFloats(2);
        for (const ValueRow& each : valueRows) {
            binding->components[0].*each.field = 3.0F;
            binding->components[1].*each.field = 3.0F;
            (*binding).*each.present = each.field != row.field;
        }
        for (const ValueRow& each : valueRows) {
            const bool present = each.field != row.field;
            EXPECT_EQ(((*binding).*each.get)(0), present ? 3.0F : 0.0F) << each.name;
            EXPECT_EQ(((*binding).*each.get)(1), present ? 3.0F : 0.0F) << each.name;
            EXPECT_EQ(((*binding).*each.format)(), present ? "3, 3" : "") << each.name;
        }
    }
}

TEST(FloatBinding, CountsItsRecordsAndLeavesTheStoredCount) {
    const auto binding = makeFloats(2);
    binding->setComponentCount(4);
    EXPECT_EQ(binding->componentCount(), 4U);
    EXPECT_EQ(binding->Binding::componentCount(), 2U);
    binding->setComponentCount(1);
    EXPECT_EQ(binding->componentCount(), 1U);
    EXPECT_EQ(binding->Binding::componentCount(), 2U);
    binding->components.resize(7);
    EXPECT_EQ(binding->componentCount(), 7U);
    EXPECT_EQ(binding->Binding::componentCount(), 2U);
}

TEST(FloatBinding, DropsRecordsFromTheEndAndRepeatsTheLastOne) {
    const auto binding = makeFloats(3);
    binding->parseMin("1, 2, 3");
    binding->parseMax("4, 5, 6");
    binding->parseDefault("7, 8, 9");

    const std::string before = stateOf(*binding);
    binding->setComponentCount(3);
    EXPECT_EQ(stateOf(*binding), before);

    binding->setComponentCount(2);
    EXPECT_EQ(binding->formatMin(), "1, 2");
    EXPECT_EQ(binding->formatMax(), "4, 5");
    EXPECT_EQ(binding->formatDefault(), "7, 8");

    binding->setComponentCount(4);
    EXPECT_EQ(binding->formatMin(), "1, 2, 2, 2");
    EXPECT_EQ(binding->formatMax(), "4, 5, 5, 5");
    EXPECT_EQ(binding->formatDefault(), "7, 8, 8, 8");
}

TEST(FloatBinding, GrowsFromNoRecordsWithZeroes) {
    const auto binding = makeFloats(2);
    for (const ValueRow& row : valueRows) {
        ((*binding).*row.parse)("5");
    }
    binding->setComponentCount(0);
    EXPECT_EQ(binding->componentCount(), 0U);
    for (const ValueRow& row : valueRows) {
        EXPECT_TRUE((*binding).*row.present);
        EXPECT_EQ(((*binding).*row.format)(), "");
        EXPECT_EQ(((*binding).*row.get)(0), 0.0F);
    }
    binding->setComponentCount(3);
    for (const ValueRow& row : valueRows) {
        EXPECT_EQ(valuesOf(*binding, row), std::vector<float>(3, 0.0F));
        EXPECT_EQ(((*binding).*row.format)(), "0, 0, 0");
    }
}

TEST(FloatBinding, RepeatsTheLastRecordEvenWhereNoValueIsPresent) {
    const auto binding = makeFloats(1);
    binding->components[0] = {1.0F, 2.0F, 3.0F};
    binding->setComponentCount(2);
    EXPECT_EQ(binding->components[1].minimum, 1.0F);
    EXPECT_EQ(binding->components[1].maximum, 2.0F);
    EXPECT_EQ(binding->components[1].initial, 3.0F);
    EXPECT_FALSE(binding->hasMin || binding->hasMax || binding->hasDefault);
}

struct FormatRow {
    std::vector<float> values;
    const char* text;
};

const FormatRow formatRows[] = {
    {{1.0F}, "1"},
    {{0.5F}, "0.5"},
    {{0.0F}, "0"},
    {{-0.0F}, "-0"},
    {{1.0F, 0.5F, 0.25F}, "1, 0.5, 0.25"},
    {{0.1F, -2.25F}, "0.1, -2.25"},
    {{1.0F / 3.0F, 2.0F / 3.0F}, "0.333333, 0.666667"},
    {{1234.5F, 123456.0F, 1234567.0F}, "1234.5, 123456, 1.23457e+06"},
    {{0.0001F, 0.00001F}, "0.0001, 1e-05"},
    {{1e20F, 3.4028235e38F}, "1e+20, 3.40282e+38"},
    {{inf, -inf, nan}, "inf, -inf, nan"},
    {{1.0F, 2.0F, 3.0F, 4.0F, 5.0F}, "1, 2, 3, 4, 5"},
    {{}, ""},
};

void expectListsFormatted() {
    for (const ValueRow& row : valueRows) {
        for (const FormatRow& list : formatRows) {
            const auto binding = makeFloats(1);
            binding->setComponentCount(static_cast<std::uint32_t>(list.values.size()));
            for (std::size_t i = 0; i < list.values.size(); ++i) {
                binding->components[i].*row.field = list.values[i];
            }
            (*binding).*row.present = true;
            EXPECT_EQ(((*binding).*row.format)(), list.text) << row.name;
        }
    }
}

TEST(FloatBinding, FormatsAllComponentsWithSixDigitsBetweenCommas) { expectListsFormatted(); }

TEST(FloatBinding, FormatsAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    expectListsFormatted();
}

struct ParseRow {
    const char* text;
    std::vector<float> values; ///< of four components
};

const ParseRow parseRows[] = {
    {"0.5", {0.5F, 0.5F, 0.5F, 0.5F}},
    {"1, 2", {1.0F, 2.0F, 2.0F, 2.0F}},
    {"1,2,3", {1.0F, 2.0F, 3.0F, 3.0F}},
    {"1,2,3,4", {1.0F, 2.0F, 3.0F, 4.0F}},
    {"1,2,3,4,5,6", {1.0F, 2.0F, 3.0F, 4.0F}},
    {",,1,,2,,", {1.0F, 2.0F, 2.0F, 2.0F}},
    {"\t1 ,\n2 ,\v3 ,\r4", {1.0F, 2.0F, 3.0F, 4.0F}},
    {"1 9, 2px, 3.5.5, 4;5", {1.0F, 2.0F, 3.5F, 4.0F}},
    {"-1.5e1, +.5, 0x10, 1.", {-15.0F, 0.5F, 16.0F, 1.0F}},
    {"1,5", {1.0F, 5.0F, 5.0F, 5.0F}},
    {"inf, -INF, 1e39, 1e-60", {inf, -inf, inf, 0.0F}},
    {"", {0.0F, 0.0F, 0.0F, 0.0F}},
    {",", {0.0F, 0.0F, 0.0F, 0.0F}},
    {",,,,,", {0.0F, 0.0F, 0.0F, 0.0F}},
};

constexpr const char* badLists[] = {
    " ", "x", "-", "1, ", "1, ,2", " ,1", "x,1", "1,x", "1,2,3,4,x", "1,2,3,4, ", "(1,2)", "1,infi", "0x,1",
};

void expectListsParsed() {
    for (const ValueRow& row : valueRows) {
        for (const ParseRow& list : parseRows) {
            const auto binding = makeFloats(4);
            ((*binding).*row.parse)(list.text);
            EXPECT_TRUE((*binding).*row.present) << row.name << ' ' << list.text;
            EXPECT_EQ(valuesOf(*binding, row), list.values) << row.name << ' ' << list.text;
            expectOthersUntouched(*binding, row);
        }
        for (const char* text : badLists) {
            const auto binding = makeFloats(4);
            binding->components[1].*row.field = 7.0F;
            ((*binding).*row.parse)(text);
            EXPECT_FALSE((*binding).*row.present) << row.name << ' ' << text;
            EXPECT_EQ(valuesOf(*binding, row), (std::vector<float>{0.0F, 7.0F, 0.0F, 0.0F}))
                << row.name << ' ' << text;

            ((*binding).*row.parse)("1, 2, 3, 4");
            ((*binding).*row.parse)(text);
            EXPECT_TRUE((*binding).*row.present) << row.name << ' ' << text;
            EXPECT_EQ(((*binding).*row.format)(), "1, 2, 3, 4") << row.name << ' ' << text;
        }
    }
}

TEST(FloatBinding, ParsesListsAndRepeatsTheLastNumber) { expectListsParsed(); }

TEST(FloatBinding, ParsesAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    expectListsParsed();
}

TEST(FloatBinding, ParsingOverwritesEveryComponent) {
    for (const ValueRow& row : valueRows) {
        const auto binding = makeFloats(3);
        ((*binding).*row.parse)("1, 0.5, 0.25");
        EXPECT_EQ(((*binding).*row.format)(), "1, 0.5, 0.25") << row.name;
        ((*binding).*row.parse)("2");
        EXPECT_EQ(((*binding).*row.format)(), "2, 2, 2") << row.name;
        // no number at all is a list too
        ((*binding).*row.parse)("");
        EXPECT_EQ(((*binding).*row.format)(), "0, 0, 0") << row.name;
    }
}

TEST(FloatBinding, ParsesNotANumber) {
    for (const ValueRow& row : valueRows) {
        const auto binding = makeFloats(2);
        ((*binding).*row.parse)("nan, 1");
        EXPECT_TRUE(std::isnan(((*binding).*row.get)(0))) << row.name;
        EXPECT_EQ(((*binding).*row.get)(1), 1.0F) << row.name;
    }
}

TEST(FloatBinding, ParsingMarksTheValueAsPresentEvenWithoutRecords) {
    for (const ValueRow& row : valueRows) {
        const auto binding = makeFloats(1);
        binding->setComponentCount(0);
        ((*binding).*row.parse)("1, 2");
        EXPECT_TRUE((*binding).*row.present) << row.name;
        EXPECT_TRUE(binding->components.empty()) << row.name;
    }
}

TEST(FloatBinding, IsFilledComponentByComponent) {
    const auto binding = makeFloats(3);
    constexpr float defaults[] = {1.0F, 0.5F, 0.25F};
    for (std::uint32_t i = 0; i < 3; ++i) {
        binding->setMinValue(i, -1.0F);
        binding->setMaxValue(i, 10.0F);
        binding->setDefaultValue(i, defaults[i]);
    }
    EXPECT_EQ(binding->formatMin(), "-1, -1, -1");
    EXPECT_EQ(binding->formatMax(), "10, 10, 10");
    EXPECT_EQ(binding->formatDefault(), "1, 0.5, 0.25");
}

} // namespace
} // namespace patina
