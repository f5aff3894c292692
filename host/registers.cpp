#include "host/registers.h"

#include "host/framework.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace patina {

using namespace detail;

namespace {

constexpr std::size_t nobody = std::numeric_limits<std::size_t>::max();
constexpr std::size_t framework = nobody - 1;

bool isSampler(const ShaderType& type) { return type.componentType >= ComponentType::Sampler1D; }

/// The registers of one kind in one program.
struct RegisterSpace {
    const char* program;
    std::int32_t index;          ///< into the register table
    const char* what;            ///< that a program can have too many of
    std::int32_t frameworkCount; ///< the first ones, which are the framework's
    const char* frameworkUse;    ///< what those are for
};

constexpr RegisterSpace vertexAttributes = {"vertex", registers::vertexAttribute, "vertex attributes", 1,
                                            "the position among them"};
constexpr RegisterSpace vertexConstants = {"vertex", registers::vertexConstant, "constant registers",
                                           frameworkConstantCount, "the framework's matrix among them"};
constexpr RegisterSpace vertexSamplers = {"vertex", registers::vertexSampler, "textures", 0, ""};
// the table has one entry for the constants of both programs
constexpr RegisterSpace fragmentConstants = {"fragment", registers::vertexConstant, "constant registers", 0,
                                             ""};
constexpr RegisterSpace fragmentSamplers = {"fragment", registers::fragmentSampler, "textures", 0, ""};

/// A parameter that is to be placed.
struct Parameter {
    std::size_t first = 0;         ///< the first node of its name
    std::size_t claimant = nobody; ///< the first of them that names a register
};

/// Gives out the registers of one space.
class RegisterPlacer {
public:
    RegisterPlacer(const Material& material, const Dataflow& flow, const RegisterSpace& space)
        : material_(material), flow_(flow), space_(space),
          owners_(static_cast<std::size_t>(registerEntry(space.index).registerCount), nobody),
          usedCount_(space.frameworkCount) {
        std::fill_n(owners_.begin(), space.frameworkCount, framework);
    }

    bool holds(const RegisterReference& reference) const { return reference.index == space_.index; }

    /// The register that the parameter names itself.
    RegisterReference claim(std::size_t node) {
        const RegisterReference& wanted = generated(node).registerReference;
        const std::int64_t span = spanOf(node);
        if (wanted.index != space_.index || wanted.number < 0 || wanted.number + span > count()) {
            const std::int32_t last = registerEntry(space_.index).registerCount - 1;
            fail(node,
                 {"parameter \"", generated(node).name, "\" names a register that cannot be its own: the ",
                  space_.program, " program holds it in ", std::to_string(span), " of \"",
                  registerText({space_.index, 0}), "\" to \"", registerText({space_.index, last}), "\""});
        }
        const auto first = owners_.begin() + wanted.number;
        const auto taken =
            std::find_if(first, first + span, [](std::size_t owner) { return owner != nobody; });
        if (taken != first + span) {
            failTaken(node, *taken);
        }
        take(wanted.number, span, node);
        return wanted;
    }

    /// Notes a parameter that is to be allocated, so that a message can say how many registers all need.
    void expect(std::size_t node) {
        const std::int64_t span = spanOf(node);
        const std::int64_t most = std::numeric_limits<std::int64_t>::max();
        expectedCount_ = span > most - expectedCount_ ? most : expectedCount_ + span;
    }

    /// The first registers that are free.
    RegisterReference allocate(std::size_t node) {
        const std::int64_t span = spanOf(node);
        if (usedCount_ + span > count()) {
            failTooMany(node);
        }
        const auto gap = std::search_n(owners_.begin(), owners_.end(), span, nobody);
        if (gap == owners_.end()) {
            fail(node,
                 {describe(generated(node)), " takes ", std::to_string(span), " ", space_.what,
                  " side by side, and the registers that other parameters name leave no such gap in the ",
                  space_.program, " program"});
        }
        const auto number = static_cast<std::int32_t>(gap - owners_.begin());
        take(number, span, node);
        expectedCount_ -= span;
        return {space_.index, number};
    }

private:
    const GeneratorNode& generated(std::size_t node) const { return *flow_.nodes[node].generated; }

    std::string titleOf(std::size_t node) const { return ownerTitle(material_, flow_.nodes[node]); }

    std::int64_t count() const { return static_cast<std::int64_t>(owners_.size()); }

    /// A register for each row of each element.
    std::int64_t spanOf(std::size_t node) const {
        const ShaderType& type = generated(node).type;
        return std::max<std::int64_t>(std::int64_t{type.rows} * type.arraySize, 1);
    }

    void take(std::int32_t number, std::int64_t span, std::size_t node) {
        std::fill_n(owners_.begin() + number, span, node);
        usedCount_ += span;
    }

    [[noreturn]] void fail(std::size_t node, std::initializer_list<std::string_view> pieces) const {
        throw HostError(ownerPosition(material_, flow_.nodes[node]),
                        joinText({titleOf(node), ": ", joinText(pieces)}));
    }

    [[noreturn]] void failTooMany(std::size_t node) const {
        const std::int64_t most = std::numeric_limits<std::int64_t>::max();
        const std::int64_t needed = expectedCount_ > most - usedCount_ ? most : expectedCount_ + usedCount_;
        fail(node, {describe(generated(node)), " finds no room: the ", space_.program, " program needs ",
                    std::to_string(needed), " ", space_.what, space_.frameworkCount == 0 ? "" : ", ",
                    space_.frameworkUse, ", and there are ", std::to_string(count()),
                    "; let nodes share parameters, or leave some out"});
    }

