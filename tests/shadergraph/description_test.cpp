#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace patina {
namespace {

using testing::shaderErrorOf;

struct ParameterRow {
    NodeKind kind;
    const char* name;
    ShaderType type;
    std::int32_t flags;
    RegisterReference reference;
    const char* text;
};

constexpr ShaderType float2{ComponentType::Float, 2, 1, 1};
constexpr ShaderType float4{ComponentType::Float, 4, 1, 1};
constexpr ShaderType matrices{ComponentType::Half, 4, 3, 1024};
constexpr ShaderType map{ComponentType::Sampler2D, 1, 1, 1};

constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();

using enum NodeKind;

constexpr ParameterRow parameters[] = {
    {InterfaceParameter, "uv", float2, 0, {}, "interface parameter \"uv\" (float2,flags=0)"},
    {InterfaceParameter, "uv", float2, 12, {}, "interface parameter \"uv\" (float2,flags=12)"},
    {InterfaceParameter, "uv", float2, -1, {}, "interface parameter \"uv\" (float2,flags=-1)"},
    {InterfaceParameter, "uv", float2, 1234567, {}, "interface parameter \"uv\" (float2,flags=1234567)"},
    {InterfaceParameter, "uv", float2, smallest, {}, "interface parameter \"uv\" (float2,flags=-2147483648)"},
    {InterfaceParameter,
     "a \"b\"",
     matrices,
     3,
     {},
     "interface parameter \"a \"b\"\" (half3x4[1024],flags=3)"},
    {InterfaceParameter, "", map, 0, {}, "interface parameter \"\" (sampler2D,flags=0)"},
    // an interface parameter shows no register
    {InterfaceParameter, "uv", float2, 0, {9, 3}, "interface parameter \"uv\" (float2,flags=0)"},

    {VaryingParameter, "uv", float2, 0, {}, "varying parameter \"uv\" (float2)"},
    {VaryingParameter, "uv", float2, 7, {0, 5}, "varying parameter \"uv\" (float2)"},
    {VaryingParameter, "uv", float2, 0, {1, 8}, "varying parameter \"uv\" (float2 : ATTR8)"},
    {VaryingParameter, "at", float4, 0, {4, 2}, "varying parameter \"at\" (float4 : POSITION)"},
    {VaryingParameter, "uv", float2, 0, {14, 0}, "varying parameter \"uv\" (float2 : TEXCOORD0)"},

    {UniformParameter, "rim", float4, 0, {}, "uniform parameter \"rim\" (float4)"},
    {UniformParameter, "rim", float4, 0, {0, 1}, "uniform parameter \"rim\" (float4)"},
    {UniformParameter, "rim", float4, 0, {2, 1000}, "uniform parameter \"rim\" (float4 : register( c1000 ))"},
    {UniformParameter,
     "bones",
     matrices,
     0,
     {2, 12},
     "uniform parameter \"bones\" (half3x4[1024] : register( c12 ))"},
    {UniformParameter, "map", map, 0, {15, 3}, "uniform parameter \"map\" (sampler2D : TEXUNIT3)"},

    // named by their register, or not at all
    {RegisterParameter, "name", float2, 7, {9, 3}, "Cg register parameter TEXCOORD3 (float2)"},
    {RegisterParameter, "name", float4, 0, {11, 1}, "Cg register parameter COLOR1 (float4)"},
    {RegisterParameter, "", float4, 0, {2, 1023}, "Cg register parameter register( c1023 ) (float4)"},
    {RegisterParameter, "", float4, 0, {17, 1}, "Cg register parameter DEPTH (float4)"},
    {RegisterParameter, "", float4, 0, {}, "Cg register parameter UNKNOWN (float4)"},
    {InterpolantParameter, "name", float4, 7, {9, 3}, "interpolant parameter (float4)"},
    {InterpolantParameter, "", matrices, 0, {}, "interpolant parameter (half3x4[1024])"},
};

void expectParameterDescriptions() {
    for (const ParameterRow& row : parameters) {
        EXPECT_EQ(describe(*makeParameterNode(row.kind, row.name, row.type, row.flags, row.reference)),
                  row.text);
    }
}

struct FunctionRow {
    const char* name;
    std::size_t inputs;
    std::size_t outputs;
    std::int32_t level;
    const char* text;
};

constexpr FunctionRow functions[] = {
    {"f", 0, 0, 0, "function \"f\" (0/0/v)"},
    {"f", 0, 0, 1, "function \"f\" (0/0/f)"},
    {"f", 0, 0, 2, "function \"f\" (0/0/*)"},
    {"mathsCode", 2, 1, 2, "function \"mathsCode\" (2/1/*)"},
    {"swizzleCode", 1, 4, 0, "function \"swizzleCode\" (1/4/v)"},
    {"", 0, 1, 1, "function \"\" (0/1/f)"},
    {"two words", 10, 0, 1, "function \"two words\" (10/0/f)"},
    {"many", 1000, 1234, 2, "function \"many\" (1000/1234/*)"},
    // other levels have no letter
    {"f", 1, 1, 3, "function \"f\" (1/1/)"},
    {"f", 1, 1, -1, "function \"f\" (1/1/)"},
    {"f", 1, 1, 1000, "function \"f\" (1/1/)"},
};

GeneratorNode functionNode(const FunctionRow& row) {
    GeneratorNode node;
    node.kind = NodeKind::Function;
    node.name = row.name;
    node.level = static_cast<ExecutionLevel>(row.level);
    node.inputs.resize(row.inputs);
    node.outputs.resize(row.outputs);
    return node;
}

void expectFunctionDescriptions() {
    for (const FunctionRow& row : functions) {
        EXPECT_EQ(describe(functionNode(row)), row.text);
    }
}

TEST(Describe, NamesParametersByKind) { expectParameterDescriptions(); }

TEST(Describe, CountsAFunctionsPortsAndShowsItsLevel) { expectFunctionDescriptions(); }

TEST(Describe, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    expectParameterDescriptions();
    expectFunctionDescriptions();
}

TEST(Describe, FollowsTheFunctionThatWasBuilt) {
    FunctionBuilder builder;
    builder.addInput(testing::floatType, "in_a");
    builder.addOutput(testing::floatType, "out_value");
    builder.addInput(testing::floatType, "in_b");
    EXPECT_EQ(describe(*builder.makeNode(ExecutionLevel::Fragment, "blend")), "function \"blend\" (2/1/f)");
}

TEST(Describe, RefusesUnknownKinds) {
    for (const std::int32_t code : {6, 7, -1, -2, 1000}) {
        GeneratorNode node;
        node.kind = static_cast<NodeKind>(code);
        EXPECT_EQ(shaderErrorOf([&] { describe(node); }), "unknown node type") << code;
        EXPECT_EQ(shaderErrorOf([&] { inputPort(node, "in"); }), "unknown node type") << code;
    }
}

TEST(Describe, RefusesRegistersOutsideTheTableWhereItShowsThem) {
    for (const std::int32_t index : {-1, 18}) {
        GeneratorNode node;
        node.type = testing::floatType;
        node.registerReference = {index, 0};
        for (const NodeKind kind :
             {NodeKind::VaryingParameter, NodeKind::UniformParameter, NodeKind::RegisterParameter}) {
            node.kind = kind;
            EXPECT_EQ(shaderErrorOf([&] { describe(node); }), "invalid register type") << index;
        }
        node.kind = NodeKind::InterpolantParameter;
        EXPECT_EQ(describe(node), "interpolant parameter (float)");
    }
}

TEST(Describe, RefusesTypesWithoutANameWhereItShowsThem) {
    GeneratorNode node;
    node.type = testing::namelessType;
    for (const NodeKind kind :
         {NodeKind::InterfaceParameter, NodeKind::VaryingParameter, NodeKind::UniformParameter,
          NodeKind::RegisterParameter, NodeKind::InterpolantParameter}) {
        node.kind = kind;
        EXPECT_EQ(shaderErrorOf([&] { describe(node); }), "unknown component type");
    }
    node.kind = NodeKind::Function;
    EXPECT_EQ(describe(node), "function \"\" (0/0/*)");
}

} // namespace
} // namespace patina
