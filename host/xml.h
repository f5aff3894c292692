#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

namespace patina {

/// Frees what libxml2 gave.
struct XmlFree {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlNode* node) const { xmlFreeNode(node); }
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};

template <typename Object>
using XmlPointer = std::unique_ptr<Object, XmlFree>;

/// A text as libxml2 takes it.
inline const xmlChar* xmlText(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

/// Keeps libxml2 from printing on its own while it lives: some encoding errors pass by a parser's handler.
/// Threads: for the thread that makes it.
class XmlSilence {
public:
    XmlSilence();
    ~XmlSilence();
    XmlSilence(const XmlSilence&) = delete;
    XmlSilence& operator=(const XmlSilence&) = delete;

private:
    xmlGenericErrorFunc generic_;
    void* genericContext_;
    xmlStructuredErrorFunc structured_;
    void* structuredContext_;
};

} // namespace patina
