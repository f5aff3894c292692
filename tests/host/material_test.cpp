#include "host/material_steps.h"

#include "tests/host/host_checks.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::buildError;
using testing::built;
using testing::connection;
using testing::expectErrorAt;
using testing::hostErrorOf;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

Property& propertyOf(const Material& material, std::size_t item, const char* name) {
    return *material.items.at(item).node->properties->find(name);
}

// Every kind, and what its values look like.

TEST(BuildMaterial, RestoresValuesOfEveryKind) {
    const Material material = built(
        node("a", "CoreConstant",
             property("Name", "string", " Tint ") + property("Lock", "bool", "Yes") +
                 property("Component Count", "integer", "3") + property("Max Scalar", "float", "-2.5e1") +
                 property("Default Colour", "colour", "0.5, .25,1") +
                 property("Constant Type", "enum", "Vector")) +
        node("t", "CoreTexture") + node("r", "CoreTexture", property("Reference", "node", "t")) +
        node("n", "CoreTexture", property("Reference", "node", "")));
    EXPECT_EQ(material.file, testing::sampleFile);
    EXPECT_EQ(material.name, "Sample");
    ASSERT_EQ(material.items.size(), 4U);
    EXPECT_EQ(material.items[0].id, "a");
    EXPECT_EQ(material.items[0].line, 2);
    EXPECT_EQ(material.items[0].node->name(), " Tint ");
    EXPECT_TRUE(propertyOf(material, 0, "Lock").getBool());
    EXPECT_EQ(propertyOf(material, 0, "Component Count").getInteger(), 3);
    EXPECT_EQ(propertyOf(material, 0, "Max Scalar").getFloat(), -25.0F);
    EXPECT_EQ(propertyOf(material, 0, "Constant Type").getEnum(), "Vector");
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    propertyOf(material, 0, "Default Colour").getColour(red, green, blue);
    EXPECT_EQ(red, 0.5F);
    EXPECT_EQ(green, 0.25F);
    EXPECT_EQ(blue, 1.0F);
    // updated: a vector of three
    EXPECT_EQ(material.items[0].node->outputPort("read").componentCount, 3U);
    EXPECT_EQ(propertyOf(material, 2, "Reference").getNode(), material.items[1].node);
    EXPECT_EQ(propertyOf(material, 3, "Reference").getNode(), nullptr);
    // what is not there keeps its default
    EXPECT_EQ(propertyOf(material, 0, "Min Scalar").getFloat(), 0.0F);
}

struct BadValue {
    const char* type;
    const char* name;
    const char* kind;
    std::vector<std::string> values;
};

const BadValue badValues[] = {
    {"CoreUv", "Primary", "bool", {"", "yes", "YES", "no", "true", "1", "Yes ", " No"}},
    {"CoreConstant",
     "Component Count",
     "integer",
     {"", " ", "x", "1.5", "1e2", "0x10", "2147483648", "-2147483649", "1 ", " 1", "1,0", "1.000", "--1",
      "99999999999999999999", "1x", "NaN", "inf"}},
    {"CoreConstant", "Max Scalar", "float", {"",    " ",    "x",    "inf",   "-inf",         "infinity",
                                             "nan", "NAN",  "1e99", "-1e99", "0x10",         "0x1p3",
                                             "1,5", "1.5f", "1.5 ", " 1.5",  "1.5.5",        "1e",
                                             "e5",  "--1",  ".",    "1 2",   "1\xE2\x82\xAC"}},
    {"CoreConstant",
     "Default Colour",
     "colour",
     {"", "1", "1, 2", "1, 2, 3, 4", "1, 2, 3,", ", 1, 2", "1, , 3", "1; 2; 3", "1 2 3", "1, 2, x",
      "inf, 0, 0", "0, nan, 0", "0, 0, 1e99", "0x1, 0, 0", "1.0f, 0, 0", "red"}},
    {"CoreTexture", "Reference", "node", {"nobody", " other", "Other"}},
    {"CoreMaths", "Function", "enum", {"", "multiply", "Multiply ", "Nope"}},
};

