#include "host/document_writer.h"

#include "host/diagnostic.h"
#include "host/document_xml.h"
#include "host/files.h"
#include "nodemodel/text.h"

#include <libxml/xmlsave.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace patina {

using namespace detail;

namespace {

constexpr const char* emptyDocument = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                      "<material version=\"1\" name=\"\"/>\n";
constexpr const char* usualBreak = "\n  ";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr const char* cannotEncode =
    "this document cannot be written in its encoding; make it a document in UTF-8";

/// Refuses what could not be read again.
class DocumentCheck {
public:
    explicit DocumentCheck(const MaterialDocument& document) : document_(document) {}

    void check() const {
        if (!isFileName(document_.name)) {
            fail(document_.line,
                 {"the material's name \"", document_.name, "\" cannot be the name of a file"});
        }
        checkText(document_.name, document_.line, "the material's name");
        checkNodes();
        for (const DocumentConnection& connection : document_.connections) {
            for (const std::string* text :
                 {&connection.source, &connection.output, &connection.destination, &connection.input}) {
                checkText(*text, connection.line,
                          joinText({"the connection to \"", connection.destination, "\""}));
            }
        }
        for (const DocumentOutput& output : document_.outputs) {
            for (const std::string* text : {&output.name, &output.source, &output.port}) {
                checkText(*text, output.line, joinText({"output \"", output.name, "\""}));
            }
        }
        checkBindings();
    }

private:
    [[noreturn]] void fail(int line, std::initializer_list<std::string_view> pieces) const {
        throw HostError({document_.file, line}, joinText(pieces));
    }

    void checkText(const std::string& text, int line, std::string_view what) const {
        if (!isDocumentText(text)) {
            fail(line, {what, ": \"", text, "\" has a character that XML cannot hold; remove it"});
        }
    }

    void checkNodes() const {
        std::unordered_set<std::string_view> ids;
        for (const DocumentNode& node : document_.nodes) {
            const std::string title = joinText({"node \"", node.id, "\""});
            if (node.id.empty()) {
                fail(node.line, {"this node has an empty id"});
            }
            if (!ids.insert(node.id).second) {
                fail(node.line, {"there is another node with the id \"", node.id, "\""});
            }
            checkText(node.id, node.line, title);
            checkText(node.type, node.line, title);
            std::set<std::string_view> names;
            for (const DocumentProperty& property : node.properties) {
                if (!names.insert(property.name).second) {
                    fail(property.line, {title, ": property \"", property.name, "\" is set twice"});
                }
                for (const std::string* text : {&property.name, &property.value}) {
                    checkText(*text, property.line, joinText({title, ": property \"", property.name, "\""}));
                }
            }
        }
    }

    void checkBindings() const {
        std::unordered_set<std::string_view> tags;
        for (const DocumentBinding& binding : document_.bindings) {
            const std::string title = joinText({"binding \"", binding.name, "\""});
            if (!tags.insert(binding.name).second) {
                fail(binding.line, {"there is another binding with the tag \"", binding.name, "\""});
            }
            if (!isBindingKind(binding.kind)) {
                fail(binding.line, {title, " is of the unknown kind \"", binding.kind, "\""});
            }
            checkText(binding.name, binding.line, title);
            std::set<std::string_view> names = {"tag", "kind", "xmlns"};
            for (const auto& [name, value] : binding.annotations) {
                if (xmlValidateNCName(xmlText(name.c_str()), 0) != 0 || !names.insert(name).second) {
                    fail(binding.line, {title, ": \"", name, "\" cannot be the name of an annotation"});
                }
                checkText(value, binding.line, joinText({title, ": annotation \"", name, "\""}));
            }
        }
    }

    const MaterialDocument& document_;
};

bool isBlank(char letter) { return std::string_view(" \t\r\n").find(letter) != std::string_view::npos; }

bool isText(const xmlNode* node) { return node != nullptr && node->type == XML_TEXT_NODE; }

bool isComment(const xmlNode* node) { return node != nullptr && node->type == XML_COMMENT_NODE; }

std::string_view contentOf(const xmlNode* text) { return reinterpret_cast<const char*>(text->content); }

/// How many characters of a text stand before the blanks at its end.
std::size_t sizeWithoutBlanks(std::string_view text) {
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isBlank);
    return static_cast<std::size_t>(text.rend() - last);
}

/// The line break and indentation before a node of the tree; empty when it begins no line.
std::string breakBefore(const xmlNode* node) {
    if (!isText(node->prev)) {
        return {};
    }
    const std::string_view text = contentOf(node->prev);
    const std::string_view blanks = text.substr(sizeWithoutBlanks(text));
    const std::size_t lineEnd = blanks.rfind('\n');
    return lineEnd == std::string_view::npos ? std::string() : std::string(blanks.substr(lineEnd));
}

