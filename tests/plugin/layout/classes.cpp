// Compiled only for the compiler's account of these classes; see virtual_table_test.cpp.

#include "bindings/binding.h"
#include "plugin/plugin.h"

namespace patina {

/// Overrides everything, the pure operation included, so that each slot shows a name.
class DumpedNode : public MaterialNode {
public:
    DumpedNode() : MaterialNode("Dumped") {}
    ~DumpedNode() override;
    void updateFromProperties(void*) override {}
    std::string caption() const override { return {}; }
    void resolveComponentCounts() override {}
    void resolvePrecision() override {}
    void generateCode(GraphGenerator&) override {}
    bool generatesBinding() const override { return false; }
    void addBindings(BindingCollection&) override {}
    void loadProperties(const std::shared_ptr<PropertySet>&) override {}
};

DumpedNode::~DumpedNode() = default;

class DumpedFactory : public NodeFactory {
public:
    ~DumpedFactory() override;
    std::shared_ptr<MaterialNode> createNode(const std::string&) override { return nullptr; }
};

DumpedFactory::~DumpedFactory() = default;

} // namespace patina
