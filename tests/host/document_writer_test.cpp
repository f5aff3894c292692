#include "tests/host/host_checks.h"

#include "host/xml.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

namespace patina {
namespace {

using testing::documentText;
using testing::expectError;
using testing::expectErrorAt;
using testing::hostErrorOf;
using testing::readText;
using testing::sampleFile;
using testing::TemporaryDirectory;

MaterialDocument sample(std::string_view text) { return parseMaterial(text, sampleFile); }

/// What becomes of a text when its document is changed.
template <typename Change>
std::string changed(std::string_view text, Change&& change) {
    MaterialDocument document = sample(text);
    change(document);
    std::string printed = printMaterial(document);
    EXPECT_TRUE(sample(printed) == document) << printed;
    return printed;
}

DocumentNode newNode(const std::string& id, std::vector<DocumentProperty> properties = {}) {
    DocumentNode node;
    node.id = id;
    node.type = "T";
    node.properties = std::move(properties);
    return node;
}

// Unchanged

TEST(PrintMaterial, GivesBackTheBytesOfAnUnchangedDocument) {
    using namespace std::string_literals;
    const std::string body =
        "<node  id = 'a' type='T'\n  version='007'><property name='P' kind='bool' value='Yes'>"
        "</property><!-- c --></node >\r\n\t<x:y xmlns:x='urn:x' z='&#65;'/><![CDATA[ ]]>";
    for (
        const std::string& text : {
            "<material version='1' name='A'>" + body + "</material>",
            "\xEF\xBB\xBF<material version='1' name='A'>" + body + "</material>\n\n\n",
            "<?xml version='1.0' standalone='yes'?>\n\n<!-- a -->\n\n<?b c?><material name='A' version='1'/>"s,
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><material version=\"1\" name=\"A\xE4\"/>"s,
            "\xFF\xFE<\0m\0a\0t\0e\0r\0i\0a\0l\0 \0v\0e\0r\0s\0i\0o\0n\0=\0'\0"
            "1\0'\0 \0n\0a\0m\0e\0=\0'\0A\0'\0/\0>\0"s,
        }) {
        EXPECT_EQ(printMaterial(sample(text)), text);
    }
}

TEST(PrintMaterial, SeesWhenAChangeIsTakenBack) {
    const std::string text = "<material version='1' name='A'><node id='a' type='T'/></material>";
    MaterialDocument document = sample(text);
    document.nodes[0].id = "b";
    EXPECT_NE(printMaterial(document), text);
    document.nodes[0].id = "a";
    EXPECT_EQ(printMaterial(document), text);
}

// Changed

constexpr const char* annotated =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- head -->\n"
    "<?tool head?>\n"
    "<material version=\"1\" name=\"A\" studio=\"x\">\n"
    "\n"
    "    <!-- first -->\n"
    "    <node id=\"a\" type=\"T\" colour=\"red\">\n"
    "        <note>kept</note>\n"
    "        <property name=\"P\" kind=\"float\" value=\"1\" by=\"me\"/>\n"
    "    </node> <!-- of a -->\n"
    "    <layout xmlns=\"urn:studio\"><node id=\"inner\"/></layout>\n"
    "    <node id=\"b\" type=\"T\" version=\"2\"/>\n"
    "\n"
    "    <connection source=\"a\" output=\"o\" destination=\"b\" input=\"i\"/>\n"
    "    <output name=\"colour\" source=\"b\" port=\"o\"/>\n"
    "    <?tool tail?>\n"
    "</material>\n"
    "<!-- tail -->\n";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t found = text.find(from);
    EXPECT_NE(found, std::string::npos) << from;
    return text.replace(found, from.size(), to);
}

TEST(PrintMaterial, ChangesOnlyWhatDiffers) {
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.name = "B"; }),
              replaced(annotated, "name=\"A\"", "name=\"B\""));
    EXPECT_EQ(
        changed(annotated, [](MaterialDocument& document) { document.nodes[0].properties[0].value = "2"; }),
        replaced(annotated, "value=\"1\"", "value=\"2\""));
    EXPECT_EQ(changed(annotated,
                      [](MaterialDocument& document) {
                          document.nodes[0].properties[0].kind = PropertyType::Colour;
                      }),
              replaced(annotated, "\"float\"", "\"colour\""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.nodes[1].version = 3; }),
              replaced(annotated, "version=\"2\"", "version=\"3\""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.nodes[0].version = 3; }),
              replaced(annotated, "colour=\"red\"", "colour=\"red\" version=\"3\""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.connections[0].input = "j"; }),
              replaced(annotated, "input=\"i\"", "input=\"j\""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.outputs[0].port = "q"; }),
              replaced(annotated, "port=\"o\"", "port=\"q\""));
}

