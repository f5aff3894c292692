// What holds for a node of any type.

#include "nodemodel/material_node.h"

#include "plugin/core_node_factory.h"
#include "tests/plugin/node_types.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::stateOf;

class EveryNode : public ::testing::TestWithParam<const char*> {
protected:
    std::shared_ptr<MaterialNode> makeNode() { return factory.createNode(GetParam()); }
    bool isPlaceholder() const { return std::string(GetParam()) == "CoreDefault"; }

    CoreNodeFactory factory;
    std::shared_ptr<MaterialNode> node = makeNode();
};

INSTANTIATE_TEST_SUITE_P(CoreNodes, EveryNode, ::testing::ValuesIn(testing::nodeTypeNames),
                         [](const auto& type) { return std::string(type.param); });

struct StandardProperty {
    const char* name;
    PropertyType kind;
    const char* help;
    bool editable;
    bool visible;
    std::uint32_t stringStyle;
    std::shared_ptr<Property> MaterialNode::*handle;
};

const StandardProperty standardProperties[] = {
    {"Type", PropertyType::String, "Type: the internal type of the node.", false, true, 0,
     &MaterialNode::typeProperty},
    {"Name", PropertyType::String,
     "Name: the name entered here will correspond to the binding name presented in Maya.", true, true, 0,
     &MaterialNode::nameProperty},
    {"BindingIndex", PropertyType::Integer, "", true, false, 0, &MaterialNode::bindingIndexProperty},
    {"BindingGroup", PropertyType::String, "", true, false, 0, &MaterialNode::bindingGroupProperty},
    {"PositionX", PropertyType::Float, "", true, false, 0, &MaterialNode::positionXProperty},
    {"PositionY", PropertyType::Float, "", true, false, 0, &MaterialNode::positionYProperty},
    {"Description", PropertyType::String,
     "Description: if this node generates a Maya binding, then this description will be used a tooltip for "
     "the "
     "binding. Otherwise this is a space for general notes about the node.",
     true, true, 1, &MaterialNode::descriptionProperty},
    {"Help Url", PropertyType::String,
     "Help Url: if this node generates a Maya binding then this Url will be accessable from a button on the "
     "binding Ui.",
     true, true, 2, &MaterialNode::helpUrlProperty},
};

TEST_P(EveryNode, BeginsWithTheStandardProperties) {
    ASSERT_GE(node->properties->items.size(), std::size(standardProperties));
    for (std::size_t i = 0; i < std::size(standardProperties); ++i) {
        const StandardProperty& expected = standardProperties[i];
        const Property& property = *node->properties->items[i];
        EXPECT_EQ(property.name, expected.name);
        EXPECT_EQ(property.kind, expected.kind) << expected.name;
        EXPECT_EQ(property.help, expected.help);
        EXPECT_EQ(property.editable, expected.editable) << expected.name;
        EXPECT_EQ(property.visible, expected.visible) << expected.name;
        EXPECT_EQ(property.stringStyle, expected.stringStyle) << expected.name;
        EXPECT_EQ(((*node).*expected.handle).get(), &property) << expected.name;
        if (i >= 2) {
            EXPECT_EQ(property.stringValue, "") << expected.name;
            EXPECT_EQ(property.intValue, 0) << expected.name;
            EXPECT_EQ(property.floatValues, (std::array<float, 3>{0.0F, 0.0F, 0.0F})) << expected.name;
        }
    }
}

TEST_P(EveryNode, ReadsItsTypeName) {
    EXPECT_EQ(node->typeProperty->getString(), GetParam());
    EXPECT_EQ(node->typeName(), GetParam());
    node->setName("Rim");
    EXPECT_EQ(node->describe(), "node \"Rim\" (" + std::string(GetParam()) + ")");
}

TEST_P(EveryNode, HasVersionZeroUnlessItAcceptsAll) {
    EXPECT_EQ(node->properties->version, isPlaceholder() ? 2147483647 : 0);
}

TEST_P(EveryNode, IndexesEachPropertyByItsName) {
    EXPECT_EQ(node->properties->byName.size(), node->properties->items.size());
    for (const auto& property : *node->properties) {
        EXPECT_EQ(node->properties->find(property->name), property);
        EXPECT_EQ(property->label, "") << property->name;
    }
}

TEST_P(EveryNode, HelpBeginsWithTheNameAndAColon) {
    for (const auto& property : *node->properties) {
        if (!property->help.empty()) {
            EXPECT_EQ(property->help.substr(0, property->name.size() + 2), property->name + ": ");
        }
    }
}

