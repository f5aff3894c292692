#include "host/checks/checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace patina::detail {

namespace {

struct StandardProperty {
    const char* name;
    PropertyType kind;
    std::shared_ptr<Property> MaterialNode::*handle;
};

constexpr std::array<StandardProperty, 8> standardProperties = {{
    {"Type", PropertyType::String, &MaterialNode::typeProperty},
    {"Name", PropertyType::String, &MaterialNode::nameProperty},
    {"BindingIndex", PropertyType::Integer, &MaterialNode::bindingIndexProperty},
    {"BindingGroup", PropertyType::String, &MaterialNode::bindingGroupProperty},
    {"PositionX", PropertyType::Float, &MaterialNode::positionXProperty},
    {"PositionY", PropertyType::Float, &MaterialNode::positionYProperty},
    {"Description", PropertyType::String, &MaterialNode::descriptionProperty},
    {"Help Url", PropertyType::String, &MaterialNode::helpUrlProperty},
}};

constexpr std::array<std::string_view, 7> typeNames = {"bool",   "integer", "float", "string",
                                                       "colour", "enum",    "node"};

std::string_view nameOf(PropertyType type) {
    const auto index = static_cast<std::size_t>(type);
    if (index >= typeNames.size()) {
        return "unknown";
    }
    return typeNames[index];
}

bool isAllowed(const Property& property, const std::string& value) {
    return std::find(property.allowedValues.begin(), property.allowedValues.end(), value) !=
           property.allowedValues.end();
}

void checkEnum(CheckContext& context, const Property& property) {
    context.require(isAllowed(property, property.stringValue),
                    {"the value ", inQuotes(property.stringValue), " of the property ",
                     inQuotes(property.name), " is not one of its allowed values"});
    const std::set<std::string> values(property.allowedValues.begin(), property.allowedValues.end());
    context.require(values.size() == property.allowedValues.size(),
                    {"the property ", inQuotes(property.name), " allows a value twice"});
}

void checkProperty(CheckContext& context, const Property& property) {
    context.require(!property.name.empty(), {"a property has no name"});
    if (property.kind == PropertyType::Enum) {
        checkEnum(context, property);
    }
    context.require(std::all_of(property.floatValues.begin(), property.floatValues.end(),
                                [](float value) { return std::isfinite(value); }),
                    {"the value of the property ", inQuotes(property.name), " is not finite"});
}

/// The values of a node as a host saves them.
std::shared_ptr<PropertySet> savedProperties(const MaterialNode& node) {
    auto saved = std::make_shared<PropertySet>();
    saved->version = node.properties->version;
    for (const std::shared_ptr<Property>& property : *node.properties) {
        auto copy = makeProperty(property->name);
        copy->kind = property->kind;
        copy->stringValue = property->stringValue;
        copy->intValue = property->intValue;
        copy->floatValues = property->floatValues;
        copy->nodeValue = property->nodeValue;
        saved->add(copy);
    }
    return saved;
}

void checkNewerRefused(CheckContext& context, MaterialNode& node) {
    if (node.properties->version == std::numeric_limits<std::int32_t>::max()) {
        return; // there is none
    }
    const auto saved = savedProperties(node);
    ++saved->version;
    saved->find("Name")->setString("newer");
    const NodeState before = nodeState(node);
    context.require(isRefused([&] { node.loadProperties(saved); }),
                    {"it loads properties of version ", std::to_string(saved->version),
                     ", although its own have version ", std::to_string(node.properties->version),
                     "; throw ShaderError"});
    requireSame(context, "properties of a newer version changed the node", before, nodeState(node));
}

void checkOwnLoaded(CheckContext& context, const Configuration& configuration) {
    const auto node = configuration.makeUpdatedNode();
    const auto saved = savedProperties(*node);
    const NodeState before = nodeState(*node);
    node->loadProperties(saved);
    requireSame(context, "loading a node's own properties changed it", before, nodeState(*node));

    const auto restored = configuration.plugin.createNode(configuration.type.typeName);
    restored->loadProperties(saved);
    restored->updateFromProperties(nullptr);
    requireSame(context, "a new node that loads the properties is another", before, nodeState(*restored));
}

} // namespace

void checkStandardProperties(CheckContext& context) {
    forEachType(context, [&](const NodeDescription& /*type*/, const MaterialNode& node) {
        const auto& items = node.properties->items;
        for (std::size_t i = 0; i < standardProperties.size(); ++i) {
            const StandardProperty& standard = standardProperties[i];
            if (i >= items.size() || items[i]->name != standard.name) {
                context.report({"property ", std::to_string(i + 1), " is ",
                                i < items.size() ? inQuotes(items[i]->name) : "missing", ", not ",
                                inQuotes(standard.name)});
                return;
            }
            context.require(items[i]->kind == standard.kind,
                            {"the property ", inQuotes(standard.name), " is of kind ", nameOf(items[i]->kind),
                             ", not ", nameOf(standard.kind)});
            context.require(node.*standard.handle == items[i],
                            {"the node's handle of ", inQuotes(standard.name), " is another property"});
        }
        context.require(!items.front()->editable, {"the property \"Type\" can be edited"});
    });
}

void checkHelpTexts(CheckContext& context) {
    forEachType(context, [&](const NodeDescription& /*type*/, const MaterialNode& node) {
        for (const std::shared_ptr<Property>& property : *node.properties) {
            if (property->help.empty()) {
                context.require(!property->visible,
                                {"the visible property ", inQuotes(property->name), " has no help text"});
                continue;
            }
            context.require(property->help.rfind(property->name + ":", 0) == 0,
                            {"the help text of the property ", inQuotes(property->name),
                             " does not begin with ", inQuotes(property->name + ":")});
        }
    });
}

void checkProperties(CheckContext& context) {
    forEachConfiguration(context, Types::All, [&](const Configuration& configuration) {
        const auto node = configuration.makeUpdatedNode();
        std::set<std::string> names;
        for (const std::shared_ptr<Property>& property : *node->properties) {
            checkProperty(context, *property);
            context.require(names.insert(property->name).second,
                            {"there are two properties ", inQuotes(property->name)});
            const auto found = node->properties->byName.find(property->name);
            context.require(found != node->properties->byName.end() && found->second == property,
                            {"the property ", inQuotes(property->name), " is not found by its name"});
        }
        context.require(node->properties->byName.size() == node->properties->items.size(),
                        {"the list of properties and their index differ in length"});
    });
}

void checkLoading(CheckContext& context) {
    forEachType(context, [&](const NodeDescription& /*type*/, MaterialNode& node) {
        checkNewerRefused(context, node);
    });
    // what artists are not offered may stand for something else, and say so once it is loaded
    forEachConfiguration(context, Types::Creatable,
                         [&](const Configuration& configuration) { checkOwnLoaded(context, configuration); });
}

} // namespace patina::detail