TEST(PrintMaterial, RemovesElementsWithTheWhiteSpaceBeforeThem) {
    EXPECT_EQ(
        changed(annotated, [](MaterialDocument& document) { document.nodes[0].properties.clear(); }),
        replaced(annotated, "\n        <property name=\"P\" kind=\"float\" value=\"1\" by=\"me\"/>", ""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.nodes.pop_back(); }),
              replaced(annotated, "\n    <node id=\"b\" type=\"T\" version=\"2\"/>", ""));
    EXPECT_EQ(changed(annotated, [](MaterialDocument& document) { document.connections.clear(); }),
              replaced(annotated,
                       "\n\n    <connection source=\"a\" output=\"o\" destination=\"b\" input=\"i\"/>", ""));
    EXPECT_EQ(changed("<material version=\"1\" name=\"A\">text <node id=\"a\" type=\"T\"/></material>",
                      [](MaterialDocument& document) { document.nodes.clear(); }),
              "<material version=\"1\" name=\"A\">text</material>");
    // nothing stands before the second
    EXPECT_EQ(changed("<material version=\"1\" name=\"A\"><node id=\"a\" type=\"T\"/><node id=\"b\" "
                      "type=\"T\"/></material>",
                      [](MaterialDocument& document) { document.nodes.pop_back(); }),
              "<material version=\"1\" name=\"A\"><node id=\"a\" type=\"T\"/></material>");
}

TEST(PrintMaterial, InsertsInTheLineOfADocumentOfOneLine) {
    EXPECT_EQ(
        changed("<material version=\"1\" name=\"A\"><output name=\"x\" source=\"a\" port=\"o\"/></material>",
                [](MaterialDocument& document) {
                    document.outputs.push_back({"y", "a", "p", 0});
                    document.outputs.push_back({"z", "a", "q", 0});
                }),
        "<material version=\"1\" name=\"A\"><output name=\"x\" source=\"a\" port=\"o\"/>"
        "<output name=\"y\" source=\"a\" port=\"p\"/><output name=\"z\" source=\"a\" "
        "port=\"q\"/></material>");
}

TEST(PrintMaterial, InsertsBehindAllElse) {
    const auto withOutput = [](const std::string& inside) {
        return changed("<material version=\"1\" name=\"A\">" + inside + "</material>",
                       [](MaterialDocument& document) {
                           document.outputs.push_back({"y", "a", "p", 0});
                       });
    };
    const std::string begin = "<material version=\"1\" name=\"A\">";
    const std::string made = "<output name=\"y\" source=\"a\" port=\"p\"/>";
    EXPECT_EQ(withOutput("<!-- c -->"), begin + "<!-- c -->" + made + "</material>");
    EXPECT_EQ(withOutput("text"), begin + "text\n  " + made + "\n</material>");
    EXPECT_EQ(withOutput("  "), begin + "  \n  " + made + "\n</material>");
}

TEST(PrintMaterial, KeepsWhatStandsBehindAnElementWithIt) {
    // only a comment that ends the line belongs to it
    const auto moved = [](const std::string& between) {
        return changed("<material version=\"1\" name=\"A\">\n<node id=\"a\" type=\"T\"/>" + between +
                           "<node id=\"b\" type=\"T\"/>\n</material>",
                       [](MaterialDocument& document) {
                           DocumentNode node;
                           node.id = "c";
                           node.type = "T";
                           document.nodes.insert(document.nodes.begin() + 1, node);
                       });
    };
    const std::string before = "<material version=\"1\" name=\"A\">\n<node id=\"a\" type=\"T\"/>";
    const std::string made = "<node id=\"c\" type=\"T\" version=\"0\"/>";
    const std::string after = "<node id=\"b\" type=\"T\"/>\n</material>";
    for (const std::string between : {" <!-- r -->\n"}) {
        EXPECT_EQ(moved(between), before + " <!-- r -->\n" + made + "\n" + after);
    }
    for (const std::string between : {"<!-- r -->", "<!-- r --> ", " text <!-- r -->\n"}) {
        EXPECT_EQ(moved(between), before + "\n" + made + between + after);
    }
}

