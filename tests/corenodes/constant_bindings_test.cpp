#include "corenodes/constant_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

struct BindingRow {
    const char* type;
    std::int32_t count;
    bool alpha;
    bool alphaConnected;
    bool basicColour;
    UiType uiType;
    std::uint32_t componentCount;
    Texts annotations; ///< after "tag"
};

// minimum -0.5, maximum 2, default 0.25; colour 0.8, 1, 0.125; alpha 0.5
const std::vector<BindingRow> bindingRows = {
    {"Scalar",
     4,
     false,
     false,
     false,
     UiType::Slider,
     1,
     {"gui=slider", "min=-0.5", "max=2", "default=0.25"}},
    {"Scalar", 0, true, false, true, UiType::Slider, 1, {"gui=slider", "min=-0.5", "max=2", "default=0.25"}},
    {"Vector",
     2,
     false,
     false,
     false,
     UiType::Slider,
     2,
     {"gui=slider", "min=-0.5, -0.5", "max=2, 2", "default=0.25, 0.25"}},
    {"Vector",
     3,
     true,
     false,
     true,
     UiType::Slider,
     3,
     {"gui=slider", "min=-0.5, -0.5, -0.5", "max=2, 2, 2", "default=0.25, 0.25, 0.25"}},
    {"Vector",
     4,
     false,
     false,
     false,
     UiType::Slider,
     4,
     {"gui=slider", "min=-0.5, -0.5, -0.5, -0.5", "max=2, 2, 2, 2", "default=0.25, 0.25, 0.25, 0.25"}},
    {"Colour", 4, false, false, false, UiType::Colour, 3, {"gui=colour", "default=0.8, 1, 0.125"}},
    {"Colour",
     4,
     false,
     false,
     true,
     UiType::Colour,
     3,
     {"gui=colour", "default=0.8, 1, 0.125", "basic_colour=Yes"}},
    {"Colour", 4, true, false, false, UiType::Colour, 3, {"gui=colour", "default=0.8, 1, 0.125"}},
    {"Colour", 4, true, true, false, UiType::Colour, 4, {"gui=colour", "default=0.8, 1, 0.125, 0.5"}},
    {"Colour",
     4,
     true,
     true,
     true,
     UiType::Colour,
     4,
     {"gui=colour", "default=0.8, 1, 0.125, 0.5", "basic_colour=Yes"}},
    {"Component", 4, false, false, false, UiType::Colour, 3, {"gui=colour", "default=0.8, 1, 0.125"}},
    {"Component",
     4,
     true,
     false,
     true,
     UiType::Colour,
     3,
     {"gui=colour", "default=0.8, 1, 0.125", "basic_colour=Yes"}},
    {"Component", 4, true, true, false, UiType::Colour, 4, {"gui=colour", "default=0.8, 1, 0.125, 0.5"}},
};

void configure(ConstantNode& node, const BindingRow& row) {
    node.setName("tint");
    property(node, "Constant Type").setEnum(row.type);
    property(node, "Component Count").setInteger(row.count);
    property(node, "Min Scalar").setFloat(-0.5F);
    property(node, "Max Scalar").setFloat(2.0F);
    property(node, "Default Scalar").setFloat(0.25F);
    property(node, "Default Colour").setColour(0.8F, 1.0F, 0.125F);
    property(node, "Alpha").setBool(row.alpha);
    property(node, "Default Alpha").setFloat(0.5F);
    property(node, "Basic Colour").setBool(row.basicColour);
    node.updateFromProperties(nullptr);
    if (row.alphaConnected) {
        node.outputPort("alpha").connected = true;
    }
}

void expectBinding(ConstantNode& node, const BindingRow& row) {
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    Binding& binding = *bindings[0];
    const bool isSlider = row.uiType == UiType::Slider;
    EXPECT_NE(dynamic_cast<FloatBinding*>(&binding), nullptr);
    EXPECT_EQ(binding.kind, BindingKind::Float);
    EXPECT_EQ(binding.name, "tint");
    EXPECT_EQ(binding.uiType, row.uiType);
    EXPECT_EQ(binding.uiUnitType, UiUnitType::Raw);
    EXPECT_EQ(binding.componentCount(), row.componentCount);
    EXPECT_EQ(binding.hasMin, isSlider);
    EXPECT_EQ(binding.hasMax, isSlider);
    EXPECT_TRUE(binding.hasDefault);
    EXPECT_EQ(binding.basicColour, row.basicColour && !isSlider);
    EXPECT_EQ(binding.cgName, "");
    EXPECT_EQ(binding.uvSet, "");
    EXPECT_EQ(binding.uiLabel, "");
    Texts expected = row.annotations;
    expected.insert(expected.begin(), "tag=tint");
    EXPECT_EQ(annotations(binding), expected);
}

TEST(ConstantBindings, CarryTheValuesOfTheType) {
    for (std::size_t i = 0; i < bindingRows.size(); ++i) {
        SCOPED_TRACE(i);
        ConstantNode node;
        configure(node, bindingRows[i]);
        EXPECT_TRUE(node.generatesBinding());
        expectBinding(node, bindingRows[i]);
    }
}

