#pragma once

#include "nodemodel/material_node.h"

#include <memory>
#include <string>

namespace patina {

/// "CoreAnimatedUv": the texture coordinates of two successive frames of a flip book, and the blend between
/// them. Rows and columns are not checked: a zero gives an infinite reciprocal in the code.
class AnimatedUvNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreAnimatedUv"; }

    AnimatedUvNode();

    void updateFromProperties(void* hostContext) override;
    std::string caption() const override;
    void generateCode(GraphGenerator& generator) override;

private:
    bool isBasic() const;

    std::shared_ptr<Property> rows_;
    std::shared_ptr<Property> columns_;
    std::shared_ptr<Property> mode_;
    std::shared_ptr<Property> executionLevel_;
};

} // namespace patina
