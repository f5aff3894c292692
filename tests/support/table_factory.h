#pragma once

#include "nodemodel/nodemodel.h"
#include "plugin/plugin.h"

#include <memory>
#include <span>
#include <string>

namespace patina::testing {

/// A node type of a plug-in, and what makes its nodes.
struct OfferedType {
    const char* name;
    std::shared_ptr<MaterialNode> (*create)(const std::string& typeName);
};

/// For types that need not be told their names.
template <typename Node>
std::shared_ptr<MaterialNode> createPlain(const std::string& /*typeName*/) {
    return std::make_shared<Node>();
}

/// The factory of a plug-in whose types stand in a table, which must outlive it.
class TableFactory final : public NodeFactory {
public:
    explicit TableFactory(std::span<const OfferedType> types) : types_(types) {
        for (const OfferedType& type : types) {
            nodeLibrary.emplace_back(type.name);
        }
    }

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override {
        for (const OfferedType& type : types_) {
            if (typeName == type.name) {
                return type.create(typeName);
            }
        }
        throw ShaderError("cannot create \"" + typeName + "\" node");
    }

private:
    std::span<const OfferedType> types_;
};

} // namespace patina::testing
