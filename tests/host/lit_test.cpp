// Materials that the framework lights.

#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace patina {
namespace {

using testing::built;
using testing::connection;
using testing::exported;
using testing::exportedFrom;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

ExportedMaterial exportedWithoutFramework(const std::string& body) {
    Material material = built(body);
    ExportOptions options;
    options.print.framework = false;
    return exportedFrom(material, options);
}

std::size_t count(std::string_view text, std::string_view piece) {
    std::size_t found = 0;
    for (std::size_t at = text.find(piece); at != std::string_view::npos; at = text.find(piece, at + 1)) {
        ++found;
    }
    return found;
}

void expectPiece(const std::string& text, std::string_view piece) {
    EXPECT_NE(text.find(piece), std::string::npos) << piece << "\nin:\n" << text;
}

std::string constant(const std::string& id, const std::string& name, const std::string& type) {
    return node(id, "CoreConstant",
                property("Name", "string", name) + property("Constant Type", "enum", type));
}

const std::string tint = constant("tint", "Tint", "Colour") + output("colour", "tint", "read");
const std::string shine = constant("shine", "Shine", "Scalar") + output("gloss", "shine", "read");

TEST(LitMaterial, GlossOnAColour) {
    const ExportedMaterial material = exportedWithoutFramework(tint + shine);
    EXPECT_EQ(material.vertexProgram.content, R"(// Vertex program. Written by patina.

uniform float4x4 world : register( c4 );

// the framework
void worldNormalCode( float4x4 in_world, float3 in_normal, out half3 out_normal )
{
	float3 x = in_world[0].xyz;
	float3 y = in_world[1].xyz;
	float3 z = in_world[2].xyz;
	float side = dot( x, cross( y, z ) ) < 0.0 ? -1.0 : 1.0;
	float3 turned = float3( dot( cross( y, z ), in_normal ), dot( cross( z, x ), in_normal ), dot( cross( x, y ), in_normal ) );
	out_normal = turned*( side*rsqrt( max( dot( turned, turned ), 1e-30 ) ) );
}

// the framework
void worldPositionCode( float4x4 in_world, float4 in_position, out float3 out_position )
{
	out_position = mul( in_world, in_position ).xyz;
}

void main(
	float4 position : ATTR0,
	float3 normal : ATTR1,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0,
	out half3 interpolant1 : TEXCOORD1 )
{
	clipPosition = QelTransformPosition( position );
	half3 framework_out_normal;
	worldNormalCode( world, normal, framework_out_normal );
	float3 framework_out_position;
	worldPositionCode( world, position, framework_out_position );
	interpolant1.xyz = framework_out_normal;
	interpolant0.xyz = framework_out_position;
}
)");
    EXPECT_EQ(material.fragmentProgram.content, R"(// Fragment program. Written by patina.

uniform half3 Tint : register( c0 );
uniform half Shine : register( c1 );
uniform float3 eyePosition : register( c2 );
uniform float3 lightDirections[3] : register( c3 );
uniform float3 lightColours[3] : register( c6 );
uniform float3 ambientAbove : register( c9 );
uniform float3 ambientBelow : register( c10 );

// the framework
void surfaceCode( half3 in_colour, half in_gloss, half3 in_world_normal, float3 in_world_position, float3 in_eye, float3 in_to_lights[3], float3 in_lights[3], float3 in_above, float3 in_below, out float3 out_colour )
{
	out_colour = QelShade( in_colour, float3( 0.0, 0.0, 0.0 ), in_gloss, in_world_normal, in_eye - in_world_position, in_to_lights, in_lights, in_above, in_below );
}

void main(
	float3 interpolant0 : TEXCOORD0,
	half3 interpolant1 : TEXCOORD1,
	out float4 colour : COLOR0 )
{
	half3 framework_out_normal = interpolant1.xyz;
	float3 framework_out_position = interpolant0.xyz;
	float3 framework_out_colour;
	surfaceCode( Tint, Shine, framework_out_normal, framework_out_position, eyePosition, lightDirections, lightColours, ambientAbove, ambientBelow, framework_out_colour );
	colour = float4( framework_out_colour, 1.0 );
}
)");
}

TEST(LitMaterial, NormalMapAndGlow) {
    const ExportedMaterial material = exportedWithoutFramework(
        node("uv", "CoreUv", property("Name", "string", "map1")) +
        node("bumps", "CoreTexture",
             property("Name", "string", "Bumps") + property("Colour Type", "enum", "Normal")) +
        constant("glow", "Glow", "Scalar") + connection("uv", "read", "bumps", "in_uv") + tint +
        output("normal", "bumps", "out_colour") + output("emissive", "glow", "read") +
        output("alpha", "glow", "read"));
    expectPiece(material.vertexProgram.content, R"(
// the framework
void worldTangentCode( float4x4 in_world, float4 in_tangent, out half4 out_tangent )
{
	float3 x = in_world[0].xyz;
	float3 y = in_world[1].xyz;
	float3 z = in_world[2].xyz;
	float side = dot( x, cross( y, z ) ) < 0.0 ? -1.0 : 1.0;
	float3 turned = float3( dot( x, in_tangent.xyz ), dot( y, in_tangent.xyz ), dot( z, in_tangent.xyz ) );
	out_tangent.xyz = turned*rsqrt( max( dot( turned, turned ), 1e-30 ) );
	out_tangent.w = in_tangent.w*side;
}
)");
    expectPiece(material.vertexProgram.content, R"(
void main(
	float4 position : ATTR0,
	float2 map1 : ATTR1,
	float3 normal : ATTR2,
	float4 tangent : ATTR3,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0,
	out float2 interpolant1 : TEXCOORD1,
	out half4 interpolant2 : TEXCOORD2,
	out half3 interpolant3 : TEXCOORD3 )
)");
    expectPiece(material.fragmentProgram.content, R"(
// the framework
void surfaceCode( half3 in_colour, half3 in_emissive, half3 in_normal, half3 in_world_normal, half4 in_world_tangent, float3 in_world_position, float3 in_eye, float3 in_to_lights[3], float3 in_lights[3], float3 in_above, float3 in_below, out float3 out_colour )
{
	out_colour = QelShade( in_colour, in_emissive, 0.0, QelBend( in_normal, in_world_normal, in_world_tangent ), in_eye - in_world_position, in_to_lights, in_lights, in_above, in_below );
}
)");
    expectPiece(material.fragmentProgram.content, R"(
	half3 Glow_half3;
	promoteAndSplat( Glow, Glow_half3 );
	float3 framework_out_colour;
	surfaceCode( Tint, Glow_half3, bumps_out_colour, framework_out_normal, framework_out_tangent, framework_out_position, eyePosition, lightDirections, lightColours, ambientAbove, ambientBelow, framework_out_colour );
	colour = float4( framework_out_colour, Glow );
}
)");
}

