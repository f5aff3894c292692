#include "bench/benchmarks.h"
#include "bench/samples.h"
#include "nodemodel/text.h"

#include <benchmark/benchmark.h>
#include <libxml/tree.h>

namespace patina::bench {

namespace {

void loadProperties(benchmark::State& state, const std::string& type) {
    const std::shared_ptr<MaterialNode> node = coreFactory().createNode(type);
    const std::shared_ptr<PropertySet> saved = savedProperties(type);
    for ([[maybe_unused]] auto _ : state) {
        node->loadProperties(saved);
    }
}

void updateUnchanged(benchmark::State& state, const std::string& type) {
    const std::shared_ptr<MaterialNode> node = coreFactory().createNode(type);
    for ([[maybe_unused]] auto _ : state) {
        node->updateFromProperties(nullptr);
    }
}

void resolve(benchmark::State& state, const std::string& type) {
    const Sample sample = makeSample(type);
    for ([[maybe_unused]] auto _ : state) {
        pushWidths(*sample.node, 3);
        sample.node->resolveComponentCounts();
        sample.node->resolvePrecision();
    }
}

void generate(benchmark::State& state, const std::string& type) {
    const Sample sample = makeSample(type);
    for ([[maybe_unused]] auto _ : state) {
        GraphGenerator generator;
        sample.node->generateCode(generator);
    }
}

/// A sample whose bindings have all texts that a node passes on.
Sample makeDescribedSample(const std::string& type) {
    Sample sample = makeSample(type);
    sample.node->descriptionProperty->setString("How much of the paint is worn off.");
    sample.node->bindingGroupProperty->setString("Paint");
    sample.node->helpUrlProperty->setString("help/paint.html");
    return sample;
}

void addBindings(benchmark::State& state, const std::string& type) {
    const Sample sample = makeDescribedSample(type);
    for ([[maybe_unused]] auto _ : state) {
        BindingCollection bindings;
        sample.node->addBindings(bindings);
    }
}

struct XmlFree {
    void operator()(xmlNode* node) const { xmlFreeNode(node); }
};

std::unique_ptr<xmlNode, XmlFree> newElement() {
    return std::unique_ptr<xmlNode, XmlFree>(
        xmlNewNode(nullptr, reinterpret_cast<const xmlChar*>("binding")));
}

void writeAnnotations(benchmark::State& state, const std::string& type) {
    const Sample sample = makeDescribedSample(type);
    BindingCollection bindings;
    sample.node->addBindings(bindings);
    Binding& binding = *bindings.bindings.front();
    for ([[maybe_unused]] auto _ : state) {
        const auto element = newElement();
        binding.writeAnnotations(element.get());
    }
}

void registerForEach(const std::string& what, void (*benchmarked)(benchmark::State&, const std::string&),
                     const std::vector<std::string>& types) {
    for (const std::string& type : types) {
        benchmark::RegisterBenchmark(detail::joinText({what, "/", type}).c_str(), benchmarked, type);
    }
}

} // namespace

void registerNodeBenchmarks() {
    const std::vector<std::string> typesWithBindings = {"CoreVertexColour", "CoreUv", "CoreTexture",
                                                        "CoreConstant"};
    registerForEach("load properties", loadProperties, nodeTypes());
    registerForEach("update unchanged", updateUnchanged, nodeTypes());
    registerForEach("resolve", resolve, sampleTypes());
    registerForEach("generate", generate, sampleTypes());
    registerForEach("add bindings", addBindings, typesWithBindings);
    registerForEach("write annotations", writeAnnotations, typesWithBindings);
}

} // namespace patina::bench
