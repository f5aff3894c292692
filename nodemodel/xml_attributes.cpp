#include "nodemodel/xml_attributes.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <memory>
#include <new>

namespace patina {

using namespace detail;

namespace {

constexpr const char* yesText = "Yes";
constexpr const char* noText = "No";

const xmlChar* xmlText(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }

std::string fromXml(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

struct XmlFree {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

std::string elementName(const xmlNode* element) {
    return element != nullptr && element->name != nullptr ? fromXml(element->name) : std::string();
}

/// libxml2 goes on without what it has no memory for.
void requireWhole(const xmlAttr* attribute) {
    // GCOVR_EXCL_START: the tests that take memory away are others
    if (attribute == nullptr || attribute->name == nullptr || attribute->children == nullptr ||
        attribute->children->content == nullptr) {
        throw std::bad_alloc();
    }
    // GCOVR_EXCL_STOP
}

} // namespace

void writeAttribute(xmlNode* element, const std::string& name, const std::string& value) {
    // without an element libxml2 would make an attribute that nobody owns
    if (element != nullptr && element->type == XML_ELEMENT_NODE) {
        requireWhole(xmlSetProp(element, xmlText(name), xmlText(value)));
    }
}

void writeBoolAttribute(xmlNode* element, const std::string& name, bool flag) {
    writeAttribute(element, name, flag ? yesText : noText);
}

bool detail::hasAttribute(xmlNode* element, const std::string& name) {
    return xmlHasProp(element, xmlText(name)) != nullptr;
}

std::string readAttribute(xmlNode* element, const std::string& name) {
    const std::unique_ptr<xmlChar, XmlFree> text(xmlGetProp(element, xmlText(name)));
    if (!text) {
        throw ShaderError(
            joinText({"failed to find \"", name, "\" attribute on \"", elementName(element), "\" element"}));
    }
    return fromXml(text.get());
}

bool readBoolAttribute(xmlNode* element, const std::string& name) {
    const std::string text = readAttribute(element, name);
    if (text == yesText) {
        return true;
    }
    if (text == noText) {
        return false;
    }
    throw ShaderError(joinText({"attribute \"", name, "\" contains invalid boolean data \"", text, "\""}));
}

} // namespace patina
