#pragma once

#include "host/diagnostic.h"
#include "nodemodel/property.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina {

// The material document as it stands in its file: nothing is looked up, and no plug-in is needed.
//
// Everything here is plain data, to be changed at will and written back by document_writer.h. `line` and
// `origin` say where a thing stands in the document's source: a copy of it that is changed keeps them, and a
// new thing has none. Equality looks at what a document means, and so neither at them, nor at file, source
// and what was left out. Threads: one document may be read by many threads at once; the functions are
// thread-safe.

/// Of a thing that does not stand in the source.
inline constexpr int noOrigin = -1;

/// A saved property. The value is still text: what it must look like depends on the kind.
struct DocumentProperty {
    std::string name;
    PropertyType kind = PropertyType::Bool;
    std::string value;
    int line = 0;

    friend bool operator==(const DocumentProperty& left, const DocumentProperty& right);
};

struct DocumentNode {
    std::string id;
    std::string type;
    std::int32_t version = 0; ///< of the saved property set
    std::vector<DocumentProperty> properties;
    int line = 0;
    int origin = noOrigin; ///< which of the source's <node> elements it is, from 0

    friend bool operator==(const DocumentNode& left, const DocumentNode& right);
};

struct DocumentConnection {
    std::string source; ///< id of a node
    std::string output; ///< name of one of its outputs
    std::string destination;
    std::string input;
    int line = 0;
    int origin = noOrigin;

    friend bool operator==(const DocumentConnection& left, const DocumentConnection& right);
};

/// A value that leaves the graph.
struct DocumentOutput {
    std::string name;
    std::string source;
    std::string port; ///< empty: the first output of the node, which buildMaterial fills in
    int line = 0;
    int origin = noOrigin;

    friend bool operator==(const DocumentOutput& left, const DocumentOutput& right);
};

/// What an artist's tools keep of a binding.
struct DocumentBinding {
    std::string name; ///< the "tag"
    std::string kind; ///< as bindingKindName names it
    std::vector<std::pair<std::string, std::string>>
        annotations; ///< all other attributes; their order means nothing
    int line = 0;
    int origin = noOrigin;

    friend bool operator==(const DocumentBinding& left, const DocumentBinding& right);
};

/// What reading with a list of errors went without, so that no later step misses it. Attributes that could
/// not be read are empty.
struct DocumentGaps {
    std::vector<DocumentNode> nodes;   ///< with the properties that could be read
    std::vector<std::string> doubtful; ///< ids of nodes of which anything was left out
    std::vector<DocumentConnection> connections;
    std::vector<DocumentOutput> outputs;
};

struct MaterialDocument {
    std::string file; ///< as messages name it
    int line = 1;     ///< of the root element
    std::string name; ///< of the material; names the exported files
    std::vector<DocumentNode> nodes;
    std::vector<DocumentConnection> connections;
    std::vector<DocumentOutput> outputs;
    std::vector<DocumentBinding> bindings;
    std::string source; ///< the bytes that it was read from; empty when it is new
    DocumentGaps leftOut;

    friend bool operator==(const MaterialDocument& left, const MaterialDocument& right);
};

/// Whether a document can hold the text: UTF-8 of characters that XML allows.
bool isDocumentText(std::string_view text);

/// Reads a material document, version 1. Ids, property names and tags of bindings are unique within what
/// comes back. Nothing but the file itself is read, whatever it says; one of more than 512 MiB, or whose
/// elements nest deeper than 200, is refused. Throws HostError, with the line, when the file cannot be read,
/// is not well-formed, or is no such document.
///
/// With `errors`, puts there what is wrong with an element or property, leaves that out, and goes on; only a
/// file that is no material document of version 1 at all ends it then. A document with gaps is for looking
/// at: written back, it would lose what was left out.
MaterialDocument readMaterial(const std::filesystem::path& file, Errors* errors = nullptr);

/// The same from text; `file` is only what messages name.
MaterialDocument parseMaterial(std::string_view text, const std::string& file, Errors* errors = nullptr);

} // namespace patina
