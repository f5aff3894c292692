#include "host/node_summary.h"
#include "tests/host/host_checks.h"

#include "host/dynamic_library.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::corePlugins;
using testing::expectError;
using testing::hostErrorOf;

using Names = std::vector<std::string>;
using Ports = std::vector<PortSummary>;

PortSummary fixedPort(const std::string& name, const std::string& label, std::uint32_t count) {
    return {name, label, count, true};
}

PortSummary freePort(const std::string& name, const std::string& label) {
    return {name, label, std::nullopt, false};
}

std::string testPlugin(const std::string& name) {
    return std::string(PATINA_TEST_PLUGINS) + "/" + name + DynamicLibrary::extension();
}

const PropertySummary& propertyOf(const NodeSummary& summary, const std::string& name) {
    for (const PropertySummary& property : summary.properties) {
        if (property.name == name) {
            return property;
        }
    }
    throw std::invalid_argument("no property " + name);
}

/// The appearance that a value of a property gives.
const NodeAppearance& appearanceBy(const NodeSummary& summary, const std::string& property,
                                   const std::string& value) {
    for (const NodeModes& modes : summary.modes) {
        for (const NodeMode& mode : modes.modes) {
            if (modes.property == property && propertyValueText(mode.value) == value) {
                return mode.appearance;
            }
        }
    }
    throw std::invalid_argument("no mode " + property + " " + value);
}

Names modesOf(const NodeSummary& summary) {
    Names names;
    for (const NodeModes& modes : summary.modes) {
        names.push_back(modes.property);
    }
    return names;
}

Names valuesOf(const NodeModes& modes) {
    Names values;
    for (const NodeMode& mode : modes.modes) {
        values.push_back(propertyValueText(mode.value));
    }
    return values;
}

bool shows(const NodeAppearance& appearance, const std::string& property) {
    const Names& visible = appearance.visibleProperties;
    return std::find(visible.begin(), visible.end(), property) != visible.end();
}

TEST(ListNodeTypes, GivesTheCoreTypesInTheOrderOfTheirLibrary) {
    const std::vector<NodeTypeSummary> expected = {
        {"CoreDefault", "Default", "Core", false, PATINA_CORENODES},
        {"CoreVertexColour", "Vertex Colour Set", "Core", true, PATINA_CORENODES},
        {"CoreUv", "Uv Set", "Core", true, PATINA_CORENODES},
        {"CoreTexture", "Texture", "Core", true, PATINA_CORENODES},
        {"CoreConstant", "Constant", "Core", true, PATINA_CORENODES},
        {"CoreMaths", "Maths", "Core", true, PATINA_CORENODES},
        {"CoreSwizzle", "Swizzle", "Core", true, PATINA_CORENODES},
        {"CoreLayerBlend", "Layer Blend", "Core", true, PATINA_CORENODES},
        {"CoreAnimatedUv", "Animated Uv", "Core", true, PATINA_CORENODES}};
    EXPECT_EQ(listNodeTypes(corePlugins()), expected);
}

TEST(ListNodeTypes, SortsByCategoryBeforeLibrary) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(testPlugin("hostile_nodes")); // without categories
    const std::vector<NodeTypeSummary> types = listNodeTypes(plugins);
    ASSERT_GT(types.size(), 11U);
    EXPECT_EQ(types[0].typeName, "Plain");
    EXPECT_EQ(types[1].typeName, "Interface");
    EXPECT_EQ(types[0].plugin, testPlugin("hostile_nodes"));
    EXPECT_EQ(types[types.size() - 9].typeName, "CoreDefault");
    EXPECT_EQ(types.back().typeName, "CoreAnimatedUv");
}

TEST(ListNodeTypes, GivesNothingWithoutPlugins) { EXPECT_TRUE(listNodeTypes(PluginSet()).empty()); }

TEST(SummariseNode, GivesWhatANewNodeShows) {
    const NodeSummary summary = summariseNode(corePlugins(), "CoreTexture");
    EXPECT_EQ(summary.type, (NodeTypeSummary{"CoreTexture", "Texture", "Core", true, PATINA_CORENODES}));
    EXPECT_EQ(summary.version, 0);
    EXPECT_EQ(summary.bodyColour, (std::array<float, 4>{1.0F, 1.0F, 0.5F, 0.9F}));
    EXPECT_EQ(summary.textColour, (std::array<float, 4>{0.0F, 0.0F, 0.0F, 1.0F}));
    EXPECT_EQ(summary.appearance.caption, "Texture");
    EXPECT_EQ(summary.appearance.inputs, Ports{fixedPort("in_uv", "uv", 2)});
    EXPECT_EQ(summary.appearance.outputs, Ports{fixedPort("out_colour", "colour", 3)});
    EXPECT_EQ(summary.appearance.visibleProperties,
              (Names{"Type", "Name", "Description", "Help Url", "Reference", "Texture Type", "Colour Type",
                     "Alpha", "sRGB", "Basic Colour"}));
}

