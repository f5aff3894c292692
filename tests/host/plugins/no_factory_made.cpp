// A plug-in that had no memory for its factory.

#include "plugin/plugin.h"

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return nullptr; }
