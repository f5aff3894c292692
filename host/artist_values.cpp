#include "host/artist_values.h"

#include "host/xml.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace patina {

using namespace detail;

namespace {

constexpr std::array<std::string_view, 7> artistKeys = {
    "default", "uv", "uilabel", "uiunittype", "stream_type", "stream_normalize", "dataset_modifiers"};

bool isNumberList(const std::string& text) {
    const auto numbers = parseFloatList(text);
    return numbers && !numbers->empty() &&
           std::all_of(numbers->begin(), numbers->end(), [](float number) { return std::isfinite(number); });
}

bool isUnitType(const std::string& text) {
    return uiUnitTypeName(parseUiUnitType(lowerCase(text))) == lowerCase(text);
}

/// An element with a binding's annotations, in a document of its own.
class AnnotatedElement {
public:
    explicit AnnotatedElement(const Binding& binding) : document_(makeDocument("binding")) {
        binding.writeAnnotations(node());
    }

    xmlNode* node() const { return xmlDocGetRootElement(document_.get()); }

private:
    XmlPointer<xmlDoc> document_;
};

} // namespace

bool isArtistKey(std::string_view key) {
    return std::find(artistKeys.begin(), artistKeys.end(), key) != artistKeys.end();
}

const std::string* findAnnotation(const Annotations& annotations, std::string_view key) {
    const auto found = std::find_if(annotations.begin(), annotations.end(),
                                    [&](const auto& annotation) { return annotation.first == key; });
    return found == annotations.end() ? nullptr : &found->second;
}

std::string whyNotUnderstood(std::string_view kind, const Annotations& annotations) {
    const std::string* initial = findAnnotation(annotations, "default");
    if (kind == "float" && initial != nullptr && !isNumberList(*initial)) {
        return joinText({"the default \"", *initial, "\" is no list of finite numbers"});
    }
    const std::string* unit = findAnnotation(annotations, "uiunittype");
    if (unit != nullptr && !isUnitType(*unit)) {
        return joinText({"\"", *unit, "\" is no unit type; they are raw, linear, angular and srgbcolour"});
    }
    return {};
}

Annotations annotationsOf(const Binding& binding) {
    const AnnotatedElement element(binding);
    return readAttributes(element.node());
}

Annotations artistValues(const Binding& binding) {
    Annotations values = annotationsOf(binding);
    values.erase(std::remove_if(values.begin(), values.end(),
                                [](const auto& annotation) { return !isArtistKey(annotation.first); }),
                 values.end());
    return values;
}

void restoreArtistValues(Binding& binding, const Annotations& annotations) {
    Annotations values;
    std::copy_if(annotations.begin(), annotations.end(), std::back_inserter(values),
                 [](const auto& annotation) { return isArtistKey(annotation.first); });
    if (values.empty()) {
        return;
    }
    // reading starts some fields again from the kind's defaults, so it must find the graph's own annotations
    const AnnotatedElement element(binding);
    for (const auto& [key, text] : values) {
        writeAttribute(element.node(), key, text);
    }
    const std::string streamType = binding.streamType;
    binding.readAnnotations(element.node());
    if (findAnnotation(values, "stream_type") == nullptr &&
        findAnnotation(values, "stream_normalize") == nullptr) {
        binding.streamType = streamType; // reading made it lower case
    }
    // so it does to the one code with capital letters, which a binding that was read wrote itself
    const std::string packed = streamTypeFor("packed", true);
    if (binding.streamType == lowerCase(packed)) {
        binding.streamType = packed;
    }
}

} // namespace patina
