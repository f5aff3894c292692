#include "host/node_summary.h"

#include "host/diagnostic.h"
#include "host/document_xml.h"
#include "nodemodel/material_node.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <new>
#include <numeric>
#include <string_view>

namespace patina {

using namespace detail;

namespace {

/// Runs an action of a node type, and turns what its code throws into a HostError.
template <typename Action>
decltype(auto) onBehalfOf(const NodeTypeSummary& type, const std::string& mode, Action&& action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        throw HostError({type.plugin, 0},
                        joinText({"node type \"", type.typeName, "\"", mode, ": ", currentExceptionText()}));
    }
}

char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// How many letters must be inserted, removed or replaced to make one text of the other, in either case.
std::size_t editDistance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (lowerCase(left[i]) == lowerCase(right[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// Artists know a type by its display name, documents by its type name.
std::size_t distanceTo(const NodeTypeSummary& type, std::string_view wanted) {
    return std::min(editDistance(wanted, type.typeName), editDistance(wanted, type.displayName));
}

[[noreturn]] void throwUnknownType(const std::vector<NodeTypeSummary>& types, const std::string& wanted) {
    const auto nearest =
        std::min_element(types.begin(), types.end(), [&](const auto& left, const auto& right) {
            return distanceTo(left, wanted) < distanceTo(right, wanted);
        });
    throw HostError(
        {}, joinText({"no plug-in offers the node type \"", wanted, "\"; ",
                      nearest == types.end() ? "no plug-in is loaded at all"
                                             : joinText({"did you mean \"", nearest->typeName, "\"?"})}));
}

PropertyValue valueOf(const Property& property) {
    switch (property.kind) {
    case PropertyType::Bool:
        return property.getBool();
    case PropertyType::Integer:
        return property.getInteger();
    case PropertyType::Float:
        return property.getFloat();
    case PropertyType::Colour:
        return property.floatValues;
    case PropertyType::String:
    case PropertyType::Enum:
        return property.stringValue;
    case PropertyType::Node:
        break;
    }
    return std::string();
}

PropertySummary summarise(const Property& property) {
    PropertySummary summary;
    summary.name = property.name;
    summary.help = property.help;
    summary.kind = property.kind;
    summary.initial = valueOf(property);
    summary.allowedValues = property.allowedValues;
    summary.stringStyle = property.stringStyle;
    summary.editable = property.editable;
    summary.visible = property.visible;
    return summary;
}

std::vector<PortSummary> summarise(const std::vector<Port>& ports) {
    std::vector<PortSummary> summaries;
    for (const Port& port : ports) {
        PortSummary summary;
        summary.name = port.name;
        summary.label = port.label;
        if (port.componentCountKnown) {
            summary.componentCount = port.componentCount;
        }
        summary.componentCountFixed = port.componentCountFixed;
        summaries.push_back(std::move(summary));
    }
    return summaries;
}

NodeAppearance appearanceOf(const MaterialNode& node) {
    NodeAppearance appearance;
    appearance.caption = node.caption();
    appearance.inputs = summarise(node.inputs);
    appearance.outputs = summarise(node.outputs);
    for (const std::shared_ptr<Property>& property : *node.properties) {
        if (property->visible) {
            appearance.visibleProperties.push_back(property->name);
        }
    }
    return appearance;
}

/// The values that a property can take, where it is an enum or a bool.
std::vector<PropertyValue> valuesOf(const PropertySummary& property) {
    if (property.kind == PropertyType::Bool) {
        return {false, true};
    }
    if (property.kind == PropertyType::Enum) {
        return {property.allowedValues.begin(), property.allowedValues.end()};
    }
    return {};
}

void select(Property& property, const PropertyValue& value) {
    if (const bool* flag = std::get_if<bool>(&value)) {
        property.setBool(*flag);
    } else {
        property.setEnum(std::get<std::string>(value));
    }
}

NodeModes tryValues(const PluginSet& plugins, const NodeTypeSummary& type, const PropertySummary& property) {
    NodeModes modes;
    modes.property = property.name;
    for (PropertyValue& value : valuesOf(property)) {
        const std::string tried =
            joinText({" with \"", property.name, "\" set to \"", propertyValueText(value), "\""});
        const auto tryIt = [&] {
            const auto node = plugins.createNode(type.typeName);
            select(*node->properties->find(property.name), value);
            node->updateFromProperties(nullptr);
            return appearanceOf(*node);
        };
        NodeAppearance appearance = onBehalfOf(type, tried, tryIt);
        modes.modes.push_back({std::move(value), std::move(appearance)});
    }
    return modes;
}

bool looksAlwaysTheSame(const NodeModes& modes) {
    return std::all_of(modes.modes.begin(), modes.modes.end(), [&](const NodeMode& mode) {
        return mode.appearance == modes.modes.front().appearance;
    });
}

std::string shortestText(float value) {
    std::array<char, 32> digits; // the longest text is like "-1.17549435e-38"
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

/// Writes a value of each kind.
struct ValueWriter {
    std::string operator()(bool value) const { return value ? "Yes" : "No"; }
    std::string operator()(std::int32_t value) const { return std::to_string(value); }
    std::string operator()(float value) const { return shortestText(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const std::array<float, 3>& value) const {
        return joinText({shortestText(value[0]), ", ", shortestText(value[1]), ", ", shortestText(value[2])});
    }
};

} // namespace

std::vector<NodeTypeSummary> listNodeTypes(const PluginSet& plugins) {
    std::vector<NodeTypeSummary> types;
    for (const std::shared_ptr<Plugin>& plugin : plugins.plugins()) {
        for (const NodeDescription& description : plugin->nodeLibrary()) {
            types.push_back({description.typeName, description.displayName, description.category,
                             description.creatable, plugin->file().string()});
        }
    }
    std::stable_sort(types.begin(), types.end(),
                     [](const NodeTypeSummary& left, const NodeTypeSummary& right) {
                         return left.category < right.category;
                     });
    return types;
}

NodeSummary summariseNode(const PluginSet& plugins, const std::string& typeName) {
    const std::vector<NodeTypeSummary> types = listNodeTypes(plugins);
    const auto type = std::find_if(types.begin(), types.end(), [&](const NodeTypeSummary& candidate) {
        return candidate.typeName == typeName;
    });
    if (type == types.end()) {
        throwUnknownType(types, typeName);
    }
    NodeSummary summary;
    summary.type = *type;
    onBehalfOf(*type, "", [&] {
        const auto node = plugins.createNode(typeName);
        node->updateFromProperties(nullptr);
        summary.version = node->properties->version;
        summary.bodyColour = node->bodyColour;
        summary.textColour = node->textColour;
        summary.appearance = appearanceOf(*node);
        for (const std::shared_ptr<Property>& property : *node->properties) {
            summary.properties.push_back(summarise(*property));
        }
    });
    for (const PropertySummary& property : summary.properties) {
        NodeModes modes = tryValues(plugins, *type, property);
        if (!looksAlwaysTheSame(modes)) {
            summary.modes.push_back(std::move(modes));
        }
    }
    return summary;
}

const char* propertyKindName(PropertyType kind) { return kindName(kind); }

std::string propertyValueText(const PropertyValue& value) { return std::visit(ValueWriter(), value); }

} // namespace patina