TEST(SummariseNode, GivesPropertiesInOrderWithTheirTexts) {
    const NodeSummary summary = summariseNode(corePlugins(), "CoreUv");
    ASSERT_EQ(summary.properties.size(), 9U);
    const PropertySummary& type = summary.properties.front();
    EXPECT_EQ(type.name, "Type");
    EXPECT_EQ(type.kind, PropertyType::String);
    EXPECT_EQ(type.initial, PropertyValue(std::string("CoreUv")));
    EXPECT_EQ(type.help, "Type: the internal type of the node.");
    EXPECT_FALSE(type.editable);
    EXPECT_TRUE(type.visible);
    EXPECT_EQ(type.stringStyle, 0U);
    const PropertySummary& description = summary.properties[6];
    EXPECT_EQ(description.name, "Description");
    EXPECT_EQ(description.stringStyle, 1U);
    const PropertySummary& position = summary.properties[4];
    EXPECT_EQ(position.name, "PositionX");
    EXPECT_EQ(position.initial, PropertyValue(0.0F));
    EXPECT_FALSE(position.visible);
    const PropertySummary& primary = summary.properties.back();
    EXPECT_EQ(primary.name, "Primary");
    EXPECT_EQ(primary.kind, PropertyType::Bool);
    EXPECT_EQ(primary.initial, PropertyValue(false));
}

