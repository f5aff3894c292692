#pragma once

#include <cstdint>
#include <string>

namespace patina {

/// A register of the table: an index from 0 to 17, and a number among the registers of that kind.
struct RegisterReference {
    std::int32_t index = 0;
    std::int32_t number = 0;

    bool operator==(const RegisterReference&) const = default;
};

/// Indices into the register table.
namespace registers {
inline constexpr std::int32_t unknown = 0;
inline constexpr std::int32_t vertexAttribute = 1;
inline constexpr std::int32_t vertexConstant = 2;
inline constexpr std::int32_t vertexSampler = 3;
inline constexpr std::int32_t vertexPosition = 4;
inline constexpr std::int32_t vertexInterpolant = 9;
inline constexpr std::int32_t fragmentInterpolant = 14;
inline constexpr std::int32_t fragmentSampler = 15;
inline constexpr std::int32_t fragmentColour = 16;
} // namespace registers

// [thread-safe]; what follows throws ShaderError for an index outside the table.

/// The semantic as Cg writes it: "TEXCOORD3", "register( c12 )", "POSITION".
std::string registerText(const RegisterReference& reference);

namespace detail {

/// One kind of Cg register: where it belongs and how its semantic is written.
struct RegisterEntry {
    std::int32_t direction; ///< 0 an input, 1 an output of the stage
    const char* semantic;
    const char* suffix;
    std::int32_t registerCount; ///< the number is written when there is more than one
    std::int32_t stage;         ///< 0 the vertex program, 1 the fragment program
    std::int32_t flag;          ///< carried as data; without a meaning here
};

/// The table's entry at `index`; it lives forever.
const RegisterEntry& registerEntry(std::int32_t index);

} // namespace detail

} // namespace patina
