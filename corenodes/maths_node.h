#pragma once

#include "nodemodel/material_node.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace patina {

struct MathsFunction;

/// "CoreMaths": applies one of fifteen arithmetic functions to its inputs.
///
/// An unconnected input takes its value from a default property; only "facing" has none and must be
/// connected.
class MathsNode final : public MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "CoreMaths"; }

    MathsNode();

    void updateFromProperties(void* hostContext) override;
    /// The selected function.
    std::string caption() const override;
    void generateCode(GraphGenerator& generator) override;

private:
    const MathsFunction& function() const;
    float defaultFor(const Port& input) const;

    std::shared_ptr<Property> function_;
    std::shared_ptr<Property> executionLevel_;
    static constexpr std::size_t defaultCount = 11;
    std::array<std::shared_ptr<Property>, defaultCount> defaults_; ///< what feeds inputs without a connection
};

} // namespace patina
