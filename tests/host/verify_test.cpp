#include "tests/host/host_checks.h"

#include "shadergraph/shadergraph.h"

#include <gtest/gtest.h>

#include <string>

namespace patina {
namespace {

using testing::connection;
using testing::expectError;
using testing::expectErrorAt;
using testing::exportError;
using testing::hostErrorOf;
using testing::node;
using testing::noError;
using testing::output;
using testing::property;

class ItemNode : public MaterialNode {
public:
    ItemNode() : MaterialNode("Item") {}
    void generateCode(GraphGenerator& /*generator*/) override {}
};

/// What is said of the function of a node in line 7.
std::string verdictOn(FunctionBuilder& builder) {
    Material material;
    material.file = "flow.xml";
    MaterialItem item;
    item.id = "a";
    item.node = std::make_shared<ItemNode>();
    item.line = 7;
    material.items.push_back(item);
    Dataflow flow;
    flow.nodes.push_back({builder.makeNode(ExecutionLevel::Automatic, "f"), 0, {}});
    flow.functions = firstOfEachFunction(flow.nodes);
    return hostErrorOf([&] { verifyCode(material, flow); });
}

/// What is said of a function with one input and that code.
std::string verdictOn(const std::string& code, const std::string& input = "in_value") {
    FunctionBuilder builder;
    builder.addInput({ComponentType::Float, 1, 1, 1}, input);
    builder.appendCode(code);
    return verdictOn(builder);
}

TEST(VerifyCode, RefusesConstantsThatAreNoNumbers) {
    for (const char* code : {"\tfloat x = float( inf );\n", "\tfloat x = float( -inf );\n",
                             "\tfloat x = -inf;\n", "\tfloat2 x = float2( 1, inf );\n", "\treturn inf;\n",
                             "inf", "\tx = 1.0*inf/2.0;\n", "/*/ */ inf", "/**/ inf", "/* */*/ inf"}) {
        expectError(verdictOn(code), "flow.xml:7", {"node \"a\" (\"Item\")", "\"inf\"", "zero"});
    }
    for (const char* code : {"\tfloat x = float( nan );\n", "\tfloat x = float( -nan );\n"}) {
        expectError(verdictOn(code), "flow.xml:7", {"node \"a\" (\"Item\")", "\"nan\""});
    }
}

TEST(VerifyCode, LeavesEverythingElseAlone) {
    for (const char* code :
         {"", "\tfloat x = information;\n", "\tfloat inf2 = 1.0;\n", "\tfloat _inf = 1.0;\n",
          "\tfloat inf = 1.0;\n\tx = inf;\n", "\tx = 1.0; // never inf\n", "\tx = 1.0; /* ( inf ) */\n",
          "\tx = v.inf;\n", "/* unfinished inf", "// inf", "/*/ inf */", "/*/ inf"}) {
        EXPECT_EQ(verdictOn(code), noError) << code;
    }
    EXPECT_EQ(verdictOn("\tx = inf;\n", "inf"), noError);
    EXPECT_EQ(verdictOn("{\tx[0] = ~y;\n}"), noError);
    FunctionBuilder builder;
    builder.addOutput({ComponentType::Float, 1, 1, 1}, "inf");
    builder.appendCode("\tinf = 1.0;\n\tx = inf;\n");
    EXPECT_EQ(verdictOn(builder), noError) << "an output";
}

TEST(VerifyCode, RefusesPortsOfReservedNames) {
    EXPECT_EQ(
        verdictOn("", "half"),
        "flow.xml:7: error: node \"a\" (\"Item\"): function \"f\" (1/0/*) has a port \"half\", and that "
        "name is reserved in Cg or by the shader framework; report this to the author of its plug-in");
    for (const char* name : {"in", "out", "uint3", "lerp", "tex2D", "__value", "QelSrgbToLinear"}) {
        expectError(verdictOn("", name), "flow.xml:7", {"node \"a\" (\"Item\")", name});
    }
    FunctionBuilder builder;
    builder.addOutput({ComponentType::Float, 1, 1, 1}, "worldViewProjection");
    expectError(verdictOn(builder), "flow.xml:7",
                {"node \"a\" (\"Item\")", "function \"f\" (0/1/*)", "\"worldViewProjection\""});
}

TEST(VerifyCode, NamesTheNodeWithZeroRows) {
    for (const char* count : {"Rows", "Columns"}) {
        expectErrorAt(exportError(node("uv", "CoreUv") +
                                  node("flow", "CoreAnimatedUv", property(count, "integer", "0")) +
                                  node("t", "CoreTexture") + connection("uv", "read", "flow", "in_uv") +
                                  connection("flow", "out_uv1", "t", "in_uv") +
                                  output("colour", "t", "out_colour")),
                      3, {"node \"flow\" (\"CoreAnimatedUv\")", "\"inf\""});
    }
}

TEST(VerifyCode, OverlooksWhatNoOutputNeeds) {
    EXPECT_EQ(exportError(node("c", "CoreConstant") +
                          node("flow", "CoreAnimatedUv", property("Rows", "integer", "0")) +
                          output("colour", "c", "read")),
              noError);
}

} // namespace
} // namespace patina
