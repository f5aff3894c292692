#include "corenodes/uv_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <memory>

namespace patina {
namespace {

using namespace testing;

TEST(UvNode, HasItsProperties) {
    const UvNode node;
    expectProperties(node, "CoreUv", "Uv",
                     {{"Primary", PropertyType::Bool, "false",
                       "Primary: this box can be checked to hint this uv for use when generating tangents "
                       "and binormals. Most of the time this is not necessary to set manually and should be "
                       "left unchecked."}});
    expectColours(node, 0.8F, 0.8F, 1.0F);
    EXPECT_EQ(visibleProperties(node), Texts{"Primary"});
    EXPECT_EQ(editableProperties(node), Texts{"Primary"});
}

TEST(UvNode, HasOneOutputWhateverItsProperties) {
    UvNode node;
    for (const bool primary : {false, true}) {
        property(node, "Primary").setBool(primary);
        node.updateFromProperties(nullptr);
        EXPECT_TRUE(node.inputs.empty());
        expectPorts(node.outputs, {{"read", "uv", 2}});
        EXPECT_EQ(visibleProperties(node), Texts{"Primary"});
        EXPECT_TRUE(node.generatesBinding());
    }
}

TEST(UvNode, IsCaptionedWithItsName) {
    UvNode node;
    EXPECT_EQ(node.caption(), "Uv");
    node.setName("map1");
    EXPECT_EQ(node.caption(), "map1");
}

TEST(UvNode, IsNotWidenedByResolution) {
    UvNode node;
    resolve(node, floatPrecision);
    EXPECT_EQ(node.outputPort("read").getComponentCount(), 2U);
}

TEST(UvBindings, NameTheUvSet) {
    UvNode node;
    node.setName("map1");
    property(node, "Primary").setBool(true);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    Binding& binding = *bindings[0];
    EXPECT_NE(dynamic_cast<StringBinding*>(&binding), nullptr);
    EXPECT_EQ(dynamic_cast<TextureBinding*>(&binding), nullptr);
    EXPECT_EQ(binding.kind, BindingKind::Uv);
    EXPECT_EQ(binding.name, "map1");
    EXPECT_EQ(binding.componentCount(), 1U);
    EXPECT_EQ(binding.uiType, UiType::UvSet);
    EXPECT_EQ(binding.streamType, "f32");
    EXPECT_EQ(binding.datasetModifiers, "oneminus|v");
    EXPECT_FALSE(binding.hasDefault);
    EXPECT_EQ(annotations(binding), Texts{"tag=map1"});
}

TEST(UvBindings, CopyTheDescriptiveTexts) {
    UvNode node;
    describeNode(node);
    const auto bindings = bindingsOf(node);
    ASSERT_EQ(bindings.size(), 1U);
    expectDescribed(*bindings[0]);
    EXPECT_EQ(annotations(*bindings[0]),
              (Texts{"tag=Uv", "desc=How it looks.", "helpUrl=https://example.org/surface"}));
}

TEST(UvBindings, GoToTheEndOfTheCollection) {
    UvNode node;
    BindingCollection collection;
    node.addBindings(collection);
    collection.sorted = true;
    node.setName("second");
    node.addBindings(collection);
    ASSERT_EQ(collection.bindings.size(), 2U);
    EXPECT_EQ(collection.bindings[1]->name, "second");
    EXPECT_FALSE(collection.sorted);
}

TEST(UvCode, IsAVaryingParameterAlone) {
    for (const Precision& precision : precisions) {
        SCOPED_TRACE(precision.word);
        UvNode node;
        node.setName("map1");
        Connections connections;
        const auto first = connections.outOf(node, "read");
        const auto second = connections.outOf(node, "read");
        resolve(node, precision);
        const GraphGenerator generator = generated(node);
        EXPECT_EQ(nodeNames(generator), Texts{"map1"});
        EXPECT_EQ(edges(generator), Texts{});
        expectParameter(generator, 0, NodeKind::VaryingParameter, "map1", precision.word + "2");
        EXPECT_EQ(generator.portLinks.size(), 2U);
        EXPECT_EQ(portLink(generator, first), "map1#0.read -> none");
        EXPECT_EQ(portLink(generator, second), "map1#0.read -> none");
    }
}

TEST(UvCode, TakesItsTypeFromThePort) {
    UvNode node;
    resolve(node, floatPrecision);
    node.resolvedPrecision = 3;
    expectParameter(generated(node), 0, NodeKind::VaryingParameter, "Uv", "float2");
}

TEST(UvCode, IsAddedAgainByASecondPass) {
    UvNode node;
    resolve(node, halfPrecision);
    GraphGenerator generator;
    node.generateCode(generator);
    node.generateCode(generator);
    EXPECT_EQ(nodeNames(generator), (Texts{"Uv", "Uv"}));
}

TEST(UvCode, NeedsAResolvedPort) {
    UvNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    resolve(node, floatPrecision);
    node.outputPort("read").componentCountKnown = false;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown component count");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(UvCode, NeedsAValidName) {
    UvNode node;
    resolve(node, floatPrecision);
    GraphGenerator generator;
    for (const char* name : {"", "1st", "map 1", "map-1"}) {
        node.setName(name);
        EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
                  std::string("parameter name \"") + name + "\" is not a valid Cg variable name");
    }
    EXPECT_TRUE(isUntouched(generator));
}

TEST(UvCode, TakesItsNameBeforeItsPort) {
    UvNode node;
    node.nameProperty->setInteger(1);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "cannot read string value from non-string property \"Name\"");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(UvCode, IsAddedBeforeItIsLinked) {
    UvNode node;
    resolve(node, floatPrecision);
    node.outputLinks.push_back(std::make_shared<NodeConnection>()); // expired
    GraphGenerator generator;
    EXPECT_THROW(node.generateCode(generator), std::bad_weak_ptr);
    EXPECT_EQ(nodeNames(generator), Texts{"Uv"});
}

} // namespace
} // namespace patina
