// What the formulas give where they divide by zero, leave the range of numbers, or are not defined.

#include "nodemodel/text.h"
#include "tests/execution/execution.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double undefined = std::numeric_limits<double>::quiet_NaN(); ///< by the shading languages

struct Row {
    const char* type;
    const char* mode;
    std::vector<std::pair<const char*, float>> inputs;
    double expected; ///< to be met exactly
};

const Row rows[] = {
    {"CoreLayerBlend", "Colour Dodge", {{"in_value1", 1}, {"in_value2", 1}}, infinity},
    {"CoreLayerBlend", "Colour Dodge", {{"in_value1", -1}, {"in_value2", 1}}, -infinity},
    {"CoreLayerBlend", "Colour Dodge", {{"in_value1", 0}, {"in_value2", 1}}, undefined},
    {"CoreLayerBlend", "Colour Dodge", {{"in_value1", 1}, {"in_value2", 3}}, -0.5},
    {"CoreLayerBlend", "Colour Burn", {{"in_value1", 0}, {"in_value2", 0}}, -infinity},
    {"CoreLayerBlend", "Colour Burn", {{"in_value1", 2}, {"in_value2", 0}}, infinity},
    {"CoreLayerBlend", "Colour Burn", {{"in_value1", 1}, {"in_value2", 0}}, undefined},
    {"CoreLayerBlend", "Vivid Light", {{"in_value1", 0}, {"in_value2", 0}}, -infinity},
    {"CoreLayerBlend", "Vivid Light", {{"in_value1", 1}, {"in_value2", 0}}, undefined},
    {"CoreLayerBlend", "Vivid Light", {{"in_value1", 1}, {"in_value2", 1}}, infinity},
    {"CoreLayerBlend", "Vivid Light", {{"in_value1", 0}, {"in_value2", 1}}, undefined},
    {"CoreMaths", "Range", {{"in_value1", 3}, {"in_oldmin", 2}, {"in_oldmax", 2}, {"in_max", 8}}, 8},
    {"CoreMaths", "Range", {{"in_value1", 1}, {"in_oldmin", 2}, {"in_oldmax", 2}, {"in_min", -8}}, -8},
    {"CoreMaths", "Range", {{"in_value1", 2}, {"in_oldmin", 2}, {"in_oldmax", 2}}, undefined},
    {"CoreMaths", "Power", {{"in_value1", 0}, {"in_power", 2}}, 0},
    {"CoreMaths", "Power", {{"in_value1", 0}, {"in_power", 0}}, undefined},
    {"CoreMaths", "Power", {{"in_value1", 0}, {"in_power", -1}}, undefined},
    {"CoreMaths", "Power", {{"in_value1", -2}, {"in_power", 2}}, undefined},
    {"CoreMaths", "Power", {{"in_value1", -2}, {"in_power", 0.5F}}, undefined},
    {"CoreMaths", "Power", {{"in_value1", 1e10F}, {"in_power", 5}}, infinity},
    {"CoreMaths", "Multiply", {{"in_value1", 1e30F}, {"in_value2", -1e30F}}, -infinity},
    {"CoreMaths", "Addition", {{"in_value1", 3e38F}, {"in_value2", 3e38F}}, infinity},
    {"CoreMaths", "Subtraction", {{"in_value1", -3e38F}, {"in_value2", 3e38F}}, -infinity},
    {"CoreMaths", "Clamp", {{"in_value1", 5}, {"in_min", 1}, {"in_max", 0}}, undefined},
    {"CoreMaths", "Fresnel", {{"in_facing", 2}, {"in_min", 0.25F}}, 0.25},
    {"CoreMaths", "Fresnel", {{"in_facing", 1}, {"in_power", 0}}, undefined},
    {"CoreMaths", "Compare", {{"in_value1", 1}, {"in_value2", 2}, {"in_test1", 3}, {"in_test2", 3}}, 2},
    {"CoreMaths", "Floor", {{"in_value1", -0.5F}}, -1},
    {"CoreMaths", "Ceil", {{"in_value1", -0.5F}}, 0},
    {"CoreMaths", "Frac", {{"in_value1", -0.25F}}, 0.75},
    {"CoreMaths", "Floor", {{"in_value1", 1e10F}}, 1e10},
};

Case makeCase(const Row& row) {
    Case made = {std::string(row.type) + ", special values", row.mode, {}, {{}}};
    std::vector<Setting> settings = {choice("Mode", row.mode)};
    if (std::string(row.type) == "CoreMaths") {
        settings = {choice("Function", row.mode), choice("Execution Level", "Fragment")};
    }
    std::vector<PortOf> sources;
    for (const auto& [port, value] : row.inputs) {
        const PortOf source = made.graph.addInput(InputKind::Uniform, 1);
        made.inputs[0][made.graph.nodes[source.node].name()] = {value, 0, 0, 0};
        sources.push_back(source);
        made.title += std::string(" ") + port + " " + detail::formatFloat(value);
    }
    const std::size_t node = made.graph.add(row.type, settings);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        made.graph.connect(sources[i], node, row.inputs[i].first);
    }
    made.graph.shown = {node, "out_value"};
    made.graph.demandFloat(made.graph.shown, 1);
    return made;
}

using SpecialExecution = Execution;

// What is undefined is executed all the same: it may give anything, and may not end the program.
TEST_F(SpecialExecution, SpecialValues) {
    for (const Row& row : rows) {
        const Case shown = makeCase(row);
        SCOPED_TRACE(shown.title);
        const Bounded reference = Reference(shown.graph).evaluate(shown.inputs[0])[0];
        EXPECT_EQ(reference.isAnything(), std::isnan(row.expected));
        expectReference(shown);
        if (!std::isnan(row.expected)) {
            EXPECT_TRUE(reference.accepts(row.expected));
            const Pixels pixels = executor().draw(exportShown(shown.graph), shown.graph, shown.inputs);
            EXPECT_EQ(static_cast<double>(pixels[0][0]), row.expected);
        }
    }
}

} // namespace
} // namespace patina::testing
