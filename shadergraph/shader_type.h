#pragma once

#include "nodemodel/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace patina {

struct GeneratorNode;

/// The scalar kinds of Cg, by the codes that ports carry as their precision.
enum class ComponentType : std::int32_t {
    Unknown,
    Void,
    Float,
    Half,
    Fixed,
    Int,
    Bool,
    Sampler1D,
    Sampler2D,
    Sampler3D,
    SamplerCube,
    SamplerRect
};

/// The type of a value in a generated shader: a scalar, vector, matrix or sampler, or an array of one.
struct ShaderType {
    ComponentType componentType = ComponentType::Unknown;
    std::int32_t columns = 1;   ///< components of a vector, 1 to 4; columns of a matrix
    std::int32_t rows = 1;      ///< 1 for a scalar or vector; rows of a matrix
    std::int32_t arraySize = 1; ///< 1 for a single value

    bool operator==(const ShaderType&) const = default;
};

// The operations below are [thread-safe] and throw ShaderError for a component type without a name.

/// The name of the component type alone: "float", "sampler2D".
std::string componentTypeName(const ShaderType& type);

/// Prints the type as Cg writes it: "float3", "float4x4" (rows first), "float4[8]".
std::ostream& operator<<(std::ostream& stream, const ShaderType& type);

/// A Cg declaration of `name`: "float3 name", "float4 name[8]".
std::string declaration(const ShaderType& type, std::string_view name);

namespace detail {

/// What the operator prints.
std::string typeText(const ShaderType& type);

/// What componentTypeName gives, in a text that lasts.
std::string_view componentTypeView(const ShaderType& type);

/// Of scalars and vectors, by ComponentType from Float to Bool and by columns from 1.
inline constexpr std::array<std::array<std::string_view, 4>, 5> vectorTypeTexts = {{
    {"float", "float2", "float3", "float4"},
    {"half", "half2", "half3", "half4"},
    {"fixed", "fixed2", "fixed3", "fixed4"},
    {"int", "int2", "int3", "int4"},
    {"bool", "bool2", "bool3", "bool4"},
}};

/// The text of a single value of one of those types, as most are; empty for all others.
inline std::string_view vectorTypeText(const ShaderType& type) {
    constexpr auto firstType = static_cast<std::size_t>(ComponentType::Float);
    const std::size_t row = static_cast<std::size_t>(type.componentType) - firstType;
    const std::size_t column = static_cast<std::size_t>(type.columns) - 1;
    const bool isVector = type.rows <= 1 && type.arraySize <= 1 && row < vectorTypeTexts.size() &&
                          column < vectorTypeTexts.front().size();
    return isVector ? vectorTypeTexts[row][column] : std::string_view();
}

/// Appends what `declaration` gives, between two other texts.
inline void appendDeclaration(TextBuilder& text, const ShaderType& type, std::string_view name,
                              std::string_view before = "", std::string_view after = "") {
    if (const std::string_view vector = vectorTypeText(type); !vector.empty()) {
        text.append(before, vector, " ", name, after);
    } else {
        text.append(before, declaration(type, name), after);
    }
}

} // namespace detail

/// A new function node named "promoteAndSplat" that takes "in_value" of type `from` and gives "out_value" of
/// type `to`: any component type becomes any other, and a scalar widens to any vector. Throws ShaderError for
/// matrices, arrays, and vectors of unequal width.
std::shared_ptr<GeneratorNode> makePromoteAndSplat(const ShaderType& from, const ShaderType& to);

} // namespace patina
