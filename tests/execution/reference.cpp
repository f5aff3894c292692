#include "tests/execution/reference.h"

#include "tests/execution/node_rules.h"

#include <algorithm>
#include <utility>

namespace patina::testing {

namespace {

/// A scalar goes with any width.
BoundedVector splat(BoundedVector value, int width) {
    if (value.size() == 1) {
        value.resize(static_cast<std::size_t>(width), value.front());
    }
    return value;
}

BoundedVector convert(const Arithmetic& arithmetic, const BoundedVector& value) {
    BoundedVector converted;
    for (const Bounded& component : value) {
        converted.push_back(arithmetic.convert(component));
    }
    return converted;
}

} // namespace

Reference::Reference(const Graph& graph) : shown_(graph.shown), resolved_(graph.nodes.size()) {
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        nodes_.push_back(graph.meant(i));
    }
    resolveWidths();
    resolveFormats();
}

int Reference::shownWidth() const { return widthOf(shown_); }

const Format& Reference::shownFormat() const { return formatOf(shown_); }

int Reference::widthOf(const PortOf& port) const { return resolved_[port.node].outputWidths.at(port.port); }

const Format& Reference::formatOf(const PortOf& port) const {
    return *resolved_[port.node].outputFormats.at(port.port);
}

// A node is as wide as the widest value at its free inputs.
void Reference::resolveWidths() {
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        const GraphNode& node = nodes_[i];
        const NodePorts ports = portsOf(node);
        for (const InputRule& input : ports.inputs) {
            const auto source = node.inputs.find(input.name);
            if (source != node.inputs.end() && input.width == nodeWidth) {
                resolved_[i].width = std::max(resolved_[i].width, widthOf(source->second));
            }
        }
        for (const OutputRule& output : ports.outputs) {
            resolved_[i].outputWidths[output.name] =
                output.width == nodeWidth ? resolved_[i].width : output.width;
        }
    }
}

// One reader that needs float makes an output float, and one such output all inputs of its node.
void Reference::resolveFormats() {
    for (std::size_t i = nodes_.size(); i-- > 0;) {
        const NodePorts ports = portsOf(nodes_[i]);
        Resolved& resolved = resolved_[i];
        for (const auto& [name, format] : resolved.outputFormats) {
            if (format == &floatFormat) {
                resolved.format = &floatFormat;
            }
        }
        if (ports.format != nullptr) {
            resolved.format = ports.format;
            resolved.outputFormats.clear();
        }
        for (const OutputRule& output : ports.outputs) {
            resolved.outputFormats.try_emplace(output.name, resolved.format);
        }
        for (const InputRule& input : ports.inputs) {
            const auto source = nodes_[i].inputs.find(input.name);
            if (source != nodes_[i].inputs.end()) {
                const Format* wanted = input.isFloat ? &floatFormat : resolved.format;
                const Format*& given = resolved_[source->second.node]
                                           .outputFormats.try_emplace(source->second.port, wanted)
                                           .first->second;
                given = wanted == &floatFormat ? wanted : given;
            }
        }
    }
}

BoundedVector Reference::evaluate(const InputSet& inputs) const {
    std::vector<std::map<std::string, BoundedVector>> values;
    for (std::size_t i = 0; i <= shown_.node; ++i) {
        const GraphNode& node = nodes_[i];
        const Resolved& resolved = resolved_[i];
        NodeCall call = {node, inputs, Arithmetic(*resolved.format), resolved.width, {}};
        for (const InputRule& rule : portsOf(node).inputs) {
            const int width = rule.width == nodeWidth ? resolved.width : rule.width;
            const Arithmetic arithmetic(rule.isFloat ? floatFormat : *resolved.format);
            const auto source = node.inputs.find(rule.name);
            call.inputs[rule.name] =
                source == node.inputs.end()
                    ? splat({arithmetic.literal(node.number(rule.setting, rule.byDefault))}, width)
                    : splat(convert(arithmetic, values[source->second.node].at(source->second.port)), width);
        }
        values.push_back(evaluateNode(call));
        for (auto& [port, value] : values.back()) {
            value = convert(Arithmetic(*resolved.outputFormats.at(port)), value);
        }
    }
    return values[shown_.node].at(shown_.port);
}

} // namespace patina::testing
