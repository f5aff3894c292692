#include "tests/host/host_checks.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::documentText;
using testing::expectError;
using testing::expectErrorAt;
using testing::hostErrorOf;
using testing::sampleFile;
using testing::TemporaryDirectory;

std::string parseError(const std::string& text) {
    return hostErrorOf([&] { parseMaterial(text, sampleFile); });
}

TEST(ParseMaterial, KeepsEverythingInDocumentOrder) {
    const MaterialDocument document = parseMaterial("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                    "<material version=\"1\" name=\"PaintedMetal\">\n"
                                                    "  <node id=\"uv\" type=\"CoreUv\" version=\"3\">\n"
                                                    "    <property name=\"Name\" kind=\"string\"\n"
                                                    "      value=\"map1\"/>\n"
                                                    "  </node>\n"
                                                    "  <node id=\"b\" type=\"Unheard\"/>\n"
                                                    "  <connection source=\"uv\" output=\"read\" "
                                                    "destination=\"b\" input=\"in\"/>\n"
                                                    "  <output name=\"colour\" source=\"b\" port=\"out\"/>\n"
                                                    "</material>\n",
                                                    "metal.xml");
    EXPECT_EQ(document.file, "metal.xml");
    EXPECT_EQ(document.name, "PaintedMetal");
    ASSERT_EQ(document.nodes.size(), 2U);
    EXPECT_EQ(document.nodes[0].id, "uv");
    EXPECT_EQ(document.nodes[0].type, "CoreUv");
    EXPECT_EQ(document.nodes[0].version, 3);
    EXPECT_EQ(document.nodes[0].line, 3);
    ASSERT_EQ(document.nodes[0].properties.size(), 1U);
    EXPECT_EQ(document.nodes[0].properties[0].name, "Name");
    EXPECT_EQ(document.nodes[0].properties[0].kind, PropertyType::String);
    EXPECT_EQ(document.nodes[0].properties[0].value, "map1");
    EXPECT_EQ(document.nodes[1].id, "b");
    EXPECT_EQ(document.nodes[1].type, "Unheard");
    EXPECT_EQ(document.nodes[1].version, 0);
    EXPECT_EQ(document.nodes[1].line, 7);
    ASSERT_EQ(document.connections.size(), 1U);
    EXPECT_EQ(document.connections[0].source, "uv");
    EXPECT_EQ(document.connections[0].output, "read");
    EXPECT_EQ(document.connections[0].destination, "b");
    EXPECT_EQ(document.connections[0].input, "in");
    EXPECT_EQ(document.connections[0].line, 8);
    ASSERT_EQ(document.outputs.size(), 1U);
    EXPECT_EQ(document.outputs[0].name, "colour");
    EXPECT_EQ(document.outputs[0].source, "b");
    EXPECT_EQ(document.outputs[0].port, "out");
    EXPECT_EQ(document.outputs[0].line, 9);
}

struct KindRow {
    const char* name;
    PropertyType kind;
};

constexpr KindRow kinds[] = {
    {"bool", PropertyType::Bool},     {"integer", PropertyType::Integer}, {"float", PropertyType::Float},
    {"string", PropertyType::String}, {"colour", PropertyType::Colour},   {"enum", PropertyType::Enum},
    {"node", PropertyType::Node},
};

TEST(ParseMaterial, KnowsTheSevenKinds) {
    for (const auto& [name, kind] : kinds) {
        const auto document =
            testing::parsed(testing::node("a", "T", testing::property("P", name, "as it stands")));
        EXPECT_EQ(document.nodes.at(0).properties.at(0).kind, kind) << name;
        EXPECT_EQ(document.nodes.at(0).properties.at(0).value, "as it stands") << name;
    }
}

TEST(ParseMaterial, KeepsTextsAsTheyStand) {
    const auto document = testing::parsed(testing::node(
        "\xC3\xA4 &amp;&lt;", "T", testing::property("P", "string", " a&quot;b&#10;c\xE2\x82\xAC ")));
    EXPECT_EQ(document.nodes.at(0).id, "\xC3\xA4 &<");
    EXPECT_EQ(document.nodes.at(0).properties.at(0).value, " a\"b\nc\xE2\x82\xAC ");
}

TEST(ParseMaterial, LeavesElementsOfOthersAlone) {
    const auto document = testing::parsed("<!-- note --><?tool x?>text<layout><node id=\"inner\"/></layout>\n"
                                          "<node id=\"a\" type=\"T\"><note/>text</node>\n");
    EXPECT_EQ(document.nodes.size(), 1U);
    EXPECT_TRUE(document.nodes.at(0).properties.empty());
}

