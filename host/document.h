#pragma once

#include "nodemodel/property.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// The material document as it stands in its file: nothing is looked up, and no plug-in is needed.

/// A saved property. The value is still text: what it must look like depends on the kind.
struct DocumentProperty {
    std::string name;
    PropertyType kind = PropertyType::Bool;
    std::string value;
    int line = 0;
};

struct DocumentNode {
    std::string id;
    std::string type;
    std::int32_t version = 0; ///< of the saved property set
    std::vector<DocumentProperty> properties;
    int line = 0;
};

struct DocumentConnection {
    std::string source; ///< id of a node
    std::string output; ///< name of one of its outputs
    std::string destination;
    std::string input;
    int line = 0;
};

/// A value that leaves the graph.
struct DocumentOutput {
    std::string name;
    std::string source;
    std::string port;
    int line = 0;
};

struct MaterialDocument {
    std::string file; ///< as messages name it
    int line = 1;     ///< of the root element
    std::string name; ///< of the material; names the exported files
    std::vector<DocumentNode> nodes;
    std::vector<DocumentConnection> connections;
    std::vector<DocumentOutput> outputs;
};

/// Reads a material document, version 1. Ids and property names are unique within what comes back.
/// Throws HostError, with the line, when the file cannot be read, is not well-formed, or is no such document.
MaterialDocument readMaterial(const std::filesystem::path& file);

/// The same from text; `file` is only what messages name.
MaterialDocument parseMaterial(std::string_view text, const std::string& file);

} // namespace patina
