#include "tests/host/host_checks.h"

#include "host/property_text.h"
#include "nodemodel/shader_error.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::built;
using testing::connection;
using testing::corePlugins;
using testing::expectErrorAt;
using testing::hostErrorOf;
using testing::maths;
using testing::node;
using testing::noError;
using testing::output;
using testing::parsed;
using testing::property;
using testing::sampleFile;

/// The ends of a record by the ids of the nodes.
using Ends = std::tuple<std::string, std::string, std::string, std::string>;

std::string idOf(const Material& material, const std::weak_ptr<MaterialNode>& wanted) {
    for (const MaterialItem& item : material.items) {
        if (item.node == wanted.lock()) {
            return item.id;
        }
    }
    return "(none)";
}

Ends endsOf(const Material& material, const NodeConnection& record) {
    return {idOf(material, record.sourceNode), record.sourcePort,
            record.destinationNode.expired() ? "" : idOf(material, record.destinationNode),
            record.destinationPort};
}

std::vector<Ends> endsOf(const Material& material, const std::list<std::weak_ptr<NodeConnection>>& links) {
    std::vector<Ends> ends;
    for (const std::weak_ptr<NodeConnection>& link : links) {
        const auto record = link.lock();
        ends.push_back(record ? endsOf(material, *record) : Ends{"(expired)", "", "", ""});
    }
    return ends;
}

auto valuesOf(const Material& material, const MaterialNode& node) {
    std::vector<std::tuple<std::string, bool, bool, std::string>> values;
    for (const auto& item : node.properties->items) {
        values.emplace_back(item->name, item->editable, item->visible,
                            detail::propertyText(*item, [&](const MaterialNode& target) {
                                return idOf(material,
                                            std::const_pointer_cast<MaterialNode>(item->nodeValue)) +
                                       target.typeName();
                            }));
    }
    return values;
}

/// What an export says without its place, or what it writes.
std::string exportOf(Material& material) {
    try {
        const ExportedMaterial result = testing::exportedFrom(material);
        return result.vertexProgram.content + result.fragmentProgram.content + result.bindings.content;
    } catch (const HostError& error) {
        const std::string text = error.what();
        return text.substr(text.find("error: "));
    }
}

std::vector<std::tuple<std::string, bool, bool>> portsOf(const std::vector<Port>& ports) {
    std::vector<std::tuple<std::string, bool, bool>> states;
    for (const Port& port : ports) {
        states.emplace_back(port.name, port.connected, port.componentCountFixed);
    }
    return states;
}

std::vector<std::tuple<Ends, std::size_t, std::size_t>> connectionsOf(const Material& material) {
    std::vector<std::tuple<Ends, std::size_t, std::size_t>> connections;
    for (const MaterialConnection& joined : material.connections) {
        connections.emplace_back(endsOf(material, *joined.record), joined.source, joined.destination);
    }
    return connections;
}

std::vector<std::tuple<Ends, std::size_t, std::string>> outputsOf(const Material& material) {
    std::vector<std::tuple<Ends, std::size_t, std::string>> outputs;
    for (const MaterialOutput& leaving : material.outputs) {
        outputs.emplace_back(endsOf(material, *leaving.record), leaving.source, leaving.name);
    }
    return outputs;
}

/// Returns whether the two can be exported.
bool expectSame(Material& live, Material& rebuilt) {
    EXPECT_EQ(live.name, rebuilt.name);
    EXPECT_EQ(live.downstream, rebuilt.downstream);
    EXPECT_EQ(live.items.size(), rebuilt.items.size());
    if (live.items.size() != rebuilt.items.size()) {
        return false;
    }
    // what a past export resolved is forgotten by the next: let both be resolved alike
    const std::string written = exportOf(live);
    EXPECT_EQ(written, exportOf(rebuilt));
    for (std::size_t i = 0; i < live.items.size(); ++i) {
        const MaterialNode& left = *live.items[i].node;
        const MaterialNode& right = *rebuilt.items[i].node;
        EXPECT_EQ(live.items[i].id, rebuilt.items[i].id);
        EXPECT_EQ(live.items[i].placeholder, rebuilt.items[i].placeholder);
        EXPECT_EQ(left.caption(), right.caption());
        EXPECT_EQ(left.textColour, right.textColour);
        EXPECT_EQ(valuesOf(live, left), valuesOf(rebuilt, right)) << live.items[i].id;
        EXPECT_EQ(portsOf(left.inputs), portsOf(right.inputs)) << live.items[i].id;
        EXPECT_EQ(portsOf(left.outputs), portsOf(right.outputs)) << live.items[i].id;
        EXPECT_EQ(endsOf(live, left.inputLinks), endsOf(rebuilt, right.inputLinks));
        EXPECT_EQ(endsOf(live, left.outputLinks), endsOf(rebuilt, right.outputLinks));
    }
    EXPECT_EQ(connectionsOf(live), connectionsOf(rebuilt));
    EXPECT_EQ(outputsOf(live), outputsOf(rebuilt));
    return written.rfind("error: ", 0) != 0;
}