TEST(BuildMaterial, RefusesValuesThatDoNotParseAtTheirLine) {
    for (const auto& [type, name, kind, values] : badValues) {
        for (const std::string& value : values) {
            const std::string error = buildError(node("other", "CoreTexture") + "<node id=\"a\" type=\"" +
                                                 type + "\">\n" + property("PositionX", "float", "1") + "\n" +
                                                 property(name, kind, value) + "\n</node>\n");
            EXPECT_EQ(error.rfind("sample.xml:5: error: ", 0), 0U)
                << name << " \"" << value << "\": " << error;
            EXPECT_NE(error.find(value), std::string::npos) << error;
        }
    }
}

TEST(BuildMaterial, TakesNumbersOfManyForms) {
    const struct {
        const char* text;
        float value;
    } rows[] = {
        {"0", 0.0F},         {"-0.5", -0.5F},           {".5", 0.5F},
        {"5.", 5.0F},        {"1e3", 1000.0F},          {"1E-2", 0.01F},
        {"1e+2", 100.0F},    {"000012", 12.0F},         {"0.1", 0.1F},
        {"3.4e38", 3.4e38F}, {"16777217", 16777216.0F}, {"0.333333343", 1.0F / 3.0F},
    };
    for (const auto& [text, value] : rows) {
        const Material material = built(node("a", "CoreConstant", property("Max Scalar", "float", text)));
        EXPECT_EQ(propertyOf(material, 0, "Max Scalar").getFloat(), value) << text;
    }
    for (const auto& [text, value] : {std::pair{"-2147483648", std::int32_t{-2147483647} - 1},
                                      {"2147483647", 2147483647},
                                      {"-0", 0},
                                      {"007", 7}}) {
        const Material material = built(node("a", "CoreUv", property("BindingIndex", "integer", text)));
        EXPECT_EQ(propertyOf(material, 0, "BindingIndex").getInteger(), value) << text;
    }
}

TEST(BuildMaterial, ReadsNumbersAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    const Material material = built(
        node("a", "CoreConstant",
             property("Max Scalar", "float", "1.5") + property("Default Colour", "colour", "0.5, 0.25, 1")));
    EXPECT_EQ(propertyOf(material, 0, "Max Scalar").getFloat(), 1.5F);
    EXPECT_EQ(propertyOf(material, 0, "Default Colour").floatValues[1], 0.25F);
    EXPECT_NE(buildError(node("a", "CoreConstant", property("Max Scalar", "float", "1,5"))),
              testing::noError);
}

TEST(BuildMaterial, PointsAtThePropertyThatTheNodeRefuses) {
    const auto inLineThree = [](const char* type, const std::string& refused) {
        return buildError(std::string("<node id=\"a\" type=\"") + type + "\">" +
                          property("Name", "string", "My Node") + "\n" + refused + "\n" +
                          property("PositionX", "float", "1") + "\n</node>\n");
    };
    expectErrorAt(inLineThree("CoreMaths", property("Function", "string", "Lerp")), 3,
                  {"node \"a\" (\"My Node\")",
                   "cannot copy property \"Function\" from property with non-matching type"});
    expectErrorAt(inLineThree("CoreMaths", property("Function", "enum", "Cross")), 3,
                  {"node \"a\" (\"My Node\")",
                   "cannot copy property \"Function\" as enum \"Cross\" is not a known enum value"});
    expectErrorAt(inLineThree("CoreTexture", property("Reference", "node", "a")), 2, {"cycle"});
    expectErrorAt(buildError(node("uv", "CoreUv") + "<node id=\"t\" type=\"CoreTexture\">\n" +
                             property("Reference", "node", "uv") + "\n</node>\n"),
                  4,
                  {"node \"t\" (\"Texture\")",
                   "cannot copy property \"Reference\" as node typename \"CoreUv\" is not a valid typename"});
}

