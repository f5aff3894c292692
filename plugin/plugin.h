#pragma once

/// The boundary between a host and a plug-in.
///
/// A plug-in is a loadable module (`.so`, `.dll`, `.dylib`) that exports exactly two functions under their
/// plain names, GetMaterialLibVersion and CreateNodeFactory. A host calls the first, expects
/// `patina::materialLibVersion`, then calls the second and reads the factory's nodeLibrary.
///
/// Host and plug-in must be built with the same C++ ABI and SDK version. Each links the SDK statically.
/// Objects that a plug-in made, exceptions included, must be gone before the plug-in is unloaded.

#include "nodemodel/material_node.h"
#include "nodemodel/shader_error.h"
#include "plugin/export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace patina {

/// The version of the interface that this header describes.
inline constexpr std::uint32_t materialLibVersion = 5;

/// One node type that a plug-in offers.
struct NodeDescription {
    /// A creatable type without category and icon, displayed under its type name.
    explicit NodeDescription(const std::string& type) : typeName(type), displayName(type) {}

    std::string typeName;    ///< what createNode accepts
    std::string category;    ///< the group under which hosts list the node
    std::string displayName; ///< shown to the artist
    bool creatable = true;   ///< offered to the artist for creation
    const char* const* icon =
        nullptr; ///< an XPM 3 image as strings, or null; lives as long as the plug-in is loaded
};

using NodeLibrary = std::vector<NodeDescription>;

/// Lists and creates a plug-in's node types. The host owns it and deletes it through this class.
class NodeFactory {
public:
    NodeFactory() = default;
    NodeFactory(const NodeFactory&) = delete;
    NodeFactory& operator=(const NodeFactory&) = delete;

    /// The node types in the order in which a host lists them. [main-thread]
    NodeLibrary nodeLibrary;

    virtual ~NodeFactory() = default;

    /// A new node with default properties, owned by the caller alone. Throws ShaderError,
    /// `cannot create "NAME" node`, when this plug-in has no such type. [thread-safe]
    virtual std::shared_ptr<MaterialNode> createNode(const std::string& typeName) = 0;
};

} // namespace patina

extern "C" {

/// The version of the interface that the plug-in implements. [thread-safe]
PATINA_EXPORT std::uint32_t GetMaterialLibVersion();

/// A new factory, which the caller deletes, or null when there is no memory for one. [thread-safe]
PATINA_EXPORT patina::NodeFactory* CreateNodeFactory();
}
