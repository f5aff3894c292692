#include "world_normal_node.h"

#include "node_support.h"
#include "world_space.h"

namespace example {

using namespace patina;

WorldNormalNode::WorldNormalNode() : MaterialNode(staticTypeName()) {
    setName("WorldNormal");
    setBodyColour(0.7F, 0.8F, 1.0F);

    outputs.emplace_back("out_normal", "normal").setComponentCount(3);
}

void WorldNormalNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    builder.addInput(float3, "in_normal");
    builder.addOutputPort(outputPort("out_normal"));
    // between vertices it is no longer of unit length
    builder.appendCode("\tout_normal = normalize( in_normal );\n");
    const auto function = builder.makeNode(ExecutionLevel::Automatic, "unitNormal");
    emitFunction(generator, *this, function);
    generator.connect(addWorldSpaceValue(generator, worldNormal), "read", function, "in_normal");
}

} // namespace example
