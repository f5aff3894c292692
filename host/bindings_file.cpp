#include "host/bindings_file.h"

#include "host/digest.h"
#include "host/xml.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <algorithm>
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

void appendProgram(xmlNode* root, const ExportedProgram& program) {
    xmlNode* element = appendElement(root, "program");
    writeAttribute(element, "stage", program.stage);
    writeAttribute(element, "file", program.file);
    writeAttribute(element, "sha256", program.sha256);
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

void addBindingsOf(const Material& material, std::size_t index, BindingCollection& collection,
                   ItemByName& itemByName) {
    const MaterialItem& item = material.items[index];
    const std::size_t before = collection.bindings.size();
    onBehalfOf(material, item, item.line, [&] {
        if (item.node->generatesBinding()) {
            item.node->addBindings(collection);
        }
    });
    for (std::size_t i = before; i < collection.bindings.size(); ++i) {
        const auto [first, isNew] = itemByName.try_emplace(collection.bindings[i]->name, index);
        if (!isNew && isNameKnown(material, index) && isNameKnown(material, first->second)) {
            throw HostError(
                {material.file, item.line},
                joinText({nodeTitle(item), ": its binding has the name of that of ",
                          nodeTitle(material.items[first->second]), "; rename one of the nodes"}));
        }
    }
}

} // namespace

BindingCollection collectBindings(const Material& material, Errors* errors) {
    std::vector<std::size_t> order(material.items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto bindingIndex = [&](std::size_t item) {
        return material.items[item].node->bindingIndexProperty->getInteger();
    };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return bindingIndex(left) < bindingIndex(right);
    });

    BindingCollection collection;
    ItemByName itemByName;
    for (const std::size_t index : order) {
        attempt(errors, [&] { addBindingsOf(material, index, collection, itemByName); });
    }
    collection.sorted = true;
    return collection;
}

ExportedProgram describeProgram(const std::string& stage, const OutputFile& program) {
    return {stage, program.name, sha256Text(program.content)};
}

std::vector<ExportedBinding> describeBindings(const BindingCollection& bindings, const Dataflow& flow,
                                              const RegisterAssignment& registers) {
    const LandingsByParameter landings = findLandings(flow, registers);
    std::vector<ExportedBinding> described;
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        described.push_back({binding, artistValues(*binding), {}});
        const auto found = landings.find(binding->cgName.empty() ? binding->name : binding->cgName);
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
