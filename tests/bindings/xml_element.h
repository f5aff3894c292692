#pragma once

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {

using XmlAttributes = std::vector<std::pair<std::string, std::string>>;

inline const xmlChar* xmlText(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// The root element of a document of its own.
class XmlElement {
public:
    explicit XmlElement(const XmlAttributes& attributes = {}, const std::string& elementName = "binding")
        : document_(xmlNewDoc(xmlText("1.0")), &xmlFreeDoc) {
        xmlDocSetRootElement(document_.get(), xmlNewNode(nullptr, xmlText(elementName)));
        for (const auto& [key, value] : attributes) {
            xmlSetProp(node(), xmlText(key), xmlText(value));
        }
    }

    explicit XmlElement(std::initializer_list<XmlAttributes::value_type> attributes,
                        const std::string& elementName = "binding")
        : XmlElement(XmlAttributes(attributes), elementName) {}

    /// The root element of a document's text.
    static XmlElement parsed(const std::string& text) {
        return XmlElement(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0));
    }

    xmlNode* node() const { return xmlDocGetRootElement(document_.get()); }

    /// Keys and texts in the order in which they stand on the element.
    XmlAttributes attributes() const {
        XmlAttributes found;
        for (xmlAttr* attribute = node()->properties; attribute != nullptr; attribute = attribute->next) {
            xmlChar* value = xmlNodeListGetString(document_.get(), attribute->children, 1);
            found.emplace_back(reinterpret_cast<const char*>(attribute->name),
                               value != nullptr ? reinterpret_cast<const char*>(value) : "");
            xmlFree(value);
        }
        return found;
    }

    /// The document as a file would hold it.
    std::string documentText() const {
        xmlChar* buffer = nullptr;
        int size = 0;
        xmlDocDumpMemory(document_.get(), &buffer, &size);
        const std::string text(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(size));
        xmlFree(buffer);
        return text;
    }

private:
    explicit XmlElement(xmlDoc* document) : document_(document, &xmlFreeDoc) { EXPECT_NE(document, nullptr); }

    std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document_;
};

} // namespace patina::testing
