#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::documentText;
using testing::expectError;
using testing::hostErrorOf;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;
using testing::readText;
using testing::TemporaryDirectory;
using testing::writeText;

constexpr const char* savedFile = "Sample.bindings.xml";
constexpr const char* advice = "; mend this file, or move it away to export without what was changed in it";

std::string savedText(const std::string& elements) {
    return "<bindings version=\"1\" material=\"Sample\">\n" + elements + "</bindings>\n";
}

SavedBindings saved(const std::string& elements) { return parseBindings(savedText(elements), savedFile); }

// Reading

TEST(ParseBindings, GivesEveryAttribute) {
    const SavedBindings read =
        saved("<program stage=\"vertex\"/>\n"
              "<binding kind=\"float\" tag=\"Tint\" default=\"1, 0\" studio=\"&#228;\">"
              "<landing stage=\"vertex\"/></binding>\n"
              "<binding kind=\"uv\" tag=\"map1\"/>");
    EXPECT_EQ(read.file, savedFile);
    ASSERT_EQ(read.bindings.size(), 2U);
    EXPECT_EQ(read.bindings[0].name, "Tint");
    EXPECT_EQ(read.bindings[0].kind, "float");
    EXPECT_EQ(read.bindings[0].line, 3);
    EXPECT_EQ(read.bindings[0].annotations,
              (Annotations{{"kind", "float"}, {"tag", "Tint"}, {"default", "1, 0"}, {"studio", "\xC3\xA4"}}));
    EXPECT_EQ(read.bindings[1].name, "map1");
}

struct MalformedRow {
    const char* what;
    std::string text;
    int line;
    std::vector<std::string> pieces;
};

const MalformedRow malformed[] = {
    {"nothing", "", 1, {"XML"}},
    {"no XML", "tag=Tint", 1, {"XML"}},
    {"a torn file", savedText("<binding kind=\"uv\" tag=\"a\"/>").substr(0, 60), 2, {"XML"}},
    {"a document type", "<!DOCTYPE bindings>\n<bindings version=\"1\"/>", 1, {"document type"}},
    {"an entity bomb",
     "<!DOCTYPE b [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;\">]>\n<bindings version=\"1\"/>",
     1,
     {"document type"}},
    {"another document", "<material version=\"1\" name=\"a\"/>", 1, {"<material>", "<bindings>"}},
    {"no version", "<bindings/>", 1, {"\"version\""}},
    {"another version", "<bindings version=\"2\"/>", 1, {"\"2\"", "version 1"}},
    {"no tag", savedText("<binding kind=\"uv\"/>"), 2, {"<binding>", "\"tag\""}},
    {"no kind", savedText("<binding tag=\"a\"/>"), 2, {"<binding>", "\"kind\""}},
    {"two of one name",
     savedText("<binding kind=\"uv\" tag=\"a\"/>\n<binding kind=\"float\" tag=\"a\"/>"),
     3,
     {"another", "\"a\""}},
    {"a default that is no number",
     savedText("<binding kind=\"float\" tag=\"a\" default=\"1, red\"/>"),
     2,
     {"\"a\"", "\"1, red\""}},
    {"a default beyond all floats",
     savedText("<binding kind=\"float\" tag=\"a\" default=\"1e39\"/>"),
     2,
     {"\"a\"", "\"1e39\"", "finite"}},
    {"an empty default", savedText("<binding kind=\"float\" tag=\"a\" default=\"\"/>"), 2, {"\"a\"", "\"\""}},
    {"an unknown unit",
     savedText("<binding kind=\"float\" tag=\"a\" uiunittype=\"degrees\"/>"),
     2,
     {"\"a\"", "\"degrees\"", "angular"}},
};

TEST(ParseBindings, RefusesWhatItWouldLose) {
    for (const MalformedRow& row : malformed) {
        SCOPED_TRACE(row.what);
        const std::string error = hostErrorOf([&] { parseBindings(row.text, savedFile); });
        const std::string place = std::string(savedFile) + ":" + std::to_string(row.line);
        for (const std::string& piece : row.pieces) {
            expectError(error, place, {piece, advice});
        }
    }
}

