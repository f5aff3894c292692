#include "tests/fuzz/decisions.h"
#include "tests/fuzz/export_checks.h"

#include "nodemodel/text.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina::fuzz {

using namespace detail;

namespace {

constexpr std::size_t maximalNodes = 5;
constexpr std::size_t maximalPieces = 4;
constexpr std::string_view outputNames[] = {"colour", "alpha", "normal", "emissive", "gloss"};

std::string portName(std::string_view direction, std::size_t index) {
    return joinText({direction, std::to_string(index)});
}

std::int32_t anySize(Decisions& decide) {
    constexpr std::int32_t sizes[] = {1, 1, 3, 3, 3, 4, 2};
    return decide.oneIn(64) ? decide.integer() : decide.choose(sizes);
}

/// Up to a number that nothing can have either: a scalar's way to a vector names each of its components, and
/// texts of gigabytes tell no more than long ones.
std::int32_t anyColumns(Decisions& decide) {
    constexpr std::int32_t manyColumns = 65536;
    return std::min(anySize(decide), manyColumns);
}

/// Most often a value of one row.
ShaderType anyType(Decisions& decide) {
    const ComponentType usual = decide.oneIn(2) ? ComponentType::Half : ComponentType::Float;
    ShaderType type = {usual, anyColumns(decide), 1, 1};
    if (decide.oneIn(16)) {
        type.componentType = static_cast<ComponentType>(decide.below(14));
    }
    if (decide.oneIn(32)) {
        type.rows = anySize(decide);
    }
    if (decide.oneIn(32)) {
        type.arraySize = anySize(decide);
    }
    return type;
}

/// A node of a plug-in whose author was in a hurry. Whenever it is asked it decides the same.
class HastyNode : public MaterialNode {
public:
    explicit HastyNode(Decisions& decide) : MaterialNode("Hasty") {
        setName(decide.name());
        addPorts(decide, "i", inputs, decide.below(3));
        addPorts(decide, "o", outputs, 1 + decide.below(2));
        code_ = decide.part();
        bindings_ = decide.part();
    }

    void generateCode(GraphGenerator& generator) override {
        Decisions decide = code_;
        std::vector<std::shared_ptr<GeneratorNode>> pieces;
        pieces.push_back(makeWhole(decide));
        generator.addNode(pieces.back());
        for (std::size_t i = decide.below(maximalPieces); i > 0; --i) {
            pieces.push_back(makePiece(decide));
            generator.addNode(pieces.back());
        }
        for (std::size_t i = decide.below(maximalPieces); i > 0; --i) {
            const auto tail = decide.choose(pieces);
            const auto head = decide.choose(pieces);
            join(decide, generator, tail, head);
        }
        throwAnything(decide);
        attachLinks(generator, decide.oneIn(16) ? decide.choose(pieces) : pieces.front());
    }

    bool generatesBinding() const override { return true; }

    void addBindings(BindingCollection& collection) override {
        Decisions decide = bindings_;
        for (std::size_t i = decide.below(3); i > 0; --i) {
            const auto kind = static_cast<BindingKind>(decide.below(12));
            const std::string name = decide.name();
            const auto componentCount = static_cast<std::uint32_t>(1 + decide.below(4));
            const auto binding = createBinding(kind, name, componentCount);
            if (binding) {
                binding->setDefaultValue(0, decide.number());
                binding->description = decide.text();
                binding->cgName = decide.oneIn(4) ? decide.name() : std::string();
                binding->streamType = decide.oneIn(8) ? decide.text() : binding->streamType;
            }
            addToBindingCollection(collection, binding);
        }
        throwAnything(decide);
    }

private:
    static void addPorts(Decisions& decide, std::string_view direction, std::vector<Port>& ports,
                         std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Port& port = ports.emplace_back(portName(direction, i), decide.text());
            if (decide.oneIn(2)) {
                port.setComponentCount(static_cast<std::uint32_t>(decide.below(5)));
            }
            if (decide.oneIn(4)) {
                port.setPrecision(static_cast<std::uint32_t>(decide.below(5)));
            }
        }
    }

    /// A function with all ports of this node.
    std::shared_ptr<GeneratorNode> makeWhole(Decisions& decide) const {
        FunctionBuilder builder;
        for (const Port& port : inputs) {
            builder.addInputPort(port);
        }
        for (const Port& port : outputs) {
            builder.addOutputPort(port);
            builder.appendCode(joinText({"\t", port.name, " = 1.0;\n"}));
        }
        addText(decide, builder);
        return builder.makeNode(anyLevel(decide), decide.text());
    }

    static void addText(Decisions& decide, FunctionBuilder& builder) {
        if (decide.oneIn(16)) {
            builder.appendCode(decide.text());
        }
    }

    static ExecutionLevel anyLevel(Decisions& decide) {
        return static_cast<ExecutionLevel>(decide.oneIn(64) ? decide.integer()
                                                            : static_cast<std::int32_t>(2 - decide.below(3)));
    }

