#pragma once

// A material of nodes whose code a test writes.

#include "tests/host/host_checks.h"

#include "shadergraph/shadergraph.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {

using Handle = std::shared_ptr<GeneratorNode>;

inline constexpr ShaderType float1 = {ComponentType::Float, 1, 1, 1};
inline constexpr ShaderType float2 = {ComponentType::Float, 2, 1, 1};
inline constexpr ShaderType float3 = {ComponentType::Float, 3, 1, 1};
inline constexpr ShaderType float4 = {ComponentType::Float, 4, 1, 1};

/// A node whose code is the test's; its output "result" has three components.
class CodeNode : public MaterialNode {
public:
    using Code =
        std::function<Handle(GraphGenerator&)>; ///< gives the node with the port "result", or nothing

    explicit CodeNode(Code code) : MaterialNode("Code"), code_(std::move(code)) {
        outputs.emplace_back("result");
        outputs.back().setComponentCount(3);
        outputs.back().setPrecision(2);
    }
    void generateCode(GraphGenerator& generator) override {
        if (const Handle node = code_(generator)) {
            attachLinks(generator, node);
        }
    }

private:
    Code code_;
};

/// A material of nodes "a", "b" and so on, in lines from 10, whose last one's "result" is the colour.
class Sample {
public:
    explicit Sample(const std::vector<CodeNode::Code>& codes) {
        material_.file = "sample.xml";
        material_.line = 1;
        material_.name = "Sample";
        for (const CodeNode::Code& code : codes) {
            const std::size_t index = material_.items.size();
            MaterialItem item;
            item.id = std::string(1, static_cast<char>('a' + index));
            item.node = std::make_shared<CodeNode>(code);
            item.line = static_cast<int>(10 + index);
            material_.items.push_back(item);
            material_.downstream.push_back(index);
        }
        addOutput("colour", material_.items.size() - 1);
    }

    /// Makes an item's "result" an output of the material too.
    void addOutput(const std::string& name, std::size_t source) {
        MaterialOutput output;
        output.name = name;
        output.source = source;
        output.record = leave(source);
        material_.outputs.push_back(output);
    }

    /// Takes an item's "result" to an input that another gets, in line 20.
    std::shared_ptr<NodeConnection> connect(std::size_t source, std::size_t destination,
                                            const std::string& input) {
        MaterialConnection connection;
        connection.source = source;
        connection.destination = destination;
        connection.line = 20;
        connection.record = leave(source);
        connection.record->destinationPort = input;
        MaterialNode& node = *material_.items[destination].node;
        node.inputs.emplace_back(input);
        node.inputLinks.push_back(connection.record);
        material_.connections.push_back(connection);
        return connection.record;
    }

    ExportedMaterial shader(bool showValue = false) {
        ExportOptions options;
        options.print.framework = false;
        options.showValue = showValue;
        return exportedFrom(material_, options);
    }
    /// The error at which an export ends.
    std::string error(bool showValue = false) {
        return hostErrorOf([&] { shader(showValue); });
    }
    /// All that the steps of an export refuse.
    std::vector<std::string> errors() {
        Errors errors;
        Warnings warnings;
        findErrors(material_, errors, warnings);
        std::vector<std::string> texts;
        for (const HostError& error : errors) {
            texts.emplace_back(error.what());
        }
        return texts;
    }

private:
    std::shared_ptr<NodeConnection> leave(std::size_t source) {
        const auto record = std::make_shared<NodeConnection>();
        record->sourcePort = "result";
        material_.items[source].node->outputLinks.push_back(record);
        return record;
    }

    Material material_;
};

/// A function of inputs "in0", "in1" and so on, submitted and fed by the "read" ports of others.
inline Handle emitFunction(GraphGenerator& generator, const std::vector<Handle>& inputs,
                           const ShaderType& output, ExecutionLevel level = ExecutionLevel::Automatic,
                           const std::string& name = "f") {
    FunctionBuilder builder;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        builder.addInput(inputs[i]->type, "value" + std::to_string(i));
    }
    builder.addOutput(output, "result");
    builder.appendCode("\tresult = 0.5;\n");
    const Handle function = builder.makeNode(level, name);
    generator.addNode(function);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        generator.connect(inputs[i], "read", function, "value" + std::to_string(i));
    }
    return function;
}

inline Handle submit(GraphGenerator& generator, const Handle& node) {
    generator.addNode(node);
    return node;
}

inline Handle interfaceOf(const std::string& name, const ShaderType& type) {
    return makeParameterNode(NodeKind::InterfaceParameter, name, type);
}

inline Handle registerOf(std::int32_t index, std::int32_t number, const ShaderType& type,
                         const std::string& name = {}) {
    return makeParameterNode(NodeKind::RegisterParameter, name, type, 0, {index, number});
}

/// Reads a parameter and makes the colour of it.
inline CodeNode::Code reader(const std::function<Handle()>& make,
                             ExecutionLevel level = ExecutionLevel::Automatic) {
    return [=](GraphGenerator& generator) {
        return emitFunction(generator, {submit(generator, make())}, float3, level);
    };
}

/// Writes a constant of that type to a parameter.
inline CodeNode::Code writer(const std::function<Handle()>& make, const ShaderType& type,
                             ExecutionLevel level = ExecutionLevel::Automatic) {
    return [=](GraphGenerator& generator) {
        const Handle value = emitFunction(generator, {}, type, level, "source");
        generator.connect(value, "result", submit(generator, make()), "write");
        return Handle();
    };
}

/// A constant colour.
inline Handle emitColour(GraphGenerator& generator) { return emitFunction(generator, {}, float3); }

} // namespace patina::testing
