#include "tests/host/host_checks.h"
#include "tests/host/sample_flow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::expectError;
using testing::Flow;
using testing::hostErrorOf;
using testing::typeOf;

constexpr ShaderType float1 = typeOf(ComponentType::Float, 1);
constexpr ShaderType float4 = typeOf(ComponentType::Float, 4);
constexpr ShaderType matrix = {ComponentType::Float, 4, 4, 1};
constexpr ShaderType sampler = typeOf(ComponentType::Sampler2D, 1);

constexpr ShaderType arrayOf(std::int32_t size) { return {ComponentType::Float, 4, 1, size}; }

using Lines = std::vector<std::string>;
using Indices = std::vector<std::size_t>;

/// Parameters that functions of either program read.
class Parameters {
public:
    std::size_t uniform(const std::string& name, const ShaderType& type, RegisterReference wanted = {}) {
        return named(flow_.uniform(name, type), wanted);
    }
    std::size_t varying(const std::string& name, RegisterReference wanted = {},
                        const ShaderType& type = float4) {
        return named(flow_.varying(name, type), wanted);
    }
    void readByVertex(const Indices& nodes) { vertex_.insert(vertex_.end(), nodes.begin(), nodes.end()); }
    void readByFragment(const Indices& nodes) {
        fragment_.insert(fragment_.end(), nodes.begin(), nodes.end());
    }

    RegisterAssignment assign() {
        Indices inputs = fragment_;
        inputs.push_back(flow_.function(ExecutionLevel::Vertex, vertex_));
        const StagedShader shader = flow_.place(flow_.function(ExecutionLevel::Fragment, inputs));
        return assignRegisters(flow_.material, flow_.flow, shader);
    }
    /// What came where, as "Name register".
    Lines lines(const std::vector<PlacedParameter>& placed) const {
        Lines lines;
        for (const PlacedParameter& parameter : placed) {
            lines.push_back(flow_.flow.nodes[parameter.node].generated->name + " " +
                            registerName(parameter.place));
        }
        return lines;
    }
    std::string error() {
        return hostErrorOf([&] { assign(); });
    }

private:
    std::size_t named(std::size_t node, RegisterReference wanted) {
        flow_.flow.nodes[node].generated->registerReference = wanted;
        return node;
    }

    Flow flow_;
    Indices vertex_;
    Indices fragment_;
};

constexpr RegisterReference constant(std::int32_t number) { return {registers::vertexConstant, number}; }

TEST(AssignRegisters, NumbersEachKindInEachProgram) {
    Parameters parameters;
    const Indices all = {
        parameters.uniform("A", float1),       parameters.uniform("Paint", sampler),
        parameters.uniform("Turn", matrix),    parameters.uniform("Row", arrayOf(3)),
        parameters.uniform("Detail", sampler), parameters.uniform("Bones", {ComponentType::Half, 4, 3, 2}),
        parameters.uniform("Last", float4)};
    parameters.readByVertex(all);
    parameters.readByFragment(all);
    const RegisterAssignment assigned = parameters.assign();
    EXPECT_EQ(parameters.lines(assigned.vertexUniforms), (Lines{"A c4", "Paint TEXUNIT0", "Turn c5", "Row c9",
                                                                "Detail TEXUNIT1", "Bones c12", "Last c18"}));
    EXPECT_EQ(
        parameters.lines(assigned.fragmentUniforms),
        (Lines{"A c0", "Paint TEXUNIT0", "Turn c1", "Row c5", "Detail TEXUNIT1", "Bones c8", "Last c14"}));
    EXPECT_EQ(assigned.vertexUniforms[1].place.index, registers::vertexSampler);
    EXPECT_EQ(assigned.fragmentUniforms[1].place.index, registers::fragmentSampler);
}

TEST(AssignRegisters, GivesAProgramOnlyWhatItReads) {
    Parameters parameters;
    parameters.readByVertex({parameters.uniform("V", float1)});
    parameters.readByFragment({parameters.uniform("F", float1)});
    const RegisterAssignment assigned = parameters.assign();
    EXPECT_EQ(parameters.lines(assigned.vertexUniforms), Lines{"V c4"});
    EXPECT_EQ(parameters.lines(assigned.fragmentUniforms), Lines{"F c0"});
    EXPECT_TRUE(assigned.attributes.empty());
}

