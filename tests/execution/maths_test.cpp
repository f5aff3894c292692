// The fifteen functions of "CoreMaths": every width, level and precision, and every set of connected inputs.

#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace patina::testing {
namespace {

struct MathsInput {
    const char* port;
    bool scalar = false;
    const char* setting = nullptr; ///< that an unconnected input reads
};

struct MathsFunction {
    const char* name;
    std::vector<MathsInput> inputs;
    bool needsFirst = false; ///< its first input must be connected
};

const MathsInput value1 = {"in_value1", false, "Default Value 1"};
const MathsInput value2 = {"in_value2", false, "Default Value 2"};
const MathsInput least = {"in_min", false, "Default Min"};
const MathsInput most = {"in_max", false, "Default Max"};
const MathsInput power = {"in_power", true, "Default Power"};
const MathsInput blend = {"in_blend", true, "Default Blend"};

const MathsFunction functions[] = {
    {"Multiply", {value1, value2}},
    {"Addition", {value1, value2}},
    {"Subtraction", {value1, value2}},
    {"Invert", {value1}},
    {"Power", {value1, power}},
    {"Clamp", {value1, least, most}},
    {"Range",
     {value1, least, most, {"in_oldmin", false, "Default Old Min"}, {"in_oldmax", false, "Default Old Max"}}},
    {"Lerp", {value1, value2, blend}},
    {"SmoothStep", {value1, value2, blend}},
    {"Compare", {value1, value2, {"in_test1", true, "Default Test 1"}, {"in_test2", true, "Default Test 2"}}},
    {"Dot Product", {value1, value2}},
    {"Fresnel", {{"in_facing", true}, least, {"in_scale", false, "Default Scale"}, power}, true},
    {"Ceil", {value1}},
    {"Floor", {value1}},
    {"Frac", {value1}},
};

constexpr const char* levels[] = {"Vertex", "Fragment", "Automatic"};
constexpr const char* settingValues[] = {"0.25", "-1.5", "3", "0.1234567", "10000"};

/// How one maths node stands in a material.
struct MathsUse {
    const MathsFunction& function;
    int width = 1;
    std::string level = "Automatic";
    bool isFloat = false;
    unsigned connected = ~0U; ///< a bit for each input
    unsigned narrow = 0;      ///< inputs that read a scalar
    unsigned uniforms = 0;    ///< inputs that read a uniform
    bool hasSettings = false; ///< whether defaults are others than a new node has

    bool isConnected(std::size_t input) const { return (connected >> input & 1U) != 0; }
};

std::string titleOf(const MathsUse& use) {
    std::string title = std::string(use.function.name) + ", width " + std::to_string(use.width) + ", " +
                        use.level + (use.isFloat ? ", float" : ", half") +
                        (use.hasSettings ? ", with settings" : "");
    for (std::size_t i = 0; i < use.function.inputs.size(); ++i) {
        if (use.isConnected(i)) {
            title += std::string(", ") + use.function.inputs[i].port +
                     ((use.narrow >> i & 1U) != 0 ? " (scalar)" : "");
        }
    }
    return title;
}

Case makeCase(const MathsUse& use) {
    Graph graph;
    std::vector<Setting> settings = {choice("Function", use.function.name),
                                     choice("Execution Level", use.level)};
    const std::vector<MathsInput>& inputs = use.function.inputs;
    std::vector<PortOf> sources(inputs.size());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const bool isUniform = (use.uniforms >> i & 1U) != 0;
        const bool isNarrow = inputs[i].scalar || (use.narrow >> i & 1U) != 0;
        if (use.isConnected(i)) {
            sources[i] =
                graph.addInput(isUniform ? InputKind::Uniform : InputKind::Varying, isNarrow ? 1 : use.width);
        } else if (use.hasSettings) {
            settings.push_back(real(inputs[i].setting, settingValues[i]));
        }
    }
    const std::size_t node = graph.add("CoreMaths", settings);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (use.isConnected(i)) {
            graph.connect(sources[i], node, inputs[i].port);
        }
    }
    graph.shown = {node, "out_value"};
    if (use.isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).shownWidth());
    }
    // uniforms are set point by point
    const std::size_t points = use.uniforms == 0 ? pointsOfCase() : pointsOfCase() / 4;
    const std::string title = titleOf(use);
    std::vector<InputSet> sets = inputSets(graph, Numbers::Wide, points, title);
    return {std::string("CoreMaths, ") + use.function.name, title, std::move(graph), std::move(sets)};
}

