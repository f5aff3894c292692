#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace patina {

/// A named input or output of a material node, with the width and scalar kind of the value on it.
///
/// "Known" means that the value may be read; "fixed" that the node itself decided it, so that resolution
/// never overwrites it. A host that pushes a value along a connection writes the fields: count or precision,
/// and known.
///
/// Threads: as the node that holds it.
struct Port {
    /// An unresolved, unconnected port. An empty label becomes the name.
    Port(std::string_view portName, std::string_view portLabel)
        : name(portName), label(portLabel.empty() ? portName : portLabel) {}
    explicit Port(std::string_view portName) : Port(portName, portName) {}

    std::string name;                 ///< identifier, and the variable name in generated code
    std::string label;                ///< shown in the editor
    std::uint32_t componentCount = 0; ///< vector components, 1 to 4
    bool componentCountKnown = false;
    bool componentCountFixed = false;
    bool componentCountConflict = false; ///< resolution found incompatible counts here
    std::uint32_t precision = 1;         ///< scalar kind as a ComponentType code: 2 float, 3 half
    bool precisionKnown = false;
    bool precisionFixed = false;
    bool connected = false; ///< a connection starts or ends here; only the host sets and clears it

    /// Sets the count and marks it known and fixed.
    void setComponentCount(std::uint32_t count);
    /// Sets the precision and marks it known and fixed.
    void setPrecision(std::uint32_t componentTypeCode);
    /// Throws ShaderError while the count is unknown.
    std::uint32_t getComponentCount() const;
    /// Throws ShaderError while the precision is unknown.
    std::uint32_t getPrecision() const;
};

} // namespace patina
