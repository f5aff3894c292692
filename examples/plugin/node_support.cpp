#include "node_support.h"

namespace example {

using namespace patina;

void addFloatPort(std::vector<Port>& ports, const std::string& name, const std::string& label,
                  std::uint32_t componentCount) {
    Port& port = ports.emplace_back(name, label);
    port.setComponentCount(componentCount);
    port.setPrecision(static_cast<std::uint32_t>(ComponentType::Float));
}

void emitFunction(GraphGenerator& generator, MaterialNode& node,
                  const std::shared_ptr<GeneratorNode>& function) {
    generator.addNode(function);
    node.attachLinks(generator, function);
}

} // namespace example