TEST(BuildMaterial, RefusesNewerPropertySets) {
    expectErrorAt(buildError("\n<node id=\"a\" type=\"CoreUv\" version=\"1\">\n" +
                             property("Name", "string", "map1") + "</node>\n"),
                  3,
                  {"node \"a\"",
                   "Cannot convert \"CoreUv\" version 1 properties into version 0 properties. Are "
                   "you running with an old DLL?"});
    built("<node id=\"a\" type=\"CoreUv\" version=\"-5\"/>\n");
}

TEST(BuildMaterial, ReportsWhatAnUpdateRefuses) {
    const std::string vector =
        property("Constant Type", "enum", "Vector") + property("Component Count", "integer", "5");
    expectErrorAt(buildError("\n" + node("a", "CoreConstant", vector)), 3,
                  {"node \"a\" (\"Constant\")", "component count must be between 2 and 4"});
}

TEST(BuildMaterial, WarnsOfPropertiesThatTheTypeLacks) {
    Warnings warnings;
    buildMaterial(testing::parsed("<node id=\"a\" type=\"CoreUv\">\n" + property("Rows", "integer", "1") +
                                  "\n</node>\n"),
                  testing::corePlugins(), warnings);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].position.file, testing::sampleFile);
    EXPECT_EQ(warnings[0].position.line, 3);
    EXPECT_NE(warnings[0].text.find("\"a\""), std::string::npos) << warnings[0].text;
    EXPECT_NE(warnings[0].text.find("\"Rows\""), std::string::npos) << warnings[0].text;
    EXPECT_NE(warnings[0].text.find("\"CoreUv\""), std::string::npos) << warnings[0].text;
}

TEST(BuildMaterial, ChecksASavedType) {
    built(node("a", "CoreUv", property("Type", "string", "CoreUv")));
    expectErrorAt(buildError("\n" + node("a", "CoreUv", property("Type", "string", "CoreMaths"))), 3,
                  {"Type"});
    expectErrorAt(buildError("\n" + node("a", "CoreUv", property("Type", "enum", "CoreUv"))), 3, {"Type"});
}

/// What a building that goes on after errors finds, as lines.
std::vector<std::string> buildErrors(const MaterialDocument& document, Material& material) {
    Warnings warnings;
    Errors errors;
    material = buildMaterial(document, testing::corePlugins(), warnings, &errors);
    std::vector<std::string> lines;
    for (const HostError& error : errors) {
        lines.emplace_back(error.what());
    }
    return lines;
}

std::vector<std::string> buildErrors(const std::string& body, Material& material) {
    return buildErrors(testing::parsed(body), material);
}

TEST(BuildMaterial, ReportsEveryRefusedPropertyAndLoadsTheRest) {
    Material material;
    EXPECT_EQ(
        buildErrors("<node id=\"m\" type=\"CoreMaths\">\n" + property("Function", "enum", "Cross") + "\n" +
                        property("PositionX", "float", "7") + "\n" +
                        property("Execution Level", "enum", "Pixel") + "\n" +
                        property("PositionY", "integer", "8") + "\n" + property("Name", "string", "Mix") +
                        "\n" + property("BindingIndex", "integer", "9") + "\n</node>\n",
                    material),
        (std::vector<std::string>{
            "sample.xml:3: error: node \"m\" (\"Mix\"): cannot copy property \"Function\" as enum \"Cross\" "
            "is not a known enum value",
            "sample.xml:5: error: node \"m\" (\"Mix\"): cannot copy property \"Execution Level\" as enum "
            "\"Pixel\" is not a known enum value",
            "sample.xml:6: error: node \"m\" (\"Mix\"): cannot copy property \"PositionY\" from property "
            "with non-matching type"}));
    EXPECT_EQ(propertyOf(material, 0, "PositionX").getFloat(), 7.0F);
    EXPECT_EQ(propertyOf(material, 0, "BindingIndex").getInteger(), 9);
    EXPECT_EQ(material.items[0].node->name(), "Mix");
    EXPECT_TRUE(material.items[0].faulty);
}

