#include "host/resolve.h"

#include "nodemodel/text.h"

#include <cstdint>
#include <vector>

namespace patina {

using namespace detail;

namespace {

constexpr std::uint32_t floatPrecision = 2;
constexpr std::uint32_t halfPrecision = 3;

/// The connections of each node, by item index.
struct Links {
    std::vector<std::vector<const MaterialConnection*>> incoming;
    std::vector<std::vector<const MaterialConnection*>> outgoing;
};

Links linksOf(const Material& material) {
    Links links;
    links.incoming.resize(material.items.size());
    links.outgoing.resize(material.items.size());
    for (const MaterialConnection& connection : material.connections) {
        // a placeholder has no ports to push anything into
        if (material.items[connection.source].placeholder ||
            material.items[connection.destination].placeholder) {
            continue;
        }
        links.incoming[connection.destination].push_back(&connection);
        links.outgoing[connection.source].push_back(&connection);
    }
    return links;
}

Port& outputOf(const Material& material, const MaterialConnection& connection) {
    return material.items[connection.source].node->outputPort(connection.record->sourcePort);
}

Port& inputOf(const Material& material, const MaterialConnection& connection) {
    return material.items[connection.destination].node->inputPort(connection.record->destinationPort);
}

void forgetResolution(std::vector<Port>& ports) {
    for (Port& port : ports) {
        port.componentCountKnown = port.componentCountFixed;
        port.componentCountConflict = false;
        port.precisionKnown = port.precisionFixed;
    }
}

/// What messages say of a connected input: `"in_value1" (3 components, from node "paint" ("Paint"))`.
std::string describeInput(const Material& material, const MaterialConnection& connection) {
    return joinText({"\"", connection.record->destinationPort, "\" (",
                     std::to_string(inputOf(material, connection).componentCount), " components, from ",
                     nodeTitle(material.items[connection.source]), ")"});
}

/// Reports the first two connected, free inputs whose widths cannot be combined.
void checkConflict(const Material& material, const MaterialItem& item,
                   const std::vector<const MaterialConnection*>& incoming) {
    const MaterialConnection* wide = nullptr;
    for (const MaterialConnection* connection : incoming) {
        const Port& input = inputOf(material, *connection);
        if (!input.componentCountConflict || input.componentCount == 1) {
            continue;
        }
        if (wide == nullptr) {
            wide = connection;
        } else if (inputOf(material, *wide).componentCount != input.componentCount) {
            throw HostError({material.file, connection->line},
                            joinText({nodeTitle(item), ": its inputs ", describeInput(material, *wide),
                                      " and ", describeInput(material, *connection),
                                      " have different widths; make them equal, or make one a scalar"}));
        }
    }
}

/// Spares what comes after a node that failed errors that only follow from that.
void assumeScalars(std::vector<Port>& outputs) {
    for (Port& output : outputs) {
        if (!output.componentCountKnown) {
            output.componentCount = 1;
            output.componentCountKnown = true;
        }
    }
}

void resolveComponentCounts(Material& material, const Links& links, Errors* errors) {
    for (const std::size_t index : material.downstream) {
        MaterialItem& item = material.items[index];
        for (const MaterialConnection* connection : links.incoming[index]) {
            Port& input = inputOf(material, *connection);
            if (!input.componentCountFixed) {
                input.componentCount = outputOf(material, *connection).componentCount;
                input.componentCountKnown = true;
            }
        }
        const bool isResolved = attempt(errors, [&] {
            onBehalfOf(material, item, item.line, [&] { item.node->resolveComponentCounts(); });
            checkConflict(material, item, links.incoming[index]);
        });
        if (!isResolved) {
            item.faulty = true;
            assumeScalars(item.node->outputs);
        }
    }
}

void resolvePrecisions(Material& material, const Links& links, Errors* errors) {
    for (auto index = material.downstream.rbegin(); index != material.downstream.rend(); ++index) {
        MaterialItem& item = material.items[*index];
        for (const MaterialConnection* connection : links.outgoing[*index]) {
            Port& output = outputOf(material, *connection);
            if (output.precisionFixed) {
                continue;
            }
            // one consumer that needs float is enough
            const bool needsFloat = inputOf(material, *connection).precision == floatPrecision;
            if (needsFloat || !output.precisionKnown) {
                output.precision = needsFloat ? floatPrecision : halfPrecision;
                output.precisionKnown = true;
            }
        }
        const bool isResolved = attempt(
            errors, [&] { onBehalfOf(material, item, item.line, [&] { item.node->resolvePrecision(); }); });
        item.faulty = item.faulty || !isResolved;
    }
}

} // namespace

void resolveMaterial(Material& material, Errors* errors) {
    for (const MaterialItem& item : material.items) {
        forgetResolution(item.node->inputs);
        forgetResolution(item.node->outputs);
    }
    const Links links = linksOf(material);
    resolveComponentCounts(material, links, errors);
    resolvePrecisions(material, links, errors);
}

} // namespace patina
