#pragma once

#include "shadergraph/graph.h"

#include <memory>
#include <optional>

namespace patina {

/// What a lit material gives of its surface beside its colour: the component type of each output that it has.
struct SurfaceOutputs {
    ComponentType colour = ComponentType::Half;
    std::optional<ComponentType> normal;
    std::optional<ComponentType> emissive;
    std::optional<ComponentType> gloss;
};

/// The inputs and the output of the function that lights a surface.
/// @{
inline constexpr const char* surfaceColour = "in_colour";     ///< three components
inline constexpr const char* surfaceNormal = "in_normal";     ///< three, in tangent space
inline constexpr const char* surfaceEmissive = "in_emissive"; ///< three
inline constexpr const char* surfaceGloss = "in_gloss";       ///< one
inline constexpr const char* litColour = "out_colour";        ///< float3
/// @}

/// Inserts the function that lights a surface, which calls QelShade of host/framework.cg, and whatever it
/// needs: parameters, and functions that bring normal, tangent and position into world space per vertex. Its
/// inputs above, as far as the material has those outputs, are left to be fed. docs/shader-assembly.md lists
/// the parameters. Throws ShaderError as the graph does. Threads: as the graph.
std::shared_ptr<GeneratorNode> insertSurface(Graph& graph, const SurfaceOutputs& outputs);

} // namespace patina