TEST(AssignRegisters, NumbersAttributesBehindThePosition) {
    Parameters parameters;
    parameters.readByVertex({parameters.varying("A"), parameters.varying("B")});
    parameters.readByFragment({parameters.varying("C")});
    const RegisterAssignment assigned = parameters.assign();
    EXPECT_EQ(registerName(assigned.position), "ATTR0");
    EXPECT_EQ(parameters.lines(assigned.attributes), (Lines{"A ATTR1", "B ATTR2", "C ATTR3"}));
}

TEST(AssignRegisters, PlacesAParameterOfSeveralNodesOnce) {
    Parameters parameters;
    parameters.readByFragment({parameters.uniform("A", float4), parameters.uniform("B", float4),
                               parameters.uniform("A", float4), parameters.uniform("C", float4)});
    EXPECT_EQ(parameters.lines(parameters.assign().fragmentUniforms), (Lines{"A c0", "B c1", "C c2"}));
}

TEST(AssignRegisters, KeepsTheRegistersThatParametersName) {
    Parameters parameters;
    parameters.readByFragment({parameters.uniform("A", float4), parameters.uniform("B", matrix),
                               parameters.uniform("C", float4, constant(1)),
                               parameters.uniform("D", arrayOf(2), constant(1022)),
                               parameters.uniform("E", float4), parameters.uniform("P", sampler),
                               parameters.uniform("Q", sampler, {registers::fragmentSampler, 0})});
    EXPECT_EQ(parameters.lines(parameters.assign().fragmentUniforms),
              (Lines{"A c0", "B c2", "C c1", "D c1022", "E c6", "P TEXUNIT1", "Q TEXUNIT0"}));
}

TEST(AssignRegisters, KeepsTheRegistersThatAttributesName) {
    Parameters parameters;
    parameters.readByVertex({parameters.varying("A"),
                             parameters.varying("B", {registers::vertexAttribute, 1}),
                             parameters.varying("C", {registers::vertexAttribute, 15})});
    EXPECT_EQ(parameters.lines(parameters.assign().attributes), (Lines{"A ATTR2", "B ATTR1", "C ATTR15"}));
}

TEST(AssignRegisters, KeepsTheRegisterThatOneOfSeveralNodesNames) {
    Parameters parameters;
    parameters.readByFragment({parameters.uniform("A", float4), parameters.uniform("A", float4, constant(7)),
                               parameters.uniform("A", float4, constant(7))});
    EXPECT_EQ(parameters.lines(parameters.assign().fragmentUniforms), Lines{"A c7"});
}

TEST(AssignRegisters, LetsEachProgramNameTheSameRegister) {
    Parameters parameters;
    parameters.readByVertex({parameters.uniform("V", float4, constant(9))});
    parameters.readByFragment({parameters.uniform("F", float4, constant(9))});
    const RegisterAssignment assigned = parameters.assign();
    EXPECT_EQ(parameters.lines(assigned.vertexUniforms), Lines{"V c9"});
    EXPECT_EQ(parameters.lines(assigned.fragmentUniforms), Lines{"F c9"});
}

// Refusals

TEST(AssignRegisters, RefusesOneRegisterForTwoParameters) {
    Parameters overlapping;
    overlapping.readByFragment(
        {overlapping.uniform("A", matrix, constant(4)), overlapping.uniform("B", float4, constant(7))});
    EXPECT_EQ(
        overlapping.error(),
        "flow.xml:11: error: node \"item1\" (\"Item\"): uniform parameter \"B\" (float4 : register( c7 )) "
        "cannot have that register, which uniform parameter \"A\" (float4x4 : register( c4 )) of node "
        "\"item0\" (\"Item\") has; one of them must take another");
    Parameters attributes;
    attributes.readByVertex({attributes.varying("A", {registers::vertexAttribute, 3}),
                             attributes.varying("B", {registers::vertexAttribute, 3})});
    expectError(attributes.error(), "flow.xml:11", {"node \"item1\"", "ATTR3", "node \"item0\""});
}