Material rebuiltFrom(const Material& material) {
    Warnings warnings;
    const MaterialDocument reread = parseMaterial(printMaterial(material.document), sampleFile);
    EXPECT_TRUE(reread == material.document);
    return buildMaterial(reread, corePlugins(), warnings);
}

/// Holds a material against what its document, printed and read again, gives. Returns whether it can be
/// exported.
bool expectConsistent(Material& live) {
    Material rebuilt = rebuiltFrom(live);
    return expectSame(live, rebuilt);
}

/// Runs an edit that must fail, and holds the material against what it was.
template <typename Edit>
std::string refusedEdit(Material& material, Edit&& edit) {
    const std::string before = printMaterial(material.document);
    std::vector<decltype(testing::stateOf(*material.items.front().node->properties))> states;
    std::vector<decltype(testing::stateOf(material.items.front().node->inputs))> ports;
    const auto collect = [&](auto& set, auto& portSets) {
        for (const MaterialItem& item : material.items) {
            set.push_back(testing::stateOf(*item.node->properties));
            portSets.push_back(testing::stateOf(item.node->inputs));
            portSets.push_back(testing::stateOf(item.node->outputs));
        }
    };
    collect(states, ports);
    std::string error = hostErrorOf(edit);
    auto statesAfter = decltype(states)();
    auto portsAfter = decltype(ports)();
    collect(statesAfter, portsAfter);
    EXPECT_EQ(printMaterial(material.document), before);
    EXPECT_TRUE(states == statesAfter) << error;
    EXPECT_TRUE(ports == portsAfter) << error;
    return error;
}

Property& propertyOf(const Material& material, std::size_t item, const char* name) {
    return *material.items.at(item).node->properties->find(name);
}

using Names = std::vector<std::pair<std::string, std::string>>;

Names namesOf(const std::vector<DocumentConnection>& connections) {
    Names names;
    for (const DocumentConnection& dropped : connections) {
        names.emplace_back(dropped.source + "." + dropped.output, dropped.destination + "." + dropped.input);
    }
    return names;
}

// Nodes

TEST(AddNode, MakesIdsOfTypes) {
    Material material = built(node("maths2", "CoreMaths"));
    EXPECT_EQ(addNode(material, corePlugins(), "CoreMaths"), "maths1");
    EXPECT_EQ(addNode(material, corePlugins(), "CoreMaths"), "maths3");
    EXPECT_EQ(addNode(material, corePlugins(), "CoreVertexColour"), "vertexcolour1");
    EXPECT_EQ(addNode(material, corePlugins(), "CoreUv", "Map \xC3\xA4"), "Map \xC3\xA4");
    PluginSet hostile;
    hostile.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "hostile_nodes.so");
    Material other = built("");
    EXPECT_EQ(addNode(other, hostile, "Loop"), "loop1");
    EXPECT_EQ(addNode(other, hostile, "Plain"), "plain1");
    EXPECT_EQ(material.items.at(4).node->typeName(), "CoreUv");
    EXPECT_EQ(material.downstream.size(), 5U);
    expectConsistent(material);
}

TEST(AddNode, Refuses) {
    Material material = built(node("a", "CoreMaths"));
    const auto errorOf = [&](const std::string& type, const std::string& id) {
        return refusedEdit(material, [&] { addNode(material, corePlugins(), type, id); });
    };
    expectErrorAt(errorOf("CoreUv", "a"), 2, {"\"a\""});
    EXPECT_EQ(errorOf("StudioFur", ""),
              "sample.xml: error: no plug-in offers the type \"StudioFur\"; load the one that does");
    EXPECT_EQ(errorOf("CoreDefault", ""),
              "sample.xml: error: nodes of type \"CoreDefault\" are not for artists to create");
    EXPECT_NE(errorOf("CoreUv", "\xFF"), noError);
    EXPECT_EQ(material.items.size(), 1U);
}

TEST(AddNode, NamesTheNodeThatCannotBeMade) {
    PluginSet hostile;
    hostile.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "hostile_nodes.so");
    Material material = built(node("a", "CoreMaths"));
    EXPECT_EQ(refusedEdit(material, [&] { addNode(material, hostile, "ThrowingConstructor", "b"); }),
              "sample.xml: error: node \"b\": the node is out of order");
    EXPECT_EQ(refusedEdit(material, [&] { addNode(material, hostile, "Nothing", "b"); }),
              "sample.xml: error: node \"b\": cannot create \"Nothing\" node");
    EXPECT_THROW(addNode(material, hostile, "HungryConstructor", "b"), std::bad_alloc);
    EXPECT_EQ(material.items.size(), 1U);
}

