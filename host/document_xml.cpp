#include "host/document_xml.h"

#include "bindings/binding_kinds.h"
#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <libxml/SAX2.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

namespace patina {

using namespace detail;

namespace {

constexpr int depthLimit = 200;

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

/// Why a document is refused: the first complaint, the parser's or the host's own.
struct XmlComplaint {
    int line = 1;
    std::string text;
};

xmlParserCtxt* parserOf(void* context) { return static_cast<xmlParserCtxt*>(context); }

XmlComplaint& complaintOf(void* context) { return *static_cast<XmlComplaint*>(parserOf(context)->_private); }

void keepFirstComplaint(void* context, xmlErrorPtr error) {
    XmlComplaint& complaint = complaintOf(context);
    if (complaint.text.empty() && error->level >= XML_ERR_ERROR && error->message != nullptr) {
        complaint.line = error->line;
        complaint.text = joinText({"this is not well-formed XML: ", error->message});
        complaint.text.resize(complaint.text.find_last_not_of('\n') + 1);
    }
}

void refuse(void* context, std::string_view text) {
    complaintOf(context) = {parserOf(context)->input->line, std::string(text)};
    xmlStopParser(parserOf(context));
}

/// Stops before the declaration's inside is read: nothing in it is declared, let alone expanded or fetched.
void refuseDocumentType(void* context, const xmlChar* /*name*/, const xmlChar* /*publicId*/,
                        const xmlChar* /*systemId*/) {
    refuse(context, "a material document has no document type declaration; remove it");
}

/// Makes each element remember its line: the parser's own count stops at 65535.
void startElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                  const xmlChar** attributes) {
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
    const xmlParserCtxt* parser = parserOf(context);
    if (parser->node != nullptr) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the pointer is only a place to keep a number
        parser->node->_private = reinterpret_cast<void*>(static_cast<std::intptr_t>(parser->input->line));
    }
    if (parser->nodeNr > depthLimit) {
        refuse(context,
               joinText({"the elements of this document nest deeper than ", std::to_string(depthLimit)}));
    }
}

} // namespace

XmlPointer<xmlDoc> detail::parseDocumentXml(std::string_view text, const std::string& file) {
    if (text.size() > documentSizeLimit) {
        throw HostError({file, 1}, "this document is larger than 512 MiB");
    }
    const XmlPointer<xmlParserCtxt> context(xmlNewParserCtxt());
    if (!context) {
        throw std::bad_alloc();
    }
    XmlComplaint complaint;
    context->_private = &complaint;
    context->sax->serror = keepFirstComplaint;
    context->sax->startElementNs = startElement;
    context->sax->internalSubset = refuseDocumentType;
    const XmlSilence silence;
    // without the parser's own limits, so that whatever can be written can be read: what they are against
    // needs entities, depth or size, and those are limited here
    XmlPointer<xmlDoc> xml(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                             nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_HUGE));
    if (!xml || context->disableSAX != 0) {
        throw HostError({file, complaint.line},
                        complaint.text.empty() ? "this is not well-formed XML" : complaint.text);
    }
    return xml;
}

int detail::lineOf(const xmlNode* element) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(element->_private));
}

std::string_view detail::elementName(const xmlNode* element) {
    return reinterpret_cast<const char*>(element->name);
}

bool detail::isElement(const xmlNode* node, std::string_view name) {
    return node->type == XML_ELEMENT_NODE && node->ns == nullptr && elementName(node) == name;
}

std::optional<std::string> detail::attributeOf(const xmlNode* element, const char* name) {
    const XmlPointer<xmlChar> value(xmlGetNoNsProp(element, xmlText(name)));
    if (!value) {
        return std::nullopt;
    }
    return reinterpret_cast<const char*>(value.get());
}

const char* detail::kindName(PropertyType kind) { return kindNames[static_cast<std::size_t>(kind)].name; }

std::optional<PropertyType> detail::findKind(std::string_view name) {
    const auto* found = std::find_if(kindNames.begin(), kindNames.end(),
                                     [&](const KindName& entry) { return entry.name == name; });
    return found == kindNames.end() ? std::nullopt : std::optional(found->kind);
}

bool detail::isBindingKind(std::string_view name) {
    for (auto kind = BindingKind::Position; const BindingKindEntry* entry = findBindingKind(kind);
         kind = static_cast<BindingKind>(static_cast<std::int32_t>(kind) + 1)) {
        if (entry->name == name) {
            return true;
        }
    }
    return false;
}

std::optional<std::int32_t> detail::parseVersion(std::string_view text) {
    std::int32_t version = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), version);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return version;
}

} // namespace patina