TEST(AssignRegisters, GivesThePositionNoOtherRegister) {
    Parameters parameters;
    parameters.readByVertex({parameters.varying("P", {registers::vertexAttribute, 0}),
                             parameters.varying("Q", {registers::vertexAttribute, 0}),
                             parameters.varying("P"), parameters.varying("R")});
    EXPECT_EQ(parameters.lines(parameters.assign().attributes), Lines{"R ATTR1"});
}

TEST(AssignRegisters, RefusesTwoRegistersForOneParameter) {
    Parameters parameters;
    parameters.readByFragment(
        {parameters.uniform("A", float4, constant(1)), parameters.uniform("A", float4, constant(2))});
    expectError(parameters.error(), "flow.xml:11", {"node \"item1\"", "\"A\"", "node \"item0\""});
}

TEST(AssignRegisters, RefusesTheRegistersOfTheFramework) {
    for (const std::int32_t number : {0, 3}) {
        Parameters parameters;
        const std::size_t node = parameters.uniform("A", float4, constant(number));
        parameters.readByFragment({node});
        EXPECT_EQ(parameters.error(), testing::noError);
        parameters.readByVertex({node});
        expectError(parameters.error(), "flow.xml:10",
                    {"node \"item0\" (\"Item\")", "vertex", "\"register( c3 )\"", "framework"});
    }
    Parameters attributes;
    attributes.readByVertex(
        {attributes.varying("A", {registers::vertexAttribute, 0}, typeOf(ComponentType::Float, 3))});
    expectError(attributes.error(), "flow.xml:10", {"node \"item0\"", "\"ATTR0\"", "framework"});
    Parameters position;
    position.readByVertex({position.varying("A", {registers::vertexAttribute, 0})});
    EXPECT_EQ(position.error(), testing::noError);
}

struct ForeignRow {
    const char* what;
    ShaderType type;
    RegisterReference wanted;
};

const ForeignRow foreignToUniforms[] = {
    {"an attribute", float4, {registers::vertexAttribute, 4}},
    {"an output", float4, {registers::fragmentColour, 0}},
    {"a sampler for a constant", float4, {registers::fragmentSampler, 0}},
    {"a constant for a sampler", sampler, constant(4)},
    {"a sampler of the vertex program", sampler, {registers::vertexSampler, 0}},
    {"a number beyond the constants", float4, constant(1024)},
    {"rows beyond the constants", matrix, constant(1021)},
    {"elements beyond the constants", arrayOf(2147483647), constant(2147483647)},
    {"a number beyond the samplers", sampler, {registers::fragmentSampler, 16}},
    {"a negative number", float4, constant(-1)},
    {"a kind beyond the table", float4, {18, 0}},
    {"a negative kind", float4, {-1, 0}},
};

TEST(AssignRegisters, RefusesRegistersThatCannotHoldAUniform) {
    for (const ForeignRow& row : foreignToUniforms) {
        Parameters parameters;
        parameters.readByFragment({parameters.uniform("A", row.type, row.wanted)});
        SCOPED_TRACE(row.what);
        expectError(parameters.error(), "flow.xml:10", {"node \"item0\" (\"Item\")", "\"A\"", "fragment"});
    }
    Parameters matrices;
    matrices.readByFragment({matrices.uniform("A", matrix, constant(1021))});
    EXPECT_EQ(matrices.error(),
              "flow.xml:10: error: node \"item0\" (\"Item\"): parameter \"A\" names a register "
              "that cannot be its own: the fragment program holds it in 4 of \"register( c0 )\" to "
              "\"register( c1023 )\"");
}

TEST(AssignRegisters, RefusesRegistersThatCannotHoldAVarying) {
    for (const RegisterReference wanted : {RegisterReference{registers::vertexAttribute, 16},
                                           {registers::vertexInterpolant, 1},
                                           {registers::fragmentInterpolant, 1},
                                           {registers::vertexConstant, 5},
                                           {11, 0},
                                           {99, 0}}) {
        Parameters parameters;
        parameters.readByVertex({parameters.varying("A", wanted)});
        expectError(parameters.error(), "flow.xml:10",
                    {"node \"item0\"", "\"A\"", "vertex", "\"ATTR0\"", "\"ATTR15\""});
    }
}

