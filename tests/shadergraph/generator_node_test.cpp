#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace patina {
namespace {

using testing::float2Type;
using testing::float3Type;
using testing::float4Type;
using testing::floatType;
using testing::half3Type;
using testing::shaderErrorOf;

static_assert(std::is_same_v<std::underlying_type_t<NodeKind>, std::int32_t>);
static_assert(static_cast<std::int32_t>(NodeKind::Function) == 0);
static_assert(static_cast<std::int32_t>(NodeKind::InterfaceParameter) == 1);
static_assert(static_cast<std::int32_t>(NodeKind::VaryingParameter) == 2);
static_assert(static_cast<std::int32_t>(NodeKind::UniformParameter) == 3);
static_assert(static_cast<std::int32_t>(NodeKind::RegisterParameter) == 4);
static_assert(static_cast<std::int32_t>(NodeKind::InterpolantParameter) == 5);

void expectPorts(const std::vector<GeneratorPort>& ports, const char* name, const ShaderType& type) {
    if (name == nullptr) {
        EXPECT_TRUE(ports.empty());
        return;
    }
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_EQ(ports[0].name, name);
    EXPECT_EQ(ports[0].type, type);
}

TEST(GeneratorNode, StartsEmpty) {
    const GeneratorNode node;
    EXPECT_TRUE(node.inEdges.empty());
    EXPECT_TRUE(node.outEdges.empty());
    EXPECT_EQ(node.name, "");
    EXPECT_EQ(node.level, ExecutionLevel::Automatic);
    EXPECT_EQ(node.code, "");
    EXPECT_EQ(node.type, (ShaderType{ComponentType::Unknown, 1, 1, 1}));
    EXPECT_EQ(node.flags, 0);
    EXPECT_EQ(node.registerReference.index, 0);
    EXPECT_EQ(node.registerReference.number, 0);
    EXPECT_TRUE(node.inputs.empty());
    EXPECT_TRUE(node.outputs.empty());
}

TEST(GeneratorNode, KeepsItsFieldOrder) {
    const GeneratorNode node;
    testing::expectFieldOrder({&node.inEdges, &node.outEdges, &node.kind, &node.name, &node.level, &node.code,
                               &node.type, &node.flags, &node.registerReference, &node.inputs,
                               &node.outputs});
    const GeneratorPort port;
    testing::expectFieldOrder({&port.name, &port.type});
}

struct ParameterRow {
    NodeKind kind;
    std::int32_t registerIndex;
    const char* input;  ///< none when null
    const char* output; ///< none when null
};

constexpr ParameterRow parameters[] = {
    {NodeKind::InterfaceParameter, 0, "write", "read"},
    {NodeKind::InterpolantParameter, 0, "write", "read"},
    {NodeKind::VaryingParameter, 0, nullptr, "read"},
    {NodeKind::UniformParameter, 0, nullptr, "read"},
    // only a register parameter looks at the register's direction
    {NodeKind::InterfaceParameter, 4, "write", "read"},
    {NodeKind::InterpolantParameter, 1, "write", "read"},
    {NodeKind::VaryingParameter, 4, nullptr, "read"},
    {NodeKind::UniformParameter, 9, nullptr, "read"},
    {NodeKind::RegisterParameter, 0, nullptr, "read"},
    {NodeKind::RegisterParameter, 1, nullptr, "read"},
    {NodeKind::RegisterParameter, 2, nullptr, "read"},
    {NodeKind::RegisterParameter, 3, nullptr, "read"},
    {NodeKind::RegisterParameter, 4, "write", nullptr},
    {NodeKind::RegisterParameter, 5, "write", nullptr},
    {NodeKind::RegisterParameter, 6, "write", nullptr},
    {NodeKind::RegisterParameter, 7, "write", nullptr},
    {NodeKind::RegisterParameter, 8, "write", nullptr},
    {NodeKind::RegisterParameter, 9, "write", nullptr},
    {NodeKind::RegisterParameter, 10, nullptr, "read"},
    {NodeKind::RegisterParameter, 11, nullptr, "read"},
    {NodeKind::RegisterParameter, 12, nullptr, "read"},
    {NodeKind::RegisterParameter, 13, nullptr, "read"},
    {NodeKind::RegisterParameter, 14, nullptr, "read"},
    {NodeKind::RegisterParameter, 15, nullptr, "read"},
    {NodeKind::RegisterParameter, 16, "write", nullptr},
    {NodeKind::RegisterParameter, 17, "write", nullptr},
};

TEST(MakeParameterNode, GivesEachKindItsPortsOfItsType) {
    for (const ParameterRow& row : parameters) {
        SCOPED_TRACE(::testing::Message()
                     << "kind " << static_cast<std::int32_t>(row.kind) << " register " << row.registerIndex);
        const auto node = makeParameterNode(row.kind, "value", float3Type, 0, {row.registerIndex, 0});
        expectPorts(node->inputs, row.input, float3Type);
        expectPorts(node->outputs, row.output, float3Type);
    }
}

TEST(MakeParameterNode, KeepsWhatItIsGiven) {
    const NodeKind kinds[] = {NodeKind::InterfaceParameter, NodeKind::VaryingParameter,
                              NodeKind::UniformParameter, NodeKind::RegisterParameter,
                              NodeKind::InterpolantParameter};
    for (const NodeKind kind : kinds) {
        const auto node = makeParameterNode(kind, "value", {ComponentType::Half, 4, 3, 8}, -5, {2, 12});
        EXPECT_EQ(node->kind, kind);
        EXPECT_EQ(node->name, "value");
        EXPECT_EQ(node->type, (ShaderType{ComponentType::Half, 4, 3, 8}));
        EXPECT_EQ(node->flags, -5);
        EXPECT_EQ(node->registerReference, (RegisterReference{2, 12}));
        EXPECT_EQ(node->level, ExecutionLevel::Automatic);
        EXPECT_EQ(node->code, "");
        EXPECT_TRUE(node->inEdges.empty());
        EXPECT_TRUE(node->outEdges.empty());
    }
}

TEST(MakeParameterNode, LeavesOutFlagsAndRegister) {
    const auto node = makeParameterNode(NodeKind::InterfaceParameter, "uv", float2Type);
    EXPECT_EQ(node->flags, 0);
    EXPECT_EQ(node->registerReference, (RegisterReference{0, 0}));
}

TEST(MakeParameterNode, RefusesKindsThatAreNoParameters) {
    for (const std::int32_t code : {0, 6, 7, -1, 1000}) {
        const auto kind = static_cast<NodeKind>(code);
        EXPECT_EQ(shaderErrorOf([&] { makeParameterNode(kind, "value", floatType); }),
                  "internal error: unknown parameter type")
            << code;
    }
}

TEST(MakeParameterNode, RefusesRegistersOutsideTheTable) {
    for (const std::int32_t index : {-1, 18}) {
        EXPECT_EQ(shaderErrorOf([&] {
                      makeParameterNode(NodeKind::RegisterParameter, "value", floatType, 0, {index, 0});
                  }),
                  "invalid register type")
            << index;
    }
}

TEST(MakeVaryingParameter, HasOnlyAReadPort) {
    const auto node = makeVaryingParameter("uv1", float2Type);
    EXPECT_EQ(node->kind, NodeKind::VaryingParameter);
    EXPECT_EQ(node->name, "uv1");
    EXPECT_EQ(node->type, float2Type);
    EXPECT_EQ(node->flags, 0);
    EXPECT_EQ(node->registerReference, (RegisterReference{0, 0}));
    expectPorts(node->inputs, nullptr, {});
    expectPorts(node->outputs, "read", float2Type);
    EXPECT_NE(node, makeVaryingParameter("uv1", float2Type));
}

TEST(MakeUniformParameter, HasOnlyAReadPort) {
    const auto node = makeUniformParameter("rim", float4Type);
    EXPECT_EQ(node->kind, NodeKind::UniformParameter);
    EXPECT_EQ(node->name, "rim");
    EXPECT_EQ(node->type, float4Type);
    EXPECT_EQ(node->flags, 0);
    EXPECT_EQ(node->registerReference, (RegisterReference{0, 0}));
    expectPorts(node->inputs, nullptr, {});
    expectPorts(node->outputs, "read", float4Type);
    EXPECT_NE(node, makeUniformParameter("rim", float4Type));
}

struct ParameterNameRow {
    const char* name;
    const char* message;
};

constexpr ParameterNameRow invalidParameterNames[] = {
    {"", "parameter name \"\" is not a valid Cg variable name"},
    {"1a", "parameter name \"1a\" is not a valid Cg variable name"},
    {"a-b", "parameter name \"a-b\" is not a valid Cg variable name"},
    {"a b", "parameter name \"a b\" is not a valid Cg variable name"},
    {"caf\xC3\xA9", "parameter name \"caf\xC3\xA9\" is not a valid Cg variable name"},
    {"say\"so\"", "parameter name \"say\"so\"\" is not a valid Cg variable name"},
};

TEST(NodeValidation, RefusesVaryingAndUniformParametersByName) {
    for (const auto& [name, message] : invalidParameterNames) {
        const std::string refused = name;
        EXPECT_EQ(shaderErrorOf([&] { makeVaryingParameter(refused, floatType); }), message);
        EXPECT_EQ(shaderErrorOf([&] { makeUniformParameter(refused, floatType); }), message);
        EXPECT_EQ(shaderErrorOf([&] { makeParameterNode(NodeKind::VaryingParameter, refused, floatType); }),
                  message);
        EXPECT_EQ(shaderErrorOf([&] { makeParameterNode(NodeKind::UniformParameter, refused, floatType); }),
                  message);
    }
}

TEST(NodeValidation, DoesNotExamineOtherParameterNames) {
    const NodeKind kinds[] = {NodeKind::InterfaceParameter, NodeKind::RegisterParameter,
                              NodeKind::InterpolantParameter};
    for (const NodeKind kind : kinds) {
        for (const auto& row : invalidParameterNames) {
            EXPECT_EQ(makeParameterNode(kind, row.name, floatType)->name, row.name);
        }
    }
}

ShaderFunction functionWith(const std::vector<FunctionParameter>& parameterList) {
    ShaderFunction function;
    function.parameters = parameterList;
    return function;
}

struct FunctionNamesRow {
    std::vector<FunctionParameter> parameterList;
    const char* message;
};

TEST(NodeValidation, RefusesAFunctionByItsInputsThenItsOutputs) {
    const FunctionNamesRow rows[] = {
        {{{0, floatType, 0, "1a", ""}}, "input port name \"1a\" is not a valid Cg variable name"},
        {{{0, floatType, 0, "", ""}}, "input port name \"\" is not a valid Cg variable name"},
        {{{1, floatType, 0, "a-b", ""}}, "output port name \"a-b\" is not a valid Cg variable name"},
        // the first of several inputs, and of several outputs
        {{{0, floatType, 0, "a", ""}, {0, floatType, 0, "b b", ""}, {0, floatType, 0, "c c", ""}},
         "input port name \"b b\" is not a valid Cg variable name"},
        {{{1, floatType, 0, "a", ""}, {1, floatType, 0, "b b", ""}, {1, floatType, 0, "c c", ""}},
         "output port name \"b b\" is not a valid Cg variable name"},
        // inputs before outputs, though the output was added first
        {{{1, floatType, 0, "2out", ""}, {0, floatType, 0, "a", ""}, {0, floatType, 0, "2in", ""}},
         "input port name \"2in\" is not a valid Cg variable name"},
        {{{1, floatType, 0, "2out", ""}, {0, floatType, 0, "a", ""}},
         "output port name \"2out\" is not a valid Cg variable name"},
    };
    for (const FunctionNamesRow& row : rows) {
        EXPECT_EQ(shaderErrorOf([&] { makeFunctionNode(functionWith(row.parameterList)); }), row.message);
    }
}

TEST(NodeValidation, DoesNotExamineAFunctionsOwnName) {
    for (const char* const name : {"", "1a", "a b", "unknown"}) {
        ShaderFunction function;
        function.name = name;
        EXPECT_EQ(makeFunctionNode(function)->name, name);
    }
}

TEST(MakeFunctionNode, TakesNameLevelCodeAndPortsFromTheFunction) {
    ShaderFunction function;
    function.name = "mathsCode";
    function.level = ExecutionLevel::Vertex;
    function.code = "\tout_value = in_a;\n";
    function.parameters = {
        {1, half3Type, 0, "out_value", "COLOR0"},
        {0, floatType, 7, "in_a", ""},
        {1, float2Type, 0, "out_uv", ""},
        {0, float4Type, 0, "in_b", "TEXCOORD0"},
    };
    const auto node = makeFunctionNode(function);
    EXPECT_EQ(node->kind, NodeKind::Function);
    EXPECT_EQ(node->name, "mathsCode");
    EXPECT_EQ(node->level, ExecutionLevel::Vertex);
    EXPECT_EQ(node->code, "\tout_value = in_a;\n");
    ASSERT_EQ(node->inputs.size(), 2U);
    EXPECT_EQ(node->inputs[0].name, "in_a");
    EXPECT_EQ(node->inputs[0].type, floatType);
    EXPECT_EQ(node->inputs[1].name, "in_b");
    EXPECT_EQ(node->inputs[1].type, float4Type);
    ASSERT_EQ(node->outputs.size(), 2U);
    EXPECT_EQ(node->outputs[0].name, "out_value");
    EXPECT_EQ(node->outputs[0].type, half3Type);
    EXPECT_EQ(node->outputs[1].name, "out_uv");
    EXPECT_EQ(node->outputs[1].type, float2Type);
    // what belongs to parameters stays as it starts
    EXPECT_EQ(node->type, (ShaderType{ComponentType::Unknown, 1, 1, 1}));
    EXPECT_EQ(node->flags, 0);
    EXPECT_EQ(node->registerReference, (RegisterReference{0, 0}));
}

TEST(MakeFunctionNode, AcceptsADefaultFunction) {
    const auto node = makeFunctionNode({});
    EXPECT_EQ(node->name, "unknown");
    EXPECT_EQ(node->level, ExecutionLevel::Automatic);
    EXPECT_TRUE(node->inputs.empty());
    EXPECT_TRUE(node->outputs.empty());
    EXPECT_NE(node, makeFunctionNode({}));
}

TEST(PortLookup, FindsPortsByDirectionAndName) {
    FunctionBuilder builder;
    builder.addInput(floatType, "in_a");
    builder.addInput(float3Type, "in_b");
    builder.addOutput(half3Type, "out_a");
    const auto node = builder.makeNode(ExecutionLevel::Automatic, "f");
    EXPECT_EQ(&inputPort(*node, "in_a"), node->inputs.data());
    EXPECT_EQ(&inputPort(*node, "in_b"), node->inputs.data() + 1);
    EXPECT_EQ(inputPort(*node, "in_b").name, "in_b");
    EXPECT_EQ(inputPort(*node, "in_b").type, float3Type);
    EXPECT_EQ(&outputPort(*node, "out_a"), node->outputs.data());
    EXPECT_EQ(outputPort(*node, "out_a").type, half3Type);
}

TEST(PortLookup, FindsTheFirstOfSeveral) {
    GeneratorNode node;
    node.inputs = {{"other", floatType}, {"same", float2Type}, {"same", float3Type}};
    node.outputs = {{"same", half3Type}, {"same", floatType}};
    EXPECT_EQ(inputPort(node, "same").type, float2Type);
    EXPECT_EQ(outputPort(node, "same").type, half3Type);
}

TEST(PortLookup, NamesTheNodeAndThePortThatIsMissing) {
    FunctionBuilder builder;
    builder.addInput(floatType, "in_a");
    builder.addOutput(floatType, "out_a");
    const auto function = builder.makeNode(ExecutionLevel::Vertex, "f");
    const auto varying = makeVaryingParameter("uv", float2Type);
    const auto interfaceNode = testing::makeInterface("uv", float2Type, 3);
    const auto position = makeParameterNode(NodeKind::RegisterParameter, "", float4Type, 0, {4, 0});

    EXPECT_EQ(shaderErrorOf([&] { inputPort(*function, "out_a"); }),
              "function \"f\" (1/1/v): input port \"out_a\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { outputPort(*function, "in_a"); }),
              "function \"f\" (1/1/v): output port \"in_a\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { inputPort(*function, "IN_A"); }),
              "function \"f\" (1/1/v): input port \"IN_A\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { outputPort(*function, ""); }),
              "function \"f\" (1/1/v): output port \"\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { inputPort(*varying, "write"); }),
              "varying parameter \"uv\" (float2): input port \"write\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { outputPort(*interfaceNode, "write"); }),
              "interface parameter \"uv\" (float2,flags=3): output port \"write\" does not exist");
    EXPECT_EQ(shaderErrorOf([&] { outputPort(*position, "read"); }),
              "Cg register parameter POSITION (float4): output port \"read\" does not exist");
}

} // namespace
} // namespace patina
