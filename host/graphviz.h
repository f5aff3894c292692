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

/// The nodes as an editor shows them: captions, names and ids, their own colours, ports with their labels,
/// connections, references (dotted) and the material's outputs. A placeholder is dashed, with the ports that
/// connections name. Nothing need be resolved. Throws HostError when a node's caption throws.
///
/// `pictures` are names of image files, one for each item or empty for none, which Graphviz is to find:
/// each is shown in its node, between title and ports, `pictureSize` points wide and high.
std::string printMaterialGraph(const Material& material, const std::vector<std::string>& pictures = {});

/// The edge of a node's picture, in points, of which there are 72 to an inch.
inline constexpr int pictureSize = 96;

/// The two programs as they will be printed: attributes, functions, conversions and uniforms, a cluster for
/// each program, every edge with the type of its value, and the interpolant registers between the programs.
/// What runs in both programs is drawn in both.
std::string printShaderGraph(const Material& material, const Dataflow& flow, const StagedShader& stages);

} // namespace patina
