#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

namespace patina {

/// Frees what libxml2 gave.
struct XmlFree {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};

template <typename Object>
using XmlPointer = std::unique_ptr<Object, XmlFree>;

} // namespace patina
