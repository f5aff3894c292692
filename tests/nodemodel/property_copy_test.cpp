#include "nodemodel/property.h"

#include "tests/nodemodel/plain_node.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::PlainNode;
using testing::shaderErrorOf;
using testing::stateOf;

constexpr PropertyType allKinds[] = {PropertyType::Bool,   PropertyType::Integer, PropertyType::Float,
                                     PropertyType::String, PropertyType::Colour,  PropertyType::Enum,
                                     PropertyType::Node};

/// A property with something in every slot, read as `kind`. "One" and "TestPlain" are allowed values.
std::shared_ptr<Property> filled(const std::string& name, PropertyType kind,
                                 const std::shared_ptr<MaterialNode>& node, float first) {
    const auto property = makeProperty(name);
    property->stringValue = "One";
    property->intValue = static_cast<std::int32_t>(first) + 1;
    property->floatValues = {first, first + 0.25F, first + 0.5F};
    property->nodeValue = node;
    property->allowedValues = {"One", "TestPlain"};
    property->kind = kind;
    return property;
}

TEST(PropertyCopy, TakesEverySlotWhateverTheKind) {
    for (const PropertyType kind : allKinds) {
        const auto node = std::make_shared<PlainNode>();
        const auto source = filled("Source", kind, node, 3.0F);
        const auto target = makeProperty("Target");
        target->allowedValues = {"One", "TestPlain"};
        target->stringValue = "old";
        target->intValue = 17;
        target->floatValues = {7.0F, 8.0F, 9.0F};
        target->nodeValue = std::make_shared<PlainNode>();
        target->kind = kind;
        target->copyFrom(*source);
        EXPECT_EQ(target->kind, kind);
        EXPECT_EQ(target->stringValue, "One");
        EXPECT_EQ(target->intValue, 4);
        EXPECT_EQ(target->floatValues, (std::array<float, 3>{3.0F, 3.25F, 3.5F}));
        EXPECT_EQ(target->nodeValue, node) << "the node is shared, not copied";
        EXPECT_EQ(node.use_count(), 3);
    }
}

TEST(PropertyCopy, KeepsNameTextsFlagsStyleAndAllowedValues) {
    for (const PropertyType kind : allKinds) {
        const auto source = filled("Source", kind, nullptr, 3.0F);
        source->label = "source label";
        source->help = "Source: help.";
        source->editable = false;
        source->visible = false;
        source->stringStyle = 2;
        source->allowedValues = {"One", "Two", "Three"};
        const auto target = filled("Target", kind, nullptr, 0.0F);
        target->label = "target label";
        target->help = "Target: help.";
        target->stringStyle = 1;
        const auto sourceBefore = stateOf(*source);
        target->copyFrom(*source);
        EXPECT_EQ(target->name, "Target");
        EXPECT_EQ(target->label, "target label");
        EXPECT_EQ(target->help, "Target: help.");
        EXPECT_TRUE(target->editable);
        EXPECT_TRUE(target->visible);
        EXPECT_EQ(target->stringStyle, 1U);
        EXPECT_EQ(target->allowedValues, (std::vector<std::string>{"One", "TestPlain"}));
        EXPECT_EQ(stateOf(*source), sourceBefore);
    }
}

TEST(PropertyCopy, RefusesEveryOtherKind) {
    for (const PropertyType kind : allKinds) {
        for (const PropertyType other : allKinds) {
            if (kind == other) {
                continue;
            }
            const auto source = filled("Source", other, nullptr, 3.0F);
            const auto target = filled("Target", kind, nullptr, 0.0F);
            const auto sourceBefore = stateOf(*source);
            const auto targetBefore = stateOf(*target);
            EXPECT_EQ(shaderErrorOf([&] { target->copyFrom(*source); }),
                      "cannot copy property \"Target\" from property with non-matching type");
            EXPECT_EQ(stateOf(*source), sourceBefore);
            EXPECT_EQ(stateOf(*target), targetBefore);
        }
    }
}

TEST(PropertyCopy, CarriesTheIntegerBelowAFloat) {
    const auto source = makeProperty("Source");
    source->setInteger(5);
    source->setFloat(0.5F);
    const auto target = makeProperty("Target");
    target->setFloat(0.0F);
    target->copyFrom(*source);
    EXPECT_EQ(target->getFloat(), 0.5F);
    EXPECT_EQ(target->intValue, 5);
}

TEST(PropertyCopy, OntoItselfChangesNothing) {
    const auto node = std::make_shared<PlainNode>();
    for (const PropertyType kind : allKinds) {
        const auto property = filled("Self", kind, node, 3.0F);
        const auto before = stateOf(*property);
        property->copyFrom(*property);
        EXPECT_EQ(stateOf(*property), before);
    }
}

