#include "corenodes/maths_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

struct InputRow {
    const char* name;
    bool scalar;
    const char* defaultProperty; ///< null: the input must be connected
};

struct FunctionCode {
    const char* function;
    std::vector<InputRow> inputs;
    bool scalarOutput;
    const char* line;
    ExecutionLevel automaticLevel;
};

constexpr InputRow value1 = {"in_value1", false, "Default Value 1"};
constexpr InputRow value2 = {"in_value2", false, "Default Value 2"};
constexpr InputRow blend = {"in_blend", true, "Default Blend"};
constexpr InputRow minimum = {"in_min", false, "Default Min"};
constexpr InputRow maximum = {"in_max", false, "Default Max"};
constexpr InputRow oldMinimum = {"in_oldmin", false, "Default Old Min"};
constexpr InputRow oldMaximum = {"in_oldmax", false, "Default Old Max"};
constexpr InputRow test1 = {"in_test1", true, "Default Test 1"};
constexpr InputRow test2 = {"in_test2", true, "Default Test 2"};
constexpr InputRow power = {"in_power", true, "Default Power"};
constexpr InputRow scale = {"in_scale", false, "Default Scale"};
constexpr InputRow facing = {"in_facing", true, nullptr};

constexpr ExecutionLevel fragment = ExecutionLevel::Fragment;
constexpr ExecutionLevel automatic = ExecutionLevel::Automatic;

const std::vector<FunctionCode> functionCodes = {
    {"Multiply", {value1, value2}, false, "\tout_value = in_value1 * in_value2;\n", automatic},
    {"Addition", {value1, value2}, false, "\tout_value = in_value1 + in_value2;\n", automatic},
    {"Subtraction", {value1, value2}, false, "\tout_value = in_value1 - in_value2;\n", automatic},
    {"Invert", {value1}, false, "\tout_value = in_ref - in_value1;\n", automatic},
    {"Power", {value1, power}, false, "\tout_value = pow( in_value1, in_power );\n", automatic},
    {"Clamp",
     {value1, minimum, maximum},
     false,
     "\tout_value = clamp( in_value1, in_min, in_max );\n",
     automatic},
    {"Range",
     {value1, minimum, maximum, oldMinimum, oldMaximum},
     false,
     "\tout_value = lerp( in_min, in_max, saturate( ( in_value1 - in_oldmin )/( in_oldmax - in_oldmin ) "
     "));\n",
     automatic},
    {"Lerp",
     {value1, value2, blend},
     false,
     "\tout_value = lerp( in_value1, in_value2, in_blend );\n",
     automatic},
    {"SmoothStep",
     {value1, value2, blend},
     false,
     "\tout_value = lerp( in_value1, in_value2, smoothstep( 0, 1, in_blend ) );\n",
     automatic},
    {"Compare",
     {value1, value2, test1, test2},
     false,
     "\tout_value = ( in_test1 < in_test2 ) ? in_value1 : in_value2;\n",
     automatic},
    {"Dot Product", {value1, value2}, false, "\tout_value = dot( in_value1, in_value2 );\n", automatic},
    {"Fresnel",
     {facing, minimum, scale, power},
     true,
     "\tout_value = in_min + in_scale*pow( saturate( 1.0 - in_facing ), in_power );\n",
     automatic},
    {"Ceil", {value1}, false, "\tout_value = ceil( in_value1 );\n", fragment},
    {"Floor", {value1}, false, "\tout_value = floor( in_value1 );\n", fragment},
    {"Frac", {value1}, false, "\tout_value = frac( in_value1 );\n", fragment},
};

struct DefaultValue {
    const char* property;
    float value;
    const char* text;
};

// a different value for every default, so that none can stand in for another
constexpr DefaultValue defaultValues[] = {
    {"Default Value 1", 0.5F, "0.5"},     {"Default Value 2", 1234567.0F, "1.23457e+06"},
    {"Default Blend", 0.75F, "0.75"},     {"Default Min", -1.5F, "-1.5"},
    {"Default Max", 100000.0F, "100000"}, {"Default Old Min", 0.0F, "0"},
    {"Default Old Max", 1.0F, "1"},       {"Default Test 1", 0.00001F, "1e-05"},
    {"Default Test 2", 0.2F, "0.2"},      {"Default Power", 5.0F, "5"},
    {"Default Scale", 2.25F, "2.25"},
};

std::string defaultText(const char* propertyName) {
    for (const DefaultValue& row : defaultValues) {
        if (std::string(row.property) == propertyName) {
            return row.text;
        }
    }
    return "(no such default)";
}

/// Selects the function, sets every default, and attaches the inputs whose bits are set.
void configure(MathsNode& node, const FunctionCode& row, unsigned connectedInputs) {
    property(node, "Function").setEnum(row.function);
    for (const DefaultValue& value : defaultValues) {
        property(node, value.property).setFloat(value.value);
    }
    node.updateFromProperties(nullptr);
    ASSERT_EQ(node.inputs.size(), row.inputs.size());
    for (std::size_t i = 0; i < row.inputs.size(); ++i) {
        node.inputs[i].connected = (connectedInputs >> i & 1U) != 0;
    }
}

