#include "corenodes/texture_node.h"
#include "corenodes/uv_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <array>

namespace patina {
namespace {

using namespace testing;

std::shared_ptr<TextureNode> makeTexture(const char* name) {
    auto node = std::make_shared<TextureNode>();
    node->setName(name);
    return node;
}

/// A texture "shared" none of whose settings is that of a new node.
std::shared_ptr<TextureNode> makeTextureOfOtherSettings() {
    auto node = makeTexture("shared");
    property(*node, "Texture Type").setEnum("1D");
    property(*node, "Colour Type").setEnum("Component");
    property(*node, "Alpha").setBool(true);
    property(*node, "sRGB").setBool(false);
    property(*node, "Basic Colour").setBool(true);
    return node;
}

void refer(TextureNode& node, const std::shared_ptr<MaterialNode>& target) {
    property(node, "Reference").getNode() = target;
    node.updateFromProperties(nullptr);
}

void generateConnected(TextureNode& node, GraphGenerator& generator) {
    node.inputPort("in_uv").connected = true;
    resolve(node, halfPrecision);
    node.generateCode(generator);
}

TEST(TextureReference, TakesOverTheSettings) {
    const auto target = makeTextureOfOtherSettings();
    target->updateFromProperties(nullptr);

    const auto node = makeTexture("own");
    node->descriptionProperty->setString("mine");
    refer(*node, target);
    EXPECT_EQ(property(*node, "Texture Type").getEnum(), "1D");
    EXPECT_EQ(property(*node, "Colour Type").getEnum(), "Component");
    EXPECT_TRUE(property(*node, "Alpha").getBool());
    EXPECT_FALSE(property(*node, "sRGB").getBool());
    EXPECT_TRUE(property(*node, "Basic Colour").getBool());
    EXPECT_EQ(node->name(), "own");
    EXPECT_EQ(node->descriptionProperty->getString(), "mine");
    expectPorts(node->inputs, {{"in_uv", "u", 1, 2}});
    expectPorts(node->outputs, {{"out_red", "red", 1},
                                {"out_green", "green", 1},
                                {"out_blue", "blue", 1},
                                {"out_alpha", "alpha", 1}});
}

TEST(TextureReference, LocksTheSettings) {
    const auto node = makeTexture("own");
    refer(*node, makeTexture("shared"));
    EXPECT_EQ(editableProperties(*node), Texts{"Reference"});
    EXPECT_FALSE(node->descriptionProperty->editable);
    EXPECT_TRUE(node->nameProperty->editable);
    EXPECT_TRUE(node->helpUrlProperty->editable);
    EXPECT_EQ(node->textColour, (std::array<float, 4>{0.6F, 0.6F, 0.6F, 1.0F}));
}

struct VisibilityRow {
    const char* colourType;
    std::vector<PortRow> outputs;
    Texts visible;
};

TEST(TextureReference, KeepsAlphaLockedForEveryColourType) {
    const Texts all = {"Reference", "Texture Type", "Colour Type", "Alpha", "sRGB", "Basic Colour"};
    const Texts normal = {"Reference", "Texture Type", "Colour Type", "Alpha"};
    const std::vector<VisibilityRow> rows = {
        {"Colour", {{"out_colour", "colour", 3}}, all},
        {"Normal", {{"out_colour", "normal", 3}}, normal},
        {"Component", {{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}}, all},
        {"Vector", {{"out_colour", "rgba", 4}}, all},
        {"DXT5 Normal", {{"out_colour", "normal", 3}}, normal},
    };
    for (const VisibilityRow& row : rows) {
        SCOPED_TRACE(row.colourType);
        const auto target = makeTexture("shared");
        property(*target, "Colour Type").setEnum(row.colourType);
        const auto node = makeTexture("own");
        refer(*node, target); // the target has not been updated: its alpha is as it was
        EXPECT_EQ(editableProperties(*node), Texts{"Reference"});
        EXPECT_EQ(visibleProperties(*node), row.visible);
        EXPECT_FALSE(property(*node, "Alpha").getBool());
        expectPorts(node->outputs, row.outputs);
    }
}

TEST(TextureReference, FollowsTheTargetAtTheNextUpdate) {
    const auto target = makeTexture("shared");
    const auto node = makeTexture("own");
    refer(*node, target);
    property(*target, "Colour Type").setEnum("Vector");
    target->updateFromProperties(nullptr);
    target->setName("renamed");
    EXPECT_EQ(node->caption(), "renamed");
    expectPorts(node->outputs, {{"out_colour", "colour", 3}});
    node->updateFromProperties(nullptr);
    expectPorts(node->outputs, {{"out_colour", "rgba", 4}});
    EXPECT_TRUE(property(*node, "Alpha").getBool());
}

TEST(TextureReference, IsUndoneWhenItIsCleared) {
    const auto target = makeTexture("shared");
    property(*target, "Alpha").setBool(true);
    const auto node = makeTexture("own");
    refer(*node, target);
    refer(*node, nullptr);
    EXPECT_EQ(node->caption(), "own");
    EXPECT_TRUE(node->generatesBinding());
    EXPECT_EQ(bindingsOf(*node).size(), 1U);
    EXPECT_TRUE(property(*node, "Alpha").getBool());
    EXPECT_EQ(editableProperties(*node),
              (Texts{"Reference", "Texture Type", "Colour Type", "Alpha", "sRGB", "Basic Colour"}));
    EXPECT_TRUE(node->descriptionProperty->editable);
    EXPECT_EQ(node->textColour, (std::array<float, 4>{0.0F, 0.0F, 0.0F, 1.0F}));
    expectPorts(node->outputs, {{"out_colour", "colour", 3}, {"out_alpha", "alpha", 1}});
}

TEST(TextureReference, PresentsNoBinding) {
    const auto node = makeTexture("own");
    refer(*node, makeTexture("shared"));
    EXPECT_FALSE(node->generatesBinding());
    BindingCollection collection;
    collection.sorted = true;
    node->addBindings(collection);
    EXPECT_TRUE(collection.bindings.empty());
    EXPECT_TRUE(collection.sorted);
}

TEST(TextureReference, EndsAtTheLastNodeOfAChain) {
    const auto last = makeTexture("shared");
    const auto middle = makeTexture("middle");
    const auto first = makeTexture("first");
    property(*last, "sRGB").setBool(false);
    refer(*middle, last);
    refer(*first, middle);
    EXPECT_EQ(first->caption(), "shared");
    EXPECT_EQ(middle->caption(), "shared");
    EXPECT_EQ(last->caption(), "shared");
    EXPECT_FALSE(property(*first, "sRGB").getBool());

    GraphGenerator generator;
    generateConnected(*first, generator);
    generateConnected(*middle, generator);
    generateConnected(*last, generator);
    EXPECT_EQ(nodeNames(generator),
              (Texts{"textureCode", "shared", "textureCode", "shared", "textureCode", "shared"}));
    EXPECT_EQ(edges(generator),
              (Texts{"shared#1.read -> textureCode#0.in_sampler", "shared#3.read -> textureCode#2.in_sampler",
                     "shared#5.read -> textureCode#4.in_sampler"}));
    for (const std::size_t place : {0U, 2U, 4U}) {
        expectFunction(generator, place,
                       {"textureCode",
                        ExecutionLevel::Fragment,
                        {"float2 in_uv", "sampler2D in_sampler"},
                        {"half3 out_colour"},
                        "\thalf3 value = h3tex2D( in_sampler, in_uv );\n\tout_colour = value.xyz;\n"});
        expectParameter(generator, place + 1, NodeKind::UniformParameter, "shared", "sampler2D");
    }
    BindingCollection collection;
    for (const auto& node : {first, middle, last}) {
        node->addBindings(collection);
    }
    ASSERT_EQ(collection.bindings.size(), 1U);
    EXPECT_EQ(collection.bindings[0]->name, "shared");
}

TEST(TextureReference, IsNamedByItselfInMessages) {
    const auto node = makeTexture("own");
    refer(*node, makeTexture("shared"));
    resolve(*node, halfPrecision);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node->generateCode(generator); }),
              "node \"own\" (CoreTexture): please attach a texture coordinate before exporting");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(TextureReference, IsRestoredFromSavedValues) {
    const auto target = makeTexture("shared");
    const TextureNode source;
    property(source, "Reference").getNode() = target;
    TextureNode node;
    node.loadProperties(source.properties);
    node.updateFromProperties(nullptr);
    EXPECT_EQ(node.caption(), "shared");
}

