#include "host/stages.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr std::int32_t registerWidth = 4;
constexpr ShaderType positionType = {ComponentType::Float, 4, 1, 1};
constexpr RegisterReference positionRegister = {registers::vertexAttribute, 0};
constexpr std::size_t nobody = std::numeric_limits<std::size_t>::max();

/// Where the values of a node are read.
struct Demand {
    bool byFragment = false;
    std::size_t vertexReader = nobody; ///< the vertex function for whose sake the vertex program reads it
    std::size_t firstPort = 0;         ///< of the node's outputs, which lie side by side

    bool byVertex() const { return vertexReader != nobody; }
};

class StagePlacer {
public:
    StagePlacer(const Material& material, const Dataflow& flow, Errors* errors)
        : material_(material), flow_(flow), errors_(errors) {
        demands_.resize(flow.nodes.size());
        std::size_t portCount = 0;
        for (std::size_t i = 0; i < flow.nodes.size(); ++i) {
            demands_[i].firstPort = portCount;
            portCount += flow.nodes[i].generated->outputs.size();
        }
        portsByFragment_.resize(portCount);
        findDeclarations();
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
        for (const std::size_t node : shader_.positions) {
            attempt(errors_, [&] { requirePositionRegister(node); });
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
    std::string titleOf(std::size_t node) const { return ownerTitle(material_, flow_.nodes[node]); }

    const GeneratorNode& generated(std::size_t node) const { return *flow_.nodes[node].generated; }

    void findDeclarations() {
        std::set<std::string_view> positionNames;
        for (const DataflowNode& node : flow_.nodes) {
            if (isInPositionRegister(*node.generated)) {
                positionNames.insert(node.generated->name);
            }
        }
        shader_.declarations.resize(flow_.nodes.size());
        std::iota(shader_.declarations.begin(), shader_.declarations.end(), std::size_t{0});
        std::map<std::string, std::size_t> firstByKey;
        const auto declare = [&](std::size_t index, const std::string& key) {
            shader_.declarations[index] = firstByKey.try_emplace(key, index).first->second;
        };
        for (std::size_t i = 0; i < nodeCount_; ++i) {
            const GeneratorNode& node = generated(i);
            if (node.kind == NodeKind::VaryingParameter) {
                const bool isPosition = node.type == positionType && positionNames.count(node.name) != 0;
                if (isPosition) {
                    shader_.positions.push_back(i);
                }
                declare(i, isPosition ? "position" : "varying " + declaration(node.type, node.name));
            } else if (node.kind == NodeKind::RegisterParameter && node.inputs.empty()) {
                const RegisterReference& reference = node.registerReference;
                declare(i, joinText({"register ", std::to_string(reference.index), " ",
                                     std::to_string(reference.number), " ", typeText(node.type)}));
            }
        }
    }

    static bool isInPositionRegister(const GeneratorNode& node) {
        return node.kind == NodeKind::VaryingParameter && node.type == positionType &&
               node.registerReference == positionRegister;
    }

    /// A varying of the position's name cannot be elsewhere.
    void requirePositionRegister(std::size_t node) const {
        const RegisterReference& reference = generated(node).registerReference;
        if (reference.index != registers::unknown && reference != positionRegister) {
            fail(node, {describe(generated(node)), " names another register than the position of the vertex, "
                                                   "which has that name too; rename one of the nodes"});
        }
    }

    [[noreturn]] void fail(std::size_t node, std::initializer_list<std::string_view> pieces) const {
        throw HostError(ownerPosition(material_, flow_.nodes[node]),
                        joinText({titleOf(node), ": ", joinText(pieces)}));
    }

    /// What several nodes declare is demanded of the first of them, which comes last here.
    void demandByFragment(const ValueSource& value) {
        if (value.node == noSource) {
            return;
        }
        demands_[value.node].byFragment = true;
        portsByFragment_[demands_[shader_.declarations[value.node]].firstPort + value.port] = 1;
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
        for (std::size_t port = generated(node).outputs.size(); port-- > 0;) {
            if (portsByFragment_[demands_[node].firstPort + port]) {
                crossing_.push_back({node, port});
            }
        }
    }

    void placeNode(std::size_t node) {
        const GeneratorNode& generated = *flow_.nodes[node].generated;
        const Demand& demand = demands_[node];
        switch (generated.kind) { // GCOVR_EXCL_BR_LINE: generateGraph refuses other kinds
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
                        titleOf(demands_[node].vertexReader), ", which runs per vertex, needs its value"});
        }
        stage.registerInputs.push_back(node);
        if (inVertex) {
            cross(node);
        }
    }

