#pragma once

#include "host/cg_names.h"
#include "host/dataflow.h"
#include "host/stages.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace patina {

/// The names of everything in the two programs.
struct ShaderNames {
    std::vector<std::string_view> functions;    ///< by dataflow node; equal functions have one name
    std::vector<std::string_view> interpolants; ///< by interpolant register
    std::string_view position;                  ///< the vertex program's input
    std::string_view clipPosition;              ///< and its output
    std::string_view colour;                    ///< the fragment program's output
    std::vector<std::string_view> allValues;    ///< of the nodes one after another
    std::vector<std::size_t> firstValues;       ///< by dataflow node, and one more: indices into allValues
    std::unique_ptr<NameAllocator> allocator = std::make_unique<NameAllocator>(); ///< holds the texts

    /// By output port; a written register has one.
    std::span<const std::string_view> values(std::size_t node) const {
        return std::span(allValues).subspan(firstValues[node], firstValues[node + 1] - firstValues[node]);
    }
    std::string_view value(const ValueSource& source) const { return values(source.node)[source.port]; }
};

/// Names the functions and values of a shader. Uniforms and varyings keep their own names, since bindings go
/// by them; functions and values get suffixes where needed. The same material always gets the same names.
///
/// Throws HostError, naming the nodes, when a parameter has a reserved name, or when two parameters of one
/// name differ in kind or type. With `errors`, goes on with the next parameter and puts them there.
/// Threads: as the material, one thread at a time.
ShaderNames nameShader(const Material& material, const Dataflow& flow, const StagedShader& shader,
                       Errors* errors = nullptr);

} // namespace patina