TEST(PrintMaterial, InsertsElementsBehindThoseOfTheirKind) {
    EXPECT_EQ(changed(annotated,
                      [](MaterialDocument& document) {
                          document.nodes.push_back(newNode("c", {{"Q", PropertyType::Bool, "Yes"}}));
                          document.nodes[0].properties.push_back({"R", PropertyType::Integer, "3"});
                      }),
              replaced(replaced(annotated, "version=\"2\"/>\n",
                                "version=\"2\"/>\n"
                                "    <node id=\"c\" type=\"T\" version=\"0\">\n"
                                "        <property name=\"Q\" kind=\"bool\" value=\"Yes\"/>\n"
                                "    </node>\n"),
                       "by=\"me\"/>\n",
                       "by=\"me\"/>\n        <property name=\"R\" kind=\"integer\" value=\"3\"/>\n"));
    EXPECT_EQ(changed(annotated,
                      [](MaterialDocument& document) {
                          document.nodes.insert(document.nodes.begin() + 1, newNode("c"));
                      }),
              replaced(annotated, "<!-- of a -->\n",
                       "<!-- of a -->\n    <node id=\"c\" type=\"T\" version=\"0\"/>\n"))
        << "a remark stays in the line of what it is about";
    EXPECT_EQ(changed(annotated,
                      [](MaterialDocument& document) {
                          document.bindings.push_back({"Tint", "float", {{"max", "2"}}});
                      }),
              replaced(annotated, "port=\"o\"/>\n",
                       "port=\"o\"/>\n    <binding kind=\"float\" tag=\"Tint\" max=\"2\"/>\n"));
}

TEST(PrintMaterial, KeepsTheKindsInOrder) {
    const auto addAll = [](MaterialDocument& document) {
        document.bindings.push_back({"Tint", "float", {}});
        document.outputs.push_back({"colour", "c", "o"});
        document.connections.push_back({"c", "o", "c", "i"});
        document.nodes.push_back(newNode("c"));
    };
    const std::string all = "\n  <node id=\"c\" type=\"T\" version=\"0\"/>"
                            "\n  <connection source=\"c\" output=\"o\" destination=\"c\" input=\"i\"/>"
                            "\n  <output name=\"colour\" source=\"c\" port=\"o\"/>"
                            "\n  <binding kind=\"float\" tag=\"Tint\"/>\n";
    const std::string head = "<material version=\"1\" name=\"A\">";
    EXPECT_EQ(changed("<material version=\"1\" name=\"A\"/>", addAll), head + all + "</material>");
    EXPECT_EQ(changed(head + "\n</material>\n", addAll), head + all + "</material>\n");
    EXPECT_EQ(changed(head + "\n  <x/>\n</material>\n", addAll), head + "\n  <x/>" + all + "</material>\n");
    EXPECT_EQ(changed(head + "<output name=\"alpha\" source=\"c\" port=\"o\"/></material>", addAll),
              head + "<node id=\"c\" type=\"T\" version=\"0\"/>"
                     "<connection source=\"c\" output=\"o\" destination=\"c\" input=\"i\"/>"
                     "<output name=\"alpha\" source=\"c\" port=\"o\"/>"
                     "<output name=\"colour\" source=\"c\" port=\"o\"/>"
                     "<binding kind=\"float\" tag=\"Tint\"/></material>");
}