TEST(BuildMaterial, PointsAtTheRefusedPropertyBehindOneThatDoesNotParse) {
    Material material;
    EXPECT_EQ(
        buildErrors("<node id=\"m\" type=\"CoreMaths\">\n" + property("PositionX", "float", "far") + "\n" +
                        property("Function", "enum", "Cross") + "\n</node>\n",
                    material),
        (std::vector<std::string>{
            "sample.xml:3: error: node \"m\": property \"PositionX\": \"far\" is not a decimal number that "
            "a float can hold",
            "sample.xml:4: error: node \"m\" (\"Maths\"): cannot copy property \"Function\" as enum "
            "\"Cross\" is not a known enum value"}));
}

// Files are refused when they are read; these are of documents that programs make.

MaterialDocument documentOf(const DocumentNode& node, const DocumentNode& other) {
    MaterialDocument document;
    document.file = testing::sampleFile;
    document.name = "Sample";
    document.nodes = {node, other};
    return document;
}

DocumentNode nodeAt(int line, const char* id, const char* type) {
    DocumentNode made;
    made.line = line;
    made.id = id;
    made.type = type;
    return made;
}

TEST(BuildMaterial, RefusesAPropertyThatIsSetTwice) {
    for (const char* type : {"CoreMaths", "CoreDefault", "Unknown"}) {
        SCOPED_TRACE(type);
        DocumentNode node = nodeAt(2, "a", type);
        node.properties = {{"Name", PropertyType::String, "Rim", 3},
                           {"Name", PropertyType::String, "Edge", 4}};
        const MaterialDocument document = documentOf(node, nodeAt(5, "b", "CoreUv"));
        Warnings warnings;
        const char* expected = "sample.xml:4: error: node \"a\": property \"Name\" is set twice";
        EXPECT_EQ(hostErrorOf([&] { buildMaterial(document, testing::corePlugins(), warnings); }), expected);
        Material material;
        EXPECT_EQ(buildErrors(document, material), std::vector<std::string>{expected});
    }
}

TEST(BuildMaterial, ReportsAPropertyThatIsSetTwiceOnceBesideARefusedOne) {
    DocumentNode node = nodeAt(2, "a", "CoreMaths");
    node.properties = {{"Name", PropertyType::String, "Rim", 3},
                       {"Name", PropertyType::String, "Edge", 4},
                       {"PositionX", PropertyType::Integer, "7", 5}};
    Material material;
    EXPECT_EQ(buildErrors(documentOf(node, nodeAt(6, "b", "CoreUv")), material),
              (std::vector<std::string>{
                  "sample.xml:4: error: node \"a\": property \"Name\" is set twice",
                  "sample.xml:5: error: node \"a\" (\"Rim\"): cannot copy property \"PositionX\" from "
                  "property with non-matching type"}));
}

TEST(BuildMaterial, RefusesNodesOfOneId) {
    const MaterialDocument document = documentOf(nodeAt(2, "a", "CoreMaths"), nodeAt(3, "a", "CoreUv"));
    Warnings warnings;
    const char* expected = "sample.xml:3: error: there is another node with the id \"a\"";
    EXPECT_EQ(hostErrorOf([&] { buildMaterial(document, testing::corePlugins(), warnings); }), expected);
    Material material;
    EXPECT_EQ(buildErrors(document, material), std::vector<std::string>{expected});
}

TEST(BuildMaterial, ReportsANewerPropertySetOnce) {
    Material material;
    EXPECT_EQ(buildErrors("<node id=\"a\" type=\"CoreMaths\" version=\"1\">\n" +
                              property("Function", "enum", "Cross") + "</node>\n",
                          material),
              std::vector<std::string>{"sample.xml:2: error: node \"a\" (\"Maths\"): Cannot convert "
                                       "\"CoreMaths\" version 1 properties into version 0 properties. Are "
                                       "you running with an old DLL?"});
}

