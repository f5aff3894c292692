#include "nodemodel/property.h"

#include "tests/nodemodel/plain_node.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::stateOf;
using Strings = std::vector<std::string>;

static_assert(std::is_same_v<std::underlying_type_t<PropertyType>, std::uint32_t>);
static_assert(static_cast<std::uint32_t>(PropertyType::Bool) == 0);
static_assert(static_cast<std::uint32_t>(PropertyType::Integer) == 1);
static_assert(static_cast<std::uint32_t>(PropertyType::Float) == 2);
static_assert(static_cast<std::uint32_t>(PropertyType::String) == 3);
static_assert(static_cast<std::uint32_t>(PropertyType::Colour) == 4);
static_assert(static_cast<std::uint32_t>(PropertyType::Enum) == 5);
static_assert(static_cast<std::uint32_t>(PropertyType::Node) == 6);

void readColour(const Property& property) {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    property.getColour(red, green, blue);
}

/// One kind: how a property becomes one, how it is read, and what reading says on any other kind.
struct Kind {
    PropertyType type;
    void (*become)(Property&);
    void (*read)(Property&);
    const char* wrongKind;
};

const Kind kinds[] = {
    {PropertyType::Bool, [](Property& p) { p.setBool(true); }, [](Property& p) { (void)p.getBool(); },
     "cannot read bool value from non-bool property \"Gloss\""},
    {PropertyType::Integer, [](Property& p) { p.setInteger(1); }, [](Property& p) { (void)p.getInteger(); },
     "cannot read integer value from non-integer property \"Gloss\""},
    {PropertyType::Float, [](Property& p) { p.setFloat(1.0F); }, [](Property& p) { (void)p.getFloat(); },
     "cannot read float value from non-float property \"Gloss\""},
    {PropertyType::String, [](Property& p) { p.setString("a"); }, [](Property& p) { (void)p.getString(); },
     "cannot read string value from non-string property \"Gloss\""},
    {PropertyType::Colour, [](Property& p) { p.setColour(1.0F, 1.0F, 1.0F); },
     [](Property& p) { readColour(p); }, "cannot read colour value from non-colour property \"Gloss\""},
    {PropertyType::Enum, [](Property& p) { p.addEnumValue("a"); }, [](Property& p) { (void)p.getEnum(); },
     "cannot read enum value from non-enum property \"Gloss\""},
    {PropertyType::Node, [](Property& p) { p.addNodeTypename("b"); }, [](Property& p) { (void)p.getNode(); },
     "cannot read node value from non-node property \"Gloss\""},
};

