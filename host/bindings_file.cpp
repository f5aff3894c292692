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

void detail::writeBinding(xmlNode* element, const Binding& binding) {
    writeAttribute(element, "kind", bindingKindName(binding));
    writeAttribute(element, "components", std::to_string(binding.componentCount()));
    if (!binding.group.empty()) {
        writeAttribute(element, "group", binding.group);
    }
    binding.writeAnnotations(element);
}

BindingCollection collectBindings(const Material& material) {
    std::vector<std::size_t> order(material.items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto bindingIndex = [&](std::size_t item) {
        return material.items[item].node->bindingIndexProperty->getInteger();
    };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return bindingIndex(left) < bindingIndex(right);
    });

    BindingCollection collection;
    std::unordered_map<std::string, std::size_t> itemByName;
    for (const std::size_t index : order) {
        const MaterialItem& item = material.items[index];
        const std::size_t before = collection.bindings.size();
        onBehalfOf(material, item, item.line, [&] {
            if (item.node->generatesBinding()) {
                item.node->addBindings(collection);
            }
        });
        for (std::size_t i = before; i < collection.bindings.size(); ++i) {
            const std::string& name = collection.bindings[i]->name;
            const auto [first, isNew] = itemByName.try_emplace(name, index);
            if (!isNew) {
                throw HostError(
                    {material.file, item.line},
                    joinText({nodeTitle(item), ": its binding has the name of that of ",
                              nodeTitle(material.items[first->second]), "; rename one of the nodes"}));
            }
        }
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
        writeBinding(xmlNewChild(root, nullptr, xmlText("binding"), nullptr), *binding);
    }
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document.get(), &text, &size, "UTF-8", 1);
    const XmlPointer<xmlChar> owner(text);
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

} // namespace patina
