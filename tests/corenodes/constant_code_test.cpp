#include "corenodes/constant_node.h"
#include "tests/corenodes/node_checks.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using namespace testing;

/// A constant of that type with colour 0.8, 1, 0.25, scalar 0.5 and alpha 0.75, updated.
class ConstantCode : public ::testing::Test {
protected:
    void configure(const char* type, bool lock, bool alpha, std::int32_t count = 4) {
        property(node, "Constant Type").setEnum(type);
        property(node, "Component Count").setInteger(count);
        property(node, "Default Colour").setColour(0.8F, 1.0F, 0.25F);
        property(node, "Default Scalar").setFloat(0.5F);
        property(node, "Default Alpha").setFloat(0.75F);
        property(node, "Lock").setBool(lock);
        property(node, "Alpha").setBool(alpha);
        node.updateFromProperties(nullptr);
    }

    ConstantNode node;
    Connections connections;
};

constexpr bool locked = true;
constexpr bool unlocked = false;

// ---- locked ----

struct LockedRow {
    const char* type;
    std::int32_t count;
    bool alpha;
    bool alphaConnected;
    std::vector<std::pair<std::uint32_t, const char*>> outputs; ///< width and name
    const char* floatCode;
    const char* halfCode;
};

// the function declares its alpha and never assigns it
const std::vector<LockedRow> lockedRows = {
    {"Colour",
     4,
     false,
     false,
     {{3, "out_value"}},
     "\tout_value = float3( 0.8, 1, 0.25);\n",
     "\tout_value = half3( 0.8, 1, 0.25);\n"},
    {"Colour",
     4,
     true,
     false,
     {{3, "out_value"}},
     "\tout_value = float3( 0.8, 1, 0.25);\n",
     "\tout_value = half3( 0.8, 1, 0.25);\n"},
    {"Colour",
     4,
     true,
     true,
     {{3, "out_value"}, {1, "alpha"}},
     "\tout_value = float3( 0.8, 1, 0.25);\n",
     "\tout_value = half3( 0.8, 1, 0.25);\n"},
    {"Scalar", 4, false, false, {{1, "out_value"}}, "\tout_value = 0.5;\n", "\tout_value = 0.5;\n"},
    {"Scalar", 4, true, false, {{1, "out_value"}}, "\tout_value = 0.5;\n", "\tout_value = 0.5;\n"},
    {"Component",
     4,
     false,
     false,
     {{1, "red"}, {1, "green"}, {1, "blue"}},
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n",
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n"},
    {"Component",
     4,
     true,
     false,
     {{1, "red"}, {1, "green"}, {1, "blue"}},
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n",
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n"},
    {"Component",
     4,
     true,
     true,
     {{1, "red"}, {1, "green"}, {1, "blue"}, {1, "alpha"}},
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n",
     "\tred = 0.8;\n\tgreen = 1;\n\tblue = 0.25;\n"},
    // a vector is given the one scalar
    {"Vector", 2, false, false, {{2, "out_value"}}, "\tout_value = 0.5;\n", "\tout_value = 0.5;\n"},
    {"Vector", 3, false, false, {{3, "out_value"}}, "\tout_value = 0.5;\n", "\tout_value = 0.5;\n"},
    {"Vector", 4, true, false, {{4, "out_value"}}, "\tout_value = 0.5;\n", "\tout_value = 0.5;\n"},
};

void expectLockedCode() {
    for (std::size_t i = 0; i < lockedRows.size(); ++i) {
        const LockedRow& row = lockedRows[i];
        for (const Precision& precision : precisions) {
            SCOPED_TRACE(i);
            SCOPED_TRACE(precision.word);
            ConstantNode node;
            property(node, "Constant Type").setEnum(row.type);
            property(node, "Component Count").setInteger(row.count);
            property(node, "Default Colour").setColour(0.8F, 1.0F, 0.25F);
            property(node, "Default Scalar").setFloat(0.5F);
            property(node, "Default Alpha").setFloat(0.75F);
            property(node, "Lock").setBool(true);
            property(node, "Alpha").setBool(row.alpha);
            node.updateFromProperties(nullptr);
            if (row.alphaConnected) {
                node.outputPort("alpha").connected = true;
            }
            resolve(node, precision);
            const GraphGenerator generator = generated(node);
            EXPECT_EQ(nodeNames(generator), Texts{"lockCode"});
            EXPECT_EQ(edges(generator), Texts{});
            Texts outputs;
            for (const auto& [width, name] : row.outputs) {
                outputs.push_back(vectorText(precision.word, width) + " " + name);
            }
            expectFunction(generator, 0,
                           {"lockCode",
                            ExecutionLevel::Automatic,
                            {},
                            outputs,
                            precision.code == 2 ? row.floatCode : row.halfCode});
        }
    }
}

TEST(LockedConstantCode, IsALiteral) { expectLockedCode(); }

TEST(LockedConstantCode, IgnoresTheLocaleOfTheProcess) {
    const CommaLocale comma;
    expectLockedCode();
}

struct NumberRow {
    float value;
    const char* code;
};

TEST(LockedConstantCode, PrintsSixSignificantDigits) {
    constexpr NumberRow rows[] = {
        {0.0F, "\tout_value = 0;\n"},
        {0.25F, "\tout_value = 0.25;\n"},
        {-1.5F, "\tout_value = -1.5;\n"},
        {1234567.0F, "\tout_value = 1.23457e+06;\n"},
        {100000.0F, "\tout_value = 100000;\n"},
        {0.00001F, "\tout_value = 1e-05;\n"},
        {1.0F / 3.0F, "\tout_value = 0.333333;\n"},
    };
    const CommaLocale comma;
    for (const NumberRow& row : rows) {
        ConstantNode node;
        property(node, "Constant Type").setEnum("Scalar");
        property(node, "Default Scalar").setFloat(row.value);
        property(node, "Lock").setBool(true);
        node.updateFromProperties(nullptr);
        resolve(node, halfPrecision);
        EXPECT_EQ(generated(node).graph->nodes.at(0)->code, row.code);
    }
}

TEST_F(ConstantCode, OfALockedColourLinksItsValueAndAlpha) {
    configure("Colour", locked, true);
    const auto alpha = connections.outOf(node, "alpha");
    const auto first = connections.outOf(node, "read");
    const auto second = connections.outOf(node, "read");
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 3U);
    EXPECT_EQ(portLink(generator, alpha), "lockCode#0.alpha -> none");
    EXPECT_EQ(portLink(generator, first), "lockCode#0.out_value -> none");
    EXPECT_EQ(portLink(generator, second), "lockCode#0.out_value -> none");
}

TEST_F(ConstantCode, OfLockedComponentsLinksThemUnderTheirNames) {
    configure("Component", locked, true);
    for (const char* port : {"red", "green", "blue", "alpha"}) {
        const auto connection = connections.outOf(node, port);
        resolve(node, floatPrecision);
        EXPECT_EQ(portLink(generated(node), connection), std::string("lockCode#0.") + port + " -> none");
    }
}

TEST_F(ConstantCode, OfLockedScalarsAndVectorsLinksTheValue) {
    for (const char* type : {"Scalar", "Vector"}) {
        configure(type, locked, false);
        node.outputLinks.clear();
        const auto connection = connections.outOf(node, "read");
        resolve(node, floatPrecision);
        EXPECT_EQ(portLink(generated(node), connection), "lockCode#0.out_value -> none");
    }
}

TEST_F(ConstantCode, OfALockedConstantNeedsNoValidName) {
    configure("Colour", locked, false);
    node.setName("not a variable");
    resolve(node, halfPrecision);
    EXPECT_EQ(nodeNames(generated(node)), Texts{"lockCode"});
}

TEST_F(ConstantCode, OfALockedConstantNeedsAResolvedPrecision) {
    for (const char* type : {"Colour", "Scalar", "Component", "Vector"}) {
        configure(type, locked, false);
        GraphGenerator generator;
        EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
        EXPECT_TRUE(isUntouched(generator));
    }
}

TEST_F(ConstantCode, HasNoAlphaOnceItIsNoColourEvenWhileThePortIsThere) {
    configure("Colour", locked, true);
    node.outputPort("alpha").connected = true;
    resolve(node, floatPrecision);
    for (const char* type : {"Scalar", "Vector"}) {
        property(node, "Constant Type").setEnum(type);
        expectFunction(
            generated(node), 0,
            {"lockCode", ExecutionLevel::Automatic, {}, {"float3 out_value"}, "\tout_value = 0.5;\n"});
    }
}

TEST_F(ConstantCode, OfAnUnknownTypeIsAVectors) {
    setUnknownEnum(node, "Constant Type");
    node.updateFromProperties(nullptr);
    resolve(node, floatPrecision);
    expectParameter(generated(node), 0, NodeKind::UniformParameter, "Constant", "float4");
    property(node, "Default Scalar").setFloat(0.5F);
    property(node, "Lock").setBool(true);
    expectFunction(generated(node), 0,
                   {"lockCode", ExecutionLevel::Automatic, {}, {"float4 out_value"}, "\tout_value = 0.5;\n"});
}

// ---- the uniform itself ----

struct UniformRow {
    const char* type;
    std::int32_t count;
    bool alpha;
    std::uint32_t width;
};

TEST(ConstantUniform, StandsForTheValue) {
    constexpr UniformRow rows[] = {
        {"Colour", 4, false, 3}, {"Scalar", 4, false, 1}, {"Scalar", 4, true, 1}, {"Vector", 2, false, 2},
        {"Vector", 3, false, 3}, {"Vector", 4, false, 4}, {"Vector", 4, true, 4},
    };
    for (const UniformRow& row : rows) {
        for (const Precision& precision : precisions) {
            SCOPED_TRACE(row.type);
            SCOPED_TRACE(precision.word);
            ConstantNode node;
            node.setName("tint");
            property(node, "Constant Type").setEnum(row.type);
            property(node, "Component Count").setInteger(row.count);
            property(node, "Alpha").setBool(row.alpha);
            node.updateFromProperties(nullptr);
            Connections connections;
            const auto first = connections.outOf(node, "read");
            const auto second = connections.outOf(node, "read");
            resolve(node, precision);
            const GraphGenerator generator = generated(node);
            EXPECT_EQ(nodeNames(generator), Texts{"tint"});
            EXPECT_EQ(edges(generator), Texts{});
            expectParameter(generator, 0, NodeKind::UniformParameter, "tint",
                            vectorText(precision.word, row.width));
            EXPECT_EQ(portLink(generator, first), "tint#0.read -> none");
            EXPECT_EQ(portLink(generator, second), "tint#0.read -> none");
        }
    }
}

TEST(ConstantUniform, OfANewNode) {
    ConstantNode node;
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"Constant"});
    expectParameter(generator, 0, NodeKind::UniformParameter, "Constant", "float3");
    EXPECT_TRUE(generator.portLinks.empty());
}

