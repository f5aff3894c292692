#include "plugin/placeholder_node.h"

#include "bindings/binding.h"
#include "plugin/core_node_factory.h"
#include "shadergraph/graph_generator.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::stateOf;

const char* const fancyExplanation = "This node has been created as a placeholder because a node of type "
                                     "\"CoreFancy\" could not be created. You "
                                     "need to either reload this material using the correct plug-in DLLs or "
                                     "replace this node with alternatives.";

const char* const ownExplanation =
    "This node has been created as a placeholder because a node of type \"CoreDefault\" could not be "
    "created. "
    "You need to either reload this material using the correct plug-in DLLs or replace this node with "
    "alternatives.";

/// The placeholder as a host gets it.
class Placeholder : public ::testing::Test {
protected:
    CoreNodeFactory factory;
    std::shared_ptr<MaterialNode> node = factory.createNode("CoreDefault");
};

void addString(PropertySet& set, const std::string& name, const std::string& value) {
    const auto property = makeProperty(name);
    property->setString(value);
    set.add(property);
}

void addInteger(PropertySet& set, const std::string& name, std::int32_t value) {
    const auto property = makeProperty(name);
    property->setInteger(value);
    set.add(property);
}

void addFloat(PropertySet& set, const std::string& name, float value) {
    const auto property = makeProperty(name);
    property->setFloat(value);
    set.add(property);
}

std::shared_ptr<PropertySet> fancySet() {
    auto saved = std::make_shared<PropertySet>();
    saved->version = 7;
    addString(*saved, "Type", "CoreFancy");
    addString(*saved, "Name", "Rim");
    addInteger(*saved, "BindingIndex", 3);
    addString(*saved, "BindingGroup", "Skin");
    addFloat(*saved, "PositionX", 12.5F);
    addFloat(*saved, "PositionY", -3.0F);
    addString(*saved, "Description", "lights the edges");
    addString(*saved, "Help Url", "help/rim.html");
    addFloat(*saved, "Rim Width", 0.25F);
    addString(*saved, "Mode", "Soft");
    return saved;
}

TEST_F(Placeholder, IsThePlaceholderNode) {
    EXPECT_STREQ(PlaceholderNode::staticTypeName(), "CoreDefault");
    EXPECT_NE(std::dynamic_pointer_cast<PlaceholderNode>(node), nullptr);
}

