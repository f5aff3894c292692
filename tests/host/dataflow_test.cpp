#include "tests/host/host_checks.h"

#include "shadergraph/shadergraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using testing::built;
using testing::connection;
using testing::expectErrorAt;
using testing::exportError;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

/// A material and its dataflow, which must not outlive it.
struct Joined {
    explicit Joined(const std::string& body) : material(built(body)) {
        resolveMaterial(material);
        flow = joinGraph(material, generateGraph(material));
    }
    Material material;
    Dataflow flow;

    /// The names of the flow's nodes in order.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const DataflowNode& entry : flow.nodes) {
            names.push_back(entry.generated->name);
        }
        return names;
    }
    std::size_t count(const std::string& name) const {
        const auto all = names();
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), name));
    }
};

using Names = std::vector<std::string>;

const std::string scalar =
    node("s", "CoreConstant", property("Constant Type", "enum", "Scalar") + property("Name", "string", "S"));
const std::string colour = node("c", "CoreConstant", property("Name", "string", "C"));

TEST(JoinGraph, PutsSourcesBeforeWhatReadsThem) {
    const Joined joined(maths("last", "Invert") + node("t", "CoreTexture") + node("uv", "CoreUv") +
                        connection("uv", "read", "t", "in_uv") +
                        connection("t", "out_colour", "last", "in_value1") +
                        output("colour", "last", "out_value"));
    EXPECT_EQ(joined.flow.nodes.size(), 4U);
    for (std::size_t i = 0; i < joined.flow.nodes.size(); ++i) {
        for (const ValueSource& input : joined.flow.nodes[i].inputs) {
            EXPECT_LT(input.node, i);
        }
        EXPECT_EQ(joined.flow.nodes[i].inputs.size(), joined.flow.nodes[i].generated->inputs.size());
    }
    EXPECT_EQ(joined.flow.port(joined.flow.colour).name, "out_value");
    EXPECT_EQ(joined.material.items.at(joined.flow.nodes[joined.flow.colour.node].owner).id, "last");
    EXPECT_FALSE(joined.flow.hasAlpha);
}

TEST(JoinGraph, LeavesOutWhatNoOutputNeeds) {
    const Joined joined(
        scalar + colour + maths("used", "Invert") + maths("unused", "Invert") + maths("below", "Invert") +
        connection("c", "read", "used", "in_value1") + connection("s", "read", "unused", "in_value1") +
        connection("used", "out_value", "below", "in_value1") + output("colour", "used", "out_value"));
    EXPECT_EQ(joined.names(), (Names{"C", "mathsCode"}));
}

TEST(JoinGraph, TakesAValueStraightFromAParameter) {
    const Joined joined(colour + scalar + output("colour", "c", "read") + output("alpha", "s", "read"));
    EXPECT_EQ(joined.flow.nodes.size(), 2U);
    EXPECT_TRUE(joined.flow.hasAlpha);
    EXPECT_EQ(joined.flow.nodes[joined.flow.colour.node].generated->name, "C");
    EXPECT_EQ(joined.flow.nodes[joined.flow.alpha.node].generated->name, "S");
}

TEST(JoinGraph, SharesAConversionOfAValueToAType) {
    // three readers as half3 of a half scalar, and one as half
    const Joined joined(
        scalar + colour + node("a", "CoreLayerBlend") + node("b", "CoreLayerBlend") + maths("m", "Invert") +
        connection("s", "read", "a", "in_value1") + connection("c", "read", "a", "in_value2") +
        connection("a", "out_value", "b", "in_value1") + connection("s", "read", "b", "in_value2") +
        connection("s", "read", "m", "in_value1") + output("colour", "b", "out_value") +
        output("alpha", "m", "out_value"));
    // free inputs keep the width of their source: no conversion at all
    EXPECT_EQ(joined.count("promoteAndSplat"), 0U);
}

TEST(JoinGraph, ConvertsOncePerValueAndType) {
    // the swizzles fix their inputs at three and two components
    const auto split = [](const std::string& id, const std::string& type) {
        return node(id, "CoreSwizzle", property("Vector Type", "enum", type));
    };
    const Joined joined(scalar + split("a", "Colour") + split("b", "Colour") + split("c", "Uv") +
                        maths("m", "Clamp") + connection("s", "read", "a", "in_vec") +
                        connection("s", "read", "b", "in_vec") + connection("s", "read", "c", "in_vec") +
                        connection("a", "out_x", "m", "in_value1") + connection("b", "out_x", "m", "in_min") +
                        connection("c", "out_x", "m", "in_max") + output("colour", "m", "out_value"));
    EXPECT_EQ(joined.count("promoteAndSplat"), 2U);
    EXPECT_EQ(joined.count("swizzleCode"), 3U);
    for (const DataflowNode& entry : joined.flow.nodes) {
        if (entry.generated->name == "promoteAndSplat") {
            EXPECT_EQ(joined.flow.nodes[entry.inputs[0].node].generated->name, "S");
        }
    }
}

