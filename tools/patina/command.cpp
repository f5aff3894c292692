#include "tools/patina/command.h"

#include "tools/patina/terminal.h"

#include <exception>
#include <new>

namespace patina::tool {

void addPluginOption(CLI::App& command, CommandLine& commandLine) {
    command
        .add_option(
            "--plugin", commandLine.plugins,
            "a plug-in to load; may be given repeatedly, and comes before those of PATINA_PLUGIN_PATH and "
            "those installed with patina")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->check(notEmpty());
}

PluginSet loadPlugins(const CommandLine& commandLine) {
    PluginSet plugins;
    for (const std::string& file : commandLine.plugins) {
        plugins.add(file);
    }
    for (const std::filesystem::path& directory : pluginSearchPath(commandLine.program)) {
        plugins.addDirectory(directory);
    }
    return plugins;
}

Material loadMaterial(const std::filesystem::path& document, const PluginSet& plugins) {
    Warnings warnings;
    try {
        Material material = buildMaterial(readMaterial(document), plugins, warnings);
        printWarnings(warnings);
        return material;
    } catch (...) {
        printWarnings(warnings);
        throw;
    }
}

CLI::Validator notEmpty() {
    return {[](const std::string& name) { return std::string(name.empty() ? "the name is empty" : ""); }, ""};
}

void printWarnings(const Warnings& warnings) {
    for (const Warning& warning : warnings) {
        printDiagnostic(diagnosticText(warning.position, "warning", warning.text));
    }
}

std::string errorLine() {
    try {
        throw;
    } catch (const HostError& error) {
        return error.what();
    } catch (const std::bad_alloc&) {
        return "error: out of memory";
    } catch (const std::exception& error) {
        return diagnosticText({}, "error", error.what());
    } catch (...) {
        return "error: a plug-in failed with something that is no exception";
    }
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace patina::tool
