// "CoreAnimatedUv": frames of several grids, per vertex and per fragment.

#include "tests/execution/execution.h"
#include "tests/execution/node_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina::testing {
namespace {

using AnimatedUvExecution = Execution;

/// Frames from long before the first to long after the last, whole and between, and a uv for each.
std::vector<InputSet> frames() {
    std::vector<InputSet> sets;
    const auto add = [&](float frame) {
        const auto i = static_cast<float>(sets.size());
        sets.push_back({{"In0", {frame, 0, 0, 0}}, {"In1", {i / 64, 1 - i / 32, 0, 0}}});
    };
    for (int quarter = -40; quarter < 110; quarter += PATINA_TEST_THINNED != 0 ? 7 : 1) {
        add(static_cast<float>(quarter) / 4);
    }
    for (const float frame :
         {-10000.0F, -1000.5F, 999.75F, 1000.0F, 4095.0F, 65535.5F, 8388607.0F, 1e-3F, -1e-3F}) {
        add(frame);
    }
    return sets;
}

struct Grid {
    int rows;
    int columns;
};

// nothing refuses counts below zero: the formulas go on there
constexpr Grid grids[] = {{4, 4}, {3, 5}, {1, 1}, {8, 2}, {7, 3}, {-4, 4}, {3, -5}, {-7, -3}};

Case makeCase(const std::string& mode, const std::string& level, const Grid& grid, unsigned connected,
              const std::string& port, bool isFloat) {
    Graph graph;
    const PortOf inputs[] = {graph.addInput(InputKind::Varying, 1), graph.addInput(InputKind::Varying, 2)};
    const std::size_t node =
        graph.add("CoreAnimatedUv", {choice("Mode", mode), choice("Execution Level", level),
                                     integer("Rows", grid.rows), integer("Columns", grid.columns)});
    if ((connected & 1U) != 0) {
        graph.connect(inputs[0], node, "in_frame");
    }
    if ((connected & 2U) != 0) {
        graph.connect(inputs[1], node, "in_uv");
    }
    graph.shown = {node, port};
    if (isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).shownWidth());
    }
    const std::string title = mode + " " + level + " " + std::to_string(grid.rows) + " by " +
                              std::to_string(grid.columns) + ", connected " + std::to_string(connected) +
                              ", " + port + (isFloat ? ", float" : ", half");
    return {"CoreAnimatedUv, " + mode, title, std::move(graph), frames()};
}

TEST_F(AnimatedUvExecution, AnimatedUvs) {
    unsigned turn = 0;
    for (const std::string mode : {"Basic", "Advanced"}) {
        const NodePorts ports = portsOf({"CoreAnimatedUv", {choice("Mode", mode)}, {}});
        for (const std::string level : {"Vertex", "Fragment"}) {
            for (const Grid& grid : grids) {
                for (const OutputRule& output : ports.outputs) {
                    ++turn;
                    const unsigned all = mode == "Basic" ? 3 : 1;
                    expectReference(makeCase(mode, level, grid, all, output.name, true));
                    for (const bool isFloat : {false, true}) {
                        expectReference(makeCase(mode, level, grid, turn % (all + 1), output.name, isFloat));
                    }
                }
            }
        }
    }
}

using CompiledAnimatedUv = CompiledExecution;

TEST_F(CompiledAnimatedUv, CompiledAnimatedUvs) {
    for (const std::string level : {"Vertex", "Fragment"}) {
        for (const std::string port : {"out_uv1", "out_uv2", "out_blend"}) {
            expectReference(makeCase("Basic", level, {7, 3}, 3, port, true));
        }
    }
}

} // namespace
} // namespace patina::testing
