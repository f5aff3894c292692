#include "host/framework_values.h"

#include "shadergraph/function_builder.h"

namespace patina {

namespace {

constexpr ShaderType float3 = {ComponentType::Float, 3, 1, 1};
constexpr ShaderType float4 = {ComponentType::Float, 4, 1, 1};

class FrameworkValues : public InterfaceProvider {
public:
    std::shared_ptr<GeneratorNode> provideInterfaceNode(const std::string& name, std::int32_t flags,
                                                        Graph& graph) override {
        if (name != "objectPosition" || flags != 0) {
            return nullptr;
        }
        const auto attribute = makeParameterNode(NodeKind::VaryingParameter, "position", float4, 0,
                                                 {registers::vertexAttribute, 0});
        FunctionBuilder builder;
        builder.addInput(float4, "in_position");
        builder.addOutput(float3, "out_position");
        builder.appendCode("\tout_position = in_position.xyz;\n");
        const auto function = builder.makeNode(ExecutionLevel::Vertex, "objectPositionCode");
        graph.insertNode(attribute);
        graph.insertNode(function);
        if (!graph.hasInterfaceNode(name, flags)) {
            graph.insertNode(makeParameterNode(NodeKind::InterfaceParameter, name, float3, flags));
        }
        auto value = graph.findInterfaceNode(name, flags);
        graph.connect(attribute, "read", function, "in_position");
        graph.connect(function, "out_position", value, "write");
        return value;
    }
};

} // namespace

std::shared_ptr<InterfaceProvider> makeFrameworkValues() { return std::make_shared<FrameworkValues>(); }

} // namespace patina
