#include "host/plugin_checks.h"

#include "host/checks/checks.h"

#include <algorithm>
#include <array>

namespace patina {

using namespace detail;

namespace {

constexpr std::array<PluginCheck, 19> checks = {{
    {"entry-points", "both entry points are exported and can be called", true, checkEntryPoints},
    {"exports", "nothing but the entry points is exported", false, checkExports},
    {"version", "the plug-in speaks this host's version of the interface", true, checkVersion},
    {"factory", "each call makes a new node factory", true, checkFactory},
    {"library", "the node types have unique type names, display names and categories", false, checkLibrary},
    {"creation", "every listed type can be created, and no other", false, checkCreation},
    {"icons", "every creatable type has a well-formed XPM icon of 32 by 32", false, checkIcons},
    {"standard-properties", "the eight standard properties come first", false, checkStandardProperties},
    {"help-texts", "help texts begin with the property's name and a colon", false, checkHelpTexts},
    {"properties", "names are unique, and enums have one of their values", false, checkProperties},
    {"ports", "ports have unique names that Cg accepts, labels, and one to four components", false,
     checkPorts},
    {"update", "updating a node twice is the same as once", false, checkUpdate},
    {"resolution", "resolving ports twice is the same as once, and leaves none unknown", false,
     checkResolution},
    {"loading", "a node takes back its own properties, and refuses those of a newer version", false,
     checkLoading},
    {"generation", "code is well formed and joined to every connection, or refused", false, checkGeneration},
    {"determinism", "equal nodes generate equal code", false, checkDeterminism},
    {"bindings", "bindings survive being written and read, and are announced", false, checkBindings},
    {"threads", "nodes can be created in many threads at once", false, checkThreads},
    {"reloading", "the plug-in can be loaded, used and unloaded repeatedly", false, checkReloading},
}};

} // namespace

std::span<const PluginCheck> pluginChecks() { return checks; }

const PluginCheck* findPluginCheck(std::string_view name) {
    const auto* found = std::find_if(checks.begin(), checks.end(),
                                     [&](const PluginCheck& check) { return check.name == name; });
    return found == checks.end() ? nullptr : found;
}

void runPluginCheck(const PluginCheck& check, const std::filesystem::path& plugin, CheckListener& listener) {
    CheckContext context(plugin, listener);
    context.examine({}, {}, [&] { check.run(context); });
}

} // namespace patina
