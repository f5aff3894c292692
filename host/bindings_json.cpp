#include "host/bindings_json.h"

#include "nodemodel/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace patina {

using namespace detail;

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<std::string_view, 4> numberKeys = {"min", "max", "default", "exported_default"};
constexpr std::array<std::string_view, 4> booleanKeys = {"basic_colour", "srgb", "signed_expanded",
                                                         "normalised"};

template <std::size_t Count>
bool contains(const std::array<std::string_view, Count>& keys, const std::string& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

/// The number with the digits that annotations print; the float itself has more.
double printedNumber(float value) {
    const std::string text = formatFloat(value);
    double number = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

Json numberList(const std::string& text) {
    Json list = Json::array();
    if (const auto values = parseFloatList(text)) {
        for (const float value : *values) {
            list.push_back(printedNumber(value));
        }
    }
    return list;
}

Json annotationValue(const Binding& binding, const std::string& key, const std::string& text) {
    if (binding.kind == BindingKind::Float && contains(numberKeys, key)) {
        return numberList(text);
    }
    if (contains(booleanKeys, key)) {
        return text == "Yes";
    }
    return text;
}

/// A text, or the number that it is.
Json textOrNumber(const std::string& text) {
    unsigned int number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? Json(number) : Json(text);
}

Json programValue(const ExportedProgram& program) {
    Json value = {{"stage", program.stage}};
    if (!program.target.empty()) {
        value["target"] = program.target;
        value["version"] = program.version;
    }
    value["file"] = program.file;
    value["sha256"] = program.sha256;
    for (const ProgramParameter& parameter : program.parameters) {
        Json entry;
        for (const auto& [key, text] : describeParameter(parameter)) {
            entry[key] = textOrNumber(text);
        }
        value["parameters"].push_back(std::move(entry));
    }
    return value;
}

Json bindingValue(const ExportedBinding& exported) {
    const Binding& binding = *exported.binding;
    Json value = {{"kind", bindingKindName(binding)}, {"components", binding.componentCount()}};
    if (!binding.group.empty()) {
        value["group"] = binding.group;
    }
    for (const auto& [key, text] : fileAnnotations(exported)) {
        value[key] = annotationValue(binding, key, text);
    }
    value["landings"] = Json::array();
    for (const Landing& landing : exported.landings) {
        value["landings"].push_back(
            {{"stage", landing.stage}, {"register", landing.registerName}, {"name", landing.parameter}});
    }
    return value;
}

} // namespace

std::string printBindingsJson(const BindingsFile& file) {
    Json root;
    root["version"] = 1;
    root["material"] = file.material;
    root["programs"] = Json::array();
    root["bindings"] = Json::array();
    for (const ExportedProgram& program : file.programs) {
        root["programs"].push_back(programValue(program));
    }
    for (const ExportedBinding& binding : file.bindings) {
        root["bindings"].push_back(bindingValue(binding));
    }
    constexpr int indentation = 2;
    return root.dump(indentation, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace patina
