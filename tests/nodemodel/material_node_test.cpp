#include "nodemodel/material_node.h"

#include "bindings/binding.h"
#include "tests/nodemodel/plain_node.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::PlainNode;
using testing::shaderErrorOf;
using testing::stateOf;
using Colour = std::array<float, 4>;

struct StandardProperty {
    const char* name;
    PropertyType kind;
    const char* text; ///< of a string
    const char* help;
    bool editable;
    bool visible;
    std::uint32_t stringStyle;
    std::shared_ptr<Property> MaterialNode::*handle;
};

const StandardProperty standardProperties[] = {
    {"Type", PropertyType::String, "TestPlain", "Type: the internal type of the node.", false, true, 0,
     &MaterialNode::typeProperty},
    {"Name", PropertyType::String, "TestPlain",
     "Name: the name entered here will correspond to the binding name presented in Maya.", true, true, 0,
     &MaterialNode::nameProperty},
    {"BindingIndex", PropertyType::Integer, "", "", true, false, 0, &MaterialNode::bindingIndexProperty},
    {"BindingGroup", PropertyType::String, "", "", true, false, 0, &MaterialNode::bindingGroupProperty},
    {"PositionX", PropertyType::Float, "", "", true, false, 0, &MaterialNode::positionXProperty},
    {"PositionY", PropertyType::Float, "", "", true, false, 0, &MaterialNode::positionYProperty},
    {"Description", PropertyType::String, "",
     "Description: if this node generates a Maya binding, then this description will be used a tooltip for "
     "the "
     "binding. Otherwise this is a space for general notes about the node.",
     true, true, 1, &MaterialNode::descriptionProperty},
    {"Help Url", PropertyType::String, "",
     "Help Url: if this node generates a Maya binding then this Url will be accessable from a button on the "
     "binding Ui.",
     true, true, 2, &MaterialNode::helpUrlProperty},
};

/// A node as plug-ins write them, which adds its properties one by one.
class AddingNode final : public MaterialNode {
public:
    AddingNode() : MaterialNode("TestAdding") {
        width = addProperty("Width", "Width: how wide.");
        again = shaderErrorOf([this] { addProperty("Width", "Width: once more."); });
    }
    void generateCode(GraphGenerator& /*generator*/) override {}

    std::shared_ptr<Property> width;
    std::string again;
};

TEST(MaterialNode, AddsPropertiesBehindTheStandardOnes) {
    const AddingNode node;
    ASSERT_EQ(node.properties->items.size(), std::size(standardProperties) + 1);
    EXPECT_EQ(node.properties->items.back(), node.width);
    EXPECT_EQ(node.properties->find("Width"), node.width);
    EXPECT_EQ(node.width->name, "Width");
    EXPECT_EQ(node.width->help, "Width: how wide.");
    EXPECT_EQ(node.again, "property with name \"Width\" already exists");
}

TEST(MaterialNode, HasTheEightStandardProperties) {
    const PlainNode node;
    ASSERT_EQ(node.properties->items.size(), std::size(standardProperties));
    EXPECT_EQ(node.properties->byName.size(), std::size(standardProperties));
    EXPECT_EQ(node.properties->version, 0);
    EXPECT_EQ(node.properties.use_count(), 1);
    for (std::size_t i = 0; i < std::size(standardProperties); ++i) {
        const StandardProperty& expected = standardProperties[i];
        const Property& property = *node.properties->items[i];
        EXPECT_EQ(property.name, expected.name);
        EXPECT_EQ(property.kind, expected.kind) << expected.name;
        EXPECT_EQ(property.stringValue, expected.text) << expected.name;
        EXPECT_EQ(property.intValue, 0) << expected.name;
        EXPECT_EQ(property.floatValues, (std::array<float, 3>{0.0F, 0.0F, 0.0F})) << expected.name;
        EXPECT_EQ(property.nodeValue, nullptr) << expected.name;
        EXPECT_TRUE(property.allowedValues.empty()) << expected.name;
        EXPECT_EQ(property.label, "") << expected.name;
        EXPECT_EQ(property.help, expected.help);
        EXPECT_EQ(property.editable, expected.editable) << expected.name;
        EXPECT_EQ(property.visible, expected.visible) << expected.name;
        EXPECT_EQ(property.stringStyle, expected.stringStyle) << expected.name;
        EXPECT_EQ((node.*expected.handle).get(), &property) << expected.name;
    }
}