// References

TEST(BuildMaterial, UpdatesANodeAfterThoseItRefersTo) {
    const std::string last =
        node("c", "CoreTexture",
             property("Name", "string", "Shared") + property("Colour Type", "enum", "Component") +
                 property("Alpha", "bool", "Yes"));
    const std::string bodies[] = {
        node("a", "CoreTexture", property("Reference", "node", "b")) +
            node("b", "CoreTexture", property("Reference", "node", "c")) + last,
        last + node("b", "CoreTexture", property("Reference", "node", "c")) +
            node("a", "CoreTexture", property("Reference", "node", "b")),
    };
    for (const std::string& body : bodies) {
        const Material material = built(body);
        for (const MaterialItem& item : material.items) {
            EXPECT_EQ(item.node->caption(), "Shared");
            EXPECT_EQ(item.node->findOutputPortIndex("out_alpha"), 3) << item.id;
        }
    }
}

TEST(BuildMaterial, NamesTheNodesOfACycleOfReferences) {
    const auto reference = [](const std::string& id, const std::string& to) {
        return node(id, "CoreTexture",
                    property("Reference", "node", to) + property("Name", "string", "N" + id));
    };
    expectErrorAt(buildError(reference("a", "a")), 2,
                  {"cycle", "node \"a\" (\"Na\")", "node \"a\" (\"Na\")"});
    const std::string error = buildError(node("x", "CoreTexture", property("Reference", "node", "a")) +
                                         reference("a", "b") + reference("b", "c") + reference("c", "a"));
    expectErrorAt(
        error, 3,
        {"cycle",
         "node \"a\" (\"Na\") -> node \"b\" (\"Nb\") -> node \"c\" (\"Nc\") -> node \"a\" (\"Na\")"});
    EXPECT_EQ(error.find("\"x\""), std::string::npos) << error;
}

TEST(BuildMaterial, ShortensLongCycles) {
    std::string body;
    for (int i = 0; i < 100; ++i) {
        body += node("t" + std::to_string(i), "CoreTexture",
                     property("Reference", "node", "t" + std::to_string((i + 1) % 100)));
    }
    const std::string error = buildError(body);
    expectErrorAt(error, 2, {"\"t0\"", "\"t1\"", "...", "\"t0\""});
    EXPECT_LT(error.size(), 1000U);
}

TEST(BuildMaterial, HoldsLongChainsOfReferences) {
    constexpr int length = 20000;
    for (const int step : {1, -1}) {
        std::string body;
        for (int i = 0; i < length; ++i) {
            const int to = i + step;
            body +=
                node("t" + std::to_string(i), "CoreTexture",
                     to >= 0 && to < length ? property("Reference", "node", "t" + std::to_string(to)) : "");
        }
        EXPECT_EQ(built(body).items.size(), static_cast<std::size_t>(length));
    }
}

// Placeholders

TEST(BuildMaterial, LetsAPlaceholderStandInForUnknownTypes) {
    Warnings warnings;
    const Material material = buildMaterial(
        testing::parsed("<node id=\"f\" type=\"StudioFur\" version=\"7\">" +
                        property("Name", "string", "Rim") + property("Strands", "integer", "3") +
                        "</node>\n" + maths("m", "Invert") + connection("m", "out_value", "f", "some") +
                        output("colour", "f", "hair")),
        testing::corePlugins(), warnings);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].position.line, 2);
    EXPECT_NE(warnings[0].text.find("\"StudioFur\""), std::string::npos) << warnings[0].text;
    EXPECT_NE(warnings[0].text.find("\"f\""), std::string::npos) << warnings[0].text;
    EXPECT_TRUE(material.items.at(0).placeholder);
    EXPECT_FALSE(material.items.at(1).placeholder);
    EXPECT_EQ(material.items[0].node->typeName(), "StudioFur");
    EXPECT_EQ(material.items[0].node->caption(), "Rim?");
    EXPECT_EQ(
        material.items[0].node->descriptionProperty->getString(),
        "This node has been created as a placeholder because a node of type \"StudioFur\" could not be "
        "created. You need to either reload this material using the correct plug-in DLLs or replace this "
        "node with alternatives.");
}

