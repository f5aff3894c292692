// Half a plug-in: a version and nothing to make a factory with.

#include "plugin/plugin.h"

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }
