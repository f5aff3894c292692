#pragma once

#include "nodemodel/material_node.h"

#include <string>

namespace patina::testing {

/// The least that makes a node: the base behaviour, and generation that emits nothing.
class PlainNode final : public MaterialNode {
public:
    explicit PlainNode(const std::string& type = "TestPlain") : MaterialNode(type) {}
    void generateCode(GraphGenerator& /*generator*/) override {}
};

} // namespace patina::testing
