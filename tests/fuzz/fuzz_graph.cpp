#include "tests/fuzz/decisions.h"
#include "tests/fuzz/export_checks.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina::fuzz {

using namespace detail;

namespace {

constexpr std::string_view types[] = {"CoreMaths",        "CoreConstant", "CoreUv",         "CoreTexture",
                                      "CoreVertexColour", "CoreSwizzle",  "CoreLayerBlend", "CoreAnimatedUv",
                                      "CoreDefault",      "Unknown"};
constexpr std::string_view outputNames[] = {"colour", "alpha", "normal", "emissive", "gloss"};
constexpr std::string_view portNames[] = {"read",       "out_value", "in_value1", "in_uv", "out_colour",
                                          "in_sampler", "in_facing", "alpha",     "",      "a\nb"};
constexpr PropertyType kinds[] = {PropertyType::String, PropertyType::Bool,   PropertyType::Integer,
                                  PropertyType::Float,  PropertyType::Colour, PropertyType::Enum,
                                  PropertyType::Node};

constexpr std::string_view placeholder = types[8];
constexpr std::size_t maximalNodes = 24;
constexpr std::size_t maximalEdits = 96;

/// Edits a material as its input decides, and holds it against what editing promises.
class GraphFuzzer {
public:
    explicit GraphFuzzer(Decisions& decisions) : decide_(decisions) {
        Warnings warnings;
        MaterialDocument document;
        document.file = "fuzz.xml";
        document.name = "Fuzz";
        if (decide_.oneIn(32)) {
            document.nodes.push_back(
                {"lost", std::string(placeholder), 3, {{"Grain", PropertyType::Float, "1"}}});
        }
        material_ = buildMaterial(std::move(document), corePlugins(), warnings);
    }

    void edit() {
        for (std::size_t i = 0; i < maximalEdits && !decide_.isSpent(); ++i) {
            if (decide_.oneIn(4)) {
                editWatched();
            } else {
                tryEdit();
            }
        }
    }

    /// Most often gives the material what none can be exported without, as far as that can be done.
    void complete() {
        if (decide_.oneIn(16)) {
            return;
        }
        try {
            connectTextures();
            giveColour();
        } catch (const HostError&) {
            return;
        }
    }

    /// The material is what its document says.
    void compareWithDocument() const {
        Warnings warnings;
        try {
            const Material rebuilt = buildMaterial(material_.document, corePlugins(), warnings);
            require(printMaterialGraph(rebuilt) == printMaterialGraph(material_),
                    joinText({"An edited material is not what its document says:\n",
                              printMaterial(material_.document)}));
            const auto again = parseMaterial(printMaterial(material_.document), "fuzz.xml");
            require(again == material_.document, "An edited document is not read as it was written.");
        } catch (const HostError& error) {
            require(false,
                    joinText({"An edited material cannot be built from its document: ", error.what()}));
        }
    }

    /// Shows any value of what was edited, which may lack whatever an export needs elsewhere.
    void show() {
        const MaterialItem* item = anyItem();
        if (item != nullptr && decide_.oneIn(4)) {
            checkShown(material_.document, item->id, anyPort(item->node->outputs));
        }
    }

    /// The document, with whatever no edit would allow where the input asks for it.
    MaterialDocument spoilt() {
        MaterialDocument document = material_.document;
        if (!decide_.oneIn(4) || document.nodes.empty()) {
            return document;
        }
        for (std::size_t i = decide_.below(8) + 1; i > 0; --i) {
            spoil(document);
        }
        return document;
    }

private:
    bool tryEdit() {
        try {
            editOnce();
            return true;
        } catch (const HostError&) {
            return false;
        }
    }

    void editWatched() {
        const std::string drawn = printMaterialGraph(material_);
        const MaterialDocument saved = material_.document;
        require(tryEdit() || (saved == material_.document && drawn == printMaterialGraph(material_)),
                "An edit that fails changes the material.");
    }

    void editOnce() {
        switch (decide_.below(16)) {
        case 0:
        case 1:
        case 2:
            addAnyNode();
            return;
        case 3:
        case 4:
        case 5:
        case 6:
            setAnyProperty();
            return;
        case 7:
        case 8:
        case 9:
        case 10:
            connectAny();
            return;
        case 11:
        case 12:
            setAnyOutput();
            return;
        case 13:
            disconnectAny();
            return;
        case 14:
            removeAny();
            return;
        default:
            saveBindings(material_, collectBindings(material_));
            return;
        }
    }

    void addAnyNode() {
        if (material_.items.size() < maximalNodes) {
            const std::string type(decide_.choose(types));
            const std::string id = decide_.oneIn(4) ? decide_.text() : std::string();
            addNode(material_, corePlugins(), type, id);
        }
    }

    void disconnectAny() {
        const std::string id = anyId();
        disconnect(material_, id, std::string(decide_.choose(portNames)));
    }

    const MaterialItem* anyItem() {
        return material_.items.empty() ? nullptr : &material_.items[decide_.below(material_.items.size())];
    }

    std::string anyId() {
        const MaterialItem* item = anyItem();
        return item == nullptr || decide_.oneIn(32) ? decide_.text() : item->id;
    }

