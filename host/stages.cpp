#include "host/stages.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>

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
    StagePlacer(const Material& material, const Dataflow& flow, Errors* errors)
        : material_(material), flow_(flow), errors_(errors) {
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
            attempt(errors_, [&] { placeNode(i); });
        }
        for (ShaderStage* stage : {&shader_.vertex, &shader_.fragment}) {
            for (auto* nodes :
                 {&stage->functions, &stage->uniforms, &stage->registerInputs, &stage->registerOutputs}) {
                std::reverse(nodes->begin(), nodes->end());
            }
        }
        std::reverse(shader_.attributes.begin(), shader_.attributes.end());
        std::reverse(crossing_.begin(), crossing_.end());
        attempt(errors_, [&] { claimRegisters(); });
        attempt(errors_, [&] { packInterpolants(); });
        return std::move(shader_);
    }

private:
    const MaterialItem& itemOf(std::size_t node) const { return material_.items[flow_.nodes[node].owner]; }

    [[noreturn]] void fail(std::size_t node, std::initializer_list<std::string_view> pieces) const {
        const MaterialItem& item = itemOf(node);
        throw HostError({material_.file, item.line}, joinText({nodeTitle(item), ": ", joinText(pieces)}));
    }

    void demandByFragment(const ValueSource& value) {
        if (value.node == noSource) {
            return;
        }
        demands_[value.node].byFragment = true;
        demands_[value.node].portsByFragment[value.port] = true;
    }

    void demandInputs(std::size_t node, bool byFragment, std::size_t vertexReader) {
        for (const ValueSource& input : flow_.nodes[node].inputs) {
            if (byFragment) {
                demandByFragment(input);
            }
            if (vertexReader != nobody && input.node != noSource && !demands_[input.node].byVertex()) {
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
        case NodeKind::InterpolantParameter:
            placeInterpolant(node);
            return;
        case NodeKind::RegisterParameter:
            placeRegister(node);
            return;
        case NodeKind::InterfaceParameter: // joinGraph leaves none
            break;
        }
        fail(node, {"a shader has no place for ", describe(generated)});
    }

    void placeInterpolant(std::size_t node) {
        shader_.vertex.functions.push_back(node);
        cross(node);
        demandInputs(node, false, node);
    }

    void placeRegister(std::size_t node) {
        const GeneratorNode& generated = *flow_.nodes[node].generated;
        const bool inVertex = registerEntry(generated.registerReference.index).stage == 0;
        ShaderStage& stage = inVertex ? shader_.vertex : shader_.fragment;
        if (!generated.inputs.empty()) {
            stage.registerOutputs.push_back(node);
            demandInputs(node, !inVertex, inVertex ? node : nobody);
            return;
        }
        if (!inVertex && demands_[node].byVertex()) {
            fail(node, {describe(generated), " belongs to the fragment program, and ",
                        nodeTitle(itemOf(demands_[node].vertexReader)),
                        ", which runs per vertex, needs its value"});
        }
        stage.registerInputs.push_back(node);
        if (inVertex) {
            cross(node);
        }
    }

    /// Holds the registers that nodes name against the table and against one another.
    void claimRegisters() {
        std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> firstByRegister;
        for (std::size_t node = 0; node < flow_.nodes.size(); ++node) {
            const GeneratorNode& generated = *flow_.nodes[node].generated;
            const RegisterReference& reference = generated.registerReference;
            if (generated.kind != NodeKind::RegisterParameter) {
                continue;
            }
            const std::int32_t available = registerEntry(reference.index).registerCount;
            if (reference.index == registers::unknown || reference.number < 0 ||
                reference.number >= available) {
                fail(node, {describe(generated), " is no register of a shader"});
            }
            if (reference == RegisterReference{registers::fragmentColour, 0} ||
                reference.index == registers::vertexPosition) {
                fail(node, {describe(generated), " is written by the shader framework"});
            }
            const auto [first, isNew] =
                firstByRegister.try_emplace({reference.index, reference.number}, node);
            const bool isWritten = !generated.inputs.empty();
            if (!isNew && (isWritten || flow_.nodes[first->second].generated->type != generated.type)) {
                fail(node, {describe(generated), " is claimed by ", nodeTitle(itemOf(first->second)),
                            " already, as ", describe(*flow_.nodes[first->second].generated)});
            }
            if (reference.index == registers::vertexInterpolant ||
                reference.index == registers::fragmentInterpolant) {
                claimedInterpolants_.insert(reference.number);
            }
        }
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

    /// Values, as indices into crossing_, in registers that hold them together.
    using Packing = std::vector<std::vector<std::size_t>>;

    /// First fit, widest first: with widths of one to four it leaves no register that could have been saved.
    Packing pack(std::vector<std::size_t> values) const {
        std::stable_sort(values.begin(), values.end(),
                         [&](std::size_t left, std::size_t right) { return widthOf(left) > widthOf(right); });
        Packing packing;
        std::vector<std::int32_t> used;
        for (const std::size_t value : values) {
            const std::int32_t width = widthOf(value);
            const auto place = std::find_if(
                used.begin(), used.end(), [&](std::int32_t count) { return count + width <= registerWidth; });
            const auto index = static_cast<std::size_t>(place - used.begin());
            if (index == used.size()) {
                used.push_back(0);
                packing.emplace_back();
            }
            used[index] += width;
            packing[index].push_back(value);
        }
        return packing;
    }

    /// Half and float values apart, unless that takes more registers than mixing them.
    Packing packAll() const {
        std::vector<std::size_t> all(crossing_.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        std::vector<std::size_t> halves;
        std::vector<std::size_t> others;
        for (const std::size_t value : all) {
            (typeOf(value).componentType == ComponentType::Half ? halves : others).push_back(value);
        }
        Packing apart = pack(others);
        const Packing halfRegisters = pack(halves);
        apart.insert(apart.end(), halfRegisters.begin(), halfRegisters.end());
        Packing mixed = pack(all);
        return apart.size() <= mixed.size() ? apart : mixed;
    }

    void packInterpolants() {
        const Packing packing = packAll();
        shader_.interpolants.resize(crossing_.size());
        std::int32_t number = 0;
        for (const std::vector<std::size_t>& values : packing) {
            while (claimedInterpolants_.count(number) != 0) {
                ++number;
            }
            InterpolantRegister entry;
            entry.number = number++;
            for (const std::size_t value : values) {
                shader_.interpolants[value] = {crossing_[value], shader_.registers.size(),
                                               entry.componentCount};
                entry.componentCount += widthOf(value);
                if (typeOf(value).componentType != ComponentType::Half) {
                    entry.componentType = ComponentType::Float;
                }
            }
            shader_.registers.push_back(entry);
        }
        const std::size_t available =
            static_cast<std::size_t>(registerEntry(registers::vertexInterpolant).registerCount) -
            claimedInterpolants_.size();
        if (packing.size() > available) {
            failTooFew(packing.size(), available);
        }
    }

    [[noreturn]] void failTooFew(std::size_t taken, std::size_t available) const {
        throw HostError(
            {material_.file, material_.line},
            joinText({"this material passes ", std::to_string(crossing_.size()),
                      " values from the vertex to the fragment program, which takes ", std::to_string(taken),
                      " interpolant registers, and there are ", std::to_string(available),
                      "; compute more per fragment, or read fewer uv and colour sets"}));
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
    Errors* errors_;
    std::vector<Demand> demands_;
    std::vector<ValueSource> crossing_;
    std::set<std::int32_t> claimedInterpolants_; ///< numbers of registers that nodes name themselves
    StagedShader shader_;
};

} // namespace

StagedShader placeInStages(const Material& material, const Dataflow& flow, Errors* errors) {
    return StagePlacer(material, flow, errors).place();
}

} // namespace patina
