// Nodes whose code is verified, and that no compiler takes.

#include "nodemodel/nodemodel.h"
#include "plugin/plugin.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace patina;

/// Gives a colour by a line of code that is wrong.
class WrongNode : public MaterialNode {
public:
    WrongNode(const std::string& type, std::string code) : MaterialNode(type), code_(std::move(code)) {
        setName("Wrong");
        outputs.emplace_back("out_colour");
        outputs.back().setComponentCount(3);
        outputs.back().setPrecision(static_cast<std::int32_t>(ComponentType::Float));
    }

    void generateCode(GraphGenerator& generator) override {
        FunctionBuilder builder;
        builder.addOutputPort(outputs.front());
        builder.appendCode("\tfloat3 value = float3( 1, 1, 1 );\n");
        builder.appendCode(code_);
        const auto function = builder.makeNode(ExecutionLevel::Fragment, "wrongCode");
        generator.addNode(function);
        attachLinks(generator, function);
    }

private:
    std::string code_;
};

struct WrongCode {
    const char* type;
    const char* code;
};

constexpr WrongCode wrongCodes[] = {
    {"UndeclaredName", "\tout_colour = value * nowhere;\n"},
    {"WrongType", "\tsampler2D colour = value;\n\tout_colour = value;\n"},
    {"RenamesTheFramework", "\tout_colour = value;\n#define QelShade Nothing\n"},
    {"OpenBrace", "\tout_colour = value; // }\n\t{\n"},
    {"ClosedBrace", "\tout_colour = value;\n\t}\n"},
    {"Comments", "\tout_colour = value; // {\n\t/* } */\n"},
    {"MovesLines", "#line 5000\n\tout_colour = value * nowhere;\n"},
};

class Factory : public NodeFactory {
public:
    Factory() {
        for (const auto& [type, code] : wrongCodes) {
            nodeLibrary.emplace_back(type);
        }
    }

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override {
        const auto hasName = [&](const WrongCode& entry) { return typeName == entry.type; };
        const auto* entry = std::find_if(std::begin(wrongCodes), std::end(wrongCodes), hasName);
        return std::make_shared<WrongNode>(typeName, entry->code);
    }
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return materialLibVersion; }

NodeFactory* CreateNodeFactory() { return new Factory(); }