TEST(Property, StartsAsVisibleEditableBoolFalseWithEmptySlots) {
    const auto property = makeProperty("Gloss");
    EXPECT_EQ(property.use_count(), 1);
    EXPECT_EQ(property->name, "Gloss");
    EXPECT_EQ(property->label, "");
    EXPECT_EQ(property->help, "");
    EXPECT_TRUE(property->editable);
    EXPECT_TRUE(property->visible);
    EXPECT_EQ(property->stringStyle, 0U);
    EXPECT_EQ(property->kind, PropertyType::Bool);
    EXPECT_EQ(property->stringValue, "");
    EXPECT_EQ(property->intValue, 0);
    EXPECT_EQ(property->floatValues, (std::array<float, 3>{0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(property->nodeValue, nullptr);
    EXPECT_EQ(property->allowedValues, Strings());
    EXPECT_FALSE(property->getBool());
}

TEST(Property, AcceptsAnyName) {
    for (const char* name : {"", "Help Url", "Größe", "a \"quoted\" name"}) {
        EXPECT_EQ(makeProperty(name)->name, name);
    }
}

TEST(Property, EachKindIsReadByItsOwnGetterOnly) {
    for (const Kind& made : kinds) {
        const auto property = makeProperty("Gloss");
        made.become(*property);
        EXPECT_EQ(property->kind, made.type);
        for (const Kind& asked : kinds) {
            const auto before = stateOf(*property);
            const std::string expected = made.type == asked.type ? "(no ShaderError)" : asked.wrongKind;
            EXPECT_EQ(shaderErrorOf([&] { asked.read(*property); }), expected);
            EXPECT_EQ(stateOf(*property), before);
        }
    }
}

TEST(Property, EverySetterMakesItOfItsOwnKindWhateverItWas) {
    for (const Kind& before : kinds) {
        for (const Kind& made : kinds) {
            if (before.type != made.type) {
                const auto property = makeProperty("Gloss");
                before.become(*property);
                made.become(*property);
                EXPECT_EQ(property->kind, made.type);
            }
        }
    }
}

TEST(Property, ConstantNodeAccessHasTheSameMessage) {
    const auto property = makeProperty("Gloss");
    const Property& constant = *property;
    EXPECT_EQ(shaderErrorOf([&] { (void)constant.getNode(); }),
              "cannot read node value from non-node property \"Gloss\"");
    property->addNodeTypename("TestPlain");
    EXPECT_EQ(&constant.getNode(), &property->nodeValue);
}

TEST(Property, MessagesQuoteTheNameAsItIs) {
    EXPECT_EQ(shaderErrorOf([] { (void)makeProperty("")->getFloat(); }),
              "cannot read float value from non-float property \"\"");
    EXPECT_EQ(shaderErrorOf([] { (void)makeProperty("Größe \"x\"")->getFloat(); }),
              "cannot read float value from non-float property \"Größe \"x\"\"");
}

TEST(Property, FailedColourReadLeavesTheArgumentsAlone) {
    float red = 7.0F;
    float green = 8.0F;
    float blue = 9.0F;
    const auto property = makeProperty("Gloss");
    EXPECT_THROW(property->getColour(red, green, blue), ShaderError);
    EXPECT_EQ(red, 7.0F);
    EXPECT_EQ(green, 8.0F);
    EXPECT_EQ(blue, 9.0F);
}

TEST(Property, BoolIsHeldAsOneOrZero) {
    const auto property = makeProperty("Gloss");
    property->setBool(true);
    EXPECT_TRUE(property->getBool());
    EXPECT_EQ(property->intValue, 1);
    property->setBool(false);
    EXPECT_FALSE(property->getBool());
    EXPECT_EQ(property->intValue, 0);
}

TEST(Property, BoolIsTrueForExactlyOne) {
    const auto property = makeProperty("Gloss");
    for (const std::int32_t value : {0, 2, -1, 256, std::numeric_limits<std::int32_t>::min()}) {
        property->intValue = value;
        EXPECT_FALSE(property->getBool()) << value;
    }
    property->intValue = 1;
    EXPECT_TRUE(property->getBool());
}

TEST(Property, IntegerIsSigned32Bit) {
    const auto property = makeProperty("Gloss");
    for (const std::int32_t value :
         {0, 5, -7, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        property->setInteger(value);
        EXPECT_EQ(property->getInteger(), value);
        EXPECT_EQ(property->intValue, value);
    }
}

TEST(Property, FloatIsTheFirstFloat) {
    const auto property = makeProperty("Gloss");
    property->setColour(1.0F, 2.0F, 3.0F);
    property->setFloat(0.5F);
    EXPECT_EQ(property->getFloat(), 0.5F);
    EXPECT_EQ(property->floatValues, (std::array<float, 3>{0.5F, 2.0F, 3.0F}));
    property->setFloat(-std::numeric_limits<float>::infinity());
    EXPECT_EQ(property->getFloat(), -std::numeric_limits<float>::infinity());
}

TEST(Property, ColourIsThreeUnclampedFloats) {
    const auto property = makeProperty("Gloss");
    property->setColour(-1.0F, 0.25F, 12.0F);
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    property->getColour(red, green, blue);
    EXPECT_EQ(red, -1.0F);
    EXPECT_EQ(green, 0.25F);
    EXPECT_EQ(blue, 12.0F);
    EXPECT_EQ(property->floatValues, (std::array<float, 3>{-1.0F, 0.25F, 12.0F}));
}

TEST(Property, TextsAreReturnedByReference) {
    const auto property = makeProperty("Gloss");
    property->setString("matt");
    EXPECT_EQ(property->getString(), "matt");
    EXPECT_EQ(&property->getString(), &property->stringValue);
    property->addEnumValue("Basic");
    property->setEnum("Basic");
    EXPECT_EQ(&property->getEnum(), &property->stringValue);
}

TEST(Property, SettersMaySeeThePropertysOwnText) {
    const auto property = makeProperty("Gloss");
    property->setString("matt");
    property->setString(property->getString());
    EXPECT_EQ(property->getString(), "matt");
    property->addEnumValue("Basic");
    property->addEnumValue("Advanced");
    property->setEnum(property->allowedValues[1]);
    EXPECT_EQ(property->getEnum(), "Advanced");
}

TEST(Property, SettersKeepTheSlotsOfOtherKinds) {
    const auto property = makeProperty("Gloss");
    property->setInteger(5);
    property->setFloat(0.5F);
    EXPECT_EQ(shaderErrorOf([&] { (void)property->getInteger(); }),
              "cannot read integer value from non-integer property \"Gloss\"");
    EXPECT_EQ(property->intValue, 5);
    property->setString("matt");
    EXPECT_EQ(property->intValue, 5);
    EXPECT_EQ(property->floatValues[0], 0.5F);
    property->setBool(true);
    EXPECT_EQ(property->stringValue, "matt");
    EXPECT_EQ(property->floatValues[0], 0.5F);
    const auto node = std::make_shared<testing::PlainNode>();
    property->addNodeTypename("TestPlain");
    property->getNode() = node;
    property->setColour(1.0F, 2.0F, 3.0F);
    EXPECT_EQ(property->nodeValue, node);
    EXPECT_EQ(property->allowedValues, Strings{"TestPlain"});
    EXPECT_EQ(property->stringValue, "matt");
    EXPECT_EQ(property->intValue, 1);
}

TEST(Property, SettersLeaveTextsAndFlagsAlone) {
    const auto property = makeProperty("Gloss");
    property->label = "label";
    property->help = "Gloss: how shiny.";
    property->editable = false;
    property->visible = false;
    property->stringStyle = 2;
    for (const Kind& kind : kinds) {
        kind.become(*property);
        EXPECT_EQ(property->name, "Gloss");
        EXPECT_EQ(property->label, "label");
        EXPECT_EQ(property->help, "Gloss: how shiny.");
        EXPECT_FALSE(property->editable);
        EXPECT_FALSE(property->visible);
        EXPECT_EQ(property->stringStyle, 2U);
        if (kind.type == PropertyType::Enum) {
            property->allowedValues.clear();
        }
    }
}

TEST(EnumProperty, SelectsTheFirstValueAdded) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("Basic");
    EXPECT_EQ(property->kind, PropertyType::Enum);
    EXPECT_EQ(property->getEnum(), "Basic");
    property->addEnumValue("Advanced");
    EXPECT_EQ(property->getEnum(), "Basic");
    EXPECT_EQ(property->allowedValues, (Strings{"Basic", "Advanced"}));
}

TEST(EnumProperty, FirstValueReplacesAnEarlierString) {
    const auto property = makeProperty("Mode");
    property->setString("text");
    property->addEnumValue("Basic");
    EXPECT_EQ(property->getEnum(), "Basic");
}

TEST(EnumProperty, RefusesUnknownAndDuplicateValues) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("Basic");
    property->addEnumValue("Advanced");
    const auto before = stateOf(*property);
    EXPECT_EQ(shaderErrorOf([&] { property->setEnum("Vertex"); }), "enum \"Vertex\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { property->setEnum("basic"); }), "enum \"basic\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { property->setEnum(""); }), "enum \"\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { property->addEnumValue("Basic"); }), "enum \"Basic\" is not unique");
    EXPECT_EQ(shaderErrorOf([&] { property->addEnumValue("Advanced"); }), "enum \"Advanced\" is not unique");
    EXPECT_EQ(stateOf(*property), before);
}

TEST(EnumProperty, ValuesAreCaseSensitive) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("Basic");
    property->addEnumValue("basic");
    property->setEnum("basic");
    EXPECT_EQ(property->getEnum(), "basic");
}

TEST(EnumProperty, TheEmptyTextCanBeAValue) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("");
    EXPECT_EQ(property->getEnum(), "");
    EXPECT_EQ(shaderErrorOf([&] { property->addEnumValue(""); }), "enum \"\" is not unique");
    property->addEnumValue("Basic");
    EXPECT_EQ(property->getEnum(), "");
}

