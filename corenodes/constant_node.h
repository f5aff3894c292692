#pragma once

#include "nodemodel/material_node.h"

#include <array>
#include <memory>

namespace patina {

class FunctionBuilder;

/// "CoreConstant": a colour, its components, a scalar or a vector. Unlocked, it is a uniform parameter with a
/// float binding of the node's name; locked, a literal in the shader.
class ConstantNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreConstant"; }

    ConstantNode();

    /// Throws ShaderError, leaving the node without ports, for a vector of fewer than 2 or more than 4
    /// components.
    void updateFromProperties(void* hostContext) override;
    void generateCode(GraphGenerator& generator) override;
    bool generatesBinding() const override;
    void addBindings(BindingCollection& bindings) override;

private:
    bool isColourish() const;
    bool alphaInUse() const;
    std::array<float, 3> defaultColour() const;
    void addComponentOutputs(FunctionBuilder& builder) const;
    void generateLocked(GraphGenerator& generator);
    void generateUniform(GraphGenerator& generator);
    void generateSplitUniform(GraphGenerator& generator);
    void linkOutputs(GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& function,
                     const char* readPort) const;

    std::shared_ptr<Property> constantType_;
    std::shared_ptr<Property> componentCount_;
    std::shared_ptr<Property> defaultColour_;
    std::shared_ptr<Property> minScalar_;
    std::shared_ptr<Property> maxScalar_;
    std::shared_ptr<Property> defaultScalar_;
    std::shared_ptr<Property> alpha_;
    std::shared_ptr<Property> defaultAlpha_;
    std::shared_ptr<Property> lock_;
    std::shared_ptr<Property> basicColour_;
};

} // namespace patina
