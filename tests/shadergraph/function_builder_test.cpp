#include "shadergraph/function_builder.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>

namespace patina {
namespace {

using testing::float2Type;
using testing::float3Type;
using testing::floatType;
using testing::half3Type;
using testing::shaderErrorOf;

static_assert(std::is_same_v<std::underlying_type_t<ExecutionLevel>, std::int32_t>);
static_assert(static_cast<std::int32_t>(ExecutionLevel::Vertex) == 0);
static_assert(static_cast<std::int32_t>(ExecutionLevel::Fragment) == 1);
static_assert(static_cast<std::int32_t>(ExecutionLevel::Automatic) == 2);

/// The text that the action throws as a plain string; a failure if anything else is thrown, or nothing.
template <typename Action>
std::string plainTextOf(Action&& action) {
    try {
        action();
    } catch (const std::exception& error) {
        ADD_FAILURE() << "a standard exception: " << error.what();
        return "(std::exception)";
    } catch (const std::string& text) {
        return text;
    }
    return "(no plain text)";
}

void expectParameter(const FunctionParameter& parameter, std::int32_t direction, const ShaderType& type,
                     const std::string& name) {
    EXPECT_EQ(parameter.direction, direction);
    EXPECT_EQ(parameter.type, type);
    EXPECT_EQ(parameter.reserved, 0);
    EXPECT_EQ(parameter.name, name);
    EXPECT_EQ(parameter.semantic, "");
}

TEST(FunctionParameter, StartsWithoutNameAndSemantic) {
    const FunctionParameter parameter;
    EXPECT_EQ(parameter.direction, 0);
    EXPECT_EQ(parameter.reserved, 0);
    EXPECT_EQ(parameter.name, "");
    EXPECT_EQ(parameter.semantic, "");
    static_assert(std::is_same_v<decltype(parameter.direction), std::int32_t>);
    static_assert(std::is_same_v<decltype(parameter.reserved), std::int32_t>);
}

TEST(FunctionParameter, KeepsItsFieldOrder) {
    const FunctionParameter parameter;
    testing::expectFieldOrder(
        {&parameter.direction, &parameter.type, &parameter.reserved, &parameter.name, &parameter.semantic});
}

TEST(ShaderFunction, StartsAutomaticUnknownAndEmpty) {
    const ShaderFunction function;
    EXPECT_EQ(function.level, ExecutionLevel::Automatic);
    EXPECT_EQ(function.name, "unknown");
    EXPECT_TRUE(function.parameters.empty());
    EXPECT_EQ(function.code, "");
}

TEST(ShaderFunction, KeepsItsFieldOrder) {
    const ShaderFunction function;
    testing::expectFieldOrder({&function.level, &function.name, &function.parameters, &function.code});
}

TEST(FunctionBuilder, StartsWithAnEmptyUnknownFunction) {
    FunctionBuilder builder;
    EXPECT_EQ(builder.function().level, ExecutionLevel::Automatic);
    EXPECT_EQ(builder.function().name, "unknown");
    EXPECT_TRUE(builder.function().parameters.empty());
    EXPECT_EQ(builder.function().code, "");
    const auto node = builder.makeNode(ExecutionLevel::Automatic, "empty");
    EXPECT_EQ(node->code, "");
    EXPECT_TRUE(node->inputs.empty());
    EXPECT_TRUE(node->outputs.empty());
}

TEST(FunctionBuilder, CollectsParametersInTheOrderAdded) {
    FunctionBuilder builder;
    builder.addOutput(half3Type, "out_b");
    builder.addInput(floatType, "in_a");
    builder.addInput(float2Type, "in_c");
    const auto& parameters = builder.function().parameters;
    ASSERT_EQ(parameters.size(), 3U);
    expectParameter(parameters[0], 1, half3Type, "out_b");
    expectParameter(parameters[1], 0, floatType, "in_a");
    expectParameter(parameters[2], 0, float2Type, "in_c");
}

TEST(FunctionBuilder, ShowsWhatIsAddedLater) {
    for (const std::size_t addedBefore : {0U, 1U, 5U, 40U}) {
        FunctionBuilder builder;
        std::size_t count = 0;
        const auto addUpTo = [&](std::size_t end) {
            for (; count < end; ++count) {
                if (count % 3 == 1) {
                    builder.addOutput(floatType, "out" + std::to_string(count));
                } else {
                    builder.addInput(half3Type, "in" + std::to_string(count));
                }
            }
        };
        addUpTo(addedBefore);
        const ShaderFunction& function = builder.function();
        EXPECT_EQ(function.parameters.size(), addedBefore);
        addUpTo(40);
        ASSERT_EQ(function.parameters.size(), 40U);
        for (std::size_t i = 0; i < 40; ++i) {
            const bool isOutput = i % 3 == 1;
            expectParameter(function.parameters[i], isOutput ? 1 : 0, isOutput ? floatType : half3Type,
                            (isOutput ? "out" : "in") + std::to_string(i));
        }
        const auto node = builder.makeNode(ExecutionLevel::Automatic, "f");
        ASSERT_EQ(node->inputs.size(), 27U);
        ASSERT_EQ(node->outputs.size(), 13U);
        EXPECT_EQ(node->inputs.back().name, "in39");
        EXPECT_EQ(node->outputs.back().name, "out37");
    }
}

TEST(FunctionBuilder, TakesParametersFromPorts) {
    Port uv("in_uv", "uv");
    uv.setPrecision(2);
    uv.setComponentCount(2);
    Port colour("out_colour", "colour");
    colour.setPrecision(3);
    colour.setComponentCount(4);
    // known without being fixed, as after resolution
    Port map("in_map");
    map.precision = 8;
    map.precisionKnown = true;
    map.componentCount = 1;
    map.componentCountKnown = true;

    FunctionBuilder builder;
    builder.addInputPort(uv);
    builder.addOutputPort(colour);
    builder.addInputPort(map);
    const auto& parameters = builder.function().parameters;
    ASSERT_EQ(parameters.size(), 3U);
    expectParameter(parameters[0], 0, {ComponentType::Float, 2, 1, 1}, "in_uv");
    expectParameter(parameters[1], 1, {ComponentType::Half, 4, 1, 1}, "out_colour");
    expectParameter(parameters[2], 0, {ComponentType::Sampler2D, 1, 1, 1}, "in_map");
}

TEST(FunctionBuilder, RefusesUnresolvedPorts) {
    FunctionBuilder builder;
    const Port unresolved("in_a");
    Port counted("in_a");
    counted.setComponentCount(3);
    Port precise("in_a");
    precise.setPrecision(2);

    // the precision is read first
    EXPECT_EQ(shaderErrorOf([&] { builder.addInputPort(unresolved); }), "cannot read unknown precision");
    EXPECT_EQ(shaderErrorOf([&] { builder.addOutputPort(unresolved); }), "cannot read unknown precision");
    EXPECT_EQ(shaderErrorOf([&] { builder.addInputPort(counted); }), "cannot read unknown precision");
    EXPECT_EQ(shaderErrorOf([&] { builder.addOutputPort(counted); }), "cannot read unknown precision");
    EXPECT_EQ(shaderErrorOf([&] { builder.addInputPort(precise); }), "cannot read unknown component count");
    EXPECT_EQ(shaderErrorOf([&] { builder.addOutputPort(precise); }), "cannot read unknown component count");
    EXPECT_TRUE(builder.function().parameters.empty());
}

TEST(FunctionBuilder, AcceptsAnyParameterNameUntilANodeIsMade) {
    FunctionBuilder builder;
    builder.addInput(floatType, "1a");
    builder.addOutput(floatType, "");
    EXPECT_EQ(builder.function().parameters.size(), 2U);
}

TEST(FunctionBuilder, ThrowsAPlainStringForADuplicateParameter) {
    FunctionBuilder builder;
    builder.addInput(floatType, "in_value");
    EXPECT_EQ(plainTextOf([&] { builder.addOutput(float3Type, "in_value"); }),
              "parameter name \"in_value\" is duplicated in function \"unknown\"");
    ASSERT_EQ(builder.function().parameters.size(), 1U);
    expectParameter(builder.function().parameters[0], 0, floatType, "in_value");
    EXPECT_THROW(builder.addInput(floatType, "in_value"), std::string);
}

TEST(FunctionBuilder, RefusesADuplicateFromEveryAddition) {
    Port port("same");
    port.setPrecision(2);
    port.setComponentCount(1);
    const char* const message = "parameter name \"same\" is duplicated in function \"unknown\"";
    for (const bool output : {false, true}) {
        FunctionBuilder builder;
        builder.addInput(floatType, "first");
        if (output) {
            builder.addOutput(floatType, "same");
        } else {
            builder.addInput(floatType, "same");
        }
        builder.addOutput(floatType, "last");
        EXPECT_EQ(plainTextOf([&] { builder.addInput(floatType, "same"); }), message);
        EXPECT_EQ(plainTextOf([&] { builder.addOutput(floatType, "same"); }), message);
        EXPECT_EQ(plainTextOf([&] { builder.addInputPort(port); }), message);
        EXPECT_EQ(plainTextOf([&] { builder.addOutputPort(port); }), message);
        EXPECT_EQ(builder.function().parameters.size(), 3U);
    }
}

TEST(FunctionBuilder, ComparesParameterNamesExactly) {
    FunctionBuilder builder;
    builder.addInput(floatType, "value");
    builder.addInput(floatType, "Value");
    builder.addInput(floatType, "value1");
    builder.addInput(floatType, "valu");
    builder.addInput(floatType, "");
    EXPECT_EQ(builder.function().parameters.size(), 5U);
    EXPECT_EQ(plainTextOf([&] { builder.addInput(floatType, ""); }),
              "parameter name \"\" is duplicated in function \"unknown\"");
}

TEST(FunctionBuilder, GoesOnAfterADuplicate) {
    FunctionBuilder builder;
    builder.addInput(floatType, "a");
    builder.appendCode("\tb = a;\n");
    EXPECT_THROW(builder.addOutput(floatType, "a"), std::string);
    builder.addOutput(floatType, "b");
    const auto node = builder.makeNode(ExecutionLevel::Vertex, "copy");
    EXPECT_EQ(node->code, "\tb = a;\n");
    EXPECT_EQ(describe(*node), "function \"copy\" (1/1/v)");
}

TEST(FunctionBuilder, MakesANodeOfWhatWasCollected) {
    FunctionBuilder builder;
    builder.addInput(floatType, "in_a");
    builder.addOutput(float3Type, "out_value");
    builder.addInput(half3Type, "in_b");
    builder.appendCode("\tout_value = in_a");
    builder.appendCode("");
    builder.appendCode(" * in_b;\n");
    const auto node = builder.makeNode(ExecutionLevel::Fragment, "mathsCode");

    EXPECT_EQ(node->kind, NodeKind::Function);
    EXPECT_EQ(node->name, "mathsCode");
    EXPECT_EQ(node->level, ExecutionLevel::Fragment);
    EXPECT_EQ(node->code, "\tout_value = in_a * in_b;\n");
    ASSERT_EQ(node->inputs.size(), 2U);
    EXPECT_EQ(node->inputs[0].name, "in_a");
    EXPECT_EQ(node->inputs[0].type, floatType);
    EXPECT_EQ(node->inputs[1].name, "in_b");
    EXPECT_EQ(node->inputs[1].type, half3Type);
    ASSERT_EQ(node->outputs.size(), 1U);
    EXPECT_EQ(node->outputs[0].name, "out_value");
    EXPECT_EQ(node->outputs[0].type, float3Type);
}

TEST(FunctionBuilder, KeepsItsOwnFunctionUnnamed) {
    FunctionBuilder builder;
    builder.addInput(floatType, "a");
    builder.appendCode("\t;\n");
    builder.makeNode(ExecutionLevel::Vertex, "named");
    EXPECT_EQ(builder.function().level, ExecutionLevel::Automatic);
    EXPECT_EQ(builder.function().name, "unknown");
    EXPECT_EQ(builder.function().parameters.size(), 1U);
    EXPECT_EQ(plainTextOf([&] { builder.addInput(floatType, "a"); }),
              "parameter name \"a\" is duplicated in function \"unknown\"");
}

TEST(Finish, GivesWhatMakeNodeGives) {
    FunctionBuilder builder;
    builder.reservePorts(1, 1);
    builder.addInput({ComponentType::Half, 3, 1, 1}, "in_value");
    builder.addOutput({ComponentType::Float, 1, 1, 1}, "out_value");
    builder.appendCode("\tout_value = in_value.x;\n");
    const auto made = builder.makeNode(ExecutionLevel::Fragment, "first");
    const auto finished = builder.finish(ExecutionLevel::Fragment, "first");
    EXPECT_NE(made, finished);
    for (const auto& node : {made, finished}) {
        EXPECT_EQ(describe(*node), "function \"first\" (1/1/f)");
        EXPECT_EQ(node->code, "\tout_value = in_value.x;\n");
        ASSERT_EQ(node->inputs.size(), 1U);
        EXPECT_EQ(node->inputs[0].name, "in_value");
        ASSERT_EQ(node->outputs.size(), 1U);
        EXPECT_EQ(node->outputs[0].name, "out_value");
    }
}

TEST(Finish, LeavesTheBuilderEmpty) {
    for (const bool isShown : {false, true}) {
        FunctionBuilder builder;
        builder.addInput(floatType, "a");
        builder.addOutput(floatType, "b");
        builder.appendCode("\tb = a;\n");
        if (isShown) {
            EXPECT_EQ(builder.function().parameters.size(), 2U);
        }
        builder.finish(ExecutionLevel::Automatic, "first");
        EXPECT_TRUE(builder.function().parameters.empty());
        builder.addOutput(half3Type, "a");
        builder.appendCode("\ta = 1;\n");
        ASSERT_EQ(builder.function().parameters.size(), 1U);
        expectParameter(builder.function().parameters[0], 1, half3Type, "a");
        const auto second = builder.makeNode(ExecutionLevel::Automatic, "second");
        EXPECT_EQ(describe(*second), "function \"second\" (0/1/*)");
        EXPECT_EQ(second->code, "\ta = 1;\n");
    }
}

TEST(Finish, LeavesTheBuilderAsItWasWhenANameIsInvalid) {
    FunctionBuilder builder;
    builder.addInput(floatType, "a");
    builder.addOutput(floatType, "b c");
    builder.appendCode("\t;\n");
    EXPECT_THROW(builder.finish(ExecutionLevel::Automatic, "f"), ShaderError);
    ASSERT_EQ(builder.function().parameters.size(), 2U);
    expectParameter(builder.function().parameters[0], 0, floatType, "a");
    expectParameter(builder.function().parameters[1], 1, floatType, "b c");
    EXPECT_THROW(builder.finish(ExecutionLevel::Automatic, "f"), ShaderError);
}

TEST(FunctionBuilder, MakesSeveralNodes) {
    FunctionBuilder builder;
    builder.addInput(floatType, "a");
    builder.appendCode("one");
    const auto first = builder.makeNode(ExecutionLevel::Vertex, "first");
    builder.addOutput(float3Type, "b");
    builder.appendCode(" two");
    const auto second = builder.makeNode(ExecutionLevel::Fragment, "second");
    const auto third = builder.makeNode(ExecutionLevel::Fragment, "second");

    EXPECT_EQ(describe(*first), "function \"first\" (1/0/v)");
    EXPECT_EQ(first->code, "one");
    EXPECT_EQ(describe(*second), "function \"second\" (1/1/f)");
    EXPECT_EQ(second->code, "one two");
    EXPECT_EQ(third->code, "one two");
    EXPECT_NE(second, third);
}

TEST(FunctionBuilder, GoesOnAfterANodeThatFailsValidation) {
    FunctionBuilder builder;
    builder.addInput(floatType, "a-b");
    builder.appendCode("\t;\n");
    const auto make = [&] { builder.makeNode(ExecutionLevel::Automatic, "bad"); };
    EXPECT_EQ(shaderErrorOf(make), "input port name \"a-b\" is not a valid Cg variable name");
    EXPECT_EQ(builder.function().name, "unknown");
    builder.addOutput(floatType, "c");
    EXPECT_EQ(builder.function().parameters.size(), 2U);
    EXPECT_EQ(shaderErrorOf(make), "input port name \"a-b\" is not a valid Cg variable name");
}

TEST(FunctionBuilder, PassesUnknownLevelsOn) {
    FunctionBuilder builder;
    const auto node = builder.makeNode(static_cast<ExecutionLevel>(7), "odd");
    EXPECT_EQ(static_cast<std::int32_t>(node->level), 7);
}

} // namespace
} // namespace patina
