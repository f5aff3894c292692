#include "host/files.h"
#include "host/generate.h"
#include "host/graphviz.h"
#include "host/resolve.h"
#include "tools/patina/command.h"
#include "tools/patina/graphviz_program.h"
#include "tools/patina/terminal.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace patina::tool {

namespace {

struct GraphOptions {
    std::string material;
    std::string output;
    std::string format;
    bool shader = false;
};

bool wantsSvg(const GraphOptions& options) {
    return options.format.empty() ? std::filesystem::path(options.output).extension() == ".svg"
                                  : options.format == "svg";
}

std::string shaderGraphText(Material& material) {
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    return printShaderGraph(material, flow, placeInStages(material, flow));
}

std::string graphText(const GraphOptions& options, const PluginSet& plugins) {
    Material material = loadMaterial(options.material, plugins);
    return options.shader ? shaderGraphText(material) : printMaterialGraph(material);
}

/// Opening /dev/stdout anew would begin a file that it leads to from its start.
bool isStandardOutput(const std::string& file) { return file.empty() || file == "/dev/stdout"; }

void write(const std::string& text, const std::string& file) {
    if (isStandardOutput(file)) {
        std::cout << text;
    } else {
        writeFileOrStream(file, text);
    }
}

int runGraph(const GraphOptions& options, const CommandLine& commandLine) {
    const PluginSet plugins = loadPlugins(commandLine);
    const std::string text = graphText(options, plugins);
    write(wantsSvg(options)
              ? drawGraph(text, "svg", ", or write the graph with --format dot and draw it elsewhere")
              : text,
          options.output);
    return success;
}

} // namespace

void addGraphCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<GraphOptions>();
    CLI::App* command =
        commandLine.parser.add_subcommand("graph", "Draw a material or the shader that it becomes.");
    command->add_option("material", options->material, "the material document, an XML file")
        ->required()
        ->type_name("MATERIAL.xml")
        ->check(notEmpty());
    command->add_flag("--shader", options->shader,
                      "draw the two programs: functions, parameters, types and interpolants");
    command
        ->add_option("--format", options->format,
                     "dot or svg; when not given, svg for an output file of that ending, else dot")
        ->check(CLI::IsMember({"dot", "svg"}))
        ->type_name("FORMAT");
    command->add_option("-o,--output", options->output, "the file to write; standard output when not given")
        ->type_name("FILE")
        ->check(notEmpty());
    addPluginOption(*command, commandLine);
    command->footer(
        "DOT is the language of Graphviz; SVG is drawn by its program dot, which must be installed.\n"
        "The material is drawn even where plug-ins of its nodes are missing: those nodes are "
        "dashed.\n\n"
        "Examples:\n"
        "  patina graph painted_metal.xml -o painted_metal.svg\n"
        "  patina graph painted_metal.xml --shader -o shader.svg\n"
        "  patina graph painted_metal.xml | dot -Tpdf -o painted_metal.pdf\n\n"
        "Exit code: 0 when all went well, 1 for an error in the material or in drawing it, 2 for "
        "wrong usage.");
    command->callback(
        [options, &commandLine] { commandLine.run = [&] { return runGraph(*options, commandLine); }; });
}

} // namespace patina::tool
