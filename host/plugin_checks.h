#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace patina {

namespace detail {
class CheckContext;
}

/// Hears what a check does while it does it, so that a crash loses nothing. What it is told of comes in the
/// order in which it happens, in the thread that runs the check.
class CheckListener {
public:
    CheckListener() = default;
    CheckListener(const CheckListener&) = delete;
    CheckListener& operator=(const CheckListener&) = delete;
    virtual ~CheckListener() = default;

    /// The check turns to a node type, or to the plug-in as a whole when that is empty. The situation says
    /// what was done to the node, such as `"Mode" = "Advanced"`, and may be empty.
    virtual void examining(const std::string& nodeType, const std::string& situation) = 0;

    /// Something is wrong with that node type, or with the plug-in as a whole when it is empty.
    virtual void found(const std::string& nodeType, const std::string& text) = 0;

    /// The check cannot be made here.
    virtual void skipped(const std::string& reason) = 0;
};

/// Something that every plug-in must satisfy; docs/validating-plugins.md explains each.
struct PluginCheck {
    const char* name;        ///< short, in lower case, with hyphens
    const char* description; ///< one line
    bool basic;              ///< when it fails, checks behind it cannot say anything
    void (*run)(detail::CheckContext& context);
};

/// All checks, in the order in which they are run. They live forever. [thread-safe]
std::span<const PluginCheck> pluginChecks();

/// The check of that name, or null. [thread-safe]
const PluginCheck* findPluginCheck(std::string_view name);

/// Makes one check of a plug-in, which is loaded and unloaded again. What a plug-in throws is a finding; a
/// plug-in that crashes, exits or hangs does so to the caller too, so run it in a process of its own.
/// Throws what the listener throws.
void runPluginCheck(const PluginCheck& check, const std::filesystem::path& plugin, CheckListener& listener);

} // namespace patina
