#pragma once

#include "nodemodel/material_node.h"

#include <memory>

namespace patina {

/// "CoreVertexColour": publishes the vertex-colour set that bears the node's name as a colour, as components
/// or as a vector. Alpha is read only where it is used.
class VertexColourNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreVertexColour"; }

    VertexColourNode();

    void updateFromProperties(void* hostContext) override;
    void generateCode(GraphGenerator& generator) override;
    bool generatesBinding() const override;
    void addBindings(BindingCollection& bindings) override;

private:
    std::shared_ptr<Property> colourType_;
    std::shared_ptr<Property> alpha_;
};

} // namespace patina
