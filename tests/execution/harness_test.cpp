// The harness bites: it finds the faults that are put into programs here.

#include "tests/execution/execution.h"
#include "tests/execution/inputs.h"
#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace patina::testing {
namespace {

struct Fault {
    const char* type;
    std::vector<Setting> settings;
    std::vector<std::pair<const char*, int>> inputs; ///< ports and widths
    const char* output;
    const char* right; ///< in the program
    const char* wrong;
    bool isFloat = true;
};

const std::vector<std::pair<const char*, int>> twoColours = {{"in_value1", 3}, {"in_value2", 3}};

Setting function(const char* name) { return choice("Function", name); }
Setting mode(const char* name) { return choice("Mode", name); }

const Fault faults[] = {
    {"CoreMaths",
     {function("Addition")},
     twoColours,
     "out_value",
     "in_value1 + in_value2",
     "in_value1 - in_value2"},
    {"CoreMaths",
     {function("Addition")},
     twoColours,
     "out_value",
     "in_value1 + in_value2",
     "in_value1 - in_value2",
     false},
    {"CoreMaths",
     {function("Multiply")},
     twoColours,
     "out_value",
     "in_value1 * in_value2",
     "in_value1 * in_value2 * 1.000001f"},
    {"CoreMaths",
     {function("Multiply")},
     twoColours,
     "out_value",
     "in_value1 * in_value2",
     "in_value1 * in_value2 * 1.01f",
     false},
    {"CoreMaths",
     {function("SmoothStep")},
     {{"in_value1", 3}, {"in_value2", 3}, {"in_blend", 1}},
     "out_value",
     "smoothstep( 0, 1, in_blend )",
     "in_blend"},
    {"CoreMaths",
     {function("Compare")},
     {{"in_value1", 1}, {"in_value2", 1}, {"in_test1", 1}, {"in_test2", 1}},
     "out_value",
     "in_test1 < in_test2",
     "in_test1 <= in_test2"},
    {"CoreMaths",
     {function("Dot Product")},
     twoColours,
     "out_value",
     "dot( in_value1, in_value2 )",
     "dot( in_value1.xy, in_value2.xy )"},
    {"CoreMaths",
     {function("Floor")},
     {{"in_value1", 2}},
     "out_value",
     "floor( in_value1 )",
     "trunc( in_value1 )"},
    {"CoreMaths",
     {function("Frac")},
     {{"in_value1", 2}},
     "out_value",
     "frac( in_value1 )",
     "in_value1 - trunc( in_value1 )"},
    {"CoreLayerBlend",
     {mode("Overlay")},
     twoColours,
     "out_value",
     "in_value1 < in_half",
     "in_value2 < in_half"},
    {"CoreLayerBlend",
     {mode("Vivid Light")},
     twoColours,
     "out_value",
     "in_value2 < in_half",
     "in_value2 <= in_half"},
    {"CoreLayerBlend", {mode("Exclusion")}, twoColours, "out_value", "2.0f*", "1.999f*"},
    {"CoreSwizzle", {}, {{"in_vec", 3}}, "out_y", "in_vec.y", "in_vec.z"},
    {"CoreAnimatedUv",
     {mode("Basic")},
     {{"in_frame", 1}, {"in_uv", 2}},
     "out_uv2",
     "floor( st2 )",
     "floor( st1 )"},
    {"CoreTexture",
     {{"Name", "string", "Picture"}},
     {{"in_uv", 2}},
     "out_colour",
     "value.xyz = QelSrgbToLinear( value.xyz );",
     ""},
    {"CoreTexture", {{"Name", "string", "Picture"}}, {{"in_uv", 2}}, "out_colour", "2.4", "2.2", false},
    {"CoreTexture",
     {{"Name", "string", "Picture"}},
     {{"in_uv", 2}},
     "out_colour",
     "colour <= 0.04045",
     "colour <= 0.1"},
    {"CoreTexture",
     {{"Name", "string", "Picture"}, choice("Colour Type", "DXT5 Normal")},
     {{"in_uv", 2}},
     "out_colour",
     "value.ag",
     "value.rg",
     false},
};

Case makeCase(const Fault& fault) {
    Case made = {fault.type, fault.wrong, {}, {}};
    std::vector<PortOf> sources;
    for (const auto& [port, width] : fault.inputs) {
        sources.push_back(made.graph.addInput(InputKind::Varying, width));
    }
    const std::size_t node = made.graph.add(fault.type, fault.settings);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        made.graph.connect(sources[i], node, fault.inputs[i].first);
    }
    made.graph.shown = {node, fault.output};
    if (fault.isFloat) {
        made.graph.demandFloat(made.graph.shown, Reference(made.graph).shownWidth());
    }
    made.inputs = fault.type == std::string("CoreTexture")
                      ? texelCentres(2)
                      : inputSets(made.graph, Numbers::Wide, 64, fault.wrong);
    return made;
}

