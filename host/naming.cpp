#include "host/naming.h"

#include "host/cg_names.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>

namespace patina {

using namespace detail;

namespace {

class ShaderNamer {
public:
    ShaderNamer(const Material& material, const Dataflow& flow, const StagedShader& shader, Errors* errors)
        : material_(material), flow_(flow), shader_(shader), errors_(errors) {
        names_.functions.resize(flow.nodes.size());
        names_.firstValues.reserve(flow.nodes.size() + 1);
        std::size_t valueCount = 0;
        for (const DataflowNode& node : flow.nodes) {
            names_.firstValues.push_back(valueCount);
            const bool isWritten =
                node.generated->kind == NodeKind::RegisterParameter && node.generated->outputs.empty();
            valueCount += node.generated->outputs.size() + (isWritten ? 1 : 0);
        }
        names_.firstValues.push_back(valueCount);
        names_.allValues.resize(valueCount);
        allocator_.reserve(valueCount);
    }

    ShaderNames name() {
        takeParameters();
        namePosition();
        names_.clipPosition = allocator_.allocate("clipPosition");
        names_.colour = allocator_.allocate("colour");
        for (std::size_t i = 0; i < shader_.registers.size(); ++i) {
            names_.interpolants.push_back(allocator_.allocate(joinText({"interpolant", std::to_string(i)})));
        }
        nameFunctions();
        nameValues();
        return std::move(names_);
    }

private:
    std::string titleOf(std::size_t node) const { return ownerTitle(material_, flow_.nodes[node]); }

    [[noreturn]] void fail(std::size_t node, std::initializer_list<std::string_view> pieces) const {
        throw HostError(ownerPosition(material_, flow_.nodes[node]),
                        joinText({titleOf(node), ": ", joinText(pieces)}));
    }

    void takeParameters() {
        for (std::size_t i = 0; i < nodeCount_; ++i) {
            const NodeKind kind = flow_.nodes[i].generated->kind;
            if (kind == NodeKind::UniformParameter || kind == NodeKind::VaryingParameter) {
                attempt(errors_, [&] { takeParameter(i); });
            }
        }
    }

    void takeParameter(std::size_t index) {
        const GeneratorNode& node = *flow_.nodes[index].generated;
        nameValuesOf(index, allocator_.take(node.name));
        if (isReservedName(node.name)) {
            fail(index, {"the name \"", node.name,
                         "\" is reserved in Cg or by the shader framework; rename the node"});
        }
        const auto [first, isNew] = parameterByName_.try_emplace(node.name, index);
        const GeneratorNode& earlier = *flow_.nodes[first->second].generated;
        if (isNew || (earlier.kind == node.kind && earlier.type == node.type)) {
            return;
        }
        // the framework cannot rename what it has
        const bool isOurs = flow_.nodes[index].owner == frameworkOwner;
        const std::size_t blamed = isOurs ? first->second : index;
        const std::size_t other = isOurs ? index : first->second;
        fail(blamed, {describe(*flow_.nodes[blamed].generated), " has the name of ",
                      describe(*flow_.nodes[other].generated), " of ", titleOf(other),
                      flow_.nodes[other].owner == frameworkOwner ? "; rename the node"
                                                                 : "; rename one of the nodes"});
    }

    /// A node may read the position itself; it is declared once then, under the first name that it has.
    void namePosition() {
        if (shader_.positions.empty()) {
            names_.position = allocator_.allocate("position");
            return;
        }
        names_.position = allocator_.take(flow_.nodes[shader_.positions.front()].generated->name);
        for (const std::size_t index : shader_.positions) {
            nameValuesOf(index, names_.position);
        }
    }

    void nameFunctions() {
        for (std::size_t i = 0; i < nodeCount_; ++i) {
            const GeneratorNode& node = *flow_.nodes[i].generated;
            const std::size_t first = flow_.functions[i];
            if (first != i) {
                names_.functions[i] = names_.functions[first];
            } else if (node.kind == NodeKind::Function) {
                names_.functions[i] = allocator_.allocate(node.name);
            }
        }
    }

    /// All of them alike.
    void nameValuesOf(std::size_t node, std::string_view name) {
        std::fill(names_.allValues.begin() + static_cast<std::ptrdiff_t>(names_.firstValues[node]),
                  names_.allValues.begin() + static_cast<std::ptrdiff_t>(names_.firstValues[node + 1]), name);
    }

    std::string_view stemOf(const DataflowNode& node) const {
        return node.owner == frameworkOwner ? "framework" : std::string_view(material_.items[node.owner].id);
    }

    /// A node's values are named after its id; those of conversions, which have no id, after what they
    /// convert; registers after themselves.
    void nameValues() {
        for (std::size_t i = 0; i < nodeCount_; ++i) {
            const GeneratorNode& node = *flow_.nodes[i].generated;
            switch (node.kind) { // GCOVR_EXCL_BR_LINE: generateGraph refuses other kinds
            case NodeKind::Function:
            case NodeKind::InterpolantParameter:
                for (std::size_t port = 0; port < node.outputs.size(); ++port) {
                    names_.allValues[names_.firstValues[i] + port] = nameOutput(flow_.nodes[i], port);
                }
                break;
            case NodeKind::RegisterParameter:
                nameValuesOf(i, registerName(node));
                break;
            case NodeKind::InterfaceParameter:
            case NodeKind::VaryingParameter:
            case NodeKind::UniformParameter:
                break;
            }
        }
    }

    std::string_view nameOutput(const DataflowNode& node, std::size_t port) {
        const GeneratorPort& output = node.generated->outputs[port];
        wanted_.clear();
        if (!node.conversion) {
            wanted_.append(stemOf(node), "_", output.name);
            return allocator_.allocate(wanted_.view());
        }
        const bool hasSource = node.inputs[0].node != noSource;
        const std::string_view stem = hasSource ? names_.value(node.inputs[0]) : stemOf(node);
        wanted_.append(stem, "_", typeText(output.type));
        return allocator_.allocate(wanted_.view());
    }

    /// The name of a register's parameter, which all nodes that read it share.
    std::string_view registerName(const GeneratorNode& node) {
        const std::string text = registerText(node.registerReference);
        const RegisterEntry& entry = registerEntry(node.registerReference.index);
        std::string_view& name = registerNames_[(entry.stage == 0 ? "vertex " : "fragment ") + text];
        if (name.empty()) {
            name = allocator_.allocate(node.name.empty() ? text : node.name);
        }
        return name;
    }

    const Material& material_;
    const Dataflow& flow_;
    const std::size_t nodeCount_ = flow_.nodes.size();
    const StagedShader& shader_;
    Errors* errors_;
    std::unordered_map<std::string_view, std::size_t> parameterByName_;
    std::map<std::string, std::string_view> registerNames_;
    TextBuilder wanted_; ///< one name after another
    ShaderNames names_;
    NameAllocator& allocator_ = *names_.allocator;
};

} // namespace

ShaderNames nameShader(const Material& material, const Dataflow& flow, const StagedShader& shader,
                       Errors* errors) {
    return ShaderNamer(material, flow, shader, errors).name();
}

} // namespace patina