    std::string anyPort(const std::vector<Port>& ports) {
        return ports.empty() || decide_.oneIn(32) ? std::string(decide_.choose(portNames))
                                                  : decide_.choose(ports).name;
    }

    void setAnyProperty() {
        const MaterialItem* item = anyItem();
        if (item == nullptr) {
            return;
        }
        const Property& property = *decide_.choose(item->node->properties->items);
        setProperty(material_, std::string(item->id), std::string(property.name), anyValue(property));
    }

    std::string anyValue(const Property& property) {
        switch (decide_.oneIn(16) ? PropertyType::String : property.kind) {
        case PropertyType::Bool:
            return decide_.oneIn(2) ? "No" : "Yes";
        case PropertyType::Integer:
            return std::to_string(decide_.integer());
        case PropertyType::Float:
            return decide_.numberText();
        case PropertyType::String:
            return decide_.name();
        case PropertyType::Colour:
            return joinText({decide_.numberText(), ",", decide_.numberText(), ",", decide_.numberText()});
        case PropertyType::Enum:
            return decide_.choose(property.allowedValues);
        case PropertyType::Node:
            return decide_.oneIn(4) ? std::string() : anyId();
        }
        return {};
    }

    /// Most often from an earlier node to a later one.
    void connectAny() {
        if (material_.items.empty()) {
            return;
        }
        std::size_t from = decide_.below(material_.items.size());
        std::size_t to = decide_.below(material_.items.size());
        if (from > to && !decide_.oneIn(8)) {
            std::swap(from, to);
        }
        const MaterialItem& source = material_.items[from];
        const MaterialItem& destination = material_.items[to];
        const std::string output = anyPort(source.node->outputs);
        const std::string input = anyPort(destination.node->inputs);
        connect(material_, source.id, output, destination.id, input);
    }

    void setAnyOutput() {
        const MaterialItem* item = anyItem();
        if (decide_.oneIn(16) || item == nullptr) {
            removeOutput(material_, std::string(decide_.choose(outputNames)));
            return;
        }
        const std::string name =
            decide_.oneIn(32) ? decide_.text() : std::string(decide_.choose(outputNames));
        setOutput(material_, name, item->id, anyPort(item->node->outputs));
    }

    void connectTextures() {
        std::string coordinate;
        for (std::size_t i = 0; i < material_.items.size(); ++i) {
            const MaterialNode& node = *material_.items[i].node;
            const int input = node.findInputPortIndex("in_uv");
            if (input >= 0 && !node.inputs[static_cast<std::size_t>(input)].connected) {
                if (coordinate.empty()) {
                    coordinate = addNode(material_, corePlugins(), "CoreUv");
                    setProperty(material_, coordinate, "Name", "completed");
                }
                connect(material_, coordinate, "read", std::string(material_.items[i].id), "in_uv");
            }
        }
    }

    /// The last output of which nothing says that it is no colour.
    void giveColour() {
        const auto isColour = [](const Port& port) {
            return !port.componentCountFixed || port.componentCount == 1 || port.componentCount == 3;
        };
        for (auto item = material_.items.rbegin(); item != material_.items.rend(); ++item) {
            const auto& outputs = item->node->outputs;
            const auto port = std::find_if(outputs.begin(), outputs.end(), isColour);
            if (port != outputs.end()) {
                setOutput(material_, "colour", std::string(item->id), std::string(port->name));
                return;
            }
        }
    }

    void removeAny() {
        if (decide_.oneIn(4)) {
            removeNode(material_, anyId());
        } else {
            setMaterialName(material_, decide_.text());
        }
    }

    void spoil(MaterialDocument& document) {
        DocumentNode& node = document.nodes[decide_.below(document.nodes.size())];
        switch (decide_.below(8)) {
        case 0:
            document.connections.push_back({anyId(), std::string(decide_.choose(portNames)), anyId(),
                                            std::string(decide_.choose(portNames))});
            return;
        case 1:
            if (!document.connections.empty()) {
                DocumentConnection& connection =
                    document.connections[decide_.below(document.connections.size())];
                std::swap(connection.source, connection.destination);
            }
            return;
        case 2:
            if (!document.connections.empty()) {
                document.connections.push_back(decide_.choose(document.connections));
            }
            return;
        case 3:
            node.properties.push_back({decide_.text(), decide_.choose(kinds), decide_.text()});
            return;
        case 4:
            if (!node.properties.empty()) {
                node.properties[decide_.below(node.properties.size())].kind = decide_.choose(kinds);
            }
            return;
        case 5:
            node.type = decide_.oneIn(2) ? decide_.text() : std::string(decide_.choose(types));
            return;
        case 6:
            node.version = decide_.integer();
            return;
        default:
            document.outputs.push_back({decide_.text(), anyId(), std::string(decide_.choose(portNames))});
            return;
        }
    }

    Decisions& decide_;
    Material material_;
};

} // namespace

/// Whatever is edited: the material stays what its document says, and exports to programs that a compiler
/// accepts, or HostError says why not.
void runDecided(Decisions& decide) {
    const bool compile = decide.below(2) == 0;
    GraphFuzzer fuzzer(decide);
    fuzzer.edit();
    fuzzer.complete();
    fuzzer.compareWithDocument();
    fuzzer.show();
    checkExport(fuzzer.spoilt(), compile);
}

} // namespace patina::fuzz
