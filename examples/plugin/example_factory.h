#pragma once

#include <plugin/plugin.h>

#include <memory>
#include <string>

namespace example {

/// The factory of the example node types. Without mutable state once constructed.
class ExampleFactory final : public patina::NodeFactory {
public:
    ExampleFactory();

    std::shared_ptr<patina::MaterialNode> createNode(const std::string& typeName) override;
};

} // namespace example
