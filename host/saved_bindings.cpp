#include "host/saved_bindings.h"

#include "host/files.h"
#include "host/xml.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

namespace patina {

using namespace detail;

namespace {

constexpr const char* advice = "mend this file, or move it away to export without what was changed in it";

template <typename Action>
auto withAdvice(Action&& read) {
    try {
        return read();
    } catch (const HostError& error) { // GCOVR_EXCL_BR_LINE: nothing else is thrown while there is memory
        throw HostError(error, advice);
    }
}

/// A binding would ignore such a text in silence, and the artist would wonder.
void requireUnderstood(const std::string& file, const SavedBinding& binding) {
    const std::string reason = whyNotUnderstood(binding.kind, binding.annotations);
    if (!reason.empty()) {
        throw HostError({file, binding.line}, joinText({"binding \"", binding.name, "\": ", reason}));
    }
}

/// Reads the elements of one file. All methods throw HostError.
class BindingsReader {
public:
    explicit BindingsReader(const std::string& file) { saved_.file = file; }

    SavedBindings read(std::string_view text) {
        const XmlPointer<xmlDoc> xml = parseXml(text, saved_.file, "a bindings file");
        xmlNode* root = xmlDocGetRootElement(xml.get());
        readRoot(root);
        for (xmlNode* child = root->children; child != nullptr; child = child->next) {
            if (child->type == XML_ELEMENT_NODE && elementName(child) == "binding") {
                readBinding(child);
            }
        }
        return std::move(saved_);
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({saved_.file, line}, joinText(pieces));
    }

    void readRoot(xmlNode* root) const {
        if (elementName(root) != "bindings") {
            fail(lineOf(root),
                 {"this is no bindings file: the root element is <", elementName(root), ">, not <bindings>"});
        }
        const std::string version = require(root, "version");
        if (version != "1") {
            fail(lineOf(root),
                 {"this is a bindings file of version \"", version, "\", and this host knows version 1"});
        }
    }

    std::string require(xmlNode* element, const char* attribute) const {
        if (!hasAttribute(element, attribute)) {
            fail(lineOf(element),
                 {"the <", elementName(element), "> element has no \"", attribute, "\" attribute"});
        }
        return readAttribute(element, attribute);
    }

    void readBinding(xmlNode* element) {
        SavedBinding binding;
        binding.name = require(element, "tag");
        binding.kind = require(element, "kind");
        binding.annotations = readAttributes(element);
        binding.line = lineOf(element);
        if (!names_.insert(binding.name).second) {
            fail(binding.line, {"there is another binding with the tag \"", binding.name, "\""});
        }
        requireUnderstood(saved_.file, binding);
        saved_.bindings.push_back(std::move(binding));
    }

