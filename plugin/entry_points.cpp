#include "plugin/core_node_factory.h"

#include <new>

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

// GCOVR_EXCL_BR_START: null only where memory is out, which no test takes away
patina::NodeFactory* CreateNodeFactory() { return new (std::nothrow) patina::CoreNodeFactory(); }
// GCOVR_EXCL_BR_STOP