TEST(ConstantUniform, TakesItsTypeFromThePort) {
    ConstantNode node;
    resolve(node, floatPrecision);
    node.resolvedPrecision = halfPrecision.code;
    const GraphGenerator generator = generated(node);
    expectParameter(generator, 0, NodeKind::UniformParameter, "Constant", "float3");
}

TEST(ConstantUniform, NeedsAValidNameAndAResolvedPrecision) {
    ConstantNode node;
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    resolve(node, floatPrecision);
    node.setName("main tint");
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "parameter name \"main tint\" is not a valid Cg variable name");
    EXPECT_TRUE(isUntouched(generator));
}

TEST(ConstantUniform, ReportsAnExpiredLink) {
    for (const bool lock : {false, true}) {
        ConstantNode node;
        property(node, "Lock").setBool(lock);
        node.updateFromProperties(nullptr);
        resolve(node, floatPrecision);
        node.outputLinks.push_back(std::make_shared<NodeConnection>());
        GraphGenerator generator;
        EXPECT_THROW(node.generateCode(generator), std::bad_weak_ptr);
        EXPECT_EQ(generator.graph->nodes.size(), 1U);
    }
}

// ---- the uniform taken apart ----

struct SplitRow {
    const char* type;
    bool alpha;
    bool alphaConnected;
    std::uint32_t width;
    std::vector<std::pair<std::uint32_t, const char*>> outputs; ///< width and name
    const char* code;
};

