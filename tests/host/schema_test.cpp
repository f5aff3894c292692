// The published schema, held by a validator that knows nothing of the host against what the host reads and
// writes.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <string>

namespace patina {
namespace {

using testing::hostErrorOf;
using testing::noError;
using testing::TemporaryDirectory;

constexpr int valid = 0;
constexpr int invalid = 3; // as the validator says it

int validate(const std::filesystem::path& file) {
    return testing::run("xmllint", {"--noout", "--relaxng", PATINA_SCHEMA, file.string()}).exitCode;
}

TEST(Schema, TakesEveryExample) {
    for (const char* directory : {PATINA_EXAMPLES, PATINA_SOURCE_DIRECTORY "/examples/plugin/materials"}) {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            if (entry.path().extension() == ".xml") {
                EXPECT_EQ(validate(entry.path()), valid) << entry.path();
                ++count;
            }
        }
        EXPECT_GT(count, 0) << directory;
    }
}

TEST(Schema, TakesWhatIsWritten) {
    const TemporaryDirectory directory;
    Warnings warnings;
    Material material = buildMaterial(readMaterial(PATINA_EXAMPLE), testing::corePlugins(), warnings);
    saveBindings(material, collectBindings(material));
    setProperty(material, "tint", "Default Colour", "1e-7, .5,3.");
    addNode(material, testing::corePlugins(), "CoreSwizzle");
    writeMaterial(material.document, directory / "edited.xml");
    EXPECT_EQ(validate(directory / "edited.xml"), valid);
    material.document.source.clear();
    writeMaterial(material.document, directory / "new.xml");
    EXPECT_EQ(validate(directory / "new.xml"), valid);
}

struct Row {
    const char* body;
    int verdict;
};

constexpr Row rows[] = {
    // what others may add
    {R"(text<!-- c --><x:node xmlns:x="urn:x"/><layout><node/><binding/></layout>)", valid},
    {R"(<node id="a" type="T" by="me"><property name="P" kind="bool" value="No" by="me"/>text<note/></node>)",
     valid},
    {R"(<binding tag="" kind="uv" anything="1"><note/></binding>)", valid},
    // what is missing
    {R"(<node type="T"/>)", invalid},
    {R"(<node id="a"/>)", invalid},
    {R"(<node id="" type="T"/>)", invalid},
    {R"(<node id="a" type="T"><property kind="bool" value="Yes"/></node>)", invalid},
    {R"(<node id="a" type="T"><property name="P" value="Yes"/></node>)", invalid},
    {R"(<node id="a" type="T"><property name="P" kind="bool"/></node>)", invalid},
    {R"(<connection source="a" output="o" destination="b"/>)", invalid},
    {R"(<output name="colour" source="a"/>)", invalid},
    {R"(<binding kind="uv"/>)", invalid},
    {R"(<binding tag="a"/>)", invalid},
    // what is wrong
    {R"(<node id="a" type="T" version="1.0"/>)", invalid},
    {R"(<node id="a" type="T"><property name="P" kind="double" value="1"/></node>)", invalid},
    {R"(<binding tag="a" kind="stone"/>)", invalid},
};

TEST(Schema, AgreesWithTheReader) {
    const TemporaryDirectory directory;
    for (const auto& [body, verdict] : rows) {
        const std::string text = testing::documentText(body);
        EXPECT_EQ(validate(directory.write("a.xml", text)), verdict) << body;
        EXPECT_EQ(hostErrorOf([&] { parseMaterial(text, "a.xml"); }) == noError, verdict == valid) << body;
    }
    for (const std::string& text : {"<material version=\"1\" name=\"" + std::string(201, 'a') + "\"/>",
                                    std::string("<material version=\"2\" name=\"A\"/>"),
                                    std::string("<material version=\"1\" name=\"..\"/>"),
                                    std::string("<material version=\"1\" name=\"a/b\"/>"),
                                    std::string("<shader version=\"1\" name=\"A\"/>"),
                                    std::string("<material xmlns=\"urn:x\" version=\"1\" name=\"A\"/>")}) {
        EXPECT_EQ(validate(directory.write("a.xml", text)), invalid) << text;
        EXPECT_NE(hostErrorOf([&] { parseMaterial(text, "a.xml"); }), noError) << text;
    }
}

struct OutputRow {
    const char* name;
    int verdict;
};

constexpr OutputRow outputs[] = {
    {"colour", valid}, {"alpha", valid},   {"normal", valid},   {"emissive", valid},
    {"gloss", valid},  {"color", invalid}, {"Colour", invalid}, {"", invalid},
};

// The reader leaves it to an export to refuse other outputs.
TEST(Schema, TakesTheOutputsThatMaterialsHave) {
    const TemporaryDirectory directory;
    for (const auto& [name, verdict] : outputs) {
        const std::string output = std::string("<output name=\"") + name + "\" source=\"a\" port=\"p\"/>";
        EXPECT_EQ(validate(directory.write("a.xml", testing::documentText(output))), verdict) << name;
    }
}

struct ValueRow {
    const char* kind;
    const char* value;
    int verdict;
};

constexpr ValueRow values[] = {
    {"bool", "Yes", valid},      {"bool", "yes", invalid},
    {"bool", " No", invalid},    {"integer", "-7", valid},
    {"integer", "1.5", invalid}, {"integer", " 1", invalid},
    {"float", "-.5e+3", valid},  {"float", "5.", valid},
    {"float", ".", invalid},     {"float", "nan", invalid},
    {"float", "1,5", invalid},   {"colour", "1,.5, 0 ", valid},
    {"colour", "1, 2", invalid}, {"colour", "1, 2, 3, 4", invalid},
    {"string", " any ", valid},  {"enum", "", valid},
    {"node", "", valid},         {"Bool", "Yes", invalid},
};

TEST(Schema, ChecksValuesByTheirKind) {
    const TemporaryDirectory directory;
    for (const auto& [kind, value, verdict] : values) {
        const auto file = directory.write(
            "a.xml", testing::documentText(testing::node("a", "T", testing::property("P", kind, value))));
        EXPECT_EQ(validate(file), verdict) << kind << " \"" << value << '"';
    }
}

} // namespace
} // namespace patina