bool hasLineEnd(const xmlNode* text) { return contentOf(text).find('\n') != std::string_view::npos; }

/// The comment behind a node in the same line, which belongs to it, or the node itself.
xmlNode* withRemark(xmlNode* node) {
    xmlNode* next = node->next;
    if (isText(next) && !hasLineEnd(next) && sizeWithoutBlanks(contentOf(next)) == 0) {
        next = next->next;
    }
    const bool endsLine = isComment(next) && isText(next->next) && hasLineEnd(next->next);
    return endsLine ? next : node;
}

/// Brings the source's tree in line with a document.
class SourceEditor {
public:
    explicit SourceEditor(const MaterialDocument& document)
        : document_(document),
          xml_(parseXml(document.source.empty() ? std::string_view(emptyDocument) : document.source,
                        document.file, "a material document")),
          root_(xmlDocGetRootElement(xml_.get())) {}

    std::string print() {
        findStyle();
        set(root_, "name", document_.name);
        const std::array<std::vector<xmlNode*>, 4> sources = {
            elements(root_, "node"), elements(root_, "connection"), elements(root_, "output"),
            elements(root_, "binding")};
        arrangeAll(0, sources, "node", document_.nodes,
                   [this](xmlNode* element, const DocumentNode& node) { setNode(element, node); });
        arrangeAll(1, sources, "connection", document_.connections,
                   [this](xmlNode* element, const DocumentConnection& connection) {
                       set(element, "source", connection.source);
                       set(element, "output", connection.output);
                       set(element, "destination", connection.destination);
                       set(element, "input", connection.input);
                   });
        arrangeAll(2, sources, "output", document_.outputs,
                   [this](xmlNode* element, const DocumentOutput& output) {
                       set(element, "name", output.name);
                       set(element, "source", output.source);
                       set(element, "port", output.port);
                   });
        arrangeAll(
            3, sources, "binding", document_.bindings,
            [this](xmlNode* element, const DocumentBinding& binding) { setBinding(element, binding); });
        return changed_ ? serialise() : document_.source;
    }

private:
    /// Where the elements of one kind go, and which there are.
    struct Place {
        xmlNode* parent;
        const char* name;
        std::string lineBreak; ///< before the first
        std::string closing;   ///< before the end of a parent that was empty
        xmlNode* after;        ///< the first goes behind it, unless there are others of its kind; may be null
        xmlNode* before;       ///< or else before it; may be null
    };

