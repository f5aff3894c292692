#pragma once

#include "nodemodel/material_node.h"

#include <memory>
#include <string>

namespace patina {

/// "CoreLayerBlend": combines a base layer (in1) and a blend layer (in2) with one of eleven blend modes.
/// An unconnected layer is black. The ports never change.
class LayerBlendNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreLayerBlend"; }

    LayerBlendNode();

    /// The selected mode.
    std::string caption() const override;
    void generateCode(GraphGenerator& generator) override;

private:
    std::shared_ptr<Property> mode_;
};

} // namespace patina
