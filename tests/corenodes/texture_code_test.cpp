#include "corenodes/texture_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

constexpr const char* srgbLine = "\tvalue.xyz = QelSrgbToLinear( value.xyz );\n";

struct CodeRow {
    const char* colourType;
    bool alpha;
    bool alphaConnected;
    std::uint32_t sampleCount;
    bool normal;                                                ///< never converted from sRGB
    std::vector<std::pair<std::uint32_t, const char*>> outputs; ///< width and name
    const char* code;
};

const std::vector<CodeRow> codeRows = {
    {"Colour", false, false, 3, false, {{3, "out_colour"}}, "\tout_colour = value.xyz;\n"},
    {"Colour", true, false, 3, false, {{3, "out_colour"}}, "\tout_colour = value.xyz;\n"},
    {"Colour",
     true,
     true,
     4,
     false,
     {{3, "out_colour"}, {1, "out_alpha"}},
     "\tout_colour = value.xyz;\n\tout_alpha = value.w;\n"},
    {"Normal", false, false, 3, true, {{3, "out_colour"}}, "\tout_colour = 2.0.xxx*value.xyz - 1.0.xxx;\n"},
    {"Normal", true, false, 3, true, {{3, "out_colour"}}, "\tout_colour = 2.0.xxx*value.xyz - 1.0.xxx;\n"},
    {"Normal",
     true,
     true,
     4,
     true,
     {{3, "out_colour"}, {1, "out_alpha"}},
     "\tout_colour = 2.0.xxx*value.xyz - 1.0.xxx;\n\tout_alpha = value.w;\n"},
    {"Component",
     false,
     false,
     3,
     false,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}},
     "\tout_red = value.x;\n\tout_green = value.y;\n\tout_blue = value.z;\n"},
    {"Component",
     true,
     false,
     3,
     false,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}},
     "\tout_red = value.x;\n\tout_green = value.y;\n\tout_blue = value.z;\n"},
    {"Component",
     true,
     true,
     4,
     false,
     {{1, "out_red"}, {1, "out_green"}, {1, "out_blue"}, {1, "out_alpha"}},
     "\tout_red = value.x;\n\tout_green = value.y;\n\tout_blue = value.z;\n\tout_alpha = value.w;\n"},
    {"Vector", false, false, 4, false, {{4, "out_colour"}}, "\tout_colour = value;\n"},
    {"DXT5 Normal",
     false,
     false,
     4,
     true,
     {{3, "out_colour"}},
     "\tout_colour.xy = 2.0.xx*value.ag - 1.0.xx;\n"
     "\tout_colour.z = sqrt( 1.0 - dot( out_colour.xy, out_colour.xy ) );\n"},
};

struct Dimensions {
    const char* textureType;
    std::uint32_t coordinateWidth;
    const char* samplerType;
};

constexpr Dimensions dimensionRows[] = {{"1D", 1, "sampler1D"}, {"2D", 2, "sampler2D"}};

void expectTextureCode(const CodeRow& row, const Dimensions& dimensions, bool srgb,
                       const Precision& precision) {
    SCOPED_TRACE(row.colourType);
    SCOPED_TRACE(row.sampleCount);
    SCOPED_TRACE(dimensions.textureType);
    SCOPED_TRACE(srgb);
    SCOPED_TRACE(precision.word);
    TextureNode node;
    node.setName("diffuse");
    property(node, "Texture Type").setEnum(dimensions.textureType);
    property(node, "Colour Type").setEnum(row.colourType);
    property(node, "Alpha").setBool(row.alpha);
    property(node, "sRGB").setBool(srgb);
    node.updateFromProperties(nullptr);
    if (row.alphaConnected) {
        node.outputPort("out_alpha").connected = true;
    }
    node.inputPort("in_uv").connected = true;
    resolve(node, precision);

    // for a 2D colour with alpha at float precision: float4 value = f4tex2D( in_sampler, in_uv );
    std::string code = "\t" + vectorText(precision.word, row.sampleCount) +
                       " value = " + (precision.word == "float" ? "f" : "h") +
                       std::to_string(row.sampleCount) + "tex" + dimensions.textureType +
                       "( in_sampler, in_uv );\n";
    if (srgb && !row.normal) {
        code += srgbLine;
    }
    code += row.code;
    Texts outputs;
    for (const auto& [width, name] : row.outputs) {
        outputs.push_back(vectorText(precision.word, width) + " " + name);
    }
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), (Texts{"textureCode", "diffuse"}));
    expectFunction(generator, 0,
                   {"textureCode",
                    ExecutionLevel::Fragment,
                    {vectorText("float", dimensions.coordinateWidth) + " in_uv",
                     std::string(dimensions.samplerType) + " in_sampler"},
                    outputs,
                    code});
    expectParameter(generator, 1, NodeKind::UniformParameter, "diffuse", dimensions.samplerType);
    EXPECT_EQ(edges(generator), Texts{"diffuse#1.read -> textureCode#0.in_sampler"});
    EXPECT_TRUE(generator.portLinks.empty());
}

void expectAllTextureCode() {
    for (const CodeRow& row : codeRows) {
        for (const Dimensions& dimensions : dimensionRows) {
            for (const bool srgb : {false, true}) {
                for (const Precision& precision : precisions) {
                    expectTextureCode(row, dimensions, srgb, precision);
                }
            }
        }
    }
}

TEST(TextureCode, SamplesAndUnpacks) { expectAllTextureCode(); }

TEST(TextureCode, IgnoresTheLocaleOfTheProcess) {
    const CommaLocale comma;
    expectAllTextureCode();
}