TEST(MaterialNode, StartsWithoutPortsAndLinks) {
    const PlainNode node;
    EXPECT_TRUE(node.inputLinks.empty());
    EXPECT_TRUE(node.outputLinks.empty());
    EXPECT_TRUE(node.inputs.empty());
    EXPECT_TRUE(node.outputs.empty());
    EXPECT_EQ(node.resolvedComponentCount, 1U);
    EXPECT_EQ(node.resolvedPrecision, 3U);
}

TEST(MaterialNode, ColourSettersLeaveAlpha) {
    PlainNode node;
    EXPECT_EQ(node.textColour, (Colour{0.0F, 0.0F, 0.0F, 1.0F}));
    EXPECT_EQ(node.bodyColour, (Colour{0.9F, 0.9F, 0.9F, 0.9F}));
    node.setTextColour(0.1F, 0.2F, 0.3F);
    EXPECT_EQ(node.textColour, (Colour{0.1F, 0.2F, 0.3F, 1.0F}));
    EXPECT_EQ(node.bodyColour, (Colour{0.9F, 0.9F, 0.9F, 0.9F}));
    node.setBodyColour(0.4F, 0.5F, 2.0F);
    EXPECT_EQ(node.bodyColour, (Colour{0.4F, 0.5F, 2.0F, 0.9F}));
    EXPECT_EQ(node.textColour, (Colour{0.1F, 0.2F, 0.3F, 1.0F}));
    node.textColour[3] = 0.25F;
    node.bodyColour[3] = 0.75F;
    node.setTextColour(0.0F, 0.0F, 0.0F);
    node.setBodyColour(0.0F, 0.0F, 0.0F);
    EXPECT_EQ(node.textColour[3], 0.25F);
    EXPECT_EQ(node.bodyColour[3], 0.75F);
}

TEST(MaterialNode, TypeNameAndNameAreProperties) {
    PlainNode node("TestFancy");
    EXPECT_EQ(node.typeName(), "TestFancy");
    EXPECT_EQ(node.name(), "TestFancy");
    node.setName("Rim");
    EXPECT_EQ(node.name(), "Rim");
    EXPECT_EQ(node.nameProperty->getString(), "Rim");
    EXPECT_EQ(node.typeName(), "TestFancy");
    node.nameProperty->setString("Fill");
    node.typeProperty->setString("TestOther");
    EXPECT_EQ(node.name(), "Fill");
    EXPECT_EQ(node.typeName(), "TestOther");
}

TEST(MaterialNode, DescribesItselfByNameAndType) {
    PlainNode node;
    EXPECT_EQ(node.describe(), "node \"TestPlain\" (TestPlain)");
    node.setName("Rim");
    EXPECT_EQ(node.describe(), "node \"Rim\" (TestPlain)");
    node.setName("");
    node.typeProperty->setString("");
    EXPECT_EQ(node.describe(), "node \"\" ()");
    node.setName("Größe \"x\"");
    EXPECT_EQ(node.describe(), "node \"Größe \"x\"\" ()");
}

TEST(MaterialNode, CaptionIsTheName) {
    PlainNode node;
    EXPECT_EQ(node.caption(), "TestPlain");
    node.setName("Rim");
    EXPECT_EQ(node.caption(), "Rim");
}

TEST(MaterialNode, BaseUpdateDoesNothing) {
    PlainNode node;
    node.inputs.emplace_back("in_value", "value");
    node.outputs.emplace_back("out_value", "value");
    const auto properties = stateOf(*node.properties);
    const auto inputs = stateOf(node.inputs);
    const auto outputs = stateOf(node.outputs);
    int hostData = 0;
    node.updateFromProperties(nullptr);
    node.updateFromProperties(&hostData);
    EXPECT_EQ(stateOf(*node.properties), properties);
    EXPECT_EQ(stateOf(node.inputs), inputs);
    EXPECT_EQ(stateOf(node.outputs), outputs);
}

TEST(MaterialNode, BaseAddsNoBindings) {
    PlainNode node;
    EXPECT_FALSE(node.generatesBinding());
    BindingCollection collection;
    collection.sorted = true;
    node.addBindings(collection);
    EXPECT_TRUE(collection.bindings.empty());
    EXPECT_TRUE(collection.sorted);
}

