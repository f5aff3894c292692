#include "bench/samples.h"

#include "host/dynamic_library.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>

namespace patina::bench {

namespace {

/// A connection into the node of a sample, from a new node of another type.
struct Feed {
    const char* type; ///< null where there is none
    const char* output;
    const char* input;
};

struct SampleEntry {
    const char* type;
    const char* output; ///< connected to the material's colour
    std::array<Feed, 2> feeds;
};

constexpr std::array<SampleEntry, 8> samples = {{
    {"CoreVertexColour", "out_colour", {}},
    {"CoreUv", "read", {}},
    {"CoreTexture", "out_colour", {{{"CoreUv", "read", "in_uv"}}}},
    {"CoreConstant", "read", {}},
    {"CoreMaths",
     "out_value",
     {{{"CoreConstant", "read", "in_value1"}, {"CoreConstant", "read", "in_value2"}}}},
    {"CoreSwizzle", "out_x", {{{"CoreConstant", "read", "in_vec"}}}},
    {"CoreLayerBlend",
     "out_value",
     {{{"CoreConstant", "read", "in_value1"}, {"CoreConstant", "read", "in_value2"}}}},
    {"CoreAnimatedUv", "out_uv1", {{{"CoreSwizzle", "out_x", "in_frame"}, {"CoreUv", "read", "in_uv"}}}},
}};

MaterialDocument sampleDocument(const SampleEntry& entry) {
    const std::string subject = "subject";
    MaterialDocument document;
    document.name = entry.type;
    const auto addNode = [&](const std::string& id, const char* type) {
        DocumentNode& node = document.nodes.emplace_back();
        node.id = id;
        node.type = type;
    };
    addNode(subject, entry.type);
    for (const Feed& feed : entry.feeds) {
        if (feed.type != nullptr) {
            const std::string source = "source" + std::to_string(document.nodes.size());
            addNode(source, feed.type);
            document.connections.push_back({source, feed.output, subject, feed.input, 0});
        }
    }
    document.outputs.push_back({"colour", subject, entry.output, 0});
    return document;
}

/// The factory and the module with its code, which goes last.
struct LoadedFactory {
    DynamicLibrary library;
    std::unique_ptr<NodeFactory> factory;

    LoadedFactory()
        : library(corePluginFile()), factory(library.find<NodeFactory*()>("CreateNodeFactory")()) {}
};

} // namespace

std::filesystem::path corePluginFile() { return PATINA_CORE_PLUGIN; }

const PluginSet& corePlugins() {
    static const PluginSet plugins = [] {
        PluginSet loaded;
        loaded.add(corePluginFile());
        return loaded;
    }();
    return plugins;
}

NodeFactory& coreFactory() {
    static const LoadedFactory loaded;
    return *loaded.factory;
}

std::vector<std::string> nodeTypes() {
    std::vector<std::string> types;
    const LoadedFactory loaded;
    for (const NodeDescription& description : loaded.factory->nodeLibrary) {
        types.push_back(description.typeName);
    }
    return types;
}

std::vector<std::string> sampleTypes() {
    std::vector<std::string> types;
    types.reserve(samples.size());
    for (const SampleEntry& entry : samples) {
        types.emplace_back(entry.type);
    }
    return types;
}

Sample makeSample(const std::string& type) {
    const auto* entry = std::find_if(samples.begin(), samples.end(),
                                     [&](const SampleEntry& candidate) { return candidate.type == type; });
    if (entry == samples.end()) {
        throw HostError({}, detail::joinText({"there is no sample of type \"", type, "\""}));
    }
    Sample sample;
    sample.material = buildQuietly(sampleDocument(*entry));
    resolveMaterial(sample.material);
    sample.node = sample.material.items.front().node;
    return sample;
}

std::shared_ptr<PropertySet> savedProperties(const std::string& type) {
    const std::shared_ptr<MaterialNode> node = coreFactory().createNode(type);
    auto saved = std::make_shared<PropertySet>();
    saved->version = node->properties->version;
    for (const std::shared_ptr<Property>& property : *node->properties) {
        saved->add(std::make_shared<Property>(*property));
    }
    return saved;
}

Material buildQuietly(const MaterialDocument& document) {
    Warnings warnings;
    Material material = buildMaterial(document, corePlugins(), warnings);
    if (!warnings.empty()) {
        throw HostError(warnings.front().position, warnings.front().text);
    }
    return material;
}

void pushWidths(MaterialNode& node, std::uint32_t width) {
    for (Port& input : node.inputs) {
        if (!input.componentCountFixed && input.connected) {
            input.componentCount = width;
            input.componentCountKnown = true;
        }
        input.precisionKnown = input.precisionFixed;
    }
    for (Port& output : node.outputs) {
        output.componentCountKnown = output.componentCountFixed;
        output.precisionKnown = output.precisionFixed;
    }
}

} // namespace patina::bench
