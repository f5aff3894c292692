#pragma once

#include "host/xml.h"
#include "nodemodel/property.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace patina::detail {

// The XML of material documents: what their reader and their writer share.
// Threads: as xml.h for the trees, each in one thread at a time; the rest is thread-safe.

/// Whether a node of the tree is an element of that name in no namespace, as all elements of material
/// documents are.
bool isElement(const xmlNode* node, std::string_view name);

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
