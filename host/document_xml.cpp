#include "host/document_xml.h"

#include "bindings/binding_kinds.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace patina {

using namespace detail;

namespace {

struct KindName {
    const char* name;
    PropertyType kind;
};

constexpr std::array<KindName, 7> kindNames = {{
    {"bool", PropertyType::Bool},
    {"integer", PropertyType::Integer},
    {"float", PropertyType::Float},
    {"string", PropertyType::String},
    {"colour", PropertyType::Colour},
    {"enum", PropertyType::Enum},
    {"node", PropertyType::Node},
}};

} // namespace

bool detail::isElement(const xmlNode* node, std::string_view name) {
    return node->type == XML_ELEMENT_NODE && node->ns == nullptr && elementName(node) == name;
}

std::optional<std::string> detail::attributeOf(const xmlNode* element, const char* name) {
    const XmlPointer<xmlChar> value(xmlGetNoNsProp(element, xmlText(name)));
    if (!value) {
        return std::nullopt;
    }
    return std::string(reinterpret_cast<const char*>(value.get()));
}

const char* detail::kindName(PropertyType kind) { return kindNames.at(static_cast<std::size_t>(kind)).name; }

std::optional<PropertyType> detail::findKind(std::string_view name) {
    const auto* found = std::find_if(kindNames.begin(), kindNames.end(),
                                     [&](const KindName& entry) { return entry.name == name; });
    return found == kindNames.end() ? std::nullopt : std::optional(found->kind);
}

bool detail::isBindingKind(std::string_view name) {
    for (auto kind = BindingKind::Position; const BindingKindEntry* entry = findBindingKind(kind);
         kind = static_cast<BindingKind>(static_cast<std::int32_t>(kind) + 1)) {
        if (entry->name == name) {
            return true;
        }
    }
    return false;
}

std::optional<std::int32_t> detail::parseVersion(std::string_view text) {
    std::int32_t version = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), version);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return version;
}

} // namespace patina