class MathsExecution : public Execution {
protected:
    void expectAtLevel(const std::string& level) {
        for (const MathsFunction& function : functions) {
            for (const int width : {1, 2, 3, 4}) {
                for (const bool isFloat : {false, true}) {
                    expectReference(makeCase({function, width, level, isFloat}));
                }
            }
        }
    }
};

TEST_F(MathsExecution, MathsPerVertex) { expectAtLevel("Vertex"); }

TEST_F(MathsExecution, MathsPerFragment) { expectAtLevel("Fragment"); }

TEST_F(MathsExecution, MathsAtAutomaticLevel) { expectAtLevel("Automatic"); }

// Each set of inputs at each width and in both formats, once with a new node's values for the rest, and once
// with others.
TEST_F(MathsExecution, MathsWithSomeInputs) {
    unsigned turn = 0;
    for (const MathsFunction& function : functions) {
        const unsigned all = (1U << function.inputs.size()) - 1;
        for (unsigned connected = 0; connected < all; ++connected) {
            if (function.needsFirst && (connected & 1U) == 0) {
                continue;
            }
            for (const int width : {1, 2, 3, 4}) {
                for (const bool isFloat : {false, true}) {
                    for (const bool hasSettings : {false, true}) {
                        ++turn;
                        MathsUse use = {function, width, levels[turn % 3], isFloat, connected};
                        use.hasSettings = hasSettings;
                        use.uniforms = turn / 4 % 3 == 0 ? all : 0U;
                        if (turn % strideOfTables() == 0) {
                            expectReference(makeCase(use));
                        }
                    }
                }
            }
        }
    }
}

// Each function runs in either program; both must agree, better than the bound asks of the two.
TEST_F(MathsExecution, VerticesAndFragmentsAgree) {
    for (const MathsFunction& function : functions) {
        const Case perVertex = makeCase({function, 3, "Vertex", true});
        Case perFragment = makeCase({function, 3, "Fragment", true});
        perFragment.inputs = perVertex.inputs;
        const Pixels vertices =
            executor().draw(exportShown(perVertex.graph), perVertex.graph, perVertex.inputs);
        const Pixels fragments =
            executor().draw(exportShown(perFragment.graph), perFragment.graph, perFragment.inputs);
        const Reference reference(perVertex.graph);
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const BoundedVector expected = reference.evaluate(perVertex.inputs[i]);
            for (std::size_t component = 0; component < expected.size(); ++component) {
                // infinities do not survive the way from vertices to fragments
                if (!expected[component].isAnything() && std::isfinite(expected[component].value)) {
                    EXPECT_NEAR(vertices[i].at(component), fragments[i].at(component),
                                expected[component].error)
                        << perVertex.title;
                }
            }
        }
    }
}

// A scalar goes with any width.
TEST_F(MathsExecution, MathsOfMixedWidths) {
    unsigned turn = 0;
    for (const MathsFunction& function : functions) {
        const auto isFree = [](const MathsInput& input) { return !input.scalar; };
        const auto freeInputs = std::count_if(function.inputs.begin(), function.inputs.end(), isFree);
        if (function.inputs.front().scalar || freeInputs < 2) {
            continue;
        }
        for (const int width : {2, 3, 4}) {
            for (unsigned wide = 0; wide < static_cast<unsigned>(freeInputs); ++wide) {
                // free inputs come first in each function; all of them but one are scalars, or that one alone
                // is
                for (const unsigned narrow : {1U << wide, ~(1U << wide)}) {
                    ++turn;
                    MathsUse use = {function, width, levels[turn % 3], turn % 2 == 0};
                    use.narrow = narrow;
                    if (turn % strideOfTables() == 0) {
                        expectReference(makeCase(use));
                    }
                }
            }
        }
    }
}

using CompiledMaths = CompiledExecution;

TEST_F(CompiledMaths, CompiledFunctions) {
    for (const MathsFunction& function : functions) {
        for (const std::string level : {"Vertex", "Fragment"}) {
            expectReference(makeCase({function, 3, level, true}));
        }
    }
}

} // namespace
} // namespace patina::testing
