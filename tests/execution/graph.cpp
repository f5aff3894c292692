#include "tests/execution/graph.h"

#include "tests/host/host_checks.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace patina::testing {

Setting choice(const std::string& name, const std::string& item) { return {name, "enum", item}; }
Setting flag(const std::string& name, bool value) { return {name, "bool", value ? "Yes" : "No"}; }
Setting integer(const std::string& name, int value) { return {name, "integer", std::to_string(value)}; }
Setting real(const std::string& name, const std::string& value) { return {name, "float", value}; }

std::string GraphNode::setting(const std::string& name, const std::string& byDefault) const {
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&](const Setting& setting) { return setting.name == name; });
    return found == settings.end() ? byDefault : found->value;
}

bool GraphNode::isSet(const std::string& name) const { return setting(name, "No") == "Yes"; }

double GraphNode::number(const std::string& name, double byDefault) const {
    const std::string text = setting(name, {});
    std::from_chars(text.data(), text.data() + text.size(), byDefault);
    return byDefault;
}

std::string GraphNode::name() const { return setting("Name", {}); }

std::size_t Graph::add(const std::string& type, std::vector<Setting> settings) {
    nodes.push_back({type, std::move(settings), {}});
    return nodes.size() - 1;
}

void Graph::connect(const PortOf& source, std::size_t destination, const std::string& input) {
    nodes[destination].inputs[input] = source;
}

PortOf Graph::addInput(InputKind kind, int width) {
    const Setting name = {"Name", "string", "In" + std::to_string(nodes.size())};
    if (kind == InputKind::Uniform) {
        const Setting type = choice("Constant Type", width == 1 ? "Scalar" : "Vector");
        return {add("CoreConstant", {name, type, integer("Component Count", width)}), "read"};
    }
    switch (width) {
    case 1:
        return {add("CoreVertexColour", {name, choice("Colour Type", "Component")}), "out_red"};
    case 2:
        return {add("CoreUv", {name}), "read"};
    case 3:
        return {add("CoreVertexColour", {name}), "out_colour"};
    default:
        return {add("CoreVertexColour", {name, choice("Colour Type", "Vector")}), "out_colour"};
    }
}

void Graph::demandFloat(const PortOf& source, int width) {
    PortOf coordinate = source;
    if (width > 2) {
        const std::size_t split =
            add("CoreSwizzle", {choice("Vector Type", "Vector"), integer("Component Count", width)});
        connect(source, split, "in_vec");
        coordinate = {split, "out_x"};
    }
    const Setting name = {"Name", "string", "Unread" + std::to_string(nodes.size())};
    connect(coordinate, add("CoreTexture", {name, choice("Texture Type", width == 2 ? "2D" : "1D")}),
            "in_uv");
}

GraphNode Graph::meant(std::size_t node) const {
    GraphNode result = nodes[node];
    const std::string reference = result.setting("Reference", {});
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (idOf(i) == reference) {
            result.settings = nodes[i].settings;
        }
    }
    return result;
}

std::string Graph::elements() const {
    std::string text;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        std::string properties;
        for (const Setting& setting : nodes[i].settings) {
            properties += property(setting.name, setting.kind, setting.value);
        }
        text += node(idOf(i), nodes[i].type, properties);
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const auto& [input, source] : nodes[i].inputs) {
            text += connection(idOf(source.node), source.port, idOf(i), input);
        }
    }
    return text;
}

std::string Graph::idOf(std::size_t node) { return "n" + std::to_string(node); }

} // namespace patina::testing
