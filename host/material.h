#pragma once

#include "host/diagnostic.h"
#include "host/document.h"
#include "host/plugins.h"
#include "nodemodel/nodemodel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace patina {

/// What a property holds, but for a reference to a node.
struct PropertyContent {
    PropertyType kind = PropertyType::Bool;
    std::string text;
    std::int32_t integer = 0;
    std::array<float, 3> floats = {};
};

/// A property that a node's update gave another value than the document does.
struct OverriddenProperty {
    std::string property;  ///< its name: no handle, so that nothing of a plug-in outlives its nodes
    PropertyContent given; ///< what the document gives, be it by its silence
};

/// A node of a live material, and where it comes from.
struct MaterialItem {
    std::string id;
    std::shared_ptr<MaterialNode> node;
    bool placeholder = false; ///< stands for a type that no plug-in offers
    bool faulty = false;      ///< errors were reported of it already: what it shows may not be what is meant
    int line = 0;
    std::vector<OverriddenProperty> overridden; ///< for the host's edits
};

/// Whether an item only stands where an error was reported: for a node that could not be made, or for the
/// lost end of a connection.
inline bool isStandIn(const MaterialItem& item) { return item.placeholder && item.faulty; }

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
    MaterialDocument
        document; ///< what is saved: its nodes, connections and outputs are those above, in their order
};

/// Makes the nodes, restores their properties, updates them so that a node comes after those it refers to,
/// and connects them. A node of an unknown type becomes a placeholder, with a warning; the document keeps all
/// that is saved of it.
///
/// Throws HostError, naming line and node, for two nodes with one id, a property that is set twice, a value
/// that does not parse, an unknown id or port, an input that is connected twice, a cycle of connections or of
/// references, and whatever a node refuses. With `errors`, goes on without what is wrong and puts them there;
/// only a placeholder that no plug-in offers ends it then. Such a material is for looking at: its document
/// keeps what it goes without, nodes that bear errors are marked, and further items and connections stand in
/// for what is missing, so that nothing later takes its absence for an error too. What a document has left
/// out is seen to with `errors` only.
///
/// A placeholder takes what it understands of the saved properties, and no value makes it fail.
Material buildMaterial(MaterialDocument document, const PluginSet& plugins, Warnings& warnings,
                       Errors* errors = nullptr);

/// Whether a node stands for a type that no plug-in offers.
bool hasPlaceholder(const Material& material);

/// How messages name a node: `node "id" ("Name")`.
std::string nodeTitle(const MaterialItem& item);

/// Whether an item goes by the name that its author gave it; one of which errors were reported may not.
bool isNameKnown(const Material& material, std::size_t item);

/// Runs an action on behalf of a node, and turns what the node's code throws into a HostError at `line` that
/// names the node. std::bad_alloc passes.
template <typename Action>
decltype(auto) onBehalfOf(const Material& material, const MaterialItem& item, int line, Action&& action) {
    const auto failure = [&](std::string_view text) {
        return HostError({material.file, line}, detail::joinText({nodeTitle(item), ": ", text}));
    };
    try {
        return action();
    } catch (const std::bad_alloc&) { // GCOVR_EXCL_BR_LINE: of other types, the next clause takes all
        throw;
    } catch (...) {
        throw failure(currentExceptionText());
    }
}

} // namespace patina
