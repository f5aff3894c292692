// A plug-in that offers a type of its own and one that the Core plug-in offers too.

#include "plugin/plugin.h"

namespace {

class Factory : public patina::NodeFactory {
public:
    Factory() {
        nodeLibrary.emplace_back("SecondNode");
        nodeLibrary.emplace_back("CoreUv");
    }

    std::shared_ptr<patina::MaterialNode> createNode(const std::string& /*typeName*/) override {
        return nullptr;
    }
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new Factory(); }
