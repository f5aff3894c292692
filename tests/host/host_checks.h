#pragma once

// What the tests of the host share: documents from a few lines, the steps of an export, and errors held
// against what they must say.

#include "host/host.h"

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

namespace patina::testing {

inline constexpr const char* sampleFile = "sample.xml";
inline constexpr const char* noError = "(no HostError)";

/// The Core plug-in, loaded once.
const PluginSet& corePlugins();

/// The message of the HostError that the action throws, or noError.
template <typename Action>
std::string hostErrorOf(Action&& action) {
    try {
        action();
    } catch (const HostError& error) {
        return error.what();
    }
    return noError;
}

/// Holds a message against `place: error: ` and the pieces that must follow in that order, all in one line.
void expectError(const std::string& message, const std::string& place,
                 std::initializer_list<std::string_view> pieces);
/// The same for a line of the sample document.
void expectErrorAt(const std::string& message, int line, std::initializer_list<std::string_view> pieces);

/// A material document; the root is line 1, and the body begins in line 2.
std::string documentText(const std::string& body, const std::string& name = "Sample");

MaterialDocument parsed(const std::string& body);
/// A live material, which must come without a warning.
Material built(const std::string& body, const PluginSet& plugins = corePlugins());
std::string buildError(const std::string& body);
ExportedMaterial exported(const std::string& body);
/// An export, which must come without a warning.
ExportedMaterial exportedFrom(Material& material, const ExportOptions& options = {});
std::string exportError(const std::string& body);

/// One element, in one line that it ends.
std::string connection(const std::string& source, const std::string& output, const std::string& destination,
                       const std::string& input);
std::string output(const std::string& name, const std::string& source, const std::string& port);
std::string property(const std::string& name, const std::string& kind, const std::string& value);
/// A <node> of any type with properties that `property` wrote.
std::string node(const std::string& id, const std::string& type, const std::string& properties = {});
/// A "CoreMaths" node; the function and level as their properties name them.
std::string maths(const std::string& id, const std::string& function, const std::string& level = "Automatic");

/// A directory of this test's own, removed with all that is in it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    /// Writes a file in it and gives the path.
    std::filesystem::path write(const std::string& name, std::string_view content) const;
    /// The names in it, in order.
    std::vector<std::string> names() const;

private:
    std::filesystem::path path_;
};

void writeText(const std::filesystem::path& file, std::string_view content);
std::string readText(const std::filesystem::path& file);

} // namespace patina::testing