TEST(SummariseNode, GivesAllowedValues) {
    const NodeSummary texture = summariseNode(corePlugins(), "CoreTexture");
    EXPECT_EQ(propertyOf(texture, "Colour Type").allowedValues,
              (Names{"Colour", "Normal", "Component", "Vector", "DXT5 Normal"}));
    EXPECT_EQ(propertyOf(texture, "Colour Type").initial, PropertyValue(std::string("Colour")));
    EXPECT_EQ(propertyOf(texture, "Reference").allowedValues, Names{"CoreTexture"});
    EXPECT_EQ(propertyOf(texture, "Reference").initial, PropertyValue(std::string()));
    const NodeSummary constant = summariseNode(corePlugins(), "CoreConstant");
    EXPECT_EQ(propertyOf(constant, "Default Colour").initial,
              PropertyValue(std::array<float, 3>{0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(propertyOf(constant, "Component Count").initial, PropertyValue(std::int32_t{4}));
}

TEST(SummariseNode, VariesOnlyWhatChangesTheAppearance) {
    const struct {
        const char* type;
        Names properties;
    } rows[] = {
        {"CoreDefault", {}},
        {"CoreVertexColour", {"Colour Type", "Alpha"}},
        {"CoreUv", {}},
        {"CoreTexture", {"Texture Type", "Colour Type", "Alpha"}},
        {"CoreConstant", {"Constant Type", "Alpha", "Lock"}},
        {"CoreMaths", {"Function"}},
        {"CoreSwizzle", {"Vector Type", "Reverse"}},
        {"CoreLayerBlend", {"Mode"}},
        {"CoreAnimatedUv", {"Mode"}},
    };
    for (const auto& [type, properties] : rows) {
        EXPECT_EQ(modesOf(summariseNode(corePlugins(), type)), properties) << type;
    }
}

TEST(SummariseNode, GivesEveryValueOfAProperty) {
    const NodeSummary swizzle = summariseNode(corePlugins(), "CoreSwizzle");
    ASSERT_EQ(swizzle.modes.size(), 2U);
    EXPECT_EQ(valuesOf(swizzle.modes[0]), (Names{"Colour", "Uv", "Vector"}));
    EXPECT_EQ(valuesOf(swizzle.modes[1]), (Names{"No", "Yes"}));
    EXPECT_EQ(summariseNode(corePlugins(), "CoreMaths").modes.at(0).modes.size(), 15U);
}

TEST(SummariseNode, GivesThePortsOfEachMode) {
    const NodeSummary maths = summariseNode(corePlugins(), "CoreMaths");
    const NodeAppearance& lerp = appearanceBy(maths, "Function", "Lerp");
    EXPECT_EQ(lerp.caption, "Lerp");
    EXPECT_EQ(lerp.inputs, (Ports{freePort("in_value1", "in1"), freePort("in_value2", "in2"),
                                  fixedPort("in_blend", "blend", 1)}));
    EXPECT_EQ(lerp.outputs, Ports{freePort("out_value", "out")});
    EXPECT_TRUE(shows(lerp, "Default Blend"));
    EXPECT_FALSE(shows(lerp, "Default Min"));

    const NodeSummary swizzle = summariseNode(corePlugins(), "CoreSwizzle");
    const NodeAppearance& merging = appearanceBy(swizzle, "Reverse", "Yes");
    EXPECT_EQ(merging.inputs, (Ports{fixedPort("in_x", "red", 1), fixedPort("in_y", "green", 1),
                                     fixedPort("in_z", "blue", 1)}));
    EXPECT_EQ(merging.outputs, Ports{fixedPort("out_vec", "colour", 3)});
}

TEST(SummariseNode, VariesOnePropertyAtATime) {
    const NodeSummary constant = summariseNode(corePlugins(), "CoreConstant");
    // alpha has been tried and is off again
    EXPECT_EQ(
        appearanceBy(constant, "Constant Type", "Component").outputs,
        (Ports{fixedPort("red", "red", 1), fixedPort("green", "green", 1), fixedPort("blue", "blue", 1)}));
    EXPECT_EQ(appearanceBy(constant, "Alpha", "Yes").outputs,
              (Ports{fixedPort("read", "colour", 3), fixedPort("alpha", "alpha", 1)}));
    EXPECT_TRUE(shows(appearanceBy(constant, "Alpha", "Yes"), "Default Alpha"));
    EXPECT_FALSE(shows(appearanceBy(constant, "Lock", "Yes"), "Basic Colour"));
}

TEST(SummariseNode, SuggestsTheNearestTypeByEitherName) {
    const struct {
        const char* wanted;
        const char* suggested;
    } rows[] = {
        {"CoreMath", "CoreMaths"},         {"coretexture", "CoreTexture"},
        {"Layer Blend", "CoreLayerBlend"}, {"CoreVertexColor", "CoreVertexColour"},
        {"swizzel", "CoreSwizzle"},
    };
    for (const auto& [wanted, suggested] : rows) {
        EXPECT_EQ(hostErrorOf([name = wanted] { summariseNode(corePlugins(), name); }),
                  std::string("error: no plug-in offers the node type \"") + wanted + "\"; did you mean \"" +
                      suggested + "\"?");
    }
    EXPECT_EQ(hostErrorOf([] { summariseNode(PluginSet(), "CoreMaths"); }),
              "error: no plug-in offers the node type \"CoreMaths\"; no plug-in is loaded at all");
}

TEST(SummariseNode, NamesThePluginWhoseNodeFails) {
    PluginSet plugins;
    plugins.add(testPlugin("hostile_nodes"));
    for (const char* type : {"ThrowingUpdate", "ThrowingConstructor"}) {
        expectError(hostErrorOf([&] { summariseNode(plugins, type); }), testPlugin("hostile_nodes"),
                    {"node type \"", type, "\": the node is out of order"});
    }
    expectError(hostErrorOf([&] { summariseNode(plugins, "Nothing"); }), testPlugin("hostile_nodes"),
                {"node type \"Nothing\": cannot create \"Nothing\" node"});
}

TEST(SummariseNode, GivesNoValueOfNoKind) {
    PluginSet plugins;
    plugins.add(testPlugin("hostile_nodes"));
    EXPECT_EQ(propertyOf(summariseNode(plugins, "OddKind"), "Odd").initial, PropertyValue(std::string()));
}

TEST(Summaries, AreEqualInAllTheyHold) {
    const NodeTypeSummary type = {"T", "Type", "Core", true, "a.so"};
    EXPECT_TRUE(type == (NodeTypeSummary{"T", "Type", "Core", true, "a.so"}));
    for (const NodeTypeSummary& other : {NodeTypeSummary{"U", "Type", "Core", true, "a.so"},
                                         {"T", "Other", "Core", true, "a.so"},
                                         {"T", "Type", "Studio", true, "a.so"},
                                         {"T", "Type", "Core", false, "a.so"},
                                         {"T", "Type", "Core", true, "b.so"}}) {
        EXPECT_FALSE(type == other);
    }
    const PortSummary port = fixedPort("in", "label", 2);
    EXPECT_TRUE(port == fixedPort("in", "label", 2));
    for (const PortSummary& other :
         {fixedPort("out", "label", 2), fixedPort("in", "other", 2), fixedPort("in", "label", 3),
          freePort("in", "label"), PortSummary{"in", "label", 2, false}}) {
        EXPECT_FALSE(port == other);
    }
}

TEST(PropertyKindName, IsThatOfDocuments) {
    const struct {
        PropertyType kind;
        const char* name;
    } rows[] = {
        {PropertyType::Bool, "bool"},     {PropertyType::Integer, "integer"}, {PropertyType::Float, "float"},
        {PropertyType::String, "string"}, {PropertyType::Colour, "colour"},   {PropertyType::Enum, "enum"},
        {PropertyType::Node, "node"},
    };
    for (const auto& [kind, name] : rows) {
        EXPECT_STREQ(propertyKindName(kind), name);
    }
}

TEST(PropertyValueText, IsThatOfDocumentsInAnyLocale) {
    const testing::CommaLocale comma;
    EXPECT_EQ(propertyValueText(true), "Yes");
    EXPECT_EQ(propertyValueText(false), "No");
    EXPECT_EQ(propertyValueText(std::int32_t{-1234567}), "-1234567");
    EXPECT_EQ(propertyValueText(0.1F), "0.1");
    EXPECT_EQ(propertyValueText(16777217.0F), "16777216");
    EXPECT_EQ(propertyValueText(std::string("plain")), "plain");
    EXPECT_EQ(propertyValueText(std::array<float, 3>{0.25F, 0.0F, 1.0F}), "0.25, 0, 1");
}

} // namespace
} // namespace patina