    static std::shared_ptr<GeneratorNode> makePiece(Decisions& decide) {
        const auto kind = static_cast<NodeKind>(decide.oneIn(64) ? 9 : 5 - decide.below(6));
        const ShaderType type = anyType(decide);
        if (kind == NodeKind::Function) {
            FunctionBuilder builder;
            builder.addInput(anyType(decide), decide.name());
            builder.addOutput(type, "o0");
            builder.appendCode("\to0 = 0.5;\n");
            addText(decide, builder);
            return builder.makeNode(anyLevel(decide), decide.text());
        }
        constexpr std::string_view shared[] = {"normal", "position", "eye", "tangent", "shared", "other"};
        const RegisterReference place = {static_cast<std::int32_t>(decide.below(18)),
                                         decide.oneIn(16) ? decide.integer()
                                                          : static_cast<std::int32_t>(decide.below(4))};
        const std::string name =
            kind == NodeKind::InterfaceParameter ? std::string(decide.choose(shared)) : decide.name();
        return makeParameterNode(kind, name, type, static_cast<std::int32_t>(decide.below(2)), place);
    }

    static void join(Decisions& decide, GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& tail,
                     const std::shared_ptr<GeneratorNode>& head) {
        const std::string from = tail->outputs.empty() ? decide.text() : decide.choose(tail->outputs).name;
        const std::string to = head->inputs.empty() ? decide.text() : decide.choose(head->inputs).name;
        if (decide.oneIn(16)) {
            generator.graph->connect(generator.findNode(tail), from, generator.findNode(head), to);
        } else {
            generator.connect(tail, from, head, to);
        }
    }

    /// What a plug-in's code throws is its own affair.
    static void throwAnything(Decisions& decide) {
        if (!decide.oneIn(64)) {
            return;
        }
        switch (decide.below(4)) {
        case 0:
            throw ShaderError(decide.text());
        case 1:
            throw std::runtime_error(decide.text());
        case 2:
            throw decide.text();
        default:
            throw 1;
        }
    }

    Decisions code_;
    Decisions bindings_;
};

/// A material of such nodes, made without a plug-in.
class MaterialMaker {
public:
    explicit MaterialMaker(Decisions& decisions) : decide_(decisions) {
        material_.file = "fuzz.xml";
        material_.name = "Fuzz";
        material_.document.file = material_.file;
        material_.document.name = material_.name;
    }

    Material make() {
        do {
            addNode();
        } while (material_.items.size() < maximalNodes && !decide_.isSpent());
        for (std::size_t i = decide_.below(2 * maximalNodes); i > 0; --i) {
            connect();
        }
        for (std::size_t i = decide_.below(3); i > 0; --i) {
            const std::string name(decide_.choose(outputNames));
            addOutput(name, decide_.below(material_.items.size()));
        }
        if (material_.outputs.empty()) {
            addOutput("colour", material_.items.size() - 1);
        }
        return std::move(material_);
    }

private:
    void addNode() {
        MaterialItem item;
        item.id = portName("n", material_.items.size());
        item.node = std::make_shared<HastyNode>(decide_);
        material_.downstream.push_back(material_.items.size());
        DocumentNode saved;
        saved.id = item.id;
        saved.type = "Hasty";
        material_.document.nodes.push_back(std::move(saved));
        material_.items.push_back(std::move(item));
    }

    std::shared_ptr<NodeConnection> leave(std::size_t source) {
        MaterialNode& node = *material_.items[source].node;
        Port& port = node.outputs[decide_.below(node.outputs.size())];
        const auto record = std::make_shared<NodeConnection>();
        record->sourceNode = material_.items[source].node;
        record->sourcePort = port.name;
        port.connected = true;
        node.outputLinks.push_back(record);
        return record;
    }

    /// From an earlier node to an input of a later one that is free.
    void connect() {
        const std::size_t to = decide_.below(material_.items.size());
        const std::size_t from = decide_.below(to);
        MaterialNode& node = *material_.items[to].node;
        if (from == to || node.inputs.empty()) {
            return;
        }
        Port& port = node.inputs[decide_.below(node.inputs.size())];
        if (port.connected) {
            return;
        }
        port.connected = true;
        const auto record = leave(from);
        record->destinationNode = material_.items[to].node;
        record->destinationPort = port.name;
        node.inputLinks.push_back(record);
        material_.connections.push_back({record, from, to, 0});
        DocumentConnection saved;
        saved.source = material_.items[from].id;
        saved.output = record->sourcePort;
        saved.destination = material_.items[to].id;
        saved.input = record->destinationPort;
        material_.document.connections.push_back(std::move(saved));
    }

    void addOutput(const std::string& name, std::size_t source) {
        for (const MaterialOutput& output : material_.outputs) {
            if (output.name == name) {
                return;
            }
        }
        const auto record = leave(source);
        material_.outputs.push_back({name, record, source, 0});
        material_.document.outputs.push_back({name, material_.items[source].id, record->sourcePort});
    }

    Decisions& decide_;
    Material material_;
};

} // namespace

/// Whatever the nodes of a plug-in emit: programs and bindings, or HostError says why not; and looking for
/// all errors finds some exactly when there are some.
void runDecided(Decisions& decide) {
    Material material = MaterialMaker(decide).make();
    checkAssembly(material);
}

} // namespace patina::fuzz
