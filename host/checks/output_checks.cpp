#include "host/checks/checks.h"
#include "host/checks/wiring.h"

#include "bindings/bindings.h"
#include "host/bindings_file.h"
#include "host/dependency_order.h"
#include "host/framework_values.h"
#include "host/xml.h"
#include "nodemodel/text.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>

namespace patina::detail {

namespace {

/// Whether the node takes part in a material at all, or stands alone in it.
enum class Connected { Everywhere, Nowhere };

/// A node that was made to generate code, if it did. The generator must go first: the plug-in made its nodes.
class Generation {
public:
    Generation(const Configuration& configuration, Connected connected, const Demand& demand)
        : node_(configuration.makeUpdatedNode()) {
        if (connected == Connected::Everywhere) {
            wiring_.emplace(node_);
        }
        pushWidths(*node_, demand);
        node_->resolveComponentCounts();
        pushPrecision(*node_, demand);
        node_->resolvePrecision();
        generator_.graph->interfaceProviders.push_back(makeFrameworkValues());
        refused_ = isRefused([&] { node_->generateCode(generator_); });
    }

    bool refused() const { return refused_; }
    const GraphGenerator& generator() const { return generator_; }
    const std::optional<WiredNode>& wiring() const { return wiring_; }

private:
    std::shared_ptr<MaterialNode> node_;
    std::optional<WiredNode> wiring_;
    GraphGenerator generator_;
    bool refused_ = false;
};

/// Everything that a pass over the demands of a configuration generates.
void forEachGeneration(CheckContext& context,
                       const std::function<void(const Configuration&, Connected, const Demand&)>& action) {
    forEachConfiguration(context, Types::Creatable, [&](const Configuration& configuration) {
        for (const Connected connected : {Connected::Everywhere, Connected::Nowhere}) {
            for (const Demand& demand : allDemands()) {
                action(configuration, connected, demand);
            }
        }
    });
}

// Code

/// The bracket that remains open, or is closed without having been opened.
std::optional<char> unbalancedBracket(std::string_view code) {
    constexpr std::string_view openers = "({[";
    constexpr std::string_view closers = ")}]";
    std::string open;
    for (const char letter : code) {
        const std::size_t closed = closers.find(letter);
        if (openers.find(letter) != std::string_view::npos) {
            open += letter;
        } else if (closed != std::string_view::npos) {
            if (open.empty() || open.back() != openers[closed]) {
                return letter;
            }
            open.pop_back();
        }
    }
    return open.empty() ? std::nullopt : std::optional(open.back());
}

bool isWordPart(char letter) { return isValidVariableName(std::string{'_', letter}); }

/// The first word that is how a number without a value is printed.
std::string unprintableNumber(std::string_view code) {
    constexpr std::array<std::string_view, 5> words = {"inf", "nan", "inff", "nanf", "infinity"};
    while (!code.empty()) {
        const auto* end = std::find_if_not(code.begin(), code.end(), isWordPart);
        std::string word = lowerCase(std::string(code.begin(), end));
        if (std::find(words.begin(), words.end(), word) != words.end()) {
            return word;
        }
        code.remove_prefix(std::max<std::size_t>(word.size(), 1));
    }
    return {};
}

void checkCode(CheckContext& context, const GeneratorNode& function) {
    if (const auto bracket = unbalancedBracket(function.code)) {
        context.report({"the brackets in the code of ", inQuotes(function.name), " are not balanced: a ",
                        inQuotes(std::string_view(&*bracket, 1)), " has no counterpart"});
    }
    const std::string number = unprintableNumber(function.code);
    context.require(number.empty(), {"the code of ", inQuotes(function.name), " has a constant ",
                                     inQuotes(number), ", which Cg does not know"});
}

// Links

using Ports = std::vector<GeneratorPort> GeneratorNode::*;

bool hasPort(const PortLinkEnd& end, Ports ports) {
    const auto& list = (*end.node).*ports;
    return std::any_of(list.begin(), list.end(),
                       [&](const GeneratorPort& port) { return port.name == end.port; });
}

void checkLinkEnd(CheckContext& context, const GraphGenerator& generator, const PortLinkEnd& end, Ports ports,
                  const std::string& portName) {
    if (!end.node) {
        context.report({"nothing is linked to the port ", inQuotes(portName)});
        return;
    }
    context.require(generator.nodeMap.count(end.node) != 0,
                    {"the port ", inQuotes(portName), " is linked to ", describe(*end.node),
                     ", which was not added to the generator"});
    context.require(hasPort(end, ports),
                    {"the port ", inQuotes(portName), " is linked to the port ", inQuotes(end.port), " of ",
                     describe(*end.node), ", which has no such port"});
}

void checkLinks(CheckContext& context, const GraphGenerator& generator, const WiredNode& wiring) {
    for (const std::shared_ptr<NodeConnection>& connection : wiring.incoming()) {
        const auto link = generator.portLinks.find(connection);
        if (link == generator.portLinks.end() || link->second.consumers.empty()) {
            context.report(
                {"nothing is linked to the connected input ", inQuotes(connection->destinationPort)});
            continue;
        }
        for (const PortLinkEnd& consumer : link->second.consumers) {
            checkLinkEnd(context, generator, consumer, &GeneratorNode::inputs, connection->destinationPort);
        }
    }
    for (const std::shared_ptr<NodeConnection>& connection : wiring.outgoing()) {
        const auto link = generator.portLinks.find(connection);
        checkLinkEnd(context, generator,
                     link == generator.portLinks.end() ? PortLinkEnd() : link->second.producer,
                     &GeneratorNode::outputs, connection->sourcePort);
    }
}

/// The inputs of functions that get a value, from another generated node or from the material.
std::set<std::pair<const GeneratorNode*, std::string>> fedInputs(const GraphGenerator& generator) {
    std::set<std::pair<const GeneratorNode*, std::string>> fed;
    for (const std::shared_ptr<GeneratorEdge>& edge : generator.graph->edges) {
        fed.emplace(edge->head.lock().get(), edge->headPort);
    }
    for (const auto& [connection, link] : generator.portLinks) {
        for (const PortLinkEnd& consumer : link.consumers) {
            fed.emplace(consumer.node.get(), consumer.port);
        }
    }
    return fed;
}

void checkFunctions(CheckContext& context, const GraphGenerator& generator) {
    const auto fed = fedInputs(generator);
    for (const std::shared_ptr<GeneratorNode>& node : generator.graph->nodes) {
        if (node->kind != NodeKind::Function) {
            continue;
        }
        checkCode(context, *node);
        for (const GeneratorPort& input : node->inputs) {
            context.require(
                fed.count({node.get(), input.name}) != 0,
                {"nothing gives a value to the input ", inQuotes(input.name), " of ", describe(*node)});
        }
    }
}

void checkAcyclic(CheckContext& context, const Graph& graph) {
    std::map<const GeneratorNode*, std::size_t> indices;
    for (const std::shared_ptr<GeneratorNode>& node : graph.nodes) {
        indices.emplace(node.get(), indices.size());
    }
    Dependencies dependencies(graph.nodes.size());
    for (const std::shared_ptr<GeneratorEdge>& edge : graph.edges) {
        dependencies.add(indices.at(edge->head.lock().get()), indices.at(edge->tail.lock().get()));
    }
    const std::vector<std::size_t> cycle = orderByDependencies(dependencies).cycle;
    if (!cycle.empty()) {
        context.report({"the generated nodes feed each other in a circle: one is ",
                        describe(*graph.nodes[cycle.front()])});
    }
}

// Determinism

/// All that a generator was filled with, without addresses.
NodeState graphState(const Generation& generation) {
    if (generation.refused()) {
        return {"a refusal"};
    }
    NodeState state;
    const Graph& graph = *generation.generator().graph;
    for (const std::shared_ptr<GeneratorNode>& node : graph.nodes) {
        state.push_back(describe(*node));
        state.push_back("the code " + inQuotes(node->code));
        for (const GeneratorPort& input : node->inputs) {
            state.push_back("the input " + declaration(input.type, input.name));
        }
        for (const GeneratorPort& output : node->outputs) {
            state.push_back("the output " + declaration(output.type, output.name));
        }
    }
    for (const std::shared_ptr<GeneratorEdge>& edge : graph.edges) {
        state.push_back(
            joinText({"an edge from ", inQuotes(edge->tailPort), " to ", inQuotes(edge->headPort)}));
    }
    return state;
}

// Bindings

template <typename Value>
void requireField(CheckContext& context, const Binding& binding, const char* field, const Value& written,
                  const Value& read) {
    context.require(written == read, {"the ", field, " of the ", bindingKindName(binding), " binding ",
                                      inQuotes(binding.name), " is not read back as it was written"});
}

void compareTextures(CheckContext& context, const TextureBinding& written, const TextureBinding& read) {
    requireField(context, written, "sRGB flag", written.srgb, read.srgb);
    requireField(context, written, "signed expansion", written.signedExpanded, read.signedExpanded);
    requireField(context, written, "normalisation", written.normalised, read.normalised);
}

void compareBindings(CheckContext& context, const Binding& written, const Binding& read) {
    requireField(context, written, "name", written.name, read.name);
    requireField(context, written, "component count", written.componentCount(), read.componentCount());
    requireField(context, written, "description", written.description, read.description);
    requireField(context, written, "help address", written.helpUrl, read.helpUrl);
    requireField(context, written, "ui type", written.uiType, read.uiType);
    requireField(context, written, "ui label", written.uiLabel, read.uiLabel);
    requireField(context, written, "unit type", written.uiUnitType, read.uiUnitType);
    requireField(context, written, "uv set", written.uvSet, read.uvSet);
    requireField(context, written, "Cg name", written.cgName, read.cgName);
    requireField(context, written, "minimum", written.formatMin(), read.formatMin());
    requireField(context, written, "maximum", written.formatMax(), read.formatMax());
    requireField(context, written, "default", written.formatDefault(), read.formatDefault());
    // reading puts the code in lower case
    requireField(context, written, "stream type", lowerCase(written.streamType), lowerCase(read.streamType));
    requireField(context, written, "list of dataset modifiers", written.datasetModifiers,
                 read.datasetModifiers);
    requireField(context, written, "basic colour flag", written.basicColour, read.basicColour);
}

void checkBinding(CheckContext& context, const std::shared_ptr<Binding>& written) {
    if (!written) {
        context.report({"addBindings adds nothing in place of a binding"});
        return;
    }
    context.require(!written->name.empty(), {"a binding has no name"});
    const auto read = createBinding(written->kind, written->name, written->componentCount());
    if (!read) {
        context.report({"the binding ", inQuotes(written->name), " has no valid kind or no components"});
        return;
    }
    if (const std::string reason = whyNotWritable(*written); !reason.empty()) {
        context.report(
            {"the binding ", inQuotes(written->name), " cannot stand in a bindings file: ", reason});
        return;
    }
    const XmlPointer<xmlNode> element(xmlNewNode(nullptr, xmlText("binding")));
    written->writeAnnotations(element.get());
    read->readAnnotations(element.get());
    compareBindings(context, *written, *read);
    if (written->kind == BindingKind::Texture) {
        // the kind alone does not say that a plug-in's object is what hosts take it for
        const auto texture = std::dynamic_pointer_cast<TextureBinding>(written);
        if (texture == nullptr) {
            context.report({"the texture binding ", inQuotes(written->name), " is no TextureBinding"});
            return;
        }
        compareTextures(context, *texture, *toTextureBinding(read));
    }
}

} // namespace

void checkGeneration(CheckContext& context) {
    forEachGeneration(context,
                      [&](const Configuration& configuration, Connected connected, const Demand& demand) {
                          const Generation generation(configuration, connected, demand);
                          if (generation.refused()) {
                              return;
                          }
                          checkFunctions(context, generation.generator());
                          checkAcyclic(context, *generation.generator().graph);
                          if (generation.wiring()) {
                              checkLinks(context, generation.generator(), *generation.wiring());
                          }
                      });
}

void checkDeterminism(CheckContext& context) {
    forEachGeneration(
        context, [&](const Configuration& configuration, Connected connected, const Demand& demand) {
            const Generation first(configuration, connected, demand);
            const Generation second(configuration, connected, demand);
            requireSame(context, "an equal node generates other code", graphState(first), graphState(second));
        });
}

void checkBindings(CheckContext& context) {
    forEachConfiguration(context, Types::All, [&](const Configuration& configuration) {
        const auto node = configuration.makeUpdatedNode();
        const bool announced = node->generatesBinding();
        BindingCollection collection;
        node->addBindings(collection);
        context.require(announced || collection.bindings.empty(),
                        {"addBindings adds bindings, although generatesBinding says that it does not"});
        context.require(!announced || !collection.bindings.empty(),
                        {"addBindings adds nothing, although generatesBinding says that it does"});
        for (const std::shared_ptr<Binding>& binding : collection.bindings) {
            checkBinding(context, binding);
        }
    });
}

} // namespace patina::detail
