// The reference itself, held against values that were worked out by hand.

#include "tests/execution/node_rules.h"
#include "tests/execution/reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace patina::testing {
namespace {

struct Row {
    const char* mode;
    std::vector<float> inputs; ///< in the order of the ports
    double expected;
};

/// The value of one node with scalars at its first inputs.
Bounded valueOf(const std::string& type, const Setting& mode, const std::vector<float>& inputs) {
    Graph graph;
    InputSet set;
    std::vector<PortOf> sources;
    for (const float input : inputs) {
        sources.push_back(graph.addInput(InputKind::Varying, 1));
        set[graph.nodes.back().name()] = {input, 0, 0, 0};
    }
    const std::size_t node = graph.add(type, {mode});
    const NodePorts ports = portsOf(graph.nodes[node]);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        graph.connect(sources[i], node, ports.inputs.at(i).name);
    }
    graph.shown = {node, ports.outputs.front().name};
    graph.demandFloat(graph.shown, 1);
    return Reference(graph).evaluate(set).at(0);
}

TEST(Reference, MathsByHand) {
    const Row rows[] = {
        {"Multiply", {3, -4}, -12},
        {"Addition", {3, -4}, -1},
        {"Subtraction", {3, -4}, 7},
        {"Invert", {0.25F}, 0.75},
        {"Power", {2}, 32},
        {"Power", {2, 3}, 8},
        {"Clamp", {5}, 1},
        {"Clamp", {-5}, 0},
        {"Clamp", {5, 2, 4}, 4},
        {"Range", {0.25F, 10, 20}, 12.5},
        {"Range", {3, 10, 20, 2, 6}, 12.5},
        {"Range", {7, 10, 20, 2, 6}, 20},
        {"Lerp", {10, 20}, 15},
        {"Lerp", {10, 20, 0.25F}, 12.5},
        {"Lerp", {10, 20, 2}, 30},
        {"SmoothStep", {0, 1, 0.25F}, 0.15625},
        {"SmoothStep", {0, 1, 2}, 1},
        {"Compare", {1, 2, 3, 4}, 1},
        {"Compare", {1, 2, 4, 3}, 2},
        {"Compare", {1, 2}, 2},
        {"Dot Product", {3, -4}, -12},
        {"Fresnel", {0.5F}, 0.03125},
        {"Fresnel", {0.5F, 0.25F, 2, 2}, 0.75},
        {"Fresnel", {-3}, 1},
        {"Ceil", {1.25F}, 2},
        {"Floor", {-1.25F}, -2},
        {"Frac", {-1.25F}, 0.75},
    };
    for (const Row& row : rows) {
        const Bounded value = valueOf("CoreMaths", choice("Function", row.mode), row.inputs);
        EXPECT_NEAR(value.value, row.expected, 1e-12) << row.mode;
        EXPECT_LT(value.error, 1e-5 * std::max(1.0, std::abs(row.expected))) << row.mode;
    }
}

TEST(Reference, BlendsByHand) {
    const Row rows[] = {
        {"Darken", {0.25F, 0.75F}, 0.25},      {"Lighten", {0.25F, 0.75F}, 0.75},
        {"Multiply", {0.25F, 0.75F}, 0.1875},  {"Screen", {0.25F, 0.75F}, 0.8125},
        {"Overlay", {0.25F, 0.75F}, 0.375},    {"Overlay", {0.75F, 0.25F}, 0.625},
        {"Overlay", {0.5F, 0.25F}, 0.25},      {"Colour Dodge", {0.25F, 0.5F}, 0.5},
        {"Colour Burn", {0.75F, 0.5F}, 0.5},   {"Hard Light", {0.25F, 0.75F}, 0.625},
        {"Hard Light", {0.75F, 0.25F}, 0.375}, {"Hard Light", {0.25F, 0.5F}, 0.25},
        {"Vivid Light", {0.75F, 0.25F}, 0.5},  {"Vivid Light", {0.25F, 0.75F}, 0.5},
        {"Vivid Light", {0.25F, 0.5F}, 0.25},  {"Difference", {0.25F, 0.75F}, 0.5},
        {"Exclusion", {0.25F, 0.75F}, 0.625},  {"Lighten", {-1}, 0},
    };
    for (const Row& row : rows) {
        EXPECT_NEAR(valueOf("CoreLayerBlend", choice("Mode", row.mode), row.inputs).value, row.expected,
                    1e-12)
            << row.mode;
    }
}

