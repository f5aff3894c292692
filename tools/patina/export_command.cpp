#include "host/export.h"
#include "tools/patina/command.h"

#include <iostream>
#include <memory>
#include <string>

namespace patina::tool {

namespace {

struct ExportArguments {
    std::string material;
    std::string directory = ".";
    bool quiet = false;
    ExportOptions options;
};

void printSummary(const ExportedMaterial& exported, const std::filesystem::path& directory) {
    std::cout << exported.name << ": " << counted(exported.nodeCount, "node") << ", "
              << counted(exported.connectionCount, "connection") << ", "
              << counted(exported.interpolantCount, "interpolant register") << "\n"
              << "  " << (directory / exported.vertexProgram.name).string() << ": "
              << counted(exported.vertexFunctionCount, "call") << "\n"
              << "  " << (directory / exported.fragmentProgram.name).string() << ": "
              << counted(exported.fragmentFunctionCount, "call") << "\n"
              << "  " << (directory / exported.bindings.name).string() << ": "
              << counted(exported.bindingCount, "binding") << "\n";
    if (exported.bindingsJson) {
        std::cout << "  " << (directory / exported.bindingsJson->name).string() << ": "
                  << counted(exported.bindingCount, "binding") << "\n";
    }
}

int runExport(const ExportArguments& arguments, const CommandLine& commandLine) {
    const PluginSet plugins = loadPlugins(commandLine);
    Warnings warnings;
    try {
        const auto exported =
            exportDocument(arguments.material, arguments.directory, plugins, warnings, arguments.options);
        printWarnings(warnings);
        if (!arguments.quiet) {
            printSummary(exported, arguments.directory);
        }
    } catch (...) {
        printWarnings(warnings);
        throw;
    }
    return success;
}

} // namespace

void addExportCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App* command =
        commandLine.parser.add_subcommand("export", "Write the shaders and bindings of a material.");
    command->add_option("material", arguments->material, "the material document, an XML file")
        ->required()
        ->type_name("MATERIAL.xml");
    command->add_option("-o,--output", arguments->directory, "where to write; made when missing")
        ->type_name("DIRECTORY");
    addPluginOption(*command, commandLine);
    command->add_flag("--json", arguments->options.json, "write the bindings as NAME.bindings.json too");
    command->add_flag("-q,--quiet", arguments->quiet, "print nothing but warnings and errors");
    command->footer(
        "Writes NAME.vert.cg, NAME.frag.cg and NAME.bindings.xml, all or none. What an artist changed in an "
        "earlier NAME.bindings.xml is carried over.\n\n"
        "Examples:\n"
        "  patina export painted_metal.xml\n"
        "  patina export painted_metal.xml -o shaders --plugin studio_nodes.so\n\n"
        "Exit code: 0 when all went well, 1 for an error in the material, 2 for wrong usage.");
    command->callback(
        [arguments, &commandLine] { commandLine.run = [&] { return runExport(*arguments, commandLine); }; });
}

} // namespace patina::tool
