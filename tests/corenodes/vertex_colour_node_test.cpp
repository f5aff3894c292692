#include "corenodes/vertex_colour_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

const Texts allProperties = {"Colour Type", "Alpha"};
const Texts alphaLocked = {"Colour Type"};

TEST(VertexColourNode, HasItsProperties) {
    const VertexColourNode node;
    expectProperties(
        node, "CoreVertexColour", "VertexColour",
        {{"Colour Type",
          PropertyType::Enum,
          "Colour",
          "Colour Type: the colour outputs to present from this node.",
          {"Colour", "Component", "Vector"}},
         {"Alpha", PropertyType::Bool, "false", "Alpha: check this box in order to use vertex alpha."}});
    expectColours(node, 1.0F, 0.8F, 1.0F);
}

struct Configuration {
    const char* type;
    bool alpha;
    bool alphaAfterwards;
    Texts editable;
    std::vector<PortRow> outputs;
};

const std::vector<Configuration> configurations = {
    {"Colour", false, false, allProperties, {{"out_colour", "colour", 3}}},
    {"Colour", true, true, allProperties, {{"out_colour", "colour", 3}, {"out_alpha", "alpha", 1}}},
    {"Component",
     false,
     false,
     allProperties,
     {{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}}},
    {"Component",
     true,
     true,
     allProperties,
     {{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}, {"out_alpha", "alpha", 1}}},
    {"Vector", false, true, alphaLocked, {{"out_colour", "rgba", 4}}},
    {"Vector", true, true, alphaLocked, {{"out_colour", "rgba", 4}}},
};

void configure(VertexColourNode& node, const char* type, bool alpha) {
    property(node, "Colour Type").setEnum(type);
    property(node, "Alpha").setBool(alpha);
    node.updateFromProperties(nullptr);
}

void expectConfiguration(const VertexColourNode& node, const Configuration& row) {
    SCOPED_TRACE(row.type);
    SCOPED_TRACE(row.alpha);
    EXPECT_TRUE(node.inputs.empty());
    expectPorts(node.outputs, row.outputs);
    EXPECT_EQ(property(node, "Alpha").getBool(), row.alphaAfterwards);
    EXPECT_EQ(editableProperties(node), row.editable);
    EXPECT_EQ(visibleProperties(node), allProperties);
    EXPECT_TRUE(node.generatesBinding());
}

TEST(VertexColourNode, StartsAsAColourWithoutAlpha) {
    expectConfiguration(VertexColourNode(), configurations[0]);
}

TEST(VertexColourNode, RebuildsPortsAndFlags) {
    for (const Configuration& row : configurations) {
        VertexColourNode node;
        configure(node, row.type, row.alpha);
        expectConfiguration(node, row);
    }
}

TEST(VertexColourNode, ForgetsTheConfigurationBefore) {
    VertexColourNode node;
    for (const Configuration& before : configurations) {
        for (const Configuration& row : configurations) {
            configure(node, before.type, before.alpha);
            configure(node, row.type, row.alpha);
            expectConfiguration(node, row);
        }
    }
}

TEST(VertexColourNode, LeavesAlphaCheckedAfterAVector) {
    VertexColourNode node;
    property(node, "Colour Type").setEnum("Vector");
    node.updateFromProperties(nullptr);
    property(node, "Colour Type").setEnum("Component");
    node.updateFromProperties(nullptr);
    expectConfiguration(node, configurations[3]);
}

TEST(VertexColourNode, TakesAnUnknownTypeForComponents) {
    VertexColourNode node;
    setUnknownEnum(node, "Colour Type");
    node.updateFromProperties(nullptr);
    expectConfiguration(node, configurations[2]);
}

TEST(VertexColourNode, StartsItsPortsAfresh) {
    VertexColourNode node;
    resolve(node, floatPrecision);
    node.outputPort("out_colour").connected = true;
    node.updateFromProperties(&node);
    expectConfiguration(node, configurations[0]);
}

