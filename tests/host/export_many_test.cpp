// The command exports many materials, side by side, as a build wants it.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::documentText;
using testing::maths;
using testing::Outcome;
using testing::output;
using testing::readText;
using testing::TemporaryDirectory;
using testing::writeText;

using Names = std::vector<std::string>;

const std::string good = maths("m", "Invert") + output("colour", "m", "out_value");
const std::string bad = maths("m", "Invert") + output("colour", "m", "nope");

Outcome patina(const std::vector<std::string>& arguments) { return testing::run(PATINA_COMMAND, arguments); }

/// `patina export OPTIONS -o DIRECTORY/out FILES`.
Outcome exportInto(const TemporaryDirectory& directory, const Names& options, const Names& files) {
    Names arguments = {"export"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"-o", (directory / "out").string()});
    arguments.insert(arguments.end(), files.begin(), files.end());
    return patina(arguments);
}

std::string materialFile(const TemporaryDirectory& directory, const std::string& name,
                         const std::string& body = good) {
    return directory.write(name + ".xml", documentText(body, name)).string();
}

TEST(ExportMany, GivesTheSameHoweverManyRunAtOnce) {
    const TemporaryDirectory directory;
    Names files;
    for (int i = 0; i < 40; ++i) {
        files.push_back(materialFile(directory, "M" + std::to_string(i)));
    }
    const Outcome one = exportInto(directory, {}, files);
    EXPECT_EQ(one.exitCode, 0) << one.errors;
    EXPECT_EQ(one.output, "40 materials exported, 120 files changed\n");
    const std::string program = readText(directory / "out/M7.frag.cg");
    for (const char* jobs : {"0", "1", "3", "64"}) {
        std::filesystem::remove_all(directory / "out");
        const Outcome many = exportInto(directory, {"-j", jobs}, files);
        EXPECT_EQ(many.output, one.output) << jobs;
        EXPECT_EQ(many.errors, "") << jobs;
        EXPECT_EQ(readText(directory / "out/M7.frag.cg"), program) << jobs;
    }
}

TEST(ExportMany, ReportsEveryFailureInOrderAndExportsTheRest) {
    const TemporaryDirectory directory;
    Names files;
    std::string expected;
    for (int i = 0; i < 12; ++i) {
        files.push_back(materialFile(directory, "M" + std::to_string(i), i % 3 == 0 ? bad : good));
        if (i % 3 == 0) {
            expected += files.back() + ":3: error: node \"m\" (\"Maths\") has no output \"nope\"; it has "
                                       "\"out_value\"\n";
        }
    }
    const Outcome outcome = exportInto(directory, {"-j", "4"}, files);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, expected);
    EXPECT_EQ(outcome.output, "8 materials exported, 24 files changed\n");
}

TEST(ExportMany, LetsNoMaterialReplaceAnother) {
    const TemporaryDirectory directory;
    const std::string first = directory.write("a.xml", documentText(good, "Same")).string();
    const std::string second =
        directory
            .write("b.xml",
                   documentText(maths("other", "Invert") + output("colour", "other", "out_value"), "Same"))
            .string();
    const Outcome outcome = exportInto(directory, {"-j", "2"}, {first, second});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, second + ":1: error: this material has the name \"Same\" of that in " + first +
                                  ", and would replace its files; rename one of them, or export them into "
                                  "different directories\n");
    EXPECT_NE(readText(directory / "out/Same.frag.cg").find("node \"m\""), std::string::npos);
}

TEST(ExportMany, LeavesFilesAloneThatWouldNotChange) {
    const TemporaryDirectory directory;
    const Names files = {materialFile(directory, "A"), materialFile(directory, "B")};
    exportInto(directory, {}, files);
    const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
    for (const auto& entry : std::filesystem::directory_iterator(directory / "out")) {
        std::filesystem::last_write_time(entry, past);
    }
    writeText(directory / "out/B.vert.cg", "edited");
    const Outcome outcome = exportInto(directory, {}, files);
    EXPECT_EQ(outcome.output, "2 materials exported, 1 file changed\n");
    EXPECT_EQ(std::filesystem::last_write_time(directory / "out/A.vert.cg"), past);
    EXPECT_EQ(std::filesystem::last_write_time(directory / "out/B.frag.cg"), past);
    EXPECT_NE(readText(directory / "out/B.vert.cg"), "edited");
}

TEST(ExportMany, WritesDependencyFiles) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("a b#c$d.xml", documentText(good, "Rusty Nail")).string();
    for (const char* option : {"-MD", "--depfile"}) {
        std::filesystem::remove_all(directory / "out");
        EXPECT_EQ(exportInto(directory, {option, "-q"}, {material}).exitCode, 0);
        const std::string out = (directory / "out").string() + "/Rusty\\ Nail";
        const std::string text = readText(directory / "out/Rusty Nail.d");
        const std::string head = out + ".vert.cg " + out + ".frag.cg " + out +
                                 ".bindings.xml: " + directory.path().string() + "/a\\ b\\#c$$d.xml \\\n ";
        EXPECT_EQ(text.substr(0, head.size()), head);
        EXPECT_NE(text.find("corenodes"), std::string::npos) << text;
    }
}

