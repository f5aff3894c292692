#include "host/node_summary.h"
#include "tools/patina/command.h"
#include "tools/patina/node_listing.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace patina::tool {

namespace {

struct NodesOptions {
    bool json = false;
    bool names = false;
};

struct DescribeOptions {
    std::vector<std::string> types;
    bool json = false;
};

int runNodes(const NodesOptions& options, const CommandLine& commandLine) {
    const std::vector<NodeTypeSummary> types = listNodeTypes(loadPlugins(commandLine));
    if (options.names) {
        std::string names;
        for (const NodeTypeSummary& type : types) {
            names += type.typeName + "\n";
        }
        std::cout << names;
    } else {
        std::cout << (options.json ? nodeTableJson(types) : nodeTable(types));
    }
    return success;
}

int runDescribe(const DescribeOptions& options, const CommandLine& commandLine) {
    const PluginSet plugins = loadPlugins(commandLine);
    std::vector<NodeSummary> summaries;
    for (const std::string& type : options.types) {
        summaries.push_back(summariseNode(plugins, type));
    }
    std::cout << (options.json ? descriptionJson(summaries) : descriptionText(summaries));
    return success;
}

} // namespace

void addNodesCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<NodesOptions>();
    CLI::App* command =
        commandLine.parser.add_subcommand("nodes", "List the node types of all plug-ins, by category.");
    CLI::Option* json = command->add_flag("--json", options->json, "print the list as JSON");
    command->add_flag("--names", options->names, "print nothing but the type names, one a line")
        ->excludes(json);
    addPluginOption(*command, commandLine);
    command->footer("Lists type name, display name, category, whether artists are offered the type, and the "
                    "plug-in.\n\n"
                    "Examples:\n"
                    "  patina nodes\n"
                    "  patina nodes --json --plugin studio_nodes.so\n\n"
                    "Exit code: 0 when all went well, 1 when a plug-in cannot be loaded, 2 for wrong usage.");
    command->callback(
        [options, &commandLine] { commandLine.run = [&] { return runNodes(*options, commandLine); }; });
}

void addDescribeCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<DescribeOptions>();
    CLI::App* command = commandLine.parser.add_subcommand(
        "describe", "Describe node types: properties, ports, and what changes them.");
    command->add_option("type", options->types, "a node type, as `patina nodes` lists it")
        ->required()
        ->type_name("TYPE...");
    command->add_flag("--json", options->json, "print the descriptions as JSON");
    addPluginOption(*command, commandLine);
    command->footer("For each property whose values change the ports, the visible properties or the caption, "
                    "shows what each value gives, all others being at their defaults.\n\n"
                    "Examples:\n"
                    "  patina describe CoreMaths\n"
                    "  patina describe CoreTexture CoreConstant --json\n\n"
                    "Exit code: 0 when all went well, 1 for an unknown type or a plug-in that fails, 2 for "
                    "wrong usage.");
    command->callback(
        [options, &commandLine] { commandLine.run = [&] { return runDescribe(*options, commandLine); }; });
}

} // namespace patina::tool
