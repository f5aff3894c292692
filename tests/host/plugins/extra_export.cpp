// A plug-in that exports a third function.

#include "plugin/plugin.h"

extern "C" {
PATINA_EXPORT int studioHelper();
}

int studioHelper() { return 1; }

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return nullptr; }