TEST(BuildMaterial, OpensANodeOfAnUnknownTypeWhateverIsSaved) {
    const std::string text = testing::documentText(
        node("f", "StudioFur",
             property("Length", "float", "1e99") + property("Name", "enum", "Rim") +
                 property("PositionX", "integer", "3") + property("PositionY", "float", "2.5") +
                 property("BindingIndex", "integer", "many") + property("Skin", "node", "ghost") +
                 property("Type", "enum", "Other") + property("BindingGroup", "string", "Hair")));
    Warnings warnings;
    const Material material =
        buildMaterial(parseMaterial(text, testing::sampleFile), testing::corePlugins(), warnings);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(diagnosticText(warnings[0].position, "warning", warnings[0].text),
              "sample.xml:2: warning: no plug-in offers the type \"StudioFur\" of node \"f\"; a placeholder "
              "stands in for it");
    EXPECT_EQ(material.items.at(0).node->typeName(), "StudioFur");
    EXPECT_EQ(material.items[0].node->name(), "Default");
    EXPECT_EQ(propertyOf(material, 0, "PositionX").getFloat(), 0.0F);
    EXPECT_EQ(propertyOf(material, 0, "PositionY").getFloat(), 2.5F);
    EXPECT_EQ(propertyOf(material, 0, "BindingIndex").getInteger(), 0);
    EXPECT_EQ(propertyOf(material, 0, "BindingGroup").getString(), "Hair");
    EXPECT_FALSE(material.items[0].faulty);
    EXPECT_EQ(printMaterial(material.document), text);
}

TEST(BuildMaterial, FailsAnExportWithThePlaceholdersMessage) {
    Warnings warnings;
    Material material = buildMaterial(
        testing::parsed(node("t", "CoreTexture") + node("f", "StudioFur", property("Name", "string", "Rim")) +
                        connection("f", "x", "t", "in_uv") + output("colour", "f", "hair")),
        testing::corePlugins(), warnings);
    expectErrorAt(
        testing::hostErrorOf([&] { testing::exportedFrom(material); }), 3,
        {"node \"f\" (\"Rim\")",
         "cannot export as the node \"Rim\" cannot be properly created. Please either get the DLL that "
         "can load this node or replace with alternatives."});
}

TEST(BuildMaterial, TakesASavedPlaceholderWithoutAWarning) {
    EXPECT_TRUE(built(node("d", "CoreDefault")).items.at(0).placeholder);
}

TEST(BuildMaterial, NeedsThePlaceholdersPlugin) {
    Warnings warnings;
    const PluginSet none;
    expectErrorAt(
        testing::hostErrorOf([&] { buildMaterial(testing::parsed(node("m", "CoreMaths")), none, warnings); }),
        2, {"\"m\""});
}

// Connections

