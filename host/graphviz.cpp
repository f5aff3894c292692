#include "host/graphviz.h"

#include "host/diagnostic.h"
#include "host/document.h"
#include "nodemodel/text.h"
#include "shadergraph/register_table.h"
#include "shadergraph/shader_type.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <map>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace patina {

using namespace detail;

namespace {

using Colour = std::array<float, 4>;

constexpr const char* middleDot = " \xC2\xB7 ";
constexpr const char* referenceColour = "#8a8a8a";
constexpr const char* resultAttributes = R"(fillcolor="#2f3640", color="#2f3640", fontcolor="#ffffff")";

/// Text as Graphviz takes it: UTF-8 of characters that XML allows, which it reads labels as.
std::string plainText(std::string_view text) {
    std::string plain = oneLine(text);
    if (!isDocumentText(plain)) {
        std::replace_if(
            plain.begin(), plain.end(),
            [](char letter) { return static_cast<unsigned char>(letter) >= 0x80; }, '?');
    }
    return plain;
}

struct Escape {
    char letter;
    const char* replacement;
};

template <std::size_t Count>
std::string escaped(std::string_view text, const std::array<Escape, Count>& escapes) {
    std::string result;
    for (const char letter : plainText(text)) {
        const auto found = std::find_if(escapes.begin(), escapes.end(),
                                        [&](const Escape& escape) { return escape.letter == letter; });
        if (found == escapes.end()) {
            result += letter;
        } else {
            result += found->replacement;
        }
    }
    return result;
}

/// Text in an HTML-like label. Graphviz replaces sequences like "\N" there too.
std::string htmlText(std::string_view text) {
    constexpr std::array<Escape, 5> escapes = {
        {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\\', "\\\\"}}};
    return escaped(text, escapes);
}

/// A name or label in quotation marks. Graphviz replaces sequences like "\N" and "&lt;" in it.
std::string quotedText(std::string_view text) {
    constexpr std::array<Escape, 3> escapes = {{{'"', "\\\""}, {'\\', "\\\\"}, {'&', "&amp;"}}};
    return joinText({"\"", escaped(text, escapes), "\""});
}

/// The same as a tooltip, in which Graphviz replaces sequences twice.
std::string quotedTooltip(std::string_view text) {
    constexpr std::array<Escape, 3> escapes = {{{'"', "&quot;"}, {'\\', "\\\\\\\\"}, {'&', "&amp;"}}};
    return joinText({"\"", escaped(text, escapes), "\""});
}

/// A colour component; what is no number counts as 0.
void appendHex(std::string& text, float component) {
    constexpr std::string_view digits = "0123456789abcdef";
    const float clamped = component > 0.0F ? std::min(component, 1.0F) : 0.0F;
    const auto code = static_cast<std::size_t>(std::lround(clamped * 255.0F));
    text += digits[code / 16];
    text += digits[code % 16];
}

std::string colourText(const Colour& colour) {
    std::string text = "#";
    for (const float component : colour) {
        appendHex(text, component);
    }
    return text;
}

/// The colour of the lines that leave a node: dark enough on white for any body.
std::string lineColour(const Colour& body) {
    constexpr float darkening = 0.6F;
    return colourText({body[0] * darkening, body[1] * darkening, body[2] * darkening, 1.0F});
}

/// The text of one node: a title over the ports, inputs at the left and outputs at the right. Ports are named
/// by direction and position, as `portName` does.
struct NodeLabel {
    std::string title;
    std::string subtitle;
    std::string picture; ///< may be empty
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    int pictureSize = graphPictureSize;
};

enum class Direction { In, Out };

std::string portName(Direction direction, std::size_t index) {
    return joinText({direction == Direction::In ? "i" : "o", std::to_string(index)});
}

std::string portCell(const std::vector<std::string>& ports, Direction direction, std::size_t index) {
    if (index >= ports.size()) {
        return "<TD></TD>";
    }
    const bool in = direction == Direction::In;
    return joinText({"<TD PORT=\"", portName(direction, index), "\" ALIGN=\"", in ? "LEFT" : "RIGHT", "\">",
                     htmlText(ports[index]), "</TD>"});
}

std::string labelText(const NodeLabel& label) {
    std::string text = joinText({"<<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">"
                                 "<TR><TD COLSPAN=\"2\"><B>",
                                 htmlText(label.title), "</B>"});
    appendText(text, {"<BR/><FONT POINT-SIZE=\"9\">", htmlText(label.subtitle), "</FONT></TD></TR>"});
    if (!label.picture.empty()) {
        const std::string size = std::to_string(label.pictureSize);
        appendText(text, {"<TR><TD COLSPAN=\"2\" FIXEDSIZE=\"TRUE\" WIDTH=\"", size, "\" HEIGHT=\"", size,
                          "\"><IMG SCALE=\"TRUE\" SRC=\"", htmlText(label.picture), "\"/></TD></TR>"});
    }
    const std::size_t rows = std::max(label.inputs.size(), label.outputs.size());
    text += rows > 0 ? "<HR/>" : "";
    for (std::size_t row = 0; row < rows; ++row) {
        appendText(text, {"<TR>", portCell(label.inputs, Direction::In, row),
                          portCell(label.outputs, Direction::Out, row), "</TR>"});
    }
    return text + "</TABLE>>";
}

/// Appends the statements of one graph to one text.
class DotPrinter {
public:
    explicit DotPrinter(const std::string& name, std::string_view title, bool isDense = false) {
        const std::string_view distances = isDense ? "nodesep=0.1, ranksep=0.4" : "nodesep=0.3, ranksep=0.8";
        constexpr std::string_view graphLook =
            "pad=0.4, bgcolor=\"#ffffff\", labelloc=t, fontname=\"Helvetica\", fontsize=20";
        constexpr std::string_view nodeLook =
            "shape=box, style=\"rounded,filled\", margin=0.04, penwidth=1.2, "
            "fontname=\"Helvetica\", fontsize=11";
        constexpr std::string_view edgeLook =
            "arrowsize=0.6, penwidth=1.4, fontname=\"Helvetica\", fontsize=8";
        append({"digraph ", quotedText(name), " {\n\tgraph [rankdir=LR, ", distances, ", ", graphLook,
                ", label=", quotedText(title), "];\n"});
        append({"\tnode [", nodeLook, "];\n\tedge [", edgeLook, "];\n\n"});
    }

    void node(const std::string& name, const NodeLabel& label, std::string_view attributes) {
        append({indent_, name, " [label=", labelText(label), ", ", attributes, "];\n"});
    }

    void edge(const std::string& source, const std::string& destination, std::string_view attributes) {
        append({indent_, source, " -> ", destination, " [", attributes, "];\n"});
    }

    void beginCluster(std::string_view name, std::string_view attributes) {
        append({"\tsubgraph cluster_", name, " {\n\t\tgraph [", attributes, "];\n"});
        indent_ = "\t\t";
    }

    void endCluster() {
        text_ += "\t}\n";
        indent_ = "\t";
    }

    std::string finish() {
        text_ += "}\n";
        return std::move(text_);
    }

private:
    void append(std::initializer_list<std::string_view> pieces) { appendText(text_, pieces); }

    std::string text_;
    std::string_view indent_ = "\t";
};

std::string captionOf(const Material& material, const MaterialItem& item) {
    return onBehalfOf(material, item, item.line, [&] { return item.node->caption(); });
}

std::string outputEnd(const std::string& node, std::size_t port) {
    return joinText({node, ":", portName(Direction::Out, port), ":e"});
}

std::string inputEnd(const std::string& node, std::size_t port) {
    return joinText({node, ":", portName(Direction::In, port), ":w"});
}

/// The names of a node's ports, to find them by, and the texts that they show.
struct PortList {
    std::vector<std::string> names;
    std::vector<std::string> labels;

    void add(const std::string& name, const std::string& label) {
        names.push_back(name);
        labels.push_back(label);
    }
    std::size_t find(const std::string& name) const {
        return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
    }
    /// The position of the port, which is made when it is missing.
    std::size_t require(const std::string& name) {
        const std::size_t position = find(name);
        if (position == names.size()) {
            add(name, name);
        }
        return position;
    }
};

PortList listOf(const std::vector<Port>& ports) {
    PortList list;
    for (const Port& port : ports) {
        list.add(port.name, port.label);
    }
    return list;
}

class MaterialGraphPrinter {
public:
    MaterialGraphPrinter(const Material& material, const GraphPictures& pictures)
        : material_(material), pictures_(pictures), printer_(material.name, material.name, pictures.dense) {}

    std::string print() {
        listPorts();
        printNodes();
        printResult();
        printConnections();
        printReferences();
        return printer_.finish();
    }

private:
    static std::string nodeName(std::size_t item) { return joinText({"n", std::to_string(item)}); }

    /// Placeholders have no ports of their own: they get those that the document names.
    void listPorts() {
        for (const MaterialItem& item : material_.items) {
            inputs_.push_back(listOf(item.node->inputs));
            outputs_.push_back(listOf(item.node->outputs));
        }
        for (const MaterialConnection& connection : material_.connections) {
            outputs_[connection.source].require(connection.record->sourcePort);
            inputs_[connection.destination].require(connection.record->destinationPort);
        }
        for (const MaterialOutput& output : material_.outputs) {
            outputs_[output.source].require(output.record->sourcePort);
        }
    }

    void printNodes() {
        for (std::size_t i = 0; i < material_.items.size(); ++i) {
            const MaterialItem& item = material_.items[i];
            const MaterialNode& node = *item.node;
            const std::string caption = captionOf(material_, item);
            const std::string subtitle =
                caption == node.name() ? item.id : joinText({node.name(), middleDot, item.id});
            printer_.node(
                nodeName(i),
                {caption, subtitle, pictureOf(i), inputs_[i].labels, outputs_[i].labels, pictureSize()},
                joinText({"fillcolor=\"", colourText(node.bodyColour), "\", color=\"",
                          lineColour(node.bodyColour), "\", fontcolor=\"", colourText(node.textColour),
                          "\", tooltip=", quotedTooltip(tooltipOf(item)),
                          item.placeholder ? ", style=\"rounded,filled,dashed\"" : ""}));
        }
    }

    std::string pictureOf(std::size_t item) const {
        return item < pictures_.nodes.size() ? pictures_.nodes[item] : std::string();
    }

    int pictureSize() const { return pictures_.dense ? denseGraphPictureSize : graphPictureSize; }

    static std::string tooltipOf(const MaterialItem& item) {
        const std::string& description = item.node->descriptionProperty->getString();
        return joinText({item.node->typeName(), " ", item.id, description.empty() ? "" : ": ", description});
    }

    void printResult() {
        if (material_.outputs.empty()) {
            return;
        }
        NodeLabel label;
        label.title = material_.name;
        label.subtitle = "material";
        label.picture = pictures_.material;
        label.pictureSize = pictureSize();
        for (const MaterialOutput& output : material_.outputs) {
            label.inputs.push_back(output.name);
        }
        printer_.node("material", label, resultAttributes);
    }

    void printConnections() {
        for (const MaterialConnection& connection : material_.connections) {
            printer_.edge(sourceEnd(connection.source, connection.record->sourcePort),
                          inputEnd(nodeName(connection.destination),
                                   inputs_[connection.destination].find(connection.record->destinationPort)),
                          edgeColour(connection.source));
        }
        for (std::size_t i = 0; i < material_.outputs.size(); ++i) {
            const MaterialOutput& output = material_.outputs[i];
            printer_.edge(sourceEnd(output.source, output.record->sourcePort), inputEnd("material", i),
                          edgeColour(output.source));
        }
    }

    std::string sourceEnd(std::size_t item, const std::string& port) const {
        return outputEnd(nodeName(item), outputs_[item].find(port));
    }

    std::string edgeColour(std::size_t source) const {
        return joinText({"color=\"", lineColour(material_.items[source].node->bodyColour), "\""});
    }

    void printReferences() {
        std::map<const MaterialNode*, std::size_t> indexByNode;
        for (std::size_t i = 0; i < material_.items.size(); ++i) {
            indexByNode.emplace(material_.items[i].node.get(), i);
        }
        for (std::size_t i = 0; i < material_.items.size(); ++i) {
            for (const std::shared_ptr<Property>& property : *material_.items[i].node->properties) {
                if (property->kind == PropertyType::Node && property->nodeValue) {
                    printer_.edge(nodeName(i), nodeName(indexByNode.at(property->nodeValue.get())),
                                  joinText({"style=dotted, constraint=false, arrowhead=vee, color=\"",
                                            referenceColour, "\", fontcolor=\"", referenceColour,
                                            "\", label=", quotedText(property->name)}));
                }
            }
        }
    }

    const Material& material_;
    const GraphPictures& pictures_;
    DotPrinter printer_;
    std::vector<PortList> inputs_;
    std::vector<PortList> outputs_;
};

constexpr const char* vertexCluster =
    R"(label="Vertex program", labeljust=l, style="rounded,filled", fillcolor="#eef4fc", color="#9db8da", fontsize=15)";
constexpr const char* fragmentCluster =
    R"(label="Fragment program", labeljust=l, style="rounded,filled", fillcolor="#fdf3ea", color="#deb58c", fontsize=15)";
constexpr const char* vertexFunction = R"(fillcolor="#c9ddf6", color="#5d7fa8")";
constexpr const char* fragmentFunction = R"(fillcolor="#fbd9b8", color="#b07a42")";
constexpr const char* attributeParameter = R"(fillcolor="#e3d5f2", color="#80619f")";
constexpr const char* uniformParameter = R"(fillcolor="#d3ecce", color="#5f9455")";
constexpr const char* conversionFunction = R"(fillcolor="#ececec", color="#8a8a8a")";

class ShaderGraphPrinter {
public:
    ShaderGraphPrinter(const Material& material, const Dataflow& flow, const StagedShader& stages)
        : material_(material), flow_(flow), stages_(stages),
          printer_(material.name, material.name + ", shader") {
        fragmentFunctions_.insert(stages.fragment.functions.begin(), stages.fragment.functions.end());
        vertexFunctions_.insert(stages.vertex.functions.begin(), stages.vertex.functions.end());
        for (const Interpolant& interpolant : stages.interpolants) {
            interpolants_.emplace(keyOf(interpolant.value), &interpolant);
        }
        for (std::size_t i = 0; i < flow.nodes.size(); ++i) {
            const GeneratorNode& node = *flow.nodes[i].generated;
            if (node.kind != NodeKind::Function) {
                firstParameters_.emplace(parameterKey(node), i);
            }
        }
    }

    std::string print() {
        printUniforms(stages_.vertex, stages_.fragment, true);
        printVertexProgram();
        printFragmentProgram();
        printEdges();
        return printer_.finish();
    }

private:
    /// Which program a reader of a value is part of.
    enum class Program { Vertex, Fragment };

    std::pair<std::size_t, std::size_t> keyOf(const ValueSource& value) const {
        return {stages_.declarations[value.node], value.port};
    }

    static std::pair<NodeKind, std::string> parameterKey(const GeneratorNode& node) {
        return {node.kind, declaration(node.type, node.name)};
    }

    /// The number by which a node is drawn: programs declare equal parameters once.
    std::size_t drawnAs(std::size_t node) const {
        const GeneratorNode& generated = *flow_.nodes[node].generated;
        return generated.kind == NodeKind::Function ? node : firstParameters_.at(parameterKey(generated));
    }

    bool isUniform(std::size_t node) const {
        return flow_.nodes[node].generated->kind == NodeKind::UniformParameter;
    }

    /// The name of the node from which a program reads: its own instance where it has one.
    std::string nodeName(std::size_t node, Program program) const {
        const std::string number = std::to_string(drawnAs(node));
        if (isUniform(node)) {
            return joinText({"u", number});
        }
        if (program == Program::Fragment && fragmentFunctions_.count(node) != 0) {
            return joinText({"f", number});
        }
        return joinText({vertexFunctions_.count(node) != 0 ? "v" : "a", number});
    }

    static std::vector<std::string> namesOf(const std::vector<GeneratorPort>& ports) {
        std::vector<std::string> names;
        names.reserve(ports.size());
        for (const GeneratorPort& port : ports) {
            names.push_back(port.name);
        }
        return names;
    }

    void printFunction(std::size_t node, Program program, std::string_view attributes) {
        const DataflowNode& entry = flow_.nodes[node];
        NodeLabel label;
        label.inputs = namesOf(entry.generated->inputs);
        label.outputs = namesOf(entry.generated->outputs);
        if (entry.conversion) {
            label.title = entry.generated->name;
            label.subtitle = "conversion";
        } else if (entry.owner == frameworkOwner) {
            label.title = ownerTitle(material_, entry);
            label.subtitle = entry.generated->name;
        } else {
            const MaterialItem& owner = material_.items[entry.owner];
            label.title = captionOf(material_, owner);
            label.subtitle = joinText({entry.generated->name, middleDot, owner.id});
        }
        printer_.node(nodeName(node, program), label, entry.conversion ? conversionFunction : attributes);
    }

    void printParameter(std::size_t node, const char* what, std::string_view attributes) {
        const GeneratorNode& parameter = *flow_.nodes[node].generated;
        printer_.node(nodeName(node, Program::Vertex),
                      {parameter.name,
                       joinText({what, " ", typeText(parameter.type)}),
                       {},
                       {},
                       namesOf(parameter.outputs)},
                      attributes);
    }

    /// The parameters of a list, each once.
    std::set<std::size_t> drawn(const std::vector<std::size_t>& parameters) const {
        std::set<std::size_t> numbers;
        for (const std::size_t node : parameters) {
            numbers.insert(drawnAs(node));
        }
        return numbers;
    }

    /// Those of one program's uniforms that the other reads too, or those that it does not read.
    void printUniforms(const ShaderStage& stage, const ShaderStage& other, bool shared) {
        const std::set<std::size_t> others = drawn(other.uniforms);
        for (const std::size_t node : drawn(stage.uniforms)) {
            if ((others.count(node) != 0) == shared) {
                printParameter(node, "uniform", uniformParameter);
            }
        }
    }

    void printVertexProgram() {
        printer_.beginCluster("vertex", vertexCluster);
        for (const std::size_t node : drawn(stages_.attributes)) {
            printParameter(node, "attribute", attributeParameter);
        }
        printUniforms(stages_.vertex, stages_.fragment, false);
        for (const std::size_t node : stages_.vertex.functions) {
            printFunction(node, Program::Vertex, vertexFunction);
        }
        printer_.endCluster();
    }

    void printFragmentProgram() {
        printer_.beginCluster("fragment", fragmentCluster);
        printUniforms(stages_.fragment, stages_.vertex, false);
        for (const std::size_t node : stages_.fragment.functions) {
            printFunction(node, Program::Fragment, fragmentFunction);
        }
        NodeLabel result;
        result.title = material_.name;
        result.subtitle = "material";
        result.inputs.emplace_back("colour");
        if (flow_.hasAlpha) {
            result.inputs.emplace_back("alpha");
        }
        printer_.node("material", result, resultAttributes);
        printer_.endCluster();
    }

    void printEdges() {
        for (const std::size_t node : stages_.vertex.functions) {
            printInputs(node, Program::Vertex);
        }
        for (const std::size_t node : stages_.fragment.functions) {
            printInputs(node, Program::Fragment);
        }
        printEdge(flow_.colour, Program::Fragment, inputEnd("material", 0));
        if (flow_.hasAlpha) {
            printEdge(flow_.alpha, Program::Fragment, inputEnd("material", 1));
        }
    }

    void printInputs(std::size_t node, Program program) {
        const auto& inputs = flow_.nodes[node].inputs;
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            printEdge(inputs[i], program, inputEnd(nodeName(node, program), i));
        }
    }

    void printEdge(const ValueSource& value, Program reader, const std::string& destination) {
        const bool crosses = reader == Program::Fragment && interpolants_.count(keyOf(value)) != 0;
        const std::string type = typeText(flow_.port(value).type);
        printer_.edge(
            outputEnd(nodeName(value.node, reader), value.port), destination,
            crosses ? joinText({"label=", quotedText(joinText({type, " ", placeOf(value)})),
                                R"(, color="#c0392b", fontcolor="#c0392b", penwidth=2)"})
                    : joinText({"label=", quotedText(type), R"(, color="#5a6270", fontcolor="#5a6270")"}));
    }

    /// The part of an interpolant register that carries a value: "TEXCOORD0.xy".
    std::string placeOf(const ValueSource& value) const {
        constexpr std::string_view components = "xyzw";
        const Interpolant& interpolant = *interpolants_.at(keyOf(value));
        const RegisterReference reference = {registers::fragmentInterpolant,
                                             stages_.registers[interpolant.registerIndex].number};
        return joinText({registerText(reference), ".",
                         components.substr(static_cast<std::size_t>(interpolant.firstComponent),
                                           static_cast<std::size_t>(flow_.port(value).type.columns))});
    }

    const Material& material_;
    const Dataflow& flow_;
    const StagedShader& stages_;
    DotPrinter printer_;
    std::map<std::pair<NodeKind, std::string>, std::size_t> firstParameters_;
    std::unordered_set<std::size_t> vertexFunctions_;
    std::unordered_set<std::size_t> fragmentFunctions_;
    std::map<std::pair<std::size_t, std::size_t>, const Interpolant*> interpolants_;
};

} // namespace

std::string printMaterialGraph(const Material& material, const GraphPictures& pictures) {
    return MaterialGraphPrinter(material, pictures).print();
}

std::string printShaderGraph(const Material& material, const Dataflow& flow, const StagedShader& stages) {
    return ShaderGraphPrinter(material, flow, stages).print();
}

} // namespace patina
