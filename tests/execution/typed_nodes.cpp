// A plug-in whose node copies a value of the type that it is told, whatever its readers ask for. Core nodes
// take the type that their readers need, so that some conversions never stand between two of them.

#include "nodemodel/nodemodel.h"
#include "plugin/plugin.h"
#include "shadergraph/shadergraph.h"

#include "tests/support/table_factory.h"

#include <cstdint>
#include <memory>
#include <string>

namespace {

using namespace patina;

constexpr const char* typedCopy = "TypedCopy";

class TypedCopyNode : public MaterialNode {
public:
    TypedCopyNode() : MaterialNode(typedCopy) {
        setName("Typed");
        componentType_ = addProperty("Component Type", "Component Type: \"float\", \"half\" or \"fixed\".");
        componentType_->setString("float");
        componentCount_ = addProperty("Component Count", "Component Count: 1 to 4.");
        componentCount_->setInteger(1);
        inputs.emplace_back("in_value");
        outputs.emplace_back("out_value");
        TypedCopyNode::updateFromProperties(nullptr);
    }

    void updateFromProperties(void* /*hostContext*/) override {
        const auto count = static_cast<std::uint32_t>(componentCount_->getInteger());
        inputs.front().setComponentCount(count);
        outputs.front().setComponentCount(count);
    }

    void generateCode(GraphGenerator& generator) override {
        const ShaderType type = {componentType(), componentCount_->getInteger(), 1, 1};
        FunctionBuilder builder;
        builder.addInput(type, "in_value");
        builder.addOutput(type, "out_value");
        builder.appendCode("\tout_value = in_value;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "typedCopy");
        generator.addNode(function);
        attachLinks(generator, function);
    }

private:
    ComponentType componentType() const {
        const std::string& name = componentType_->getString();
        return name == "half"    ? ComponentType::Half
               : name == "fixed" ? ComponentType::Fixed
                                 : ComponentType::Float;
    }

    std::shared_ptr<Property> componentType_;
    std::shared_ptr<Property> componentCount_;
};

constexpr testing::OfferedType types[] = {{typedCopy, testing::createPlain<TypedCopyNode>}};

} // namespace

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new patina::testing::TableFactory(types); }