struct MissingAttribute {
    const char* body;
    const char* element;
    const char* attribute;
};

constexpr MissingAttribute missingAttributes[] = {
    {R"(<node type="T"/>)", "node", "id"},
    {R"(<node id="a"/>)", "node", "type"},
    {R"(<node id="a" type="T"><property kind="bool" value="Yes"/></node>)", "property", "name"},
    {R"(<node id="a" type="T"><property name="P" value="Yes"/></node>)", "property", "kind"},
    {R"(<node id="a" type="T"><property name="P" kind="bool"/></node>)", "property", "value"},
    {R"(<connection output="o" destination="b" input="i"/>)", "connection", "source"},
    {R"(<connection source="a" destination="b" input="i"/>)", "connection", "output"},
    {R"(<connection source="a" output="o" input="i"/>)", "connection", "destination"},
    {R"(<connection source="a" output="o" destination="b"/>)", "connection", "input"},
    {R"(<output source="a" port="p"/>)", "output", "name"},
    {R"(<output name="colour" port="p"/>)", "output", "source"},
    {R"(<output name="colour" source="a"/>)", "output", "port"},
};

TEST(ParseMaterial, RefusesAnElementWithoutAnAttribute) {
    for (const auto& [body, element, attribute] : missingAttributes) {
        const std::string error = parseError(documentText(std::string("\n\n") + body + "\n"));
        expectErrorAt(error, 4, {element, attribute});
    }
    expectErrorAt(parseError("\n<material name=\"A\"/>"), 2, {"material", "version"});
    expectErrorAt(parseError("\n<material version=\"1\"/>"), 2, {"material", "name"});
}

constexpr const char* versions[] = {"", "0", "2", "1.0", " 1", "1 ", "one", "+1", "01"};

TEST(ParseMaterial, ReadsVersionOneOnly) {
    for (const std::string version : versions) {
        expectErrorAt(parseError("\n<material version=\"" + version + "\" name=\"A\"/>"), 2,
                      {'"' + version + '"', "1"});
    }
}

TEST(ParseMaterial, TakesNodeVersionsOf32Bits) {
    for (const auto& [text, version] :
         {std::pair{"0", 0}, {"7", 7}, {"2147483647", 2147483647}, {"-1", -1}}) {
        const auto document =
            testing::parsed(std::string("<node id=\"a\" type=\"T\" version=\"") + text + "\"/>\n");
        EXPECT_EQ(document.nodes.at(0).version, version);
    }
    for (const std::string text : {"", "x", "1.5", "1 ", " 1", "2147483648", "0x1", "1e3"}) {
        const std::string body = "<node id=\"a\" type=\"T\" version=\"" + text + "\"/>\n";
        expectErrorAt(parseError(documentText(body)), 2, {'"' + text + '"'});
    }
}

TEST(ParseMaterial, RefusesNamesThatCannotNameAFile) {
    for (const std::string name :
         {"", ".", "..", "a/b", "/", "a\\b", "a:b", "a*", "a?", "a&#10;b", "a&#127;"}) {
        const std::string error = parseError("<material version=\"1\" name=\"" + name + "\"/>");
        expectErrorAt(error, 1, {"name"});
    }
    EXPECT_EQ(parseMaterial("<material version=\"1\" name=\"Wet \xC3\xA4 1.2\"/>", sampleFile).name,
              "Wet \xC3\xA4 1.2");
}

TEST(ParseMaterial, RefusesUnknownKinds) {
    for (const std::string kind : {"", "Bool", "int", "double", "color", " float"}) {
        const std::string error =
            parseError(documentText("\n" + testing::node("a", "T", testing::property("P", kind, "1"))));
        expectErrorAt(error, 3, {"\"P\"", '"' + kind + '"'});
    }
}

TEST(ParseMaterial, RefusesDuplicates) {
    expectErrorAt(parseError(documentText(testing::node("a", "T") + testing::node("a", "U"))), 3, {"\"a\""});
    expectErrorAt(
        parseError(documentText("<node id=\"a\" type=\"T\">\n" + testing::property("P", "bool", "Yes") +
                                "\n" + testing::property("P", "bool", "No") + "\n</node>\n")),
        4, {"\"a\"", "\"P\""});
    expectErrorAt(parseError(documentText("<node id=\"\" type=\"T\"/>\n")), 2, {"id"});
    expectErrorAt(parseError("<material version=\"1\"\nversion=\"1\" name=\"A\"/>"), 2, {"version"});
}

TEST(ParseMaterial, RefusesOtherDocuments) {
    expectErrorAt(parseError("\n\n<shader/>"), 3, {"<shader>", "<material>"});
    expectErrorAt(parseError("<Material version=\"1\" name=\"A\"/>"), 1, {"<Material>"});
}

