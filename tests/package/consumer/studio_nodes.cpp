#include <bindings/bindings.h>
#include <nodemodel/nodemodel.h>
#include <plugin/plugin.h>
#include <shadergraph/shadergraph.h>

namespace {

using namespace patina;

/// A grey that the studio likes.
class StudioGrey final : public MaterialNode {
public:
    StudioGrey() : MaterialNode("StudioGrey") {
        outputs.emplace_back("out_grey", "grey").setComponentCount(1);
    }

    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputPort("out_grey"));
        builder.appendCode("\tout_grey = 0.18;\n");
        const auto function = builder.makeNode(ExecutionLevel::Automatic, "studioGrey");
        generator.addNode(function);
        attachLinks(generator, function);
    }
};

class StudioFactory final : public NodeFactory {
public:
    StudioFactory() { nodeLibrary.emplace_back("StudioGrey"); }

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override {
        if (typeName == "StudioGrey") {
            return std::make_shared<StudioGrey>();
        }
        throw ShaderError("cannot create \"" + typeName + "\" node");
    }
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new StudioFactory(); }
