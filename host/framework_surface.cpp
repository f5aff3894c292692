#include "host/framework_surface.h"

#include "nodemodel/text.h"
#include "shadergraph/function_builder.h"

#include <array>
#include <string>

namespace patina {

using namespace detail;

namespace {

constexpr ShaderType float3 = {ComponentType::Float, 3, 1, 1};
constexpr ShaderType float4 = {ComponentType::Float, 4, 1, 1};
constexpr ShaderType float4x4 = {ComponentType::Float, 4, 4, 1};
constexpr ShaderType threeFloat3 = {ComponentType::Float, 3, 1, 3};
constexpr ShaderType half3 = {ComponentType::Half, 3, 1, 1};
constexpr ShaderType half4 = {ComponentType::Half, 4, 1, 1};

/// A matrix may turn a space inside out, and normals and the tangents' frame with it.
constexpr const char* rowsAndSide = "\tfloat3 x = in_world[0].xyz;\n"
                                    "\tfloat3 y = in_world[1].xyz;\n"
                                    "\tfloat3 z = in_world[2].xyz;\n"
                                    "\tfloat side = dot( x, cross( y, z ) ) < 0.0 ? -1.0 : 1.0;\n";

/// Normals turn with the cofactors of the matrix, so that they stay upright on what is scaled unevenly. Unit
/// length keeps them within the range of half.
std::shared_ptr<GeneratorNode> makeNormalFunction() {
    FunctionBuilder builder;
    builder.addInput(float4x4, "in_world");
    builder.addInput(float3, "in_normal");
    builder.addOutput(half3, "out_normal");
    builder.appendCode(rowsAndSide);
    builder.appendCode("\tfloat3 turned = float3( dot( cross( y, z ), in_normal ), "
                       "dot( cross( z, x ), in_normal ), dot( cross( x, y ), in_normal ) );\n"
                       "\tout_normal = turned*( side*rsqrt( max( dot( turned, turned ), 1e-30 ) ) );\n");
    return builder.makeNode(ExecutionLevel::Vertex, "worldNormalCode");
}

std::shared_ptr<GeneratorNode> makeTangentFunction() {
    FunctionBuilder builder;
    builder.addInput(float4x4, "in_world");
    builder.addInput(float4, "in_tangent");
    builder.addOutput(half4, "out_tangent");
    builder.appendCode(rowsAndSide);
    builder.appendCode("\tfloat3 turned = float3( dot( x, in_tangent.xyz ), dot( y, in_tangent.xyz ), "
                       "dot( z, in_tangent.xyz ) );\n"
                       "\tout_tangent.xyz = turned*rsqrt( max( dot( turned, turned ), 1e-30 ) );\n"
                       "\tout_tangent.w = in_tangent.w*side;\n");
    return builder.makeNode(ExecutionLevel::Vertex, "worldTangentCode");
}

std::shared_ptr<GeneratorNode> makePositionFunction() {
    FunctionBuilder builder;
    builder.addInput(float4x4, "in_world");
    builder.addInput(float4, "in_position");
    builder.addOutput(float3, "out_position");
    builder.appendCode("\tout_position = mul( in_world, in_position ).xyz;\n");
    return builder.makeNode(ExecutionLevel::Vertex, "worldPositionCode");
}

/// What the framework gives in its place where the material lacks an output.
struct Argument {
    const char* port;
    std::optional<ComponentType> componentType;
    std::int32_t width;
    const char* otherwise;
};

std::shared_ptr<GeneratorNode> makeSurfaceFunction(const SurfaceOutputs& outputs) {
    const std::array<Argument, 3> arguments = {{
        {surfaceColour, outputs.colour, 3, ""},
        {surfaceEmissive, outputs.emissive, 3, "float3( 0.0, 0.0, 0.0 )"},
        {surfaceGloss, outputs.gloss, 1, "0.0"},
    }};
    FunctionBuilder builder;
    std::string call;
    for (const Argument& argument : arguments) {
        if (argument.componentType) {
            builder.addInput({*argument.componentType, argument.width, 1, 1}, argument.port);
        }
        appendText(call, {argument.componentType ? argument.port : argument.otherwise, ", "});
    }
    if (outputs.normal) {
        builder.addInput({*outputs.normal, 3, 1, 1}, surfaceNormal);
    }
    builder.addInput(half3, "in_world_normal");
    if (outputs.normal) {
        builder.addInput(half4, "in_world_tangent");
    }
    builder.addInput(float3, "in_world_position");
    builder.addInput(float3, "in_eye");
    builder.addInput(threeFloat3, "in_to_lights");
    builder.addInput(threeFloat3, "in_lights");
    builder.addInput(float3, "in_above");
    builder.addInput(float3, "in_below");
    builder.addOutput(float3, litColour);
    const char* normal =
        outputs.normal ? "QelBend( in_normal, in_world_normal, in_world_tangent )" : "in_world_normal";
    builder.appendCode(
        joinText({"\t", litColour, " = QelShade( ", call, normal,
                  ", in_eye - in_world_position, in_to_lights, in_lights, in_above, in_below );\n"}));
    return builder.makeNode(ExecutionLevel::Fragment, "surfaceCode");
}

/// Joins what lights a surface.
class SurfaceMaker {
public:
    SurfaceMaker(Graph& graph, const SurfaceOutputs& outputs)
        : graph_(graph), surface_(makeSurfaceFunction(outputs)) {
        graph_.insertNode(surface_);
    }

