// "CoreTexture" of every type, against pictures that are decoded here.

#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"
#include "tests/execution/node_rules.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {
namespace {

enum class Alpha { Off, Unread, Read };

/// How a texture node stands in a material.
struct TextureUse {
    std::string colourType;
    bool is1D = false;
    bool isSrgb = true;
    Alpha alpha = Alpha::Off;
    bool isFloat = false;
};

std::string titleOf(const TextureUse& use, const std::string& port) {
    return use.colourType + (use.is1D ? " 1D" : " 2D") + (use.isSrgb ? ", sRGB" : ", raw") +
           (use.alpha == Alpha::Off      ? ""
            : use.alpha == Alpha::Unread ? ", alpha unread"
                                         : ", alpha read") +
           (use.isFloat ? ", float: " : ", half: ") + port;
}

std::vector<InputSet> coordinates(bool is1D) {
    std::vector<InputSet> sets = texelCentres(is1D ? 1 : 2);
    for (InputSet& edge : texelEdges(is1D ? 1 : 2)) {
        sets.push_back(std::move(edge));
    }
    return sets;
}

Case makeCase(const TextureUse& use, const std::string& port) {
    Graph graph;
    const PortOf uv = graph.addInput(InputKind::Varying, use.is1D ? 1 : 2);
    const std::size_t texture = graph.add("CoreTexture", {{"Name", "string", "Picture"},
                                                          choice("Colour Type", use.colourType),
                                                          choice("Texture Type", use.is1D ? "1D" : "2D"),
                                                          flag("sRGB", use.isSrgb),
                                                          flag("Alpha", use.alpha != Alpha::Off)});
    graph.connect(uv, texture, "in_uv");
    graph.shown = {texture, port};
    if (use.alpha == Alpha::Read && port != "out_alpha") {
        graph.connect({texture, "out_alpha"}, graph.add("CoreMaths"), "in_value1");
    }
    if (use.isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).widthOf(graph.shown));
    }
    return {"CoreTexture, " + use.colourType + (use.is1D ? " 1D" : " 2D"), titleOf(use, port),
            std::move(graph), coordinates(use.is1D)};
}

/// A texture that is read by another node, which has settings of its own that do not count.
Case makeReferenceCase(const TextureUse& use, const std::string& port, bool isFirstRead) {
    Graph graph;
    const PortOf uv = graph.addInput(InputKind::Varying, use.is1D ? 1 : 2);
    const std::size_t texture = graph.add("CoreTexture", {{"Name", "string", "Picture"},
                                                          choice("Colour Type", use.colourType),
                                                          choice("Texture Type", use.is1D ? "1D" : "2D"),
                                                          flag("sRGB", use.isSrgb),
                                                          flag("Alpha", use.alpha != Alpha::Off)});
    const std::size_t reader =
        graph.add("CoreTexture", {{"Reference", "node", Graph::idOf(texture)},
                                  {"Name", "string", "Other"},
                                  choice("Colour Type", use.colourType == "Colour" ? "Normal" : "Colour"),
                                  choice("Texture Type", use.is1D ? "2D" : "1D"),
                                  flag("sRGB", !use.isSrgb),
                                  flag("Alpha", use.alpha == Alpha::Off)});
    graph.connect(uv, texture, "in_uv");
    graph.connect(uv, reader, "in_uv");
    graph.shown = {reader, port};
    if (isFirstRead) {
        graph.connect({texture, portsOf(graph.nodes[texture]).outputs.front().name}, graph.add("CoreMaths"),
                      "in_value1");
    }
    if (use.isFloat) {
        graph.demandFloat(graph.shown, Reference(graph).widthOf(graph.shown));
    }
    return {"CoreTexture, reference to " + use.colourType, titleOf(use, port) + " by reference",
            std::move(graph), coordinates(use.is1D)};
}

using TextureExecution = Execution;

TEST_F(TextureExecution, Textures) {
    for (const std::string colourType : {"Colour", "Normal", "Component", "Vector", "DXT5 Normal"}) {
        const bool hasOwnAlpha = colourType == "Vector" || colourType == "DXT5 Normal";
        for (const Alpha alpha : {Alpha::Off, Alpha::Unread, Alpha::Read}) {
            if (hasOwnAlpha && alpha == Alpha::Read) {
                continue;
            }
            for (const unsigned bits : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
                const TextureUse use = {colourType, (bits & 1U) != 0, (bits & 2U) != 0, alpha,
                                        (bits & 4U) != 0};
                const GraphNode node = {
                    "CoreTexture",
                    {choice("Colour Type", colourType), flag("Alpha", alpha == Alpha::Read)},
                    {}};
                for (const OutputRule& output : portsOf(node).outputs) {
                    expectReference(makeCase(use, output.name));
                }
            }
        }
    }
}

TEST_F(TextureExecution, References) {
    for (const std::string colourType : {"Colour", "Normal", "Component", "Vector", "DXT5 Normal"}) {
        for (const unsigned bits : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
            const TextureUse use = {colourType, (bits & 1U) != 0, (bits & 2U) != 0,
                                    (bits & 2U) != 0 ? Alpha::Unread : Alpha::Off, (bits & 4U) != 0};
            const GraphNode node = {"CoreTexture", {choice("Colour Type", colourType)}, {}};
            for (const OutputRule& output : portsOf(node).outputs) {
                expectReference(makeReferenceCase(use, output.name, (bits & 4U) == 0));
            }
        }
    }
}

using CompiledTextures = CompiledExecution;

TEST_F(CompiledTextures, CompiledTextures) {
    for (const std::string colourType : {"Colour", "Normal", "Vector", "DXT5 Normal"}) {
        for (const bool is1D : {false, true}) {
            expectReference(makeCase({colourType, is1D, true, Alpha::Off, true}, "out_colour"));
        }
    }
}

} // namespace
} // namespace patina::testing
