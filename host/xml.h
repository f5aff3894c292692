#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

/// What libxml2 made: nothing only where memory is out. Throws std::bad_alloc then.
template <typename Object>
Object* requireMade(Object* made) {
    if (made == nullptr) {      // GCOVR_EXCL_BR_LINE: the tests that take memory away are others
        throw std::bad_alloc(); // GCOVR_EXCL_LINE: likewise
    }
    return made;
}

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
    xmlGenericErrorFunc generic_ = nullptr;
    void* genericContext_ = nullptr;
    xmlStructuredErrorFunc structured_ = nullptr;
    void* structuredContext_ = nullptr;
};

/// The most bytes that a document may have.
inline constexpr std::size_t xmlSizeLimit = std::size_t{512} * 1024 * 1024;

/// Parses a document without looking at anything outside it. Its elements know their lines; see lineOf.
/// `file` is what messages name, and `what` says what the document should be, as in "a material document".
/// Throws HostError, with the line, for what is not well-formed, too large or too deep, and for a document
/// type declaration, behind which nothing is looked at.
XmlPointer<xmlDoc> parseXml(std::string_view text, const std::string& file, std::string_view what);

/// The name of an element; it lives as long as the element.
std::string_view elementName(const xmlNode* element);

/// The line of an element of a document that parseXml gave.
int lineOf(const xmlNode* element);

/// The attributes of an element without a namespace, names and texts in the order in which they stand.
std::vector<std::pair<std::string, std::string>> readAttributes(xmlNode* element);

/// A document with an empty root element.
XmlPointer<xmlDoc> makeDocument(const char* rootName);

/// Appends an empty element, which is the parent's.
xmlNode* appendElement(xmlNode* parent, const char* name);

/// A document as a file holds it: UTF-8, and two blanks for each level.
std::string documentText(xmlDoc* document);

} // namespace patina
