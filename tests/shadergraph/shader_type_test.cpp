#include "shadergraph/shader_type.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace patina {

using namespace detail;

namespace {

using testing::shaderErrorOf;

static_assert(std::is_same_v<std::underlying_type_t<ComponentType>, std::int32_t>);
static_assert(std::is_aggregate_v<ShaderType> && std::is_trivially_copyable_v<ShaderType>);
static_assert(sizeof(ShaderType) == 4 * sizeof(std::int32_t));
static_assert(std::equality_comparable<ShaderType> && !std::totally_ordered<ShaderType>);

constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

struct ComponentTypeRow {
    ComponentType type;
    std::int32_t code;
    const char* name;
};

constexpr ComponentTypeRow componentTypes[] = {
    {ComponentType::Unknown, 0, "unknown"},
    {ComponentType::Void, 1, "void"},
    {ComponentType::Float, 2, "float"},
    {ComponentType::Half, 3, "half"},
    {ComponentType::Fixed, 4, "fixed"},
    {ComponentType::Int, 5, "int"},
    {ComponentType::Bool, 6, "bool"},
    {ComponentType::Sampler1D, 7, "sampler1D"},
    {ComponentType::Sampler2D, 8, "sampler2D"},
    {ComponentType::Sampler3D, 9, "sampler3D"},
    {ComponentType::SamplerCube, 10, "samplerCUBE"},
    {ComponentType::SamplerRect, 11, "samplerRECT"},
};

constexpr std::int32_t codesWithoutName[] = {12, 13, 255, largest, -1, -2, -12, smallest};

std::string printed(const ShaderType& type) {
    std::ostringstream stream;
    stream << type;
    return stream.str();
}

TEST(ComponentTypeName, FollowsTheCode) {
    for (const auto& [type, code, name] : componentTypes) {
        EXPECT_EQ(static_cast<std::int32_t>(type), code);
        EXPECT_EQ(componentTypeName({static_cast<ComponentType>(code), 1, 1, 1}), name);
    }
}

TEST(ComponentTypeName, DoesNotDependOnTheShape) {
    EXPECT_EQ(componentTypeName({ComponentType::Half, 4, 3, 8}), "half");
    EXPECT_EQ(componentTypeName({ComponentType::Sampler2D, 0, 0, 0}), "sampler2D");
}

TEST(ComponentTypeName, IsRefusedForOtherCodes) {
    for (const std::int32_t code : codesWithoutName) {
        const ShaderType type{static_cast<ComponentType>(code), 3, 1, 1};
        EXPECT_EQ(shaderErrorOf([&] { componentTypeName(type); }), "unknown component type") << code;
        EXPECT_EQ(shaderErrorOf([&] { typeText(type); }), "unknown component type") << code;
        EXPECT_EQ(shaderErrorOf([&] { printed(type); }), "unknown component type") << code;
        EXPECT_EQ(shaderErrorOf([&] { declaration(type, "value"); }), "unknown component type") << code;
        TextBuilder builder;
        EXPECT_EQ(shaderErrorOf([&] { appendDeclaration(builder, type, "value"); }), "unknown component type")
            << code;
    }
}

struct ShapeRow {
    ShaderType type;
    const char* text;
    const char* declared; ///< under the name "value"
};

constexpr ShapeRow shapes[] = {
    // scalars and vectors
    {{ComponentType::Float, 1, 1, 1}, "float", "float value"},
    {{ComponentType::Float, 2, 1, 1}, "float2", "float2 value"},
    {{ComponentType::Float, 3, 1, 1}, "float3", "float3 value"},
    {{ComponentType::Float, 4, 1, 1}, "float4", "float4 value"},
    {{ComponentType::Half, 1, 1, 1}, "half", "half value"},
    {{ComponentType::Half, 2, 1, 1}, "half2", "half2 value"},
    {{ComponentType::Half, 3, 1, 1}, "half3", "half3 value"},
    {{ComponentType::Half, 4, 1, 1}, "half4", "half4 value"},
    {{ComponentType::Fixed, 1, 1, 1}, "fixed", "fixed value"},
    {{ComponentType::Fixed, 2, 1, 1}, "fixed2", "fixed2 value"},
    {{ComponentType::Fixed, 3, 1, 1}, "fixed3", "fixed3 value"},
    {{ComponentType::Fixed, 4, 1, 1}, "fixed4", "fixed4 value"},
    {{ComponentType::Int, 1, 1, 1}, "int", "int value"},
    {{ComponentType::Int, 2, 1, 1}, "int2", "int2 value"},
    {{ComponentType::Int, 3, 1, 1}, "int3", "int3 value"},
    {{ComponentType::Int, 4, 1, 1}, "int4", "int4 value"},
    {{ComponentType::Bool, 1, 1, 1}, "bool", "bool value"},
    {{ComponentType::Bool, 2, 1, 1}, "bool2", "bool2 value"},
    {{ComponentType::Bool, 3, 1, 1}, "bool3", "bool3 value"},
    {{ComponentType::Bool, 4, 1, 1}, "bool4", "bool4 value"},
    {{ComponentType::Sampler1D, 1, 1, 1}, "sampler1D", "sampler1D value"},
    {{ComponentType::SamplerCube, 1, 1, 1}, "samplerCUBE", "samplerCUBE value"},
    {{ComponentType::SamplerRect, 1, 1, 1}, "samplerRECT", "samplerRECT value"},
    {{ComponentType::Unknown, 1, 1, 1}, "unknown", "unknown value"},
    {{ComponentType::Void, 1, 1, 1}, "void", "void value"},
    // matrices: rows first
    {{ComponentType::Float, 4, 4, 1}, "float4x4", "float4x4 value"},
    {{ComponentType::Half, 4, 3, 1}, "half3x4", "half3x4 value"},
    {{ComponentType::Float, 3, 4, 1}, "float4x3", "float4x3 value"},
    {{ComponentType::Float, 1, 2, 1}, "float2x1", "float2x1 value"},
    {{ComponentType::Float, 0, 2, 1}, "float2x0", "float2x0 value"},
    {{ComponentType::Float, -1, 2, 1}, "float2x-1", "float2x-1 value"},
    // arrays: the size follows the type, or the name that is declared
    {{ComponentType::Float, 1, 1, 8}, "float[8]", "float value[8]"},
    {{ComponentType::Float, 4, 1, 8}, "float4[8]", "float4 value[8]"},
    {{ComponentType::Float, 4, 1, 2}, "float4[2]", "float4 value[2]"},
    {{ComponentType::Float, 1, 1, 9}, "float[9]", "float value[9]"},
    {{ComponentType::Float, 1, 1, 10}, "float[10]", "float value[10]"},
    {{ComponentType::Half, 4, 3, 16}, "half3x4[16]", "half3x4 value[16]"},
    {{ComponentType::Sampler2D, 1, 1, 4}, "sampler2D[4]", "sampler2D value[4]"},
    // sizes that are no sizes print like 1
    {{ComponentType::Float, 0, 1, 1}, "float", "float value"},
    {{ComponentType::Float, -3, 1, 1}, "float", "float value"},
    {{ComponentType::Float, 3, 0, 1}, "float3", "float3 value"},
    {{ComponentType::Float, 3, -4, 1}, "float3", "float3 value"},
    {{ComponentType::Float, 3, 1, 0}, "float3", "float3 value"},
    {{ComponentType::Float, 3, 1, -8}, "float3", "float3 value"},
    {{ComponentType::Float, 0, 0, 0}, "float", "float value"},
    {{ComponentType::Float, smallest, smallest, smallest}, "float", "float value"},
    // numbers are plain decimals however large
    {{ComponentType::Float, 5, 1, 1}, "float5", "float5 value"},
    {{ComponentType::Float, 1000, 1, 1}, "float1000", "float1000 value"},
    {{ComponentType::Float, 1234567, 1, 1}, "float1234567", "float1234567 value"},
    {{ComponentType::Float, 1000, 2000, 3000}, "float2000x1000[3000]", "float2000x1000 value[3000]"},
    {{ComponentType::Float, 4, 1, 1024}, "float4[1024]", "float4 value[1024]"},
    {{ComponentType::Int, 1, 1, largest}, "int[2147483647]", "int value[2147483647]"},
};

void expectShapesPrint() {
    for (const auto& [type, text, declared] : shapes) {
        EXPECT_EQ(printed(type), text);
        EXPECT_EQ(typeText(type), text);
        EXPECT_EQ(declaration(type, "value"), declared);
        TextBuilder builder;
        appendDeclaration(builder, type, "value");
        appendDeclaration(builder, type, "value", "\t", ";\n");
        EXPECT_EQ(builder.take(), std::string(declared) + "\t" + declared + ";\n");
    }
}

TEST(TypeText, FollowsTheShape) { expectShapesPrint(); }

TEST(TypeText, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    expectShapesPrint();
}

TEST(TypeText, IgnoresTheLocaleAndTheNumberBaseOfTheStream) {
    std::ostringstream stream;
    stream << std::hex << std::showbase << std::showpos;
    {
        const testing::CommaLocale comma;
        stream.imbue(std::locale());
    }
    stream << ShaderType{ComponentType::Float, 1000, 2000, 3000};
    EXPECT_EQ(stream.str(), "float2000x1000[3000]");
}

TEST(TypeText, PrintsInTheMidstOfAStream) {
    std::ostringstream stream;
    stream << "from " << testing::float3Type << " to " << testing::half4x4Type << '.';
    EXPECT_EQ(stream.str(), "from float3 to half4x4.");
}

TEST(Declaration, TakesTheNameAsItIs) {
    EXPECT_EQ(declaration({ComponentType::Float, 4, 1, 8}, "lights"), "float4 lights[8]");
    EXPECT_EQ(declaration(testing::float3Type, ""), "float3 ");
    EXPECT_EQ(declaration({ComponentType::Float, 1, 1, 2}, "a b"), "float a b[2]");
}

TEST(ShaderType, IsBuiltFromItsFieldsInOrder) {
    const ShaderType type{ComponentType::Half, 4, 3, 8};
    EXPECT_EQ(type.componentType, ComponentType::Half);
    EXPECT_EQ(type.columns, 4);
    EXPECT_EQ(type.rows, 3);
    EXPECT_EQ(type.arraySize, 8);
    testing::expectFieldOrder({&type.componentType, &type.columns, &type.rows, &type.arraySize});
}

TEST(ShaderType, IsEqualWhenAllFourFieldsAre) {
    const ShaderType type{ComponentType::Half, 4, 3, 8};
    EXPECT_TRUE(type == (ShaderType{ComponentType::Half, 4, 3, 8}));
    EXPECT_FALSE(type != (ShaderType{ComponentType::Half, 4, 3, 8}));
    const ShaderType others[] = {
        {ComponentType::Float, 4, 3, 8},
        {ComponentType::Half, 3, 3, 8},
        {ComponentType::Half, 4, 4, 8},
        {ComponentType::Half, 4, 3, 1},
    };
    for (const ShaderType& other : others) {
        EXPECT_FALSE(type == other) << other;
        EXPECT_TRUE(type != other) << other;
    }
    // equal texts do not make equal types
    EXPECT_TRUE((ShaderType{ComponentType::Float, 1, 1, 1}) != (ShaderType{ComponentType::Float, 0, 1, 1}));
    EXPECT_TRUE((ShaderType{ComponentType::Float, 1, 1, 1}) != (ShaderType{ComponentType::Float, 1, 0, 1}));
    EXPECT_TRUE((ShaderType{ComponentType::Float, 1, 1, 1}) != (ShaderType{ComponentType::Float, 1, 1, 0}));
}

} // namespace
} // namespace patina