TEST(TextureCode, OfAVectorWithSrgbWrittenOut) {
    TextureNode node;
    property(node, "Colour Type").setEnum("Vector");
    node.updateFromProperties(nullptr);
    node.inputPort("in_uv").connected = true;
    resolve(node, floatPrecision);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code, "\tfloat4 value = f4tex2D( in_sampler, in_uv );\n"
                                                        "\tvalue.xyz = QelSrgbToLinear( value.xyz );\n"
                                                        "\tout_colour = value;\n");
}

TEST(TextureCode, OfAHalfPrecisionColourWrittenOut) {
    TextureNode node;
    property(node, "Texture Type").setEnum("1D");
    node.updateFromProperties(nullptr);
    node.inputPort("in_uv").connected = true;
    resolve(node, halfPrecision);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code, "\thalf3 value = h3tex1D( in_sampler, in_uv );\n"
                                                        "\tvalue.xyz = QelSrgbToLinear( value.xyz );\n"
                                                        "\tout_colour = value.xyz;\n");
}

TEST(TextureCode, SamplesAtHalfPrecisionUnlessTheNodeIsAtFloat) {
    TextureNode node;
    property(node, "sRGB").setBool(false);
    node.inputPort("in_uv").connected = true;
    resolve(node, floatPrecision);
    node.resolvedPrecision = 4;
    const GraphGenerator generator = generated(node);
    expectFunction(generator, 0,
                   {"textureCode",
                    ExecutionLevel::Fragment,
                    {"float2 in_uv", "sampler2D in_sampler"},
                    {"float3 out_colour"},
                    "\tfixed3 value = h3tex2D( in_sampler, in_uv );\n\tout_colour = value.xyz;\n"});
}

TEST(TextureCode, TakesAnUnknownTextureTypeForTwoDimensions) {
    TextureNode node;
    setUnknownEnum(node, "Texture Type");
    property(node, "sRGB").setBool(false);
    node.updateFromProperties(nullptr);
    node.inputPort("in_uv").connected = true;
    resolve(node, halfPrecision);
    const GraphGenerator generator = generated(node);
    expectFunction(generator, 0,
                   {"textureCode",
                    ExecutionLevel::Fragment,
                    {"float2 in_uv", "sampler2D in_sampler"},
                    {"half3 out_colour"},
                    "\thalf3 value = h3tex2D( in_sampler, in_uv );\n\tout_colour = value.xyz;\n"});
}

TEST(TextureCode, TakesAnUnknownColourTypeForComponents) {
    TextureNode node;
    setUnknownEnum(node, "Colour Type");
    property(node, "sRGB").setBool(false);
    node.updateFromProperties(nullptr);
    node.inputPort("in_uv").connected = true;
    resolve(node, halfPrecision);
    const GraphGenerator generator = generated(node);
    expectFunction(generator, 0,
                   {"textureCode",
                    ExecutionLevel::Fragment,
                    {"float2 in_uv", "sampler2D in_sampler"},
                    {"half out_red", "half out_green", "half out_blue"},
                    "\thalf3 value = h3tex2D( in_sampler, in_uv );\n"
                    "\tout_red = value.x;\n\tout_green = value.y;\n\tout_blue = value.z;\n"});
}

TEST(TextureCode, SamplesNoAlphaThatIsOffOrHasNoPort) {
    TextureNode node;
    property(node, "sRGB").setBool(false);
    node.inputPort("in_uv").connected = true;
    resolve(node, halfPrecision);
    const FunctionRow expected = {"textureCode",
                                  ExecutionLevel::Fragment,
                                  {"float2 in_uv", "sampler2D in_sampler"},
                                  {"half3 out_colour"},
                                  "\thalf3 value = h3tex2D( in_sampler, in_uv );\n"
                                  "\tout_colour = value.xyz;\n"};
    property(node, "Alpha").setBool(true); // whose port comes with the next update
    expectFunction(generated(node), 0, expected);
    node.updateFromProperties(nullptr);
    node.inputPort("in_uv").connected = true;
    node.outputPort("out_alpha").connected = true;
    resolve(node, halfPrecision);
    property(node, "Alpha").setBool(false); // whose port goes with the next update
    expectFunction(generated(node), 0, expected);
}

TEST(TextureCode, LinksItsPortsToTheFunction) {
    TextureNode node;
    property(node, "Alpha").setBool(true);
    node.updateFromProperties(nullptr);
    Connections connections;
    const auto uv = connections.into(node, "in_uv");
    const auto alpha = connections.outOf(node, "out_alpha");
    const auto first = connections.outOf(node, "out_colour");
    const auto second = connections.outOf(node, "out_colour");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 4U);
    EXPECT_EQ(portLink(generator, uv), "none -> textureCode#0.in_uv");
    EXPECT_EQ(portLink(generator, alpha), "textureCode#0.out_alpha -> none");
    EXPECT_EQ(portLink(generator, first), "textureCode#0.out_colour -> none");
    EXPECT_EQ(portLink(generator, second), "textureCode#0.out_colour -> none");
}

TEST(TextureCode, NeedsATextureCoordinate) {
    TextureNode node;
    resolve(node, floatPrecision);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "node \"Texture\" (CoreTexture): please attach a texture coordinate before exporting");
    EXPECT_TRUE(isUntouched(generator));
    node.setName("diffuse map");
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "node \"diffuse map\" (CoreTexture): please attach a texture coordinate before exporting");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(TextureCode, NeedsAValidName) {
    TextureNode node;
    node.setName("diffuse map");
    Connections connections;
    connections.into(node, "in_uv");
    resolve(node, floatPrecision);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "parameter name \"diffuse map\" is not a valid Cg variable name");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(TextureCode, NeedsAResolvedPrecision) {
    TextureNode node;
    node.inputPort("in_uv").connected = true;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    EXPECT_TRUE(isUntouched(generator));
}

} // namespace
} // namespace patina