TEST_P(EveryNode, SelectsTheFirstValueOfAnEnumOrAnother) {
    for (const auto& property : *node->properties) {
        if (property->kind == PropertyType::Enum) {
            const auto selected = property->getEnum();
            property->setEnum(selected);
            EXPECT_EQ(property->getEnum(), selected);
        }
    }
}

TEST_P(EveryNode, OffersEachValueOfAnEnumOnce) {
    for (const auto& property : *node->properties) {
        const std::set<std::string> distinct(property->allowedValues.begin(), property->allowedValues.end());
        EXPECT_EQ(distinct.size(), property->allowedValues.size()) << property->name;
    }
}

TEST_P(EveryNode, HasRoomForItsPropertiesAndNoMore) {
    EXPECT_EQ(node->properties->items.capacity(), node->properties->items.size());
}

TEST_P(EveryNode, KeepsTheAlphasOfItsColours) {
    EXPECT_EQ(node->textColour[3], 1.0F);
    EXPECT_EQ(node->bodyColour[3], 0.9F);
}

TEST_P(EveryNode, StartsWithoutLinksAndUnconnected) {
    EXPECT_TRUE(node->inputLinks.empty());
    EXPECT_TRUE(node->outputLinks.empty());
    for (const auto* ports : {&node->inputs, &node->outputs}) {
        for (const Port& port : *ports) {
            EXPECT_FALSE(port.connected) << port.name;
            EXPECT_FALSE(port.componentCountConflict) << port.name;
            EXPECT_NE(port.label, "") << port.name;
        }
    }
    EXPECT_EQ(node->resolvedComponentCount, 1U);
    EXPECT_EQ(node->resolvedPrecision, 3U);
}

/// A saved set as a host builds it: names, kinds and values, and nothing else.
std::shared_ptr<PropertySet> savedFrom(const PropertySet& own) {
    auto saved = std::make_shared<PropertySet>();
    saved->version = own.version;
    for (const auto& property : own) {
        const auto copy = makeProperty(property->name);
        copy->kind = property->kind;
        copy->stringValue = property->stringValue;
        copy->intValue = property->intValue;
        copy->floatValues = property->floatValues;
        copy->nodeValue = property->nodeValue;
        saved->add(copy);
    }
    return saved;
}

/// The placeholder writes its own description on loading.
void ignoreDescription(MaterialNode& node) { node.descriptionProperty->stringValue.clear(); }

TEST_P(EveryNode, LoadingItsOwnValuesChangesNothing) {
    const auto before = stateOf(*node->properties);
    const auto inputs = stateOf(node->inputs);
    const auto outputs = stateOf(node->outputs);
    node->loadProperties(savedFrom(*node->properties));
    if (isPlaceholder()) {
        ignoreDescription(*node);
    }
    EXPECT_EQ(stateOf(*node->properties), before);
    EXPECT_EQ(stateOf(node->inputs), inputs);
    EXPECT_EQ(stateOf(node->outputs), outputs);
}

/// Gives every property another value of its kind.
void changeAll(MaterialNode& node) {
    for (const auto& property : *node.properties) {
        switch (property->kind) {
        case PropertyType::Bool:
            property->setBool(!property->getBool());
            break;
        case PropertyType::Integer:
            property->setInteger(property->getInteger() + 1);
            break;
        case PropertyType::Float:
            property->setFloat(property->getFloat() + 0.5F);
            break;
        case PropertyType::String:
            property->setString(property->getString() + " changed");
            break;
        case PropertyType::Colour:
            property->setColour(0.25F, 0.5F, 0.75F);
            break;
        case PropertyType::Enum:
            property->setEnum(property->allowedValues.back());
            break;
        case PropertyType::Node:
            break;
        }
    }
}

TEST_P(EveryNode, AnotherNodeOfTheTypeTakesItsValues) {
    changeAll(*node);
    const auto other = makeNode();
    other->loadProperties(savedFrom(*node->properties));
    if (isPlaceholder()) {
        ignoreDescription(*node);
        ignoreDescription(*other);
    }
    for (const auto& property : *node->properties) {
        EXPECT_EQ(stateOf(*other->properties->find(property->name)), stateOf(*property));
    }
}

TEST_P(EveryNode, LoadingAnEmptySetKeepsTheDefaults) {
    const auto before = stateOf(*node->properties);
    node->loadProperties(std::make_shared<PropertySet>());
    if (isPlaceholder()) {
        ignoreDescription(*node);
    }
    EXPECT_EQ(stateOf(*node->properties), before);
}