const std::vector<SplitRow> splitRows = {
    {"Colour", true, false, 3, {{3, "out_colour"}}, "\tout_colour.xyz = in_uniform.xyz;\n"},
    {"Colour",
     true,
     true,
     4,
     {{3, "out_colour"}, {1, "alpha"}},
     "\tout_colour.xyz = in_uniform.xyz;\n\talpha = in_uniform.w;\n"},
    {"Component",
     false,
     false,
     3,
     {{1, "red"}, {1, "green"}, {1, "blue"}},
     "\tred = in_uniform.x;\n\tgreen = in_uniform.y;\n\tblue = in_uniform.z;\n"},
    {"Component",
     true,
     false,
     3,
     {{1, "red"}, {1, "green"}, {1, "blue"}},
     "\tred = in_uniform.x;\n\tgreen = in_uniform.y;\n\tblue = in_uniform.z;\n"},
    {"Component",
     true,
     true,
     4,
     {{1, "red"}, {1, "green"}, {1, "blue"}, {1, "alpha"}},
     "\tred = in_uniform.x;\n\tgreen = in_uniform.y;\n\tblue = in_uniform.z;\n\talpha = in_uniform.w;\n"},
};

TEST(SplitConstantCode, ReadsTheUniform) {
    for (std::size_t i = 0; i < splitRows.size(); ++i) {
        const SplitRow& row = splitRows[i];
        for (const Precision& precision : precisions) {
            SCOPED_TRACE(i);
            SCOPED_TRACE(precision.word);
            ConstantNode node;
            node.setName("tint");
            property(node, "Constant Type").setEnum(row.type);
            property(node, "Alpha").setBool(row.alpha);
            node.updateFromProperties(nullptr);
            if (row.alphaConnected) {
                node.outputPort("alpha").connected = true;
            }
            resolve(node, precision);
            const GraphGenerator generator = generated(node);
            const std::string uniformType = vectorText(precision.word, row.width);
            Texts outputs;
            for (const auto& [width, name] : row.outputs) {
                outputs.push_back(vectorText(precision.word, width) + " " + name);
            }
            EXPECT_EQ(nodeNames(generator), (Texts{"swizzleColour", "tint"}));
            expectFunction(generator, 0,
                           {"swizzleColour",
                            ExecutionLevel::Automatic,
                            {uniformType + " in_uniform"},
                            outputs,
                            row.code});
            expectParameter(generator, 1, NodeKind::UniformParameter, "tint", uniformType);
            EXPECT_EQ(edges(generator), Texts{"tint#1.read -> swizzleColour#0.in_uniform"});
        }
    }
}

