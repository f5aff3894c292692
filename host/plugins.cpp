#include "host/plugins.h"

#include "host/diagnostic.h"
#include "host/dynamic_library.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace patina {

using namespace detail;

namespace {

#if defined(_WIN32)
constexpr char searchPathSeparator = ';';
#else
constexpr char searchPathSeparator = ':';
#endif

template <typename Function>
Function* requireEntryPoint(const DynamicLibrary& library, const std::filesystem::path& file,
                            const char* name) {
    auto* function = library.find<Function>(name);
    if (function == nullptr) {
        throw HostError({file.string(), 0},
                        joinText({"this is no plug-in: it does not export \"", name, "\""}));
    }
    return function;
}

/// Calls an entry point. What it throws is code of the plug-in, and must not outlive it.
template <typename Result>
Result call(const std::filesystem::path& file, Result (*entryPoint)()) {
    try {
        return entryPoint();
    } catch (...) {
        throw HostError({file.string(), 0},
                        joinText({"this plug-in failed to start: ", currentExceptionText()}));
    }
}

} // namespace

Plugin::Plugin(const std::filesystem::path& file)
    : file_(file), library_(std::make_unique<DynamicLibrary>(file)) {
    auto* version = requireEntryPoint<std::uint32_t()>(*library_, file, versionEntryPoint);
    auto* createFactory = requireEntryPoint<NodeFactory*()>(*library_, file, factoryEntryPoint);
    const std::uint32_t spoken = call(file, version);
    if (spoken != materialLibVersion) {
        throw HostError(
            {file.string(), 0},
            joinText({"this plug-in speaks version ", std::to_string(spoken),
                      " of the material library interface, and this host version ",
                      std::to_string(materialLibVersion), "; rebuild the plug-in with this host's SDK"}));
    }
    factory_.reset(call(file, createFactory));
    if (!factory_) {
        throw HostError({file.string(), 0}, "this plug-in made no node factory");
    }
}

Plugin::~Plugin() = default;

std::shared_ptr<Plugin> Plugin::load(const std::filesystem::path& file) {
    // GCOVR_EXCL_BR_START: of the clean-up behind a constructor that throws
    return std::shared_ptr<Plugin>(new Plugin(file));
    // GCOVR_EXCL_BR_STOP
}

std::shared_ptr<MaterialNode> Plugin::createNode(const std::string& typeName) {
    std::shared_ptr<MaterialNode> node = factory_->createNode(typeName);
    if (!node) {
        throw ShaderError(joinText({"cannot create \"", typeName, "\" node"}));
    }
    MaterialNode* address = node.get();
    // the node goes first, then what keeps its code
    // cppcheck-suppress cstyleCast ; the parameter of a lambda is no cast
    return {address, [node = std::move(node), plugin = shared_from_this()](MaterialNode*) mutable {
                node.reset();
                plugin.reset();
            }};
}

void PluginSet::add(const std::filesystem::path& file) {
    std::error_code ignored; // what is missing cannot be loaded either
    const std::filesystem::path canonical = std::filesystem::canonical(file, ignored);
    if (files_.count(canonical) != 0) {
        fileNames_.insert(file.filename());
        return;
    }
    const std::shared_ptr<Plugin> plugin = Plugin::load(file);
    for (const NodeDescription& description : plugin->nodeLibrary()) {
        const auto found = byType_.find(description.typeName);
        if (found != byType_.end()) {
            throw HostError(
                {file.string(), 0},
                joinText({"this plug-in offers node type \"", description.typeName, "\", and so does ",
                          found->second->file().string(), "; load only one of them"}));
        }
    }
    for (const NodeDescription& description : plugin->nodeLibrary()) {
        byType_.emplace(description.typeName, plugin);
    }
    plugins_.push_back(plugin);
    files_.insert(canonical);
    fileNames_.insert(file.filename());
}

void PluginSet::addDirectory(const std::filesystem::path& directory) {
    std::vector<std::filesystem::path> files;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(directory, ignored)) {
        if (entry.path().extension() == DynamicLibrary::extension()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) {
        if (fileNames_.count(file.filename()) == 0) {
            add(file);
        }
    }
}

bool PluginSet::offers(const std::string& typeName) const { return byType_.count(typeName) != 0; }

std::shared_ptr<MaterialNode> PluginSet::createNode(const std::string& typeName) const {
    const auto found = byType_.find(typeName);
    if (found == byType_.end()) {
        throw ShaderError(joinText({"cannot create \"", typeName, "\" node"}));
    }
    return found->second->createNode(typeName);
}

std::vector<std::filesystem::path> pluginSearchPath(const std::filesystem::path& program) {
    std::vector<std::filesystem::path> directories;
    const char* variable = std::getenv("PATINA_PLUGIN_PATH");
    std::string_view rest = variable != nullptr ? variable : "";
    while (!rest.empty()) {
        const std::string_view directory = rest.substr(0, rest.find(searchPathSeparator));
        rest.remove_prefix(std::min(directory.size() + 1, rest.size()));
        if (!directory.empty()) {
            directories.emplace_back(directory);
        }
    }
    directories.push_back(program.parent_path().parent_path() / "lib" / "patina" / "plugins");
    return directories;
}

} // namespace patina
