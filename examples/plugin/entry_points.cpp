#include "example_factory.h"

#include <new>

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return new (std::nothrow) example::ExampleFactory(); }