PlainNode& withPorts(PlainNode& node) {
    node.setName("Rim");
    node.inputs.emplace_back("in_uv", "uv");
    node.inputs.emplace_back("in_value", "value");
    node.inputs.emplace_back("in_uv", "second");
    node.outputs.emplace_back("out_colour", "colour");
    node.outputs.emplace_back("read", "read");
    return node;
}

TEST(MaterialNode, FindsPortsByExactName) {
    PlainNode node;
    withPorts(node);
    EXPECT_EQ(node.findInputPortIndex("in_uv"), 0) << "the first of that name";
    EXPECT_EQ(node.findInputPortIndex("in_value"), 1);
    EXPECT_EQ(node.findOutputPortIndex("out_colour"), 0);
    EXPECT_EQ(node.findOutputPortIndex("read"), 1);
    for (const char* name : {"", "IN_UV", "in_uv ", "in_", "uv", "out_colour"}) {
        EXPECT_EQ(node.findInputPortIndex(name), -1) << name;
    }
    for (const char* name : {"", "Read", "colour", "in_uv"}) {
        EXPECT_EQ(node.findOutputPortIndex(name), -1) << name;
    }
    EXPECT_EQ(PlainNode().findInputPortIndex("in_uv"), -1);
    EXPECT_EQ(PlainNode().findOutputPortIndex("read"), -1);
}

TEST(MaterialNode, GivesReferencesToItsPorts) {
    PlainNode node;
    withPorts(node);
    const MaterialNode& constant = node;
    EXPECT_EQ(&node.inputPort("in_uv"), &node.inputs[0]);
    EXPECT_EQ(&node.inputPort("in_value"), &node.inputs[1]);
    EXPECT_EQ(&node.outputPort("read"), &node.outputs[1]);
    EXPECT_EQ(&constant.inputPort("in_value"), &node.inputs[1]);
    EXPECT_EQ(&constant.outputPort("out_colour"), &node.outputs[0]);
    node.inputPort("in_uv").connected = true;
    EXPECT_TRUE(node.inputs[0].connected);
}

TEST(MaterialNode, UnknownPortsFailWithTheNodesDescription) {
    PlainNode node;
    withPorts(node);
    const auto inputs = stateOf(node.inputs);
    const auto outputs = stateOf(node.outputs);
    EXPECT_EQ(shaderErrorOf([&] { (void)node.inputPort("out_colour"); }),
              "node \"Rim\" (TestPlain): input port \"out_colour\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { (void)node.outputPort("in_uv"); }),
              "node \"Rim\" (TestPlain): output port \"in_uv\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { (void)std::as_const(node).inputPort(""); }),
              "node \"Rim\" (TestPlain): input port \"\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { (void)std::as_const(node).outputPort("Read"); }),
              "node \"Rim\" (TestPlain): output port \"Read\" does not exist");
    EXPECT_EQ(stateOf(node.inputs), inputs);
    EXPECT_EQ(stateOf(node.outputs), outputs);
}

TEST(MaterialNode, DestructionReleasesItsShares) {
    const auto kept = std::make_shared<PlainNode>();
    const auto properties = kept->properties;
    const auto name = kept->nameProperty;
    auto connection = std::make_shared<NodeConnection>();
    {
        PlainNode node;
        node.inputLinks.push_back(connection);
        node.outputLinks.push_back(connection);
        // cppcheck-suppress unreadVariable ; the destructor gives it back
        node.properties = properties;
        // cppcheck-suppress unreadVariable ; so it does this
        node.nameProperty = name;
        EXPECT_EQ(connection.use_count(), 1) << "links keep nothing alive";
        EXPECT_EQ(properties.use_count(), 3);
    }
    EXPECT_EQ(properties.use_count(), 2);
    EXPECT_EQ(name.use_count(), 4) << "this test, the node's handle, and the two fields of its set";
    EXPECT_EQ(connection.use_count(), 1);
}

TEST(MaterialNode, PropertiesMayOutliveTheNode) {
    auto node = std::make_unique<PlainNode>();
    const auto properties = node->properties;
    node->setName("Rim");
    node.reset();
    EXPECT_EQ(properties->find("Name")->getString(), "Rim");
}

} // namespace
} // namespace patina
