#pragma once

// A dataflow by hand, for steps that no document reaches in every way.

#include "host/host.h"
#include "nodemodel/text.h"
#include "shadergraph/shadergraph.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace patina::testing {

class ItemNode : public MaterialNode {
public:
    ItemNode() : MaterialNode("Item") {}
    void generateCode(GraphGenerator& /*generator*/) override {}
};

constexpr ShaderType typeOf(ComponentType component, std::int32_t width) { return {component, width, 1, 1}; }

/// A dataflow by hand; every node belongs to an item "item0", "item1" and so on, in lines from 10.
class Flow {
public:
    Flow() {
        material.file = "flow.xml";
        material.line = 2;
    }

    std::size_t varying(const std::string& name, const ShaderType& type = typeOf(ComponentType::Float, 1)) {
        return add(makeVaryingParameter(name, type), {});
    }
    std::size_t uniform(const std::string& name, const ShaderType& type = typeOf(ComponentType::Float, 1)) {
        return add(makeUniformParameter(name, type), {});
    }
    /// A function of the first outputs of others.
    std::size_t function(ExecutionLevel level, const std::vector<std::size_t>& inputs,
                         const ShaderType& type = typeOf(ComponentType::Float, 1)) {
        FunctionBuilder builder;
        std::vector<ValueSource> sources;
        for (const std::size_t input : inputs) {
            builder.addInput(flow.port({input, 0}).type, "in" + std::to_string(sources.size()));
            sources.push_back({input, 0});
        }
        builder.addOutput(type, "result");
        return add(builder.makeNode(level, "f"), sources);
    }
    std::size_t add(const std::shared_ptr<GeneratorNode>& generated, const std::vector<ValueSource>& inputs) {
        const std::size_t index = flow.nodes.size();
        MaterialItem item;
        item.id = "item" + std::to_string(index);
        item.node = std::make_shared<ItemNode>();
        item.line = static_cast<int>(10 + index);
        material.items.push_back(item);
        flow.nodes.push_back({generated, index, flow.makeInputs(inputs.size())});
        std::copy(inputs.begin(), inputs.end(), flow.nodes.back().inputs.begin());
        return index;
    }
    StagedShader place(std::size_t colour) {
        flow.colour = {colour, 0};
        flow.functions = firstOfEachFunction(flow.nodes);
        return placeInStages(material, flow);
    }

    Material material;
    Dataflow flow;
};

} // namespace patina::testing
