#pragma once

#include "plugin/plugin.h"

#include <memory>
#include <string>

namespace patina {

/// The factory of the Core node types and the placeholder. Without mutable state once constructed.
class CoreNodeFactory final : public NodeFactory {
public:
    CoreNodeFactory();

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override;
};

} // namespace patina
