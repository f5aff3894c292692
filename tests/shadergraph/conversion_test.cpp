#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string>

namespace patina {
namespace {

using testing::expectGraphSize;
using testing::makeSink;
using testing::makeSource;
using testing::shaderErrorOf;

/// What becomes of a value of one type that is asked for as another.
enum Outcome : char { Equal = '.', Copied = 'c', Splatted = 's', Refused = '!' };

struct ConversionRow {
    ShaderType type;
    const char* text;
    const char* splatted; ///< the swizzle that a scalar gets on its way to this type
    const char* outcomes; ///< from this type to each row's, in order
};

constexpr ConversionRow conversions[] = {
    {{ComponentType::Float, 1, 1, 1}, "float", "x", ".ssscsscscccss!!!!!!!"},
    {{ComponentType::Float, 2, 1, 1}, "float2", "xx", "!.!!!!!!c!!!!!!!!!!!!"},
    {{ComponentType::Float, 3, 1, 1}, "float3", "xxx", "!!.!!c!!!!!!!!!!!!!!!"},
    {{ComponentType::Float, 4, 1, 1}, "float4", "xxxx", "!!!.!!c!!!!!!!!!!!!!!"},
    {{ComponentType::Half, 1, 1, 1}, "half", "x", "csss.sscscccss!!!!!!!"},
    {{ComponentType::Half, 3, 1, 1}, "half3", "xxx", "!!c!!.!!!!!!!!!!!!!!!"},
    {{ComponentType::Fixed, 4, 1, 1}, "fixed4", "xxxx", "!!!c!!.!!!!!!!!!!!!!!"},
    {{ComponentType::Int, 1, 1, 1}, "int", "x", "cssscss.scccss!!!!!!!"},
    {{ComponentType::Bool, 2, 1, 1}, "bool2", "xx", "!c!!!!!!.!!!!!!!!!!!!"},
    {{ComponentType::Sampler2D, 1, 1, 1}, "sampler2D", "x", "cssscsscs.ccss!!!!!!!"},
    {{ComponentType::Unknown, 1, 1, 1}, "unknown", "x", "cssscsscsc.css!!!!!!!"},
    {{ComponentType::Void, 1, 1, 1}, "void", "x", "cssscsscscc.ss!!!!!!!"},
    // no columns at all, which is not a scalar
    {{ComponentType::Float, 0, 1, 1}, "float", "", "!!!!!!!!!!!!.c!!!!!!!"},
    {{ComponentType::Int, 0, 1, 1}, "int", "", "!!!!!!!!!!!!c.!!!!!!!"},
    // matrices and arrays, and what is neither
    {{ComponentType::Float, 4, 4, 1}, "float4x4", "xxxx", "!!!!!!!!!!!!!!.!!!!!!"},
    {{ComponentType::Half, 4, 4, 1}, "half4x4", "xxxx", "!!!!!!!!!!!!!!!.!!!!!"},
    {{ComponentType::Float, 1, 2, 1}, "float2x1", "x", "!!!!!!!!!!!!!!!!.!!!!"},
    {{ComponentType::Float, 1, 1, 8}, "float[8]", "x", "!!!!!!!!!!!!!!!!!.!!!"},
    {{ComponentType::Half, 1, 1, 8}, "half[8]", "x", "!!!!!!!!!!!!!!!!!!.!!"},
    {{ComponentType::Float, 3, 0, 1}, "float3", "xxx", "!!!!!!!!!!!!!!!!!!!.!"},
    {{ComponentType::Float, 1, 1, 0}, "float", "x", "!!!!!!!!!!!!!!!!!!!!."},
};

/// Calls visit(from, to, outcome) for every pair of rows.
template <typename Visit>
void forEachPair(Visit&& visit) {
    for (const ConversionRow& from : conversions) {
        for (std::size_t column = 0; column < std::size(conversions); ++column) {
            const ConversionRow& to = conversions[column];
            SCOPED_TRACE(::testing::Message() << from.text << " to " << to.text << ", column " << column);
            visit(from, to, static_cast<Outcome>(from.outcomes[column]));
        }
    }
}

std::string refusalOf(const ConversionRow& from, const ConversionRow& to) {
    return std::string("cannot convert ") + from.text + " to " + to.text;
}

void expectConversionNode(const GeneratorNode& node, const ConversionRow& from, const ConversionRow& to,
                          Outcome outcome) {
    EXPECT_EQ(node.kind, NodeKind::Function);
    EXPECT_EQ(node.name, "promoteAndSplat");
    EXPECT_EQ(node.level, ExecutionLevel::Automatic);
    ASSERT_EQ(node.inputs.size(), 1U);
    EXPECT_EQ(node.inputs[0].name, "in_value");
    EXPECT_EQ(node.inputs[0].type, from.type);
    ASSERT_EQ(node.outputs.size(), 1U);
    EXPECT_EQ(node.outputs[0].name, "out_value");
    EXPECT_EQ(node.outputs[0].type, to.type);
    EXPECT_EQ(node.code, outcome == Copied ? "\tout_value = in_value;\n"
                                           : std::string("\tout_value = in_value.") + to.splatted + ";\n");
    EXPECT_EQ(describe(node), "function \"promoteAndSplat\" (1/1/*)");
}

TEST(PromoteAndSplat, ConvertsOrRefusesEveryPairOfTypes) {
    forEachPair([](const ConversionRow& from, const ConversionRow& to, Outcome outcome) {
        if (outcome == Refused) {
            EXPECT_EQ(shaderErrorOf([&] { makePromoteAndSplat(from.type, to.type); }), refusalOf(from, to));
        } else if (outcome != Equal) {
            expectConversionNode(*makePromoteAndSplat(from.type, to.type), from, to, outcome);
        }
    });
}

TEST(PromoteAndSplat, IsANewNodeEachTime) {
    const auto first = makePromoteAndSplat(testing::floatType, testing::float3Type);
    const auto second = makePromoteAndSplat(testing::floatType, testing::float3Type);
    EXPECT_NE(first, second);
    EXPECT_TRUE(first->inEdges.empty());
    EXPECT_TRUE(first->outEdges.empty());
}

struct BodyRow {
    ShaderType from;
    ShaderType to;
    const char* body;
};

constexpr BodyRow bodies[] = {
    {{ComponentType::Float, 1, 1, 1}, {ComponentType::Float, 2, 1, 1}, "\tout_value = in_value.xx;\n"},
    {{ComponentType::Float, 1, 1, 1}, {ComponentType::Float, 3, 1, 1}, "\tout_value = in_value.xxx;\n"},
    {{ComponentType::Half, 1, 1, 1}, {ComponentType::Float, 4, 1, 1}, "\tout_value = in_value.xxxx;\n"},
    {{ComponentType::Half, 3, 1, 1}, {ComponentType::Float, 3, 1, 1}, "\tout_value = in_value;\n"},
    {{ComponentType::Float, 1, 1, 1}, {ComponentType::Fixed, 1, 1, 1}, "\tout_value = in_value;\n"},
    {{ComponentType::SamplerCube, 1, 1, 1}, {ComponentType::Float, 1, 1, 1}, "\tout_value = in_value;\n"},
};

TEST(PromoteAndSplat, RepeatsAScalarAndCopiesAVector) {
    for (const auto& [from, to, body] : bodies) {
        EXPECT_EQ(makePromoteAndSplat(from, to)->code, body);
    }
}

TEST(PromoteAndSplat, ConvertsComponentTypesWithoutAName) {
    EXPECT_EQ(makePromoteAndSplat(testing::namelessType, testing::float3Type)->code,
              "\tout_value = in_value.xxx;\n");
    EXPECT_EQ(makePromoteAndSplat(testing::floatType, testing::namelessType)->code,
              "\tout_value = in_value;\n");
}

TEST(PromoteAndSplat, CannotNameThemInARefusal) {
    EXPECT_EQ(shaderErrorOf([] { makePromoteAndSplat(testing::float3Type, testing::namelessType); }),
              "unknown component type");
    EXPECT_EQ(shaderErrorOf([] { makePromoteAndSplat(testing::namelessType, testing::float4x4Type); }),
              "unknown component type");
}

TEST(PromoteAndSplat, RefusesInPlainNumbersInEveryLocale) {
    const testing::CommaLocale comma;
    EXPECT_EQ(shaderErrorOf([] {
                  makePromoteAndSplat({ComponentType::Float, 1000, 1, 1}, {ComponentType::Half, 4, 1, 1024});
              }),
              "cannot convert float1000 to half4[1024]");
    EXPECT_EQ(shaderErrorOf([] {
                  makePromoteAndSplat({ComponentType::Float, 4, 1000, 1}, {ComponentType::Float, 1, 1, 1});
              }),
              "cannot convert float1000x4 to float");
}

// The same through a generator, which alone knows what to do with equal types.
TEST(PromoteAndSplat, IsInsertedByAGeneratorExactlyWhereTypesDiffer) {
    forEachPair([](const ConversionRow& from, const ConversionRow& to, Outcome outcome) {
        GraphGenerator generator;
        const auto source = makeSource(from.type);
        const auto sink = makeSink(to.type);
        generator.addNode(source);
        generator.addNode(sink);
        const auto connect = [&] { generator.connect(source, "out", sink, "in"); };
        if (outcome == Refused) {
            EXPECT_EQ(shaderErrorOf(connect), refusalOf(from, to));
            expectGraphSize(*generator.graph, 2, 0);
            return;
        }
        connect();
        if (outcome == Equal) {
            expectGraphSize(*generator.graph, 2, 1);
        } else {
            expectGraphSize(*generator.graph, 3, 2);
            expectConversionNode(*generator.graph->nodes.back(), from, to, outcome);
        }
    });
}

} // namespace
} // namespace patina