TEST(ParseBindings, LeavesOtherNamespacesAlone) {
    EXPECT_EQ(
        saved("<binding xmlns:x=\"urn:x\" x:default=\"1\" kind=\"uv\" tag=\"a\"/>").bindings[0].annotations,
        (Annotations{{"kind", "uv"}, {"tag", "a"}}));
}

TEST(ParseBindings, TakesUnitsInAnyCase) {
    EXPECT_EQ(saved("<binding kind=\"float\" tag=\"a\" uiunittype=\"Angular\"/>"
                    "<binding kind=\"float\" tag=\"b\" uiunittype=\"RAW\"/>")
                  .bindings.size(),
              2U);
}

TEST(ReadBindings, TakesAMissingFileForNone) {
    const TemporaryDirectory directory;
    EXPECT_TRUE(readBindings(directory / "missing.xml").bindings.empty());
    EXPECT_TRUE(readBindings(directory / "missing/too.xml").bindings.empty());
}

TEST(ReadBindings, ReportsAnUnreadableFile) {
    if (std::filesystem::exists("/proc/self/mem")) {
        expectError(hostErrorOf([] { readBindings("/proc/self/mem"); }), "/proc/self/mem:1",
                    {"cannot read this file", advice});
    }
    const TemporaryDirectory directory;
    const auto file = directory.write("a.xml", savedText(""));
    std::filesystem::permissions(file, std::filesystem::perms::none);
    if (std::ifstream(file)) {
        GTEST_SKIP() << "permissions do not bind this user";
    }
    expectError(hostErrorOf([&] { readBindings(file); }), file.string() + ":1",
                {"permission denied", advice});
}

// Carrying over

/// Bindings by hand: "Tint", a float of two, and "map1", a uv.
std::vector<ExportedBinding> freshBindings() {
    const auto tint = createBinding(BindingKind::Float, "Tint", 2);
    tint->parseDefault("3");
    const auto map = createBinding(BindingKind::Uv, "map1", 1);
    map->uvSet = "set1";
    return {{tint, artistValues(*tint), {}}, {map, artistValues(*map), {}}};
}

struct CarryRow {
    const char* what;
    std::string saved;
    Annotations tint; ///< the artist's keys afterwards
    Annotations map;
};

const Annotations freshTint = {{"default", "3, 3"}};
const Annotations freshMap = {{"uv", "set1"}};

const CarryRow carryRows[] = {
    {"nothing", "", freshTint, freshMap},
    {"a default as exported", "<binding kind='float' tag='Tint' default='1, 1' exported_default='1, 1'/>",
     freshTint, freshMap},
    {"a changed default",
     "<binding kind='float' tag='Tint' default='5, 6' exported_default='1, 1'/>",
     {{"default", "5, 6"}},
     freshMap},
    {"a default where none was exported",
     "<binding kind='uv' tag='map1' default='set9'/>",
     freshTint,
     {{"uv", "set1"}, {"default", "set9"}}},
    {"a removed default", "<binding kind='float' tag='Tint' exported_default='1, 1'/>", freshTint, freshMap},
    {"another kind", "<binding kind='colour' tag='Tint' uilabel='Shade'/>", freshTint, freshMap},
    {"another name", "<binding kind='float' tag='tint' default='5, 6' exported_default='1, 1'/>", freshTint,
     freshMap},
    {"what the graph leaves empty",
     "<binding kind='float' tag='Tint' uilabel='Shade' uv='set2' uiunittype='linear'/>",
     {{"uv", "set2"}, {"uilabel", "Shade"}, {"uiunittype", "linear"}, {"default", "3, 3"}},
     freshMap},
    {"what the graph sets", "<binding kind='uv' tag='map1' uv='set2'/>", freshTint, {{"uv", "set2"}}},
    {"what the graph set otherwise",
     "<binding kind='uv' tag='map1' uv='set2' exported_uv='set0'/>",
     freshTint,
     {{"uv", "set2"}}},
    {"a default from before there was a second component",
     "<binding kind='float' tag='Tint' default='5' exported_default='1'/>",
     {{"default", "5, 3"}},
     freshMap},
    {"one number for all components",
     "<binding kind='float' tag='Tint' default='5' exported_default='1, 1'/>",
     {{"default", "5, 5"}},
     freshMap},
    {"more components than there are",
     "<binding kind='float' tag='Tint' default='5, 6, 7' exported_default='1, 1, 1'/>",
     {{"default", "5, 6"}},
     freshMap},
    {"what the graph set once", "<binding kind='float' tag='Tint' uilabel='Old' exported_uilabel='Old'/>",
     freshTint, freshMap},
    {"streams",
     "<binding kind='uv' tag='map1' stream_type='short' stream_normalize='1' dataset_modifiers=''/>",
     freshTint,
     {{"uv", "set1"}, {"stream_type", "s16n"}, {"dataset_modifiers", ""}}},
    {"what is not the artist's",
     "<binding kind='float' tag='Tint' desc='mine' min='7' gui='slider' basic_colour='what?'/>", freshTint,
     freshMap},
};