    [[noreturn]] void failTaken(std::size_t node, std::size_t owner) const {
        if (owner == framework) {
            const RegisterReference last = {space_.index, space_.frameworkCount - 1};
            fail(node, {describe(generated(node)), " cannot have that register: in the ", space_.program,
                        " program those up to \"", registerText(last), "\" are the shader framework's"});
        }
        fail(node,
             {describe(generated(node)), " cannot have that register, which ", describe(generated(owner)),
              " of ", titleOf(owner), " has; one of them must take another"});
    }

    const Material& material_;
    const Dataflow& flow_;
    const RegisterSpace& space_;
    std::vector<std::size_t> owners_; ///< by register number
    std::int64_t usedCount_;
    std::int64_t expectedCount_ = 0; ///< that are still to be allocated
};

/// Places the parameters of one program.
class ParameterPlacer {
public:
    ParameterPlacer(const Material& material, const Dataflow& flow) : material_(material), flow_(flow) {}

    /// `samplers` are for those of a sampler type, `others` for the rest.
    std::vector<PlacedParameter> place(const std::vector<std::size_t>& nodes, RegisterPlacer& samplers,
                                       RegisterPlacer& others) const {
        const std::vector<Parameter> parameters = distinct(nodes);
        const auto placerFor = [&](const Parameter& parameter) -> RegisterPlacer& {
            return isSampler(generated(parameter.first).type) ? samplers : others;
        };
        std::vector<PlacedParameter> placed;
        // what is named is taken first, so that the rest avoids it
        for (const Parameter& parameter : parameters) {
            placed.push_back({parameter.first, {}});
            if (parameter.claimant != nobody) {
                placed.back().place = placerFor(parameter).claim(parameter.claimant);
            } else {
                placerFor(parameter).expect(parameter.first);
            }
        }
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            if (parameters[i].claimant == nobody) {
                placed[i].place = placerFor(parameters[i]).allocate(parameters[i].first);
            }
        }
        return placed;
    }

private:
    const GeneratorNode& generated(std::size_t node) const { return *flow_.nodes[node].generated; }

    std::string titleOf(std::size_t node) const { return ownerTitle(material_, flow_.nodes[node]); }

    std::vector<Parameter> distinct(const std::vector<std::size_t>& nodes) const {
        std::vector<Parameter> parameters;
        std::unordered_map<std::string_view, std::size_t> indexByName;
        for (const std::size_t node : nodes) {
            const auto [entry, isNew] = indexByName.try_emplace(generated(node).name, parameters.size());
            if (isNew) {
                parameters.push_back({node, nobody});
            }
            Parameter& parameter = parameters[entry->second];
            if (generated(node).registerReference.index == registers::unknown) {
                continue;
            }
            if (parameter.claimant == nobody) {
                parameter.claimant = node;
            }
            requireOnePlace(parameter.claimant, node);
        }
        return parameters;
    }

    /// Nodes that share a parameter cannot name two registers for it.
    void requireOnePlace(std::size_t earlier, std::size_t node) const {
        if (generated(earlier).registerReference != generated(node).registerReference) {
            throw HostError(ownerPosition(material_, flow_.nodes[node]),
                            joinText({titleOf(node), ": parameter \"", generated(node).name,
                                      "\" names another register than the same parameter of ",
                                      titleOf(earlier), "; rename one of the nodes"}));
        }
    }

    const Material& material_;
    const Dataflow& flow_;
};

/// Takes the registers that nodes read as such; several nodes may read one.
void reserve(const Dataflow& flow, const std::vector<std::size_t>& nodes,
             std::initializer_list<RegisterPlacer*> placers) {
    std::set<std::pair<std::int32_t, std::int32_t>> reserved;
    for (const std::size_t node : nodes) {
        const RegisterReference& reference = flow.nodes[node].generated->registerReference;
        for (RegisterPlacer* placer : placers) {
            if (placer->holds(reference) && reserved.insert({reference.index, reference.number}).second) {
                placer->claim(node);
            }
        }
    }
}

/// The varyings that are no names of the position.
std::vector<std::size_t> withoutPositions(const StagedShader& shader) {
    std::vector<std::size_t> others;
    std::copy_if(shader.attributes.begin(), shader.attributes.end(), std::back_inserter(others),
                 [&](std::size_t node) {
                     return std::find(shader.positions.begin(), shader.positions.end(), node) ==
                            shader.positions.end();
                 });
    return others;
}

} // namespace

RegisterAssignment assignRegisters(const Material& material, const Dataflow& flow,
                                   const StagedShader& shader) {
    const auto placerOf = [&](const RegisterSpace& space) { return RegisterPlacer(material, flow, space); };
    const ParameterPlacer parameters(material, flow);
    RegisterPlacer attributes = placerOf(vertexAttributes);
    RegisterPlacer vertexOthers = placerOf(vertexConstants);
    RegisterPlacer vertexTextures = placerOf(vertexSamplers);
    RegisterPlacer fragmentOthers = placerOf(fragmentConstants);
    RegisterPlacer fragmentTextures = placerOf(fragmentSamplers);
    RegisterAssignment assignment;
    reserve(flow, shader.vertex.registerInputs, {&attributes, &vertexOthers, &vertexTextures});
    reserve(flow, shader.fragment.registerInputs, {&fragmentTextures});
    assignment.attributes = parameters.place(withoutPositions(shader), attributes, attributes);
    assignment.vertexUniforms = parameters.place(shader.vertex.uniforms, vertexTextures, vertexOthers);
    assignment.fragmentUniforms =
        parameters.place(shader.fragment.uniforms, fragmentTextures, fragmentOthers);
    return assignment;
}

std::string registerName(const RegisterReference& reference) {
    if (reference.index == registers::vertexConstant) {
        return joinText({"c", std::to_string(reference.number)});
    }
    return registerText(reference);
}

} // namespace patina