TEST(RemoveNode, TakesAlongWhatBelongsToIt) {
    Material material =
        built(node("uv", "CoreUv") + node("t", "CoreTexture", property("Alpha", "bool", "Yes")) +
              node("r", "CoreTexture", property("Reference", "node", "t")) + maths("m", "Invert") +
              connection("uv", "read", "t", "in_uv") + connection("uv", "read", "r", "in_uv") +
              connection("t", "out_colour", "m", "in_value1") + output("colour", "m", "out_value") +
              output("alpha", "t", "out_alpha"));
    const EditResult result = removeNode(material, "t");
    EXPECT_EQ(namesOf(result.connections), (Names{{"uv.read", "t.in_uv"}, {"t.out_colour", "m.in_value1"}}));
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_EQ(result.outputs[0].name, "alpha");
    ASSERT_EQ(result.references.size(), 1U);
    EXPECT_EQ(result.references[0].node, "r");
    EXPECT_EQ(result.references[0].property, "Reference");
    EXPECT_EQ(propertyOf(material, 1, "Reference").getNode(), nullptr);
    EXPECT_TRUE(propertyOf(material, 1, "Alpha").getBool()) << "what the reference gave stays";
    EXPECT_FALSE(material.items.at(2).node->inputPort("in_value1").connected);
    EXPECT_EQ(material.items[0].node->outputLinks.size(), 1U);
    expectConsistent(material);
    EXPECT_NE(refusedEdit(material, [&] { removeNode(material, "t"); }), noError);
}

// Properties

TEST(RemoveNode, EmptiesReferencesThatAreNotSaved) {
    Material material = built(node("a", "CoreTexture") + node("b", "CoreTexture"));
    material.items[1].node->properties->find("Reference")->nodeValue = material.items[0].node;
    removeNode(material, "a");
    ASSERT_EQ(material.items.size(), 1U);
    EXPECT_EQ(material.items[0].node->properties->find("Reference")->nodeValue, nullptr);
}

TEST(SetProperty, TakesValuesInTheFormOfDocuments) {
    Material material =
        built(node("c", "CoreConstant") + node("t", "CoreTexture") + node("r", "CoreTexture"));
    setProperty(material, "c", "Lock", "Yes");
    setProperty(material, "c", "PositionX", "-2.5e1");
    setProperty(material, "c", "BindingIndex", "7");
    setProperty(material, "c", "Default Colour", "1, .5,0");
    setProperty(material, "c", "Name", "Tint <1>");
    setProperty(material, "c", "Constant Type", "Vector");
    setProperty(material, "r", "Reference", "t");
    EXPECT_TRUE(propertyOf(material, 0, "Lock").getBool());
    EXPECT_EQ(propertyOf(material, 0, "PositionX").getFloat(), -25.0F);
    EXPECT_EQ(propertyOf(material, 0, "BindingIndex").getInteger(), 7);
    EXPECT_EQ(propertyOf(material, 0, "Default Colour").floatValues[1], 0.5F);
    EXPECT_EQ(material.items[0].node->name(), "Tint <1>");
    EXPECT_EQ(propertyOf(material, 0, "Constant Type").getEnum(), "Vector");
    EXPECT_EQ(propertyOf(material, 2, "Reference").getNode(), material.items[1].node);
    setProperty(material, "r", "Reference", "");
    EXPECT_EQ(propertyOf(material, 2, "Reference").getNode(), nullptr);
    EXPECT_EQ(material.document.nodes[0].properties.size(), 6U);
    expectConsistent(material);
}

TEST(SetProperty, UpdatesThoseThatReferDirectlyOrNot) {
    Material material =
        built(node("a", "CoreTexture", property("Reference", "node", "b")) +
              node("b", "CoreTexture", property("Reference", "node", "c")) +
              node("c", "CoreTexture", property("Alpha", "bool", "Yes")) + maths("m", "Invert") +
              maths("n", "Addition") + connection("a", "out_alpha", "m", "in_value1") +
              connection("a", "out_colour", "n", "in_value1") + output("alpha", "b", "out_alpha"));
    setProperty(material, "c", "Name", "Shared");
    EXPECT_EQ(material.items[0].node->caption(), "Shared");
    EXPECT_TRUE(material.items[0].node->outputPort("out_alpha").connected)
        << "rebuilt ports are connected again";
    EXPECT_TRUE(material.document.nodes[0] ==
                parsed(node("a", "CoreTexture",
                            property("Reference", "node", "b") + property("Alpha", "bool", "Yes")))
                    .nodes[0])
        << "what it takes over is saved with it";

    const EditResult result = setProperty(material, "c", "Alpha", "No");
    EXPECT_EQ(namesOf(result.connections), (Names{{"a.out_alpha", "m.in_value1"}}));
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_EQ(result.outputs[0].name, "alpha");
    EXPECT_FALSE(material.items[3].node->inputPort("in_value1").connected);
    EXPECT_TRUE(material.items[3].node->inputLinks.empty());
    EXPECT_TRUE(material.items[4].node->inputPort("in_value1").connected);
    EXPECT_EQ(material.document.connections.size(), 1U);
    EXPECT_TRUE(material.document.outputs.empty());
    expectConsistent(material);
}