    using FirstByRegister = std::map<std::pair<std::int32_t, std::int32_t>, std::size_t>;

    /// Holds the registers that nodes name against the table and against one another.
    void claimRegisters() {
        FirstByRegister firstByRegister;
        for (std::size_t node = 0; node < nodeCount_; ++node) {
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
                fail(node, {describe(generated), " is claimed by ", titleOf(first->second), " already, as ",
                            describe(*flow_.nodes[first->second].generated)});
            }
            if (reference.index == registers::vertexInterpolant ||
                reference.index == registers::fragmentInterpolant) {
                claimedInterpolants_.insert(reference.number);
            }
        }
        requireWriters(firstByRegister);
    }

    /// What the fragment program reads of an interpolant register is what the vertex program writes to it.
    void requireWriters(const FirstByRegister& firstByRegister) const {
        for (const auto& [place, reader] : firstByRegister) {
            if (place.first != registers::fragmentInterpolant) {
                continue;
            }
            const auto writer = firstByRegister.find({registers::vertexInterpolant, place.second});
            const std::string text = registerText(generated(reader).registerReference);
            if (writer == firstByRegister.end()) {
                fail(reader, {"this reads ", describe(generated(reader)), ", and no node writes \"", text,
                              "\" per vertex; add one that does, or read an interpolant parameter"});
            }
            if (generated(writer->second).type != generated(reader).type) {
                fail(reader, {"this reads ", describe(generated(reader)), ", and ", titleOf(writer->second),
                              " writes it as ", typeText(generated(writer->second).type),
                              "; both must have one type"});
            }
        }
    }

    void placeFunction(std::size_t node) {
        const Demand& demand = demands_[node];
        const ExecutionLevel level = flow_.nodes[node].generated->level;
        if (level == ExecutionLevel::Fragment && demand.byVertex()) {
            fail(node, {"this runs per fragment, and ", titleOf(demand.vertexReader),
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
        Packing packing;
        std::stable_sort(values.begin(), values.end(),
                         [&](std::size_t left, std::size_t right) { return widthOf(left) > widthOf(right); });
        for (const std::size_t value : values) {
            const std::int32_t width = widthOf(value);
            const auto place = std::find_if(packing.begin(), packing.end(), [&](const auto& entry) {
                return usedIn(entry) + width <= registerWidth;
            });
            (place == packing.end() ? packing.emplace_back() : *place).push_back(value);
        }
        return packing;
    }

    std::int32_t usedIn(const std::vector<std::size_t>& entry) const {
        return std::accumulate(entry.begin(), entry.end(), std::int32_t{0},
                               [&](std::int32_t sum, std::size_t value) { return sum + widthOf(value); });
    }

    bool isHalf(std::size_t value) const { return typeOf(value).componentType == ComponentType::Half; }

    std::ptrdiff_t countMixed(const Packing& packing) const {
        return std::count_if(packing.begin(), packing.end(), [&](const std::vector<std::size_t>& entry) {
            const auto halves =
                std::count_if(entry.begin(), entry.end(), [&](std::size_t value) { return isHalf(value); });
            return halves != 0 && halves != static_cast<std::ptrdiff_t>(entry.size());
        });
    }

    Packing packAll() const {
        std::vector<std::size_t> all(crossing_.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        const Packing together = pack(all);
        requireEnough(together.size());
        std::vector<std::size_t> halves;
        std::vector<std::size_t> others;
        std::partition_copy(all.begin(), all.end(), std::back_inserter(halves), std::back_inserter(others),
                            [&](std::size_t value) { return isHalf(value); });
        Packing best = pack(others);
        const Packing filled = fill(best, halves, together.size());
        appendTo(best, pack(halves));
        for (const Packing* other : {&filled, &together}) {
            if (std::pair(other->size(), countMixed(*other)) < std::pair(best.size(), countMixed(best))) {
                best = *other;
            }
        }
        return best;
    }

    static void appendTo(Packing& packing, const Packing& more) {
        packing.insert(packing.end(), more.begin(), more.end());
    }

    /// Registers of `others` with halves in the room that they leave, in no more of them than it takes to
    /// need `wanted` registers.
    Packing fill(const Packing& others, const std::vector<std::size_t>& halves, std::size_t wanted) const {
        std::vector<std::size_t> roomiest(others.size());
        std::iota(roomiest.begin(), roomiest.end(), std::size_t{0});
        std::stable_sort(roomiest.begin(), roomiest.end(), [&](std::size_t left, std::size_t right) {
            return usedIn(others[left]) < usedIn(others[right]);
        });
        Packing packing = others;
        std::vector<std::size_t> apart = halves;
        std::vector<std::pair<std::size_t, std::size_t>> moved; // the half, and its register
        for (const std::size_t index : roomiest) {
            if (others.size() + pack(apart).size() <= wanted) {
                break;
            }
            moveInto(packing[index], index, apart, moved);
        }
        takeBack(packing, apart, moved);
        appendTo(packing, pack(apart));
        return packing;
    }

    /// Moves halves into a register as long as there is room, widest first.
    void moveInto(std::vector<std::size_t>& entry, std::size_t index, std::vector<std::size_t>& apart,
                  std::vector<std::pair<std::size_t, std::size_t>>& moved) const {
        for (std::int32_t width = registerWidth - usedIn(entry); width > 0; --width) {
            for (auto half = apart.begin(); half != apart.end();) {
                if (widthOf(*half) == width && usedIn(entry) + width <= registerWidth) {
                    entry.push_back(*half);
                    moved.emplace_back(*half, index);
                    half = apart.erase(half);
                } else {
                    ++half;
                }
            }
        }
    }

    /// Takes back the halves that save no register where they were moved, the last one first.
    void takeBack(Packing& packing, std::vector<std::size_t>& apart,
                  std::vector<std::pair<std::size_t, std::size_t>> moved) const {
        const std::size_t limit = pack(apart).size();
        std::reverse(moved.begin(), moved.end());
        for (const auto& [crossing, place] : moved) {
            std::vector<std::size_t> more = apart;
            more.push_back(crossing);
            std::sort(more.begin(), more.end());
            if (pack(more).size() <= limit) {
                apart = std::move(more);
                auto& entry = packing[place];
                entry.erase(std::find(entry.begin(), entry.end(), crossing));
            }
        }
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
    }

    void requireEnough(std::size_t taken) const {
        const std::size_t available =
            static_cast<std::size_t>(registerEntry(registers::vertexInterpolant).registerCount) -
            claimedInterpolants_.size();
        if (taken > available) {
            failTooFew(taken, available);
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
    const std::size_t nodeCount_ = flow_.nodes.size();
    Errors* errors_;
    std::vector<Demand> demands_;
    std::vector<char> portsByFragment_; ///< by output, whether the fragment program reads it
    std::vector<ValueSource> crossing_;
    std::set<std::int32_t> claimedInterpolants_; ///< numbers of registers that nodes name themselves
    StagedShader shader_;
};

} // namespace

StagedShader placeInStages(const Material& material, const Dataflow& flow, Errors* errors) {
    return StagePlacer(material, flow, errors).place();
}

} // namespace patina
