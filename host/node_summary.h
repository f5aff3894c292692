#pragma once

#include "host/plugins.h"
#include "nodemodel/property.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace patina {

// What an artist or a tool needs to know of the node types of a host's plug-ins: plain data, which keeps no
// plug-in loaded.

/// A node type as its plug-in lists it.
struct NodeTypeSummary {
    std::string typeName;
    std::string displayName;
    std::string category;
    bool creatable = true; ///< offered to the artist for creation
    std::string plugin;    ///< the plug-in's file

    bool operator==(const NodeTypeSummary&) const = default;
};

/// A value by the property's kind: String, Enum and Node are texts, the last of them an empty one.
using PropertyValue = std::variant<bool, std::int32_t, float, std::string, std::array<float, 3>>;

struct PropertySummary {
    std::string name;
    std::string help;
    PropertyType kind = PropertyType::Bool;
    PropertyValue initial;                  ///< of a new node
    std::vector<std::string> allowedValues; ///< Enum values in list order, or type names for Node
    std::uint32_t stringStyle = 0;          ///< 0 one line, 1 free text, 2 a web address
    bool editable = true;
    bool visible = true;
};

struct PortSummary {
    std::string name;
    std::string label;
    std::optional<std::uint32_t> componentCount; ///< none where it depends on what is connected
    bool componentCountFixed = false;            ///< whatever is connected

    bool operator==(const PortSummary&) const = default;
};

/// How a node presents itself under one setting of its properties.
struct NodeAppearance {
    std::string caption;
    std::vector<PortSummary> inputs;
    std::vector<PortSummary> outputs;
    std::vector<std::string> visibleProperties; ///< in the order of the properties

    bool operator==(const NodeAppearance&) const = default;
};

/// The appearance under one value of a property, all others at their defaults.
struct NodeMode {
    PropertyValue value;
    NodeAppearance appearance;
};

/// A property that the appearance depends on, with a mode for each of its values.
struct NodeModes {
    std::string property;
    std::vector<NodeMode> modes;
};

struct NodeSummary {
    NodeTypeSummary type;
    std::int32_t version = 0; ///< of the property set
    std::array<float, 4> bodyColour = {};
    std::array<float, 4> textColour = {};
    std::vector<PropertySummary> properties;
    NodeAppearance appearance;    ///< of a new node
    std::vector<NodeModes> modes; ///< of the enum and bool properties that matter, in property order
};

/// All node types of all plug-ins, by category and then in the order of the plug-ins and their libraries.
/// [thread-safe]
std::vector<NodeTypeSummary> listNodeTypes(const PluginSet& plugins);

/// Tries out a node type: makes nodes of it and varies one property at a time. [thread-safe]
/// Throws HostError when no plug-in offers the type, suggesting the one of the nearest name, and whatever the
/// nodes throw, naming the plug-in, the type and the value that was being tried.
NodeSummary summariseNode(const PluginSet& plugins, const std::string& typeName);

/// The kind as documents name it: "bool", "colour". [thread-safe]
const char* propertyKindName(PropertyType kind);

/// The value as documents write it: "Yes", "0.5", "0, 0, 1". Floats in the fewest digits that give them back.
/// [thread-safe]
std::string propertyValueText(const PropertyValue& value);

} // namespace patina
