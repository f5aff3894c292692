#include "plugin/core_node_factory.h"

#include "corenodes/corenodes.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"
#include "plugin/placeholder_node.h"

#include "plugin/icons/constant.xpm"
#include "plugin/icons/layer_blend.xpm"
#include "plugin/icons/maths.xpm"
#include "plugin/icons/swizzle.xpm"
#include "plugin/icons/texture.xpm"
#include "plugin/icons/uv.xpm"
#include "plugin/icons/vertex_colour.xpm"

#include <array>

namespace patina {

using namespace detail;

namespace {

/// One node type: how hosts list it, and how a node is made.
struct NodeType {
    const char* typeName;
    const char* displayName;
    bool creatable;
    const char* const* icon;
    std::shared_ptr<MaterialNode> (*create)();
};

template <typename Node>
std::shared_ptr<MaterialNode> create() {
    return std::make_shared<Node>();
}

template <typename Node>
constexpr NodeType nodeType(const char* displayName, const char* const* icon, bool creatable = true) {
    return {Node::staticTypeName(), displayName, creatable, icon, create<Node>};
}

/// In the order in which hosts list them. The two uv nodes share an icon.
constexpr std::array<NodeType, 9> nodeTypes = {
    nodeType<PlaceholderNode>("Default", nullptr, false),
    nodeType<VertexColourNode>("Vertex Colour Set", vertexColourIcon),
    nodeType<UvNode>("Uv Set", uvIcon),
    nodeType<TextureNode>("Texture", textureIcon),
    nodeType<ConstantNode>("Constant", constantIcon),
    nodeType<MathsNode>("Maths", mathsIcon),
    nodeType<SwizzleNode>("Swizzle", swizzleIcon),
    nodeType<LayerBlendNode>("Layer Blend", layerBlendIcon),
    nodeType<AnimatedUvNode>("Animated Uv", uvIcon),
};

} // namespace

CoreNodeFactory::CoreNodeFactory() {
    for (const NodeType& type : nodeTypes) {
        NodeDescription description(type.typeName);
        description.category = "Core";
        description.displayName = type.displayName;
        description.creatable = type.creatable;
        description.icon = type.icon;
        nodeLibrary.push_back(description);
    }
}

std::shared_ptr<MaterialNode> CoreNodeFactory::createNode(const std::string& typeName) {
    for (const NodeType& type : nodeTypes) { // those that artists cannot create too
        if (typeName == type.typeName) {
            return type.create();
        }
    }
    throw ShaderError(joinText({"cannot create \"", typeName, "\" node"}));
}

} // namespace patina
