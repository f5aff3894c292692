// A plug-in whose factory cannot be made; the exception is code of the plug-in.

#include "plugin/plugin.h"

#include <exception>

namespace {

class LicenceMissing : public std::exception {
public:
    const char* what() const noexcept override { return "the licence is missing"; }
};

} // namespace

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { throw LicenceMissing(); }