TEST(SetProperty, SavesWhatAnUpdateDecides) {
    Material material = built(node("v", "CoreVertexColour"));
    setProperty(material, "v", "Colour Type", "Vector");
    EXPECT_TRUE(propertyOf(material, 0, "Alpha").getBool());
    ASSERT_EQ(material.document.nodes[0].properties.size(), 2U);
    expectConsistent(material);
    setProperty(material, "v", "Colour Type", "Colour");
    EXPECT_TRUE(propertyOf(material, 0, "Alpha").getBool()) << "going back leaves alpha on";
    EXPECT_EQ(material.document.nodes[0].properties[1].name, "Alpha");
    EXPECT_EQ(material.document.nodes[0].properties[1].value, "Yes");
    expectConsistent(material);
}

TEST(SetProperty, SavesWhatAReferenceGaveOnceItIsGone) {
    Material material = built(node("t", "CoreTexture", property("Colour Type", "enum", "Component")) +
                              node("r", "CoreTexture", property("Reference", "node", "t")));
    setProperty(material, "r", "Reference", "");
    EXPECT_EQ(propertyOf(material, 1, "Colour Type").getEnum(), "Component");
    expectConsistent(material);
}

TEST(RemoveNode, LeavesThoseThatReferredToItAsTheyAre) {
    Warnings warnings;
    Material material = buildMaterial(readMaterial(PATINA_EXAMPLE), corePlugins(), warnings);
    setProperty(material, "next_rain", "Colour Type", "Vector");
    const auto typeOfNextRain = [&] {
        const auto found = std::find_if(material.items.begin(), material.items.end(),
                                        [](const MaterialItem& item) { return item.id == "next_rain"; });
        return found->node->properties->find("Colour Type")->getEnum();
    };
    EXPECT_EQ(typeOfNextRain(), "Component") << "it goes by the node that it refers to";
    removeNode(material, "rain");
    EXPECT_EQ(typeOfNextRain(), "Component");
    expectConsistent(material);
    setProperty(material, "detail", "sRGB", "No");
    removeNode(material, "paint");
    expectConsistent(material);
}

TEST(SetProperty, RefusesAndChangesNothing) {
    Material material =
        built(node("a", "CoreTexture", property("Reference", "node", "b")) + node("b", "CoreTexture") +
              node("uv", "CoreUv") + node("c", "CoreConstant", property("Constant Type", "enum", "Vector")) +
              connection("uv", "read", "a", "in_uv"));
    const auto errorOf = [&](const char* id, const char* name, const std::string& value) {
        return refusedEdit(material, [&] { setProperty(material, id, name, value); });
    };
    EXPECT_EQ(errorOf("x", "Name", "n"), "sample.xml: error: there is no node with the id \"x\"");
    expectErrorAt(errorOf("uv", "Rows", "1"), 4, {"node \"uv\" (\"Uv\")", "\"Rows\""});
    expectErrorAt(errorOf("uv", "Type", "CoreMaths"), 4, {"node \"uv\"", "type"});
    expectErrorAt(errorOf("uv", "Primary", "yes"), 4, {"node \"uv\"", "\"Primary\"", "\"yes\""});
    expectErrorAt(errorOf("uv", "PositionX", "1,5"), 4, {"\"PositionX\"", "\"1,5\""});
    expectErrorAt(errorOf("uv", "PositionX", "inf"), 4, {"\"PositionX\"", "\"inf\""});
    EXPECT_NE(errorOf("uv", "Name", "a\x01").find("character"), std::string::npos);
    expectErrorAt(errorOf("c", "Constant Type", "Matrix"), 5,
                  {"node \"c\"", "\"Matrix\" is not a known enum value"});
    expectErrorAt(errorOf("c", "Component Count", "5"), 5,
                  {"node \"c\"", "component count must be between 2 and 4"});
    expectErrorAt(errorOf("a", "Reference", "uv"), 2, {"node \"a\"", "\"CoreUv\" is not a valid typename"});
    EXPECT_NE(errorOf("a", "Reference", "x"), noError);
    expectErrorAt(
        errorOf("b", "Reference", "a"), 2,
        {"nodes refer to one another in a cycle: node \"a\" (\"Texture\") -> node \"b\" (\"Texture\") -> "
         "node \"a\" (\"Texture\")"});
    expectErrorAt(errorOf("b", "Reference", "b"), 3, {"cycle"});
    expectConsistent(material);
}

// Connections and outputs

