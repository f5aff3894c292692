#pragma once

#include <nodemodel/nodemodel.h>

namespace example {

/// "ExampleWorldPosition": the place of the surface in world space.
class WorldPositionNode final : public patina::MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleWorldPosition"; }

    WorldPositionNode();

    void generateCode(patina::GraphGenerator& generator) override;
};

} // namespace example
