#include "tools/patina/node_listing.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"
#include "tools/patina/terminal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace patina::tool {

using namespace detail;
using nlohmann::ordered_json;

namespace {

constexpr std::size_t pageWidth = 80;

using Row = std::vector<std::string>;

/// How many letters a UTF-8 text has.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char letter) {
        return (static_cast<unsigned char>(letter) & 0xC0) != 0x80;
    }));
}

void appendPadded(std::string& line, std::string_view text, std::size_t width) {
    line += text;
    line.append(width - std::min(width, widthOf(text)), ' ');
}

/// The rows in columns, two blanks apart: a line each, without its end, behind `indent`.
std::vector<std::string> columns(const std::vector<Row>& rows, std::string_view indent) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], widthOf(row[i]));
        }
    }
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        std::string line(indent);
        for (std::size_t i = 0; i < row.size(); ++i) {
            appendPadded(line, oneLine(row[i]), widths[i]);
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string tableText(const std::vector<Row>& rows, std::string_view indent) {
    std::string text;
    for (const std::string& line : columns(rows, indent)) {
        appendText(text, {line, "\n"});
    }
    return text;
}

/// A text in lines that fit the page, each behind `indent`; the first behind `first`.
std::string wrapped(std::string_view text, std::string_view first, std::string_view indent) {
    std::string result;
    std::string line(first);
    bool lineIsEmpty = true;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (!lineIsEmpty && widthOf(line) + 1 + widthOf(word) > pageWidth) {
            appendText(result, {line, "\n"});
            line = indent;
            lineIsEmpty = true;
        }
        if (!word.empty()) {
            appendText(line, {lineIsEmpty ? "" : " ", word});
            lineIsEmpty = false;
        }
    }
    return lineIsEmpty ? result : joinText({result, line, "\n"});
}

std::string joined(const std::vector<std::string>& texts) {
    std::string text;
    for (const std::string& piece : texts) {
        appendText(text, {text.empty() ? "" : ", ", piece});
    }
    return text;
}

std::string offeredText(const NodeTypeSummary& type) { return type.creatable ? "yes" : "no"; }

std::string colourText(const std::array<float, 4>& colour) {
    return joinText({formatFloat(colour[0]), ", ", formatFloat(colour[1]), ", ", formatFloat(colour[2]),
                     ", alpha ", formatFloat(colour[3])});
}

std::string titleText(const NodeTypeSummary& type) {
    return joinText({heading(joinText({type.typeName, " (", type.displayName, ")"})), "\n"});
}

std::string headText(const NodeSummary& summary) {
    return tableText({{"Category", summary.type.category},
                      {"Offered", offeredText(summary.type)},
                      {"Plug-in", oneLine(summary.type.plugin)},
                      {"Version", std::to_string(summary.version)},
                      {"Caption", summary.appearance.caption},
                      {"Body colour", colourText(summary.bodyColour)},
                      {"Text colour", colourText(summary.textColour)}},
                     "  ");
}

/// The default as it is told apart from other words: texts in quotation marks.
std::string initialText(const PropertySummary& property) {
    const std::string text = propertyValueText(property.initial);
    const bool isFreeText = property.kind == PropertyType::String;
    return isFreeText ? joinText({"\"", text, "\""}) : text;
}

std::string notesOn(const PropertySummary& property) {
    std::vector<std::string> notes;
    if (!property.editable) {
        notes.emplace_back("not editable");
    }
    if (!property.visible) {
        notes.emplace_back("hidden");
    }
    if (property.stringStyle != 0) {
        notes.emplace_back(property.stringStyle == 1 ? "free text" : "web address");
    }
    return joined(notes);
}

std::string allowedText(const PropertySummary& property) {
    if (property.allowedValues.empty()) {
        return {};
    }
    const char* const head = property.kind == PropertyType::Node ? "nodes of type " : "one of ";
    return wrapped(head + joined(property.allowedValues), "      ", "      ");
}

