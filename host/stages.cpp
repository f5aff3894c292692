#include "host/stages.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <string>

namespace patina {

using namespace detail;

namespace {

constexpr std::int32_t registerWidth = 4;
constexpr std::size_t nobody = std::numeric_limits<std::size_t>::max();

/// Where the values of a node are read.
struct Demand {
    bool byFragment = false;
    std::size_t vertexReader = nobody; ///< the vertex function for whose sake the vertex program reads it
    std::vector<bool> portsByFragment;

    bool byVertex() const { return vertexReader != nobody; }
};

class StagePlacer {
public:
    StagePlacer(const Material& material, const Dataflow& flow) : material_(material), flow_(flow) {
        demands_.resize(flow.nodes.size());
        for (std::size_t i = 0; i < flow.nodes.size(); ++i) {
            demands_[i].portsByFragment.resize(flow.nodes[i].generated->outputs.size());
        }
    }

    StagedShader place() {
        demandByFragment(flow_.colour);
        if (flow_.hasAlpha) {
            demandByFragment(flow_.alpha);
        }
        // readers come behind their sources, so that every demand on a node is known when it is placed
        for (std::size_t i = flow_.nodes.size(); i-- > 0;) {
            placeNode(i);
        }
        for (ShaderStage* stage : {&shader_.vertex, &shader_.fragment}) {
            std::reverse(stage->functions.begin(), stage->functions.end());
            std::reverse(stage->uniforms.begin(), stage->uniforms.end());
        }
        std::reverse(shader_.attributes.begin(), shader_.attributes.end());
        std::reverse(crossing_.begin(), crossing_.end());
        packInterpolants();
        return std::move(shader_);
    }

private:
    const MaterialItem& itemOf(std::size_t node) const { return material_.items[flow_.nodes[node].owner]; }

    [[noreturn]] void fail(std::size_t node, std::initializer_list<std::string_view> pieces) const {
        const MaterialItem& item = itemOf(node);
        throw HostError({material_.file, item.line}, joinText({nodeTitle(item), ": ", joinText(pieces)}));
    }

    void demandByFragment(const ValueSource& value) {
        demands_[value.node].byFragment = true;
        demands_[value.node].portsByFragment[value.port] = true;
    }

    void demandInputs(std::size_t node, bool byFragment, std::size_t vertexReader) {
        for (const ValueSource& input : flow_.nodes[node].inputs) {
            if (byFragment) {
                demandByFragment(input);
            }
            if (vertexReader != nobody && !demands_[input.node].byVertex()) {
                demands_[input.node].vertexReader = vertexReader;
            }
        }
    }

    /// Notes the values of a node in the vertex program that the fragment program reads.
    void cross(std::size_t node) {
        for (std::size_t port = demands_[node].portsByFragment.size(); port-- > 0;) {
            if (demands_[node].portsByFragment[port]) {
                crossing_.push_back({node, port});
            }
        }
    }

    void placeNode(std::size_t node) {
        const GeneratorNode& generated = *flow_.nodes[node].generated;
        const Demand& demand = demands_[node];
        switch (generated.kind) {
        case NodeKind::Function:
            placeFunction(node);
            return;
        case NodeKind::VaryingParameter:
            shader_.attributes.push_back(node);
            cross(node);
            return;
        case NodeKind::UniformParameter:
            if (demand.byVertex()) {
                shader_.vertex.uniforms.push_back(node);
            }
            if (demand.byFragment) {
                shader_.fragment.uniforms.push_back(node);
            }
            return;
        case NodeKind::InterfaceParameter:
        case NodeKind::RegisterParameter:
        case NodeKind::InterpolantParameter:
            break;
        }
        fail(node, {"this host does not supply ", describe(generated)});
    }

    void placeFunction(std::size_t node) {
        const Demand& demand = demands_[node];
        const ExecutionLevel level = flow_.nodes[node].generated->level;
        if (level == ExecutionLevel::Fragment && demand.byVertex()) {
            fail(node, {"this runs per fragment, and ", nodeTitle(itemOf(demand.vertexReader)),
                        ", which runs per vertex, needs its value"});
        }
        const bool inVertex = level == ExecutionLevel::Vertex || demand.byVertex();
        const bool inFragment = level != ExecutionLevel::Vertex && demand.byFragment;
        if (inVertex) {
            shader_.vertex.functions.push_back(node);
        }
        if (inFragment) {
            shader_.fragment.functions.push_back(node);
        } else {
            cross(node);
        }
        const std::size_t reader = level == ExecutionLevel::Vertex ? node : demand.vertexReader;
        demandInputs(node, inFragment, reader);
    }

    /// First fit, widest first: with widths of one to four it leaves no register that could have been saved.
    void packInterpolants() {
        std::vector<std::size_t> order(crossing_.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t left, std::size_t right) { return widthOf(left) > widthOf(right); });
        shader_.interpolants.resize(crossing_.size());
        for (const std::size_t index : order) {
            const std::int32_t width = widthOf(index);
            auto place = std::find_if(shader_.registers.begin(), shader_.registers.end(),
                                      [&](const InterpolantRegister& entry) {
                                          return entry.componentCount + width <= registerWidth;
                                      });
            if (place == shader_.registers.end()) {
                place = shader_.registers.insert(place, InterpolantRegister{});
            }
            shader_.interpolants[index] = {crossing_[index],
                                           static_cast<std::size_t>(place - shader_.registers.begin()),
                                           place->componentCount};
            place->componentCount += width;
            if (typeOf(index).componentType != ComponentType::Half) {
                place->componentType = ComponentType::Float;
            }
        }
        const auto available =
            static_cast<std::size_t>(registerEntry(registers::vertexInterpolant).registerCount);
        if (shader_.registers.size() > available) {
            throw HostError({material_.file, material_.line},
                            joinText({"this material passes ", std::to_string(crossing_.size()),
                                      " values from the vertex to the fragment program, which takes ",
                                      std::to_string(shader_.registers.size()),
                                      " interpolant registers, and there are ", std::to_string(available),
                                      "; compute more per fragment, or read fewer uv and colour sets"}));
        }
    }

    const ShaderType& typeOf(std::size_t crossing) const { return flow_.port(crossing_[crossing]).type; }

    std::int32_t widthOf(std::size_t crossing) const {
        const ShaderType& type = typeOf(crossing);
        const bool canCross =
            (type.componentType == ComponentType::Float || type.componentType == ComponentType::Half ||
             type.componentType == ComponentType::Fixed) &&
            type.rows == 1 && type.arraySize == 1;
        if (!canCross) {
            fail(crossing_[crossing].node, {"a value of type ", typeText(type),
                                            " cannot pass from the vertex to the fragment program"});
        }
        return type.columns;
    }

    const Material& material_;
    const Dataflow& flow_;
    std::vector<Demand> demands_;
    std::vector<ValueSource> crossing_;
    StagedShader shader_;
};

} // namespace

StagedShader placeInStages(const Material& material, const Dataflow& flow) {
    return StagePlacer(material, flow).place();
}

} // namespace patina
