#include "tests/host/host_checks.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <string>

namespace patina {
namespace {

using testing::connection;
using testing::expectError;
using testing::exported;
using testing::exportError;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

const std::string framework = R"(
// sRGB to linear light, by the exact piecewise curve.
float3 QelSrgbToLinear( float3 colour )
{
	float3 low = colour/12.92;
	float3 high = pow( ( max( colour, 0.0 ) + 0.055 )/1.055, 2.4 );
	return ( colour <= 0.04045 ) ? low : high;
}
)";

const std::string vertexFramework = framework + R"(
uniform float4x4 worldViewProjection : register( c0 );

// From object space to clip space.
float4 QelTransformPosition( float4 position )
{
	return mul( worldViewProjection, position );
}
)";

const std::string vertexHeader = "// Vertex program. Written by patina.\n" + vertexFramework;
const std::string fragmentHeader = "// Fragment program. Written by patina.\n" + framework;

void expectPrograms(const std::string& body, const std::string& vertex, const std::string& fragment) {
    const ExportedMaterial material = exported(body);
    EXPECT_EQ(material.vertexProgram.content, vertexHeader + vertex);
    EXPECT_EQ(material.fragmentProgram.content, fragmentHeader + fragment);
    const testing::CommaLocale comma;
    const ExportedMaterial again = exported(body);
    EXPECT_EQ(again.vertexProgram.content, material.vertexProgram.content);
    EXPECT_EQ(again.fragmentProgram.content, material.fragmentProgram.content);
    EXPECT_EQ(again.bindings.content, material.bindings.content);
}

TEST(PrintPrograms, TexturedColourAndAlpha) {
    expectPrograms(node("uv", "CoreUv", property("Name", "string", "map1")) +
                       node("paint", "CoreTexture",
                            property("Name", "string", "Paint") + property("Alpha", "bool", "Yes")) +
                       connection("uv", "read", "paint", "in_uv") + output("colour", "paint", "out_colour") +
                       output("alpha", "paint", "out_alpha"),
                   R"(
void main(
	float4 position : ATTR0,
	float2 map1 : ATTR1,
	out float4 clipPosition : POSITION,
	out float2 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	interpolant0.xy = map1;
}
)",
                   R"(
uniform sampler2D Paint : TEXUNIT0;

// node "paint" ("Paint")
void textureCode( float2 in_uv, sampler2D in_sampler, out half3 out_colour, out half out_alpha )
{
	half4 value = h4tex2D( in_sampler, in_uv );
	value.xyz = QelSrgbToLinear( value.xyz );
	out_colour = value.xyz;
	out_alpha = value.w;
}

void main(
	float2 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	float2 map1 = interpolant0.xy;
	half3 paint_out_colour;
	half paint_out_alpha;
	textureCode( map1, Paint, paint_out_colour, paint_out_alpha );
	colour = float4( paint_out_colour, paint_out_alpha );
}
)");
}

TEST(PrintPrograms, ScalarConstantWithoutInputs) {
    expectPrograms(
        node("m", "CoreMaths",
             property("Default Value 1", "float", "1234567") + property("Default Value 2", "float", "0.1")) +
            output("colour", "m", "out_value"),
        R"(
void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION )
{
	clipPosition = QelTransformPosition( position );
}
)",
        R"(
// node "m" ("Maths")
void mathsCode( out half out_value )
{
	half in_value1 = half( 1.23457e+06 ).x;
	half in_value2 = half( 0.1 ).x;
	out_value = in_value1 * in_value2;
}

void main(
	out float4 colour : COLOR0 )
{
	half m_out_value;
	mathsCode( m_out_value );
	colour = float4( m_out_value.xxx, 1.0 );
}
)");
}

TEST(PrintPrograms, FunctionsSharedByBothStages) {
    expectPrograms(
        node("s", "CoreConstant",
             property("Name", "string", "Strength") + property("Constant Type", "enum", "Scalar")) +
            maths("v", "Invert", "Vertex") + maths("a", "Invert") + maths("b", "Invert") +
            maths("sum", "Addition") + connection("s", "read", "v", "in_value1") +
            connection("v", "out_value", "a", "in_value1") + connection("v", "out_value", "b", "in_value1") +
            connection("a", "out_value", "sum", "in_value1") +
            connection("b", "out_value", "sum", "in_value2") + output("colour", "sum", "out_value"),
        R"(
uniform half Strength : register( c4 );

// node "v" ("Maths")
void mathsCode( half in_value1, out half out_value )
{
	half in_ref = half( 1 ).x;
	out_value = in_ref - in_value1;
}

void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out half interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	half v_out_value;
	mathsCode( Strength, v_out_value );
	interpolant0 = v_out_value;
}
)",
        R"(
