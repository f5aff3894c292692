// A plug-in that exports a third function, and what some linkers export.

#include "plugin/plugin.h"

extern "C" {
PATINA_EXPORT int studioHelper();
PATINA_EXPORT extern int _fbss;
}

int studioHelper() { return 1; }

int _fbss = 0;

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return nullptr; }