void expectMathsCode(const FunctionCode& row, unsigned connectedInputs, const Precision& precision,
                     std::uint32_t width) {
    SCOPED_TRACE(row.function);
    SCOPED_TRACE(connectedInputs);
    SCOPED_TRACE(vectorText(precision.word, width));
    MathsNode node;
    configure(node, row, connectedInputs);
    resolve(node, precision, width);

    Texts inputs;
    std::string code;
    for (std::size_t i = 0; i < row.inputs.size(); ++i) {
        const InputRow& input = row.inputs[i];
        const std::uint32_t inputWidth = input.scalar ? 1 : width;
        if ((connectedInputs >> i & 1U) != 0) {
            inputs.push_back(vectorText(precision.word, inputWidth) + " " + input.name);
        } else {
            code += constantLine(precision.word, inputWidth, input.name, defaultText(input.defaultProperty));
        }
    }
    if (std::string(row.function) == "Invert") {
        code += constantLine(precision.word, width, "in_ref", "1");
    }
    code += row.line;
    const std::string output = vectorText(precision.word, row.scalarOutput ? 1 : width) + " out_value";

    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"mathsCode"});
    expectFunction(generator, 0, {"mathsCode", row.automaticLevel, inputs, {output}, code});
    EXPECT_EQ(edges(generator), Texts{});
    EXPECT_TRUE(generator.portLinks.empty());
}

bool isComplete(const FunctionCode& row, unsigned connectedInputs) {
    for (std::size_t i = 0; i < row.inputs.size(); ++i) {
        if (row.inputs[i].defaultProperty == nullptr && (connectedInputs >> i & 1U) == 0) {
            return false;
        }
    }
    return true;
}

void expectAllMathsCode() {
    for (const FunctionCode& row : functionCodes) {
        for (unsigned connectedInputs = 0; connectedInputs < 1U << row.inputs.size(); ++connectedInputs) {
            if (!isComplete(row, connectedInputs)) {
                continue;
            }
            for (const Precision& precision : precisions) {
                for (std::uint32_t width = 1; width <= 4; ++width) {
                    expectMathsCode(row, connectedInputs, precision, width);
                }
            }
        }
    }
}

TEST(MathsCode, AppliesTheFunctionToInputsAndDefaults) { expectAllMathsCode(); }

TEST(MathsCode, IgnoresTheLocaleOfTheProcess) {
    const CommaLocale comma;
    expectAllMathsCode();
}

TEST(MathsCode, OfANewNode) {
    MathsNode node;
    resolve(node, floatPrecision);
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {},
                    {"float out_value"},
                    "\tfloat in_value1 = float( 0 ).x;\n"
                    "\tfloat in_value2 = float( 0 ).x;\n"
                    "\tout_value = in_value1 * in_value2;\n"});
}

TEST(MathsCode, OfAnInversionOfNothing) {
    MathsNode node;
    property(node, "Function").setEnum("Invert");
    node.updateFromProperties(nullptr);
    resolve(node, halfPrecision, 3);
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {},
                    {"half3 out_value"},
                    "\thalf3 in_value1 = half( 0 ).xxx;\n"
                    "\thalf3 in_ref = half( 1 ).xxx;\n"
                    "\tout_value = in_ref - in_value1;\n"});
}

TEST(MathsCode, OfAFresnelWithOnlyFacing) {
    MathsNode node;
    property(node, "Function").setEnum("Fresnel");
    node.updateFromProperties(nullptr);
    node.inputPort("in_facing").connected = true;
    resolve(node, floatPrecision);
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {"float in_facing"},
                    {"float out_value"},
                    "\tfloat in_min = float( 0 ).x;\n"
                    "\tfloat in_scale = float( 1 ).x;\n"
                    "\tfloat in_power = float( 5 ).x;\n"
                    "\tout_value = in_min + in_scale*pow( saturate( 1.0 - in_facing ), in_power );\n"});
}

TEST(MathsCode, OfARangeOfNothing) {
    MathsNode node;
    property(node, "Function").setEnum("Range");
    node.updateFromProperties(nullptr);
    resolve(node, floatPrecision, 2);
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code,
              "\tfloat2 in_value1 = float( 0 ).xx;\n"
              "\tfloat2 in_min = float( 0 ).xx;\n"
              "\tfloat2 in_max = float( 1 ).xx;\n"
              "\tfloat2 in_oldmin = float( 0 ).xx;\n"
              "\tfloat2 in_oldmax = float( 1 ).xx;\n"
              "\tout_value = lerp( in_min, in_max, saturate( ( in_value1 - in_oldmin )/( in_oldmax - "
              "in_oldmin ) ));\n");
}