TEST(PropertyCopy, SelectsAnEnumValueThatTheTargetAllows) {
    const auto source = makeProperty("Source");
    source->addEnumValue("Vertex");
    const auto target = makeProperty("Target");
    target->addEnumValue("Automatic");
    target->addEnumValue("Vertex");
    target->copyFrom(*source);
    EXPECT_EQ(target->getEnum(), "Vertex");
    EXPECT_EQ(target->allowedValues, (std::vector<std::string>{"Automatic", "Vertex"}));
}

TEST(PropertyCopy, RefusesAnEnumValueThatTheTargetLacks) {
    const auto source = makeProperty("Source");
    source->addEnumValue("Pixel");
    const auto target = makeProperty("Execution Level");
    target->addEnumValue("Vertex");
    const auto before = stateOf(*target);
    EXPECT_EQ(shaderErrorOf([&] { target->copyFrom(*source); }),
              "cannot copy property \"Execution Level\" as enum \"Pixel\" is not a known enum value");
    EXPECT_EQ(stateOf(*target), before);
    source->stringValue = "vertex";
    EXPECT_EQ(shaderErrorOf([&] { target->copyFrom(*source); }),
              "cannot copy property \"Execution Level\" as enum \"vertex\" is not a known enum value");
    EXPECT_EQ(stateOf(*target), before);
}

TEST(PropertyCopy, OfAnEnumDoesNotAskTheSourcesOwnList) {
    const auto source = makeProperty("Source");
    source->kind = PropertyType::Enum;
    source->stringValue = "Vertex";
    const auto target = makeProperty("Target");
    target->addEnumValue("Fragment");
    target->addEnumValue("Vertex");
    target->copyFrom(*source);
    EXPECT_EQ(target->getEnum(), "Vertex");
}

/// Whether a reference to a node of type "TestPlain" is taken over by a property with these type names.
struct NodeCopy {
    std::vector<std::string> allowed;
    bool succeeds;
};

TEST(PropertyCopy, TakesNodesOfAllowedTypesOnly) {
    const NodeCopy copies[] = {
        {{}, true},
        {{"TestPlain"}, true},
        {{"CoreTexture", "TestPlain"}, true},
        {{"CoreTexture"}, false},
        {{"testplain"}, false},
        {{""}, false},
    };
    for (const auto& [allowed, succeeds] : copies) {
        const auto node = std::make_shared<PlainNode>();
        const auto source = makeProperty("Source");
        source->kind = PropertyType::Node;
        source->getNode() = node;
        const auto target = makeProperty("Reference");
        target->kind = PropertyType::Node;
        target->allowedValues = allowed;
        const auto before = stateOf(*target);
        const std::string message = shaderErrorOf([&] { target->copyFrom(*source); });
        if (succeeds) {
            EXPECT_EQ(message, "(no ShaderError)");
            EXPECT_EQ(target->getNode(), node);
        } else {
            EXPECT_EQ(message, "cannot copy property \"Reference\" as node typename \"TestPlain\" is not a "
                               "valid typename");
            EXPECT_EQ(stateOf(*target), before);
        }
    }
}

TEST(PropertyCopy, TheTypeNameOfANodeIsTheValueOfItsTypeProperty) {
    const auto node = std::make_shared<PlainNode>();
    node->typeProperty->setString("CoreFancy");
    const auto source = makeProperty("Source");
    source->kind = PropertyType::Node;
    source->getNode() = node;
    const auto target = makeProperty("Reference");
    target->addNodeTypename("TestPlain");
    EXPECT_EQ(shaderErrorOf([&] { target->copyFrom(*source); }),
              "cannot copy property \"Reference\" as node typename \"CoreFancy\" is not a valid typename");
    target->addNodeTypename("CoreFancy");
    target->copyFrom(*source);
    EXPECT_EQ(target->getNode(), node);
}

TEST(PropertyCopy, AnEmptyNodeReferenceIsAlwaysTakenOver) {
    const auto source = makeProperty("Source");
    source->addNodeTypename("Other");
    const auto target = makeProperty("Reference");
    target->addNodeTypename("CoreTexture");
    auto node = std::make_shared<PlainNode>("CoreTexture");
    target->getNode() = node;
    target->copyFrom(*source);
    EXPECT_EQ(target->getNode(), nullptr);
    EXPECT_EQ(node.use_count(), 1);
}

TEST(PropertyCopy, LooksAtListsForEnumsAndNodesOnly) {
    // the slots of other kinds are copied unchecked
    const auto source = makeProperty("Source");
    source->setInteger(1);
    source->stringValue = "not allowed";
    source->nodeValue = std::make_shared<PlainNode>("NotAllowed");
    const auto target = makeProperty("Target");
    target->allowedValues = {"allowed"};
    target->setInteger(0);
    target->copyFrom(*source);
    EXPECT_EQ(target->stringValue, "not allowed");
    EXPECT_EQ(target->nodeValue, source->nodeValue);
}

} // namespace
} // namespace patina