TEST(EnumProperty, RefusalsKeepAnotherKind) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("Basic");
    property->setInteger(3);
    EXPECT_THROW(property->setEnum("Vertex"), ShaderError);
    EXPECT_THROW(property->addEnumValue("Basic"), ShaderError);
    EXPECT_EQ(property->getInteger(), 3);
    property->setEnum("Basic");
    EXPECT_EQ(property->getEnum(), "Basic");
    EXPECT_EQ(property->intValue, 3);
}

TEST(EnumProperty, SetOnAPropertyWithoutValuesFails) {
    const auto property = makeProperty("Mode");
    EXPECT_EQ(shaderErrorOf([&] { property->setEnum("Basic"); }), "enum \"Basic\" does not exist");
    EXPECT_FALSE(property->getBool());
}

TEST(EnumProperty, IsNotAString) {
    const auto property = makeProperty("Mode");
    property->addEnumValue("Basic");
    EXPECT_EQ(shaderErrorOf([&] { (void)property->getString(); }),
              "cannot read string value from non-string property \"Mode\"");
}

TEST(EnumProperty, SharesTheAllowedValuesWithNodeTypeNames) {
    const auto property = makeProperty("Mode");
    property->addNodeTypename("TestPlain");
    EXPECT_EQ(shaderErrorOf([&] { property->addEnumValue("TestPlain"); }),
              "enum \"TestPlain\" is not unique");
    EXPECT_EQ(property->kind, PropertyType::Node);
    property->addEnumValue("Basic");
    EXPECT_EQ(property->kind, PropertyType::Enum);
    EXPECT_EQ(property->getEnum(), "") << "only the first value of an empty list becomes the selected one";
    property->setEnum("TestPlain");
    EXPECT_EQ(property->getEnum(), "TestPlain");
}