    SavedBindings saved_;
    std::unordered_set<std::string> names_;
};

/// What the artist changed since the file was written.
Annotations changesOf(const SavedBinding& saved) {
    Annotations changes;
    for (const auto& [key, text] : saved.annotations) {
        const std::string* exported = findAnnotation(saved.annotations, joinText({exportedPrefix, key}));
        if (isArtistKey(key) && (exported == nullptr || *exported != text)) {
            changes.emplace_back(key, text);
        }
    }
    return changes;
}

std::size_t numberCount(const std::string* text) {
    const auto numbers = text == nullptr ? std::nullopt : parseFloatList(*text);
    return numbers ? numbers->size() : 0;
}

/// A default that was given to all components that there were gets the graph's own for those that are new.
void widen(Annotations& changes, const SavedBinding& saved, const Binding& binding) {
    const auto initial = std::find_if(changes.begin(), changes.end(),
                                      [](const auto& change) { return change.first == "default"; });
    const std::size_t count = initial == changes.end() ? 0 : numberCount(&initial->second);
    const std::string exportedKey = joinText({exportedPrefix, "default"});
    const std::size_t exported = numberCount(findAnnotation(saved.annotations, exportedKey));
    const Annotations own = artistValues(binding);
    const std::string* graphs = findAnnotation(own, "default");
    if (binding.kind != BindingKind::Float || count == 0 || count != exported || graphs == nullptr) {
        return;
    }
    const std::vector<float> numbers = parseFloatList(*graphs).value();
    for (std::size_t i = count; i < numbers.size(); ++i) {
        appendText(initial->second, {", ", formatFloat(numbers[i])});
    }
}

std::string listOf(const Annotations& changes) {
    std::string list;
    for (const auto& [key, text] : changes) {
        appendText(list, {list.empty() ? "" : ", ", key, " \"", text, "\""});
    }
    return list;
}

Warning lossOf(const SavedBindings& saved, const SavedBinding& binding, const Annotations& changes) {
    return {{saved.file, binding.line},
            joinText({"the material has no ", binding.kind, " binding \"", binding.name,
                      "\" any more, and what was changed in this file goes with it: ", listOf(changes)})};
}

/// What a document saves, as from a bindings file.
SavedBindings savedIn(const Material& material) {
    SavedBindings saved = {material.file, {}};
    for (const DocumentBinding& binding : material.document.bindings) {
        saved.bindings.push_back({binding.name, binding.kind, binding.annotations, binding.line});
    }
    return saved;
}

/// Whether a binding that no node presents may be one of a node that cannot present it now.
bool mayComeBack(const Material& material) {
    return std::any_of(material.items.begin(), material.items.end(),
                       [](const MaterialItem& item) { return item.placeholder || item.faulty; });
}

/// Sets the changes on a binding fresh from the graph. Throws HostError that ends with the ending.
void restore(const SavedBindings& saved, const SavedBinding& earlier, Annotations changes, Binding& binding,
             std::string_view ending) {
    try {
        widen(changes, earlier, binding);
        restoreArtistValues(binding, changes);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        throw HostError({saved.file, earlier.line},
                        joinText({"binding \"", earlier.name, "\": ", currentExceptionText(), ending}));
    }
}

} // namespace

SavedBindings parseBindings(std::string_view text, const std::string& file) {
    return withAdvice([&] { return BindingsReader(file).read(text); });
}

SavedBindings readBindings(const std::filesystem::path& file) {
    std::error_code missing;
    // what is no file is for the writing to refuse
    if (!std::filesystem::is_regular_file(file, missing)) {
        return {file.string(), {}};
    }
    return parseBindings(withAdvice([&] { return readFile(file, xmlSizeLimit); }), file.string());
}

void restoreSavedValues(const Material& material, const BindingCollection& bindings, Warnings& warnings,
                        Errors* errors) {
    const SavedBindings saved = savedIn(material);
    std::unordered_map<std::string, Binding*> byName;
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        byName.emplace(binding->name, binding.get());
    }
    for (const SavedBinding& earlier : saved.bindings) {
        const Annotations changes = changesOf(earlier);
        if (changes.empty() || !attempt(errors, [&] { requireUnderstood(saved.file, earlier); })) {
            continue;
        }
        const auto found = byName.find(earlier.name);
        if (found != byName.end() && bindingKindName(*found->second) == earlier.kind) {
            attempt(errors, [&] { restore(saved, earlier, changes, *found->second, ""); });
        } else if (!mayComeBack(material)) {
            warnings.push_back({{saved.file, earlier.line},
                                joinText({"the material has no ", earlier.kind, " binding \"", earlier.name,
                                          "\", and what is saved for it has no effect: ", listOf(changes)})});
        }
    }
}

void carryOverArtistValues(const SavedBindings& saved, std::vector<ExportedBinding>& bindings,
                           Warnings& warnings) {
    std::unordered_map<std::string, ExportedBinding*> byName;
    for (ExportedBinding& binding : bindings) {
        byName.emplace(binding.binding->name, &binding);
    }
    for (const SavedBinding& earlier : saved.bindings) {
        const Annotations changes = changesOf(earlier);
        const auto found = byName.find(earlier.name);
        if (found == byName.end() || bindingKindName(*found->second->binding) != earlier.kind) {
            if (!changes.empty()) {
                warnings.push_back(lossOf(saved, earlier, changes));
            }
            continue;
        }
        restore(saved, earlier, changes, *found->second->binding, joinText({"; ", advice}));
    }
}

} // namespace patina
