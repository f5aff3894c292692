#pragma once

#include "host/diagnostic.h"
#include "host/document.h"
#include "host/plugins.h"
#include "nodemodel/nodemodel.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace patina {

/// A node of a live material, and where it comes from.
struct MaterialItem {
    std::string id;
    std::shared_ptr<MaterialNode> node;
    bool placeholder = false; ///< stands for a type that no plug-in offers
    int line = 0;
};

/// A connection between two nodes of a live material.
struct MaterialConnection {
    std::shared_ptr<NodeConnection>
        record;             ///< listed by both nodes, except by placeholders, which have no ports
    std::size_t source = 0; ///< index into Material::items
    std::size_t destination = 0;
    int line = 0;
};

/// A value that leaves the graph for the framework.
struct MaterialOutput {
    std::string name;
    std::shared_ptr<NodeConnection> record; ///< listed by the source; without a destination
    std::size_t source = 0;
    int line = 0;
};

/// A material whose nodes live: restored, updated and connected.
///
/// Ownership: owns its nodes and connection records. When it goes, the references between its nodes go with
/// it, so that neither a cycle of them keeps anything alive nor a long chain needs a deep stack. Threads: one
/// thread at a time.
struct Material {
    Material() = default;
    Material(Material&& other) noexcept = default;
    Material& operator=(Material&& other) noexcept;
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;
    ~Material();

    std::string file;
    int line = 0; ///< where it begins in its file
    std::string name;
    std::vector<MaterialItem> items;             ///< in document order
    std::vector<MaterialConnection> connections; ///< in document order
    std::vector<MaterialOutput> outputs;         ///< in document order
    std::vector<std::size_t> downstream;         ///< item indices, every source before its destinations
};

/// Makes the nodes, restores their properties, updates them so that a node comes after those it refers to,
/// and connects them. A node of an unknown type becomes a placeholder, with a warning.
///
/// Throws HostError, naming line and node, for a value that does not parse, an unknown id or port, an input
/// that is connected twice, a cycle of connections or of references, and whatever a node refuses. With
/// `errors`, goes on without what is wrong and puts them there; only a placeholder that no plug-in offers
/// ends it then.
Material buildMaterial(const MaterialDocument& document, const PluginSet& plugins, Warnings& warnings,
                       Errors* errors = nullptr);

/// How messages name a node: `node "id" ("Name")`.
std::string nodeTitle(const MaterialItem& item);

/// Runs an action on behalf of a node, and turns what the node's code throws into a HostError at `line` that
/// names the node. HostError itself and std::bad_alloc pass.
template <typename Action>
decltype(auto) onBehalfOf(const Material& material, const MaterialItem& item, int line, Action&& action) {
    const auto failure = [&](std::string_view text) {
        return HostError({material.file, line}, detail::joinText({nodeTitle(item), ": ", text}));
    };
    try {
        return action();
    } catch (const HostError&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        throw failure(currentExceptionText());
    }
}

} // namespace patina
