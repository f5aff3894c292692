#include "world_space.h"

#include "node_support.h"

#include <algorithm>

namespace example {

using namespace patina;

namespace {

/// Normals turn with the cofactors of the matrix, so that they stay upright on what is scaled unevenly.
std::shared_ptr<GeneratorNode> makeWorldNormalFunction() {
    FunctionBuilder builder;
    builder.addInput(float4x4, "in_world");
    builder.addInput(float3, "in_normal");
    builder.addOutput(float3, "out_normal");
    builder.appendCode("\tfloat3 x = in_world[0].xyz;\n"
                       "\tfloat3 y = in_world[1].xyz;\n"
                       "\tfloat3 z = in_world[2].xyz;\n"
                       "\tfloat3 yz = cross( y, z );\n"
                       "\tfloat3 turned = float3( dot( yz, in_normal ), dot( cross( z, x ), in_normal ), "
                       "dot( cross( x, y ), in_normal ) );\n"
                       "\tout_normal = normalize( turned )*sign( dot( x, yz ) );\n");
    return builder.makeNode(ExecutionLevel::Vertex, "worldSpaceNormal");
}

std::shared_ptr<GeneratorNode> makeWorldPositionFunction() {
    FunctionBuilder builder;
    builder.addInput(float4x4, "in_world");
    builder.addInput(float3, "in_position");
    builder.addOutput(float3, "out_position");
    builder.appendCode("\tout_position = mul( in_world, float4( in_position, 1.0 ) ).xyz;\n");
    return builder.makeNode(ExecutionLevel::Vertex, "worldSpacePosition");
}

std::shared_ptr<GeneratorNode> insert(Graph& graph, const std::shared_ptr<GeneratorNode>& node) {
    graph.insertNode(node);
    return node;
}

/// Inserts what computes a value when it is first asked for. From then on the graph answers itself.
///
/// Unnamed, so that a plug-in which began as a copy of this one has a provider of a type of its own.
class WorldSpaceProvider final : public InterfaceProvider {
public:
    std::shared_ptr<GeneratorNode> provideInterfaceNode(const std::string& name, std::int32_t flags,
                                                        Graph& graph) override {
        if (flags == 0 && name == worldNormal) {
            const auto function = insert(graph, makeWorldNormalFunction());
            const auto normal = insert(graph, makeVaryingParameter("normal", float3));
            graph.connect(normal, "read", function, "in_normal");
            return publish(graph, function, "out_normal", name);
        }
        if (flags == 0 && name == worldPosition) {
            const auto function = insert(graph, makeWorldPositionFunction());
            const auto position = graph.findInterfaceNode("objectPosition", 0, float3);
            graph.connect(position, "read", function, "in_position");
            return publish(graph, function, "out_position", name);
        }
        return nullptr;
    }

private:
    static std::shared_ptr<GeneratorNode> publish(Graph& graph,
                                                  const std::shared_ptr<GeneratorNode>& function,
                                                  const std::string& output, const std::string& name) {
        const auto world = insert(graph, makeUniformParameter("world", float4x4));
        graph.connect(world, "read", function, "in_world");
        const auto parameter = insert(graph, makeParameterNode(NodeKind::InterfaceParameter, name, float3));
        graph.connect(function, output, parameter, "write");
        return parameter;
    }
};

void offerProvider(Graph& graph) {
    auto& providers = graph.interfaceProviders;
    const bool isThere = std::any_of(providers.begin(), providers.end(), [](const auto& provider) {
        return dynamic_cast<const WorldSpaceProvider*>(provider.get()) != nullptr;
    });
    if (!isThere) {
        providers.push_back(std::make_shared<WorldSpaceProvider>());
    }
}

} // namespace

std::shared_ptr<GeneratorNode> addWorldSpaceValue(GraphGenerator& generator, const std::string& name) {
    offerProvider(*generator.graph);
    generator.graph->findInterfaceNode(name, 0, float3);
    // the graph holds the value now, and what is submitted under the same name stands for it
    const auto parameter = makeParameterNode(NodeKind::InterfaceParameter, name, float3);
    generator.addNode(parameter);
    return parameter;
}

} // namespace example
