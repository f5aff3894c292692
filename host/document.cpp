#include "host/document.h"

#include "host/diagnostic.h"
#include "host/files.h"
#include "host/xml.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

namespace patina {

using namespace detail;

namespace {

struct KindName {
    const char* name;
    PropertyType kind;
};

constexpr std::array<KindName, 7> kindNames = {{
    {"bool", PropertyType::Bool},
    {"integer", PropertyType::Integer},
    {"float", PropertyType::Float},
    {"string", PropertyType::String},
    {"colour", PropertyType::Colour},
    {"enum", PropertyType::Enum},
    {"node", PropertyType::Node},
}};

/// Reads the elements of one document. A method of each kind of element; all throw HostError.
class DocumentReader {
public:
    explicit DocumentReader(const std::string& file) { document_.file = file; }

    MaterialDocument read(std::string_view text) {
        const XmlPointer<xmlDoc> xml = parseXml(text, document_.file, "a material document");
        xmlNode* root = xmlDocGetRootElement(xml.get());
        readRoot(root);
        for (xmlNode* child = root->children; child != nullptr; child = child->next) {
            if (child->type != XML_ELEMENT_NODE) {
                continue;
            }
            const std::string_view name = elementName(child);
            if (name == "node") {
                readNode(child);
            } else if (name == "connection") {
                readConnection(child);
            } else if (name == "output") {
                readOutput(child);
            }
            // elements of others are left alone
        }
        return std::move(document_);
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({document_.file, line}, joinText(pieces));
    }

    std::string require(xmlNode* element, const char* attribute) const {
        if (!hasAttribute(element, attribute)) {
            fail(lineOf(element),
                 {"the <", elementName(element), "> element has no \"", attribute, "\" attribute"});
        }
        return readAttribute(element, attribute);
    }

    void readRoot(xmlNode* root) {
        document_.line = lineOf(root);
        if (elementName(root) != "material") {
            fail(lineOf(root), {"this is no material document: the root element is <", elementName(root),
                                ">, not <material>"});
        }
        const std::string version = require(root, "version");
        if (version != "1") {
            fail(lineOf(root),
                 {"this is a material document of version \"", version, "\", and this host reads version 1"});
        }
        document_.name = require(root, "name");
        if (!isFileName(document_.name)) {
            fail(lineOf(root), {"the material's name \"", document_.name, "\" cannot be the name of a file"});
        }
    }

    void readNode(xmlNode* element) {
        DocumentNode node;
        node.line = lineOf(element);
        node.id = require(element, "id");
        node.type = require(element, "type");
        if (node.id.empty()) {
            fail(node.line, {"this node has an empty id"});
        }
        if (!ids_.insert(node.id).second) {
            fail(node.line, {"there is another node with the id \"", node.id, "\""});
        }
        if (hasAttribute(element, "version")) {
            node.version = readVersion(element);
        }
        std::set<std::string> names;
        for (xmlNode* child = element->children; child != nullptr; child = child->next) {
            if (child->type == XML_ELEMENT_NODE && elementName(child) == "property") {
                node.properties.push_back(readProperty(child));
                const DocumentProperty& property = node.properties.back();
                if (!names.insert(property.name).second) {
                    fail(property.line,
                         {"node \"", node.id, "\": property \"", property.name, "\" is set twice"});
                }
            }
        }
        document_.nodes.push_back(std::move(node));
    }

    std::int32_t readVersion(xmlNode* element) const {
        const std::string text = readAttribute(element, "version");
        std::int32_t version = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), version);
        if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
            fail(lineOf(element), {"\"", text, "\" is no version number"});
        }
        return version;
    }

    DocumentProperty readProperty(xmlNode* element) const {
        DocumentProperty property;
        property.line = lineOf(element);
        property.name = require(element, "name");
        property.value = require(element, "value");
        const std::string kind = require(element, "kind");
        const auto* found = std::find_if(kindNames.begin(), kindNames.end(),
                                         [&](const KindName& entry) { return entry.name == kind; });
        if (found == kindNames.end()) {
            fail(property.line, {"property \"", property.name, "\" is of the unknown kind \"", kind,
                                 "\"; the kinds are bool, integer, float, string, colour, enum and node"});
        }
        property.kind = found->kind;
        return property;
    }

    void readConnection(xmlNode* element) {
        DocumentConnection connection;
        connection.line = lineOf(element);
        connection.source = require(element, "source");
        connection.output = require(element, "output");
        connection.destination = require(element, "destination");
        connection.input = require(element, "input");
        document_.connections.push_back(std::move(connection));
    }

    void readOutput(xmlNode* element) {
        DocumentOutput output;
        output.line = lineOf(element);
        output.name = require(element, "name");
        output.source = require(element, "source");
        output.port = require(element, "port");
        document_.outputs.push_back(std::move(output));
    }

    MaterialDocument document_;
    std::set<std::string> ids_;
};

} // namespace

MaterialDocument parseMaterial(std::string_view text, const std::string& file) {
    return DocumentReader(file).read(text);
}

MaterialDocument readMaterial(const std::filesystem::path& file) {
    return parseMaterial(readFile(file, xmlSizeLimit), file.string());
}

} // namespace patina