/// The line is where the reader noticed.
struct Malformed {
    std::string text;
    int line;
};

TEST(ParseMaterial, RefusesWhatIsNoXml) {
    const Malformed rows[] = {
        {"", 1},
        {"\n\n", 3},
        {"material", 1},
        {"<material version=\"1\" name=\"A\">\n<node>\n</material>\n", 3},
        {"<material version=\"1\" name=\"A\">\n", 2},
        {"<material version=\"1\" name=\"A\"/>\n<material/>", 2},
        {"<material\nversion=1 name=\"A\"/>", 2},
        {"<material version=\"1\"\n name=\"&unknown;\"/>", 2},
        {"<material version=\"1\" name=\"A\">\n&#0;</material>", 2},
        {std::string("<material version=\"1\" name=\"A\">\n\0</material>", 45), 2},
        {"<a:material version=\"1\" name=\"A\">\n</material>", 2},
    };
    for (const auto& [text, line] : rows) {
        const std::string error = parseError(text);
        EXPECT_EQ(error.rfind(std::string(sampleFile) + ":", 0), 0U) << text << "\n" << error;
        EXPECT_NE(error.find(": error: "), std::string::npos) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_LE(std::stoi(error.substr(std::string(sampleFile).size() + 1)), line) << error;
    }
}

TEST(ParseMaterial, ReportsBadEncodingsInOneLine) {
    for (const std::string text : {
             "<material version=\"1\" name=\"A\xFF\"/>",
             "<?xml version=\"1.0\" encoding=\"bogus\"?><material version=\"1\" name=\"A\"/>",
             "<?xml version=\"1.0\" encoding=\"UTF-16\"?><material version=\"1\" name=\"A\"/>",
             "<?xml version=\"1.0\" encoding=\"EUC-JP\"?><material version=\"1\" name=\"A\xFF\xFF\xFF\"/>",
         }) {
        ::testing::internal::CaptureStderr();
        const std::string error = parseError(text);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "beside the message";
        expectErrorAt(error, 1, {"XML"});
    }
}

TEST(ParseMaterial, ReadsOtherEncodings) {
    const auto document = parseMaterial(
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><material version=\"1\" name=\"A\xE4\"/>",
        sampleFile);
    EXPECT_EQ(document.name, "A\xC3\xA4");
    EXPECT_EQ(parseMaterial("\xEF\xBB\xBF<material version=\"1\" name=\"A\"/>", sampleFile).name, "A");
}

TEST(ParseMaterial, RefusesPrefixesThatNothingDeclares) {
    expectErrorAt(parseError("<material version=\"1\" name=\"A\">\n<x:y/>\n</material>"), 2,
                  {"not well-formed XML", "prefix x"});
    expectErrorAt(parseError("<material version=\"1\" name=\"A\"\n x:y=\"1\"/>"), 2,
                  {"not well-formed XML", "prefix x"});
}

TEST(ParseMaterial, RefusesDocumentTypes) {
    const TemporaryDirectory directory;
    const std::string secret = directory.write("secret.txt", "secret").string();
    for (const std::string& type : {
             std::string("<!DOCTYPE material>"),
             std::string("<!DOCTYPE material SYSTEM \"other.dtd\">"),
             "<!DOCTYPE material [<!ENTITY file SYSTEM \"" + secret + "\">]>",
             "<!DOCTYPE material [<!ENTITY % file SYSTEM \"" + secret + "\"> %file;]>",
             std::string("<!DOCTYPE material [<!ATTLIST material version CDATA \"1\">]>"),
         }) {
        const std::string error = parseError(type + "\n<material version=\"1\" name=\"A\"/>");
        EXPECT_EQ(error.rfind("sample.xml:", 0), 0U) << error;
        EXPECT_NE(error.find("document type"), std::string::npos) << error;
        EXPECT_EQ(error.find("secret\n"), std::string::npos) << error;
    }
}

TEST(ParseMaterial, SurvivesEntityBombs) {
    std::string text = "<!DOCTYPE material [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int repeat = 0; repeat < 10; ++repeat) {
            text += before;
        }
        text += "\">";
    }
    for (const std::string root : {"<material version=\"1\" name=\"&a11;\"/>",
                                   "<material version=\"1\" name=\"A\">&a11;</material>"}) {
        const std::string error = parseError(text + "]>\n" + root);
        EXPECT_EQ(error.rfind("sample.xml:", 0), 0U) << error;
        EXPECT_LT(error.size(), 1000U);
    }
}