TEST(PrintMaterial, FollowsTheOrderOfTheDocument) {
    const std::string text = "<material version=\"1\" name=\"A\">\n"
                             "<node id=\"a\" type=\"T\"/>\n"
                             "<node id=\"b\" type=\"T\" mark=\"\"/>\n"
                             "<node id=\"c\" type=\"T\"/>\n"
                             "</material>\n";
    const std::string rotated = changed(text, [](MaterialDocument& document) {
        std::swap(document.nodes[0], document.nodes[1]);
        std::swap(document.nodes[1], document.nodes[2]);
    });
    EXPECT_EQ(rotated, "<material version=\"1\" name=\"A\">\n"
                       "<node id=\"b\" type=\"T\" mark=\"\"/>\n"
                       "<node id=\"c\" type=\"T\"/>\n"
                       "<node id=\"a\" type=\"T\"/>\n"
                       "</material>\n");
    // a copy of a node claims its element no second time, and an origin that is none is none
    changed(text, [](MaterialDocument& document) {
        document.nodes.push_back(document.nodes[0]);
        document.nodes.back().id = "d";
        document.nodes[1].origin = 99;
        document.nodes[2].origin = -7;
    });
}

TEST(PrintMaterial, KeepsEncodingAndLineEnds) {
    const auto rename = [](MaterialDocument& document) {
        document.name = "B";
        document.nodes[0].properties[0].value = "\xC3\xB6\xE2\x82\xAC";
    };
    EXPECT_EQ(
        changed("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<material version=\"1\" name=\"\xE4\">"
                "<node id=\"a\" type=\"T\"><property name=\"P\" kind=\"string\" value=\"\xE4\"/></node>"
                "</material>",
                rename),
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<material version=\"1\" name=\"B\">"
        "<node id=\"a\" type=\"T\"><property name=\"P\" kind=\"string\" value=\"\xF6&#8364;\"/></node>"
        "</material>");
    EXPECT_EQ(
        changed("\xEF\xBB\xBF<material version=\"1\" name=\"A\">\r\n  <node id=\"a\" type=\"T\">\r\n"
                "    <property name=\"P\" kind=\"string\" value=\"1\"/>\r\n  </node>\r\n</material>\r\n",
                rename),
        "\xEF\xBB\xBF<material version=\"1\" name=\"B\">\r\n  <node id=\"a\" type=\"T\">\r\n"
        "    <property name=\"P\" kind=\"string\" value=\"\xC3\xB6\xE2\x82\xAC\"/>\r\n  </node>\r\n"
        "</material>\r\n");
    EXPECT_EQ(changed("\n<material version=\"1\" name=\"A\">\r\n</material>",
                      [](MaterialDocument& document) { document.name = "B"; }),
              "<material version=\"1\" name=\"B\">\n</material>");
}

TEST(PrintMaterial, RefusesWhatItsEncodingCannotHold) {
    MaterialDocument latin = parseMaterial("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                                           "<material version=\"1\" name=\"A\">"
                                           "<binding tag=\"a\" kind=\"uv\"/></material>\n",
                                           "a.xml");
    latin.bindings[0].annotations.emplace_back("\xC4\x80", "x");
    EXPECT_EQ(testing::hostErrorOf([&] { printMaterial(latin); }),
              "a.xml:2: error: this document cannot be written in its encoding; make it a document in UTF-8");
    latin.bindings[0].annotations[0] = {"key", "\xC4\x80"}; // a character reference
    EXPECT_NE(printMaterial(latin).find("key=\"&#256;\""), std::string::npos);
}

TEST(PrintMaterial, KeepsWideEncodings) {
    std::string wide = "\xFF\xFE";
    for (const char letter : std::string("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                                         "<material version=\"1\" name=\"A\"/>\n")) {
        wide += {letter, '\0'};
    }
    const std::string printed =
        changed(wide, [](MaterialDocument& document) { document.name = "B\xE2\x82\xAC"; });
    EXPECT_EQ(printed.substr(0, 4), std::string("\xFF\xFE<\0", 4));
}