TEST(LitMaterial, HasTheFunctionsThatLightInItsFragmentProgramAlone) {
    const ExportedMaterial lit = exported(tint + shine);
    for (const char* function :
         {"\nfloat3 QelDirection( float3 direction )\n", "\nfloat QelFresnel( float cosine, float gloss )\n",
          "\nfloat3 QelSurroundings( float3 direction, float blur, float3 above, float3 below )\n",
          "\nfloat QelHighlight( float3 normal, float3 toEye, float3 toLight, float gloss )\n",
          "\nfloat3 QelBend( float3 bump, float3 normal, float4 tangent )\n", "\nfloat3 QelShade( "}) {
        EXPECT_EQ(count(lit.fragmentProgram.content, function), 1U) << function;
        EXPECT_EQ(count(lit.vertexProgram.content, function), 0U) << function;
    }
    EXPECT_EQ(count(lit.fragmentProgram.content, "[lit fragment program]"), 0U);
    const ExportedMaterial unlit = exported(tint);
    EXPECT_EQ(count(unlit.fragmentProgram.content, "QelShade"), 0U);
    EXPECT_EQ(unlit.vertexProgram.content.find("world "), std::string::npos);
}

TEST(LitMaterial, IsLitAsPreciselyAsItsOutputsAre) {
    // the gloss is float, since it is the coordinate of a texture too
    const ExportedMaterial material = exportedWithoutFramework(
        shine + node("ramp", "CoreTexture", property("Texture Type", "enum", "1D")) +
        connection("shine", "read", "ramp", "in_uv") + output("colour", "ramp", "out_colour"));
    expectPiece(material.fragmentProgram.content, "void surfaceCode( half3 in_colour, float in_gloss, ");
}

TEST(LitMaterial, SharesParametersOfOneNameAndType) {
    // a float3, since the coordinate of a texture is made of it
    const std::string body =
        node("above", "CoreConstant",
             property("Name", "string", "ambientAbove") + property("Constant Type", "enum", "Vector") +
                 property("Component Count", "integer", "3")) +
        node("split", "CoreSwizzle",
             property("Vector Type", "enum", "Vector") + property("Component Count", "integer", "3")) +
        node("ramp", "CoreTexture", property("Texture Type", "enum", "1D")) +
        connection("above", "read", "split", "in_vec") + connection("split", "out_y", "ramp", "in_uv") +
        output("colour", "ramp", "out_colour") + shine;
    const ExportedMaterial material = exportedWithoutFramework(body);
    EXPECT_EQ(count(material.fragmentProgram.content, "uniform float3 ambientAbove : register( c"), 1U)
        << material.fragmentProgram.content;
    EXPECT_EQ(count(material.fragmentProgram.content, "ambientAbove"), 3U)
        << material.fragmentProgram.content;
    expectPiece(material.bindings.content, R"(name="ambientAbove"/>)");
}

TEST(LitMaterial, NamesNodesAndFrameworkWhereOneIsRefused) {
    testing::expectErrorAt(
        testing::exportError(constant("c", "world", "Colour") + output("colour", "c", "read") +
                             output("emissive", "c", "read")),
        2,
        {"node \"c\" (\"world\"): uniform parameter \"world\" (half3) has the name of uniform parameter "
         "\"world\" (float4x4) of the framework; rename the node"});
    // without a normal map, nothing has the name "tangent"
    EXPECT_EQ(count(exported(constant("c", "tangent", "Colour") + output("colour", "c", "read") + shine)
                        .fragmentProgram.content,
                    "uniform half3 tangent : "),
              1U);
    testing::expectErrorAt(
        testing::exportError(constant("c", "QelShade", "Colour") + output("colour", "c", "read")), 2,
        {"\"QelShade\" is reserved"});
    testing::expectError(testing::exportError(constant("c", "C", "Colour") + output("normal", "c", "read")),
                         "sample.xml:1", {"no \"colour\" output"});
}

TEST(LitMaterial, AnnotatesWhatTheFrameworkAdds) {
    Material material = built(tint + shine);
    ExportOptions options;
    options.print.annotate = true;
    expectPiece(exportedFrom(material, options).vertexProgram.content,
                "\t// the framework: float4x4 in_world, float3 in_normal -> half3 out_normal\n");
}

TEST(LitMaterial, IsShownUnlit) {
    Warnings warnings;
    Material material = buildMaterial(showOutput(testing::parsed(tint + shine), "shine", ""),
                                      testing::corePlugins(), warnings);
    ExportOptions options;
    options.showValue = true;
    EXPECT_EQ(count(exportedFrom(material, options).fragmentProgram.content, "QelShade"), 0U);
}

} // namespace
} // namespace patina
