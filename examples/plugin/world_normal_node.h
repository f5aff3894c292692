#pragma once

#include <nodemodel/nodemodel.h>

namespace example {

/// "ExampleWorldNormal": the direction in which the surface faces, in world space and of unit length.
class WorldNormalNode final : public patina::MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleWorldNormal"; }

    WorldNormalNode();

    void generateCode(patina::GraphGenerator& generator) override;
};

} // namespace example