TEST(ParseMaterial, SurvivesDeepNesting) {
    std::string text = "<material version=\"1\" name=\"A\">";
    for (int depth = 0; depth < 100000; ++depth) {
        text += "<a>";
    }
    EXPECT_EQ(parseError(text).rfind("sample.xml:", 0), 0U);
}

/// Each bad element with what stands behind it, which must not move the line.
constexpr const char* lateElements[] = {
    "<node id=\"late\"/>\n\n\n",
    "<node id=\"late\"/>",
    "<node id=\"late\"><!-- note -->\n</node>\n",
    "<node id=\"late\">\n\n<property/>\n\n</node>\n\n",
    "<connection/>\n<connection/>",
    "<output/>\n\n<!-- note -->\n",
};

TEST(ParseMaterial, CountsLinesBeyond65535) {
    for (const int line : {65534, 65535, 65536, 70000, 200000}) {
        for (const std::string element : lateElements) {
            std::string body(static_cast<std::size_t>(line - 2), '\n');
            expectErrorAt(parseError(documentText(body + element)), line, {"attribute"});
        }
    }
}

TEST(ParseMaterial, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    const std::string body(static_cast<std::size_t>(1234 - 2), '\n');
    expectErrorAt(parseError(documentText(body + "<node/>\n")), 1234, {"id"});
    EXPECT_EQ(testing::parsed("<node id=\"a\" type=\"T\" version=\"1234567\"/>\n").nodes.at(0).version,
              1234567);
}

TEST(ReadMaterial, NamesTheFileInItsMessages) {
    const TemporaryDirectory directory;
    const auto empty = directory.write("empty.xml", "");
    expectError(hostErrorOf([&] { readMaterial(empty); }), empty.string() + ":1", {"XML"});
    const auto missing = directory / "missing.xml";
    expectError(hostErrorOf([&] { readMaterial(missing); }), missing.string() + ":1",
                {"there is no such file or directory"});
    expectError(hostErrorOf([&] { readMaterial(directory.path()); }), directory.path().string() + ":1",
                {"it is a directory"});
    const auto below = empty / "below.xml";
    expectError(hostErrorOf([&] { readMaterial(below); }), below.string() + ":1",
                {"a part of the path is not a directory"});
    const auto good = directory.write("good.xml", documentText(""));
    EXPECT_EQ(readMaterial(good).file, good.string());
}

using Lines = std::vector<std::string>;

Lines linesOf(const Errors& errors) {
    Lines lines;
    for (const HostError& error : errors) {
        lines.emplace_back(error.what());
    }
    return lines;
}

TEST(ParseMaterialWithErrors, ReportsEveryBadElementAndGoesOn) {
    Errors errors;
    const MaterialDocument document =
        parseMaterial("<material version=\"1\" name=\"a/b\">\n"
                      "<node type=\"T\"><property name=\"P\" kind=\"bool\"/></node>\n"
                      "<node id=\"\" type=\"T\"/>\n"
                      "<node id=\"typeless\"/>\n"
                      "<node id=\"new\" type=\"T\" version=\"x\"/>\n"
                      "<node id=\"a\" type=\"T\">\n"
                      "<property name=\"One\" kind=\"bool\" value=\"Yes\"/>\n"
                      "<property name=\"Two\" kind=\"int\" value=\"1\"/>\n"
                      "<property name=\"One\" kind=\"bool\" value=\"No\"/>\n"
                      "<property name=\"Three\" kind=\"integer\" value=\"3\"/>\n"
                      "</node>\n"
                      "<node id=\"a\" type=\"U\"/>\n"
                      "<node id=\"b\" type=\"U\"/>\n"
                      "<connection source=\"a\" destination=\"b\" input=\"i\"/>\n"
                      "<connection source=\"a\" output=\"o\" destination=\"b\" input=\"i\"/>\n"
                      "<output source=\"a\" port=\"p\"/>\n"
                      "<output name=\"colour\" source=\"a\" port=\"p\"/>\n"
                      "<binding tag=\"T\" kind=\"fog\"/>\n"
                      "<binding tag=\"B\" kind=\"float\"/>\n"
                      "<binding tag=\"B\" kind=\"float\"/>\n"
                      "<binding kind=\"float\"/>\n"
                      "</material>\n",
                      sampleFile, &errors);
    EXPECT_EQ(linesOf(errors),
              (Lines{"sample.xml:1: error: the material's name \"a/b\" cannot be the name of a file",
                     "sample.xml:2: error: the <node> element has no \"id\" attribute",
                     "sample.xml:2: error: the <property> element has no \"value\" attribute",
                     "sample.xml:3: error: this node has an empty id",
                     "sample.xml:4: error: the <node> element has no \"type\" attribute",
                     "sample.xml:5: error: \"x\" is no version number",
                     "sample.xml:8: error: property \"Two\" is of the unknown kind \"int\"; the kinds are "
                     "bool, integer, float, string, colour, enum and node",
                     "sample.xml:9: error: node \"a\": property \"One\" is set twice",
                     "sample.xml:12: error: there is another node with the id \"a\"",
                     "sample.xml:14: error: the <connection> element has no \"output\" attribute",
                     "sample.xml:16: error: the <output> element has no \"name\" attribute",
                     "sample.xml:18: error: binding \"T\" is of the unknown kind \"fog\"",
                     "sample.xml:20: error: there is another binding with the tag \"B\"",
                     "sample.xml:21: error: the <binding> element has no \"tag\" attribute"}));
    ASSERT_EQ(document.nodes.size(), 2U);
    EXPECT_EQ(document.nodes[0].id, "a");
    EXPECT_EQ(document.nodes[0].type, "T");
    EXPECT_EQ(document.nodes[0].origin, 4); // of all <node> elements, with those left out
    EXPECT_EQ(document.nodes[1].id, "b");
    EXPECT_EQ(document.nodes[1].origin, 6);
    ASSERT_EQ(document.nodes[0].properties.size(), 2U);
    EXPECT_EQ(document.nodes[0].properties[0].value, "Yes");
    EXPECT_EQ(document.nodes[0].properties[1].name, "Three");
    ASSERT_EQ(document.connections.size(), 1U);
    EXPECT_EQ(document.connections[0].line, 15);
    EXPECT_EQ(document.connections[0].origin, 1);
    ASSERT_EQ(document.outputs.size(), 1U);
    EXPECT_EQ(document.outputs[0].origin, 1);
    ASSERT_EQ(document.bindings.size(), 1U);
    EXPECT_EQ(document.bindings[0].line, 19);
    EXPECT_EQ(document.bindings[0].origin, 1);
}

