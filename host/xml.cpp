#include "host/xml.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <libxml/SAX2.h>

#include <cstdint>

namespace patina {

using namespace detail;

namespace {

constexpr int depthLimit = 200;

/// One run of the parser: what it reads, and why it refuses that: the first complaint, its own or the host's.
struct ParserRun {
    std::string_view what;
    int line = 1;
    std::string complaint; ///< libxml2 has one for all that it refuses
};

xmlParserCtxt* parserOf(void* context) { return static_cast<xmlParserCtxt*>(context); }

ParserRun& runOf(void* context) { return *static_cast<ParserRun*>(parserOf(context)->_private); }

void keepFirstComplaint(void* context, xmlErrorPtr error) {
    ParserRun& run = runOf(context);
    const bool isRefusal = error->level >= XML_ERR_ERROR; // and no mere warning
    if (isRefusal && run.complaint.empty()) {
        run.line = error->line;
        // GCOVR_EXCL_BR_START: the tests that take memory away are others
        const bool isMemoryOut = error->code == XML_ERR_NO_MEMORY || error->message == nullptr;
        run.complaint = isMemoryOut ? "there is not enough memory to read this document"
                                    : joinText({"this is not well-formed XML: ", error->message});
        // GCOVR_EXCL_BR_STOP
        run.complaint.resize(run.complaint.find_last_not_of('\n') + 1);
    }
}

void refuse(void* context, std::string complaint) {
    runOf(context).line = parserOf(context)->input->line;
    runOf(context).complaint = std::move(complaint);
    xmlStopParser(parserOf(context));
}

/// Stops before the declaration's inside is read: nothing in it is declared, let alone expanded or fetched.
void refuseDocumentType(void* context, const xmlChar* /*name*/, const xmlChar* /*publicId*/,
                        const xmlChar* /*systemId*/) {
    refuse(context, joinText({runOf(context).what, " has no document type declaration; remove it"}));
}

/// Makes each element remember its line: the parser's own count stops at 65535.
void startElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                  const xmlChar** attributes) {
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
    const xmlParserCtxt* parser = parserOf(context);
    if (parser->node != nullptr) { // GCOVR_EXCL_BR_LINE: there is one unless memory is out
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the pointer is only a place to keep a number
        parser->node->_private = reinterpret_cast<void*>(static_cast<std::intptr_t>(parser->input->line));
    }
    if (parser->nodeNr > depthLimit) {
        refuse(context,
               joinText({"the elements of this document nest deeper than ", std::to_string(depthLimit)}));
    }
}

// NOLINTNEXTLINE(cert-dcl50-cpp): libxml2's signature
void ignoreText(void* /*context*/, const char* /*format*/, ...) {}

void ignoreError(void* /*context*/, xmlErrorPtr /*error*/) {}

/// Where memory is out, libxml2 also makes elements without a name.
xmlNode* requireNamed(xmlNode* element) {
    requireMade(requireMade(element)->name);
    return element;
}

/// libxml2's own state, of which each thread gets its part when it first asks, is not made twice at once.
void initialiseOnce() {
    // GCOVR_EXCL_BR_START: whether another thread makes it at that moment
    static const bool isDone = (xmlInitParser(), true);
    // GCOVR_EXCL_BR_STOP
    static_cast<void>(isDone);
}

} // namespace

XmlSilence::XmlSilence() {
    initialiseOnce();
    generic_ = xmlGenericError;
    genericContext_ = xmlGenericErrorContext;
    structured_ = xmlStructuredError;
    structuredContext_ = xmlStructuredErrorContext;
    xmlSetGenericErrorFunc(nullptr, ignoreText);
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
}

XmlSilence::~XmlSilence() {
    xmlSetGenericErrorFunc(genericContext_, generic_);
    xmlSetStructuredErrorFunc(structuredContext_, structured_);
}

std::string_view elementName(const xmlNode* element) { return reinterpret_cast<const char*>(element->name); }

int lineOf(const xmlNode* element) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(element->_private));
}

XmlPointer<xmlDoc> parseXml(std::string_view text, const std::string& file, std::string_view what) {
    if (text.size() > xmlSizeLimit) {
        throw HostError({file, 1}, "this document is larger than 512 MiB");
    }
    const XmlSilence silence; // before the parser, which reports what it lacks when it is made
    const XmlPointer<xmlParserCtxt> context(requireMade(xmlNewParserCtxt()));
    ParserRun run;
    run.what = what;
    context->_private = &run;
    context->sax->serror = keepFirstComplaint;
    context->sax->startElementNs = startElement;
    context->sax->internalSubset = refuseDocumentType;
    // without the parser's own limits, so that whatever can be written can be read: what they are against
    // needs entities, depth or size, and those are limited here
    XmlPointer<xmlDoc> xml(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                             nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_HUGE));
    if (!xml || context->disableSAX != 0 || context->nsWellFormed == 0) {
        requireMade(run.complaint.empty() ? nullptr : &run); // GCOVR_EXCL_BR_LINE: likewise
        throw HostError({file, run.line}, run.complaint);
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
    xmlResetLastError();
    XmlPointer<xmlDoc> document(requireMade(xmlNewDoc(xmlText("1.0"))));
    xmlDocSetRootElement(document.get(), requireNamed(xmlNewNode(nullptr, xmlText(rootName))));
    return document;
}

xmlNode* appendElement(xmlNode* parent, const char* name) {
    return requireNamed(xmlNewChild(parent, nullptr, xmlText(name), nullptr));
}

std::string documentText(xmlDoc* document) {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document, &text, &size, "UTF-8", 1);
    const XmlPointer<xmlChar> owner(text);
    // where memory was out, attributes lack their texts, and the end is missing
    const xmlError* const error = xmlGetLastError();
    const bool isMemoryOut =
        error != nullptr && error->code == XML_ERR_NO_MEMORY; // GCOVR_EXCL_BR_LINE: likewise
    requireMade(isMemoryOut ? nullptr : text);                // GCOVR_EXCL_BR_LINE: likewise
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

} // namespace patina
