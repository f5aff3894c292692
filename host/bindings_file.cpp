#include "host/bindings_file.h"

#include "host/digest.h"
#include "host/targets.h"
#include "host/xml.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <unordered_map>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using LandingsByParameter = std::unordered_map<std::string, std::vector<Landing>>;

LandingsByParameter findLandings(const Dataflow& flow, const RegisterAssignment& registers) {
    LandingsByParameter landings;
    const auto add = [&](const char* stage, const std::vector<PlacedParameter>& parameters) {
        for (const PlacedParameter& parameter : parameters) {
            const std::string& name = flow.nodes[parameter.node].generated->name;
            landings[name].push_back({stage, registerName(parameter.place), name});
        }
    };
    add(vertexStageName, registers.vertexUniforms);
    add(vertexStageName, registers.attributes);
    add(fragmentStageName, registers.fragmentUniforms);
    return landings;
}

const char* kindName(ParameterKind kind) {
    constexpr std::array<const char*, 5> names = {"uniform", "sampler", "attribute", "interpolant", "output"};
    return names.at(static_cast<std::size_t>(kind));
}

void appendProgram(xmlNode* root, const ExportedProgram& program) {
    xmlNode* element = appendElement(root, "program");
    writeAttribute(element, "stage", program.stage);
    if (!program.target.empty()) {
        writeAttribute(element, "target", program.target);
        writeAttribute(element, "version", program.version);
    }
    writeAttribute(element, "file", program.file);
    writeAttribute(element, "sha256", program.sha256);
    for (const ProgramParameter& parameter : program.parameters) {
        xmlNode* child = appendElement(element, "parameter");
        for (const auto& [key, text] : describeParameter(parameter)) {
            writeAttribute(child, key, text);
        }
    }
}

void appendBinding(xmlNode* root, const ExportedBinding& exported) {
    const Binding& binding = *exported.binding;
    xmlNode* element = appendElement(root, "binding");
    writeAttribute(element, "kind", bindingKindName(binding));
    writeAttribute(element, "components", std::to_string(binding.componentCount()));
    if (!binding.group.empty()) {
        writeAttribute(element, "group", binding.group);
    }
    for (const auto& [key, text] : fileAnnotations(exported)) {
        writeAttribute(element, key, text);
    }
    for (const Landing& landing : exported.landings) {
        xmlNode* child = appendElement(element, "landing");
        writeAttribute(child, "stage", landing.stage);
        writeAttribute(child, "register", landing.registerName);
        writeAttribute(child, "name", landing.parameter);
    }
}

using ItemByName = std::unordered_map<std::string, std::size_t>;

/// The parameter of the programs that a binding sets.
const std::string& parameterOf(const Binding& binding) {
    return binding.cgName.empty() ? binding.name : binding.cgName;
}

/// The texts that are a binding's own, whole: an annotation ends where a text has its first null character.
Annotations textsOf(const Binding& binding) {
    return {{"tag", binding.name},
            {"cgname", binding.cgName},
            {"uv", binding.uvSet},
            {"desc", binding.description},
            {"helpUrl", binding.helpUrl},
            {"uilabel", binding.uiLabel},
            {"default", binding.formatDefault()},
            {"stream_type", binding.streamType},
            {"dataset_modifiers", binding.datasetModifiers},
            {"group", binding.group}};
}

/// Whether a bindings file says this of a binding itself: one that wrote it too would write it over.
bool isFilesOwn(std::string_view key) {
    return key == "kind" || key == "components" || key == "group" || key.starts_with(exportedPrefix);
}

std::string whyNoDocumentTexts(const Annotations& texts) {
    for (const auto& [key, text] : texts) {
        if (!isDocumentText(text)) {
            return joinText({"its \"", key, "\" is no text in UTF-8, or has control characters"});
        }
    }
    return {};
}

/// Collects the bindings of one material's nodes. All methods throw HostError.
class BindingCollector {
public:
    explicit BindingCollector(const Material& material) : material_(material) {}

    void add(std::size_t index) {
        const MaterialItem& item = material_.items[index];
        const std::size_t before = collection_.bindings.size();
        onBehalfOf(material_, item, item.line, [&] {
            if (item.node->generatesBinding()) {
                item.node->addBindings(collection_);
            }
        });
        requireBindings(item);
        for (std::size_t i = before; i < collection_.bindings.size(); ++i) {
            const Binding& binding = *collection_.bindings[i];
            requireOwn(index, itemByName_, binding.name, "has the name");
            requireOwn(index, itemByParameter_, parameterOf(binding), "sets the parameter");
            requireWritable(item, binding);
        }
    }

    BindingCollection take() {
        std::erase(collection_.bindings, nullptr); // of a node that failed thereafter
        collection_.sorted = true;
        return std::move(collection_);
    }

private:
    [[noreturn]] void fail(const MaterialItem& item, std::initializer_list<std::string_view> pieces) const {
        throw HostError({material_.file, item.line}, joinText({nodeTitle(item), ": ", joinText(pieces)}));
    }