TEST(PrintMaterial, LaysOutNewDocuments) {
    MaterialDocument document;
    document.name = "New";
    document.nodes.push_back(newNode("a", {{"P", PropertyType::Bool, "Yes"}, {"Q", PropertyType::Node, ""}}));
    document.nodes.push_back(newNode("b"));
    document.connections.push_back({"a", "o", "b", "i"});
    document.outputs.push_back({"colour", "b", "o"});
    document.bindings.push_back({"Tint", "float", {{"components", "3"}, {"desc", "a \"b\""}}});
    const std::string printed = printMaterial(document);
    EXPECT_EQ(printed, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<material version=\"1\" name=\"New\">\n"
                       "  <node id=\"a\" type=\"T\" version=\"0\">\n"
                       "    <property name=\"P\" kind=\"bool\" value=\"Yes\"/>\n"
                       "    <property name=\"Q\" kind=\"node\" value=\"\"/>\n"
                       "  </node>\n"
                       "  <node id=\"b\" type=\"T\" version=\"0\"/>\n"
                       "  <connection source=\"a\" output=\"o\" destination=\"b\" input=\"i\"/>\n"
                       "  <output name=\"colour\" source=\"b\" port=\"o\"/>\n"
                       "  <binding kind=\"float\" tag=\"Tint\" components=\"3\" desc=\"a &quot;b&quot;\"/>\n"
                       "</material>\n");
    EXPECT_TRUE(sample(printed) == document);
}

// Texts

TEST(PrintMaterial, CarriesEveryCharacterOfXml) {
    const std::string texts[] = {"\t\n\r",
                                 " a  b ",
                                 "<>&\"'",
                                 "]]>",
                                 "&amp;&#10;",
                                 "\x7F",
                                 "\xC2\x80\xC2\x85\xC3\xBF",
                                 "\xE2\x80\xA8\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD",
                                 "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                                 std::string(11000000, 'x')};
    for (const std::string& text : texts) {
        EXPECT_TRUE(isDocumentText(text));
        MaterialDocument document;
        document.name = "New";
        document.nodes.push_back(newNode(text, {{text, PropertyType::String, text}}));
        document.nodes[0].type = text;
        document.connections.push_back({text, text, text, text});
        document.outputs.push_back({text, text, text});
        document.bindings.push_back({text, "uv", {{"any", text}}});
        EXPECT_TRUE(sample(printMaterial(document)) == document) << text.substr(0, 20);
    }
}

TEST(PrintMaterial, RefusesOtherCharacters) {
    using namespace std::string_literals;
    const TemporaryDirectory directory;
    const auto file = directory.write("a.xml", "before");
    for (const std::string& text : {
             "\0"s,
             "a\x01"s,
             "\x08"s,
             "\x0B"s,
             "\x0C"s,
             "\x1F"s,
             "\x80"s,
             "\xBF"s,
             "\xC0\x80"s,
             "\xC1\xBF"s,
             "\xC3"s,
             "\xE2\x82"s,
             "\xE0\x80\x80"s,
             "\xED\xA0\x80"s,
             "\xEF\xBF\xBE"s,
             "\xEF\xBF\xBF"s,
             "\xF0\x80\x80\x80"s,
             "\xF4\x90\x80\x80"s,
             "\xF8\x88\x80\x80\x80"s,
             "\xFE"s,
             "\xFF"s,
             "\xC3("s,
         }) {
        EXPECT_FALSE(isDocumentText(text));
        MaterialDocument document = sample(documentText(testing::node("rim", "T")));
        document.nodes[0].properties.push_back({"Gloss", PropertyType::String, text, 2});
        expectErrorAt(hostErrorOf([&] { writeMaterial(document, file); }), 2,
                      {"node \"rim\"", "property \"Gloss\"", "XML"});
    }
    EXPECT_EQ(readText(file), "before");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"a.xml"});
}

