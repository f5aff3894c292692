#pragma once

#include <nodemodel/nodemodel.h>

#include <memory>

namespace example {

/// "ExampleFacingRatio": 1 where the surface faces the viewer, 0 where it turns away.
///
/// The engine sets the uniform "eyePosition", the viewer's place in world space. A normal that is connected,
/// in world space too, takes the place of the surface's own.
class FacingRatioNode final : public patina::MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleFacingRatio"; }

    FacingRatioNode();

    void generateCode(patina::GraphGenerator& generator) override;

private:
    std::shared_ptr<patina::Property> twoSided_;
};

} // namespace example
