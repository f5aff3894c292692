#pragma once

#include "host/xml.h"
#include "nodemodel/property.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace patina::detail {

// The XML of material documents: what their reader and their writer share.

inline constexpr std::size_t documentSizeLimit = std::size_t{512} * 1024 * 1024;

/// The tree of a document's text, each element of which knows its line; `file` is what messages name.
/// Throws HostError for what is not well-formed, too large or too deep, and for a document type declaration,
/// behind which nothing is looked at.
XmlPointer<xmlDoc> parseDocumentXml(std::string_view text, const std::string& file);

/// The line in which the element's tag ends.
int lineOf(const xmlNode* element);

/// Whether a node of the tree is an element of that name in no namespace, as all elements of material
/// documents are.
bool isElement(const xmlNode* node, std::string_view name);

std::string_view elementName(const xmlNode* element);

/// The value of an attribute in no namespace; none when it is missing.
std::optional<std::string> attributeOf(const xmlNode* element, const char* name);

/// How documents name the kinds of properties.
const char* kindName(PropertyType kind);
std::optional<PropertyType> findKind(std::string_view name);

/// Whether bindings of a kind of that name exist.
bool isBindingKind(std::string_view name);

/// The version that a text stands for.
std::optional<std::int32_t> parseVersion(std::string_view text);

} // namespace patina::detail
