#include "nodemodel/property.h"

#include "nodemodel/material_node.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>

namespace patina {

using namespace detail;

Property::Property(std::string_view propertyName, std::string_view helpText)
    : name(propertyName), help(helpText) {}

std::shared_ptr<Property> makeProperty(const std::string& name) { return std::make_shared<Property>(name); }

bool Property::allows(std::string_view value) const {
    return std::find(allowedValues.begin(), allowedValues.end(), value) != allowedValues.end();
}

void Property::require(PropertyType wanted, const char* kindText) const {
    if (kind != wanted) {
        throw ShaderError(
            joinText({"cannot read ", kindText, " value from non-", kindText, " property \"", name, "\""}));
    }
}

void Property::setBool(bool value) {
    kind = PropertyType::Bool;
    intValue = value ? 1 : 0;
}

void Property::setInteger(std::int32_t value) {
    kind = PropertyType::Integer;
    intValue = value;
}

void Property::setFloat(float value) {
    kind = PropertyType::Float;
    floatValues[0] = value;
}

void Property::setString(const std::string& text) {
    stringValue = text;
    kind = PropertyType::String;
}

void Property::setColour(float red, float green, float blue) {
    kind = PropertyType::Colour;
    floatValues = {red, green, blue};
}

void Property::setEnum(std::string_view text) {
    if (!allows(text)) {
        throw ShaderError(joinText({"enum \"", text, "\" does not exist"}));
    }
    stringValue = text;
    kind = PropertyType::Enum;
}

void Property::addEnumValue(std::string_view text) {
    if (allows(text)) {
        throw ShaderError(joinText({"enum \"", text, "\" is not unique"}));
    }
    std::string first(allowedValues.empty() ? text : std::string_view());
    allowedValues.emplace_back(text);
    if (allowedValues.size() == 1) {
        stringValue.swap(first);
    }
    kind = PropertyType::Enum;
}

void Property::addNodeTypename(std::string_view text) {
    allowedValues.emplace_back(text);
    kind = PropertyType::Node;
}

bool Property::getBool() const {
    require(PropertyType::Bool, "bool");
    return intValue == 1; // any other number is false
}

std::int32_t Property::getInteger() const {
    require(PropertyType::Integer, "integer");
    return intValue;
}

float Property::getFloat() const {
    require(PropertyType::Float, "float");
    return floatValues[0];
}

const std::string& Property::getString() const {
    require(PropertyType::String, "string");
    return stringValue;
}

const std::string& Property::getEnum() const {
    require(PropertyType::Enum, "enum");
    return stringValue;
}

void Property::getColour(float& red, float& green, float& blue) const {
    require(PropertyType::Colour, "colour");
    red = floatValues[0];
    green = floatValues[1];
    blue = floatValues[2];
}

std::shared_ptr<MaterialNode>& Property::getNode() {
    require(PropertyType::Node, "node");
    return nodeValue;
}

const std::shared_ptr<MaterialNode>& Property::getNode() const {
    require(PropertyType::Node, "node");
    return nodeValue;
}

void Property::copyFrom(const Property& source) {
    if (kind != source.kind) {
        throw ShaderError(
            joinText({"cannot copy property \"", name, "\" from property with non-matching type"}));
    }
    if (kind == PropertyType::Enum && !allows(source.stringValue)) {
        throw ShaderError(joinText({"cannot copy property \"", name, "\" as enum \"", source.stringValue,
                                    "\" is not a known enum value"}));
    }
    if (kind == PropertyType::Node && source.nodeValue && !allowedValues.empty() &&
        !allows(source.nodeValue->typeName())) {
        throw ShaderError(joinText({"cannot copy property \"", name, "\" as node typename \"",
                                    source.nodeValue->typeName(), "\" is not a valid typename"}));
    }
    stringValue = source.stringValue;
    intValue = source.intValue;
    floatValues = source.floatValues;
    nodeValue = source.nodeValue;
}

void PropertySet::addNew(const PropertyLayout& layout) {
    items.reserve(layout.declarations().size());
    for (const PropertyDeclaration& declaration : layout.declarations()) {
        items.push_back(std::make_shared<Property>(declaration.name, declaration.help));
    }
    byName.assign(items, layout.order());
}

void PropertySet::add(const std::shared_ptr<Property>& property) {
    if (items.size() == items.capacity()) {
        items.reserve(2 * items.size() + 1); // what may fail comes first
    }
    if (!byName.emplace(property->name, property).second) {
        throw ShaderError(joinText({"property with name \"", property->name, "\" already exists"}));
    }
    items.push_back(property);
}

std::shared_ptr<Property> PropertySet::find(std::string_view name) const {
    const auto found = byName.find(name);
    if (found == byName.end()) {
        throw ShaderError(joinText({"failed to find property \"", name, "\""}));
    }
    return found->second;
}

void PropertySet::copyValuesFrom(const PropertySet& saved) {
    for (const std::shared_ptr<Property>& property : items) {
        const auto found = saved.byName.find(property->name);
        if (found != saved.byName.end()) {
            property->copyFrom(*found->second);
        }
    }
}

} // namespace patina