TEST(AssignRegisters, RefusesMoreThanThereAre) {
    Parameters full;
    full.readByVertex({full.uniform("A", arrayOf(1020))});
    EXPECT_EQ(full.error(), testing::noError);

    Parameters constants;
    constants.readByVertex({constants.uniform("A", arrayOf(1020))});
    constants.readByVertex({constants.uniform("B", float1)});
    EXPECT_EQ(
        constants.error(),
        "flow.xml:11: error: node \"item1\" (\"Item\"): uniform parameter \"B\" (float) finds no room: the "
        "vertex program needs 1025 constant registers, the framework's matrix among them, and there are "
        "1024; let nodes share parameters, or leave some out");

    Parameters textures;
    Indices samplers;
    for (int i = 0; i < 4; ++i) {
        samplers.push_back(textures.uniform("T" + std::to_string(i), sampler));
    }
    samplers.push_back(textures.uniform("T4", sampler));
    samplers.push_back(textures.uniform("T5", sampler));
    textures.readByVertex(samplers);
    EXPECT_EQ(
        textures.error(),
        "flow.xml:14: error: node \"item4\" (\"Item\"): uniform parameter \"T4\" (sampler2D) finds no room: "
        "the vertex program needs 6 textures, and there are 4; let nodes share parameters, or leave some "
        "out");

    Parameters attributes;
    Indices varyings = {attributes.varying("V0", {registers::vertexAttribute, 5})};
    for (int i = 1; i < 16; ++i) {
        varyings.push_back(attributes.varying("V" + std::to_string(i)));
    }
    attributes.readByVertex(varyings);
    EXPECT_EQ(
        attributes.error(),
        "flow.xml:25: error: node \"item15\" (\"Item\"): varying parameter \"V15\" (float4) finds no room: "
        "the vertex program needs 17 vertex attributes, the position among them, and there are 16; let "
        "nodes share parameters, or leave some out");

    Parameters huge;
    huge.readByFragment({huge.uniform("A", {ComponentType::Float, 4, 2147483647, 2147483647})});
    expectError(huge.error(), "flow.xml:10", {"fragment", "constant registers", "1024"});

    Parameters beyondCounting;
    const ShaderType most = {ComponentType::Float, 4, 2147483647, 2147483647};
    beyondCounting.readByFragment({beyondCounting.uniform("A", most), beyondCounting.uniform("B", most),
                                   beyondCounting.uniform("C", most)});
    expectError(beyondCounting.error(), "flow.xml:10", {"9223372036854775807 constant registers", "1024"});
    Parameters evenMore;
    evenMore.readByFragment({evenMore.uniform("A", most), evenMore.uniform("B", most),
                             evenMore.uniform("C", most), evenMore.uniform("D", float4, constant(500))});
    expectError(evenMore.error(), "flow.xml:10", {"9223372036854775807 constant registers", "1024"});
}

TEST(AssignRegisters, RefusesWhatFindsNoGap) {
    Parameters parameters;
    parameters.readByFragment(
        {parameters.uniform("A", arrayOf(600)), parameters.uniform("B", float4, constant(500))});
    expectError(parameters.error(), "flow.xml:10",
                {"node \"item0\"", "uniform parameter \"A\" (float4[600])", "600", "fragment"});
}

TEST(RegisterName, IsShort) {
    EXPECT_EQ(registerName(constant(12)), "c12");
    EXPECT_EQ(registerName({registers::vertexSampler, 3}), "TEXUNIT3");
    EXPECT_EQ(registerName({registers::fragmentSampler, 0}), "TEXUNIT0");
    EXPECT_EQ(registerName({registers::vertexAttribute, 1}), "ATTR1");
    EXPECT_THROW(registerName({18, 0}), ShaderError);
}

} // namespace
} // namespace patina
