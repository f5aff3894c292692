#include "host/generate.h"

#include "host/framework_values.h"
#include "nodemodel/shader_error.h"

namespace patina {

namespace {

bool isKnown(const ShaderType& type) {
    return type.componentType >= ComponentType::Unknown && type.componentType <= ComponentType::SamplerRect;
}

bool isKnown(NodeKind kind) { return kind >= NodeKind::Function && kind <= NodeKind::InterpolantParameter; }

/// Whether a node lacks a port that what passes values on must have.
bool lacksPorts(const GeneratorNode& node) {
    const bool isPassing =
        node.kind == NodeKind::InterfaceParameter || node.kind == NodeKind::InterpolantParameter;
    return isPassing && (node.inputs.empty() || node.outputs.empty());
}

/// Throws ShaderError for a type or kind that has no name, which no later step could print, and for missing
/// ports. Something else stands there then, for what is looked at nevertheless.
void requireWellFormed(const Graph& graph, std::size_t firstNode) {
    bool areKnown = true;
    bool areKindsKnown = true;
    bool arePortsThere = true;
    const auto require = [&](ShaderType& type) {
        if (!isKnown(type)) {
            type = {ComponentType::Float, 1, 1, 1};
            areKnown = false;
        }
    };
    for (std::size_t i = firstNode; i < graph.nodes.size(); ++i) {
        GeneratorNode& node = *graph.nodes[i];
        if (!isKnown(node.kind)) {
            node.kind = NodeKind::Function;
            areKindsKnown = false;
        }
        if (lacksPorts(node)) {
            node.kind = NodeKind::Function;
            arePortsThere = false;
        }
        require(node.type);
        for (GeneratorPort& input : node.inputs) {
            require(input.type);
        }
        for (GeneratorPort& output : node.outputs) {
            require(output.type);
        }
    }
    if (!areKnown) {
        throw ShaderError(
            "a value of its code has a component type that there is none of; report this to the "
            "author of its plug-in");
    }
    if (!areKindsKnown) {
        throw ShaderError(
            "a node of its code is of a kind that there is none of; report this to the author of "
            "its plug-in");
    }
    if (!arePortsThere) {
        throw ShaderError("a parameter of its code has not the ports of its kind; report this to the author "
                          "of its plug-in");
    }
}

/// For one generated node of each item, and all connections, so that the tables hardly grow.
void makeRoom(GeneratedGraph& result, const Material& material) {
    const std::size_t count = material.items.size();
    result.owners.reserve(count);
    result.generator.nodeMap.reserve(count);
    result.generator.portLinks.reserve(material.connections.size() + material.outputs.size());
    result.generator.graph->nodes.reserve(count);
}

} // namespace

GeneratedGraph generateGraph(const Material& material, Errors* errors) {
    GeneratedGraph result;
    result.generator.graph->interfaceProviders.push_back(makeFrameworkValues());
    result.incomplete.resize(material.items.size(), false);
    makeRoom(result, material);
    const auto generate = [&](std::size_t index) {
        const MaterialItem& item = material.items[index];
        const Graph& graph = *result.generator.graph;
        const auto succeeds = [&](auto&& action) {
            return attempt(errors, [&] { onBehalfOf(material, item, item.line, action); });
        };
        const bool isGenerated =
            isStandIn(item) || succeeds([&] { item.node->generateCode(result.generator); });
        const bool isWellFormed = succeeds([&] { requireWellFormed(graph, result.owners.size()); });
        if (isStandIn(item) || !isGenerated || !isWellFormed) {
            result.incomplete[index] = true;
        }
        result.owners.resize(result.generator.graph->nodes.size(), index);
    };
    // what a missing node type breaks elsewhere would only hide the reason
    for (std::size_t index = 0; index < material.items.size(); ++index) {
        if (material.items[index].placeholder) {
            generate(index);
        }
    }
    for (std::size_t index = 0; index < material.items.size(); ++index) {
        if (!material.items[index].placeholder) {
            generate(index);
        }
    }
    return result;
}

} // namespace patina
