#include "corenodes/maths_node.h"
#include "corenodes/texture_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace patina {
namespace {

using namespace testing;

const Texts allProperties = {"Reference", "Texture Type", "Colour Type", "Alpha", "sRGB", "Basic Colour"};
const Texts withoutSrgb = {"Reference", "Texture Type", "Colour Type", "Alpha"};
const Texts withoutAlpha = {"Reference", "Texture Type", "Colour Type", "sRGB", "Basic Colour"};

TEST(TextureNode, HasItsProperties) {
    const TextureNode node;
    expectProperties(
        node, "CoreTexture", "Texture",
        {{"Reference",
          PropertyType::Node,
          "none",
          "Reference: can point to another texture to use the same name and settings. Only one binding will "
          "be created in Maya and shared between all references.",
          {"CoreTexture"}},
         {"Texture Type",
          PropertyType::Enum,
          "2D",
          "Texture Type: the type of texture to read. At the moment only 1D and 2D textures are supported, "
          "but this may be extended to 3D and CUBE in future.",
          {"1D", "2D"}},
         {"Colour Type",
          PropertyType::Enum,
          "Colour",
          "Colour Type: the colour outputs to present from this node. Normal maps should always use the "
          "\"Normal\" or \"DXT5 Normal\" setting to properly unpack the normal from the texture.",
          {"Colour", "Normal", "Component", "Vector", "DXT5 Normal"}},
         {"Alpha", PropertyType::Bool, "false",
          "Alpha: check this box in order to use the alpha channel of the texture."},
         {"sRGB", PropertyType::Bool, "true",
          "sRGB: uncheck this box in order to read raw texture values without sRGB conversion. Painted 8-bit "
          "art is usually saved in the sRGB colour space, however this box should be unchecked to directly "
          "read HDR images or texture lookup data."},
         {"Basic Colour", PropertyType::Bool, "false",
          "Basic Colour: check this box to use this binding as the basic colour of the material.  At most "
          "one constant and one texture can form the basic colour, which is used for QeliLocator preview "
          "and the vela diffuse term.  If a material has  no basic colours then the names of the bindings "
          "are used to guess which ones to use."}});
    expectColours(node, 1.0F, 1.0F, 0.5F);
}

TEST(TextureNode, StartsAsATwoDimensionalColour) {
    const TextureNode node;
    expectPorts(node.inputs, {{"in_uv", "uv", 2, 2}});
    expectPorts(node.outputs, {{"out_colour", "colour", 3}});
    EXPECT_EQ(visibleProperties(node), allProperties);
    EXPECT_EQ(editableProperties(node), allProperties);
    EXPECT_TRUE(node.descriptionProperty->editable);
    EXPECT_TRUE(node.generatesBinding());
}

TEST(TextureNode, IsCaptionedWithItsName) {
    TextureNode node;
    EXPECT_EQ(node.caption(), "Texture");
    node.setName("diffuse");
    EXPECT_EQ(node.caption(), "diffuse");
}

TEST(TextureNode, IsCaptionedAsWhatItRefersTo) {
    const auto referTo = [](MaterialNode& node, const std::shared_ptr<MaterialNode>& referred) {
        node.properties->find("Reference")->getNode() = referred;
    };
    const auto last = std::make_shared<TextureNode>();
    last->setName("diffuse");
    const auto middle = std::make_shared<TextureNode>();
    referTo(*middle, last);
    TextureNode first;
    referTo(first, middle);
    EXPECT_EQ(first.caption(), "diffuse");
    // whatever a host assigns, though only textures are offered
    const auto maths = std::make_shared<MathsNode>();
    referTo(*middle, maths);
    EXPECT_EQ(first.caption(), "Multiply");
}

struct Configuration {
    const char* colourType;
    bool alpha;
    std::vector<PortRow> outputs;
    Texts visible;
    Texts editable;
    bool alphaAfterwards;
};

const std::vector<Configuration> configurations = {
    {"Colour", false, {{"out_colour", "colour", 3}}, allProperties, allProperties, false},
    {"Colour",
     true,
     {{"out_colour", "colour", 3}, {"out_alpha", "alpha", 1}},
     allProperties,
     allProperties,
     true},
    {"Normal", false, {{"out_colour", "normal", 3}}, withoutSrgb, allProperties, false},
    {"Normal",
     true,
     {{"out_colour", "normal", 3}, {"out_alpha", "alpha", 1}},
     withoutSrgb,
     allProperties,
     true},
    {"Component",
     false,
     {{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}},
     allProperties,
     allProperties,
     false},
    {"Component",
     true,
     {{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}, {"out_alpha", "alpha", 1}},
     allProperties,
     allProperties,
     true},
    {"Vector", false, {{"out_colour", "rgba", 4}}, allProperties, withoutAlpha, true},
    {"Vector", true, {{"out_colour", "rgba", 4}}, allProperties, withoutAlpha, true},
    {"DXT5 Normal", false, {{"out_colour", "normal", 3}}, withoutSrgb, withoutAlpha, true},
    {"DXT5 Normal", true, {{"out_colour", "normal", 3}}, withoutSrgb, withoutAlpha, true},
};

struct TextureType {
    const char* name;
    PortRow input;
};

const std::vector<TextureType> textureTypes = {{"1D", {"in_uv", "u", 1, 2}}, {"2D", {"in_uv", "uv", 2, 2}}};

void configure(TextureNode& node, const Configuration& row, const TextureType& textureType) {
    property(node, "Texture Type").setEnum(textureType.name);
    property(node, "Colour Type").setEnum(row.colourType);
    property(node, "Alpha").setBool(row.alpha);
    node.updateFromProperties(nullptr);
}

void expectConfiguration(const TextureNode& node, const Configuration& row, const TextureType& textureType) {
    SCOPED_TRACE(row.colourType);
    expectPorts(node.inputs, {textureType.input});
    expectPorts(node.outputs, row.outputs);
    EXPECT_EQ(visibleProperties(node), row.visible);
    EXPECT_EQ(editableProperties(node), row.editable);
    EXPECT_EQ(property(node, "Alpha").getBool(), row.alphaAfterwards);
    EXPECT_TRUE(property(node, "sRGB").getBool());
    EXPECT_TRUE(node.descriptionProperty->editable);
    EXPECT_EQ(node.textColour, (std::array<float, 4>{0.0F, 0.0F, 0.0F, 1.0F}));
}

TEST(TextureNode, RebuildsPortsAndFlags) {
    for (const TextureType& textureType : textureTypes) {
        for (const Configuration& row : configurations) {
            TextureNode node;
            configure(node, row, textureType);
            expectConfiguration(node, row, textureType);
        }
    }
}

TEST(TextureNode, ForgetsTheConfigurationBefore) {
    TextureNode node;
    for (const Configuration& before : configurations) {
        for (const Configuration& row : configurations) {
            configure(node, before, textureTypes[0]);
            configure(node, row, textureTypes[1]);
            expectConfiguration(node, row, textureTypes[1]);
        }
    }
}

TEST(TextureNode, StartsItsPortsAfresh) {
    TextureNode node;
    resolve(node, floatPrecision);
    node.inputPort("in_uv").connected = true;
    node.outputPort("out_colour").connected = true;
    node.updateFromProperties(&node);
    expectPorts(node.inputs, {{"in_uv", "uv", 2, 2}});
    expectPorts(node.outputs, {{"out_colour", "colour", 3}});
}

TEST(TextureNode, KeepsTheCoordinateAtFloatPrecision) {
    TextureNode node;
    resolve(node, halfPrecision);
    EXPECT_EQ(node.resolvedPrecision, 3U);
    EXPECT_EQ(node.inputPort("in_uv").getPrecision(), 2U);
}

TEST(TextureNode, LeavesAlphaCheckedAfterAVector) {
    for (const char* fourComponents : {"Vector", "DXT5 Normal"}) {
        SCOPED_TRACE(fourComponents);
        TextureNode node;
        property(node, "Colour Type").setEnum(fourComponents);
        node.updateFromProperties(nullptr);
        EXPECT_TRUE(property(node, "Alpha").getBool());
        EXPECT_FALSE(property(node, "Alpha").editable);
        property(node, "Colour Type").setEnum("Colour");
        node.updateFromProperties(nullptr);
        EXPECT_TRUE(property(node, "Alpha").getBool());
        EXPECT_TRUE(property(node, "Alpha").editable);
        expectPorts(node.outputs, {{"out_colour", "colour", 3}, {"out_alpha", "alpha", 1}});
    }
}

TEST(TextureNode, TakesAnUnknownColourTypeForComponents) {
    TextureNode node;
    setUnknownEnum(node, "Colour Type");
    property(node, "Alpha").setBool(true);
    node.updateFromProperties(nullptr);
    expectPorts(node.outputs, {{"out_red", "red", 1},
                               {"out_green", "green", 1},
                               {"out_blue", "blue", 1},
                               {"out_alpha", "alpha", 1}});
    EXPECT_EQ(visibleProperties(node), allProperties);
    EXPECT_EQ(editableProperties(node), allProperties);
}

TEST(TextureNode, TakesAnUnknownTextureTypeForTwoDimensions) {
    TextureNode node;
    setUnknownEnum(node, "Texture Type");
    node.updateFromProperties(nullptr);
    expectPorts(node.inputs, {{"in_uv", "uv", 2, 2}});
}

struct BindingRow {
    const char* colourType;
    bool srgb;
    bool basicColour;
    Texts annotations; ///< after "tag"
};

const std::vector<BindingRow> bindingRows = {
    {"Colour", true, true, {"basic_colour=Yes", "srgb=Yes"}},
    {"Colour", true, false, {"srgb=Yes"}},
    {"Colour", false, true, {"basic_colour=Yes"}},
    {"Colour", false, false, {}},
    {"Component", true, true, {"basic_colour=Yes", "srgb=Yes"}},
    {"Component", true, false, {"srgb=Yes"}},
    {"Component", false, true, {"basic_colour=Yes"}},
    {"Component", false, false, {}},
    {"Vector", true, true, {"basic_colour=Yes", "srgb=Yes"}},
    {"Vector", true, false, {"srgb=Yes"}},
    {"Vector", false, true, {"basic_colour=Yes"}},
    {"Vector", false, false, {}},
    {"Normal", true, true, {}},
    {"Normal", false, false, {}},
    {"DXT5 Normal", true, true, {}},
    {"DXT5 Normal", false, false, {}},
};

TEST(TextureBindings, CarryTheSettings) {
    for (const char* textureType : {"1D", "2D"}) {
        for (const BindingRow& row : bindingRows) {
            SCOPED_TRACE(row.colourType);
            TextureNode node;
            node.setName("diffuse");
            property(node, "Texture Type").setEnum(textureType);
            property(node, "Colour Type").setEnum(row.colourType);
            property(node, "sRGB").setBool(row.srgb);
            property(node, "Basic Colour").setBool(row.basicColour);
            node.updateFromProperties(nullptr);
            EXPECT_EQ(property(node, "sRGB").getBool(), row.srgb);
            EXPECT_EQ(property(node, "Basic Colour").getBool(), row.basicColour);

            EXPECT_TRUE(node.generatesBinding());
            const auto bindings = bindingsOf(node);
            ASSERT_EQ(bindings.size(), 1U);
            auto* const binding = dynamic_cast<TextureBinding*>(bindings[0].get());
            ASSERT_NE(binding, nullptr);
            EXPECT_EQ(binding->kind, BindingKind::Texture);
            EXPECT_EQ(binding->name, "diffuse");
            EXPECT_EQ(binding->uiType, UiType::Texture);
            EXPECT_EQ(binding->componentCount(), 1U);
            EXPECT_FALSE(binding->signedExpanded);
            EXPECT_TRUE(binding->normalised);
            EXPECT_FALSE(binding->hasDefault);
            Texts expected = row.annotations;
            expected.insert(expected.begin(), "tag=diffuse");
            EXPECT_EQ(annotations(*binding), expected);
        }
    }
}

TEST(TextureBindings, CopyTheDescriptiveTexts) {
    TextureNode node;
    describeNode(node);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    expectDescribed(*bindings[0]);
    EXPECT_EQ(annotations(*bindings[0]), (Texts{"tag=Texture", "desc=How it looks.",
                                                "helpUrl=https://example.org/surface", "srgb=Yes"}));
}

TEST(TextureBindings, GoToTheEndOfTheCollection) {
    TextureNode first;
    TextureNode second;
    second.setName("second");
    BindingCollection collection;
    first.addBindings(collection);
    collection.sorted = true;
    second.addBindings(collection);
    ASSERT_EQ(collection.bindings.size(), 2U);
    EXPECT_EQ(collection.bindings[0]->name, "Texture");
    EXPECT_EQ(collection.bindings[1]->name, "second");
    EXPECT_FALSE(collection.sorted);
}

/// What is done with a node one of whose properties is of another kind.
using Operation = void (*)(TextureNode& node);

void update(TextureNode& node) { node.updateFromProperties(nullptr); }
void bind(TextureNode& node) { bindingsOf(node); }
void generate(TextureNode& node) { generated(node); }

struct KindRow {
    Operation operation;
    const char* property; ///< of another kind
    const char* kind;     ///< that it should be of
};

TEST(TextureNode, ReadsPropertiesOfTheirKindsAlone) {
    const KindRow rows[] = {
        {update, "Reference", "node"},
        {update, "Texture Type", "enum"},
        {update, "Colour Type", "enum"},
        {update, "Alpha", "bool"},
        {[](TextureNode& node) { static_cast<void>(node.caption()); }, "Reference", "node"},
        {[](TextureNode& node) { node.generatesBinding(); }, "Reference", "node"},
        {bind, "Reference", "node"},
        {bind, "Name", "string"},
        {bind, "Description", "string"},
        {bind, "BindingGroup", "string"},
        {bind, "Help Url", "string"},
        {bind, "sRGB", "bool"},
        {bind, "Colour Type", "enum"},
        {bind, "Basic Colour", "bool"},
        {generate, "Colour Type", "enum"},
        {generate, "Texture Type", "enum"},
        {generate, "Alpha", "bool"},
        {generate, "sRGB", "bool"},
        {generate, "Reference", "node"},
        {generate, "Name", "string"},
    };
    for (const KindRow& row : rows) {
        TextureNode node;
        property(node, "Alpha").setBool(true);
        node.updateFromProperties(nullptr);
        node.inputPort("in_uv").connected = true;
        node.outputPort("out_alpha").connected = true;
        resolve(node, floatPrecision);
        property(node, row.property).kind = PropertyType::Float;
        EXPECT_EQ(shaderErrorOf([&] { row.operation(node); }), std::string("cannot read ") + row.kind +
                                                                   " value from non-" + row.kind +
                                                                   " property \"" + row.property + "\"");
    }
}

} // namespace
} // namespace patina
