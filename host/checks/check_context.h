#pragma once

#include "host/plugin_checks.h"
#include "host/plugins.h"

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina::detail {

/// What a check works with: the plug-in, and where its findings go. Threads: one.
class CheckContext {
public:
    CheckContext(std::filesystem::path file, CheckListener& listener)
        : file_(std::move(file)), listener_(listener) {}

    const std::filesystem::path& file() const { return file_; }

    /// The plug-in, loaded when it is first asked for. Throws HostError when it cannot be loaded.
    Plugin& plugin();

    /// Reports something wrong with what is being examined. A text is reported once for a node type, in the
    /// first situation that shows it.
    void report(std::initializer_list<std::string_view> text);

    /// The same when a condition does not hold.
    void require(bool condition, std::initializer_list<std::string_view> text);

    void skip(std::string_view reason) { listener_.skipped(std::string(reason)); }

    /// Runs a part of the check on behalf of a node type and a situation, or of the plug-in as a whole when
    /// both are empty. What it throws is reported.
    void examine(const std::string& nodeType, const std::string& situation,
                 const std::function<void()>& action);

private:
    std::filesystem::path file_;
    CheckListener& listener_;
    std::shared_ptr<Plugin> plugin_;
    std::string nodeType_;
    std::string situation_;
    std::set<std::pair<std::string, std::string>> reported_;
};

/// A text between double quotes.
std::string inQuotes(std::string_view text);

/// A node type with at most one setting that differs from its defaults.
struct Configuration {
    Plugin& plugin;
    const NodeDescription& type;
    std::string property; ///< empty: all defaults
    std::string value;    ///< of an enum, or "Yes" and "No" of a bool

    /// What was set, as `"Mode" = "Advanced"`.
    std::string text() const;

    /// A new node in this configuration, not yet updated.
    std::shared_ptr<MaterialNode> makeNode() const;

    /// The same, updated once.
    std::shared_ptr<MaterialNode> makeUpdatedNode() const;
};

/// Which node types a check looks at: those that are not offered to artists need not work.
enum class Types { All, Creatable };

/// Examines a new node of every type.
void forEachType(CheckContext& context,
                 const std::function<void(const NodeDescription& type, MaterialNode& node)>& action);

/// Examines every type with its defaults, then with each value of each enum and bool, one at a time.
void forEachConfiguration(CheckContext& context, Types types,
                          const std::function<void(const Configuration& configuration)>& action);

/// What can be seen of a node, a line for each thing, so that two states can be compared and the first
/// difference shown.
using NodeState = std::vector<std::string>;

NodeState propertyState(const MaterialNode& node);
NodeState portState(const MaterialNode& node);
/// Both, the caption and the colours.
NodeState nodeState(const MaterialNode& node);

/// Reports the first difference between two states: `text: EXPECTED became ACTUAL`.
void requireSame(CheckContext& context, std::string_view text, const NodeState& expected,
                 const NodeState& actual);

/// Whether an action throws ShaderError; any other exception passes.
bool isRefused(const std::function<void()>& action);

} // namespace patina::detail
