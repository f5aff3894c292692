#include "host/document.h"

#include "host/document_xml.h"
#include "host/files.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace patina {

using namespace detail;

namespace {

/// Reads the elements of one document. A method of each kind of element; all throw HostError.
class DocumentReader {
public:
    DocumentReader(const std::string& file, Errors* errors) : errors_(errors) { document_.file = file; }

    MaterialDocument read(std::string_view text) {
        const XmlPointer<xmlDoc> xml = parseXml(text, document_.file, "a material document");
        xmlNode* root = xmlDocGetRootElement(xml.get());
        readRoot(root);
        for (xmlNode* child = root->children; child != nullptr; child = child->next) {
            if (isElement(child, "node")) {
                readNode(child, nodeCount_++);
            } else if (isElement(child, "connection")) {
                readConnection(child, connectionCount_++);
            } else if (isElement(child, "output")) {
                readOutput(child, outputCount_++);
            } else if (isElement(child, "binding")) {
                attempt(errors_, [&] { readBinding(child, bindingCount_++); });
            }
            // elements of others are left alone
        }
        return std::move(document_);
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({document_.file, line}, joinText(pieces));
    }

    std::string require(const xmlNode* element, const char* attribute) const {
        auto value = attributeOf(element, attribute);
        if (!value) {
            fail(lineOf(element),
                 {"the <", elementName(element), "> element has no \"", attribute, "\" attribute"});
        }
        return *std::move(value);
    }

    /// Whether an element has them all.
    bool hasAttributes(const xmlNode* element, std::initializer_list<const char*> attributes) const {
        return attempt(errors_, [&] {
            for (const char* attribute : attributes) {
                require(element, attribute);
            }
        });
    }

    static std::string textOf(const xmlNode* element, const char* attribute) {
        return attributeOf(element, attribute).value_or("");
    }

    void readRoot(const xmlNode* root) {
        document_.line = lineOf(root);
        if (elementName(root) != "material") {
            fail(lineOf(root), {"this is no material document: the root element is <", elementName(root),
                                ">, not <material>"});
        }
        if (root->ns != nullptr) {
            fail(lineOf(root), {"this is no material document: the <material> element is in the namespace \"",
                                reinterpret_cast<const char*>(root->ns->href), "\", and must be in none"});
        }
        const std::string version = require(root, "version");
        if (version != "1") {
            fail(lineOf(root),
                 {"this is a material document of version \"", version, "\", and this host reads version 1"});
        }
        attempt(errors_, [&] { readName(root); });
    }

    void readName(const xmlNode* root) {
        document_.name = require(root, "name");
        if (!isFileName(document_.name)) {
            fail(lineOf(root), {"the material's name \"", document_.name, "\" cannot be the name of a file"});
        }
    }

    void readNode(const xmlNode* element, int origin) {
        DocumentNode node;
        node.line = lineOf(element);
        node.origin = origin;
        node.id = textOf(element, "id");
        node.type = textOf(element, "type");
        const bool isSound = attempt(errors_, [&] { readIdentity(element, node); });
        const bool isWhole = readProperties(element, node);
        if (!isSound || !isWhole) {
            document_.leftOut.doubtful.push_back(node.id);
        }
        if (isSound) {
            document_.nodes.push_back(std::move(node));
        } else {
            document_.leftOut.nodes.push_back(std::move(node));
        }
    }

    void readIdentity(const xmlNode* element, DocumentNode& node) {
        for (const char* attribute : {"id", "type"}) {
            require(element, attribute);
        }
        if (node.id.empty()) {
            fail(node.line, {"this node has an empty id"});
        }
        if (!ids_.insert(node.id).second) {
            fail(node.line, {"there is another node with the id \"", node.id, "\""});
        }
        node.version = readVersion(element);
    }

    /// Gives whether it could read them all.
    bool readProperties(const xmlNode* element, DocumentNode& node) const {
        std::set<std::string> names;
        bool isWhole = true;
        for (xmlNode* child = element->children; child != nullptr; child = child->next) {
            if (isElement(child, "property")) {
                isWhole = attempt(errors_, [&] { addProperty(child, node, names); }) && isWhole;
            }
        }
        return isWhole;
    }

    void addProperty(const xmlNode* element, DocumentNode& node, std::set<std::string>& names) const {
        DocumentProperty property = readProperty(element);
        if (!names.insert(property.name).second) {
            fail(property.line, {"node \"", node.id, "\": property \"", property.name, "\" is set twice"});
        }
        node.properties.push_back(std::move(property));
    }

    std::int32_t readVersion(const xmlNode* element) const {
        const auto text = attributeOf(element, "version");
        if (!text) {
            return 0;
        }
        const auto version = parseVersion(*text);
        if (!version) {
            fail(lineOf(element), {"\"", *text, "\" is no version number"});
        }
        return *version;
    }

    DocumentProperty readProperty(const xmlNode* element) const {
        DocumentProperty property;
        property.line = lineOf(element);
        property.name = require(element, "name");
        property.value = require(element, "value");
        const std::string kind = require(element, "kind");
        const auto found = findKind(kind);
        if (!found) {
            fail(property.line, {"property \"", property.name, "\" is of the unknown kind \"", kind,
                                 "\"; the kinds are bool, integer, float, string, colour, enum and node"});
        }
        property.kind = *found;
        return property;
    }