TEST(BuildMaterial, ConnectsPorts) {
    const Material material =
        built(maths("a", "Invert") + maths("b", "Multiply") + connection("a", "out_value", "b", "in_value2") +
              output("colour", "b", "out_value") + output("alpha", "a", "out_value"));
    ASSERT_EQ(material.connections.size(), 1U);
    const MaterialConnection& joined = material.connections[0];
    EXPECT_EQ(joined.source, 0U);
    EXPECT_EQ(joined.destination, 1U);
    EXPECT_EQ(joined.line, 4);
    EXPECT_EQ(joined.record->sourceNode.lock(), material.items[0].node);
    EXPECT_EQ(joined.record->destinationNode.lock(), material.items[1].node);
    EXPECT_EQ(joined.record->sourcePort, "out_value");
    EXPECT_EQ(joined.record->destinationPort, "in_value2");
    EXPECT_FALSE(material.items[0].node->inputPort("in_value1").connected);
    EXPECT_TRUE(material.items[0].node->outputPort("out_value").connected);
    EXPECT_FALSE(material.items[1].node->inputPort("in_value1").connected);
    EXPECT_TRUE(material.items[1].node->inputPort("in_value2").connected);
    EXPECT_TRUE(material.items[1].node->outputPort("out_value").connected);
    EXPECT_EQ(material.items[0].node->outputLinks.size(), 2U);
    EXPECT_EQ(material.items[1].node->inputLinks.size(), 1U);
    EXPECT_EQ(material.items[1].node->outputLinks.size(), 1U);
    ASSERT_EQ(material.outputs.size(), 2U);
    EXPECT_EQ(material.outputs[1].name, "alpha");
    EXPECT_EQ(material.outputs[1].source, 0U);
    EXPECT_EQ(material.outputs[1].line, 6);
    EXPECT_TRUE(material.outputs[1].record->destinationNode.expired());
}

TEST(BuildMaterial, RefusesUnknownEnds) {
    const std::string nodes = maths("a", "Invert") + maths("b", "Lerp");
    expectErrorAt(buildError(nodes + connection("x", "out_value", "b", "in_value1")), 4, {"\"x\""});
    expectErrorAt(buildError(nodes + connection("a", "out_value", "x", "in_value1")), 4, {"\"x\""});
    expectErrorAt(buildError(nodes + connection("a", "out", "b", "in_value1")), 4,
                  {"node \"a\" (\"Maths\")", "output \"out\"", "\"out_value\""});
    expectErrorAt(buildError(nodes + connection("a", "out_value", "b", "in")), 4,
                  {"node \"b\" (\"Maths\")", "input \"in\"", "\"in_value1\", \"in_value2\", \"in_blend\""});
    // names of the other side do not count
    expectErrorAt(buildError(nodes + connection("a", "in_value1", "b", "in_value1")), 4, {"\"in_value1\""});
    expectErrorAt(buildError(nodes + connection("a", "out_value", "b", "out_value")), 4, {"\"out_value\""});
    expectErrorAt(buildError(nodes + output("colour", "x", "out_value")), 4, {"\"x\""});
    expectErrorAt(buildError(nodes + output("colour", "a", "read")), 4,
                  {"node \"a\" (\"Maths\")", "\"read\""});
}

TEST(BuildMaterial, RefusesASecondConnectionOfAnInput) {
    const std::string nodes = maths("a", "Invert") + maths("b", "Invert");
    expectErrorAt(buildError(nodes + connection("a", "out_value", "b", "in_value1") + "\n" +
                             connection("a", "out_value", "b", "in_value1")),
                  6, {"node \"b\" (\"Maths\")", "\"in_value1\"", "twice", "4"});
}

TEST(BuildMaterial, NamesTheNodesOfACycleOfConnections) {
    expectErrorAt(buildError(maths("a", "Invert") + connection("a", "out_value", "a", "in_value1")), 2,
                  {"cycle", "node \"a\" (\"Maths\")", "node \"a\" (\"Maths\")"});
    const std::string error = buildError(
        maths("x", "Invert") + maths("a", "Addition") + maths("b", "Invert") + maths("c", "Invert") +
        connection("x", "out_value", "a", "in_value1") + connection("a", "out_value", "b", "in_value1") +
        connection("b", "out_value", "c", "in_value1") + connection("c", "out_value", "a", "in_value2"));
    EXPECT_NE(error.find("cycle"), std::string::npos) << error;
    EXPECT_EQ(error.find("\"x\""), std::string::npos) << error;
    EXPECT_TRUE(
        error.find("node \"a\" (\"Maths\") -> node \"b\" (\"Maths\") -> node \"c\"") != std::string::npos ||
        error.find("node \"b\" (\"Maths\") -> node \"c\" (\"Maths\") -> node \"a\"") != std::string::npos ||
        error.find("node \"c\" (\"Maths\") -> node \"a\" (\"Maths\") -> node \"b\"") != std::string::npos)
        << error;
}