TEST(Reference, AnimatedUvByHand) {
    Graph graph;
    const PortOf frame = graph.addInput(InputKind::Varying, 1);
    const PortOf uv = graph.addInput(InputKind::Varying, 2);
    const std::size_t node = graph.add("CoreAnimatedUv", {integer("Rows", 2)});
    graph.connect(frame, node, "in_frame");
    graph.connect(uv, node, "in_uv");
    const InputSet set = {{"In0", {5.25F, 0, 0, 0}}, {"In1", {0.5F, 0.25F, 0, 0}}};
    const auto at = [&](const std::string& port) {
        graph.shown = {node, port};
        return Reference(graph).evaluate(set);
    };
    EXPECT_EQ(at("out_uv1")[0].value, 1.375);
    EXPECT_EQ(at("out_uv1")[1].value, 0.625);
    EXPECT_EQ(at("out_uv2")[0].value, 1.625);
    EXPECT_EQ(at("out_uv2")[1].value, 0.625);
    EXPECT_EQ(at("out_blend")[0].value, 0.25);
}

TEST(Reference, AnimatedUvOffsetsByHand) {
    Graph graph;
    const PortOf frame = graph.addInput(InputKind::Varying, 1);
    const std::size_t node = graph.add("CoreAnimatedUv", {choice("Mode", "Advanced")});
    graph.connect(frame, node, "in_frame");
    const auto at = [&](const std::string& port, std::size_t component) {
        graph.shown = {node, port};
        return Reference(graph).evaluate({{"In0", {2.25F, 0, 0, 0}}})[component].value;
    };
    EXPECT_EQ(at("out_offset1", 0), 2);
    EXPECT_EQ(at("out_offset1", 1), 0);
    EXPECT_EQ(at("out_offset2", 0), 3);
    EXPECT_EQ(at("out_offset2", 1), 0);
    EXPECT_EQ(at("out_scale", 0), 0.25);
    EXPECT_EQ(at("out_scale", 1), 0.25);
    EXPECT_EQ(at("out_blend", 0), 0.25);
}

TEST(Reference, TheSrgbCurveByHand) {
    const Arithmetic arithmetic(floatFormat);
    const auto linear = [&](double value) { return linearFromSrgb(arithmetic, {value, 0}).value; };
    EXPECT_EQ(linear(0), 0);
    EXPECT_NEAR(linear(0.04), 0.04 / 12.92, 1e-12);
    EXPECT_NEAR(linear(0.5), 0.21404114, 1e-8);
    EXPECT_NEAR(linear(1), 1, 1e-12);
}

TEST(Reference, OneReaderThatNeedsFloatMakesAllBeforeItFloat) {
    Graph graph;
    const PortOf left = graph.addInput(InputKind::Varying, 2);
    const PortOf right = graph.addInput(InputKind::Varying, 2);
    const std::size_t sum = graph.add("CoreMaths");
    graph.connect(left, sum, "in_value1");
    const std::size_t other = graph.add("CoreMaths");
    graph.connect(right, other, "in_value1");
    graph.shown = {sum, "out_value"};
    graph.demandFloat(graph.shown, 2);
    const Reference reference(graph);
    EXPECT_EQ(&reference.formatOf(graph.shown), &floatFormat);
    EXPECT_EQ(&reference.formatOf(left), &floatFormat);
    EXPECT_EQ(&reference.formatOf(right), &halfFormat);
    EXPECT_EQ(reference.widthOf(graph.shown), 2);
}

} // namespace
} // namespace patina::testing
