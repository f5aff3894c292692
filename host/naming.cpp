#include "host/naming.h"

#include "host/cg_names.h"
#include "nodemodel/text.h"

#include <map>
#include <unordered_map>

namespace patina {

using namespace detail;

namespace {

/// Everything that makes two generated functions the same but their name and level.
std::string functionIdentity(const GeneratorNode& function) {
    std::string identity = function.name;
    for (const auto* ports : {&function.inputs, &function.outputs}) {
        for (const GeneratorPort& port : *ports) {
            appendText(identity, {"\n", declaration(port.type, port.name)});
        }
        identity += "\n->";
    }
    identity += function.code;
    return identity;
}

class ShaderNamer {
public:
    ShaderNamer(const Material& material, const Dataflow& flow, const StagedShader& shader, Errors* errors)
        : material_(material), flow_(flow), shader_(shader), errors_(errors) {
        names_.functions.resize(flow.nodes.size());
        names_.values.resize(flow.nodes.size());
    }

    ShaderNames name() {
        takeParameters();
        namePosition();
        names_.clipPosition = allocator_.allocate("clipPosition");
        names_.colour = allocator_.allocate("colour");
        for (std::size_t i = 0; i < shader_.registers.size(); ++i) {
            names_.interpolants.push_back(allocator_.allocate("interpolant" + std::to_string(i)));
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
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            const NodeKind kind = flow_.nodes[i].generated->kind;
            if (kind == NodeKind::UniformParameter || kind == NodeKind::VaryingParameter) {
                attempt(errors_, [&] { takeParameter(i); });
            }
        }
    }

    void takeParameter(std::size_t index) {
        const GeneratorNode& node = *flow_.nodes[index].generated;
        names_.values[index].assign(node.outputs.size(), node.name);
        allocator_.take(node.name);
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
        names_.position = flow_.nodes[shader_.positions.front()].generated->name;
        for (const std::size_t index : shader_.positions) {
            names_.values[index].assign(1, names_.position);
        }
    }

    void nameFunctions() {
        std::unordered_map<std::string, std::string> nameByIdentity;
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            const GeneratorNode& node = *flow_.nodes[i].generated;
            if (node.kind == NodeKind::Function) {
                std::string& name = nameByIdentity[functionIdentity(node)];
                if (name.empty()) {
                    name = allocator_.allocate(toCgName(node.name));
                }
                names_.functions[i] = name;
            }
        }
    }

    const std::string& stemOf(const DataflowNode& node) const {
        static const std::string framework = "framework";
        return node.owner == frameworkOwner ? framework : material_.items[node.owner].id;
    }

    /// A node's values are named after its id; those of conversions, which have no id, after what they
    /// convert; registers after themselves.
    void nameValues() {
        for (std::size_t i = 0; i < flow_.nodes.size(); ++i) {
            const DataflowNode& node = flow_.nodes[i];
            switch (node.generated->kind) {
            case NodeKind::Function:
            case NodeKind::InterpolantParameter:
                for (const GeneratorPort& port : node.generated->outputs) {
                    const bool isNamedAfterSource = node.conversion && node.inputs[0].node != noSource;
                    const std::string& stem = isNamedAfterSource ? valueName(node.inputs[0]) : stemOf(node);
                    const std::string suffix = node.conversion ? typeText(port.type) : port.name;
                    names_.values[i].push_back(allocator_.allocate(toCgName(joinText({stem, "_", suffix}))));
                }
                break;
            case NodeKind::RegisterParameter:
                names_.values[i].push_back(registerName(*node.generated));
                break;
            case NodeKind::InterfaceParameter:
            case NodeKind::VaryingParameter:
            case NodeKind::UniformParameter:
                break;
            }
        }
    }

    /// The name of a register's parameter, which all nodes that read it share.
    std::string registerName(const GeneratorNode& node) {
        const std::string text = registerText(node.registerReference);
        const RegisterEntry& entry = registerEntry(node.registerReference.index);
        std::string& name = registerNames_[(entry.stage == 0 ? "vertex " : "fragment ") + text];
        if (name.empty()) {
            name = allocator_.allocate(toCgName(node.name.empty() ? text : node.name));
        }
        return name;
    }

    const std::string& valueName(const ValueSource& source) const {
        return names_.values[source.node][source.port];
    }

    const Material& material_;
    const Dataflow& flow_;
    const StagedShader& shader_;
    Errors* errors_;
    NameAllocator allocator_;
    std::unordered_map<std::string, std::size_t> parameterByName_;
    std::map<std::string, std::string> registerNames_;
    ShaderNames names_;
};

} // namespace

ShaderNames nameShader(const Material& material, const Dataflow& flow, const StagedShader& shader,
                       Errors* errors) {
    return ShaderNamer(material, flow, shader, errors).name();
}

} // namespace patina
