#pragma once

#include "nodemodel/port.h"
#include "nodemodel/text.h"
#include "shadergraph/generator_node.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

namespace detail {

/// The type of the value on a material node's port. Throws ShaderError while precision or count is unknown.
ShaderType portType(const Port& port);

/// A swizzle that repeats the first component: "xxx" for 3 columns.
std::string splat(std::int32_t columns);

} // namespace detail

/// Collects a function's parameters and body, and makes generator nodes of them.
///
/// Adding a parameter under a name that the function already has throws the message as a plain std::string,
/// not a ShaderError; all other failures are ShaderErrors. Threads: one thread at a time.
class FunctionBuilder {
public:
    /// @name Parameters, in order
    /// @{
    void addInput(const ShaderType& type, const std::string& name);
    void addOutput(const ShaderType& type, const std::string& name);
    /// Under the port's name and type.
    void addInputPort(const Port& port);
    void addOutputPort(const Port& port);
    /// @}

    /// @name Body
    /// @{
    void appendCode(std::string_view text);
    /// Appends a line that declares `name` and sets every component to `value`; float and half types only.
    /// When the type is refused, the line's beginning stays in the body.
    void declareConstant(const ShaderType& type, const std::string& name, float value);
    /// The same under the port's name and type.
    void declarePortConstant(const Port& port, float value);
    /// @}

    /// Makes room for that many parameters, beyond which there may still be more.
    void reservePorts(std::size_t inputCount, std::size_t outputCount);

    /// A new function node of what has been collected; the builder may go on.
    std::shared_ptr<GeneratorNode> makeNode(ExecutionLevel level, const std::string& name);

    /// The same, after which the builder is empty; it is as before when this throws.
    std::shared_ptr<GeneratorNode> finish(ExecutionLevel level, const std::string& name);

    /// The function under construction: it lives as long as the builder, and shows what is added later too.
    /// Its `code` is filled only in the nodes that makeNode makes.
    const ShaderFunction& function() const;

private:
    void addParameter(char direction, const ShaderType& type, const std::string& name);

    std::vector<GeneratorPort> inputs_;
    std::vector<GeneratorPort> outputs_;
    std::string directions_; ///< of the parameters, in order
    detail::TextBuilder body_;
    mutable std::optional<ShaderFunction> function_; ///< once somebody asked for it
};

} // namespace patina
