// Nodes whose code is verified, and that no compiler takes.

#include "nodemodel/nodemodel.h"
#include "plugin/plugin.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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
    std::string type;
    std::string code;
};

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

/// What is nested as deep as each number says, the function's own braces among the brackets.
std::vector<WrongCode> nestedCodes(const std::string& type, int brackets, int signs, int loops,
                                   int alternatives) {
    const std::string begin = "\tout_colour = value;\n\tfloat part = ";
    return {
        {type + "Brackets", begin + repeated("(", brackets - 1) + "1" + repeated(")", brackets - 1) + ";\n"},
        {type + "Blocks", begin + "1;\n" + repeated("{", brackets - 1) + repeated("}", brackets - 1)},
        {type + "Signs", begin + repeated("- ", signs - 5) + "1; // " + repeated("(", 1000) + "\n"},
        {type + "Loops", begin + "1;\n\twhile ( part > 2 ) " +
                             repeated("for ( part = 1; part > 1; part = 1 ) ", loops - 1) + "part = 1;\n"},
        {type + "Alternatives", begin + "1;\n\tif ( part > 1 ) part = 1;\n" +
                                    repeated("else if ( part > 2 ) part = 2;\n", alternatives)},
    };
}

std::vector<WrongCode> makeWrongCodes() {
    std::vector<WrongCode> codes = {
        {"UndeclaredName", "\tout_colour = value * nowhere;\n"},
        {"WrongType", "\tsampler2D colour = value;\n\tout_colour = value;\n"},
        {"RenamesTheFramework", "\tout_colour = value;\n#define QelShade Nothing\n"},
        {"OpenBrace", "\tout_colour = value; // }\n\t{\n"},
        {"ClosedBrace", "\tout_colour = value;\n\t}\n"},
        {"ReversedBraces", "\tout_colour = value;\n\t} }\n\t{ {\n"},
        {"ClosedBracket", "\tout_colour = value );\n"},
        {"Comments", "\tout_colour = value; // {\n\t/* } */\n"},
        {"MovesLines", "#line 5000\n\tout_colour = value * nowhere;\n"},
    };
    constexpr int brackets = 256;
    constexpr int signs = 8192;
    constexpr int loops = 128;
    constexpr int alternatives = 1024;
    constexpr int absurd = 200000;
    for (const std::vector<WrongCode>& nested :
         {nestedCodes("Deep", brackets, signs, loops, alternatives),
          nestedCodes("TooDeep", brackets + 1, signs + 5, loops + 1, alternatives + 1),
          nestedCodes("Absurd", absurd, absurd, absurd, absurd)}) {
        codes.insert(codes.end(), nested.begin(), nested.end());
    }
    return codes;
}

const std::vector<WrongCode>& wrongCodes() {
    static const std::vector<WrongCode> codes = makeWrongCodes();
    return codes;
}

class Factory : public NodeFactory {
public:
    Factory() {
        for (const auto& [type, code] : wrongCodes()) {
            nodeLibrary.emplace_back(type);
        }
    }

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override {
        const auto hasName = [&](const WrongCode& entry) { return typeName == entry.type; };
        const auto entry = std::find_if(wrongCodes().begin(), wrongCodes().end(), hasName);
        return std::make_shared<WrongNode>(typeName, entry->code);
    }
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return materialLibVersion; }

NodeFactory* CreateNodeFactory() { return new Factory(); }
