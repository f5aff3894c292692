#include "host/generate.h"

#include "host/framework_values.h"

namespace patina {

GeneratedGraph generateGraph(const Material& material, Errors* errors) {
    GeneratedGraph result;
    result.generator.graph->interfaceProviders.push_back(makeFrameworkValues());
    result.incomplete.resize(material.items.size(), false);
    const auto generate = [&](std::size_t index) {
        const MaterialItem& item = material.items[index];
        const auto generateCode = [&] {
            onBehalfOf(material, item, item.line, [&] { item.node->generateCode(result.generator); });
        };
        result.incomplete[index] = isStandIn(item) || !attempt(errors, generateCode);
        result.owners.resize(result.generator.graph->nodes.size(), index);
    };
    // what a missing node type breaks elsewhere would only hide the reason
    for (std::size_t index = 0; index < material.items.size(); ++index) {
        if (material.items[index].placeholder) {
            generate(index);
        }
    }
    for (std::size_t index = 0; index < material.items.size(); ++index) {
        if (!material.items[index].placeholder) {
            generate(index);
        }
    }
    return result;
}

} // namespace patina
