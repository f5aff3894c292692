#pragma once

#include <cstdint>
#include <string>

namespace patina {

/// What a binding presents: a vertex stream, a uv or vertex-colour set, a texture, or a float constant.
enum class BindingKind : std::int32_t {
    Invalid,
    Position,
    Normal,
    Uv,
    Tangent,
    Binormal,
    Colour,
    BlendIndices,
    BlendWeights,
    Texture,
    Float
};

/// The control with which an artist edits a binding.
enum class UiType : std::int32_t {
    None,
    Slider,
    Colour,
    Position,
    Direction,
    Texture,
    FloatField,
    UvSet,
    VtxColourSet,
    Checkboxes
};

/// The unit in which a control shows a value.
enum class UiUnitType : std::int32_t { Raw, Linear, Angular, SrgbColour };

// [thread-safe]; none of the operations below reports errors.

/// The name by which annotations know a value; empty for a value outside the enumeration.
std::string uiTypeName(UiType type);
std::string uiUnitTypeName(UiUnitType type);

/// The dataset modifiers that a binding of that kind starts with; empty for most.
std::string defaultDatasetModifiers(BindingKind kind);

/// The value of exactly that (lower-case) name; None or Raw when there is none.
UiType parseUiType(const std::string& text);
UiUnitType parseUiUnitType(const std::string& text);

/// True for "1", "y", "yes" and "true" in any case.
bool parseBindingBool(const std::string& text);

/// The stream type code for a component type word; a word that is none is returned unchanged.
std::string streamTypeFor(const std::string& typeWord, bool normalise);

namespace detail {

/// The class that carries bindings of a kind.
enum class BindingClass : std::int32_t { None, Plain, String, Texture, Float };

/// What a kind of binding starts with.
struct BindingKindEntry {
    const char* name;
    BindingClass bindingClass;
    UiType uiType;
    const char* streamType; ///< empty: the kind has no vertex stream
    bool streamNormalise;
    const char* datasetModifiers;
};

/// The table's entry of a kind, or null for a value outside the table. It lives forever.
const BindingKindEntry* findBindingKind(BindingKind kind);

/// What a kind of binding starts with; for a value outside the table, what an invalid binding does.
const BindingKindEntry& bindingKindDefaults(BindingKind kind);

/// ASCII letters in lower case, whatever the locale.
std::string lowerCase(std::string text);

} // namespace detail

} // namespace patina
