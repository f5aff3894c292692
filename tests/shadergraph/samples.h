#pragma once

#include "shadergraph/shadergraph.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

namespace patina::testing {

inline constexpr ShaderType floatType{ComponentType::Float, 1, 1, 1};
inline constexpr ShaderType float2Type{ComponentType::Float, 2, 1, 1};
inline constexpr ShaderType float3Type{ComponentType::Float, 3, 1, 1};
inline constexpr ShaderType float4Type{ComponentType::Float, 4, 1, 1};
inline constexpr ShaderType half3Type{ComponentType::Half, 3, 1, 1};
inline constexpr ShaderType float4x4Type{ComponentType::Float, 4, 4, 1};
inline constexpr ShaderType half4x4Type{ComponentType::Half, 4, 4, 1};
/// Of a component type that has no name.
inline constexpr ShaderType namelessType{static_cast<ComponentType>(12), 1, 1, 1};

/// A function "source" with the output "out".
inline std::shared_ptr<GeneratorNode> makeSource(const ShaderType& type) {
    FunctionBuilder builder;
    builder.addOutput(type, "out");
    return builder.makeNode(ExecutionLevel::Automatic, "source");
}

/// A function "sink" with the input "in".
inline std::shared_ptr<GeneratorNode> makeSink(const ShaderType& type) {
    FunctionBuilder builder;
    builder.addInput(type, "in");
    return builder.makeNode(ExecutionLevel::Automatic, "sink");
}

inline std::shared_ptr<GeneratorNode> makeInterface(const std::string& name, const ShaderType& type,
                                                    std::int32_t flags = 0) {
    return makeParameterNode(NodeKind::InterfaceParameter, name, type, flags);
}

inline std::shared_ptr<GeneratorEdge> makeEdge(const std::shared_ptr<GeneratorNode>& tail,
                                               const std::shared_ptr<GeneratorNode>& head,
                                               const std::string& tailPort = "out",
                                               const std::string& headPort = "in") {
    auto edge = std::make_shared<GeneratorEdge>();
    edge->tail = tail;
    edge->head = head;
    edge->tailPort = tailPort;
    edge->headPort = headPort;
    return edge;
}

/// The graph's lists hold that many nodes and edges, and its sets the same.
inline void expectGraphSize(const Graph& graph, std::size_t nodeCount, std::size_t edgeCount) {
    EXPECT_EQ(graph.nodes.size(), nodeCount);
    EXPECT_EQ(graph.nodeSet.size(), nodeCount);
    EXPECT_EQ(graph.edges.size(), edgeCount);
    EXPECT_EQ(graph.edgeSet.size(), edgeCount);
}

/// The fields lie one after another in memory.
inline void expectFieldOrder(std::initializer_list<const void*> fields) {
    const void* previous = nullptr;
    for (const void* field : fields) {
        EXPECT_TRUE(std::less<>{}(previous, field));
        previous = field;
    }
}

} // namespace patina::testing
