// "CoreConstant", "CoreVertexColour", "CoreUv" and "CoreSwizzle": what brings values in, takes them apart and
// puts them together.

#include "nodemodel/text.h"
#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"
#include "tests/execution/node_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina::testing {
namespace {

using SourceExecution = Execution;

/// A case that shows one output of the last node of a graph.
Case showPort(const std::string& kind, Graph graph, const std::string& port, bool isFloat, bool isOtherRead) {
    const std::size_t shown = graph.nodes.size() - 1;
    graph.shown = {shown, port};
    if (isOtherRead) {
        for (const OutputRule& output : portsOf(graph.nodes[shown]).outputs) {
            if (output.name != port) {
                graph.connect({shown, output.name}, graph.add("CoreMaths"), "in_value1");
            }
        }
    }
    if (isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).shownWidth());
    }
    std::string title =
        kind + " " + port + (isFloat ? ", float" : ", half") + (isOtherRead ? ", all read" : "");
    for (const Setting& setting : graph.nodes[shown].settings) {
        detail::appendText(title, {", ", setting.name, " ", setting.value});
    }
    std::vector<InputSet> sets = inputSets(graph, Numbers::Wide, pointsOfCase() / 2, title);
    return {kind, title, std::move(graph), std::move(sets)};
}

class PortCases : public Execution {
protected:
    /// Every output of a graph's last node, in both formats, alone and with the others read too.
    void expectPorts(const std::string& kind, const Graph& graph) {
        const NodePorts ports = portsOf(graph.nodes.back());
        for (const OutputRule& output : ports.outputs) {
            for (const bool isFloat : {false, true}) {
                for (const bool isOtherRead : {false, true}) {
                    if (!isOtherRead || ports.outputs.size() > 1) {
                        expectReference(showPort(kind, graph, output.name, isFloat, isOtherRead));
                    }
                }
                expectReference(perVertex(showPort(kind, graph, output.name, isFloat, false)));
            }
        }
    }
};

std::vector<Setting> constantSettings(const std::string& type, bool isLocked) {
    return {{"Name", "string", "In0"},       choice("Constant Type", type),
            flag("Lock", isLocked),          {"Default Colour", "colour", "0.8, 1, 1e-3"},
            real("Default Scalar", "-3.25"), real("Default Alpha", "0.75")};
}

TEST_F(PortCases, Constants) {
    for (const bool isLocked : {false, true}) {
        const std::string locked = isLocked ? " locked" : "";
        for (const std::string type : {"Colour", "Component", "Scalar"}) {
            for (const bool hasAlpha : {false, true}) {
                Graph graph;
                std::vector<Setting> settings = constantSettings(type, isLocked);
                settings.push_back(flag("Alpha", hasAlpha));
                graph.add("CoreConstant", settings);
                expectPorts(detail::joinText({"CoreConstant, ", type, locked}), graph);
            }
        }
        for (const int width : {2, 3, 4}) {
            Graph graph;
            std::vector<Setting> settings = constantSettings("Vector", isLocked);
            settings.push_back(integer("Component Count", width));
            graph.add("CoreConstant", settings);
            expectPorts("CoreConstant, Vector" + locked, graph);
        }
    }
}

TEST_F(PortCases, VertexData) {
    for (const std::string type : {"Colour", "Component", "Vector"}) {
        for (const bool hasAlpha : {false, true}) {
            Graph graph;
            graph.add("CoreVertexColour",
                      {{"Name", "string", "In0"}, choice("Colour Type", type), flag("Alpha", hasAlpha)});
            expectPorts("CoreVertexColour, " + type, graph);
        }
    }
    Graph graph;
    graph.add("CoreUv", {{"Name", "string", "In0"}});
    expectPorts("CoreUv", graph);
}

struct SwizzleRow {
    const char* type;
    int width;
};

constexpr SwizzleRow swizzles[] = {{"Colour", 3}, {"Uv", 2}, {"Vector", 2}, {"Vector", 3}, {"Vector", 4}};

TEST_F(PortCases, Splits) {
    for (const auto& [type, width] : swizzles) {
        // of nothing, a scalar, and a vector
        for (const int source : {0, 1, width}) {
            Graph graph;
            const PortOf input = source == 0 ? PortOf() : graph.addInput(InputKind::Varying, source);
            const std::size_t node =
                graph.add("CoreSwizzle", {choice("Vector Type", type), integer("Component Count", width)});
            if (source != 0) {
                graph.connect(input, node, "in_vec");
            }
            expectPorts(std::string("CoreSwizzle, split ") + type, graph);
        }
    }
}

TEST_F(PortCases, Merges) {
    for (const auto& [type, width] : swizzles) {
        for (unsigned connected = 0; connected < 1U << static_cast<unsigned>(width); ++connected) {
            Graph graph;
            std::vector<PortOf> inputs;
            for (int i = 0; i < width; ++i) {
                const bool isConnected = (connected >> static_cast<unsigned>(i) & 1U) != 0;
                inputs.push_back(isConnected
                                     ? graph.addInput(i % 2 == 0 ? InputKind::Varying : InputKind::Uniform, 1)
                                     : PortOf());
            }
            const std::size_t node =
                graph.add("CoreSwizzle", {choice("Vector Type", type), integer("Component Count", width),
                                          flag("Reverse", true)});
            for (int i = 0; i < width; ++i) {
                if ((connected >> static_cast<unsigned>(i) & 1U) != 0) {
                    graph.connect(inputs[static_cast<std::size_t>(i)], node, std::string("in_") + "xyzw"[i]);
                }
            }
            expectPorts(std::string("CoreSwizzle, merge ") + type, graph);
        }
    }
}

} // namespace
} // namespace patina::testing
