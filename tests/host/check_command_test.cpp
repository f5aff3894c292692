#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::documentText;
using testing::maths;
using testing::node;
using testing::Outcome;
using testing::output;
using testing::property;
using testing::TemporaryDirectory;

Outcome patina(const std::vector<std::string>& arguments) { return testing::run(PATINA_COMMAND, arguments); }

const std::string sound =
    node("c", "CoreConstant", property("Name", "string", "Tint")) + output("colour", "c", "read");
const std::string doubtful = sound + maths("m", "Invert");

TEST(Check, PassesASoundMaterialAndWritesNothing) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("m.xml", documentText(sound)).string();
    const Outcome outcome = patina({"check", material});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, material + ": 0 errors, 0 warnings\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"m.xml"});
}

TEST(Check, ReportsEveryProblemOfEveryMaterialByLine) {
    const TemporaryDirectory directory;
    const std::string bad =
        directory
            .write("bad.xml", documentText(doubtful + connection("c", "nope", "m", "in_value1") +
                                           connection("c", "read", "m", "nope")))
            .string();
    const std::string gone = (directory / "gone.xml").string();
    const std::string good = directory.write("good.xml", documentText(sound)).string();
    const Outcome outcome = patina({"check", bad, gone, good});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, bad + ": 2 errors, 1 warning\n" + gone + ": 1 error, 0 warnings\n" + good +
                                  ": 0 errors, 0 warnings\n");
    EXPECT_EQ(outcome.errors,
              bad +
                  ":4: warning: node \"m\" (\"Maths\"): nothing that leaves the material needs this node; "
                  "connect it or remove it\n" +
                  bad + ":5: error: node \"c\" (\"Tint\") has no output \"nope\"; it has \"read\"\n" + bad +
                  ":6: error: node \"m\" (\"Maths\") has no input \"nope\"; it has \"in_value1\"\n" + gone +
                  ":1: error: cannot read this file: there is no such file or directory\n");
}

TEST(Check, GoesOnAfterABadElement) {
    const TemporaryDirectory directory;
    const std::string bad = directory
                                .write("bad.xml", documentText("<node id=\"n\"/>\n" + sound +
                                                               connection("n", "any", "c", "nope") +
                                                               "<output name=\"alpha\" source=\"c\"/>\n"
                                                               "<binding tag=\"B\" kind=\"fog\"/>\n"))
                                .string();
    const Outcome outcome = patina({"check", bad});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, bad + ": 4 errors, 0 warnings\n");
    EXPECT_EQ(outcome.errors, bad + ":2: error: the <node> element has no \"type\" attribute\n" + bad +
                                  ":5: error: node \"c\" (\"Tint\") has no input \"nope\"; it has none\n" +
                                  bad + ":6: error: the <output> element has no \"port\" attribute\n" + bad +
                                  ":7: error: binding \"B\" is of the unknown kind \"fog\"\n");
}

TEST(Check, LetsWarningsPassUnlessAsked) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("m.xml", documentText(doubtful)).string();
    EXPECT_EQ(patina({"check", material}).exitCode, 0);
    const Outcome strict = patina({"check", "--werror", "-q", material});
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_EQ(strict.output, "");
    EXPECT_NE(strict.errors.find("warning: node \"m\""), std::string::npos) << strict.errors;
}

TEST(Check, PrintsNoControlCharactersOfFileNames) {
    const TemporaryDirectory directory;
    const std::string material = directory.write("a\x1b\nb.xml", documentText(sound)).string();
    EXPECT_EQ(patina({"check", material}).output,
              (directory / "a  b.xml").string() + ": 0 errors, 0 warnings\n");
}

TEST(Check, NeedsAMaterial) { EXPECT_EQ(patina({"check"}).exitCode, 2); }

} // namespace
} // namespace patina
