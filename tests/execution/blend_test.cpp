// The eleven modes of "CoreLayerBlend".

#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"

#include <gtest/gtest.h>

#include <string>

namespace patina::testing {
namespace {

constexpr const char* modes[] = {"Darken",      "Lighten",      "Multiply",    "Screen",
                                 "Overlay",     "Colour Dodge", "Colour Burn", "Hard Light",
                                 "Vivid Light", "Difference",   "Exclusion"};

/// A blend of a base and a layer of these widths, or of nothing where that is 0.
Case makeCase(const std::string& mode, int base, int layer, bool isFloat, InputKind kind) {
    const std::string title = mode + " of base " + std::to_string(base) + " and layer " +
                              std::to_string(layer) + (isFloat ? ", float" : ", half");
    Graph graph;
    const PortOf sources[] = {base == 0 ? PortOf() : graph.addInput(kind, base),
                              layer == 0 ? PortOf() : graph.addInput(InputKind::Varying, layer)};
    const std::size_t node = graph.add("CoreLayerBlend", {choice("Mode", mode)});
    if (base != 0) {
        graph.connect(sources[0], node, "in_value1");
    }
    if (layer != 0) {
        graph.connect(sources[1], node, "in_value2");
    }
    graph.shown = {node, "out_value"};
    if (isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).shownWidth());
    }
    const std::size_t points = kind == InputKind::Varying ? pointsOfCase() : pointsOfCase() / 4;
    std::vector<InputSet> sets = inputSets(graph, Numbers::Wide, points, title);
    return {"CoreLayerBlend, " + mode, title, std::move(graph), std::move(sets)};
}

using BlendExecution = Execution;

TEST_F(BlendExecution, LayerBlends) {
    for (const std::string mode : modes) {
        for (const bool isFloat : {false, true}) {
            expectReference(makeCase(mode, 0, 0, isFloat, InputKind::Varying));
            for (const int width : {1, 2, 3, 4}) {
                expectReference(makeCase(mode, width, width, isFloat, InputKind::Varying));
                expectReference(perVertex(makeCase(mode, width, width, isFloat, InputKind::Varying)));
            }
        }
    }
}

TEST_F(BlendExecution, LayerBlendsOfOneInputAndOfMixedWidths) {
    unsigned turn = 0;
    for (const std::string mode : modes) {
        for (const int width : {1, 2, 3, 4}) {
            for (const int other : {0, 1}) {
                for (const bool isBaseWide : {false, true}) {
                    ++turn;
                    const InputKind kind = turn % 3 == 0 ? InputKind::Uniform : InputKind::Varying;
                    if (width > other && turn % strideOfTables() == 0) {
                        expectReference(makeCase(mode, isBaseWide ? width : other, isBaseWide ? other : width,
                                                 turn / 4 % 2 == 0, kind));
                    }
                }
            }
        }
    }
}

using CompiledBlends = CompiledExecution;

// Both layers are connected: what a compiler makes of a division by a zero that it knows is its own affair.
TEST_F(CompiledBlends, CompiledLayerBlends) {
    for (const std::string mode : modes) {
        expectReference(makeCase(mode, 4, 4, true, InputKind::Varying));
    }
}

} // namespace
} // namespace patina::testing