TEST(JoinGraph, ConvertsPrecisionsToo) {
    // the uv is float for the texture and half for the maths
    const Joined joined(node("uv", "CoreUv") + node("t", "CoreTexture") + maths("m", "Dot Product") +
                        node("k", "CoreSwizzle", property("Vector Type", "enum", "Uv")) +
                        connection("uv", "read", "t", "in_uv") + connection("uv", "read", "k", "in_vec") +
                        connection("t", "out_colour", "m", "in_value1") +
                        connection("k", "out_x", "m", "in_value2") + output("colour", "m", "out_value"));
    ASSERT_EQ(joined.count("promoteAndSplat"), 1U);
    for (const DataflowNode& entry : joined.flow.nodes) {
        if (entry.generated->name == "promoteAndSplat") {
            EXPECT_EQ(typeText(entry.generated->inputs[0].type), "float2");
            EXPECT_EQ(typeText(entry.generated->outputs[0].type), "half2");
        }
    }
}

TEST(JoinGraph, NamesBothNodesOfTypesThatDoNotConvert) {
    expectErrorAt(exportError(node("v", "CoreVertexColour", property("Colour Type", "enum", "Vector")) +
                              node("k", "CoreSwizzle") + "\n" + connection("v", "out_colour", "k", "in_vec") +
                              output("colour", "k", "out_x")),
                  5,
                  {"node \"v\" (\"VertexColour\")", "\"out_colour\"", "node \"k\" (\"Swizzle\")",
                   "\"in_vec\"", "cannot convert half4 to half3"});
}

TEST(JoinGraph, RefusesMissingUnknownAndMisshapenOutputs) {
    const std::string uv = node("uv", "CoreUv");
    const std::string rgba = node("v", "CoreVertexColour", property("Colour Type", "enum", "Vector"));
    testing::expectError(exportError(colour), "sample.xml:1", {"\"colour\""});
    testing::expectError(exportError(colour + scalar + output("alpha", "s", "read")), "sample.xml:1",
                         {"\"colour\""});
    expectErrorAt(exportError(colour + output("colour", "c", "read") + output("fog", "c", "read")), 4,
                  {"\"fog\""});
    expectErrorAt(exportError(colour + output("Colour", "c", "read")), 3, {"\"Colour\""});
    expectErrorAt(exportError(uv + output("colour", "uv", "read")), 3,
                  {"\"colour\"", "node \"uv\" (\"Uv\")", "\"read\"", "half2"});
    expectErrorAt(exportError(rgba + output("colour", "v", "out_colour")), 3, {"half4"});
    expectErrorAt(exportError(colour + output("colour", "c", "read") + output("alpha", "c", "read")), 4,
                  {"\"alpha\"", "node \"c\" (\"C\")", "half3"});
}

TEST(ValueSource, IsANodeAndAPort) {
    const ValueSource source = {1, 2};
    EXPECT_TRUE(source == (ValueSource{1, 2}));
    EXPECT_FALSE(source == (ValueSource{2, 2}));
    EXPECT_FALSE(source == (ValueSource{1, 1}));
}

/// A function with one input and one output.
std::shared_ptr<GeneratorNode> functionOf(const GeneratorPort& input, const GeneratorPort& output,
                                          const std::string& name = "f", const std::string& code = "{}") {
    auto function = std::make_shared<GeneratorNode>();
    function->name = name;
    function->code = code;
    function->inputs = {input};
    function->outputs = {output};
    return function;
}

TEST(FirstOfEachFunction, TellsApartWhatIsNotTheSameText) {
    constexpr ShaderType one = {ComponentType::Float, 1, 1, 1};
    constexpr ShaderType two = {ComponentType::Float, 1, 1, 2};
    const GeneratorPort input = {"in", one};
    const GeneratorPort output = {"out", one};
    const auto first = functionOf(input, output);
    const auto same = functionOf(input, output);
    same->level = ExecutionLevel::Vertex;
    auto wider = functionOf(input, output);
    wider->inputs.push_back({"more", one});
    std::vector<DataflowNode> nodes;
    for (const auto& function :
         {first, same, functionOf({"other", one}, output), functionOf({"in", two}, output),
          functionOf(input, {"other", one}), functionOf(input, {"out", two}), wider,
          functionOf(input, output, "g"), functionOf(input, output, "f", "{ }"), same}) {
        nodes.push_back({function, 0, {}});
    }
    EXPECT_EQ(firstOfEachFunction(nodes), (std::vector<std::size_t>{0, 0, 2, 3, 4, 5, 6, 7, 8, 0}));
}

TEST(GenerateGraph, NamesTheNodeThatCannotExport) {
    expectErrorAt(exportError("\n" + node("t", "CoreTexture") + output("colour", "t", "out_colour")), 3,
                  {"node \"t\" (\"Texture\")",
                   "node \"Texture\" (CoreTexture): please attach a texture coordinate before exporting"});
    expectErrorAt(exportError(maths("f", "Fresnel") + output("colour", "f", "out_value")), 2,
                  {"node \"f\" (\"Maths\")",
                   "a value needs to be supplied to the \"facing\" port on the Fresnel maths node"});
    expectErrorAt(exportError(node("c", "CoreConstant", property("Name", "string", "my tint")) +
                              output("colour", "c", "read")),
                  2,
                  {"node \"c\" (\"my tint\")", "parameter name \"my tint\" is not a valid Cg variable name"});
}

TEST(GenerateGraph, KnowsTheOwnerOfEveryNode) {
    Material material =
        built(node("v", "CoreVertexColour") + maths("m", "Invert") +
              connection("v", "out_colour", "m", "in_value1") + output("colour", "m", "out_value"));
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    EXPECT_EQ(graph.owners, (std::vector<std::size_t>{0, 0, 1}));
    EXPECT_EQ(graph.generator.graph->nodes.size(), 3U);
}

} // namespace
} // namespace patina
