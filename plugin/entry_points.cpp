#include "plugin/core_node_factory.h"

#include <memory>
#include <new>

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() {
    try {
        return std::make_unique<patina::CoreNodeFactory>().release();
    } catch (const std::bad_alloc&) { // GCOVR_EXCL_BR_LINE: nothing else is thrown
        return nullptr;               // callers in C have no use for an exception
    }
}
