#include "example_factory.h"

#include "checker_node.h"
#include "facing_ratio_node.h"
#include "time_node.h"
#include "value_noise_node.h"
#include "world_normal_node.h"
#include "world_position_node.h"

#include "icons/checker.xpm"
#include "icons/facing_ratio.xpm"
#include "icons/time.xpm"
#include "icons/value_noise.xpm"
#include "icons/world_normal.xpm"
#include "icons/world_position.xpm"

#include <array>

namespace example {

using namespace patina;

namespace {

/// One node type: how hosts list it, and how a node is made.
struct NodeType {
    const char* typeName;
    const char* displayName;
    const char* const* icon;
    std::shared_ptr<MaterialNode> (*create)();
};

template <typename Node>
constexpr NodeType nodeType(const char* displayName, const char* const* icon) {
    return {Node::staticTypeName(), displayName, icon,
            []() -> std::shared_ptr<MaterialNode> { return std::make_shared<Node>(); }};
}

/// In the order in which hosts list them.
constexpr std::array<NodeType, 6> nodeTypes = {
    nodeType<TimeNode>("Time", timeIcon),
    nodeType<WorldPositionNode>("World Position", worldPositionIcon),
    nodeType<WorldNormalNode>("World Normal", worldNormalIcon),
    nodeType<FacingRatioNode>("Facing Ratio", facingRatioIcon),
    nodeType<CheckerNode>("Checker", checkerIcon),
    nodeType<ValueNoiseNode>("Value Noise", valueNoiseIcon),
};

} // namespace

ExampleFactory::ExampleFactory() {
    for (const NodeType& type : nodeTypes) {
        NodeDescription description(type.typeName);
        description.category = "Example";
        description.displayName = type.displayName;
        description.icon = type.icon;
        nodeLibrary.push_back(description);
    }
}

std::shared_ptr<MaterialNode> ExampleFactory::createNode(const std::string& typeName) {
    for (const NodeType& type : nodeTypes) {
        if (typeName == type.typeName) {
            return type.create();
        }
    }
    throw ShaderError("cannot create \"" + typeName + "\" node");
}

} // namespace example