TEST(BuildMaterial, RefusesAnOutputOfANameThatIsTaken) {
    expectErrorAt(buildError(maths("a", "Invert") + output("colour", "a", "out_value") +
                             output("colour", "a", "out_value")),
                  4, {"\"colour\""});
}

TEST(BuildMaterial, OrdersSourcesBeforeTheirDestinations) {
    const Material material = built(
        maths("d", "Addition") + maths("b", "Invert") + maths("c", "Invert") + maths("a", "Invert") +
        connection("b", "out_value", "d", "in_value1") + connection("c", "out_value", "d", "in_value2") +
        connection("a", "out_value", "b", "in_value1") + connection("a", "out_value", "c", "in_value1"));
    ASSERT_EQ(material.downstream.size(), 4U);
    std::vector<std::size_t> place(4);
    for (std::size_t i = 0; i < 4; ++i) {
        place.at(material.downstream[i]) = i;
    }
    for (const MaterialConnection& joined : material.connections) {
        EXPECT_LT(place[joined.source], place[joined.destination]);
    }
}

TEST(BuildMaterial, KeepsEveryMessageInOneLine) {
    const std::string id = "a&#10;b";
    for (const std::string& body : {
             node(id, "CoreMaths") + node(id, "CoreMaths"),
             node(id, "CoreMaths", property("Function", "enum", "x&#10;y")),
             node(id, "CoreMaths") + connection(id, "x&#10;y", "q", "z"),
             node(id, "CoreMaths", property("Name", "string", "x&#13;&#10;y")) +
                 connection(id, "out_value", id, "z"),
             node("a", "CoreUv") + connection("b&#10;", "x", "a", "y"),
         }) {
        const std::string error = buildError(body);
        EXPECT_EQ(error.find_first_of("\r\n"), std::string::npos) << error;
    }
}

TEST(PropertyContent, IsComparedInAllItHolds) {
    const auto property = makeProperty("Any");
    property->kind = PropertyType::Colour;
    property->stringValue = "text";
    property->intValue = 7;
    property->floatValues = {1.0F, 2.0F, 3.0F};
    EXPECT_TRUE(detail::hasValue(*property, {PropertyType::Colour, "text", 7, {1.0F, 2.0F, 3.0F}}));
    for (const PropertyContent& other : {PropertyContent{PropertyType::Float, "text", 7, {1.0F, 2.0F, 3.0F}},
                                         {PropertyType::Colour, "other", 7, {1.0F, 2.0F, 3.0F}},
                                         {PropertyType::Colour, "text", 8, {1.0F, 2.0F, 3.0F}},
                                         {PropertyType::Colour, "text", 7, {1.0F, 2.0F, 4.0F}}}) {
        EXPECT_FALSE(detail::hasValue(*property, other));
    }
}

TEST(OnBehalfOf, NamesTheNodeOfAllButWantOfMemory) {
    const Material material = built(node("a", "CoreMaths"));
    const auto errorOf = [&](const auto& exception) {
        return hostErrorOf(
            [&] { onBehalfOf(material, material.items.front(), 7, [&] { throw exception; }); });
    };
    EXPECT_EQ(errorOf(std::runtime_error("broken")), "sample.xml:7: error: node \"a\" (\"Maths\"): broken");
    EXPECT_EQ(errorOf(7), "sample.xml:7: error: node \"a\" (\"Maths\"): it failed with something that is no "
                          "exception");
    EXPECT_THROW(errorOf(std::bad_alloc()), std::bad_alloc);
}

TEST(Material, MayHaveItemsWithoutNodes) {
    Material material;
    material.items.emplace_back();
    EXPECT_FALSE(hasPlaceholder(material));
}

} // namespace
} // namespace patina
