#include "host/show.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using Ids = std::set<std::string_view>;

/// For each node, the ids of those whose values or properties it takes.
std::unordered_map<std::string_view, std::vector<std::string_view>>
sourcesById(const MaterialDocument& document) {
    std::unordered_map<std::string_view, std::vector<std::string_view>> sources;
    for (const DocumentConnection& connection : document.connections) {
        sources[connection.destination].push_back(connection.source);
    }
    for (const DocumentNode& node : document.nodes) {
        for (const DocumentProperty& property : node.properties) {
            if (property.kind == PropertyType::Node && !property.value.empty()) {
                sources[node.id].push_back(property.value);
            }
        }
    }
    return sources;
}

/// The ids of the node and of all that it depends on.
Ids idsNeededBy(const MaterialDocument& document, const std::string& nodeId) {
    const auto sources = sourcesById(document);
    Ids needed;
    std::vector<std::string_view> pending = {nodeId};
    while (!pending.empty()) {
        const std::string_view id = pending.back();
        pending.pop_back();
        const auto found = sources.find(id);
        if (needed.insert(id).second && found != sources.end()) {
            pending.insert(pending.end(), found->second.begin(), found->second.end());
        }
    }
    return needed;
}

/// The names that are saved of nodes; bindings mostly go by them.
std::set<std::string> namesOf(const std::vector<DocumentNode>& nodes) {
    std::set<std::string> names;
    for (const DocumentNode& node : nodes) {
        for (const DocumentProperty& property : node.properties) {
            if (property.name == "Name") {
                names.insert(property.value);
            }
        }
    }
    return names;
}

std::string listOfNodes(const MaterialDocument& document) {
    constexpr std::size_t shown = 8;
    std::string text;
    for (std::size_t i = 0; i < document.nodes.size() && i < shown; ++i) {
        appendText(text, {text.empty() ? "it has \"" : ", \"", document.nodes[i].id, "\""});
    }
    if (document.nodes.size() > shown) {
        appendText(text, {" and ", std::to_string(document.nodes.size() - shown), " more"});
    }
    return text.empty() ? "it has none" : text;
}

/// A binding is left out when its node is.
void keepBindings(std::vector<DocumentBinding>& bindings, const std::vector<DocumentNode>& kept,
                  const std::vector<DocumentNode>& leftOut) {
    const std::set<std::string> keptNames = namesOf(kept);
    const std::set<std::string> lostNames = namesOf(leftOut);
    std::erase_if(bindings, [&](const DocumentBinding& binding) {
        return lostNames.count(binding.name) != 0 && keptNames.count(binding.name) == 0;
    });
}

} // namespace

MaterialDocument showOutput(MaterialDocument document, const std::string& nodeId, const std::string& port) {
    const auto shown = std::find_if(document.nodes.begin(), document.nodes.end(),
                                    [&](const DocumentNode& node) { return node.id == nodeId; });
    if (shown == document.nodes.end()) {
        throw HostError({document.file, document.line},
                        joinText({"this material has no node \"", nodeId, "\"; ", listOfNodes(document)}));
    }
    document.outputs = {{"colour", nodeId, port, shown->line}};

    // what is needed refers to texts of the document, which is only changed once they are through
    const Ids needed = idsNeededBy(document, nodeId);
    std::vector<DocumentNode> kept;
    std::vector<DocumentNode> leftOut;
    for (const DocumentNode& node : document.nodes) {
        (needed.count(node.id) != 0 ? kept : leftOut).push_back(node);
    }
    std::vector<DocumentConnection> connections;
    std::copy_if(
        document.connections.begin(), document.connections.end(), std::back_inserter(connections),
        [&](const DocumentConnection& connection) { return needed.count(connection.destination) != 0; });
    document.nodes = std::move(kept);
    document.connections = std::move(connections);
    keepBindings(document.bindings, document.nodes, leftOut);
    return document;
}

} // namespace patina