TEST(PrintMaterial, RefusesWhatCouldNotBeReadAgain) {
    const auto errorOf = [](const auto& change) {
        MaterialDocument document = sample(documentText(testing::node("a", "T")));
        change(document);
        return hostErrorOf([&] { printMaterial(document); });
    };
    const auto bindingError = [&](const std::string& kind, const std::string& annotation) {
        return errorOf([&](MaterialDocument& document) {
            document.bindings.push_back({"Tint", kind, {{annotation, "1"}}, 7});
        });
    };
    expectErrorAt(errorOf([](MaterialDocument& document) { document.name = "a/b"; }), 1, {"\"a/b\"", "file"});
    expectErrorAt(errorOf([](MaterialDocument& document) { document.name = "\xFF"; }), 1, {"XML"});
    expectErrorAt(errorOf([](MaterialDocument& document) { document.nodes[0].id.clear(); }), 2, {"id"});
    expectErrorAt(errorOf([](MaterialDocument& document) { document.nodes.push_back(document.nodes[0]); }), 2,
                  {"\"a\""});
    expectErrorAt(errorOf([](MaterialDocument& document) {
                      document.nodes[0].properties = {{"P", PropertyType::Bool, "Yes", 3},
                                                      {"P", PropertyType::Bool, "No", 4}};
                  }),
                  4, {"node \"a\"", "\"P\"", "twice"});
    expectErrorAt(errorOf([](MaterialDocument& document) {
                      document.bindings = {{"Tint", "uv", {}, 3}, {"Tint", "uv", {}, 4}};
                  }),
                  4, {"\"Tint\""});
    EXPECT_EQ(bindingError("uv", "any"), testing::noError);
    expectErrorAt(bindingError("stone", "any"), 7, {"\"Tint\"", "\"stone\""});
    for (const char* annotation : {"", "a b", "1", "a:b", "tag", "kind", "xmlns", "<"}) {
        expectErrorAt(bindingError("uv", annotation), 7, {"\"Tint\"", "annotation"});
    }
}

TEST(PrintMaterial, WritesLargeDocuments) {
    MaterialDocument document;
    document.name = "Large";
    for (int i = 0; i < 100000; ++i) {
        document.nodes.push_back(newNode("n" + std::to_string(i), {{"P", PropertyType::Integer, "1"}}));
        document.connections.push_back({"n" + std::to_string(i), "o", "n0", "i"});
    }
    MaterialDocument reread = sample(printMaterial(document));
    EXPECT_TRUE(reread == document);
    // every second node goes, and as many come
    for (std::size_t i = 0; i < reread.nodes.size(); i += 2) {
        reread.nodes[i] = newNode("new" + std::to_string(i));
    }
    EXPECT_TRUE(sample(printMaterial(reread)) == reread);
}

TEST(PrintMaterial, IgnoresTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    MaterialDocument document;
    document.name = "New";
    document.nodes.push_back(newNode("a"));
    document.nodes[0].version = 1234567;
    EXPECT_NE(printMaterial(document).find("version=\"1234567\""), std::string::npos);
}

// Equality

TEST(MaterialDocument, EqualsWhatMeansTheSame) {
    const MaterialDocument document = sample(annotated);
    MaterialDocument other = sample(printMaterial(document));
    other.file = "other.xml";
    other.source.clear();
    other.line = 0;
    other.nodes[0].line = 0;
    other.nodes[0].origin = noOrigin;
    other.nodes[0].properties[0].line = 0;
    EXPECT_TRUE(other == document);
    other.nodes[0].properties[0].kind = PropertyType::String;
    EXPECT_FALSE(other == document);
    other = document;
    other.outputs.clear();
    EXPECT_FALSE(other == document);
    EXPECT_TRUE((DocumentBinding{"a", "uv", {{"x", "1"}, {"y", "2"}}} ==
                 DocumentBinding{"a", "uv", {{"y", "2"}, {"x", "1"}}}));
    EXPECT_FALSE((DocumentBinding{"a", "uv", {{"x", "1"}}} == DocumentBinding{"a", "uv", {{"x", "2"}}}));
    EXPECT_FALSE((DocumentBinding{"a", "uv", {}} == DocumentBinding{"b", "uv", {}}));
}

// Bindings

TEST(ParseMaterial, KeepsBindings) {
    const auto document = testing::parsed("<binding gui=\"slider\" tag=\"Tint\" kind=\"float\" "
                                          "x:studio=\"1\" any=\" &#10;\" xmlns:x=\"urn:x\"/>\n");
    ASSERT_EQ(document.bindings.size(), 1U);
    EXPECT_EQ(document.bindings[0].name, "Tint");
    EXPECT_EQ(document.bindings[0].kind, "float");
    EXPECT_EQ(document.bindings[0].line, 2);
    EXPECT_EQ(document.bindings[0].annotations,
              (std::vector<std::pair<std::string, std::string>>{{"gui", "slider"}, {"any", " \n"}}));
}

