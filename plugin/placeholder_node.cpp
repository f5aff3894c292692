#include "plugin/placeholder_node.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <cstdint>
#include <limits>

namespace patina {

using namespace detail;

PlaceholderNode::PlaceholderNode() : MaterialNode(staticTypeName()) {
    setName("Default");
    setBodyColour(1.0F, 1.0F, 1.0F);
    setTextColour(1.0F, 0.0F, 0.0F);
    // saved properties of every version are welcome
    properties->version = std::numeric_limits<std::int32_t>::max();
}

std::string PlaceholderNode::caption() const { return name() + "?"; }

void PlaceholderNode::generateCode(GraphGenerator& /*generator*/) {
    throw ShaderError(
        joinText({"cannot export as the node \"", name(), "\" cannot be properly created.",
                  " Please either get the DLL that can load this node or replace with alternatives."}));
}

void PlaceholderNode::loadProperties(const std::shared_ptr<PropertySet>& saved) {
    MaterialNode::loadProperties(saved);
    descriptionProperty->setString(
        joinText({"This node has been created as a placeholder because a node of type \"", typeName(),
                  "\" could not be created.",
                  " You need to either reload this material using the correct plug-in DLLs",
                  " or replace this node with alternatives."}));
}

} // namespace patina
