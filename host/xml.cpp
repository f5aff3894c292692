#include "host/xml.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <libxml/SAX2.h>

#include <cstdint>
#include <new>

namespace patina {

using namespace detail;

namespace {

const xmlChar* xmlText(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

/// The first complaint of the XML parser.
struct XmlComplaint {
    int line = 1;
    std::string text;
};

void keepFirstComplaint(void* context, xmlErrorPtr error) {
    auto* complaint = static_cast<XmlComplaint*>(static_cast<xmlParserCtxt*>(context)->_private);
    if (complaint->text.empty() && error->level >= XML_ERR_ERROR && error->message != nullptr) {
        complaint->line = error->line;
        complaint->text = error->message;
        complaint->text.resize(complaint->text.find_last_not_of('\n') + 1);
    }
}

/// Makes each element remember its line: the parser's own count stops at 65535.
void startElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                  const xmlChar** attributes) {
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
    const auto* parser = static_cast<xmlParserCtxt*>(context);
    if (parser->node != nullptr) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the pointer is only a place to keep a number
        parser->node->_private = reinterpret_cast<void*>(static_cast<std::intptr_t>(parser->input->line));
    }
}

// NOLINTNEXTLINE(cert-dcl50-cpp): libxml2's signature
void ignoreText(void* /*context*/, const char* /*format*/, ...) {}

void ignoreError(void* /*context*/, xmlErrorPtr /*error*/) {}

/// Keeps libxml2 from printing on its own while it lives: some encoding errors pass by the parser's handler.
class XmlSilence {
public:
    XmlSilence()
        : generic_(xmlGenericError), genericContext_(xmlGenericErrorContext), structured_(xmlStructuredError),
          structuredContext_(xmlStructuredErrorContext) {
        xmlSetGenericErrorFunc(nullptr, ignoreText);
        xmlSetStructuredErrorFunc(nullptr, ignoreError);
    }
    ~XmlSilence() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
    }
    XmlSilence(const XmlSilence&) = delete;
    XmlSilence& operator=(const XmlSilence&) = delete;

private:
    xmlGenericErrorFunc generic_;
    void* genericContext_;
    xmlStructuredErrorFunc structured_;
    void* structuredContext_;
};

} // namespace

std::string_view elementName(const xmlNode* element) { return reinterpret_cast<const char*>(element->name); }

int lineOf(const xmlNode* element) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(element->_private));
}

XmlPointer<xmlDoc> parseXml(std::string_view text, const std::string& file, std::string_view what) {
    if (text.size() > xmlSizeLimit) {
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
    const XmlSilence silence;
    XmlPointer<xmlDoc> xml(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                             nullptr, nullptr, XML_PARSE_NONET));
    if (!xml) {
        throw HostError({file, complaint.line}, joinText({"this is not well-formed XML: ", complaint.text}));
    }
    if (xml->intSubset != nullptr) {
        throw HostError({file, lineOf(xmlDocGetRootElement(xml.get()))},
                        joinText({what, " has no document type declaration; remove it"}));
    }
    return xml;
}

std::vector<std::pair<std::string, std::string>> readAttributes(xmlNode* element) {
    std::vector<std::pair<std::string, std::string>> attributes;
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        if (attribute->ns == nullptr) {
            const std::string name = reinterpret_cast<const char*>(attribute->name);
            attributes.emplace_back(name, readAttribute(element, name));
        }
    }
    return attributes;
}

XmlPointer<xmlDoc> makeDocument(const char* rootName) {
    XmlPointer<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    xmlDocSetRootElement(document.get(), xmlNewNode(nullptr, xmlText(rootName)));
    return document;
}

xmlNode* appendElement(xmlNode* parent, const char* name) {
    return xmlNewChild(parent, nullptr, xmlText(name), nullptr);
}

std::string documentText(xmlDoc* document) {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document, &text, &size, "UTF-8", 1);
    const XmlPointer<xmlChar> owner(text);
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

} // namespace patina