TEST(Connect, JoinsPorts) {
    Material material =
        built(maths("b", "Addition") + maths("a", "Invert") + output("alpha", "a", "out_value"));
    connect(material, "a", "out_value", "b", "in_value2");
    EXPECT_TRUE(material.items[0].node->inputPort("in_value2").connected);
    EXPECT_EQ(material.downstream, (std::vector<std::size_t>{1, 0}));
    setOutput(material, "colour", "b", "out_value");
    setOutput(material, "alpha", "b", "out_value");
    EXPECT_EQ(material.document.outputs[0].source, "b");
    EXPECT_EQ(material.items[1].node->outputLinks.size(), 1U);
    expectConsistent(material);
    disconnect(material, "b", "in_value2");
    EXPECT_FALSE(material.items[0].node->inputPort("in_value2").connected);
    EXPECT_FALSE(material.items[1].node->outputPort("out_value").connected);
    EXPECT_TRUE(material.items[1].node->outputLinks.empty());
    removeOutput(material, "alpha");
    EXPECT_TRUE(material.items[0].node->outputPort("out_value").connected) << "another output is left";
    expectConsistent(material);
}

TEST(SetOutput, LightsAMaterialAndPutsTheLightOut) {
    Material material = built(maths("a", "Invert") + output("colour", "a", "out_value"));
    const std::string unlit = testing::exportedFrom(material).fragmentProgram.content;
    setOutput(material, "gloss", "a", "out_value");
    expectConsistent(material);
    EXPECT_NE(testing::exportedFrom(material).fragmentProgram.content.find("QelShade"), std::string::npos);
    removeOutput(material, "gloss");
    expectConsistent(material);
    EXPECT_EQ(testing::exportedFrom(material).fragmentProgram.content, unlit);
}

TEST(SetOutput, FollowsAnOutputThatNamesNoPort) {
    MaterialDocument document = testing::parsed(node("v", "CoreVertexColour"));
    document.outputs.push_back({"colour", "v", ""});
    Warnings warnings;
    Material material = buildMaterial(document, corePlugins(), warnings);
    EXPECT_EQ(material.document.outputs[0].port, "out_colour");
    expectConsistent(material);
    // the port goes, and with it the output: another that comes first now is not what was meant
    const EditResult result = setProperty(material, "v", "Colour Type", "Component");
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_EQ(result.outputs[0].port, "out_colour");
    expectConsistent(material);
}

TEST(Connect, RefusesAndChangesNothing) {
    Material material =
        built(maths("a", "Addition") + maths("b", "Addition") +
              connection("a", "out_value", "b", "in_value1") + output("colour", "b", "out_value"));
    const auto errorOf = [&](const char* source, const char* port, const char* destination,
                             const char* input) {
        return refusedEdit(material, [&] { connect(material, source, port, destination, input); });
    };
    EXPECT_EQ(errorOf("x", "out_value", "b", "in_value2"),
              "sample.xml: error: there is no node with the id \"x\"");
    EXPECT_EQ(errorOf("a", "out_value", "x", "in_value2"),
              "sample.xml: error: there is no node with the id \"x\"");
    expectErrorAt(errorOf("a", "out", "b", "in_value2"), 2,
                  {"node \"a\"", "output \"out\"", "\"out_value\""});
    expectErrorAt(errorOf("a", "out_value", "b", "in"), 3, {"node \"b\"", "input \"in\"", "\"in_value2\""});
    expectErrorAt(errorOf("a", "out_value", "b", "in_value1"), 4,
                  {"node \"b\"", "\"in_value1\"", "node \"a\""});
    EXPECT_EQ(errorOf("b", "out_value", "a", "in_value1"),
              "sample.xml:3: error: the connections form a cycle: node \"b\" (\"Maths\") -> node \"a\" "
              "(\"Maths\") -> "
              "node \"b\" (\"Maths\")");
    expectErrorAt(errorOf("b", "out_value", "b", "in_value2"), 3, {"cycle"});
    expectErrorAt(refusedEdit(material, [&] { disconnect(material, "b", "in_value2"); }), 3,
                  {"node \"b\"", "\"in_value2\""});
    expectErrorAt(refusedEdit(material, [&] { setOutput(material, "alpha", "a", "read"); }), 2,
                  {"node \"a\"", "\"read\""});
    EXPECT_NE(refusedEdit(material, [&] { setOutput(material, "\x02", "a", "out_value"); }), noError);
    EXPECT_NE(refusedEdit(material, [&] { removeOutput(material, "alpha"); }), noError);
    EXPECT_NE(refusedEdit(material, [&] { setMaterialName(material, "a/b"); }), noError);
    expectConsistent(material);
    setMaterialName(material, "Other");
    EXPECT_EQ(testing::exportedFrom(material).fragmentProgram.name, "Other.frag.cg");
}

// Any edits

/// Edits at random; those that are refused must leave everything as it was, which the comparison shows.
class RandomEditor {
public:
    RandomEditor(Material& material, unsigned seed) : material_(material), random_(seed) {}