// node "a" ("Maths"), node "b" ("Maths")
void mathsCode( half in_value1, out half out_value )
{
	half in_ref = half( 1 ).x;
	out_value = in_ref - in_value1;
}

// node "sum" ("Maths")
void mathsCode_2( half in_value1, half in_value2, out half out_value )
{
	out_value = in_value1 + in_value2;
}

void main(
	half interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	half v_out_value = interpolant0;
	half a_out_value;
	mathsCode( v_out_value, a_out_value );
	half b_out_value;
	mathsCode( v_out_value, b_out_value );
	half sum_out_value;
	mathsCode_2( a_out_value, b_out_value, sum_out_value );
	colour = float4( sum_out_value.xxx, 1.0 );
}
)");
}

TEST(PrintPrograms, ConversionsAndPackedInterpolants) {
    // a scalar that splits as a colour, a colour set, and a uv set: one register of float and one of half
    expectPrograms(
        node("uv", "CoreUv") + node("set", "CoreVertexColour", property("Name", "string", "Wear")) +
            node("s", "CoreConstant",
                 property("Name", "string", "S") + property("Constant Type", "enum", "Scalar")) +
            node("k", "CoreSwizzle") + node("t", "CoreTexture", property("sRGB", "bool", "No")) +
            maths("m", "Lerp") + connection("uv", "read", "t", "in_uv") +
            connection("s", "read", "k", "in_vec") + connection("set", "out_colour", "m", "in_value1") +
            connection("t", "out_colour", "m", "in_value2") + connection("k", "out_y", "m", "in_blend") +
            output("colour", "m", "out_value") + output("alpha", "s", "read"),
        R"(
void main(
	float4 position : ATTR0,
	float2 Uv : ATTR1,
	half3 Wear : ATTR2,
	out float4 clipPosition : POSITION,
	out float2 interpolant0 : TEXCOORD0,
	out half3 interpolant1 : TEXCOORD1 )
{
	clipPosition = QelTransformPosition( position );
	interpolant0.xy = Uv;
	interpolant1.xyz = Wear;
}
)",
        R"(
uniform half S : register( c0 );
uniform sampler2D Texture : TEXUNIT0;

// node "set" ("Wear")
void colourCode( half3 in_colour, out half3 out_colour )
{
	out_colour = in_colour.xyz;
}

// node "s" ("S")
void promoteAndSplat( half in_value, out half3 out_value )
{
	out_value = in_value.xxx;
}

// node "k" ("Swizzle")
void swizzleCode( half3 in_vec, out half out_x, out half out_y, out half out_z )
{
	out_x = in_vec.x;
	out_y = in_vec.y;
	out_z = in_vec.z;
}

// node "t" ("Texture")
void textureCode( float2 in_uv, sampler2D in_sampler, out half3 out_colour )
{
	half3 value = h3tex2D( in_sampler, in_uv );
	out_colour = value.xyz;
}

// node "m" ("Maths")
void mathsCode( half3 in_value1, half3 in_value2, half in_blend, out half3 out_value )
{
	out_value = lerp( in_value1, in_value2, in_blend );
}

void main(
	float2 interpolant0 : TEXCOORD0,
	half3 interpolant1 : TEXCOORD1,
	out float4 colour : COLOR0 )
{
	float2 Uv = interpolant0.xy;
	half3 Wear = interpolant1.xyz;
	half3 set_out_colour;
	colourCode( Wear, set_out_colour );
	half3 S_half3;
	promoteAndSplat( S, S_half3 );
	half k_out_x;
	half k_out_y;
	half k_out_z;
	swizzleCode( S_half3, k_out_x, k_out_y, k_out_z );
	half3 t_out_colour;
	textureCode( Uv, Texture, t_out_colour );
	half3 m_out_value;
	mathsCode( set_out_colour, t_out_colour, k_out_y, m_out_value );
	colour = float4( m_out_value, S );
}
)");
}

TEST(PrintPrograms, KeepsCommentsInOneLine) {
    const std::string program =
        exported(node("a", "CoreMaths", property("Name", "string", "x&#10;discard;&#13;y")) +
                 output("colour", "a", "out_value"))
            .fragmentProgram.content;
    EXPECT_NE(program.find("// node \"a\" (\"x discard; y\")\n"), std::string::npos) << program;
}

/// Textures at one uv set, summed.
std::string textures(int count) {
    std::string body = node("uv", "CoreUv");
    std::string last;
    for (int i = 0; i < count; ++i) {
        const std::string id = "t" + std::to_string(i);
        const std::string sum = "s" + std::to_string(i);
        body += node(id, "CoreTexture", property("Name", "string", "T" + std::to_string(i))) +
                connection("uv", "read", id, "in_uv") + maths(sum, "Addition") +
                connection(id, "out_colour", sum, "in_value1");
        if (!last.empty()) {
            body += connection(last, "out_value", sum, "in_value2");
        }
        last = sum;
    }
    return body + output("colour", last, "out_value");
}

