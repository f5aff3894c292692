#pragma once

#include <nodemodel/nodemodel.h>
#include <shadergraph/shadergraph.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace example {

// What the example nodes share. Threads and errors: as MaterialNode.

inline constexpr patina::ShaderType float1 = {patina::ComponentType::Float, 1};
inline constexpr patina::ShaderType float3 = {patina::ComponentType::Float, 3};
inline constexpr patina::ShaderType float4x4 = {patina::ComponentType::Float, 4, 4};

/// Adds a port that always carries floats, for values that half precision would spoil: places, times and uvs.
void addFloatPort(std::vector<patina::Port>& ports, const std::string& name, const std::string& label,
                  std::uint32_t componentCount);

/// Adds the node's function to the generator and links it to the node's connections.
void emitFunction(patina::GraphGenerator& generator, patina::MaterialNode& node,
                  const std::shared_ptr<patina::GeneratorNode>& function);

} // namespace example
