#pragma once

#include "plugin/plugin.h"

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace patina {

class DynamicLibrary;

/// The names under which a plug-in exports what plugin/plugin.h declares.
/// @{
inline constexpr const char* versionEntryPoint = "GetMaterialLibVersion";
inline constexpr const char* factoryEntryPoint = "CreateNodeFactory";
/// @}

/// A loaded plug-in. It stays loaded while this object, or any node that it created, lives.
///
/// Generator nodes, bindings and exceptions that its nodes made are code of the plug-in too: whoever keeps
/// them keeps the plug-in. Threads: createNode is thread-safe; load from one thread at a time.
class Plugin : public std::enable_shared_from_this<Plugin> {
public:
    /// Loads a module and makes its factory. Throws HostError when it cannot be loaded, lacks an entry point,
    /// speaks another interface version, or makes no factory.
    static std::shared_ptr<Plugin> load(const std::filesystem::path& file);

    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    const std::filesystem::path& file() const { return file_; }
    const NodeLibrary& nodeLibrary() const { return factory_->nodeLibrary; }

    /// The factory itself, which stays the plug-in's; nodes that it creates do not keep the plug-in loaded.
    NodeFactory& factory() { return *factory_; }

    /// A new node that keeps the plug-in loaded. Throws ShaderError when the plug-in has no such type.
    std::shared_ptr<MaterialNode> createNode(const std::string& typeName);

private:
    explicit Plugin(const std::filesystem::path& file);

    std::filesystem::path file_;
    std::unique_ptr<DynamicLibrary> library_; // outlives the factory
    std::unique_ptr<NodeFactory> factory_;
};

/// The plug-ins of a host, and which of them offers which node type.
/// Threads: createNode and the look-ups are thread-safe once all plug-ins are added.
class PluginSet {
public:
    /// Loads a plug-in. A file that is here already, whatever path or symbolic link leads to it, is left out.
    /// Throws HostError as Plugin::load does, and when it offers a type that another plug-in offers.
    void add(const std::filesystem::path& file);

    /// Adds every module in a directory, in the order of their names. One whose file name was added before is
    /// left out, so that the first place on a search path wins. A directory that is missing is skipped.
    void addDirectory(const std::filesystem::path& directory);

    const std::vector<std::shared_ptr<Plugin>>& plugins() const { return plugins_; }

    bool offers(const std::string& typeName) const;

    /// A new node of any plug-in's type. Throws ShaderError when none offers it.
    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) const;

private:
    std::vector<std::shared_ptr<Plugin>> plugins_;
    std::map<std::string, std::shared_ptr<Plugin>> byType_;
    std::set<std::filesystem::path> files_;     ///< of the plug-ins, without symbolic links
    std::set<std::filesystem::path> fileNames_; ///< of all that was added, left out or not
};

/// The directories in which a host looks for plug-ins, first come first: those of the environment variable
/// PATINA_PLUGIN_PATH, separated like those of PATH, then `../lib/patina/plugins` beside the program.
std::vector<std::filesystem::path> pluginSearchPath(const std::filesystem::path& program);

} // namespace patina