TEST(ParseMaterial, ChecksBindings) {
    const auto errorOf = [](const std::string& body) { return hostErrorOf([&] { testing::parsed(body); }); };
    expectErrorAt(errorOf("\n<binding kind=\"uv\"/>\n"), 3, {"<binding>", "\"tag\""});
    expectErrorAt(errorOf("\n<binding tag=\"a\"/>\n"), 3, {"<binding>", "\"kind\""});
    for (const std::string kind : {"", "invalid", "Float", "stone"}) {
        expectErrorAt(errorOf("<binding tag=\"a\" kind=\"" + kind + "\"/>\n"), 2,
                      {"\"a\"", '"' + kind + '"'});
    }
    expectErrorAt(errorOf("<binding tag=\"a\" kind=\"uv\"/>\n<binding tag=\"a\" kind=\"float\"/>\n"), 3,
                  {"\"a\""});
    for (const char* kind : {"position", "normal", "uv", "tangent", "binormal", "colour", "blendindices",
                             "blendweights", "texture", "float"}) {
        EXPECT_EQ(errorOf(std::string("<binding tag=\"\" kind=\"") + kind + "\"/>\n"), testing::noError);
    }
}

TEST(PrintMaterial, ChangesTheAnnotationsOfBindings) {
    const std::string text = "<material xmlns:x=\"urn:x\" version=\"1\" name=\"A\">\n"
                             "  <binding min=\"1\" tag=\"Tint\" kind=\"float\" x:min=\"7\" max=\"2\"/>\n"
                             "</material>\n";
    EXPECT_EQ(changed(text,
                      [](MaterialDocument& document) {
                          document.bindings[0].annotations = {{"max", "3"}, {"desc", "d"}};
                      }),
              "<material xmlns:x=\"urn:x\" version=\"1\" name=\"A\">\n"
              "  <binding tag=\"Tint\" kind=\"float\" x:min=\"7\" max=\"3\" desc=\"d\"/>\n"
              "</material>\n");
}

// Namespaces

TEST(ParseMaterial, LeavesOtherNamespacesAlone) {
    const auto document = testing::parsed("<x:node xmlns:x=\"urn:x\"/><node xmlns=\"urn:x\"/>"
                                          "<node xmlns:x=\"urn:x\" x:id=\"no\" id=\"a\" type=\"T\">"
                                          "<x:property/></node>\n");
    ASSERT_EQ(document.nodes.size(), 1U);
    EXPECT_EQ(document.nodes[0].id, "a");
    EXPECT_TRUE(document.nodes[0].properties.empty());
    expectErrorAt(hostErrorOf([] { sample("\n<material xmlns=\"urn:x\" version=\"1\" name=\"A\"/>"); }), 2,
                  {"namespace", "\"urn:x\""});
}

