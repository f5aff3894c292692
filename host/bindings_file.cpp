#include "host/bindings_file.h"

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

const xmlChar* xmlText(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

void appendBinding(xmlNode* root, const Binding& binding) {
    xmlNode* element = xmlNewChild(root, nullptr, xmlText("binding"), nullptr);
    writeAttribute(element, "kind", bindingKindName(binding));
    writeAttribute(element, "components", std::to_string(binding.componentCount()));
    if (!binding.group.empty()) {
        writeAttribute(element, "group", binding.group);
    }
    binding.writeAnnotations(element);
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
        if (!isNew) {
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

std::string printBindings(const Material& material, const BindingCollection& bindings) {
    const XmlPointer<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    xmlNode* root = xmlNewNode(nullptr, xmlText("bindings"));
    xmlDocSetRootElement(document.get(), root);
    writeAttribute(root, "version", "1");
    writeAttribute(root, "material", material.name);
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        appendBinding(root, *binding);
    }
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document.get(), &text, &size, "UTF-8", 1);
    const XmlPointer<xmlChar> owner(text);
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

} // namespace patina
