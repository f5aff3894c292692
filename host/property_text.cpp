#include "host/property_text.h"

#include "host/diagnostic.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

namespace patina {

using namespace detail;

namespace {

/// The number that makes up the whole text, in decimal.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool decimal = text.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !decimal) {
        return std::nullopt;
    }
    return number;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::array<float, 3>> parseColour(std::string_view text) {
    std::array<float, 3> colour{};
    for (std::size_t i = 0; i < colour.size(); ++i) {
        const std::size_t comma = text.find(',');
        const bool last = i + 1 == colour.size();
        if (last != (comma == std::string_view::npos)) {
            return std::nullopt;
        }
        const auto component = parseNumber<float>(trimmed(text.substr(0, comma)));
        if (!component) {
            return std::nullopt;
        }
        colour[i] = *component;
        text.remove_prefix(last ? text.size() : comma + 1);
    }
    return colour;
}

std::string numberText(const Property& property, float value) {
    if (!std::isfinite(value)) {
        throw ShaderError(joinText({"property \"", property.name, "\" is not finite, and cannot be saved"}));
    }
    std::array<char, 32> digits; // the longest text is like "-1.17549435e-38"
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

} // namespace

std::shared_ptr<Property> detail::savedProperty(const std::string& file, const std::string& nodeId,
                                                const DocumentProperty& saved, const NodeOfId& nodeOfId) {
    const auto refusal = [&](const char* wanted) {
        return HostError({file, saved.line}, joinText({"node \"", nodeId, "\": property \"", saved.name,
                                                       "\": \"", saved.value, "\" is not ", wanted}));
    };
    auto property = makeProperty(saved.name);
    switch (saved.kind) {
    case PropertyType::Bool:
        if (saved.value != "Yes" && saved.value != "No") {
            throw refusal("\"Yes\" or \"No\"");
        }
        property->setBool(saved.value == "Yes");
        break;
    case PropertyType::Integer: {
        const auto value = parseNumber<std::int32_t>(saved.value);
        if (!value) {
            throw refusal("a whole number of 32 bits");
        }
        property->setInteger(*value);
        break;
    }
    case PropertyType::Float: {
        const auto value = parseNumber<float>(saved.value);
        if (!value) {
            throw refusal("a decimal number that a float can hold");
        }
        property->setFloat(*value);
        break;
    }
    case PropertyType::String:
        property->setString(saved.value);
        break;
    case PropertyType::Colour: {
        const auto colour = parseColour(saved.value);
        if (!colour) {
            throw refusal("a colour, \"red, green, blue\"");
        }
        property->setColour((*colour)[0], (*colour)[1], (*colour)[2]);
        break;
    }
    case PropertyType::Enum:
        property->addEnumValue(saved.value);
        break;
    case PropertyType::Node:
        property->kind = PropertyType::Node;
        if (!saved.value.empty()) {
            property->nodeValue = nodeOfId(saved.value, saved.line);
        }
        break;
    }
    return property;
}

std::string detail::propertyText(const Property& property,
                                 const std::function<std::string(const MaterialNode&)>& idOfNode) {
    switch (property.kind) {
    case PropertyType::Bool:
        return property.getBool() ? "Yes" : "No";
    case PropertyType::Integer:
        return std::to_string(property.intValue);
    case PropertyType::Float:
        return numberText(property, property.floatValues[0]);
    case PropertyType::String:
    case PropertyType::Enum:
        return property.stringValue;
    case PropertyType::Colour:
        return joinText({numberText(property, property.floatValues[0]), ", ",
                         numberText(property, property.floatValues[1]), ", ",
                         numberText(property, property.floatValues[2])});
    case PropertyType::Node:
        break;
    }
    return property.nodeValue ? idOfNode(*property.nodeValue) : std::string();
}

} // namespace patina
