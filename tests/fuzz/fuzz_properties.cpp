#include "tests/fuzz/decisions.h"
#include "tests/fuzz/export_checks.h"

#include "nodemodel/text.h"
#include "plugin/core_node_factory.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina::fuzz {

using namespace detail;

namespace {

constexpr std::size_t maximalNodes = 4;
constexpr std::size_t maximalProperties = 8;

/// Drives nodes as a careless host does: with any saved properties, in any state of their ports.
class NodeFuzzer {
public:
    explicit NodeFuzzer(Decisions& decisions) : decide_(decisions) {}

    void fuzz() {
        for (std::size_t i = 0; i < maximalNodes && !decide_.isSpent(); ++i) {
            nodes_.push_back(factory_.createNode(decide_.choose(factory_.nodeLibrary).typeName));
            restore(*nodes_.back());
        }
        for (std::size_t i = 0; i < 2 * maximalNodes && !decide_.isSpent(); ++i) {
            connect();
        }
        for (const std::shared_ptr<MaterialNode>& node : nodes_) {
            resolve(*node);
        }
        GraphGenerator generator;
        BindingCollection bindings;
        for (const std::shared_ptr<MaterialNode>& node : nodes_) {
            generate(*node, generator);
            present(*node, bindings);
        }
    }

private:
    /// What a node may throw, as its contract says.
    template <typename Action>
    static bool attempt(Action&& action) {
        try {
            action();
            return true;
        } catch (const ShaderError& error) {
            require(*error.what() != '\0', "A node throws an error without a word.");
            return false;
        }
    }

    /// Of a failed load the values copied before it stay, each of which the node could take.
    void restore(MaterialNode& node) {
        const auto saved = savedSet(node);
        const bool isLoaded = attempt([&] { node.loadProperties(saved); });
        require(!isLoaded || saved->version <= node.properties->version,
                "A node takes properties that are newer than itself.");
        for (const std::shared_ptr<Property>& property : *node.properties) {
            const auto& allowed = property->allowedValues;
            require(property->kind != PropertyType::Enum ||
                        std::find(allowed.begin(), allowed.end(), property->stringValue) != allowed.end(),
                    "An enumeration has a value that it does not know.");
        }
        attempt([&] { node.updateFromProperties(nullptr); });
        if (isLoaded) {
            checkLoadingAgain(node);
        }
    }

    /// What a node has it takes back, and is the same then.
    static void checkLoadingAgain(MaterialNode& node) {
        const auto own = std::make_shared<PropertySet>(*node.properties);
        require(attempt([&] { node.properties->copyValuesFrom(*own); }),
                "A node does not take its own properties.");
        const std::size_t inputs = node.inputs.size();
        const std::size_t outputs = node.outputs.size();
        if (attempt([&] { node.updateFromProperties(nullptr); })) {
            require(node.inputs.size() == inputs && node.outputs.size() == outputs,
                    "Another update of a node gives it other ports.");
        }
    }

    std::shared_ptr<PropertySet> savedSet(const MaterialNode& node) {
        auto saved = std::make_shared<PropertySet>();
        saved->version = decide_.oneIn(8) ? decide_.integer() : 0;
        for (std::size_t i = decide_.below(maximalProperties); i > 0; --i) {
            const std::shared_ptr<Property>& own = decide_.choose(node.properties->items);
            const auto property = makeProperty(decide_.oneIn(16) ? decide_.text() : own->name);
            fill(*property, *own);
            attempt([&] { saved->add(property); });
        }
        return saved;
    }

    /// Most often of the kind that the node has, and every field with a value of its own.
    void fill(Property& property, const Property& own) {
        property.kind = decide_.oneIn(16) ? static_cast<PropertyType>(decide_.below(9)) : own.kind;
        const bool isKnownText = !own.allowedValues.empty() && !decide_.oneIn(16);
        property.stringValue = isKnownText ? decide_.choose(own.allowedValues) : decide_.name();
        property.intValue =
            decide_.oneIn(2) ? decide_.integer() : static_cast<std::int32_t>(decide_.below(2));
        for (float& value : property.floatValues) {
            value = decide_.number();
        }
        // only to nodes before it: a cycle of references is not to be built
        if (nodes_.size() > 1 && decide_.oneIn(2)) {
            property.nodeValue = nodes_[decide_.below(nodes_.size() - 1)];
        }
    }

    std::string anyPort(std::vector<Port>& ports) {
        if (ports.empty() || decide_.oneIn(16)) {
            return decide_.text();
        }
        Port& port = ports[decide_.below(ports.size())];
        port.connected = !decide_.oneIn(16);
        return port.name;
    }

    void connect() {
        const std::shared_ptr<MaterialNode>& source = nodes_[decide_.below(nodes_.size())];
        const std::shared_ptr<MaterialNode>& destination = nodes_[decide_.below(nodes_.size())];
        const auto connection = std::make_shared<NodeConnection>();
        connection->sourceNode = source;
        connection->destinationNode = destination;
        connection->sourcePort = anyPort(source->outputs);
        connection->destinationPort = anyPort(destination->inputs);
        source->outputLinks.push_back(connection);
        destination->inputLinks.push_back(connection);
        connections_.push_back(connection);
    }

    /// With whatever a host may have pushed into ports before.
    void resolve(MaterialNode& node) {
        for (std::vector<Port>* ports : {&node.inputs, &node.outputs}) {
            for (Port& port : *ports) {
                if (!port.componentCountFixed && decide_.oneIn(2)) {
                    port.componentCount = static_cast<std::uint32_t>(1 + decide_.below(4));
                    port.componentCountKnown = true;
                }
                if (!port.precisionFixed && decide_.oneIn(2)) {
                    port.precision = static_cast<std::uint32_t>(decide_.below(13));
                    port.precisionKnown = true;
                }
            }
        }
        if (!decide_.oneIn(16)) {
            node.resolveComponentCounts();
            node.resolvePrecision();
        }
    }

    static void generate(MaterialNode& node, GraphGenerator& generator) {
        const std::size_t before = generator.graph->nodes.size();
        attempt([&] { node.generateCode(generator); });
        for (std::size_t i = before; i < generator.graph->nodes.size(); ++i) {
            const GeneratorNode& generated = *generator.graph->nodes[i];
            attempt([&] { require(!describe(generated).empty(), "A generator node has no description."); });
            require(generated.kind == NodeKind::Function || isValidVariableName(generated.name),
                    joinText({"A parameter is called \"", generated.name, "\"."}));
        }
    }

    static void present(MaterialNode& node, BindingCollection& bindings) {
        node.caption();
        const std::size_t before = bindings.bindings.size();
        // a host that updates nodes before it asks them for bindings does not get here otherwise
        if (!attempt([&] { node.updateFromProperties(nullptr); })) {
            return;
        }
        attempt([&] { node.addBindings(bindings); });
        require((bindings.bindings.size() > before) == node.generatesBinding(),
                "A node presents bindings, and says that it does not, or the other way round.");
        for (std::size_t i = before; i < bindings.bindings.size(); ++i) {
            require(!annotationsOf(*bindings.bindings[i]).empty(), "A binding has no annotations.");
        }
    }

    Decisions& decide_;
    CoreNodeFactory factory_;
    std::vector<std::shared_ptr<MaterialNode>> nodes_;
    std::vector<std::shared_ptr<NodeConnection>> connections_;
};

} // namespace

/// Whatever is saved of nodes: they take it or throw ShaderError, and then do or refuse everything else.
void runDecided(Decisions& decide) { NodeFuzzer(decide).fuzz(); }

} // namespace patina::fuzz
