// A plug-in that exports more than anybody wants to read about.

#include "plugin/plugin.h"

/// Something to export, as often as it is asked for.
template <int number>
struct Studio {
    PATINA_EXPORT static int helper() { return number; }
};

template struct Studio<0>;
template struct Studio<1>;
template struct Studio<2>;
template struct Studio<3>;
template struct Studio<4>;
template struct Studio<5>;
template struct Studio<6>;
template struct Studio<7>;
template struct Studio<8>;
template struct Studio<9>;
template struct Studio<10>;

std::uint32_t GetMaterialLibVersion() { return patina::materialLibVersion; }

patina::NodeFactory* CreateNodeFactory() { return nullptr; }
