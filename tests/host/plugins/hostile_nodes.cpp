// Nodes that fail, or emit code that no Core node emits. Each type is named after what it does.

#include "nodemodel/nodemodel.h"
#include "nodemodel/shader_error.h"
#include "plugin/plugin.h"
#include "shadergraph/shadergraph.h"

#include "tests/support/table_factory.h"

#include <exception>
#include <new>
#include <string>

namespace {

using namespace patina;

/// An exception whose code goes with the plug-in.
class OwnError : public std::exception {
public:
    const char* what() const noexcept override { return "the node is out of order"; }
};

/// A scalar output "out_value", fed by whatever the derived class adds.
class OutputNode : public MaterialNode {
public:
    explicit OutputNode(const std::string& type) : MaterialNode(type) {
        outputs.emplace_back("out_value");
        outputs.back().setComponentCount(1);
        outputs.back().setPrecision(2);
    }
    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputPort("out_value"));
        builder.appendCode("\tout_value = 0.0;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "plain");
        generator.addNode(function);
        attachLinks(generator, function);
    }

protected:
    /// Emits a parameter of that kind as the value of "out_value".
    void emitParameter(GraphGenerator& generator, NodeKind kind) {
        const auto parameter = makeParameterNode(kind, "lamp", {ComponentType::Float, 1, 1, 1});
        generator.addNode(parameter);
        FunctionBuilder builder;
        builder.addInput({ComponentType::Float, 1, 1, 1}, "in_value");
        builder.addOutputPort(outputPort("out_value"));
        builder.appendCode("\tout_value = in_value;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "pass");
        generator.addNode(function);
        generator.connect(parameter, "read", function, "in_value");
        attachLinks(generator, function);
    }
};

class InterfaceNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        emitParameter(generator, NodeKind::InterfaceParameter);
    }
};

class InterpolantNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        emitParameter(generator, NodeKind::InterpolantParameter);
    }
};

/// Gives an int, computed per vertex.
class VertexIntNode : public OutputNode {
public:
    explicit VertexIntNode(const std::string& type) : OutputNode(type) { outputs.front().setPrecision(5); }
    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputPort("out_value"));
        builder.appendCode("\tout_value = 3;\n");
        const auto function = builder.makeNode(ExecutionLevel::Vertex, "three");
        generator.addNode(function);
        attachLinks(generator, function);
    }
};

/// Two functions that feed each other.
class LoopNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        const auto makeFunction = [&](const std::string& name) {
            FunctionBuilder builder;
            builder.addInput({ComponentType::Float, 1, 1, 1}, "in_value");
            builder.addOutputPort(outputPort("out_value"));
            builder.appendCode("\tout_value = in_value;\n");
            return builder.makeNode(ExecutionLevel::Automatic, name);
        };
        const auto first = makeFunction("first");
        const auto second = makeFunction("second");
        generator.addNode(first);
        generator.addNode(second);
        generator.connect(first, "out_value", second, "in_value");
        generator.connect(second, "out_value", first, "in_value");
        attachLinks(generator, second);
    }
};

/// A function whose input nothing feeds.
class UnfedNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addInput({ComponentType::Float, 1, 1, 1}, "in_value");
        builder.addOutputPort(outputPort("out_value"));
        builder.appendCode("\tout_value = in_value;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "hungry");
        generator.addNode(function);
        attachLinks(generator, function);
    }
};

/// Emits nothing for its port.
class SilentNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& /*generator*/) override {}
};

/// Emits a function that lacks its port.
class WrongPortNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutput({ComponentType::Float, 1, 1, 1}, "other");
        builder.appendCode("\tother = 0.0;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "wrongPort");
        generator.addNode(function);
        attachLinks(generator, function);
    }
};

/// Has a function of the name that conversions have, without inputs.
class ConversionNameNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputPort("out_value"));
        builder.appendCode("\tout_value = 1.0;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "promoteAndSplat");
        generator.addNode(function);
        attachLinks(generator, function);
    }
};