/// The help text, which names the property once more.
std::string helpText(const PropertySummary& property) {
    std::string_view help = property.help;
    const std::string name = property.name + ":";
    if (help.substr(0, name.size()) == name) {
        help.remove_prefix(name.size());
    }
    return wrapped(help, "      ", "      ");
}

std::string propertiesText(const NodeSummary& summary) {
    std::vector<Row> rows;
    for (const PropertySummary& property : summary.properties) {
        rows.push_back(
            {property.name, propertyKindName(property.kind), initialText(property), notesOn(property)});
    }
    const std::vector<std::string> lines = columns(rows, "    ");
    std::string text = joinText({"  ", heading("Properties"), "\n"});
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const PropertySummary& property = summary.properties[i];
        appendText(text, {lines[i], "\n", allowedText(property), helpText(property)});
    }
    return text;
}

std::string componentsText(const PortSummary& port) {
    if (!port.componentCount) {
        return "any";
    }
    return std::to_string(*port.componentCount) + (port.componentCountFixed ? "" : " unless connected");
}

std::string portsText(const NodeAppearance& appearance) {
    std::vector<Row> rows;
    const auto add = [&](const char* direction, const std::vector<PortSummary>& ports) {
        for (const PortSummary& port : ports) {
            rows.push_back({direction, port.name, port.label, componentsText(port)});
        }
    };
    add("in", appearance.inputs);
    add("out", appearance.outputs);
    return rows.empty() ? "" : joinText({"  ", heading("Ports"), "\n", tableText(rows, "    ")});
}

std::string portList(const std::vector<PortSummary>& ports) {
    std::vector<std::string> texts;
    texts.reserve(ports.size());
    for (const PortSummary& port : ports) {
        texts.push_back(joinText({port.name, " (", port.label, ", ", componentsText(port), ")"}));
    }
    return texts.empty() ? "none" : joined(texts);
}

/// The properties that are visible in one mode and not in every mode.
std::vector<std::string> peculiarProperties(const NodeModes& modes, const NodeMode& mode) {
    std::vector<std::string> names;
    for (const std::string& name : mode.appearance.visibleProperties) {
        const bool everywhere =
            std::all_of(modes.modes.begin(), modes.modes.end(), [&](const NodeMode& other) {
                const auto& visible = other.appearance.visibleProperties;
                return std::find(visible.begin(), visible.end(), name) != visible.end();
            });
        if (!everywhere) {
            names.push_back(name);
        }
    }
    return names;
}

std::string modeText(const NodeModes& modes, const NodeMode& mode) {
    constexpr std::string_view indent = "               ";
    const std::vector<std::string> properties = peculiarProperties(modes, mode);
    return joinText({"    ", propertyValueText(mode.value), "\n",
                     wrapped(mode.appearance.caption, "      caption  ", indent),
                     wrapped(portList(mode.appearance.inputs), "      in       ", indent),
                     wrapped(portList(mode.appearance.outputs), "      out      ", indent),
                     wrapped(joined(properties), "      shows    ", indent)});
}

std::string modesText(const NodeSummary& summary) {
    std::string text;
    for (const NodeModes& modes : summary.modes) {
        appendText(text, {"  ", heading(joinText({"By ", modes.property})), "\n"});
        for (const NodeMode& mode : modes.modes) {
            text += modeText(modes, mode);
        }
    }
    return text;
}