// Make itself reads the rules.

/// Whether Make would run the recipe of a rule file for a target, in a directory.
bool isOutdated(const std::filesystem::path& rules, const std::string& target,
                const std::filesystem::path& directory) {
    // the rule has no recipe, so one is put behind it
    writeText(directory / "Makefile", readText(rules) + "\t@echo outdated\n");
    const Outcome outcome =
        testing::run("make", {"--no-print-directory", "-C", directory.string(), "--", target});
    EXPECT_EQ(outcome.exitCode, 0) << target << ": " << outcome.errors;
    return outcome.output == "outdated\n";
}

TEST(ExportMany, WritesDependencyFilesThatMakeReads) {
    namespace fs = std::filesystem;
    const fs::file_time_type now = fs::file_time_type::clock::now();
    const TemporaryDirectory directory;
    for (const char* odd : {"plain", "a b", "a  b", "a#b", "a$b", "a%b", "a:b", "a\\b", "a\\ b", "a\\\\ b",
                            "a\\#b", "a\\%b", "a\\:b", "a\\", "a|b", "%", "$(a)b"}) {
        // the directory's name stands in the targets, the document's in the prerequisites
        const auto work = directory / "work";
        fs::create_directories(work / odd);
        writeText(work / odd / odd, documentText(good, "Name"));
        const Outcome exported = testing::run("sh", {"-c", R"(cd "$1" && "$0" export -q -MD -o "$2" "$2/$2")",
                                                     PATINA_COMMAND, work.string(), odd});
        ASSERT_EQ(exported.exitCode, 0) << exported.errors;
        const auto rules = work / odd / "Name.d";
        const std::string target = std::string(odd) + "/Name.bindings.xml";
        fs::last_write_time(work / target, now + std::chrono::hours(1));
        EXPECT_FALSE(isOutdated(rules, target, work)) << odd << ": " << readText(rules);
        fs::last_write_time(work / odd / odd, now + std::chrono::hours(2));
        EXPECT_TRUE(isOutdated(rules, target, work)) << odd << ": " << readText(rules);
        fs::remove_all(work);
    }
}

TEST(ExportMany, ReadsMaterialNamesWithPercentSigns) {
    const TemporaryDirectory directory;
    const std::string material = materialFile(directory, "50% grey");
    EXPECT_EQ(exportInto(directory, {"-MD", "-q"}, {material}).exitCode, 0);
    const std::string text = readText(directory / "out/50% grey.d");
    EXPECT_NE(text.find("/out/50\\%\\ grey.bindings.xml: "), std::string::npos) << text;
    EXPECT_NE(text.find("/50%\\ grey.xml \\\n"), std::string::npos) << text;
}

TEST(ExportMany, GoesOnWithTheThreadsThatThereAre) {
    if (PATINA_TEST_SANITIZED) {
        GTEST_SKIP() << "sanitizers need more addresses than this leaves";
    }
    const TemporaryDirectory directory;
    Names words = {"-c",           "ulimit -S -s 4000000 && ulimit -S -v 2000000 && exec \"$0\" \"$@\"",
                   PATINA_COMMAND, "export",
                   "-j",           "64",
                   "-o",           (directory / "out").string()};
    for (int i = 0; i < 20; ++i) {
        words.push_back(materialFile(directory, "M" + std::to_string(i)));
    }
    const Outcome outcome = testing::run("bash", words); // no thread has room for its stack
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "20 materials exported, 60 files changed\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(ExportMany, RefusesWrongOptions) {
    for (const Names& options : {Names{"-j", "-1"}, Names{"-j", "many"}, Names{"-j", "1000"},
                                 Names{"--framework", "other"}, Names{"-M"}}) {
        const TemporaryDirectory directory;
        EXPECT_EQ(exportInto(directory, options, {materialFile(directory, "A")}).exitCode, 2) << options[0];
        EXPECT_FALSE(std::filesystem::exists(directory / "out"));
    }
}

TEST(ExportOptions, ReachTheProgram) {
    const TemporaryDirectory directory;
    exportInto(directory, {"--framework", "none", "--annotate"}, {materialFile(directory, "A")});
    EXPECT_EQ(readText(directory / "out/A.frag.cg").find("QelSrgbToLinear"), std::string::npos);
    EXPECT_NE(readText(directory / "out/A.frag.cg").find("\t// node \"m\" (\"Maths\"): -> half out_value\n"),
              std::string::npos);
}

} // namespace
} // namespace patina