TEST(NodeProperty, AddsTypeNamesUnchecked) {
    const auto property = makeProperty("Reference");
    property->addNodeTypename("CoreTexture");
    property->addNodeTypename("CoreTexture");
    property->addNodeTypename("");
    EXPECT_EQ(property->kind, PropertyType::Node);
    EXPECT_EQ(property->allowedValues, (Strings{"CoreTexture", "CoreTexture", ""}));
    EXPECT_EQ(property->getNode(), nullptr);
    EXPECT_EQ(property->stringValue, "");
}

TEST(NodeProperty, IsAssignedThroughItsReference) {
    const auto property = makeProperty("Reference");
    property->addNodeTypename("Other");
    EXPECT_EQ(&property->getNode(), &property->nodeValue);
    auto node = std::make_shared<testing::PlainNode>();
    property->getNode() = node;
    EXPECT_EQ(property->getNode(), node) << "assignment does not look at the allowed type names";
    EXPECT_EQ(node.use_count(), 2);
    property->getNode() = nullptr;
    EXPECT_EQ(node.use_count(), 1);
}

TEST(Property, MessagesIgnoreTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    EXPECT_EQ(shaderErrorOf([] { (void)makeProperty("1234.5")->getFloat(); }),
              "cannot read float value from non-float property \"1234.5\"");
    EXPECT_EQ(shaderErrorOf([] { makeProperty("Mode")->setEnum("1234.5"); }),
              "enum \"1234.5\" does not exist");
}

} // namespace
} // namespace patina