TEST(ParseMaterialWithErrors, RemembersWhatItLeftOut) {
    Errors errors;
    const MaterialDocument document = parseMaterial(
        documentText("<node id=\"typeless\"><property name=\"Name\" kind=\"string\" value=\"N\"/></node>\n"
                     "<node id=\"a\" type=\"T\"><property name=\"P\"/></node>\n"
                     "<connection source=\"a\" destination=\"b\" input=\"i\"/>\n"
                     "<output name=\"colour\" port=\"p\"/>\n"),
        sampleFile, &errors);
    EXPECT_EQ(errors.size(), 4U);
    ASSERT_EQ(document.leftOut.nodes.size(), 1U);
    EXPECT_EQ(document.leftOut.nodes[0].id, "typeless");
    EXPECT_EQ(document.leftOut.nodes[0].type, "");
    ASSERT_EQ(document.leftOut.nodes[0].properties.size(), 1U);
    EXPECT_EQ(document.leftOut.nodes[0].properties[0].value, "N");
    EXPECT_EQ(document.leftOut.doubtful, (Lines{"typeless", "a"}));
    ASSERT_EQ(document.leftOut.connections.size(), 1U);
    EXPECT_EQ(document.leftOut.connections[0].source, "a");
    EXPECT_EQ(document.leftOut.connections[0].output, "");
    EXPECT_EQ(document.leftOut.connections[0].input, "i");
    ASSERT_EQ(document.leftOut.outputs.size(), 1U);
    EXPECT_EQ(document.leftOut.outputs[0].name, "colour");
}

TEST(ParseMaterialWithErrors, EndsAtWhatIsNoMaterialDocument) {
    for (const std::string text :
         {"", "<material version=\"1\" name=\"A\">", "<shader/>", "<material xmlns=\"urn:x\"/>",
          "<material version=\"2\" name=\"A\"/>", "<material name=\"A\"/>"}) {
        Errors errors;
        EXPECT_NE(hostErrorOf([&] { parseMaterial(text, sampleFile, &errors); }), testing::noError) << text;
        EXPECT_TRUE(errors.empty()) << text;
    }
}

TEST(ParseMaterialWithErrors, FindsNothingInASoundDocument) {
    const std::string text =
        documentText(testing::node("a", "T", testing::property("P", "bool", "Yes")) +
                     testing::connection("a", "o", "a", "i") + testing::output("colour", "a", "o"));
    Errors errors;
    EXPECT_EQ(parseMaterial(text, sampleFile, &errors), parseMaterial(text, sampleFile));
    EXPECT_TRUE(errors.empty());
}

} // namespace
} // namespace patina
