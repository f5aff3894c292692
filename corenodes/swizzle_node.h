#pragma once

#include "nodemodel/material_node.h"

#include <memory>
#include <string>

namespace patina {

/// "CoreSwizzle": splits a colour, uv or vector into scalars or, reversed, merges scalars into one.
/// Unconnected inputs are zero.
class SwizzleNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreSwizzle"; }

    SwizzleNode();

    /// Throws ShaderError, leaving the node without ports, for a vector of fewer than 2 or more than 4
    /// components.
    void updateFromProperties(void* hostContext) override;
    std::string caption() const override;
    void generateCode(GraphGenerator& generator) override;

private:
    std::shared_ptr<Property> vectorType_;
    std::shared_ptr<Property> componentCount_;
    std::shared_ptr<Property> reverse_;
};

} // namespace patina
