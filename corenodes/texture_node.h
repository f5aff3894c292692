#pragma once

#include "nodemodel/material_node.h"

#include <memory>
#include <string>
#include <vector>

namespace patina {

/// "CoreTexture": samples a 1D or 2D texture, as a colour, an unpacked normal, components or a vector.
///
/// A node whose "Reference" points at another texture node takes that node's name and settings and presents
/// no binding. References must not form a cycle: nothing here guards against one.
class TextureNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreTexture"; }

    TextureNode();

    /// Takes the settings from the referenced node, which must be up to date itself.
    void updateFromProperties(void* hostContext) override;
    /// The name of the binding: that of the node at the end of the chain of references.
    std::string caption() const override;
    /// Throws ShaderError when no texture coordinate is connected.
    void generateCode(GraphGenerator& generator) override;
    bool generatesBinding() const override;
    void addBindings(BindingCollection& bindings) override;

private:
    bool isReferenced() const;
    bool isNormal() const;
    bool convertsFromSrgb() const;
    bool isAlphaSampled() const;

    std::shared_ptr<Property> reference_;
    std::shared_ptr<Property> textureType_;
    std::shared_ptr<Property> colourType_;
    std::shared_ptr<Property> alpha_;
    std::shared_ptr<Property> srgb_;
    std::shared_ptr<Property> basicColour_;
    std::vector<std::shared_ptr<Property>> settings_; ///< what a reference takes over, in order
};

} // namespace patina