TEST(VertexColourNode, IsCaptionedWithItsName) {
    VertexColourNode node;
    EXPECT_EQ(node.caption(), "VertexColour");
    node.setName("colourSet1");
    EXPECT_EQ(node.caption(), "colourSet1");
}

TEST(VertexColourBindings, NameTheColourSet) {
    for (const Configuration& row : configurations) {
        VertexColourNode node;
        node.setName("colourSet1");
        configure(node, row.type, row.alpha);
        const auto bindings = bindingsOf(node);
        ASSERT_EQ(bindings.size(), 1U);
        Binding& binding = *bindings[0];
        EXPECT_NE(dynamic_cast<StringBinding*>(&binding), nullptr);
        EXPECT_EQ(dynamic_cast<TextureBinding*>(&binding), nullptr);
        EXPECT_EQ(binding.kind, BindingKind::Colour);
        EXPECT_EQ(binding.name, "colourSet1");
        EXPECT_EQ(binding.componentCount(), 1U);
        EXPECT_EQ(binding.uiType, UiType::VtxColourSet);
        EXPECT_EQ(binding.streamType, "u8n");
        EXPECT_EQ(binding.datasetModifiers, "");
        EXPECT_FALSE(binding.hasDefault);
        EXPECT_FALSE(binding.basicColour);
        EXPECT_EQ(annotations(binding), Texts{"tag=colourSet1"});
    }
}

TEST(VertexColourBindings, CopyTheDescriptiveTexts) {
    VertexColourNode node;
    describeNode(node);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    expectDescribed(*bindings[0]);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=VertexColour", "desc=How it looks.", "helpUrl=https://example.org/surface"}));
}

TEST(VertexColourBindings, GoToTheEndOfTheCollection) {
    VertexColourNode node;
    BindingCollection collection;
    node.addBindings(collection);
    collection.sorted = true;
    node.setName("second");
    node.addBindings(collection);
    ASSERT_EQ(collection.bindings.size(), 2U);
    EXPECT_EQ(collection.bindings[1]->name, "second");
    EXPECT_FALSE(collection.sorted);
}

struct CodeRow {
    const char* type;
    bool alpha;
    bool alphaConnected;
    std::uint32_t width;
    std::vector<std::pair<std::uint32_t, const char*>> outputs; ///< width and name
    const char* code;
};

const std::vector<CodeRow> codeRows = {
    {"Colour", false, false, 3, {{3, "out_colour"}}, "\tout_colour = in_colour.xyz;\n"},
    {"Colour", true, false, 3, {{3, "out_colour"}}, "\tout_colour = in_colour.xyz;\n"},
    {"Colour",
     true,
     true,
     4,
     {{3, "out_colour"}, {1, "out_alpha"}},
     "\tout_colour = in_colour.xyz;\n\tout_alpha = in_colour.w;\n"},
    {"Component",
     false,
     false,
     3,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}},
     "\tout_red = in_colour.x;\n\tout_green = in_colour.y;\n\tout_blue = in_colour.z;\n"},
    {"Component",
     true,
     false,
     3,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}},
     "\tout_red = in_colour.x;\n\tout_green = in_colour.y;\n\tout_blue = in_colour.z;\n"},
    {"Component",
     true,
     true,
     4,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}, {1, "out_alpha"}},
     "\tout_red = in_colour.x;\n\tout_green = in_colour.y;\n\tout_blue = in_colour.z;\n"
     "\tout_alpha = in_colour.w;\n"},
    {"Vector", false, false, 4, {{4, "out_colour"}}, "\tout_colour = in_colour;\n"},
};

