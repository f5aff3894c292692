#include "shadergraph/function_builder.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace patina {
namespace {

using testing::shaderErrorOf;

std::string bodyOf(FunctionBuilder& builder) {
    return builder.makeNode(ExecutionLevel::Automatic, "constants")->code;
}

std::string constantLine(const ShaderType& type, const std::string& name, float value) {
    FunctionBuilder builder;
    builder.declareConstant(type, name, value);
    return bodyOf(builder);
}

Port resolvedPort(const std::string& name, ComponentType precision, std::uint32_t count) {
    Port port(name);
    port.setPrecision(static_cast<std::uint32_t>(precision));
    port.setComponentCount(count);
    return port;
}

struct ConstantRow {
    ShaderType type;
    const char* name;
    float value;
    const char* line;
};

constexpr ConstantRow constants[] = {
    {{ComponentType::Float, 3, 1, 1}, "out_value", 0.0F, "\tfloat3 out_value = float( 0 ).xxx;\n"},
    // a scalar keeps its one-component swizzle
    {{ComponentType::Half, 1, 1, 1}, "out_value", 1.0F, "\thalf out_value = half( 1 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "in_a", 0.5F, "\tfloat in_a = float( 0.5 ).x;\n"},
    {{ComponentType::Float, 2, 1, 1}, "in_uv", 0.0F, "\tfloat2 in_uv = float( 0 ).xx;\n"},
    {{ComponentType::Half, 4, 1, 1}, "in_colour", 1.0F, "\thalf4 in_colour = half( 1 ).xxxx;\n"},
    {{ComponentType::Half, 3, 1, 1}, "h", -2.25F, "\thalf3 h = half( -2.25 ).xxx;\n"},
    // one x a column, whatever the shape
    {{ComponentType::Float, 4, 3, 1}, "m", 1.0F, "\tfloat3x4 m = float( 1 ).xxxx;\n"},
    {{ComponentType::Float, 4, 1, 8}, "lights", 0.0F, "\tfloat4 lights[8] = float( 0 ).xxxx;\n"},
    {{ComponentType::Half, 2, 2, 2}, "m", 0.0F, "\thalf2x2 m[2] = half( 0 ).xx;\n"},
    {{ComponentType::Float, 5, 1, 1}, "v", 0.0F, "\tfloat5 v = float( 0 ).xxxxx;\n"},
    {{ComponentType::Float, 0, 1, 1}, "v", 0.0F, "\tfloat v = float( 0 ).;\n"},
    {{ComponentType::Float, -1, 1, 1}, "v", 0.0F, "\tfloat v = float( 0 ).;\n"},
    {{ComponentType::Float, 1, 1, 1000}, "v", 0.0F, "\tfloat v[1000] = float( 0 ).x;\n"},
    // six significant digits
    {{ComponentType::Float, 1, 1, 1}, "v", 0.1F, "\tfloat v = float( 0.1 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", -0.0F, "\tfloat v = float( -0 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 1.0F / 3.0F, "\tfloat v = float( 0.333333 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 3.14159265F, "\tfloat v = float( 3.14159 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 1234.5F, "\tfloat v = float( 1234.5 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 100000.0F, "\tfloat v = float( 100000 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 1000000.0F, "\tfloat v = float( 1e+06 ).x;\n"},
    {{ComponentType::Half, 1, 1, 1}, "v", 1234567.0F, "\thalf v = half( 1.23457e+06 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 0.0001F, "\tfloat v = float( 0.0001 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 0.00001F, "\tfloat v = float( 1e-05 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1}, "v", 3.4028235e38F, "\tfloat v = float( 3.40282e+38 ).x;\n"},
    {{ComponentType::Float, 1, 1, 1},
     "v",
     std::numeric_limits<float>::infinity(),
     "\tfloat v = float( inf ).x;\n"},
};

void expectConstantLines() {
    for (const auto& [type, name, value, line] : constants) {
        EXPECT_EQ(constantLine(type, name, value), line);
    }
}

TEST(DeclareConstant, SplatsTheValueToEveryColumn) { expectConstantLines(); }

TEST(DeclareConstant, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    expectConstantLines();
}

TEST(DeclareConstant, DoesNotExamineTheName) {
    EXPECT_EQ(constantLine(testing::floatType, "1 a", 0.0F), "\tfloat 1 a = float( 0 ).x;\n");
    EXPECT_EQ(constantLine(testing::floatType, "", 0.0F), "\tfloat  = float( 0 ).x;\n");
}

TEST(DeclareConstant, AppendsToTheBodyAndAddsNoParameter) {
    FunctionBuilder builder;
    builder.addOutput(testing::floatType, "a");
    builder.appendCode("// begin\n");
    builder.declareConstant(testing::floatType, "a", 1.0F);
    builder.declareConstant(testing::half3Type, "a", 2.0F);
    builder.appendCode("// end\n");
    EXPECT_EQ(bodyOf(builder), "// begin\n"
                               "\tfloat a = float( 1 ).x;\n"
                               "\thalf3 a = half( 2 ).xxx;\n"
                               "// end\n");
    EXPECT_EQ(builder.function().parameters.size(), 1U);
}

struct RefusedRow {
    ShaderType type;
    const char* message;
    const char* begun; ///< what stays in the body
};

constexpr RefusedRow refusedConstants[] = {
    {{ComponentType::Unknown, 1, 1, 1}, "cannot determine zero type for unknown", "\tunknown x = "},
    {{ComponentType::Void, 1, 1, 1}, "cannot determine zero type for void", "\tvoid x = "},
    {{ComponentType::Fixed, 4, 1, 1}, "cannot determine zero type for fixed4", "\tfixed4 x = "},
    {{ComponentType::Int, 1, 1, 1}, "cannot determine zero type for int", "\tint x = "},
    {{ComponentType::Int, 3, 1, 8}, "cannot determine zero type for int3[8]", "\tint3 x[8] = "},
    {{ComponentType::Bool, 2, 3, 1}, "cannot determine zero type for bool3x2", "\tbool3x2 x = "},
    {{ComponentType::Sampler1D, 1, 1, 1}, "cannot determine zero type for sampler1D", "\tsampler1D x = "},
    {{ComponentType::Sampler2D, 1, 1, 1}, "cannot determine zero type for sampler2D", "\tsampler2D x = "},
    {{ComponentType::Sampler3D, 1, 1, 1}, "cannot determine zero type for sampler3D", "\tsampler3D x = "},
    {{ComponentType::SamplerCube, 1, 1, 1},
     "cannot determine zero type for samplerCUBE",
     "\tsamplerCUBE x = "},
    {{ComponentType::SamplerRect, 1, 1, 1000},
     "cannot determine zero type for samplerRECT[1000]",
     "\tsamplerRECT x[1000] = "},
};

void expectRefusals() {
    for (const auto& [type, message, begun] : refusedConstants) {
        FunctionBuilder builder;
        const ShaderType& refused = type;
        EXPECT_EQ(shaderErrorOf([&] { builder.declareConstant(refused, "x", 0.0F); }), message);
        EXPECT_EQ(bodyOf(builder), begun);
        builder.appendCode("| after");
        EXPECT_EQ(bodyOf(builder), std::string(begun) + "| after");
    }
}

TEST(DeclareConstant, RefusesOtherComponentTypesAndLeavesTheBeginningOfTheLine) { expectRefusals(); }

TEST(DeclareConstant, RefusesAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    expectRefusals();
}

TEST(DeclareConstant, RefusesAComponentTypeWithoutAName) {
    FunctionBuilder builder;
    EXPECT_EQ(shaderErrorOf([&] { builder.declareConstant(testing::namelessType, "x", 0.0F); }),
              "unknown component type");
    EXPECT_EQ(bodyOf(builder), "");
}

TEST(DeclarePortConstant, TakesNameAndTypeFromThePort) {
    FunctionBuilder builder;
    builder.declarePortConstant(resolvedPort("in_value1", ComponentType::Float, 3), 0.0F);
    builder.declarePortConstant(resolvedPort("in_value2", ComponentType::Half, 1), 0.25F);
    EXPECT_EQ(bodyOf(builder), "\tfloat3 in_value1 = float( 0 ).xxx;\n"
                               "\thalf in_value2 = half( 0.25 ).x;\n");
    EXPECT_TRUE(builder.function().parameters.empty());
}

TEST(DeclarePortConstant, TakesTheNameAndNotTheLabel) {
    Port port("in_uv", "uv");
    port.setPrecision(2);
    port.setComponentCount(2);
    FunctionBuilder builder;
    builder.declarePortConstant(port, 0.0F);
    EXPECT_EQ(bodyOf(builder), "\tfloat2 in_uv = float( 0 ).xx;\n");
}

TEST(DeclarePortConstant, RefusesOtherPrecisions) {
    FunctionBuilder builder;
    EXPECT_EQ(shaderErrorOf([&] {
                  builder.declarePortConstant(resolvedPort("in_map", ComponentType::Sampler2D, 1), 0.0F);
              }),
              "cannot determine zero type for sampler2D");
    EXPECT_EQ(bodyOf(builder), "\tsampler2D in_map = ");
}

TEST(DeclarePortConstant, NeedsAResolvedPort) {
    FunctionBuilder builder;
    Port unresolved("in_a");
    EXPECT_EQ(shaderErrorOf([&] { builder.declarePortConstant(unresolved, 0.0F); }),
              "cannot read unknown precision");
    Port counted("in_a");
    counted.setComponentCount(3);
    EXPECT_EQ(shaderErrorOf([&] { builder.declarePortConstant(counted, 0.0F); }),
              "cannot read unknown precision");
    Port precise("in_a");
    precise.setPrecision(2);
    EXPECT_EQ(shaderErrorOf([&] { builder.declarePortConstant(precise, 0.0F); }),
              "cannot read unknown component count");
    EXPECT_EQ(bodyOf(builder), "");
}

} // namespace
} // namespace patina
