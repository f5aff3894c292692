#pragma once

#include "host/host.h"
#include "plugin/plugin.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace patina::bench {

/// The file of the plug-in that is measured.
std::filesystem::path corePluginFile();

/// The plug-ins of a host that loaded only this one. They stay loaded until the program ends.
const PluginSet& corePlugins();

/// The plug-in's own factory, without what a host wraps around its nodes. It lives until the program ends.
NodeFactory& coreFactory();

/// Every node type of the plug-in, in its own order. Leaves the plug-in as it was: loaded or not.
std::vector<std::string> nodeTypes();

/// A node as it stands before it generates code: its inputs connected, its ports resolved.
struct Sample {
    Material material; ///< keeps the node's neighbours and connections
    std::shared_ptr<MaterialNode> node;
};

/// The node types of which there are samples: all but the placeholder, which refuses to generate.
std::vector<std::string> sampleTypes();

/// A sample of one of those types, with default properties. Throws HostError.
Sample makeSample(const std::string& type);

/// The values of a new node of that type, as saved.
std::shared_ptr<PropertySet> savedProperties(const std::string& type);

/// The live material of a document. Throws HostError, also instead of a warning.
Material buildQuietly(const MaterialDocument& document);

/// Puts the ports of a node back to where a host has pushed `width` along every connection and nothing is
/// resolved.
void pushWidths(MaterialNode& node, std::uint32_t width);

} // namespace patina::bench
