#include "plugin/core_node_factory.h"

#include <new>

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() {
    try {
        return new patina::CoreNodeFactory();
    } catch (const std::bad_alloc&) {
        return nullptr; // callers in C have no use for an exception
    }
}