TEST(XmlSilence, KeepsTheParserFromPrinting) {
    ::testing::internal::CaptureStderr();
    {
        const XmlSilence silence;
        xmlGenericError(xmlGenericErrorContext, "%s", "noise");
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(ParseMaterial, TakesWhatTheParserOnlyWarnsOf) {
    EXPECT_EQ(sample("<material xml:space=\"wide\" version=\"1\" name=\"A\"/>").name, "A");
}

// Hostile documents

TEST(ParseMaterial, LooksAtNothingBehindADocumentType) {
    // were the declaration read, it would be malformed, or be fetched, or explode
    const std::string expansion = "<!ENTITY a \"&b;&b;\"><!ENTITY b \"&a;&a;\">";
    for (const std::string& rest : {std::string("<!ENTITY broken"), std::string("%undeclared;"),
                                    expansion + "]><material name='&a;'/>"}) {
        EXPECT_EQ(hostErrorOf([&] { sample("\n<!DOCTYPE material [" + rest); }),
                  "sample.xml:2: error: a material document has no document type declaration; remove it");
    }
    EXPECT_EQ(hostErrorOf([] { sample("<!DOCTYPE material SYSTEM \"http://127.0.0.1:1/a.dtd\"><"); }),
              "sample.xml:1: error: a material document has no document type declaration; remove it");
}

TEST(ParseMaterial, LimitsTheDepth) {
    const auto nested = [](int depth) {
        std::string text = "<material version=\"1\" name=\"A\">\n";
        for (int i = 1; i < depth; ++i) {
            text += "<a>";
        }
        for (int i = 1; i < depth; ++i) {
            text += "</a>";
        }
        return text + "</material>";
    };
    EXPECT_EQ(hostErrorOf([&] { sample(nested(200)); }), testing::noError);
    EXPECT_EQ(hostErrorOf([&] { sample(nested(201)); }),
              "sample.xml:2: error: the elements of this document nest deeper than 200");
    EXPECT_EQ(hostErrorOf([&] { sample(nested(100000)); }),
              "sample.xml:2: error: the elements of this document nest deeper than 200");
}

TEST(ParseMaterial, LimitsTheSize) {
    constexpr std::size_t size = std::size_t{512} * 1024 * 1024 + 1;
    // pages that nobody touches, so that nobody needs the memory
    // cppcheck-suppress invalidFunctionArg ; -1 is what goes with MAP_ANONYMOUS
    void* pages = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    EXPECT_EQ(hostErrorOf([&] {
                  sample({static_cast<const char*>(pages), size});
              }),
              "sample.xml:1: error: this document is larger than 512 MiB");
    munmap(pages, size);
    const TemporaryDirectory directory;
    const auto file = directory.write("a.xml", "");
    std::filesystem::resize_file(file, size);
    expectError(hostErrorOf([&] { readMaterial(file); }), file.string() + ":1", {"larger than 512 MiB"});
}

// Files

TEST(WriteMaterial, ReplacesTheFile) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a.xml", annotated);
    MaterialDocument document = readMaterial(file);
    writeMaterial(document, file);
    EXPECT_EQ(readText(file), annotated);
    std::filesystem::create_hard_link(file, directory / "old.xml");
    document.name = "B";
    writeMaterial(document, file);
    EXPECT_EQ(readText(file), replaced(annotated, "name=\"A\"", "name=\"B\""));
    EXPECT_EQ(readText(directory / "old.xml"), annotated) << "nobody sees a file half written";
    EXPECT_TRUE(readMaterial(file) == document);
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"a.xml", "old.xml"}));
    writeMaterial(document, directory / "new.xml");
    EXPECT_EQ(readText(directory / "new.xml"), readText(file));
}

TEST(ReplaceFile, KeepsLinksAndPermissions) {
    namespace fs = std::filesystem;
    const TemporaryDirectory directory;
    fs::create_directory(directory / "sub");
    const auto file = directory.write("sub/a", "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("sub/a", directory / "relative");
    fs::create_symlink(directory / "relative", directory / "absolute");
    replaceFile(directory / "absolute", "new");
    EXPECT_EQ(readText(file), "new");
    EXPECT_TRUE(fs::is_symlink(directory / "absolute"));
    EXPECT_TRUE(fs::is_symlink(directory / "relative"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("sub/b", directory / "dangling");
    replaceFile(directory / "dangling", "made");
    EXPECT_EQ(readText(directory / "sub/b"), "made");
    EXPECT_TRUE(fs::is_symlink(directory / "dangling"));
}

TEST(ReplaceFile, RefusesWhatIsNotToBeReplaced) {
    namespace fs = std::filesystem;
    const TemporaryDirectory directory;
    const auto readOnly = directory.write("a", "old");
    fs::permissions(readOnly, fs::perms::owner_read);
    fs::create_symlink("loop", directory / "loop");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    const struct {
        std::filesystem::path file;
        const char* reason;
    } rows[] = {
        {readOnly, "write-protected"},
        {directory / "loop", "cannot write"},
        {directory / "pipe", "no regular file"},
        {directory.path(), "it is a directory"},
        {directory / "missing/a", "there is no such file or directory"},
    };
    for (const auto& [file, reason] : rows) {
        expectError(hostErrorOf([&, target = file] { replaceFile(target, "new"); }), file.string(), {reason});
    }
    EXPECT_EQ(readText(readOnly), "old");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"a", "loop", "pipe"}));
}

} // namespace
} // namespace patina
