#pragma once

#include "nodemodel/material_node.h"

#include <map>
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
    void addDefault(const char* portName, const char* propertyName, const char* portText, float value);
    float defaultFor(const Port& input) const;

    std::shared_ptr<Property> function_;
    std::shared_ptr<Property> executionLevel_;
    std::map<std::string, std::shared_ptr<Property>> defaults_; ///< by the name of the input that each feeds
};

} // namespace patina