TEST_F(Placeholder, StandsOutOnTheCanvas) {
    EXPECT_EQ(node->typeName(), "CoreDefault");
    EXPECT_EQ(node->name(), "Default");
    EXPECT_EQ(node->caption(), "Default?");
    EXPECT_EQ(node->describe(), "node \"Default\" (CoreDefault)");
    EXPECT_EQ(node->bodyColour, (std::array<float, 4>{1.0F, 1.0F, 1.0F, 0.9F}));
    EXPECT_EQ(node->textColour, (std::array<float, 4>{1.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(Placeholder, AddsNoPropertiesAndNoPorts) {
    std::vector<std::string> names;
    for (const auto& property : *node->properties) {
        names.push_back(property->name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Type", "Name", "BindingIndex", "BindingGroup", "PositionX",
                                               "PositionY", "Description", "Help Url"}));
    EXPECT_EQ(node->properties->version, 2147483647);
    EXPECT_EQ(node->descriptionProperty->getString(), "");
    EXPECT_TRUE(node->inputs.empty());
    EXPECT_TRUE(node->outputs.empty());
}

TEST_F(Placeholder, FindsNoPorts) {
    for (const char* name : {"", "in_uv", "in_value1", "out_colour", "read", "Default"}) {
        EXPECT_EQ(node->findInputPortIndex(name), -1);
        EXPECT_EQ(node->findOutputPortIndex(name), -1);
    }
    EXPECT_EQ(shaderErrorOf([&] { (void)node->inputPort("in_uv"); }),
              "node \"Default\" (CoreDefault): input port \"in_uv\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { (void)node->outputPort("read"); }),
              "node \"Default\" (CoreDefault): output port \"read\" does not exist");
}

TEST_F(Placeholder, OtherwiseBehavesAsTheBase) {
    const auto before = stateOf(*node->properties);
    node->updateFromProperties(nullptr);
    node->resolveComponentCounts();
    node->resolvePrecision();
    EXPECT_EQ(node->resolvedComponentCount, 1U);
    EXPECT_EQ(node->resolvedPrecision, 3U);
    EXPECT_FALSE(node->generatesBinding());
    BindingCollection collection;
    collection.sorted = true;
    node->addBindings(collection);
    EXPECT_TRUE(collection.bindings.empty());
    EXPECT_TRUE(collection.sorted);
    EXPECT_TRUE(node->inputs.empty());
    EXPECT_TRUE(node->outputs.empty());
    EXPECT_EQ(stateOf(*node->properties), before);
    EXPECT_EQ(node->textColour, (std::array<float, 4>{1.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(Placeholder, CaptionFollowsTheName) {
    node->setName("Rim");
    EXPECT_EQ(node->caption(), "Rim?");
    node->setName("");
    EXPECT_EQ(node->caption(), "?");
}

TEST_F(Placeholder, TakesTheStandardPropertiesOfTheMissingNode) {
    const auto saved = fancySet();
    const auto savedBefore = stateOf(*saved);
    node->loadProperties(saved);
    EXPECT_EQ(node->typeName(), "CoreFancy");
    EXPECT_EQ(node->name(), "Rim");
    EXPECT_EQ(node->caption(), "Rim?");
    EXPECT_EQ(node->bindingIndexProperty->getInteger(), 3);
    EXPECT_EQ(node->bindingGroupProperty->getString(), "Skin");
    EXPECT_EQ(node->positionXProperty->getFloat(), 12.5F);
    EXPECT_EQ(node->positionYProperty->getFloat(), -3.0F);
    EXPECT_EQ(node->helpUrlProperty->getString(), "help/rim.html");
    EXPECT_EQ(node->descriptionProperty->getString(), fancyExplanation);
    EXPECT_EQ(stateOf(*saved), savedBefore);
}

TEST_F(Placeholder, DropsTheMissingNodesOwnProperties) {
    node->loadProperties(fancySet());
    EXPECT_EQ(node->properties->items.size(), 8U);
    EXPECT_EQ(node->properties->byName.size(), 8U);
    EXPECT_EQ(shaderErrorOf([&] { (void)node->properties->find("Rim Width"); }),
              "failed to find property \"Rim Width\"");
    EXPECT_EQ(node->properties->version, 2147483647);
}

TEST_F(Placeholder, ExplainsItselfWithTheTypeAfterLoading) {
    node->loadProperties(std::make_shared<PropertySet>());
    EXPECT_EQ(node->typeName(), "CoreDefault");
    EXPECT_EQ(node->name(), "Default");
    EXPECT_EQ(node->descriptionProperty->getString(), ownExplanation);
    node->loadProperties(fancySet());
    EXPECT_EQ(node->descriptionProperty->getString(), fancyExplanation);
}

TEST_F(Placeholder, AcceptsEveryVersion) {
    for (const std::int32_t version : {0, 1, 7, -1, 1000000, std::numeric_limits<std::int32_t>::max(),
                                       std::numeric_limits<std::int32_t>::min()}) {
        const auto fresh = factory.createNode("CoreDefault");
        const auto saved = fancySet();
        saved->version = version;
        fresh->loadProperties(saved);
        EXPECT_EQ(fresh->name(), "Rim") << version;
        EXPECT_EQ(fresh->descriptionProperty->getString(), fancyExplanation) << version;
    }
}

TEST_F(Placeholder, AFailedCopyLeavesTheDescription) {
    node->descriptionProperty->setString("a note");
    const auto saved = std::make_shared<PropertySet>();
    addString(*saved, "Type", "CoreFancy");
    addInteger(*saved, "PositionX", 4);
    addFloat(*saved, "PositionY", 5.0F);
    EXPECT_EQ(shaderErrorOf([&] { node->loadProperties(saved); }),
              "cannot copy property \"PositionX\" from property with non-matching type");
    EXPECT_EQ(node->descriptionProperty->getString(), "a note");
    EXPECT_EQ(node->typeName(), "CoreFancy") << "copied before the failure";
    EXPECT_EQ(node->positionYProperty->getFloat(), 0.0F);
}

TEST_F(Placeholder, CannotBeExported) {
    GraphGenerator generator;
    const auto before = stateOf(*node->properties);
    EXPECT_EQ(
        shaderErrorOf([&] { node->generateCode(generator); }),
        "cannot export as the node \"Default\" cannot be properly created. Please either get the DLL that "
        "can load this node or replace with alternatives.");
    EXPECT_EQ(stateOf(*node->properties), before);
    node->loadProperties(fancySet());
    EXPECT_EQ(
        shaderErrorOf([&] { node->generateCode(generator); }),
        "cannot export as the node \"Rim\" cannot be properly created. Please either get the DLL that can "
        "load this node or replace with alternatives.");
    node->setName("");
    EXPECT_EQ(shaderErrorOf([&] { node->generateCode(generator); }),
              "cannot export as the node \"\" cannot be properly created. Please either get the DLL that can "
              "load this node or replace with alternatives.");
    EXPECT_TRUE(generator.nodeMap.empty());
    EXPECT_TRUE(generator.portLinks.empty());
    EXPECT_TRUE(generator.graph->nodes.empty());
    EXPECT_TRUE(generator.graph->edges.empty());
}

TEST_F(Placeholder, TextsIgnoreTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    node->loadProperties(fancySet());
    EXPECT_EQ(node->descriptionProperty->getString(), fancyExplanation);
}

} // namespace
} // namespace patina
