#include "bench/documents.h"

#include <string>
#include <utility>
#include <vector>

namespace patina::bench {

namespace {

constexpr const char* mathsOutput = "out_value";

/// An output of a node, by the node's id.
struct Output {
    std::string node;
    const char* port;
};

MaterialDocument emptyDocument(const char* name) {
    MaterialDocument document;
    document.file = std::string(name) + ".xml";
    document.name = name;
    return document;
}

DocumentNode& addNode(MaterialDocument& document, const std::string& id, const char* type) {
    DocumentNode& node = document.nodes.emplace_back();
    node.id = id;
    node.type = type;
    return node;
}

void connect(MaterialDocument& document, const Output& source, const std::string& destination,
             const char* input) {
    document.connections.push_back({source.node, source.port, destination, input, 0});
}

void finish(MaterialDocument& document, const Output& colour) {
    document.outputs.push_back({"colour", colour.node, colour.port, 0});
}

Output addConstant(MaterialDocument& document) {
    DocumentNode& node = addNode(document, "tint", "CoreConstant");
    node.properties = {{"Name", PropertyType::String, "Tint", 0},
                       {"Default Colour", PropertyType::Colour, "0.5, 0.25, 0.125", 0}};
    return {node.id, "read"};
}

Output addTexture(MaterialDocument& document) {
    addNode(document, "uv", "CoreUv");
    addNode(document, "paint", "CoreTexture");
    connect(document, {"uv", "read"}, "paint", "in_uv");
    return {"paint", "out_colour"};
}

std::string mathsId(std::size_t number) { return "maths" + std::to_string(number); }

/// Multiplies a value by a number.
Output addMultiply(MaterialDocument& document, const std::string& id, const Output& source,
                   const std::string& factor) {
    DocumentNode& node = addNode(document, id, "CoreMaths");
    node.properties = {{"Function", PropertyType::Enum, "Multiply", 0},
                       {"Default Value 2", PropertyType::Float, factor, 0}};
    connect(document, source, id, "in_value1");
    return {id, mathsOutput};
}

Output addSum(MaterialDocument& document, const std::string& id, const Output& left, const Output& right) {
    DocumentNode& node = addNode(document, id, "CoreMaths");
    node.properties = {{"Function", PropertyType::Enum, "Addition", 0}};
    connect(document, left, id, "in_value1");
    connect(document, right, id, "in_value2");
    return {id, mathsOutput};
}

/// Leaves one value: the sum of all.
Output addSums(MaterialDocument& document, std::vector<Output> values) {
    std::size_t number = 0;
    while (values.size() > 1) {
        std::vector<Output> sums;
        for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
            sums.push_back(addSum(document, "sum" + std::to_string(number++), values[i], values[i + 1]));
        }
        if (values.size() % 2 != 0) {
            sums.push_back(values.back());
        }
        values = std::move(sums);
    }
    return values.front();
}

std::vector<Output> addFan(MaterialDocument& document, std::size_t width) {
    const Output constant = addConstant(document);
    std::vector<Output> values;
    for (std::size_t i = 0; i < width; ++i) {
        values.push_back(addMultiply(document, mathsId(i), constant, "0.5"));
    }
    return values;
}

} // namespace

MaterialDocument constantChain(std::size_t length) {
    MaterialDocument document = emptyDocument("ConstantChain");
    Output value = addConstant(document);
    for (std::size_t i = 0; i < length; ++i) {
        value = addMultiply(document, mathsId(i), value, "0.5");
    }
    finish(document, value);
    return document;
}

MaterialDocument textureChain(std::size_t length) {
    MaterialDocument document = emptyDocument("TextureChain");
    Output value = addTexture(document);
    for (std::size_t i = 0; i < length; ++i) {
        value = addMultiply(document, mathsId(i), value, std::to_string(i + 1));
    }
    finish(document, value);
    return document;
}

MaterialDocument summedFanOut(std::size_t width) {
    MaterialDocument document = emptyDocument("SummedFanOut");
    finish(document, addSums(document, addFan(document, width)));
    return document;
}

MaterialDocument unreadFanOut(std::size_t width) {
    MaterialDocument document = emptyDocument("UnreadFanOut");
    finish(document, addFan(document, width).front());
    return document;
}

} // namespace patina::bench