    void readConnection(const xmlNode* element, int origin) {
        DocumentConnection connection;
        connection.line = lineOf(element);
        connection.origin = origin;
        connection.source = textOf(element, "source");
        connection.output = textOf(element, "output");
        connection.destination = textOf(element, "destination");
        connection.input = textOf(element, "input");
        const bool isWhole = hasAttributes(element, {"source", "output", "destination", "input"});
        (isWhole ? document_.connections : document_.leftOut.connections).push_back(std::move(connection));
    }

    void readOutput(const xmlNode* element, int origin) {
        DocumentOutput output;
        output.line = lineOf(element);
        output.origin = origin;
        output.name = textOf(element, "name");
        output.source = textOf(element, "source");
        output.port = textOf(element, "port");
        const bool isWhole = hasAttributes(element, {"name", "source", "port"});
        (isWhole ? document_.outputs : document_.leftOut.outputs).push_back(std::move(output));
    }

    void readBinding(const xmlNode* element, int origin) {
        DocumentBinding binding;
        binding.line = lineOf(element);
        binding.origin = origin;
        binding.name = require(element, "tag");
        binding.kind = require(element, "kind");
        if (!tags_.insert(binding.name).second) {
            fail(binding.line, {"there is another binding with the tag \"", binding.name, "\""});
        }
        if (!isBindingKind(binding.kind)) {
            fail(binding.line,
                 {"binding \"", binding.name, "\" is of the unknown kind \"", binding.kind, "\""});
        }
        for (const xmlAttr* attribute = element->properties; attribute != nullptr;
             attribute = attribute->next) {
            const std::string name = reinterpret_cast<const char*>(attribute->name);
            if (attribute->ns == nullptr && name != "tag" && name != "kind") {
                binding.annotations.emplace_back(name, require(element, name.c_str()));
            }
        }
        document_.bindings.push_back(std::move(binding));
    }

    Errors* errors_;
    MaterialDocument document_;
    int nodeCount_ = 0;
    int connectionCount_ = 0;
    int outputCount_ = 0;
    int bindingCount_ = 0;
    std::set<std::string> ids_;
    std::set<std::string> tags_;
};

MaterialDocument parseOwned(std::string text, const std::string& file, Errors* errors) {
    MaterialDocument document = DocumentReader(file, errors).read(text);
    document.source = std::move(text);
    return document;
}

auto sorted(std::vector<std::pair<std::string, std::string>> annotations) {
    std::sort(annotations.begin(), annotations.end());
    return annotations;
}

/// The bytes of the UTF-8 sequence that begins a text, or 0 when it is none, or no character of XML.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return std::uint32_t{static_cast<unsigned char>(text[i])}; };
    const std::uint32_t first = byte(0);
    if (first < 0x80) {
        return first >= 0x20 || first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    std::uint32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return 0;
        }
        code = code << 6U | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool allowed =
        code >= smallest[length] && code <= 0x10FFFF && !surrogate && code != 0xFFFE && code != 0xFFFF;
    return allowed ? length : 0;
}

} // namespace

bool operator==(const DocumentProperty& left, const DocumentProperty& right) {
    return std::tie(left.name, left.kind, left.value) == std::tie(right.name, right.kind, right.value);
}

bool operator==(const DocumentNode& left, const DocumentNode& right) {
    return std::tie(left.id, left.type, left.version, left.properties) ==
           std::tie(right.id, right.type, right.version, right.properties);
}

bool operator==(const DocumentConnection& left, const DocumentConnection& right) {
    return std::tie(left.source, left.output, left.destination, left.input) ==
           std::tie(right.source, right.output, right.destination, right.input);
}

bool operator==(const DocumentOutput& left, const DocumentOutput& right) {
    return std::tie(left.name, left.source, left.port) == std::tie(right.name, right.source, right.port);
}

bool operator==(const DocumentBinding& left, const DocumentBinding& right) {
    return std::tie(left.name, left.kind) == std::tie(right.name, right.kind) &&
           sorted(left.annotations) == sorted(right.annotations);
}

bool operator==(const MaterialDocument& left, const MaterialDocument& right) {
    return std::tie(left.name, left.nodes, left.connections, left.outputs, left.bindings) ==
           std::tie(right.name, right.nodes, right.connections, right.outputs, right.bindings);
}

bool isDocumentText(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

MaterialDocument parseMaterial(std::string_view text, const std::string& file, Errors* errors) {
    if (text.size() > xmlSizeLimit) {                   // is refused before it is copied
        return DocumentReader(file, errors).read(text); // GCOVR_EXCL_BR_LINE: it does not return
    }
    return parseOwned(std::string(text), file, errors);
}

MaterialDocument readMaterial(const std::filesystem::path& file, Errors* errors) {
    return parseOwned(readFile(file, xmlSizeLimit), file.string(), errors);
}

} // namespace patina
