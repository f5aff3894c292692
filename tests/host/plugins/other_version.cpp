// A plug-in of a later interface. Its factory must not be made.

#include "plugin/plugin.h"

#include <cstdlib>

std::uint32_t GetMaterialLibVersion() { return 6; }

patina::NodeFactory* CreateNodeFactory() { std::abort(); }