TEST(VertexColourCode, TakesTheVaryingApart) {
    for (std::size_t i = 0; i < codeRows.size(); ++i) {
        const CodeRow& row = codeRows[i];
        for (const Precision& precision : precisions) {
            SCOPED_TRACE(i);
            SCOPED_TRACE(precision.word);
            VertexColourNode node;
            node.setName("colourSet1");
            configure(node, row.type, row.alpha);
            if (row.alphaConnected) {
                node.outputPort("out_alpha").connected = true;
            }
            resolve(node, precision);
            const std::string varyingType = vectorText(precision.word, row.width);
            Texts outputs;
            for (const auto& [width, name] : row.outputs) {
                outputs.push_back(vectorText(precision.word, width) + " " + name);
            }
            const GraphGenerator generator = generated(node);
            EXPECT_EQ(nodeNames(generator), (Texts{"colourCode", "colourSet1"}));
            expectFunction(
                generator, 0,
                {"colourCode", ExecutionLevel::Automatic, {varyingType + " in_colour"}, outputs, row.code});
            expectParameter(generator, 1, NodeKind::VaryingParameter, "colourSet1", varyingType);
            EXPECT_EQ(edges(generator), Texts{"colourSet1#1.read -> colourCode#0.in_colour"});
        }
    }
}

TEST(VertexColourCode, TakesTheVaryingsTypeFromTheNodeAndTheOutputsFromThePorts) {
    VertexColourNode node;
    resolve(node, floatPrecision);
    node.resolvedPrecision = 3;
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), (Texts{"colourCode", "VertexColour"}));
    expectFunction(generator, 0,
                   {"colourCode",
                    ExecutionLevel::Automatic,
                    {"half3 in_colour"},
                    {"float3 out_colour"},
                    "\tout_colour = in_colour.xyz;\n"});
    expectParameter(generator, 1, NodeKind::VaryingParameter, "VertexColour", "half3");
}

TEST(VertexColourCode, LinksItsPortsToTheFunction) {
    VertexColourNode node;
    configure(node, "Component", true);
    Connections connections;
    const auto alpha = connections.outOf(node, "out_alpha");
    const auto red = connections.outOf(node, "out_red");
    const auto alsoRed = connections.outOf(node, "out_red");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 3U);
    EXPECT_EQ(portLink(generator, alpha), "colourCode#0.out_alpha -> none");
    EXPECT_EQ(portLink(generator, red), "colourCode#0.out_red -> none");
    EXPECT_EQ(portLink(generator, alsoRed), "colourCode#0.out_red -> none");
}

TEST(VertexColourCode, NeedsAResolvedPrecision) {
    for (const char* type : {"Colour", "Component", "Vector"}) {
        VertexColourNode node;
        configure(node, type, false);
        GraphGenerator generator;
        EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
        EXPECT_TRUE(isUntouched(generator));
    }
}

TEST(VertexColourCode, NeedsAValidName) {
    VertexColourNode node;
    node.setName("colour set");
    resolve(node, floatPrecision);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "parameter name \"colour set\" is not a valid Cg variable name");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(VertexColourCode, TakesItsNameFirst) {
    VertexColourNode node;
    node.nameProperty->setInteger(1);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "cannot read string value from non-string property \"Name\"");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(VertexColourCode, IsAddedAndConnectedBeforeItIsLinked) {
    VertexColourNode node;
    resolve(node, floatPrecision);
    node.outputLinks.push_back(std::make_shared<NodeConnection>()); // expired
    GraphGenerator generator;
    EXPECT_THROW(node.generateCode(generator), std::bad_weak_ptr);
    EXPECT_EQ(nodeNames(generator), (Texts{"colourCode", "VertexColour"}));
    EXPECT_EQ(edges(generator), Texts{"VertexColour#1.read -> colourCode#0.in_colour"});
}

TEST(VertexColourCode, LeavesOutAnAlphaThatWasTurnedOffSinceItsPortWasConnected) {
    VertexColourNode node;
    configure(node, "Colour", true);
    node.outputPort("out_alpha").connected = true;
    resolve(node, floatPrecision);
    property(node, "Alpha").setBool(false);
    const GraphGenerator generator = generated(node);
    expectFunction(generator, 0,
                   {"colourCode",
                    ExecutionLevel::Automatic,
                    {"float3 in_colour"},
                    {"float3 out_colour"},
                    "\tout_colour = in_colour.xyz;\n"});
}

} // namespace
} // namespace patina