TEST(TextureReference, RefusesSavedNodesOfOtherTypes) {
    const TextureNode source;
    property(source, "Reference").getNode() = std::make_shared<UvNode>();
    TextureNode node;
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(source.properties); }),
              "cannot copy property \"Reference\" as node typename \"CoreUv\" is not a valid typename");
    EXPECT_EQ(property(node, "Reference").getNode(), nullptr);
}

TEST(TextureReference, ToANodeWithoutTheSettingsFailsAndLeavesNoPorts) {
    TextureNode node;
    EXPECT_EQ(shaderErrorOf([&] { refer(node, std::make_shared<UvNode>()); }),
              "failed to find property \"Texture Type\"");
    EXPECT_TRUE(node.inputs.empty());
    EXPECT_TRUE(node.outputs.empty());
}

TEST(TextureReference, CopiesTheSettingsInTheirOrderAfterTheFlags) {
    const Texts settings = {"Texture Type", "Colour Type", "Alpha", "sRGB", "Basic Colour"};
    for (std::size_t failing = 0; failing < settings.size(); ++failing) {
        const auto target = makeTextureOfOtherSettings();
        property(*target, settings[failing].c_str()).kind = PropertyType::Node;
        TextureNode node;
        EXPECT_EQ(shaderErrorOf([&] { refer(node, target); }),
                  "cannot copy property \"" + settings[failing] + "\" from property with non-matching type");
        EXPECT_EQ(property(node, "Texture Type").getEnum(), failing > 0 ? "1D" : "2D");
        EXPECT_EQ(property(node, "Colour Type").getEnum(), failing > 1 ? "Component" : "Colour");
        EXPECT_EQ(property(node, "Alpha").getBool(), failing > 2);
        EXPECT_EQ(property(node, "sRGB").getBool(), failing <= 3);
        EXPECT_FALSE(property(node, "Basic Colour").getBool());
        EXPECT_EQ(editableProperties(node), Texts{"Reference"});
        EXPECT_FALSE(node.descriptionProperty->editable);
        EXPECT_EQ(node.textColour, (std::array<float, 4>{0.6F, 0.6F, 0.6F, 1.0F}));
    }
}

} // namespace
} // namespace patina