TEST(CarryOverArtistValues, TakesWhatTheArtistChanged) {
    for (const CarryRow& row : carryRows) {
        std::vector<ExportedBinding> bindings = freshBindings();
        Warnings warnings;
        carryOverArtistValues(saved(row.saved), bindings, warnings);
        EXPECT_EQ(artistValues(*bindings[0].binding), row.tint) << row.what;
        EXPECT_EQ(artistValues(*bindings[1].binding), row.map) << row.what;
        EXPECT_EQ(bindings[0].exported, freshTint) << row.what;
        EXPECT_EQ(bindings[1].exported, freshMap) << row.what;
        EXPECT_EQ(bindings[0].binding->description, "") << row.what;
    }
}

// In the document

std::string floatConstant(const std::string& name) {
    return node("c", "CoreConstant",
                property("Name", "string", name) + property("Constant Type", "enum", "Scalar") +
                    property("Default Scalar", "float", "3"));
}

/// The artist's keys of the only binding, with what the document saves of it.
Annotations restored(const std::string& elements, Warnings& warnings) {
    const Material material = testing::built(floatConstant("Tint") + elements);
    const BindingCollection bindings = collectBindings(material);
    restoreSavedValues(material, bindings, warnings);
    return artistValues(*bindings.bindings.at(0));
}

struct RestoreRow {
    const char* what;
    std::string saved;
    Annotations values;
};

const RestoreRow restoreRows[] = {
    {"nothing", "", {{"default", "3"}}},
    {"a default", "<binding kind='float' tag='Tint' default='5'/>", {{"default", "5"}}},
    {"a default as the graph had it",
     "<binding kind='float' tag='Tint' default='1' exported_default='1'/>",
     {{"default", "3"}}},
    {"a default as the artist changed it",
     "<binding kind='float' tag='Tint' default='5' exported_default='1'/>",
     {{"default", "5"}}},
    {"what the graph leaves empty",
     "<binding kind='float' tag='Tint' uilabel='Shade'/>",
     {{"uilabel", "Shade"}, {"default", "3"}}},
    {"what is not the artist's",
     "<binding kind='float' tag='Tint' desc='mine' studio='x'/>",
     {{"default", "3"}}},
};

TEST(RestoreSavedValues, TakesWhatTheArtistChanged) {
    for (const RestoreRow& row : restoreRows) {
        Warnings warnings;
        EXPECT_EQ(restored(row.saved, warnings), row.values) << row.what;
        EXPECT_TRUE(warnings.empty()) << row.what;
    }
}

TEST(RestoreSavedValues, WarnsOfWhatNoNodePresents) {
    Warnings warnings;
    restored("<binding kind='float' tag='Gone' default='5' uilabel='Shade'/>\n"
             "<binding kind='float' tag='Untouched' default='1' exported_default='1' desc='x'/>\n"
             "<binding kind='uv' tag='Tint' default='set2'/>",
             warnings);
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_NE(
        warnings[0].text.find("the material has no float binding \"Gone\", and what is saved for it has no "
                              "effect: default \"5\", uilabel \"Shade\""),
        std::string::npos)
        << warnings[0].text;
    EXPECT_NE(warnings[1].text.find("no uv binding \"Tint\""), std::string::npos) << warnings[1].text;
}

