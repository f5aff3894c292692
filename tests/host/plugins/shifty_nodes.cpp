// A node whose ports follow a number, its own or that of a node it refers to, and that refuses too many.

#include "nodemodel/nodemodel.h"
#include "nodemodel/shader_error.h"
#include "plugin/plugin.h"

#include "tests/support/table_factory.h"

#include <memory>
#include <string>

namespace {

using namespace patina;

class ShiftyNode : public MaterialNode {
public:
    ShiftyNode() : MaterialNode("ShiftyNode") {
        ports_ = addProperty("Ports", "Ports: how many outputs there are.");
        ports_->setInteger(1);
        most_ = addProperty("Most", "Most: how many outputs there may be.");
        most_->setInteger(9);
        other_ = addProperty("Other", "Other: the node whose number of ports this one takes over.");
        other_->addNodeTypename("ShiftyNode");
        ShiftyNode::updateFromProperties(nullptr);
    }

    void updateFromProperties(void* /*hostContext*/) override {
        outputs.clear();
        if (other_->getNode()) {
            ports_->copyFrom(*other_->getNode()->properties->find("Ports"));
        }
        ports_->editable = !other_->getNode();
        if (ports_->getInteger() > most_->getInteger()) {
            throw ShaderError("too many ports");
        }
        for (std::int32_t i = 0; i < ports_->getInteger(); ++i) {
            outputs.emplace_back("out" + std::to_string(i));
            outputs.back().setComponentCount(1);
        }
    }

    void generateCode(GraphGenerator& /*generator*/) override {}

private:
    std::shared_ptr<Property> ports_;
    std::shared_ptr<Property> most_;
    std::shared_ptr<Property> other_;
};

constexpr testing::OfferedType types[] = {{"ShiftyNode", testing::createPlain<ShiftyNode>}};

} // namespace

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new patina::testing::TableFactory(types); }
