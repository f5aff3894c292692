#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <stdlib.h> // NOLINT: mkdtemp is POSIX

#include <algorithm>
#include <fstream>
#include <sstream>

namespace patina::testing {

namespace {

std::string joined(std::initializer_list<std::string_view> pieces) {
    std::string text;
    for (const std::string_view piece : pieces) {
        text += piece;
    }
    return text;
}

} // namespace

const PluginSet& corePlugins() {
    static const PluginSet plugins = [] {
        PluginSet set;
        set.add(PATINA_CORENODES);
        return set;
    }();
    return plugins;
}

void expectError(const std::string& message, const std::string& place,
                 std::initializer_list<std::string_view> pieces) {
    const std::string head = place + ": error: ";
    EXPECT_EQ(message.substr(0, head.size()), head) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
    std::size_t position = 0;
    for (const std::string_view piece : pieces) {
        const std::size_t found = message.find(piece, position);
        EXPECT_NE(found, std::string::npos) << '"' << piece << "\" in: " << message;
        position = found == std::string::npos ? position : found + piece.size();
    }
}

void expectErrorAt(const std::string& message, int line, std::initializer_list<std::string_view> pieces) {
    expectError(message, joined({sampleFile, ":", std::to_string(line)}), pieces);
}

std::string documentText(const std::string& body, const std::string& name) {
    return joined({"<material version=\"1\" name=\"", name, "\">\n", body, "</material>\n"});
}

MaterialDocument parsed(const std::string& body) { return parseMaterial(documentText(body), sampleFile); }

Material built(const std::string& body, const PluginSet& plugins) {
    Warnings warnings;
    Material material = buildMaterial(parsed(body), plugins, warnings);
    for (const Warning& warning : warnings) {
        ADD_FAILURE() << diagnosticText(warning.position, "warning", warning.text);
    }
    return material;
}

std::string buildError(const std::string& body) {
    return hostErrorOf([&] { built(body); });
}

ExportedMaterial exported(const std::string& body) {
    Material material = built(body);
    return exportedFrom(material);
}

ExportedMaterial exportedFrom(Material& material, const ExportOptions& options) {
    Warnings warnings;
    ExportedMaterial exported = exportMaterial(material, warnings, options);
    for (const Warning& warning : warnings) {
        ADD_FAILURE() << diagnosticText(warning.position, "warning", warning.text);
    }
    return exported;
}

std::string exportError(const std::string& body) {
    return hostErrorOf([&] { exported(body); });
}

std::string connection(const std::string& source, const std::string& output, const std::string& destination,
                       const std::string& input) {
    return joined({"<connection source=\"", source, "\" output=\"", output, "\" destination=\"", destination,
                   "\" input=\"", input, "\"/>\n"});
}

std::string output(const std::string& name, const std::string& source, const std::string& port) {
    return joined({"<output name=\"", name, "\" source=\"", source, "\" port=\"", port, "\"/>\n"});
}

std::string property(const std::string& name, const std::string& kind, const std::string& value) {
    return joined({"<property name=\"", name, "\" kind=\"", kind, "\" value=\"", value, "\"/>"});
}

std::string node(const std::string& id, const std::string& type, const std::string& properties) {
    return joined({"<node id=\"", id, "\" type=\"", type, "\">", properties, "</node>\n"});
}

std::string maths(const std::string& id, const std::string& function, const std::string& level) {
    return node(id, "CoreMaths",
                property("Function", "enum", function) + property("Execution Level", "enum", level));
}

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "patina-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryDirectory::write(const std::string& name, std::string_view content) const {
    writeText(path_ / name, content);
    return path_ / name;
}

std::vector<std::string> TemporaryDirectory::names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void writeText(const std::filesystem::path& file, std::string_view content) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(stream.flush()) << file;
}

std::string readText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

} // namespace patina::testing