    static std::vector<xmlNode*> elements(const xmlNode* parent, std::string_view name) {
        std::vector<xmlNode*> found;
        for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
            if (isElement(child, name)) {
                found.push_back(child);
            }
        }
        return found;
    }

    void findStyle() {
        childBreak_ = usualBreak;
        for (const xmlNode* child = root_->children; child != nullptr; child = child->next) {
            if (!isText(child)) {
                childBreak_ = breakBefore(child);
                break;
            }
        }
        propertyBreak_ = childBreak_.empty() ? childBreak_ : childBreak_ + childBreak_.substr(1);
        for (const xmlNode* node : elements(root_, "node")) {
            const std::vector<xmlNode*> properties = elements(node, "property");
            if (!properties.empty()) {
                propertyBreak_ = breakBefore(properties.front());
                return;
            }
        }
    }

    void set(xmlNode* element, const char* name, const std::string& value) {
        if (attributeOf(element, name) != value) {
            requireMade(xmlSetNsProp(element, nullptr, xmlText(name), xmlText(value.c_str())));
            changed_ = true;
        }
    }

    void setNode(xmlNode* element, const DocumentNode& node) {
        set(element, "id", node.id);
        set(element, "type", node.type);
        const auto version = attributeOf(element, "version");
        const bool isNew = !version && node.origin == noOrigin;
        if (isNew || parseVersion(version.value_or("0")) != node.version) {
            set(element, "version", std::to_string(node.version));
        }
        const std::vector<xmlNode*> sources = elements(element, "property");
        std::unordered_map<std::string, int> origins;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            origins.emplace(attributeOf(sources[i], "name").value_or(""), static_cast<int>(i));
        }
        const auto originOf = [&](const DocumentProperty& property) {
            const auto found = origins.find(property.name);
            return found == origins.end() ? noOrigin : found->second;
        };
        const auto setProperty = [this](xmlNode* child, const DocumentProperty& property) {
            set(child, "name", property.name);
            set(child, "kind", kindName(property.kind));
            set(child, "value", property.value);
        };
        arrange({element, "property", propertyBreak_, breakBefore(element), nullptr, nullptr}, sources,
                node.properties, originOf, setProperty);
    }

    void setBinding(xmlNode* element, const DocumentBinding& binding) {
        set(element, "kind", binding.kind);
        set(element, "tag", binding.name);
        std::set<std::string_view> wanted = {"kind", "tag"};
        for (const auto& [name, value] : binding.annotations) {
            set(element, name.c_str(), value);
            wanted.insert(name);
        }
        for (xmlAttr* attribute = element->properties; attribute != nullptr;) {
            xmlAttr* next = attribute->next;
            const bool ours = attribute->ns == nullptr;
            if (ours && wanted.count(reinterpret_cast<const char*>(attribute->name)) == 0) {
                xmlRemoveProp(attribute);
                changed_ = true;
            }
            attribute = next;
        }
    }

    /// Arranges the elements of one of the kinds in the root, the kinds before it being arranged already.
    template <typename Item, typename Apply>
    void arrangeAll(std::size_t kind, const std::array<std::vector<xmlNode*>, 4>& sources, const char* name,
                    const std::vector<Item>& wanted, const Apply& apply) {
        xmlNode* before = nullptr;
        for (std::size_t later = kind + 1; later < sources.size() && before == nullptr; ++later) {
            before = sources[later].empty() ? nullptr : sources[later].front();
        }
        xmlNode* last = arrange(
            {root_, name, childBreak_, breakBefore(root_), lastOfRoot_, before}, sources[kind], wanted,
            [](const Item& item) { return item.origin; }, apply);
        lastOfRoot_ = last == nullptr ? lastOfRoot_ : last;
    }

    /// Makes the elements of one kind those that are wanted, in their order, and gives the last of them.
    /// Those that come from the source stay where they are as long as the order allows.
    template <typename Item, typename OriginOf, typename Apply>
    xmlNode* arrange(const Place& place, const std::vector<xmlNode*>& sources,
                     const std::vector<Item>& wanted, const OriginOf& originOf, const Apply& apply) {
        std::vector<xmlNode*> chosen(wanted.size(), nullptr);
        std::vector<bool> stays(wanted.size(), false);
        std::vector<bool> used(sources.size(), false);
        int latest = noOrigin;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const int origin = originOf(wanted[i]);
            const auto source = static_cast<std::size_t>(origin);
            if (origin < 0 || source >= sources.size() || used[source]) {
                continue;
            }
            used[source] = true;
            chosen[i] = sources[source];
            stays[i] = origin > latest;
            latest = std::max(latest, origin);
        }
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (!used[i]) {
                const XmlPointer<xmlNode> removed(takeOut(sources[i]));
            }
        }
        xmlNode* last = nullptr;
        const auto firstStaying = std::find(stays.begin(), stays.end(), true);
        xmlNode* first = firstStaying == stays.end()
                             ? nullptr
                             : chosen[static_cast<std::size_t>(firstStaying - stays.begin())];
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (!stays[i]) {
                xmlNode* element = chosen[i] == nullptr ? makeElement(place.name) : takeOut(chosen[i]);
                putIn(place, last, first, element);
                chosen[i] = element;
            }
            last = chosen[i];
            apply(last, wanted[i]);
        }
        return last;
    }

    xmlNode* makeElement(const char* name) {
        return requireMade(xmlNewDocNode(xml_.get(), nullptr, xmlText(name), nullptr));
    }

    /// Takes an element out of the tree, with the white space before it. The caller owns it.
    xmlNode* takeOut(xmlNode* element) {
        changed_ = true;
        if (isText(element->prev)) {
            xmlNode* text = element->prev;
            const std::string kept(contentOf(text).substr(0, sizeWithoutBlanks(contentOf(text))));
            if (kept.empty()) {
                xmlUnlinkNode(text);
                xmlFreeNode(text);
            } else {
                xmlNodeSetContentLen(text, xmlText(kept.c_str()), static_cast<int>(kept.size()));
            }
        }
        xmlUnlinkNode(element);
        return element;
    }

    /// Puts an element behind the last of its kind; or, when it is the first, where its kind goes.
    void putIn(const Place& place, xmlNode* last, xmlNode* first, xmlNode* element) {
        changed_ = true;
        if (last != nullptr) {
            putBehind(last, element);
        } else if (first != nullptr) {
            putBefore(first, element);
        } else if (place.after != nullptr) {
            putBehind(place.after, element);
        } else if (place.before != nullptr) {
            putBefore(place.before, element);
        } else {
            putAtEnd(place, element);
        }
    }

    void putBehind(xmlNode* neighbour, xmlNode* element) {
        const std::string lineBreak = breakBefore(neighbour);
        xmlNode* place = withRemark(neighbour);
        xmlAddNextSibling(place, element);
        if (!lineBreak.empty()) {
            xmlAddNextSibling(place, makeText(lineBreak));
        }
    }

    void putBefore(xmlNode* neighbour, xmlNode* element) {
        const std::string lineBreak = breakBefore(neighbour);
        xmlAddPrevSibling(neighbour, element);
        if (!lineBreak.empty()) {
            xmlAddPrevSibling(neighbour, makeText(lineBreak));
        }
    }

    /// Before the white space that stands before the parent's end.
    void putAtEnd(const Place& place, xmlNode* element) {
        xmlNode* end = place.parent->last;
        if (isText(end) && sizeWithoutBlanks(contentOf(end)) == 0 && hasLineEnd(end)) {
            xmlAddPrevSibling(end, element);
        } else {
            xmlAddChild(place.parent, element);
            if (!place.lineBreak.empty()) {
                xmlAddNextSibling(element, makeText(place.closing.empty() ? "\n" : place.closing));
            }
        }
        if (!place.lineBreak.empty()) {
            xmlAddPrevSibling(element, makeText(place.lineBreak));
        }
    }

    xmlNode* makeText(const std::string& text) {
        return requireMade(xmlNewDocText(xml_.get(), xmlText(text.c_str())));
    }

    std::string serialise() const {
        const std::string_view source =
            document_.source.empty() ? emptyDocument : std::string_view(document_.source);
        const bool hasMark = source.substr(0, byteOrderMark.size()) == byteOrderMark;
        const XmlPointer<xmlBuffer> buffer(requireMade(xmlBufferCreate()));
        xmlBufferSetAllocationScheme(buffer.get(), XML_BUFFER_ALLOC_DOUBLEIT); // else it grows step by step
        const XmlSilence silence;
        const bool inUtf8 = hasMark || xml_->encoding == nullptr;
        constexpr int noDeclaration = -1; // as libxml2 marks a document without one
        const int options = XML_SAVE_AS_XML | (xml_->standalone == noDeclaration ? XML_SAVE_NO_DECL : 0);
        xmlSaveCtxt* context = xmlSaveToBuffer(buffer.get(), inUtf8 ? "UTF-8" : nullptr, options);
        // GCOVR_EXCL_START: libxml2 reads no encoding that it does not write
        const bool saved = context != nullptr && xmlSaveDoc(context, xml_.get()) >= 0;
        if (context == nullptr || xmlSaveClose(context) < 0 || !saved) {
            throw HostError({document_.file, document_.line}, cannotEncode);
        }
        // GCOVR_EXCL_STOP
        const std::string_view text(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
                                    static_cast<std::size_t>(xmlBufferLength(buffer.get())));
        // line ends are told apart by their bytes only where a letter is a byte
        const bool wide = source.substr(0, 4).find('\0') != std::string_view::npos;
        return wide ? std::string(text)
                    : joinText({hasMark ? byteOrderMark : std::string_view(), withLineEndsOf(source, text)});
    }

    /// The parser and the serialiser know "\n" only, and the latter ends every document with one.
    static std::string withLineEndsOf(std::string_view source, std::string_view text) {
        if (source.back() != '\n') {
            text.remove_suffix(1);
        }
        const std::size_t first = source.find('\n');
        const bool withReturn = first != std::string_view::npos && first > 0 && source[first - 1] == '\r';
        std::string result;
        result.reserve(text.size());
        for (const char letter : text) {
            if (letter == '\n' && withReturn) {
                result += '\r';
            }
            result += letter;
        }
        return result;
    }

    const MaterialDocument& document_;
    XmlPointer<xmlDoc> xml_;
    xmlNode* root_;
    std::string childBreak_;
    std::string propertyBreak_;
    xmlNode* lastOfRoot_ = nullptr; ///< the last element of the kinds that are arranged
    bool changed_ = false;
};