    void edit() {
        try {
            switch (below(10)) {
            case 0:
                addNode(material_, corePlugins(),
                        pick<std::string>({"CoreMaths", "CoreTexture", "CoreUv", "CoreConstant",
                                           "CoreVertexColour", "CoreSwizzle", "CoreLayerBlend"}));
                break;
            case 1:
                removeNode(material_, anyItem().id);
                break;
            case 2:
                setOutput(material_, pick<std::string>({"colour", "alpha", "normal", "emissive", "gloss"}),
                          anyItem().id, anyPort());
                break;
            case 3:
                disconnect(material_, anyItem().id, pick<std::string>({"in_value1", "in_uv", "in_vec"}));
                break;
            case 4:
            case 5:
            case 6:
                connect(material_, anyItem().id, anyPort(), anyItem().id,
                        pick<std::string>({"in_value1", "in_value2", "in_uv", "in_vec", "in_blend"}));
                break;
            default:
                setAnyProperty();
            }
        } catch (const HostError&) {
            ++refused;
        }
    }

    int refused = 0;

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    template <typename Value>
    Value pick(const std::vector<Value>& values) {
        return values[below(values.size())];
    }
    const MaterialItem& anyItem() { return material_.items[below(material_.items.size())]; }
    std::string anyPort() {
        return pick<std::string>({"out_value", "read", "out_colour", "out_alpha", "out_x", "out_red"});
    }
    void setAnyProperty() {
        const MaterialItem& item = anyItem();
        const std::shared_ptr<Property> chosen =
            item.node->properties->items[below(item.node->properties->items.size())];
        const bool choice = chosen->kind == PropertyType::Enum;
        setProperty(material_, item.id, chosen->name,
                    choice ? pick(chosen->allowedValues)
                           : pick<std::string>({"Yes", "No", "3", "0.25, 1, 2", anyItem().id, ""}));
    }

    Material& material_;
    std::mt19937 random_;
};

TEST(Edit, LeavesWhatItsDocumentGives) {
    int exportCount = 0;
    for (unsigned seed = 0; seed < 12; ++seed) {
        Warnings warnings;
        Material material = buildMaterial(readMaterial(PATINA_EXAMPLE), corePlugins(), warnings);
        RandomEditor editor(material, seed);
        for (int step = 0; step < 120; ++step) {
            editor.edit();
            if (material.items.empty()) {
                break;
            }
            if (step % 4 == 0) {
                exportCount += expectConsistent(material) ? 1 : 0;
            }
            ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << step;
        }
        EXPECT_GT(editor.refused, 0);
    }
    EXPECT_GT(exportCount, 20) << "programs are compared too";
}

// Missing node types

TEST(MissingTypes, LoseNothing) {
    const std::string text = testing::documentText(
        "<node id=\"f\" type=\"StudioFur\" version=\"7\" by=\"me\">\n" + property("Name", "string", "Rim") +
        property("Strands", "integer", "3") + "<x/>" + property("Root", "node", "m") +
        property("Description", "string", "mine") + "</node>\n" + maths("m", "Invert") +
        maths("n", "Invert") + connection("f", "hair", "n", "in_value1") +
        connection("m", "out_value", "f", "some") + output("colour", "f", "hair") +
        "<binding tag=\"Rim\" kind=\"float\" max=\"3\"/>\n" + "<binding tag=\"Old\" kind=\"float\"/>\n");
    const auto rebuild = [](const std::string& document) {
        Warnings warnings;
        return buildMaterial(parseMaterial(document, sampleFile), corePlugins(), warnings);
    };
    Material material = rebuild(text);
    EXPECT_EQ(printMaterial(material.document), text);
    setProperty(material, "m", "Name", "Edited");
    saveBindings(material, collectBindings(material));
    MaterialDocument wanted = parseMaterial(text, sampleFile);
    wanted.nodes[1].properties.push_back({"Name", PropertyType::String, "Edited"});
    EXPECT_EQ(printMaterial(material.document), printMaterial(wanted));
    expectConsistent(material);

    setProperty(material, "f", "Name", "Fringe");
    setProperty(material, "f", "PositionX", "4.5");
    setProperty(material, "f", "Description", "theirs");
    EXPECT_EQ(material.items[0].node->caption(), "Fringe?");
    EXPECT_NE(material.items[0].node->descriptionProperty->getString().find("placeholder"),
              std::string::npos);
    wanted.nodes[0].properties[0].value = "Fringe";
    wanted.nodes[0].properties[3].value = "theirs";
    wanted.nodes[0].properties.push_back({"PositionX", PropertyType::Float, "4.5"});
    EXPECT_EQ(printMaterial(material.document), printMaterial(wanted));
    EXPECT_NE(refusedEdit(material, [&] { setProperty(material, "f", "Strands", "4"); }).find("placeholder"),
              std::string::npos);
    EXPECT_NE(refusedEdit(material, [&] { setProperty(material, "f", "Type", "CoreUv"); }), noError);

    // connections of a placeholder come and go like others
    disconnect(material, "n", "in_value1");
    EXPECT_FALSE(material.items[2].node->inputPort("in_value1").connected);
    connect(material, "f", "other", "n", "in_value1");
    const EditResult result = removeNode(material, "m");
    EXPECT_EQ(namesOf(result.connections), (Names{{"m.out_value", "f.some"}}));
    ASSERT_EQ(result.references.size(), 1U);
    EXPECT_EQ(result.references[0].property, "Root");
    expectConsistent(material);
}

TEST(MissingTypes, ComeBackWithTheirPlugin) {
    PluginSet both;
    both.add(PATINA_CORENODES);
    both.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "shifty_nodes.so");
    const std::string text = testing::documentText(
        node("s", "ShiftyNode", property("Ports", "integer", "3")) + maths("m", "Addition") +
        connection("s", "out2", "m", "in_value1") + output("colour", "m", "out_value"));
    Warnings warnings;
    Material without = buildMaterial(parseMaterial(text, sampleFile), corePlugins(), warnings);
    setProperty(without, "m", "Name", "Sum");
    EXPECT_EQ(warnings.size(), 1U);
    warnings.clear();
    const Material with =
        buildMaterial(parseMaterial(printMaterial(without.document), sampleFile), both, warnings);
    EXPECT_TRUE(warnings.empty());
    EXPECT_FALSE(with.items[0].placeholder);
    EXPECT_EQ(propertyOf(with, 0, "Ports").getInteger(), 3);
    EXPECT_TRUE(with.items[0].node->outputPort("out2").connected);
    EXPECT_EQ(with.items[1].node->name(), "Sum");
}

// Nodes of a plug-in that fail while they are updated

TEST(SetProperty, PutsBackNodesWhoseUpdateFails) {
    PluginSet plugins;
    plugins.add(PATINA_CORENODES);
    plugins.add(std::filesystem::path(PATINA_TEST_PLUGINS) / "shifty_nodes.so");
    Warnings warnings;
    Material material = buildMaterial(
        parsed(node("s", "ShiftyNode", property("Ports", "integer", "3")) +
               node("r", "ShiftyNode", property("Other", "node", "s") + property("Most", "integer", "4")) +
               node("q", "ShiftyNode", property("Other", "node", "r")) + maths("m", "Addition") +
               connection("r", "out2", "m", "in_value1")),
        plugins, warnings);
    EXPECT_EQ(material.items[2].node->outputs.size(), 3U) << "ports follow the reference";
    expectErrorAt(refusedEdit(material, [&] { setProperty(material, "s", "Ports", "5"); }), 3,
                  {"node \"r\" (\"ShiftyNode\")", "too many ports"});
    EXPECT_EQ(material.items[0].node->outputs.size(), 3U);
    EXPECT_EQ(material.items[1].node->outputs.size(), 3U);
    const EditResult result = setProperty(material, "s", "Ports", "2");
    EXPECT_EQ(namesOf(result.connections), (Names{{"r.out2", "m.in_value1"}}));
    // without its reference, r would go back to ports that it refuses
    setProperty(material, "s", "Ports", "4");
    EXPECT_EQ(material.items[2].node->outputs.size(), 4U);
}

// Bindings

TEST(SaveBindings, KeepsAnnotations) {
    Warnings warnings;
    Material material =
        buildMaterial(parseMaterial("<material version=\"1\" name=\"A\">\n"
                                    "  <node id=\"c\" type=\"CoreConstant\">\n"
                                    "    <property name=\"Name\" kind=\"string\" value=\"Tint\"/>\n"
                                    "    <property name=\"Constant Type\" kind=\"enum\" value=\"Scalar\"/>\n"
                                    "    <property name=\"BindingGroup\" kind=\"string\" value=\"Paint\"/>\n"
                                    "  </node>\n"
                                    "  <node id=\"uv\" type=\"CoreUv\"/>\n"
                                    "  <binding studio=\"x\" tag=\"Tint\" kind=\"float\" desc=\"old\"/>\n"
                                    "  <binding tag=\"Gone\" kind=\"uv\"/>\n"
                                    "</material>\n",
                                    sampleFile),
                      corePlugins(), warnings);
    saveBindings(material, collectBindings(material));
    const std::string printed = printMaterial(material.document);
    EXPECT_NE(
        printed.find("  <node id=\"uv\" type=\"CoreUv\"/>\n"
                     "  <binding studio=\"x\" tag=\"Tint\" kind=\"float\" components=\"1\" group=\"Paint\" "),
        std::string::npos)
        << printed;
    EXPECT_NE(printed.find("  <binding kind=\"uv\" tag=\"Uv\" components=\"1\"/>\n</material>\n"),
              std::string::npos)
        << printed;
    EXPECT_EQ(printed.find("desc="), std::string::npos) << printed;
    EXPECT_EQ(printed.find("Gone"), std::string::npos) << printed;
    saveBindings(material, collectBindings(material));
    EXPECT_EQ(printMaterial(material.document), printed);
}