TEST(SplitConstantCode, TakesTheUniformsTypeFromTheNodeAndTheOutputsFromThePorts) {
    ConstantNode node;
    property(node, "Alpha").setBool(true);
    node.updateFromProperties(nullptr);
    resolve(node, floatPrecision);
    node.resolvedPrecision = halfPrecision.code;
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), (Texts{"swizzleColour", "Constant"}));
    expectFunction(generator, 0,
                   {"swizzleColour",
                    ExecutionLevel::Automatic,
                    {"half3 in_uniform"},
                    {"float3 out_colour"},
                    "\tout_colour.xyz = in_uniform.xyz;\n"});
    expectParameter(generator, 1, NodeKind::UniformParameter, "Constant", "half3");
}

TEST_F(ConstantCode, OfASplitColourLinksItsColourAndAlpha) {
    configure("Colour", unlocked, true);
    const auto alpha = connections.outOf(node, "alpha");
    const auto first = connections.outOf(node, "read");
    const auto second = connections.outOf(node, "read");
    resolve(node, halfPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(generator.portLinks.size(), 3U);
    EXPECT_EQ(portLink(generator, alpha), "swizzleColour#0.alpha -> none");
    EXPECT_EQ(portLink(generator, first), "swizzleColour#0.out_colour -> none");
    EXPECT_EQ(portLink(generator, second), "swizzleColour#0.out_colour -> none");
}

TEST_F(ConstantCode, OfSplitComponentsLinksThemUnderTheirNames) {
    configure("Component", unlocked, true);
    for (const char* port : {"red", "green", "blue", "alpha"}) {
        const auto connection = connections.outOf(node, port);
        resolve(node, halfPrecision);
        EXPECT_EQ(portLink(generated(node), connection), std::string("swizzleColour#0.") + port + " -> none");
    }
}

TEST_F(ConstantCode, OfASplitUniformLeavesTheFunctionWhenTheNameIsRefused) {
    configure("Colour", unlocked, true);
    node.setName("2nd");
    const auto connection = connections.outOf(node, "read");
    resolve(node, halfPrecision);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }),
              "parameter name \"2nd\" is not a valid Cg variable name");
    EXPECT_EQ(nodeNames(generator), Texts{"swizzleColour"});
    EXPECT_EQ(edges(generator), Texts{});
    EXPECT_EQ(portLink(generator, connection), "(no record)");
}

TEST_F(ConstantCode, OfASplitUniformNeedsAResolvedPrecision) {
    configure("Component", unlocked, false);
    GraphGenerator generator;
    EXPECT_EQ(shaderErrorOf([&] { node.generateCode(generator); }), "cannot read unknown precision");
    EXPECT_TRUE(isUntouched(generator));
}

TEST_F(ConstantCode, IsTheSameAfterTheTypeChangedAndChangedBack) {
    configure("Vector", locked, false);
    configure("Colour", unlocked, false);
    resolve(node, floatPrecision);
    const GraphGenerator generator = generated(node);
    EXPECT_EQ(nodeNames(generator), Texts{"Constant"});
    expectParameter(generator, 0, NodeKind::UniformParameter, "Constant", "float3");
}

} // namespace
} // namespace patina
