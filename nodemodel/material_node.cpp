#include "nodemodel/material_node.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>

namespace patina {

using namespace detail;

namespace {

constexpr std::uint32_t floatPrecision = 2;
constexpr std::uint32_t halfPrecision = 3;

constexpr auto standardTable = declareProperties(std::array<PropertyDeclaration, 0>());

constexpr std::uint32_t freeTextStyle = 1;
constexpr std::uint32_t webAddressStyle = 2;

int findPortIndex(const std::vector<Port>& ports, std::string_view portName) {
    const auto found =
        std::find_if(ports.begin(), ports.end(), [&](const Port& port) { return port.name == portName; });
    return found == ports.end() ? -1 : static_cast<int>(found - ports.begin());
}

[[noreturn]] void throwUnknownPort(const MaterialNode& node, const char* direction,
                                   std::string_view portName) {
    throw ShaderError(
        joinText({node.describe(), ": ", direction, " port \"", portName, "\" does not exist"}));
}

} // namespace

MaterialNode::MaterialNode(const std::string& type) : MaterialNode(type, standardTable.layout()) {}

MaterialNode::MaterialNode(const std::string& type, const PropertyLayout& layout)
    : properties(std::make_shared<PropertySet>()) {
    properties->addNew(layout);
    const std::span<std::shared_ptr<Property>> items(properties->items);

    typeProperty = items[0];
    typeProperty->setString(type);
    typeProperty->editable = false;

    nameProperty = items[1];
    nameProperty->setString(type);

    bindingIndexProperty = items[2];
    bindingIndexProperty->setInteger(0);
    bindingIndexProperty->visible = false;

    bindingGroupProperty = items[3];
    bindingGroupProperty->setString("");
    bindingGroupProperty->visible = false;

    positionXProperty = items[4];
    positionXProperty->setFloat(0.0F);
    positionXProperty->visible = false;

    positionYProperty = items[5];
    positionYProperty->setFloat(0.0F);
    positionYProperty->visible = false;

    descriptionProperty = items[6];
    descriptionProperty->setString("");
    descriptionProperty->stringStyle = freeTextStyle;

    helpUrlProperty = items[7];
    helpUrlProperty->setString("");
    helpUrlProperty->stringStyle = webAddressStyle;
}

MaterialNode::~MaterialNode() = default;

std::shared_ptr<Property> MaterialNode::addProperty(std::string_view propertyName, std::string_view help) {
    auto property = std::make_shared<Property>(propertyName, help);
    properties->add(property);
    return property;
}

void MaterialNode::updateFromProperties(void* /*hostContext*/) {}

std::string MaterialNode::caption() const { return name(); }

void MaterialNode::resolveComponentCounts() {
    resolvedComponentCount = 1;
    bool conflict = false;
    for (const Port& input : inputs) {
        if (!input.componentCountKnown || input.componentCountFixed || input.componentCount == 1 ||
            input.componentCount == resolvedComponentCount) {
            continue;
        }
        if (resolvedComponentCount == 1) {
            resolvedComponentCount = input.componentCount;
        } else {
            conflict = true;
        }
    }
    if (conflict) { // no flag is ever taken back
        for (Port& input : inputs) {
            if (!input.componentCountFixed) {
                input.componentCountConflict = true;
            }
        }
        return;
    }
    for (Port& input : inputs) {
        if (input.componentCountKnown) {
            continue;
        }
        if (!input.componentCountFixed) {
            input.componentCount = resolvedComponentCount;
            input.componentCountKnown = true;
        } else if (resolvedComponentCount != input.componentCount && resolvedComponentCount != 1) {
            input.componentCountConflict = true;
        }
    }
    for (Port& output : outputs) {
        if (!output.componentCountFixed) { // known or not, unlike precisions
            output.componentCount = resolvedComponentCount;
            output.componentCountKnown = true;
        }
    }
}

void MaterialNode::resolvePrecision() {
    const bool floatDemanded = std::any_of(outputs.begin(), outputs.end(), [](const Port& output) {
        return output.precisionKnown && output.precision == floatPrecision;
    });
    resolvedPrecision = floatDemanded ? floatPrecision : halfPrecision;
    for (Port& input : inputs) {
        if (!input.precisionFixed) {
            input.precision = resolvedPrecision;
            input.precisionKnown = true;
        }
    }
    for (Port& output : outputs) {
        if (!output.precisionKnown && !output.precisionFixed) {
            output.precision = resolvedPrecision;
            output.precisionKnown = true;
        }
    }
}

bool MaterialNode::generatesBinding() const { return false; }

void MaterialNode::addBindings(BindingCollection& /*bindings*/) {}

void MaterialNode::loadProperties(const std::shared_ptr<PropertySet>& saved) {
    if (saved->version > properties->version) {
        throw ShaderError(
            joinText({"Cannot convert \"", typeName(), "\" version ", std::to_string(saved->version),
                      " properties into version ", std::to_string(properties->version),
                      " properties. Are you running with an old DLL?"}));
    }
    properties->copyValuesFrom(*saved);
}

const std::string& MaterialNode::typeName() const { return typeProperty->getString(); }

const std::string& MaterialNode::name() const { return nameProperty->getString(); }

void MaterialNode::setName(const std::string& text) { nameProperty->setString(text); }

void MaterialNode::setTextColour(float red, float green, float blue) {
    textColour = {red, green, blue, textColour[3]};
}

void MaterialNode::setBodyColour(float red, float green, float blue) {
    bodyColour = {red, green, blue, bodyColour[3]};
}

std::string MaterialNode::describe() const { return joinText({"node \"", name(), "\" (", typeName(), ")"}); }

int MaterialNode::findInputPortIndex(std::string_view portName) const {
    return findPortIndex(inputs, portName);
}

int MaterialNode::findOutputPortIndex(std::string_view portName) const {
    return findPortIndex(outputs, portName);
}

const Port& MaterialNode::inputPort(std::string_view portName) const {
    const int index = findInputPortIndex(portName);
    if (index < 0) {
        throwUnknownPort(*this, "input", portName);
    }
    return inputs[static_cast<std::size_t>(index)];
}

const Port& MaterialNode::outputPort(std::string_view portName) const {
    const int index = findOutputPortIndex(portName);
    if (index < 0) {
        throwUnknownPort(*this, "output", portName);
    }
    return outputs[static_cast<std::size_t>(index)];
}

Port& MaterialNode::inputPort(std::string_view portName) {
    return const_cast<Port&>(static_cast<const MaterialNode&>(*this).inputPort(portName));
}

Port& MaterialNode::outputPort(std::string_view portName) {
    return const_cast<Port&>(static_cast<const MaterialNode&>(*this).outputPort(portName));
}

} // namespace patina
