#pragma once

#include "nodemodel/material_node.h"

#include <string>

namespace patina {

/// "CoreDefault": stands in for a node whose type no loaded plug-in can create. It keeps the standard
/// properties of any saved version, has no ports, and refuses to be exported.
class PlaceholderNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreDefault"; }

    PlaceholderNode();

    /// The name with a question mark.
    std::string caption() const override;
    /// Always throws ShaderError.
    void generateCode(GraphGenerator& generator) override;
    /// Restores the standard properties, then explains in the description what has happened.
    void loadProperties(const std::shared_ptr<PropertySet>& saved) override;
};

} // namespace patina
