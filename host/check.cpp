#include "host/check.h"

#include "host/bindings_file.h"
#include "host/dataflow.h"
#include "host/generate.h"
#include "host/naming.h"
#include "host/registers.h"
#include "host/resolve.h"
#include "host/saved_bindings.h"
#include "host/stages.h"
#include "host/verify.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace patina {

using namespace detail;

namespace {

/// Looks for what an export lets pass.
class Reviewer {
public:
    Reviewer(const Material& material, const PluginSet& plugins, Warnings& warnings)
        : material_(material), plugins_(plugins), warnings_(warnings), used_(findUsed()) {}

    void review() {
        for (std::size_t index = 0; index < material_.items.size(); ++index) {
            const MaterialItem& item = material_.items[index];
            if (item.placeholder) {
                continue;
            }
            // what a faulty node shows may not be what is meant
            if (!item.faulty) {
                reviewName(item);
            }
            if (used_[index] && !item.faulty) {
                reviewInputs(item);
            } else if (!used_[index] && isWhole()) {
                warn(item, {"nothing that leaves the material needs this node; connect it or remove it"});
            }
        }
    }

private:
    void warn(const MaterialItem& item, std::initializer_list<std::string_view> pieces) {
        warnings_.push_back(
            {{material_.file, item.line}, joinText({nodeTitle(item), ": ", joinText(pieces)})});
    }

    /// Whether all connections and outputs are there: a node is not unused because of one that was refused.
    bool isWhole() const {
        const MaterialDocument& document = material_.document;
        return material_.connections.size() >=
                   document.connections.size() + document.leftOut.connections.size() &&
               material_.outputs.size() >= document.outputs.size() + document.leftOut.outputs.size();
    }

    /// What an output depends on, by connections and references. A node without outputs acts by itself.
    std::vector<bool> findUsed() const {
        std::unordered_map<const MaterialNode*, std::size_t> indexByNode;
        std::vector<std::vector<std::size_t>> sources(material_.items.size());
        std::vector<std::size_t> pending;
        for (std::size_t index = 0; index < material_.items.size(); ++index) {
            indexByNode.emplace(material_.items[index].node.get(), index);
            if (material_.items[index].node->outputs.empty()) {
                pending.push_back(index);
            }
        }
        for (const MaterialConnection& connection : material_.connections) {
            sources[connection.destination].push_back(connection.source);
        }
        for (std::size_t index = 0; index < material_.items.size(); ++index) {
            for (const std::shared_ptr<Property>& property : *material_.items[index].node->properties) {
                if (property->kind == PropertyType::Node && property->nodeValue) {
                    sources[index].push_back(indexByNode.at(property->nodeValue.get()));
                }
            }
        }
        for (const MaterialOutput& output : material_.outputs) {
            pending.push_back(output.source);
        }
        std::vector<bool> used(material_.items.size(), false);
        while (!pending.empty()) {
            const std::size_t index = pending.back();
            pending.pop_back();
            if (!used[index]) {
                used[index] = true;
                pending.insert(pending.end(), sources[index].begin(), sources[index].end());
            }
        }
        return used;
    }

    void reviewInputs(const MaterialItem& item) {
        for (const Port& port : item.node->inputs) {
            if (!port.connected && !hasDefault(*item.node, port)) {
                warn(item, {"input \"", port.name, "\" is not connected, and has no default to set"});
            }
        }
    }

    /// Whether a property stands in for an input: the port "in_value1" has the default "Default Value 1".
    static bool hasDefault(const MaterialNode& node, const Port& port) {
        constexpr std::string_view prefix = "in_";
        std::string_view name = port.name;
        if (name.substr(0, prefix.size()) == prefix) {
            name.remove_prefix(prefix.size());
        }
        const std::string wanted = "default" + plainText(name);
        return std::any_of(node.properties->begin(), node.properties->end(), [&](const auto& property) {
            return property->visible && plainText(property->name) == wanted;
        });
    }

    /// In lower case, without blanks and underscores.
    static std::string plainText(std::string_view text) {
        std::string plain = lowerCase(std::string(text));
        plain.erase(std::remove_if(plain.begin(), plain.end(),
                                   [](char letter) { return letter == ' ' || letter == '_'; }),
                    plain.end());
        return plain;
    }

    /// A binding goes by its node's name, which artists see.
    void reviewName(const MaterialItem& item) {
        const bool presents =
            onBehalfOf(material_, item, item.line, [&] { return item.node->generatesBinding(); });
        if (!presents) {
            return;
        }
        const std::string name = item.node->name();
        if (name.empty()) {
            warn(item, {"its binding has no name; set the \"Name\""});
        } else if (name == plugins_.createNode(item.node->typeName())->name()) {
            warn(item, {"its binding is called \"", name,
                        "\", like that of every node of its type; set the \"Name\""});
        }
    }

    const Material& material_;
    const PluginSet& plugins_;
    Warnings& warnings_;
    std::vector<bool> used_;
};

bool isEarlier(const SourcePosition& left, const SourcePosition& right) { return left.line < right.line; }

void sortByLine(CheckReport& report) {
    std::stable_sort(report.errors.begin(), report.errors.end(),
                     [](const HostError& left, const HostError& right) {
                         return isEarlier(left.position(), right.position());
                     });
    std::stable_sort(
        report.warnings.begin(), report.warnings.end(),
        [](const Warning& left, const Warning& right) { return isEarlier(left.position, right.position); });
}

void check(const MaterialDocument& document, const PluginSet& plugins, CheckReport& report) {
    Material material = buildMaterial(document, plugins, report.warnings, &report.errors);
    Reviewer(material, plugins, report.warnings).review();
    findErrors(material, report.errors, report.warnings);
}

} // namespace

void findErrors(Material& material, Errors& errors, Warnings& warnings) {
    resolveMaterial(material, &errors);
    const GeneratedGraph graph = generateGraph(material, &errors);
    const BindingCollection bindings = collectBindings(material, &errors);
    restoreSavedValues(material, bindings, warnings, &errors);
    const Dataflow flow = joinGraph(material, graph, &errors);
    verifyCode(material, flow, &errors);
    Errors ofStages;
    const StagedShader stages = placeInStages(material, flow, &ofStages);
    nameShader(material, flow, stages, &errors);
    if (ofStages.empty()) {
        attempt(&errors, [&] { assignRegisters(material, flow, stages); });
    }
    errors.insert(errors.end(), ofStages.begin(), ofStages.end());
}

CheckReport checkMaterial(const MaterialDocument& document, const PluginSet& plugins) {
    CheckReport report;
    attempt(&report.errors, [&] { check(document, plugins, report); });
    sortByLine(report);
    return report;
}

CheckReport checkFile(const std::filesystem::path& file, const PluginSet& plugins) {
    CheckReport report;
    attempt(&report.errors, [&] { check(readMaterial(file, &report.errors), plugins, report); });
    sortByLine(report);
    return report;
}

} // namespace patina