/// The number that people wrote: 0.1, and not the nearest float in the digits of a double.
double exactly(float value) {
    const std::string text = propertyValueText(value);
    double number = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

template <std::size_t Count>
ordered_json jsonOf(const std::array<float, Count>& values) {
    ordered_json list = ordered_json::array();
    for (const float value : values) {
        list.push_back(exactly(value));
    }
    return list;
}

struct ValueToJson {
    ordered_json operator()(bool value) const { return value; }
    ordered_json operator()(std::int32_t value) const { return value; }
    ordered_json operator()(float value) const { return exactly(value); }
    ordered_json operator()(const std::string& value) const { return value; }
    ordered_json operator()(const std::array<float, 3>& value) const { return jsonOf(value); }
};

ordered_json jsonOf(const NodeTypeSummary& type) {
    return {{"typeName", type.typeName},
            {"displayName", type.displayName},
            {"category", type.category},
            {"creatable", type.creatable},
            {"plugin", type.plugin}};
}

ordered_json jsonOf(const PropertySummary& property) {
    ordered_json json = {{"name", property.name},
                         {"kind", propertyKindName(property.kind)},
                         {"default", std::visit(ValueToJson(), property.initial)}};
    if (property.kind == PropertyType::Enum || property.kind == PropertyType::Node) {
        json["allowedValues"] = property.allowedValues;
    }
    json["stringStyle"] = property.stringStyle;
    json["help"] = property.help;
    json["editable"] = property.editable;
    json["visible"] = property.visible;
    return json;
}

ordered_json jsonOf(const std::vector<PortSummary>& ports) {
    ordered_json list = ordered_json::array();
    for (const PortSummary& port : ports) {
        ordered_json json = {{"name", port.name}, {"label", port.label}, {"componentCount", nullptr}};
        if (port.componentCount) {
            json["componentCount"] = *port.componentCount;
        }
        json["componentCountFixed"] = port.componentCountFixed;
        list.push_back(std::move(json));
    }
    return list;
}

void addAppearance(ordered_json& json, const NodeAppearance& appearance) {
    json["caption"] = appearance.caption;
    json["inputs"] = jsonOf(appearance.inputs);
    json["outputs"] = jsonOf(appearance.outputs);
    json["visibleProperties"] = appearance.visibleProperties;
}

ordered_json jsonOf(const NodeModes& modes) {
    ordered_json values = ordered_json::array();
    for (const NodeMode& mode : modes.modes) {
        ordered_json json = {{"value", std::visit(ValueToJson(), mode.value)}};
        addAppearance(json, mode.appearance);
        values.push_back(std::move(json));
    }
    return {{"property", modes.property}, {"values", std::move(values)}};
}

ordered_json jsonOf(const NodeSummary& summary) {
    ordered_json json = jsonOf(summary.type);
    json["version"] = summary.version;
    json["bodyColour"] = jsonOf(summary.bodyColour);
    json["textColour"] = jsonOf(summary.textColour);
    addAppearance(json, summary.appearance);
    json["properties"] = ordered_json::array();
    for (const PropertySummary& property : summary.properties) {
        json["properties"].push_back(jsonOf(property));
    }
    json["modes"] = ordered_json::array();
    for (const NodeModes& modes : summary.modes) {
        json["modes"].push_back(jsonOf(modes));
    }
    return json;
}

template <typename Summary>
std::string listText(const std::vector<Summary>& summaries) {
    ordered_json list = ordered_json::array();
    for (const Summary& summary : summaries) {
        list.push_back(jsonOf(summary));
    }
    const ordered_json document = {{"nodeTypes", std::move(list)}};
    return document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace

std::string nodeTable(const std::vector<NodeTypeSummary>& types) {
    std::vector<Row> rows = {{"TYPE", "NAME", "CATEGORY", "OFFERED", "PLUG-IN"}};
    for (const NodeTypeSummary& type : types) {
        rows.push_back(
            {type.typeName, type.displayName, type.category, offeredText(type), oneLine(type.plugin)});
    }
    std::vector<std::string> lines = columns(rows, "");
    lines.front() = heading(lines.front());
    std::string text;
    for (const std::string& line : lines) {
        appendText(text, {line, "\n"});
    }
    return text;
}

std::string nodeTableJson(const std::vector<NodeTypeSummary>& types) { return listText(types); }

std::string descriptionText(const std::vector<NodeSummary>& summaries) {
    std::string text;
    for (const NodeSummary& summary : summaries) {
        appendText(text, {text.empty() ? "" : "\n", titleText(summary.type), headText(summary),
                          portsText(summary.appearance), propertiesText(summary), modesText(summary)});
    }
    return text;
}

std::string descriptionJson(const std::vector<NodeSummary>& summaries) { return listText(summaries); }

} // namespace patina::tool