bool replaceAll(std::string& text, const std::string& right, const std::string& wrong) {
    bool isFound = false;
    for (std::size_t at = text.find(right); at != std::string::npos;
         at = text.find(right, at + wrong.size())) {
        text.replace(at, right.size(), wrong);
        isFound = true;
    }
    return isFound;
}

using HarnessExecution = Execution;

TEST_F(HarnessExecution, FindsWhatIsWrong) {
    for (const Fault& fault : faults) {
        SCOPED_TRACE(std::string(fault.right) + " -> " + fault.wrong);
        const Case shown = makeCase(fault);
        ShownPrograms programs = exportShown(shown.graph);
        const Outcome before = compare(shown, executor().draw(programs, shown.graph, shown.inputs));
        EXPECT_EQ(before.mismatches, std::vector<std::string>());
        const bool isInVertex = replaceAll(programs.vertex, fault.right, fault.wrong);
        const bool isInFragment = replaceAll(programs.fragment, fault.right, fault.wrong);
        EXPECT_TRUE(isInVertex || isInFragment) << programs.vertex << programs.fragment;
        const Outcome after = compare(shown, executor().draw(programs, shown.graph, shown.inputs));
        EXPECT_FALSE(after.mismatches.empty());
    }
}

TEST_F(HarnessExecution, MismatchesNameInputsExpectationAndBound) {
    Case shown = {"CoreMaths", "sum", {}, {{{"In0", {1.5F, 0, 0, 0}}, {"In1", {0.1F, 0, 0, 0}}}}};
    const PortOf sources[] = {shown.graph.addInput(InputKind::Varying, 1),
                              shown.graph.addInput(InputKind::Varying, 1)};
    const std::size_t node = shown.graph.add("CoreMaths", {function("Addition")});
    shown.graph.connect(sources[0], node, "in_value1");
    shown.graph.connect(sources[1], node, "in_value2");
    shown.graph.shown = {node, "out_value"};
    const Outcome outcome = compare(shown, {{2, 1.6F, 1.6F, 1}});
    ASSERT_EQ(outcome.mismatches.size(), 1U);
    EXPECT_EQ(
        outcome.mismatches[0].substr(0, 97),
        "In0 = (1.5, 0, 0, 0) In1 = (0.10000000149011612, 0, 0, 0) gives component 0 = 2, expected 1.60000");
    EXPECT_NE(outcome.mismatches[0].find(", bound 0.0017"), std::string::npos) << outcome.mismatches[0];
}

TEST(Tally, FallsShortOfItsMinimum) {
    const Tally minimum = readMinimum("One: a\t2\t20\t200\nOne: b\t1\t10\t100\nTwo: c\t1\t10\t100\n");
    const Tally enough = {{"One: a", {2, 20, 200}}, {"One: b", {1, 10, 101}}};
    EXPECT_EQ(shortfall(enough, minimum, "One: "), "");
    EXPECT_EQ(shortfall({{"One: a", {2, 20, 199}}, {"One: b", {1, 10, 100}}}, minimum, "One: "),
              "executed One: a\t2\t20\t199\nat least One: a\t2\t20\t200\n");
    EXPECT_EQ(shortfall({{"One: a", {2, 20, 200}}}, minimum, "One: "),
              "executed One: b\t0\t0\t0\nat least One: b\t1\t10\t100\n");
    EXPECT_EQ(shortfall({{"Two: c", {1, 10, 100}}, {"Two: d", {1, 10, 100}}}, minimum, "Two: "),
              "there is no minimum for Two: d\t1\t10\t100\n");
    EXPECT_EQ(printTally({{"One: a", {2, 20, 200, 0.5}}}), "One: a\t2\t20\t200\t0.5\n");
}

TEST(Counts, BelongToTests) {
    std::set<std::string> tests;
    const ::testing::UnitTest& all = *::testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const ::testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            tests.insert(suite.GetTestInfo(j)->name());
        }
    }
    const Tally minimum = readMinimum(readText(PATINA_EXECUTION_COUNTS));
    EXPECT_GT(minimum.size(), 250U);
    for (const auto& [name, executed] : minimum) {
        EXPECT_EQ(tests.count(name.substr(0, name.find(':'))), 1U) << name << ": no test executes it";
    }
}

} // namespace
} // namespace patina::testing