/// Fails with the text that a duplicate parameter gives.
class DuplicateParameterNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& /*generator*/) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputPort("out_value"));
        builder.addOutputPort(outputPort("out_value"));
    }
};

class ThrowingCodeNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& /*generator*/) override { throw OwnError(); }
};

class ThrowingBindingNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    bool generatesBinding() const override { return true; }
    void addBindings(BindingCollection& /*bindings*/) override { throw OwnError(); }
};

class ThrowingUpdateNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void updateFromProperties(void* /*hostContext*/) override { throw OwnError(); }
};

class ThrowingResolutionNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void resolveComponentCounts() override { throw OwnError(); }
};

class ThrowingPrecisionNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void resolvePrecision() override { throw OwnError(); }
};

class ThrowingLoadNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void loadProperties(const std::shared_ptr<PropertySet>& /*saved*/) override { throw OwnError(); }
};

class ThrowingConstructorNode : public OutputNode {
public:
    explicit ThrowingConstructorNode(const std::string& type) : OutputNode(type) { throw OwnError(); }
};

/// Has two inputs that nothing needs, one of which has a default.
class LooseInputsNode : public OutputNode {
public:
    explicit LooseInputsNode(const std::string& type) : OutputNode(type) {
        inputs.emplace_back("light");
        inputs.emplace_back("in_warm_light");
        addProperty("Default Warm Light", "Default Warm Light: how warm.")->setFloat(0.5F);
    }
};

/// Has a property of a kind that there is none of.
class OddKindNode : public OutputNode {
public:
    explicit OddKindNode(const std::string& type) : OutputNode(type) {
        addProperty("Odd", "Odd: of no kind.")->kind = static_cast<PropertyType>(99);
    }
};

/// Takes one update and no more.
class TiredNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void updateFromProperties(void* /*hostContext*/) override {
        if (isUpdated_) {
            throw OwnError();
        }
        isUpdated_ = true;
    }

private:
    bool isUpdated_ = false;
};

class HungryCodeNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void generateCode(GraphGenerator& /*generator*/) override { throw std::bad_alloc(); }
};

class HungryLoadNode : public OutputNode {
public:
    using OutputNode::OutputNode;
    void loadProperties(const std::shared_ptr<PropertySet>& /*saved*/) override { throw std::bad_alloc(); }
};

class HungryConstructorNode : public OutputNode {
public:
    explicit HungryConstructorNode(const std::string& type) : OutputNode(type) { throw std::bad_alloc(); }
};

template <typename Node>
std::shared_ptr<MaterialNode> create(const std::string& type) {
    return std::make_shared<Node>(type);
}

std::shared_ptr<MaterialNode> createNothing(const std::string& /*type*/) { return nullptr; }

constexpr testing::OfferedType types[] = {
    {"Plain", create<OutputNode>},
    {"Interface", create<InterfaceNode>},
    {"Interpolant", create<InterpolantNode>},
    {"VertexInt", create<VertexIntNode>},
    {"Loop", create<LoopNode>},
    {"Unfed", create<UnfedNode>},
    {"Silent", create<SilentNode>},
    {"WrongPort", create<WrongPortNode>},
    {"ConversionName", create<ConversionNameNode>},
    {"DuplicateParameter", create<DuplicateParameterNode>},
    {"ThrowingCode", create<ThrowingCodeNode>},
    {"ThrowingBinding", create<ThrowingBindingNode>},
    {"ThrowingUpdate", create<ThrowingUpdateNode>},
    {"ThrowingResolution", create<ThrowingResolutionNode>},
    {"ThrowingPrecision", create<ThrowingPrecisionNode>},
    {"ThrowingLoad", create<ThrowingLoadNode>},
    {"ThrowingConstructor", create<ThrowingConstructorNode>},
    {"Nothing", createNothing},
    {"LooseInputs", create<LooseInputsNode>},
    {"OddKind", create<OddKindNode>},
    {"Tired", create<TiredNode>},
    {"HungryCode", create<HungryCodeNode>},
    {"HungryLoad", create<HungryLoadNode>},
    {"HungryConstructor", create<HungryConstructorNode>},
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new patina::testing::TableFactory(types); }