    void joinUniform(const char* name, const ShaderType& type, const char* input) {
        graph_.connect(insert(makeUniformParameter(name, type)), "read", surface_, input);
    }

    /// A value that is brought into world space per vertex.
    void joinPerVertex(const std::shared_ptr<GeneratorNode>& attribute,
                       const std::shared_ptr<GeneratorNode>& function, const char* input) {
        graph_.insertNode(function);
        graph_.connect(world(), "read", function, function->inputs[0].name);
        graph_.connect(insert(attribute), "read", function, function->inputs[1].name);
        graph_.connect(function, function->outputs[0].name, surface_, input);
    }

    std::shared_ptr<GeneratorNode> surface() const { return surface_; }

private:
    std::shared_ptr<GeneratorNode> insert(const std::shared_ptr<GeneratorNode>& node) {
        graph_.insertNode(node);
        return node;
    }

    std::shared_ptr<GeneratorNode> world() {
        if (!world_) {
            world_ = insert(makeUniformParameter("world", float4x4));
        }
        return world_;
    }

    Graph& graph_;
    std::shared_ptr<GeneratorNode> surface_;
    std::shared_ptr<GeneratorNode> world_;
};

} // namespace

std::shared_ptr<GeneratorNode> insertSurface(Graph& graph, const SurfaceOutputs& outputs) {
    SurfaceMaker maker(graph, outputs);
    maker.joinPerVertex(makeVaryingParameter("normal", float3), makeNormalFunction(), "in_world_normal");
    if (outputs.normal) {
        maker.joinPerVertex(makeVaryingParameter("tangent", float4), makeTangentFunction(),
                            "in_world_tangent");
    }
    const auto position =
        makeParameterNode(NodeKind::VaryingParameter, "position", float4, 0, {registers::vertexAttribute, 0});
    maker.joinPerVertex(position, makePositionFunction(), "in_world_position");
    maker.joinUniform("eyePosition", float3, "in_eye");
    maker.joinUniform("lightDirections", threeFloat3, "in_to_lights");
    maker.joinUniform("lightColours", threeFloat3, "in_lights");
    maker.joinUniform("ambientAbove", float3, "in_above");
    maker.joinUniform("ambientBelow", float3, "in_below");
    return maker.surface();
}

} // namespace patina