TEST(ConstantBindings, IgnoreTheLocaleOfTheProcess) {
    const CommaLocale comma;
    for (std::size_t i = 0; i < bindingRows.size(); ++i) {
        SCOPED_TRACE(i);
        ConstantNode node;
        configure(node, bindingRows[i]);
        expectBinding(node, bindingRows[i]);
    }
    ConstantNode node;
    property(node, "Default Colour").setColour(1234567.0F, 0.5F, 100000.0F);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=Constant", "gui=colour", "default=1.23457e+06, 0.5, 100000"}));
}

TEST(ConstantBindings, OfANewNode) {
    ConstantNode node;
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(annotations(*bindings[0]), (Texts{"tag=Constant", "gui=colour", "default=0, 0, 0"}));
}

TEST(ConstantBindings, OfANewVectorOfThree) {
    ConstantNode node;
    property(node, "Constant Type").setEnum("Vector");
    property(node, "Component Count").setInteger(3);
    node.updateFromProperties(nullptr);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=Constant", "gui=slider", "min=0, 0, 0", "max=1, 1, 1", "default=1, 1, 1"}));
}

TEST(ConstantBindings, GiveEveryComponentTheScalarValues) {
    ConstantNode node;
    configure(node, bindingRows[4]);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(bindings[0]->minValue(i), -0.5F);
        EXPECT_EQ(bindings[0]->maxValue(i), 2.0F);
        EXPECT_EQ(bindings[0]->defaultValue(i), 0.25F);
    }
}

TEST(ConstantBindings, CopyTheDescriptiveTexts) {
    for (const char* type : {"Colour", "Scalar", "Component", "Vector"}) {
        SCOPED_TRACE(type);
        ConstantNode node;
        describeNode(node);
        property(node, "Constant Type").setEnum(type);
        node.updateFromProperties(nullptr);
        const auto bindings = bindingsOf(node);
        ASSERT_EQ(bindings.size(), 1U);
        expectDescribed(*bindings[0]);
    }
}

TEST(ConstantBindings, WriteTheDescriptiveTextsBetweenTheOthers) {
    ConstantNode node;
    describeNode(node);
    property(node, "Basic Colour").setBool(true);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=Constant", "gui=colour", "desc=How it looks.",
                     "helpUrl=https://example.org/surface", "default=0, 0, 0", "basic_colour=Yes"}));
}

TEST(ConstantBindings, GoToTheEndOfTheCollection) {
    ConstantNode first;
    ConstantNode second;
    second.setName("second");
    BindingCollection collection;
    first.addBindings(collection);
    collection.sorted = true;
    second.addBindings(collection);
    ASSERT_EQ(collection.bindings.size(), 2U);
    EXPECT_EQ(collection.bindings[0]->name, "Constant");
    EXPECT_EQ(collection.bindings[1]->name, "second");
    EXPECT_FALSE(collection.sorted);
}

TEST(ConstantBindings, AreNotMadeWhenLocked) {
    for (const char* type : {"Colour", "Scalar", "Component", "Vector"}) {
        SCOPED_TRACE(type);
        ConstantNode node;
        property(node, "Constant Type").setEnum(type);
        property(node, "Lock").setBool(true);
        node.updateFromProperties(nullptr);
        EXPECT_FALSE(node.generatesBinding());
        BindingCollection collection;
        collection.sorted = true;
        node.addBindings(collection);
        EXPECT_TRUE(collection.bindings.empty());
        EXPECT_TRUE(collection.sorted);
    }
}

TEST(ConstantBindings, OfAnUnknownTypeAreColours) {
    ConstantNode node;
    setUnknownEnum(node, "Constant Type");
    property(node, "Basic Colour").setBool(true);
    node.updateFromProperties(nullptr);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=Constant", "gui=colour", "default=0, 0, 0", "basic_colour=Yes"}));
}

TEST(ConstantBindings, AreNotMadeOfNoComponents) {
    ConstantNode node;
    property(node, "Constant Type").setEnum("Vector");
    property(node, "Component Count").setInteger(0);
    EXPECT_TRUE(bindingsOf(node).empty());
}

TEST(ConstantBindings, HaveNoAlphaOnceItIsOffEvenWhileThePortIsThere) {
    ConstantNode node;
    property(node, "Alpha").setBool(true);
    node.updateFromProperties(nullptr);
    node.outputPort("alpha").connected = true;
    property(node, "Alpha").setBool(false);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    EXPECT_EQ(bindings[0]->componentCount(), 3U);
}

TEST(ConstantBindings, HaveNoAlphaBeforeTheNodeHasThePort) {
    ConstantNode node;
    property(node, "Alpha").setBool(true);
    BindingCollection collection;
    node.addBindings(collection);
    ASSERT_EQ(collection.bindings.size(), 1U);
    EXPECT_EQ(collection.bindings[0]->componentCount(), 3U);
}

} // namespace
} // namespace patina
