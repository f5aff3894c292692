#pragma once

#include "shadergraph/register_table.h"
#include "shadergraph/shader_type.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

struct GeneratorEdge;

/// Where a generated function runs. Automatic leaves it to the host.
enum class ExecutionLevel : std::int32_t { Vertex, Fragment, Automatic };

/// A parameter of a generated function.
struct FunctionParameter {
    std::int32_t direction = 0; ///< 0 an input, 1 an output
    ShaderType type;
    std::int32_t reserved = 0; ///< carried as data; without a meaning here
    std::string name;
    std::string semantic;
};

/// A Cg function: its parameters in order and the text between its braces.
struct ShaderFunction {
    ExecutionLevel level = ExecutionLevel::Automatic;
    std::string name = "unknown";
    std::vector<FunctionParameter> parameters;
    std::string code;
};

enum class NodeKind : std::int32_t {
    Function,
    InterfaceParameter,  ///< a value that several nodes share by name and flags
    VaryingParameter,    ///< per-vertex data
    UniformParameter,    ///< set once per draw
    RegisterParameter,   ///< a Cg register of one stage
    InterpolantParameter ///< a value from the vertex to the fragment program
};

struct GeneratorPort {
    std::string name;
    ShaderType type;
};

/// A node of the shader graph: a function, or a parameter that carries a value into, between or out of
/// stages.
///
/// Ownership: held by std::shared_ptr; the graph keeps what is inserted. Edges are referred to weakly.
/// Threads: one code generation pass, and so one thread, at a time.
struct GeneratorNode {
    std::vector<std::weak_ptr<GeneratorEdge>> inEdges;
    std::vector<std::weak_ptr<GeneratorEdge>> outEdges;
    NodeKind kind = NodeKind::Function;
    std::string name;
    ExecutionLevel level = ExecutionLevel::Automatic; ///< of a function
    std::string code;                                 ///< of a function
    ShaderType type;                                  ///< of a parameter
    std::int32_t flags = 0;                           ///< of an interface parameter
    RegisterReference registerReference;
    std::vector<GeneratorPort> inputs;
    std::vector<GeneratorPort> outputs;
};

namespace detail {

/// The first port of that name, or the end.
inline std::vector<GeneratorPort>::const_iterator findPort(const std::vector<GeneratorPort>& ports,
                                                           std::string_view name) {
    auto port = ports.begin();
    while (port != ports.end() && port->name != name) {
        ++port;
    }
    return port;
}

/// A function node of these ports, validated. The ports are as before when this throws.
std::shared_ptr<GeneratorNode> makeFunctionNode(std::vector<GeneratorPort>&& inputs,
                                                std::vector<GeneratorPort>&& outputs, ExecutionLevel level,
                                                const std::string& name, std::string code);

} // namespace detail

// Makers: each returns a new node of its own, validated. They throw ShaderError when the name of a varying or
// uniform parameter, or of a function's port, is no valid Cg variable name. [thread-safe]

/// A function node whose ports are the function's parameters in order.
std::shared_ptr<GeneratorNode> makeFunctionNode(const ShaderFunction& function);

/// A varying parameter with its output "read".
std::shared_ptr<GeneratorNode> makeVaryingParameter(const std::string& name, const ShaderType& type);

/// A uniform parameter with its output "read".
std::shared_ptr<GeneratorNode> makeUniformParameter(const std::string& name, const ShaderType& type);

/// A parameter node of any kind but Function. Interface and interpolant parameters have an output "read" and
/// an input "write"; a register parameter has "write" when its register is an output of the stage, else
/// "read". Throws ShaderError for a function kind and for a register outside the table.
std::shared_ptr<GeneratorNode> makeParameterNode(NodeKind kind, const std::string& name,
                                                 const ShaderType& type, std::int32_t flags = 0,
                                                 RegisterReference reference = {});

/// The one-line description with which messages name a node. Throws ShaderError for an unknown kind or
/// register.
std::string describe(const GeneratorNode& node);

/// The first input of that name; it lives as long as the node. Throws ShaderError when there is none.
const GeneratorPort& inputPort(const GeneratorNode& node, const std::string& name);

/// The first output of that name; it lives as long as the node. Throws ShaderError when there is none.
const GeneratorPort& outputPort(const GeneratorNode& node, const std::string& name);

/// A letter or "_", then letters, digits and "_", all ASCII. Cg's own words are not refused.
bool isValidVariableName(std::string_view name);

} // namespace patina