TEST(PrintPrograms, ReadSixteenTexturesAndNoMore) {
    const std::string program = exported(textures(16)).fragmentProgram.content;
    EXPECT_NE(program.find("uniform sampler2D T15 : TEXUNIT15;\n"), std::string::npos) << program;
    expectError(exportError(textures(17)), "sample.xml:82",
                {"node \"t16\" (\"T16\")", "uniform parameter \"T16\" (sampler2D)", "fragment", "17 textures",
                 "there are 16"});
}

/// Colour sets of three components, summed; a register holds one.
std::string colourSets(int count, const std::string& level) {
    std::string body;
    std::string last;
    for (int i = 0; i < count; ++i) {
        const std::string id = "v" + std::to_string(i);
        const std::string sum = "s" + std::to_string(i);
        body += node(id, "CoreVertexColour", property("Name", "string", "V" + std::to_string(i))) +
                maths(sum, "Addition", level) + connection(id, "out_colour", sum, "in_value1");
        if (!last.empty()) {
            body += connection(last, "out_value", sum, "in_value2");
        }
        last = sum;
    }
    return body + output("colour", last, "out_value");
}

TEST(PrintPrograms, ReadFifteenVertexAttributesAndNoMore) {
    const ExportedMaterial material = exported(colourSets(15, "Vertex"));
    EXPECT_NE(material.vertexProgram.content.find("\thalf3 V14 : ATTR15,\n"), std::string::npos);
    EXPECT_EQ(material.interpolantCount, 1U);
    expectError(exportError(colourSets(16, "Vertex")), "sample.xml:61",
                {"node \"v15\" (\"V15\")", "varying parameter \"V15\" (half3)", "vertex",
                 "17 vertex attributes, the position among them", "there are 16"});
    EXPECT_EQ(exported(colourSets(10, "Automatic")).interpolantCount, 10U);
    expectError(exportError(colourSets(11, "Automatic")), "sample.xml:1", {"11", "10"});
}

TEST(ExportMaterial, CountsWhatItMade) {
    const ExportedMaterial material =
        exported(node("uv", "CoreUv") + node("t", "CoreTexture") + maths("v", "Multiply", "Vertex") +
                 maths("unused", "Invert") + connection("uv", "read", "v", "in_value1") +
                 connection("v", "out_value", "t", "in_uv") + output("colour", "t", "out_colour"));
    EXPECT_EQ(material.name, "Sample");
    EXPECT_EQ(material.vertexProgram.name, "Sample.vert.cg");
    EXPECT_EQ(material.fragmentProgram.name, "Sample.frag.cg");
    EXPECT_EQ(material.bindings.name, "Sample.bindings.xml");
    EXPECT_EQ(material.nodeCount, 4U);
    EXPECT_EQ(material.connectionCount, 2U);
    EXPECT_EQ(material.vertexFunctionCount, 1U);
    EXPECT_EQ(material.fragmentFunctionCount, 1U);
    EXPECT_EQ(material.interpolantCount, 1U);
    EXPECT_EQ(material.bindingCount, 2U);
}

TEST(ExportMaterial, GivesTheSameWhenRepeated) {
    Material material = testing::built(textures(5));
    const ExportedMaterial first = testing::exportedFrom(material);
    const ExportedMaterial second = testing::exportedFrom(material);
    EXPECT_EQ(first.vertexProgram.content, second.vertexProgram.content);
    EXPECT_EQ(first.fragmentProgram.content, second.fragmentProgram.content);
    EXPECT_EQ(first.bindings.content, second.bindings.content);
}

TEST(ExportMaterial, NamesAFragmentValueThatAVertexFunctionNeeds) {
    testing::expectErrorAt(
        exportError(node("uv", "CoreUv") + node("t", "CoreTexture", property("Name", "string", "Bump")) +
                    maths("v", "Invert", "Vertex") + connection("uv", "read", "t", "in_uv") +
                    connection("t", "out_colour", "v", "in_value1") + output("colour", "v", "out_value")),
        3, {"node \"t\" (\"Bump\")", "node \"v\" (\"Maths\")"});
}

TEST(ExportMaterial, HoldsLongChains) {
    constexpr int length = 20000;
    std::string body = maths("m0", "Invert");
    for (int i = 1; i < length; ++i) {
        const std::string id = "m" + std::to_string(i);
        body += node(id, "CoreMaths") + connection("m" + std::to_string(i - 1), "out_value", id, "in_value1");
    }
    const ExportedMaterial material = exported(body + output("colour", "m19999", "out_value"));
    EXPECT_EQ(material.fragmentFunctionCount, 20000U);
}

} // namespace
} // namespace patina
