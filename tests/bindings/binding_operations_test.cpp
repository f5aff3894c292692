// Which of the virtual operations each of the four classes answers, and which it ignores.

#include "tests/bindings/binding_state.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace patina {
namespace {

using testing::kindOfEveryClass;
using testing::stateOf;

constexpr std::uint32_t indices[] = {0, 1, 2, 3, 1000, std::numeric_limits<std::uint32_t>::max()};

constexpr const char* classNames[] = {"Binding", "FloatBinding", "StringBinding", "TextureBinding"};

enum Effect { Ignored, Changes };

struct SetterRow {
    const char* operation;
    void (*apply)(Binding& binding);
    Effect effects[4]; ///< on Binding, FloatBinding, StringBinding, TextureBinding
};

const SetterRow setterRows[] = {
    {"setComponentCount", [](Binding& b) { b.setComponentCount(3); }, {Changes, Changes, Changes, Changes}},
    {"setMinText", [](Binding& b) { b.setMinText(0, "5"); }, {Ignored, Ignored, Ignored, Ignored}},
    {"setMinValue", [](Binding& b) { b.setMinValue(0, 5.0F); }, {Ignored, Changes, Ignored, Ignored}},
    {"setMaxText", [](Binding& b) { b.setMaxText(0, "5"); }, {Ignored, Ignored, Ignored, Ignored}},
    {"setMaxValue", [](Binding& b) { b.setMaxValue(0, 5.0F); }, {Ignored, Changes, Ignored, Ignored}},
    {"setDefaultText", [](Binding& b) { b.setDefaultText(0, "5"); }, {Ignored, Ignored, Changes, Changes}},
    {"setDefaultValue", [](Binding& b) { b.setDefaultValue(0, 5.0F); }, {Ignored, Changes, Ignored, Ignored}},
    {"parseMin", [](Binding& b) { b.parseMin("5"); }, {Ignored, Changes, Ignored, Ignored}},
    {"parseMax", [](Binding& b) { b.parseMax("5"); }, {Ignored, Changes, Ignored, Ignored}},
    {"parseDefault", [](Binding& b) { b.parseDefault("5"); }, {Ignored, Changes, Changes, Changes}},
};

TEST(BindingOperations, ChangeOnlyTheClassesThatCarrySuchAValue) {
    for (const SetterRow& row : setterRows) {
        for (std::size_t i = 0; i < std::size(kindOfEveryClass); ++i) {
            const std::shared_ptr<Binding> binding = createBinding(kindOfEveryClass[i], "tint", 2);
            const std::string before = stateOf(*binding);
            row.apply(*binding);
            if (row.effects[i] == Ignored) {
                EXPECT_EQ(stateOf(*binding), before) << classNames[i] << "::" << row.operation;
            } else {
                EXPECT_NE(stateOf(*binding), before) << classNames[i] << "::" << row.operation;
            }
        }
    }
}

TEST(BindingOperations, StayIgnoredWhereTheFlagsAreSetByHand) {
    for (const SetterRow& row : setterRows) {
        for (std::size_t i = 0; i < std::size(kindOfEveryClass); ++i) {
            if (row.effects[i] == Changes) {
                continue;
            }
            const std::shared_ptr<Binding> binding = createBinding(kindOfEveryClass[i], "tint", 2);
            binding->hasMin = true;
            binding->hasMax = true;
            binding->hasDefault = true;
            const std::string before = stateOf(*binding);
            row.apply(*binding);
            EXPECT_EQ(stateOf(*binding), before) << classNames[i] << "::" << row.operation;
        }
    }
}

TEST(BindingOperations, ChangeOnlyTheirOwnFlag) {
    struct FlagRow {
        const char* operation;
        void (*apply)(Binding& binding);
        bool hasMin;
        bool hasMax;
        bool hasDefault;
    };
    const FlagRow rows[] = {
        {"setMinValue", [](Binding& b) { b.setMinValue(1, 5.0F); }, true, false, false},
        {"parseMin", [](Binding& b) { b.parseMin("5"); }, true, false, false},
        {"setMaxValue", [](Binding& b) { b.setMaxValue(1, 5.0F); }, false, true, false},
        {"parseMax", [](Binding& b) { b.parseMax("5"); }, false, true, false},
        {"setDefaultValue", [](Binding& b) { b.setDefaultValue(1, 5.0F); }, false, false, true},
        {"parseDefault", [](Binding& b) { b.parseDefault("5"); }, false, false, true},
        {"setComponentCount", [](Binding& b) { b.setComponentCount(5); }, false, false, false},
    };
    for (const FlagRow& row : rows) {
        const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
        row.apply(*binding);
        EXPECT_EQ(binding->hasMin, row.hasMin) << row.operation;
        EXPECT_EQ(binding->hasMax, row.hasMax) << row.operation;
        EXPECT_EQ(binding->hasDefault, row.hasDefault) << row.operation;
    }
}

/// Sets and parses whatever the class takes, and marks everything as present.
std::shared_ptr<Binding> makeFilledBinding(BindingKind kind) {
    std::shared_ptr<Binding> binding = createBinding(kind, "tint", 2);
    for (std::uint32_t index = 0; index < 2; ++index) {
        binding->setMinText(index, "text");
        binding->setMinValue(index, 5.0F);
        binding->setMaxText(index, "text");
        binding->setMaxValue(index, 6.0F);
        binding->setDefaultValue(index, 7.0F);
    }
    binding->parseDefault("7, 8");
    binding->hasMin = true;
    binding->hasMax = true;
    binding->hasDefault = true;
    return binding;
}

TEST(BindingOperations, GiveNoNumbersInClassesWithoutNumbers) {
    for (const BindingKind kind : {testing::plainKind, testing::stringKind, testing::textureKind}) {
        const std::shared_ptr<Binding> binding = makeFilledBinding(kind);
        for (const std::uint32_t index : indices) {
            EXPECT_EQ(binding->minValue(index), 0.0F) << bindingKindName(*binding);
            EXPECT_EQ(binding->maxValue(index), 0.0F) << bindingKindName(*binding);
            EXPECT_EQ(binding->defaultValue(index), 0.0F) << bindingKindName(*binding);
        }
        EXPECT_EQ(binding->formatMin(), "") << bindingKindName(*binding);
        EXPECT_EQ(binding->formatMax(), "") << bindingKindName(*binding);
    }
}

TEST(BindingOperations, GiveNoLimitsAsTextInAnyClass) {
    for (const BindingKind kind : kindOfEveryClass) {
        const std::shared_ptr<Binding> binding = makeFilledBinding(kind);
        for (const std::uint32_t index : indices) {
            EXPECT_EQ(binding->minText(index), "") << bindingKindName(*binding);
            EXPECT_EQ(binding->maxText(index), "") << bindingKindName(*binding);
        }
    }
}

TEST(BindingOperations, GiveADefaultTextOnlyInTextClasses) {
    for (const std::uint32_t index : indices) {
        EXPECT_EQ(makeFilledBinding(testing::plainKind)->defaultText(index), "");
        EXPECT_EQ(makeFilledBinding(testing::floatKind)->defaultText(index), "");
        EXPECT_EQ(makeFilledBinding(testing::stringKind)->defaultText(index), "7, 8");
        EXPECT_EQ(makeFilledBinding(testing::textureKind)->defaultText(index), "7, 8");
    }
}

TEST(BindingOperations, FormatADefaultInEveryClassButThePlainOne) {
    EXPECT_EQ(makeFilledBinding(testing::plainKind)->formatDefault(), "");
    EXPECT_EQ(makeFilledBinding(testing::floatKind)->formatDefault(), "7, 8");
    EXPECT_EQ(makeFilledBinding(testing::stringKind)->formatDefault(), "7, 8");
    EXPECT_EQ(makeFilledBinding(testing::textureKind)->formatDefault(), "7, 8");
}

TEST(BindingOperations, StoreTheComponentCountInClassesWithoutRecords) {
    for (const BindingKind kind : {testing::plainKind, testing::stringKind, testing::textureKind}) {
        const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 3);
        EXPECT_EQ(binding->componentCount(), 3U);
        for (const std::uint32_t count : {4U, 1U, 0U, std::numeric_limits<std::uint32_t>::max(), 2U}) {
            binding->setComponentCount(count);
            EXPECT_EQ(binding->componentCount(), count) << bindingKindName(*binding);
            EXPECT_EQ(binding->Binding::componentCount(), count) << bindingKindName(*binding);
        }
    }
}

TEST(CreateBinding, TakesAnyComponentCountButNone) {
    for (const BindingKind kind : kindOfEveryClass) {
        for (const std::uint32_t count : {1U, 2U, 4U, 5U, 100U}) {
            EXPECT_EQ(createBinding(kind, "tint", count)->componentCount(), count);
        }
    }
}

} // namespace
} // namespace patina
