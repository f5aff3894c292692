#pragma once

// The checks of plug-ins, by subject; plugin_checks.cpp has the table of them.

#include "host/checks/check_context.h"

namespace patina::detail {

// The module (module_checks.cpp)
void checkEntryPoints(CheckContext& context);
void checkExports(CheckContext& context);
void checkVersion(CheckContext& context);
void checkFactory(CheckContext& context);
void checkThreads(CheckContext& context);
void checkReloading(CheckContext& context);

// What it offers (library_checks.cpp)
void checkLibrary(CheckContext& context);
void checkCreation(CheckContext& context);
void checkIcons(CheckContext& context);

// Properties (property_checks.cpp)
void checkStandardProperties(CheckContext& context);
void checkHelpTexts(CheckContext& context);
void checkProperties(CheckContext& context);
void checkLoading(CheckContext& context);

// Ports (port_checks.cpp)
void checkPorts(CheckContext& context);
void checkUpdate(CheckContext& context);
void checkResolution(CheckContext& context);

// What a node gives (output_checks.cpp)
void checkGeneration(CheckContext& context);
void checkDeterminism(CheckContext& context);
void checkBindings(CheckContext& context);

} // namespace patina::detail
