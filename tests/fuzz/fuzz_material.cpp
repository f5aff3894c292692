#include "host/host.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

patina::PluginSet loadCorePlugin() {
    patina::PluginSet plugins;
    plugins.add(PATINA_CORE_PLUGIN);
    return plugins;
}

/// What was read is written as it was, and means the same when it is laid out afresh.
void checkWriting(patina::MaterialDocument document, std::string_view text) {
    const bool same = patina::printMaterial(document) == text;
    document.source.clear();
    if (!same || !(patina::parseMaterial(patina::printMaterial(document), "fuzz.xml") == document)) {
        std::abort();
    }
}

} // namespace

/// Whatever the document: either a message for the user, or three complete files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const patina::PluginSet plugins = loadCorePlugin();
    try {
        patina::Warnings warnings;
        const std::string_view text(reinterpret_cast<const char*>(data), size);
        auto document = patina::parseMaterial(text, "fuzz.xml");
        checkWriting(document, text);
        auto material = patina::buildMaterial(std::move(document), plugins, warnings);
        const auto exported = patina::exportMaterial(material, warnings);
        if (exported.fragmentProgram.content.empty() || exported.vertexProgram.content.empty() ||
            exported.bindings.content.empty()) {
            std::abort();
        }
    } catch (const patina::HostError&) {
        return 0;
    }
    return 0;
}