void expectRefusal(MaterialNode& node, const std::string& typeName, std::int32_t version,
                   const std::string& versionText) {
    const auto saved = savedFrom(*node.properties);
    saved->version = version;
    saved->find("Name")->setString("Rim");
    const auto before = stateOf(*node.properties);
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(saved); }),
              "Cannot convert \"" + typeName + "\" version " + versionText +
                  " properties into version 0 properties. Are you running with an old DLL?");
    EXPECT_EQ(stateOf(*node.properties), before);
}

TEST_P(EveryNode, RefusesANewerSavedVersionUnlessItAcceptsAll) {
    if (isPlaceholder()) {
        const auto saved = savedFrom(*node->properties);
        saved->find("Name")->setString("Rim");
        node->loadProperties(saved);
        EXPECT_EQ(node->name(), "Rim");
        return;
    }
    expectRefusal(*node, GetParam(), 1, "1");
    const testing::CommaLocale comma;
    expectRefusal(*node, GetParam(), 2147483647, "2147483647");
}

auto stateOfNode(const MaterialNode& node) {
    return std::make_tuple(stateOf(node.inputs), stateOf(node.outputs), stateOf(*node.properties),
                           node.textColour, node.bodyColour);
}

TEST_P(EveryNode, AFreshNodeIsUpToDate) {
    const auto constructed = stateOfNode(*node);
    node->updateFromProperties(nullptr);
    EXPECT_EQ(stateOfNode(*node), constructed);
}

using Edit = std::function<void(Property&)>;

/// What an artist could do to a property.
std::vector<Edit> editsOf(const Property& property) {
    std::vector<Edit> edits;
    if (property.kind == PropertyType::Bool) {
        edits.push_back([](Property& edited) { edited.setBool(!edited.getBool()); });
    }
    if (property.kind == PropertyType::Enum) {
        for (const std::string& value : property.allowedValues) {
            edits.push_back([value](Property& edited) { edited.setEnum(value); });
        }
    }
    if (property.kind == PropertyType::Integer) {
        for (const std::int32_t value : {2, 3, 4}) {
            edits.push_back([value](Property& edited) { edited.setInteger(value); });
        }
    }
    return edits;
}

TEST_P(EveryNode, UpdatingTwiceGivesWhatUpdatingOnceGave) {
    const std::size_t count = node->properties->items.size();
    for (std::size_t first = 0; first < count; ++first) {
        for (const Edit& firstEdit : editsOf(*node->properties->items[first])) {
            for (std::size_t second = first; second < count; ++second) {
                for (const Edit& secondEdit : editsOf(*node->properties->items[second])) {
                    const auto edited = makeNode();
                    firstEdit(*edited->properties->items[first]);
                    secondEdit(*edited->properties->items[second]);
                    edited->updateFromProperties(nullptr);
                    const auto once = stateOfNode(*edited);
                    edited->updateFromProperties(nullptr);
                    EXPECT_EQ(stateOfNode(*edited), once);
                }
            }
        }
    }
}

/// These nodes have the same ports for life; updating leaves them, and what was resolved, alone.
bool keepsItsPorts(const std::string& typeName) {
    return typeName == "CoreDefault" || typeName == "CoreUv" || typeName == "CoreLayerBlend";
}

TEST_P(EveryNode, UpdatingStartsAfreshWherePortsAreRebuilt) {
    const auto fresh = std::make_pair(stateOf(node->inputs), stateOf(node->outputs));
    for (auto* ports : {&node->inputs, &node->outputs}) {
        for (Port& port : *ports) {
            port.connected = true;
            port.componentCountConflict = true;
        }
    }
    node->resolveComponentCounts();
    node->resolvePrecision();
    const auto resolved = std::make_pair(stateOf(node->inputs), stateOf(node->outputs));
    node->updateFromProperties(nullptr);
    EXPECT_EQ(std::make_pair(stateOf(node->inputs), stateOf(node->outputs)),
              keepsItsPorts(GetParam()) ? resolved : fresh);
}

TEST_P(EveryNode, ResolvesAllItsFreePorts) {
    node->resolveComponentCounts();
    node->resolvePrecision();
    for (const auto* ports : {&node->inputs, &node->outputs}) {
        for (const Port& port : *ports) {
            EXPECT_GE(port.getComponentCount(), 1U) << port.name;
            EXPECT_LE(port.getComponentCount(), 4U) << port.name;
            EXPECT_TRUE(port.getPrecision() == 2 || port.getPrecision() == 3) << port.name;
        }
    }
}

} // namespace
} // namespace patina
