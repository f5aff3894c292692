#pragma once

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

/// Appends what componentTypeName and declaration give.
/// @{
void appendComponentType(std::string& text, const ShaderType& type);
void appendDeclaration(std::string& text, const ShaderType& type, std::string_view name);
/// @}

} // namespace detail

/// A new function node named "promoteAndSplat" that takes "in_value" of type `from` and gives "out_value" of
/// type `to`: any component type becomes any other, and a scalar widens to any vector. Throws ShaderError for
/// matrices, arrays, and vectors of unequal width.
std::shared_ptr<GeneratorNode> makePromoteAndSplat(const ShaderType& from, const ShaderType& to);

} // namespace patina
