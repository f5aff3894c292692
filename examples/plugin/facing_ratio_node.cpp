#include "facing_ratio_node.h"

#include "node_support.h"
#include "world_space.h"

namespace example {

using namespace patina;

FacingRatioNode::FacingRatioNode() : MaterialNode(staticTypeName()) {
    setName("FacingRatio");
    setBodyColour(0.9F, 0.8F, 1.0F);

    twoSided_ = addProperty("Two Sided", "Two Sided: check this box to have back faces count as front faces. "
                                         "Otherwise they read 0.");
    twoSided_->setBool(false);

    addFloatPort(inputs, "in_normal", "normal", 3);
    outputs.emplace_back("out_facing", "facing").setComponentCount(1);
}

void FacingRatioNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    builder.addInputPort(inputPort("in_normal"));
    builder.addInput(float3, "in_position");
    builder.addInput(float3, "in_eye");
    builder.addOutputPort(outputPort("out_facing"));
    builder.appendCode(
        "\tfloat cosine = dot( normalize( in_normal ), normalize( in_eye - in_position ) );\n");
    builder.appendCode(twoSided_->getBool() ? "\tout_facing = abs( cosine );\n"
                                            : "\tout_facing = saturate( cosine );\n");
    const auto function = builder.makeNode(ExecutionLevel::Automatic, "facingRatio");
    emitFunction(generator, *this, function);

    if (!inputPort("in_normal").connected) {
        generator.connect(addWorldSpaceValue(generator, worldNormal), "read", function, "in_normal");
    }
    generator.connect(addWorldSpaceValue(generator, worldPosition), "read", function, "in_position");
    const auto eye = makeUniformParameter("eyePosition", float3);
    generator.addNode(eye);
    generator.connect(eye, "read", function, "in_eye");
}

} // namespace example
