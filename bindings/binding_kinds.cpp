#include "bindings/binding_kinds.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace patina {

using namespace detail;

namespace {

/// Indexed by BindingKind: name, class, ui type, stream type, normalised stream, dataset modifiers.
constexpr std::array<BindingKindEntry, 11> bindingKinds = {{
    {"invalid", BindingClass::None, UiType::None, "", false, ""},
    {"position", BindingClass::Plain, UiType::None, "f32", false, ""},
    {"normal", BindingClass::Plain, UiType::None, "f16", false, ""},
    {"uv", BindingClass::String, UiType::UvSet, "f32", false, "oneminus|v"},
    {"tangent", BindingClass::Plain, UiType::None, "f16", false, ""},
    {"binormal", BindingClass::Plain, UiType::None, "f16", false, "negate"},
    {"colour", BindingClass::String, UiType::VtxColourSet, "u8n", true, ""},
    {"blendindices", BindingClass::Plain, UiType::None, "u8", false, ""},
    {"blendweights", BindingClass::Plain, UiType::None, "s16n", true, ""},
    {"texture", BindingClass::Texture, UiType::Texture, "", false, ""},
    {"float", BindingClass::Float, UiType::FloatField, "", false, ""},
}};

/// Indexed by UiType.
constexpr std::array<const char*, 10> uiTypeNames = {
    "none",    "slider",     "colour", "position",     "direction",
    "texture", "floatfield", "uvset",  "vtxcolourset", "checkboxes",
};

/// Indexed by UiUnitType.
constexpr std::array<const char*, 4> uiUnitTypeNames = {"raw", "linear", "angular", "srgbcolour"};

struct StreamTypeEntry {
    const char* word;
    const char* code;
    const char* normalisedCode;
};

// signed and unsigned words give the same code on purpose
constexpr std::array<StreamTypeEntry, 9> streamTypes = {{
    {"int", "f32", "f32"},
    {"uint", "f32", "f32"},
    {"float", "f32", "f32"},
    {"half", "f16", "f16"},
    {"ushort", "s16", "s16n"},
    {"short", "s16", "s16n"},
    {"byte", "u8", "u8n"},
    {"ubyte", "u8", "u8n"},
    {"packed", "X11Y11Z10n", "X11Y11Z10n"},
}};

constexpr std::array<const char*, 4> trueWords = {"1", "y", "yes", "true"};

template <typename Value, std::size_t Count>
std::string nameOf(const std::array<const char*, Count>& names, Value value) {
    const auto index = static_cast<std::size_t>(value);
    return index < Count ? names[index] : std::string();
}

/// Index 0 stands for "no such name", so it is never compared.
template <typename Value, std::size_t Count>
Value parseName(const std::array<const char*, Count>& names, const std::string& text) {
    const auto found = std::find(names.begin() + 1, names.end(), text);
    return found == names.end() ? Value{} : static_cast<Value>(found - names.begin());
}

} // namespace

const BindingKindEntry* detail::findBindingKind(BindingKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < bindingKinds.size() ? &bindingKinds[index] : nullptr;
}

const BindingKindEntry& detail::bindingKindDefaults(BindingKind kind) {
    const BindingKindEntry* entry = findBindingKind(kind);
    return entry != nullptr ? *entry : bindingKinds.front();
}

std::string uiTypeName(UiType type) { return nameOf(uiTypeNames, type); }

std::string uiUnitTypeName(UiUnitType type) { return nameOf(uiUnitTypeNames, type); }

std::string defaultDatasetModifiers(BindingKind kind) { return bindingKindDefaults(kind).datasetModifiers; }

UiType parseUiType(const std::string& text) { return parseName<UiType>(uiTypeNames, text); }

UiUnitType parseUiUnitType(const std::string& text) { return parseName<UiUnitType>(uiUnitTypeNames, text); }

bool parseBindingBool(const std::string& text) {
    return std::find(trueWords.begin(), trueWords.end(), lowerCase(text)) != trueWords.end();
}

std::string streamTypeFor(const std::string& typeWord, bool normalise) {
    const auto found = std::find_if(streamTypes.begin(), streamTypes.end(),
                                    [&](const StreamTypeEntry& entry) { return entry.word == typeWord; });
    if (found == streamTypes.end()) {
        return typeWord;
    }
    return normalise ? found->normalisedCode : found->code;
}

std::string detail::lowerCase(std::string text) {
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return text;
}

} // namespace patina