TEST(RestoreSavedValues, LeavesThoseOfPlaceholdersAlone) {
    Warnings warnings;
    const Material material =
        buildMaterial(testing::parsed(node("x", "StudioLamp", property("Name", "string", "Lamp")) +
                                      "<binding kind='float' tag='Lamp' default='5'/>"),
                      testing::corePlugins(), warnings);
    ASSERT_EQ(warnings.size(), 1U); // of the placeholder
    restoreSavedValues(material, BindingCollection(), warnings);
    EXPECT_EQ(warnings.size(), 1U);
}

TEST(SaveBindings, KeepsWhatMayBeOfAMissingType) {
    Warnings warnings;
    Material material =
        buildMaterial(testing::parsed(node("x", "StudioLamp", property("Name", "string", "Lamp")) +
                                      "<binding kind='float' tag='Lamp_Glow' default='5'/>"),
                      testing::corePlugins(), warnings);
    saveBindings(material, collectBindings(material));
    ASSERT_EQ(material.document.bindings.size(), 1U);
    EXPECT_EQ(material.document.bindings[0].name, "Lamp_Glow");
    removeNode(material, "x");
    saveBindings(material, collectBindings(material));
    EXPECT_TRUE(material.document.bindings.empty());
}

TEST(RestoreSavedValues, RefusesWhatMeansNothing) {
    Warnings warnings;
    const std::string text =
        hostErrorOf([&] { restored("<binding kind='float' tag='Tint'\n default='red'/>", warnings); });
    EXPECT_NE(text.find("error: binding \"Tint\": the default \"red\" is no list of finite numbers"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.rfind("sample.xml:", 0), 0U) << text;
}

TEST(RestoreSavedValues, ChangesTheBindingsFileAlone) {
    const std::string body = floatConstant("Tint") + output("colour", "c", "read");
    const ExportedMaterial plain = testing::exported(body);
    const ExportedMaterial saved = testing::exported(body + "<binding kind='float' tag='Tint' default='5'/>");
    EXPECT_EQ(saved.fragmentProgram.content, plain.fragmentProgram.content);
    EXPECT_EQ(saved.vertexProgram.content, plain.vertexProgram.content);
    EXPECT_NE(saved.bindings.content.find(" default=\"5\" exported_default=\"5\""), std::string::npos)
        << saved.bindings.content;
}

TEST(RestoreSavedValues, TakesBackWhatWasSavedOfALiveMaterial) {
    Material material = testing::built(floatConstant("Tint"));
    const BindingCollection bindings = collectBindings(material);
    bindings.bindings.at(0)->parseDefault("7");
    saveBindings(material, bindings);
    ASSERT_EQ(material.document.bindings.size(), 1U);
    EXPECT_EQ(*findAnnotation(material.document.bindings[0].annotations, "default"), "7");
    EXPECT_EQ(*findAnnotation(material.document.bindings[0].annotations, "exported_default"), "3");

    Warnings warnings;
    const BindingCollection again = collectBindings(material);
    restoreSavedValues(material, again, warnings);
    EXPECT_EQ(artistValues(*again.bindings.at(0)), (Annotations{{"default", "7"}}));
}

TEST(CarryOverArtistValues, WarnsOfWhatIsLost) {
    std::vector<ExportedBinding> bindings = freshBindings();
    Warnings warnings;
    carryOverArtistValues(
        saved("<binding kind='float' tag='Gone' default='5' exported_default='1' uilabel='Shade'/>\n"
              "<binding kind='float' tag='Untouched' default='1' exported_default='1' desc='x'/>\n"
              "<binding kind='uv' tag='Tint' default='set2'/>"),
        bindings, warnings);
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(
        diagnosticText(warnings[0].position, "warning", warnings[0].text),
        "Sample.bindings.xml:2: warning: the material has no float binding \"Gone\" any more, and what was "
        "changed in this file goes with it: default \"5\", uilabel \"Shade\"");
    EXPECT_EQ(
        diagnosticText(warnings[1].position, "warning", warnings[1].text),
        "Sample.bindings.xml:4: warning: the material has no uv binding \"Tint\" any more, and what was "
        "changed in this file goes with it: default \"set2\"");
}

TEST(CarryOverArtistValues, SetsADefaultThatTheGraphHasNoMore) {
    std::vector<ExportedBinding> bindings = {{createBinding(BindingKind::Float, "Tint", 1), {}, {}}};
    Warnings warnings;
    carryOverArtistValues(saved("<binding kind='float' tag='Tint' default='5' exported_default='1'/>"),
                          bindings, warnings);
    EXPECT_EQ(bindings[0].binding->formatDefault(), "5");
    EXPECT_TRUE(warnings.empty());
}

/// A binding whose code fails.
class BrokenBinding : public Binding {
public:
    using Binding::Binding;
    void readAnnotations(xmlNode* /*element*/) override { throw ShaderError("out of order"); }
};

TEST(CarryOverArtistValues, NamesABindingThatRefuses) {
    std::vector<ExportedBinding> bindings = {
        {std::make_shared<BrokenBinding>(BindingKind::Normal, "N", 3U), {}, {}}};
    Warnings warnings;
    expectError(hostErrorOf([&] {
                    carryOverArtistValues(saved("<binding kind='normal' tag='N' uilabel='x'/>"), bindings,
                                          warnings);
                }),
                "Sample.bindings.xml:2", {"\"N\"", "out of order", advice});
}

/// A binding that finds no memory.
class HungryBinding : public Binding {
public:
    using Binding::Binding;
    void readAnnotations(xmlNode* /*element*/) override { throw std::bad_alloc(); }
};

TEST(CarryOverArtistValues, MayRunOutOfMemory) {
    std::vector<ExportedBinding> bindings = {
        {std::make_shared<HungryBinding>(BindingKind::Normal, "N", 3U), {}, {}}};
    Warnings warnings;
    EXPECT_THROW(
        carryOverArtistValues(saved("<binding kind='normal' tag='N' uilabel='x'/>"), bindings, warnings),
        std::bad_alloc);
}

// Exporting again

/// A directory with a material that reads a tint, and its exports.
class Studio {
public:
    std::string tint = "0.5, 0.5, 0.5";
    Warnings warnings;

    std::string exportAgain(const std::string& tintName = "Tint") {
        const auto material = directory_.write(
            "m.xml",
            documentText(
                node("c", "CoreConstant",
                     property("Name", "string", tintName) + property("Default Colour", "colour", tint)) +
                node("uv", "CoreUv") + node("t", "CoreTexture") + maths("m", "Multiply") +
                connection("uv", "read", "t", "in_uv") + connection("t", "out_colour", "m", "in_value1") +
                connection("c", "read", "m", "in_value2") + output("colour", "m", "out_value")));
        exportDocument(material, directory_.path(), testing::corePlugins(), warnings);
        return text();
    }
    std::string text() const { return readText(directory_ / savedFile); }
    /// Replaces a text that is there.
    void edit(const std::string& from, const std::string& to) const {
        std::string content = text();
        const std::size_t place = content.find(from);
        ASSERT_NE(place, std::string::npos) << from << " in: " << content;
        writeText(directory_ / savedFile, content.replace(place, from.size(), to));
    }
    /// What stands under a key of a binding, or "(none)".
    std::string annotation(const std::string& name, const std::string& key) const {
        for (const SavedBinding& binding : readBindings(directory_ / savedFile).bindings) {
            const std::string* found = findAnnotation(binding.annotations, key);
            if (binding.name == name && found != nullptr) {
                return *found;
            }
        }
        return "(none)";
    }
    std::vector<std::string> names() const { return directory_.names(); }

private:
    TemporaryDirectory directory_;
};

TEST(ExportAgain, GivesTheSameBytes) {
    Studio studio;
    const std::string first = studio.exportAgain();
    EXPECT_EQ(studio.exportAgain(), first);
    EXPECT_EQ(studio.annotation("Tint", "exported_default"), "0.5, 0.5, 0.5");
}

TEST(ExportAgain, FollowsTheGraphUntilTheArtistChangesTheDefault) {
    Studio studio;
    studio.exportAgain();
    studio.tint = "0.25, 0.25, 0.25";
    studio.exportAgain();
    EXPECT_EQ(studio.annotation("Tint", "default"), "0.25, 0.25, 0.25");

    studio.edit(" default=\"0.25, 0.25, 0.25\"", " default=\"1, 0.1, 0\"");
    for (const char* tint : {"0.25, 0.25, 0.25", "0.75, 0.75, 0.75", "0.75, 0.75, 0.75"}) {
        studio.tint = tint;
        studio.exportAgain();
        EXPECT_EQ(studio.annotation("Tint", "default"), "1, 0.1, 0");
        EXPECT_EQ(studio.annotation("Tint", "exported_default"), tint);
    }

    studio.edit(" default=\"1, 0.1, 0\"", "");
    studio.exportAgain();
    EXPECT_EQ(studio.annotation("Tint", "default"), "0.75, 0.75, 0.75") << "the graph's again";
    EXPECT_TRUE(studio.warnings.empty());
}

TEST(ExportAgain, KeepsEveryKeyOfTheArtist) {
    Studio studio;
    studio.exportAgain();
    studio.edit(
        "tag=\"Uv\"",
        "tag=\"Uv\" default=\"map2\" uv=\"map3\" uilabel=\"Map\" uiunittype=\"angular\" stream_type=\"f16\" "
        "dataset_modifiers=\"\"");
    studio.edit("tag=\"Texture\"", "tag=\"Texture\" default=\"rust &amp; paint.dds\"");
    const std::string once = studio.exportAgain();
    EXPECT_EQ(studio.exportAgain(), once);
    EXPECT_NE(
        once.find("<binding kind=\"uv\" components=\"1\" tag=\"Uv\" uv=\"map3\" uilabel=\"Map\" "
                  "uiunittype=\"angular\" default=\"map2\" stream_type=\"f16\" dataset_modifiers=\"\">\n"),
        std::string::npos)
        << once;
    EXPECT_NE(once.find("<binding kind=\"texture\" components=\"1\" tag=\"Texture\" "
                        "default=\"rust &amp; paint.dds\" srgb=\"Yes\">\n"),
              std::string::npos)
        << once;
}

TEST(ExportAgain, WarnsWhenARenamedNodeLosesAValue) {
    Studio studio;
    studio.exportAgain();
    studio.edit(" default=\"0.5, 0.5, 0.5\"", " default=\"1, 0, 0\"");
    studio.exportAgain("Shade");
    ASSERT_EQ(studio.warnings.size(), 1U);
    EXPECT_NE(studio.warnings[0].text.find("\"Tint\""), std::string::npos);
    EXPECT_EQ(studio.annotation("Shade", "default"), "0.5, 0.5, 0.5");
}

TEST(ExportAgain, ChangesNothingWhenTheFileIsMalformed) {
    Studio studio;
    studio.exportAgain();
    studio.edit("</bindings>", "");
    const std::string torn = studio.text();
    const auto names = studio.names();
    studio.tint = "1, 1, 1";
    const std::string error = hostErrorOf([&] { studio.exportAgain(); });
    EXPECT_NE(error.find("Sample.bindings.xml:"), std::string::npos) << error;
    EXPECT_NE(error.find(advice), std::string::npos) << error;
    EXPECT_EQ(studio.text(), torn);
    EXPECT_EQ(studio.names(), names);
}

/// Empties the default of a binding and fills it again through the file.
TEST(FileAnnotations, RememberAnEmptiedDefault) {
    const auto fresh = [] {
        const auto map = createBinding(BindingKind::Uv, "map1", 1);
        map->parseDefault("set1");
        map->datasetModifiers = "";
        return std::vector<ExportedBinding>{{map, artistValues(*map), {}}};
    };
    Warnings warnings;
    std::vector<ExportedBinding> bindings = fresh();
    carryOverArtistValues(saved("<binding kind='uv' tag='map1' default='' exported_default='set1' "
                                "dataset_modifiers='oneminus|v' exported_dataset_modifiers=''/>"),
                          bindings, warnings);
    const Annotations expected = {{"tag", "map1"},
                                  {"default", ""},
                                  {"dataset_modifiers", "oneminus|v"},
                                  {"exported_default", "set1"},
                                  {"exported_dataset_modifiers", ""}};
    EXPECT_EQ(fileAnnotations(bindings[0]), expected);
    const SavedBindings again = parseBindings(printBindings({"Sample", {}, bindings}), savedFile);
    bindings = fresh();
    carryOverArtistValues(again, bindings, warnings);
    EXPECT_EQ(fileAnnotations(bindings[0]), expected);
}

} // namespace
} // namespace patina
