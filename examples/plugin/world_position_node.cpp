#include "world_position_node.h"

#include "node_support.h"
#include "world_space.h"

namespace example {

using namespace patina;

WorldPositionNode::WorldPositionNode() : MaterialNode(staticTypeName()) {
    setName("WorldPosition");
    setBodyColour(0.7F, 0.8F, 1.0F);

    // named like the parameter's own output, which the node hands on as it is
    addFloatPort(outputs, "read", "position", 3);
}

void WorldPositionNode::generateCode(GraphGenerator& generator) {
    attachLinks(generator, addWorldSpaceValue(generator, worldPosition));
}

} // namespace example
