#pragma once

#include "host/dataflow.h"
#include "host/material.h"
#include "host/stages.h"

#include <string>
#include <vector>

namespace patina {

// Graphs in the DOT language of Graphviz, to be drawn by its program `dot` from left to right. The text
// depends on the arguments alone, to the byte, and is valid UTF-8 whatever plug-ins and documents name their
// nodes. Threads: as the material.

/// The edge of a picture in a graph, in points, of which there are 72 to an inch, and in a dense one.
inline constexpr int graphPictureSize = 96;
inline constexpr int denseGraphPictureSize = 56;

/// Pictures to be shown in a graph: names of square image files, which Graphviz is to find; empty for none.
struct GraphPictures {
    std::vector<std::string> nodes; ///< by item; those beyond the end have none
    std::string material;           ///< the result
    bool dense = false;             ///< for many nodes: small pictures, and nodes close together
};

/// The nodes as an editor shows them: captions, names and ids, their own colours, ports with their labels,
/// connections, references (dotted) and the material's outputs. A placeholder is dashed, with the ports that
/// connections name. Nothing need be resolved. Throws HostError when a node's caption throws.
/// Pictures stand between title and ports.
std::string printMaterialGraph(const Material& material, const GraphPictures& pictures = {});

/// The two programs as they will be printed: attributes, functions, conversions and uniforms, a cluster for
/// each program, every edge with the type of its value, and the interpolant registers between the programs.
/// What runs in both programs is drawn in both.
std::string printShaderGraph(const Material& material, const Dataflow& flow, const StagedShader& stages);

} // namespace patina