TEST(SaveBindings, RefusesTwoOfOneName) {
    Material material = built(node("uv", "CoreUv"));
    BindingCollection collection;
    addToBindingCollection(collection, createBinding(BindingKind::Uv, "a", 1));
    addToBindingCollection(collection, createBinding(BindingKind::Float, "a", 1));
    EXPECT_NE(refusedEdit(material, [&] { saveBindings(material, collection); }).find("\"a\""),
              std::string::npos);
    collection.bindings.pop_back();
    collection.bindings[0]->description = "\x02";
    EXPECT_NE(refusedEdit(material, [&] { saveBindings(material, collection); }).find("\"desc\""),
              std::string::npos);
}

/// A binding whose code throws that.
template <typename Exception>
class BrokenBinding : public Binding {
public:
    BrokenBinding(std::string bindingName, Exception exception)
        : Binding(BindingKind::Normal, std::move(bindingName), 3U), exception_(std::move(exception)) {}
    void writeAnnotations(xmlNode* /*element*/) const override { throw exception_; }

private:
    Exception exception_;
};

TEST(SaveBindings, NamesABindingThatRefuses) {
    Material material = built(node("uv", "CoreUv"));
    const auto save = [&](const auto& exception) {
        BindingCollection collection;
        using Broken = BrokenBinding<std::decay_t<decltype(exception)>>;
        collection.bindings.push_back(std::make_shared<Broken>("N", exception));
        saveBindings(material, collection);
    };
    const std::string expected = "sample.xml: error: binding \"N\": out of order";
    EXPECT_EQ(refusedEdit(material, [&] { save(ShaderError("out of order")); }), expected);
    EXPECT_EQ(refusedEdit(material, [&] { save(std::runtime_error("out of order")); }), expected);
    EXPECT_THROW(save(std::bad_alloc()), std::bad_alloc);
}

TEST(SaveBindings, LeavesAttributesOfOthersAlone) {
    Material material =
        built(node("uv", "CoreUv") + "<binding tag=\"Uv\" kind=\"uv\" exported_default=\"old\" "
                                     "exported_look=\"x\" uilabel=\"L\" desc=\"d\" export=\"y\"/>\n");
    // one of another kind than the graph's, of whose values it has none
    BindingCollection collection;
    addToBindingCollection(collection, createBinding(BindingKind::Float, "Uv", 1));
    addToBindingCollection(collection, createBinding(BindingKind::Uv, "Other", 1));
    saveBindings(material, collection);
    const std::string printed = printMaterial(material.document);
    EXPECT_EQ(printed.find("\"old\""), std::string::npos) << printed;
    saveBindings(material, collectBindings(material));
}

// Values as text

TEST(PropertyText, IsReadBackAsTheSameValue) {
    const testing::CommaLocale comma;
    const auto textOf = [](const auto& set) {
        const auto value = makeProperty("P");
        set(*value);
        return detail::propertyText(*value, [](const MaterialNode& /*node*/) { return std::string("id"); });
    };
    EXPECT_EQ(textOf([](Property& value) { value.setBool(true); }), "Yes");
    EXPECT_EQ(textOf([](Property& value) { value.setBool(false); }), "No");
    EXPECT_EQ(textOf([](Property& value) { value.setInteger(-1234567); }), "-1234567");
    EXPECT_EQ(textOf([](Property& value) { value.setString(" a\n"); }), " a\n");
    EXPECT_EQ(textOf([](Property& value) { value.addEnumValue("Lerp"); }), "Lerp");
    EXPECT_EQ(textOf([](Property& value) { value.setColour(0.1F, 1.0F, -0.25F); }), "0.1, 1, -0.25");
    EXPECT_EQ(textOf([](Property& value) { value.addNodeTypename("T"); }), "");
    EXPECT_EQ(textOf([](Property& value) {
                  value.addNodeTypename("T");
                  value.nodeValue = corePlugins().createNode("CoreUv");
              }),
              "id");
    for (const float number :
         {0.0F, -0.0F, 0.1F, 1.0F / 3.0F, 16777216.0F, 123456.789F, 1e20F, std::numeric_limits<float>::max(),
          std::numeric_limits<float>::min(), std::numeric_limits<float>::denorm_min()}) {
        const std::string text = textOf([&](Property& value) { value.setFloat(number); });
        const auto read = detail::savedProperty("a.xml", "n", {"P", PropertyType::Float, text}, {});
        EXPECT_EQ(read->getFloat(), number) << text;
    }
    EXPECT_EQ(textOf([](Property& value) { value.setFloat(0.1F); }), "0.1");
    constexpr auto noKind = static_cast<PropertyType>(99);
    EXPECT_EQ(textOf([](Property& value) { value.kind = noKind; }), "");
    EXPECT_FALSE(detail::savedProperty("a.xml", "n", {"P", noKind, "text"}, {})->getBool())
        << "as it is made";
    for (const float number :
         {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(testing::shaderErrorOf([&] { textOf([&](Property& value) { value.setFloat(number); }); }),
                  "property \"P\" is not finite, and cannot be saved");
    }
}

} // namespace
} // namespace patina
