#include "host/checks/check_context.h"

#include "host/diagnostic.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>

namespace patina::detail {

namespace {

const char* yesNo(bool flag) { return flag ? "Yes" : "No"; }

template <std::size_t count>
std::string numbers(const std::array<float, count>& values) {
    std::string text;
    for (const float value : values) {
        appendText(text, {text.empty() ? "" : ", ", formatFloat(value)});
    }
    return text;
}

std::string valueText(const Property& property) {
    switch (property.kind) {
    case PropertyType::Bool:
    case PropertyType::Integer:
        return std::to_string(property.intValue);
    case PropertyType::Float:
        return formatFloat(property.floatValues[0]);
    case PropertyType::Colour:
        return numbers(property.floatValues);
    case PropertyType::Node:
        return property.nodeValue ? property.nodeValue->describe() : "no node";
    case PropertyType::String:
    case PropertyType::Enum:
        break;
    }
    return inQuotes(property.stringValue);
}

/// What a flag adds to a state; nothing when it is not set.
std::string flagText(bool flag, const char* text) { return flag ? text : ""; }

std::string portText(const char* direction, const Port& port) {
    const std::string count =
        port.componentCountKnown ? std::to_string(port.componentCount) + " components" : "unknown width";
    const std::string precision =
        port.precisionKnown ? "precision " + std::to_string(port.precision) : "unknown precision";
    return joinText({direction, " port ", inQuotes(port.name), " labelled ", inQuotes(port.label), " of ",
                     count, flagText(port.componentCountFixed, ", fixed"),
                     flagText(port.componentCountConflict, ", in conflict"), " and ", precision,
                     flagText(port.precisionFixed, ", fixed"), flagText(port.connected, ", connected")});
}

/// Every setting that a type is tried with, its defaults first.
std::vector<Configuration> configurationsOf(Plugin& plugin, const NodeDescription& type) {
    std::vector<Configuration> configurations = {{plugin, type, {}, {}}};
    const std::shared_ptr<MaterialNode> node = plugin.createNode(type.typeName);
    for (const std::shared_ptr<Property>& property : *node->properties) {
        if (property->kind == PropertyType::Enum) {
            for (const std::string& value : property->allowedValues) {
                configurations.push_back({plugin, type, property->name, value});
            }
        } else if (property->kind == PropertyType::Bool) {
            configurations.push_back({plugin, type, property->name, yesNo(true)});
            configurations.push_back({plugin, type, property->name, yesNo(false)});
        }
    }
    return configurations;
}

} // namespace

Plugin& CheckContext::plugin() {
    if (!plugin_) {
        plugin_ = Plugin::load(file_);
    }
    return *plugin_;
}

void CheckContext::report(std::initializer_list<std::string_view> text) {
    const std::string joined = oneLine(joinText(text));
    if (!reported_.emplace(nodeType_, joined).second) {
        return;
    }
    listener_.found(nodeType_, situation_.empty() ? joined : joinText({"with ", situation_, ": ", joined}));
}

void CheckContext::require(bool condition, std::initializer_list<std::string_view> text) {
    if (!condition) {
        report(text);
    }
}

void CheckContext::examine(const std::string& nodeType, const std::string& situation,
                           const std::function<void()>& action) {
    const std::string outerType = std::exchange(nodeType_, oneLine(nodeType));
    const std::string outerSituation = std::exchange(situation_, oneLine(situation));
    listener_.examining(nodeType_, situation_);
    try {
        action();
    } catch (const HostError& error) {
        report({error.what()});
    } catch (const ShaderError& error) {
        report({"failed: ", error.what()});
    } catch (...) {
        report({"failed with something other than ShaderError: ", currentExceptionText()});
    }
    nodeType_ = outerType;
    situation_ = outerSituation;
    listener_.examining(nodeType_, situation_);
}

std::string inQuotes(std::string_view text) { return joinText({"\"", text, "\""}); }

std::string Configuration::text() const {
    return property.empty() ? std::string() : joinText({inQuotes(property), " = ", inQuotes(value)});
}

std::shared_ptr<MaterialNode> Configuration::makeNode() const {
    std::shared_ptr<MaterialNode> node = plugin.createNode(type.typeName);
    if (!property.empty()) {
        Property& setting = *node->properties->find(property);
        if (setting.kind == PropertyType::Enum) {
            setting.setEnum(value);
        } else {
            setting.setBool(value == yesNo(true));
        }
    }
    return node;
}

std::shared_ptr<MaterialNode> Configuration::makeUpdatedNode() const {
    std::shared_ptr<MaterialNode> node = makeNode();
    node->updateFromProperties(nullptr);
    return node;
}

void forEachType(CheckContext& context,
                 const std::function<void(const NodeDescription& type, MaterialNode& node)>& action) {
    for (const NodeDescription& type : context.plugin().nodeLibrary()) {
        context.examine(type.typeName, {},
                        [&] { action(type, *context.plugin().createNode(type.typeName)); });
    }
}

void forEachConfiguration(CheckContext& context, Types types,
                          const std::function<void(const Configuration& configuration)>& action) {
    for (const NodeDescription& type : context.plugin().nodeLibrary()) {
        if (types == Types::Creatable && !type.creatable) {
            continue;
        }
        std::vector<Configuration> configurations;
        context.examine(type.typeName, {},
                        [&] { configurations = configurationsOf(context.plugin(), type); });
        for (const Configuration& configuration : configurations) {
            context.examine(type.typeName, configuration.text(), [&] { action(configuration); });
        }
    }
}

NodeState propertyState(const MaterialNode& node) {
    NodeState state;
    for (const std::shared_ptr<Property>& property : *node.properties) {
        state.push_back(joinText({"property ", inQuotes(property->name), " with value ", valueText(*property),
                                  flagText(!property->editable, ", not editable"),
                                  flagText(!property->visible, ", not visible")}));
    }
    return state;
}

NodeState portState(const MaterialNode& node) {
    NodeState state;
    for (const Port& port : node.inputs) {
        state.push_back(portText("input", port));
    }
    for (const Port& port : node.outputs) {
        state.push_back(portText("output", port));
    }
    return state;
}

NodeState nodeState(const MaterialNode& node) {
    NodeState state = propertyState(node);
    const NodeState ports = portState(node);
    state.insert(state.end(), ports.begin(), ports.end());
    state.push_back("caption " + inQuotes(node.caption()));
    state.push_back("text colour " + numbers(node.textColour));
    state.push_back("body colour " + numbers(node.bodyColour));
    return state;
}

void requireSame(CheckContext& context, std::string_view text, const NodeState& expected,
                 const NodeState& actual) {
    const auto [before, after] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    if (before == expected.end() && after == actual.end()) {
        return;
    }
    context.report({text, ": ", before == expected.end() ? "nothing" : *before, " became ",
                    after == actual.end() ? "nothing" : *after});
}

bool isRefused(const std::function<void()>& action) {
    try {
        action();
    } catch (const ShaderError&) { // GCOVR_EXCL_BR_LINE: what is of another type does not come here
        return true;
    }
    return false;
}

} // namespace patina::detail