    /// What makes a binding may have given none: createBinding does so for no components.
    void requireBindings(const MaterialItem& item) {
        if (std::erase(collection_.bindings, nullptr) != 0) {
            fail(item,
                 {"it presents an empty handle as a binding; report this to the author of its plug-in"});
        }
    }

    void requireOwn(std::size_t index, ItemByName& owners, const std::string& name, std::string_view what) {
        const auto [owner, isNew] = owners.try_emplace(name, index);
        if (isNew || !isNameKnown(material_, index) || !isNameKnown(material_, owner->second)) {
            return;
        }
        const MaterialItem& item = material_.items[index];
        if (owner->second == index) {
            fail(item, {"two of its bindings have the name or the parameter \"", name,
                        "\"; report this to the author of its plug-in"});
        }
        fail(item, {"its binding ", what, " of that of ", nodeTitle(material_.items[owner->second]),
                    "; rename one of the nodes"});
    }

    /// A plug-in's texts may be anything, and a bindings file that cannot be read again is worth nothing.
    void requireWritable(const MaterialItem& item, const Binding& binding) const {
        std::string reason;
        onBehalfOf(material_, item, item.line, [&] { reason = whyNotWritable(binding); });
        if (!reason.empty()) {
            fail(item, {"its binding cannot stand in a bindings file: ", reason,
                        "; report this to the author of its plug-in"});
        }
    }

    const Material& material_;
    BindingCollection collection_;
    ItemByName itemByName_;
    ItemByName itemByParameter_;
};

} // namespace

std::string whyNotWritable(const Binding& binding) {
    const Annotations annotations = annotationsOf(binding);
    std::string reason = whyNoDocumentTexts(textsOf(binding));
    if (reason.empty()) {
        reason = whyNoDocumentTexts(annotations);
    }
    if (!reason.empty()) {
        return reason;
    }
    for (const auto& [key, text] : annotations) {
        if (isFilesOwn(key)) {
            return joinText({"it writes the annotation \"", key, "\", which is the file's own"});
        }
    }
    const std::string* tag = findAnnotation(annotations, "tag");
    if (tag == nullptr || *tag != binding.name) {
        return joinText({"its \"tag\" is not its name \"", binding.name, "\""});
    }
    return whyNotUnderstood(bindingKindName(binding), annotations);
}

BindingCollection collectBindings(const Material& material, Errors* errors) {
    std::vector<std::size_t> order(material.items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto bindingIndex = [&](std::size_t item) {
        return material.items[item].node->bindingIndexProperty->getInteger();
    };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return bindingIndex(left) < bindingIndex(right);
    });

    BindingCollector collector(material);
    for (const std::size_t index : order) {
        attempt(errors, [&] { collector.add(index); });
    }
    return collector.take();
}

ExportedProgram describeProgram(const std::string& stage, const OutputFile& program) {
    return {stage, program.name, sha256Text(program.content), {}, {}, {}};
}

ExportedProgram describeProgram(const TargetProgram& program) {
    ExportedProgram described = describeProgram(
        program.stage == ProgramStage::Vertex ? vertexStageName : fragmentStageName, program.file);
    described.target = targetName(program.target.language);
    described.version = targetVersion(program.target);
    described.parameters = program.parameters;
    return described;
}

Annotations describeParameter(const ProgramParameter& parameter) {
    Annotations described = {
        {"name", parameter.name}, {"kind", kindName(parameter.kind)}, {"type", typeText(parameter.type)}};
    if (parameter.targetName != parameter.name) {
        described.emplace_back("target_name", parameter.targetName);
    }
    described.insert(described.end(), parameter.place.begin(), parameter.place.end());
    return described;
}

std::vector<ExportedBinding> describeBindings(const BindingCollection& bindings, const Dataflow& flow,
                                              const RegisterAssignment& registers) {
    const LandingsByParameter landings = findLandings(flow, registers);
    std::vector<ExportedBinding> described;
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        described.push_back({binding, artistValues(*binding), {}});
        const auto found = landings.find(parameterOf(*binding));
        if (found != landings.end()) {
            described.back().landings = found->second;
        }
    }
    return described;
}

Annotations fileAnnotations(const ExportedBinding& exported) {
    Annotations annotations = annotationsOf(*exported.binding);
    for (const auto& [key, text] : exported.exported) {
        // a binding leaves out what is empty or its kind's default, and here that would undo the artist's
        // change
        if (findAnnotation(annotations, key) == nullptr) {
            annotations.emplace_back(key,
                                     key == "dataset_modifiers" ? exported.binding->datasetModifiers : "");
        }
    }
    for (const auto& [key, text] : exported.exported) {
        annotations.emplace_back(joinText({exportedPrefix, key}), text);
    }
    return annotations;
}

std::string printBindings(const BindingsFile& file) {
    const XmlPointer<xmlDoc> document = makeDocument("bindings");
    xmlNode* root = xmlDocGetRootElement(document.get());
    writeAttribute(root, "version", "1");
    writeAttribute(root, "material", file.material);
    for (const ExportedProgram& program : file.programs) {
        appendProgram(root, program);
    }
    for (const ExportedBinding& binding : file.bindings) {
        appendBinding(root, binding);
    }
    return documentText(document.get());
}

} // namespace patina