/// What of other encodings the serialiser can write, it does not always write so that it can be read.
void requireReadable(const MaterialDocument& document, const std::string& text) {
    const bool declaresUtf8 = text.substr(0, text.find('>')).find("encoding=\"UTF-8\"") != std::string::npos;
    if (text == document.source || declaresUtf8) {
        return;
    }
    const auto isReadBack = [&] {
        try {
            return parseMaterial(text, document.file) == document;
        } catch (const HostError&) { // GCOVR_EXCL_BR_LINE: nothing else is thrown while there is memory
            return false;
        }
    };
    if (!isReadBack()) {
        throw HostError({document.file, document.line}, cannotEncode);
    }
}

} // namespace

std::string printMaterial(const MaterialDocument& document) {
    DocumentCheck(document).check();
    std::string text = SourceEditor(document).print();
    requireReadable(document, text);
    // GCOVR_EXCL_START: it would take minutes and gigabytes to make such a text
    if (text.size() > xmlSizeLimit) {
        throw HostError({document.file, document.line},
                        "this document is larger than 512 MiB, and could not be read again");
    }
    // GCOVR_EXCL_STOP
    return text;
}

void writeMaterial(const MaterialDocument& document, const std::filesystem::path& file) {
    replaceFile(file, printMaterial(document));
}

} // namespace patina
