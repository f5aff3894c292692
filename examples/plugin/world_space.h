#pragma once

#include <shadergraph/shadergraph.h>

#include <memory>
#include <string>

namespace example {

/// The values that the plug-in computes once for each vertex, however many nodes read them.
inline constexpr const char* worldNormal = "worldNormal";     ///< float3, of unit length at the vertices
inline constexpr const char* worldPosition = "worldPosition"; ///< float3

/// Submits the interface parameter of one of these values and returns it; its output is "read". The first
/// call in a graph inserts what computes the value. Throws ShaderError when the host lacks what that needs.
std::shared_ptr<patina::GeneratorNode> addWorldSpaceValue(patina::GraphGenerator& generator,
                                                          const std::string& name);

} // namespace example
