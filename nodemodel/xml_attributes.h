#pragma once

#include <libxml/tree.h>

#include <string>

namespace patina {

// Attribute access for saved values. Texts are UTF-8; the element stays the caller's.
// Threads: one thread per document at a time. Writing throws std::bad_alloc when the text does not get in
// whole for want of memory.

/// Sets an attribute, replacing one of the same name. Nothing is written when `element` is null or no
/// element.
void writeAttribute(xmlNode* element, const std::string& name, const std::string& value);

/// Sets an attribute to "Yes" or "No".
void writeBoolAttribute(xmlNode* element, const std::string& name, bool flag);

namespace detail {

/// Whether the attribute is present, or has a default in the document's DTD.
bool hasAttribute(xmlNode* element, const std::string& name);

} // namespace detail

/// The attribute's text, empty when it is present and empty. Throws ShaderError when it is missing.
std::string readAttribute(xmlNode* element, const std::string& name);

/// True for exactly "Yes", false for exactly "No". Throws ShaderError for any other text or a missing
/// attribute.
bool readBoolAttribute(xmlNode* element, const std::string& name);

} // namespace patina
