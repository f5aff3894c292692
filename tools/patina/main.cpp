#include "host/host.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr int success = 0;
constexpr int failure = 1;
constexpr int wrongUsage = 2;

struct Options {
    std::vector<std::string> plugins;
    std::string material;
    std::string directory = ".";
    bool quiet = false;
};

std::filesystem::path programPath(const char* firstArgument) {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::absolute(firstArgument) : path;
}

patina::PluginSet loadPlugins(const Options& options, const std::filesystem::path& program) {
    patina::PluginSet plugins;
    for (const std::string& file : options.plugins) {
        plugins.add(file);
    }
    for (const std::filesystem::path& directory : patina::pluginSearchPath(program)) {
        plugins.addDirectory(directory);
    }
    return plugins;
}

void printWarnings(const patina::Warnings& warnings) {
    for (const patina::Warning& warning : warnings) {
        std::cerr << patina::diagnosticText(warning.position, "warning", warning.text) << '\n';
    }
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void printSummary(const patina::ExportedMaterial& exported, const std::filesystem::path& directory) {
    std::cout << exported.name << ": " << counted(exported.nodeCount, "node") << ", "
              << counted(exported.connectionCount, "connection") << ", "
              << counted(exported.interpolantCount, "interpolant register") << "\n"
              << "  " << (directory / exported.vertexProgram.name).string() << ": "
              << counted(exported.vertexFunctionCount, "call") << "\n"
              << "  " << (directory / exported.fragmentProgram.name).string() << ": "
              << counted(exported.fragmentFunctionCount, "call") << "\n"
              << "  " << (directory / exported.bindings.name).string() << ": "
              << counted(exported.bindingCount, "binding") << "\n";
}

int runExport(const Options& options, const std::filesystem::path& program) {
    const patina::PluginSet plugins = loadPlugins(options, program);
    patina::Warnings warnings;
    try {
        const auto exported = patina::exportDocument(options.material, options.directory, plugins, warnings);
        printWarnings(warnings);
        if (!options.quiet) {
            printSummary(exported, options.directory);
        }
    } catch (...) {
        printWarnings(warnings);
        throw;
    }
    return success;
}

int run(int argc, char** argv) {
    Options options;
    CLI::App app("Patina: material graphs to Cg shaders and bindings.", "patina");
    app.require_subcommand(1);
    app.set_version_flag("--version", "patina " PATINA_VERSION);

    CLI::App* exportCommand = app.add_subcommand("export", "Write the shaders and bindings of a material.");
    exportCommand->add_option("material", options.material, "the material document, an XML file")
        ->required()
        ->type_name("MATERIAL.xml");
    exportCommand->add_option("-o,--output", options.directory, "where to write; made when missing")
        ->type_name("DIRECTORY");
    exportCommand
        ->add_option(
            "--plugin", options.plugins,
            "a plug-in to load; may be given repeatedly, and comes before those of PATINA_PLUGIN_PATH and "
            "those installed with patina")
        ->type_name("FILE")
        ->allow_extra_args(false);
    exportCommand->add_flag("-q,--quiet", options.quiet, "print nothing but warnings and errors");
    exportCommand->footer(
        "Writes NAME.vert.cg, NAME.frag.cg and NAME.bindings.xml, all or none.\n\n"
        "Examples:\n"
        "  patina export painted_metal.xml\n"
        "  patina export painted_metal.xml -o shaders --plugin studio_nodes.so\n\n"
        "Exit code: 0 when all went well, 1 for an error in the material, 2 for wrong usage.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? success : wrongUsage;
    }
    return runExport(options, programPath(argv[0]));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const patina::HostError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::bad_alloc&) {
        std::cerr << "error: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << patina::diagnosticText({}, "error", error.what()) << '\n';
    } catch (...) {
        std::cerr << "error: a plug-in failed with something that is no exception\n";
    }
    return failure;
}
