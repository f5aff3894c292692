#include "corenodes/core_node_support.h"
#include "corenodes/corenodes.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

// What holds for all node types, and for nodes of several types together.

namespace patina {
namespace {

using namespace testing;

struct TypeRow {
    const char* typeName;
    const char* staticTypeName;
    std::shared_ptr<MaterialNode> node;
};

template <typename Node>
TypeRow rowFor(const char* typeName) {
    return {typeName, Node::staticTypeName(), std::make_shared<Node>()};
}

std::vector<TypeRow> allTypes() {
    return {rowFor<ConstantNode>("CoreConstant"),
            rowFor<TextureNode>("CoreTexture"),
            rowFor<MathsNode>("CoreMaths"),
            rowFor<LayerBlendNode>("CoreLayerBlend"),
            rowFor<SwizzleNode>("CoreSwizzle"),
            rowFor<UvNode>("CoreUv"),
            rowFor<VertexColourNode>("CoreVertexColour"),
            rowFor<AnimatedUvNode>("CoreAnimatedUv")};
}

TEST(CoreNodes, KnowTheirTypes) {
    for (const TypeRow& row : allTypes()) {
        EXPECT_STREQ(row.staticTypeName, row.typeName);
        EXPECT_EQ(row.node->typeName(), row.typeName);
        row.node->setName("it");
        EXPECT_EQ(row.node->describe(), std::string("node \"it\" (") + row.typeName + ")");
    }
}

TEST(CoreNodes, StartWithoutResolutionAndLinks) {
    for (const TypeRow& row : allTypes()) {
        SCOPED_TRACE(row.typeName);
        EXPECT_EQ(row.node->resolvedComponentCount, 1U);
        EXPECT_EQ(row.node->resolvedPrecision, 3U);
        EXPECT_TRUE(row.node->inputLinks.empty());
        EXPECT_TRUE(row.node->outputLinks.empty());
    }
}

TEST(CoreNodes, KnowWhichOutputsAreConnected) {
    VertexColourNode node;
    EXPECT_FALSE(isOutputConnected(node, "out_colour"));
    node.outputPort("out_colour").connected = true;
    EXPECT_TRUE(isOutputConnected(node, "out_colour"));
    EXPECT_FALSE(isOutputConnected(node, "out_alpha"));
}

TEST(CoreNodes, ReportUnknownPorts) {
    for (const TypeRow& row : allTypes()) {
        row.node->setName("it");
        const std::string head = std::string("node \"it\" (") + row.typeName + ")";
        EXPECT_EQ(shaderErrorOf([&] { row.node->inputPort("nowhere"); }),
                  head + ": input port \"nowhere\" does not exist");
        EXPECT_EQ(shaderErrorOf([&] { row.node->outputPort("nowhere"); }),
                  head + ": output port \"nowhere\" does not exist");
        const std::string output = row.node->outputs.at(0).name;
        EXPECT_EQ(shaderErrorOf([&] { row.node->inputPort(output); }),
                  head + ": input port \"" + output + "\" does not exist");
    }
}

TEST(CoreNodes, RestoreEveryValueOfAnotherOfTheirType) {
    const auto sources = allTypes();
    const auto targets = allTypes();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        SCOPED_TRACE(sources[i].typeName);
        sources[i].node->setName("saved");
        for (const auto& item : *sources[i].node->properties) {
            if (item->kind == PropertyType::Enum) {
                item->setEnum(item->allowedValues.back());
            } else if (item->kind == PropertyType::Float) {
                item->setFloat(item->getFloat() + 0.5F);
            } else if (item->kind == PropertyType::Integer) {
                item->setInteger(2);
            } else if (item->kind == PropertyType::Bool) {
                item->setBool(!item->getBool());
            } else if (item->kind == PropertyType::Colour) {
                item->setColour(0.25F, 0.5F, 0.75F);
            }
        }
        targets[i].node->loadProperties(sources[i].node->properties);
        for (const auto& item : *targets[i].node->properties) {
            EXPECT_EQ(valueText(*item), valueText(*sources[i].node->properties->find(item->name)));
        }
        targets[i].node->updateFromProperties(nullptr);
        sources[i].node->updateFromProperties(nullptr);
        EXPECT_EQ(targets[i].node->caption(), sources[i].node->caption());
        EXPECT_EQ(visibleProperties(*targets[i].node), visibleProperties(*sources[i].node));
        EXPECT_EQ(editableProperties(*targets[i].node), editableProperties(*sources[i].node));
    }
}

TEST(CoreNodes, RefuseValuesOfALaterVersion) {
    for (const TypeRow& row : allTypes()) {
        const auto saved = std::make_shared<PropertySet>();
        saved->version = 1;
        const auto savedName = makeProperty("Name");
        savedName->setString("saved");
        saved->add(savedName);
        const std::string name = row.node->name();
        EXPECT_EQ(shaderErrorOf([&] { row.node->loadProperties(saved); }),
                  std::string("Cannot convert \"") + row.typeName +
                      "\" version 1 properties into version 0 properties. Are you running with an old DLL?");
        EXPECT_EQ(row.node->name(), name);
        saved->version = 0;
        row.node->loadProperties(saved);
        EXPECT_EQ(row.node->name(), "saved");
    }
}

TEST(CoreNodes, KeepTheirPortsThroughFurtherUpdates) {
    for (const TypeRow& row : allTypes()) {
        SCOPED_TRACE(row.typeName);
        const std::size_t inputs = row.node->inputs.size();
        const std::size_t outputs = row.node->outputs.size();
        row.node->updateFromProperties(nullptr);
        row.node->updateFromProperties(row.node.get());
        EXPECT_EQ(row.node->inputs.size(), inputs);
        EXPECT_EQ(row.node->outputs.size(), outputs);
    }
}

TEST(CoreNodes, JoinThroughTheRecordsOfTheirConnections) {
    UvNode uv;
    TextureNode texture;
    texture.setName("diffuse");
    ConstantNode tint;
    tint.setName("tint");
    MathsNode product;
    SwizzleNode split;
    Connections connections;
    const auto coordinate = connections.between(uv, "read", texture, "in_uv");
    const auto colour = connections.between(texture, "out_colour", product, "in_value1");
    const auto factor = connections.between(tint, "read", product, "in_value2");
    const auto result = connections.between(product, "out_value", split, "in_vec");
    MaterialNode* const nodes[] = {&split, &product, &tint, &texture, &uv};
    GraphGenerator generator;
    for (MaterialNode* node : nodes) {
        resolve(*node, floatPrecision, 3);
        node->generateCode(generator);
    }
    EXPECT_EQ(nodeNames(generator),
              (Texts{"swizzleCode", "mathsCode", "tint", "textureCode", "diffuse", "Uv"}));
    EXPECT_EQ(edges(generator), Texts{"diffuse#4.read -> textureCode#3.in_sampler"});
    EXPECT_EQ(generator.portLinks.size(), 4U);
    EXPECT_EQ(portLink(generator, coordinate), "Uv#5.read -> textureCode#3.in_uv");
    EXPECT_EQ(portLink(generator, colour), "textureCode#3.out_colour -> mathsCode#1.in_value1");
    EXPECT_EQ(portLink(generator, factor), "tint#2.read -> mathsCode#1.in_value2");
    EXPECT_EQ(portLink(generator, result), "mathsCode#1.out_value -> swizzleCode#0.in_vec");
    EXPECT_EQ(generator.graph->nodes[1]->code, "\tout_value = in_value1 * in_value2;\n");
}

} // namespace
} // namespace patina
