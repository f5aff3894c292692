#include "tests/bindings/binding_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace patina {
namespace {

/// What texture bindings inherit is tested with them, too.
constexpr BindingKind textKinds[] = {BindingKind::Uv, BindingKind::Colour, BindingKind::Texture};

constexpr std::uint32_t indices[] = {0, 1, 1000, std::numeric_limits<std::uint32_t>::max()};

std::shared_ptr<StringBinding> makeText(BindingKind kind) {
    return testing::makeBinding<StringBinding>(kind);
}

TEST(StringBinding, StartsWithoutADefault) {
    for (const BindingKind kind : textKinds) {
        const auto binding = makeText(kind);
        EXPECT_FALSE(binding->hasDefault);
        EXPECT_EQ(binding->defaultText(0), "");
        EXPECT_EQ(binding->formatDefault(), "");
    }
}

TEST(StringBinding, StoresTheDefaultThatIsParsed) {
    for (const BindingKind kind : textKinds) {
        const auto binding = makeText(kind);
        for (const char* text : {"map1", " 1, 2 ,\t", "not a number", "\"<&>\"", "\xC3\xA9", "map1"}) {
            binding->parseDefault(text);
            EXPECT_TRUE(binding->hasDefault);
            EXPECT_EQ(binding->formatDefault(), text);
            for (const std::uint32_t index : indices) {
                EXPECT_EQ(binding->defaultText(index), text);
            }
        }
    }
}

TEST(StringBinding, TakesAnEmptyDefault) {
    for (const BindingKind kind : textKinds) {
        const auto binding = makeText(kind);
        binding->parseDefault("");
        EXPECT_TRUE(binding->hasDefault);
        EXPECT_EQ(binding->formatDefault(), "");
        binding->parseDefault("map1");
        binding->parseDefault("");
        EXPECT_EQ(binding->defaultText(0), "");
    }
}

TEST(StringBinding, OnlyMarksADefaultThatIsSetByIndex) {
    for (const BindingKind kind : textKinds) {
        for (const std::uint32_t index : indices) {
            const auto binding = makeText(kind);
            binding->setDefaultText(index, "map2");
            EXPECT_TRUE(binding->hasDefault);
            EXPECT_EQ(binding->defaultText(0), "");
            EXPECT_EQ(binding->formatDefault(), "");

            binding->parseDefault("map1");
            binding->setDefaultText(index, "map2");
            EXPECT_EQ(binding->defaultText(0), "map1");
            EXPECT_EQ(binding->formatDefault(), "map1");
            binding->setDefaultText(index, "");
            EXPECT_EQ(binding->formatDefault(), "map1");
        }
    }
}

TEST(StringBinding, FormatsTheDefaultOnlyOnceItIsPresent) {
    for (const BindingKind kind : textKinds) {
        const auto binding = makeText(kind);
        binding->parseDefault("map1");
        binding->hasDefault = false;
        EXPECT_EQ(binding->defaultText(0), "map1");
        EXPECT_EQ(binding->formatDefault(), "");

        binding->setDefaultText(0, "map2");
        EXPECT_EQ(binding->formatDefault(), "map1");

        binding->hasDefault = false;
        binding->parseDefault("map3");
        EXPECT_EQ(binding->formatDefault(), "map3");
    }
}

TEST(StringBinding, HasNoLimits) {
    for (const BindingKind kind : textKinds) {
        const auto binding = makeText(kind);
        binding->parseMin("1");
        binding->parseMax("2");
        binding->setMinValue(0, 1.0F);
        binding->setMaxValue(0, 2.0F);
        EXPECT_FALSE(binding->hasMin);
        EXPECT_FALSE(binding->hasMax);
        EXPECT_EQ(binding->formatMin(), "");
        EXPECT_EQ(binding->formatMax(), "");
    }
}

} // namespace
} // namespace patina
