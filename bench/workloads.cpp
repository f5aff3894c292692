#include "bench/documents.h"
#include "bench/samples.h"

#include <charconv>
#include <cstddef>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Does one workload once, to be counted from outside: what one unit of it costs is the difference between
// two sizes.

namespace {

using namespace patina;
using namespace patina::bench;

using Workload = std::function<void(std::size_t size)>;
using MakeDocument = MaterialDocument (*)(std::size_t size);

void createNodes(const std::string& type, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        coreFactory().createNode(type);
    }
}

/// Has them all alive at once.
void keepNodes(const std::string& type, std::size_t count) {
    std::vector<std::shared_ptr<MaterialNode>> nodes(count);
    for (std::shared_ptr<MaterialNode>& node : nodes) {
        node = coreFactory().createNode(type);
    }
}

void updateUnchanged(const std::string& type, std::size_t count) {
    const auto node = coreFactory().createNode(type);
    for (std::size_t i = 0; i < count; ++i) {
        node->updateFromProperties(nullptr);
    }
}

void generateCode(const std::string& type, std::size_t count) {
    const Sample sample = makeSample(type);
    for (std::size_t i = 0; i < count; ++i) {
        GraphGenerator generator;
        sample.node->generateCode(generator);
    }
}

/// What an assembly starts from.
Material buildResolved(const MaterialDocument& document) {
    Material material = buildQuietly(document);
    resolveMaterial(material);
    return material;
}

void assemble(const MaterialDocument& document) {
    const Material material = buildResolved(document);
    const AssembledShader shader = assembleShader(material);
    printVertexProgram(shader);
    printFragmentProgram(shader);
}

void exportWhole(const MaterialDocument& document) {
    Material material = buildQuietly(document);
    Warnings warnings;
    exportMaterial(material, warnings);
}

std::map<std::string, Workload> allWorkloads() {
    std::map<std::string, Workload> workloads;
    for (const std::string& type : nodeTypes()) {
        workloads["create/" + type] = [type](std::size_t size) { createNodes(type, size); };
        workloads["memory/" + type] = [type](std::size_t size) { keepNodes(type, size); };
        workloads["update/" + type] = [type](std::size_t size) { updateUnchanged(type, size); };
    }
    for (const std::string& type : sampleTypes()) {
        workloads["generate/" + type] = [type](std::size_t size) { generateCode(type, size); };
    }
    const std::map<std::string, MakeDocument> documents = {
        {"constant-chain", constantChain},
        {"texture-chain", textureChain},
        {"summed-fan-out", summedFanOut},
        {"unread-fan-out", unreadFanOut},
    };
    for (const auto& [name, makeDocument] : documents) {
        const MakeDocument make = makeDocument;
        // what an export starts from, to be subtracted
        workloads["document/" + name] = [make](std::size_t size) { make(size); };
        workloads["build/" + name] = [make](std::size_t size) { buildResolved(make(size)); };
        workloads["assemble/" + name] = [make](std::size_t size) { assemble(make(size)); };
        workloads["export/" + name] = [make](std::size_t size) { exportWhole(make(size)); };
    }
    return workloads;
}

int usage(const std::map<std::string, Workload>& workloads) {
    std::cerr << "usage: patina_workloads WORKLOAD SIZE\n";
    for (const auto& [name, workload] : workloads) {
        std::cerr << "  " << name << '\n';
    }
    return 2;
}

int run(int argc, char** argv) {
    const std::map<std::string, Workload> workloads = allWorkloads();
    if (argc != 3) {
        return usage(workloads);
    }
    const auto workload = workloads.find(argv[1]);
    const std::string_view sizeText = argv[2];
    std::size_t size = 0;
    const auto parsed = std::from_chars(sizeText.data(), sizeText.data() + sizeText.size(), size);
    if (workload == workloads.end() || parsed.ec != std::errc() || size == 0) {
        return usage(workloads);
    }
    workload->second(size);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