TEST(MathsCode, OfADotProductHasTheWidthOfItsInputs) {
    MathsNode node;
    property(node, "Function").setEnum("Dot Product");
    node.updateFromProperties(nullptr);
    node.inputPort("in_value1").connected = true;
    node.inputPort("in_value2").connected = true;
    resolve(node, halfPrecision, 3);
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {"half3 in_value1", "half3 in_value2"},
                    {"half3 out_value"},
                    "\tout_value = dot( in_value1, in_value2 );\n"});
}

TEST(MathsCode, KeepsTheWidthOfEveryInput) {
    MathsNode node;
    Port& scalar = node.inputPort("in_value1");
    scalar.componentCount = 1;
    scalar.componentCountKnown = true;
    scalar.connected = true;
    Port& vector = node.inputPort("in_value2");
    vector.componentCount = 4;
    vector.componentCountKnown = true;
    vector.connected = true;
    node.resolveComponentCounts();
    node.resolvePrecision();
    expectFunction(generated(node), 0,
                   {"mathsCode",
                    ExecutionLevel::Automatic,
                    {"half in_value1", "half4 in_value2"},
                    {"half4 out_value"},
                    "\tout_value = in_value1 * in_value2;\n"});
}

TEST(MathsCode, TakesTheReferenceOfAnInversionFromTheNode) {
    MathsNode node;
    property(node, "Function").setEnum("Invert");
    node.updateFromProperties(nullptr);
    resolve(node, floatPrecision, 2);
    node.resolvedPrecision = 3;
    node.resolvedComponentCount = 4;
    EXPECT_EQ(generated(node).graph->nodes.at(0)->code, "\tfloat2 in_value1 = float( 0 ).xx;\n"
                                                        "\thalf4 in_ref = half( 1 ).xxxx;\n"
                                                        "\tout_value = in_ref - in_value1;\n");
}

ExecutionLevel levelOf(const FunctionCode& row, const char* executionLevel) {
    MathsNode node;
    configure(node, row, ~0U);
    if (executionLevel == nullptr) {
        setUnknownEnum(node, "Execution Level");
    } else {
        property(node, "Execution Level").setEnum(executionLevel);
    }
    resolve(node, floatPrecision);
    return generated(node).graph->nodes.at(0)->level;
}

TEST(MathsCode, RunsAtTheExecutionLevel) {
    for (const FunctionCode& row : functionCodes) {
        SCOPED_TRACE(row.function);
        EXPECT_EQ(levelOf(row, "Vertex"), ExecutionLevel::Vertex);
        EXPECT_EQ(levelOf(row, "Fragment"), ExecutionLevel::Fragment);
        EXPECT_EQ(levelOf(row, "Automatic"), row.automaticLevel);
        EXPECT_EQ(levelOf(row, nullptr), row.automaticLevel);
    }
}

TEST(MathsCode, LinksItsPortsToTheFunction) {
    MathsNode node;
    Connections connections;
    const auto second = connections.into(node, "in_value2");
    const auto first = connections.into(node, "in_value1");
    const auto out = connections.outOf(node, "out_value");
    const auto alsoOut = connections.outOf(node, "out_value");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 4U);
    EXPECT_EQ(portLink(generator, first), "none -> mathsCode#0.in_value1");
    EXPECT_EQ(portLink(generator, second), "none -> mathsCode#0.in_value2");
    EXPECT_EQ(portLink(generator, out), "mathsCode#0.out_value -> none");
    EXPECT_EQ(portLink(generator, alsoOut), "mathsCode#0.out_value -> none");
}

TEST(MathsCode, ReportsAnExpiredLinkAfterAddingTheFunction) {
    MathsNode node;
    Connections connections;
    const auto first = connections.into(node, "in_value1");
    node.inputLinks.push_back(std::make_shared<NodeConnection>());
    resolve(node, floatPrecision);
    GraphGenerator generator;
    EXPECT_THROW(node.generateCode(generator), std::bad_weak_ptr);
    EXPECT_EQ(nodeNames(generator), Texts{"mathsCode"});
    EXPECT_EQ(portLink(generator, first), "none -> mathsCode#0.in_value1");
}

TEST(MathsCode, NeedsAFacingValue) {
    for (const bool resolved : {false, true}) {
        MathsNode node;
        property(node, "Function").setEnum("Fresnel");
        node.updateFromProperties(nullptr);
        Connections connections;
        connections.into(node, "in_min");
        if (resolved) {
            resolve(node, floatPrecision);
        }
        GraphGenerator generator;
        EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
                  "a value needs to be supplied to the \"facing\" port on the Fresnel maths node");
        EXPECT_TRUE(isUntouched(generator));
    }
}

TEST(MathsCode, NeedsResolvedPorts) {
    MathsNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    node.resolvePrecision();
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown component count");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(MathsCode, HasConstantsOfFloatAndHalfOnly) {
    MathsNode node;
    resolve(node, floatPrecision, 3);
    node.inputPort("in_value2").precision = 4;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot determine zero type for fixed3");
    EXPECT_TRUE(isUntouched(generator));
}

} // namespace
} // namespace patina
