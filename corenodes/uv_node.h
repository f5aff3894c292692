#pragma once

#include "nodemodel/material_node.h"

#include <memory>

namespace patina {

/// "CoreUv": publishes the texture-coordinate set that bears the node's name.
class UvNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreUv"; }

    UvNode();

    void generateCode(GraphGenerator& generator) override;
    bool generatesBinding() const override;
    void addBindings(BindingCollection& bindings) override;

private:
    std::shared_ptr<Property> primary_; ///< a hint for whoever makes tangents; only stored here
};

} // namespace patina
