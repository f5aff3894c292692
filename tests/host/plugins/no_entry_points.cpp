// A module that is no plug-in.

#include "plugin/export.h"

extern "C" {
PATINA_EXPORT int somethingElse();
}

int somethingElse() { return 1; }
