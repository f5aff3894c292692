#include "tests/execution/execution.h"

#include "tests/host/host_checks.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>

namespace patina::testing {

namespace {

std::string testName() { return ::testing::UnitTest::GetInstance()->current_test_info()->name(); }

} // namespace

std::unique_ptr<Executor> Execution::executor_;
std::string Execution::whyNot_;

void Execution::start(const char* driver) {
    try {
        executor_ = std::make_unique<Executor>(driver);
        if (executor_->renderer().find(driver) == std::string::npos) {
            whyNot_ = "the driver " + std::string(driver) + " was asked for, and " + executor_->renderer() +
                      " draws; run each test in a process of its own, as ctest does";
            executor_.reset();
        }
    } catch (const HostError& error) {
        whyNot_ = error.what();
    }
}

void Execution::TearDownTestSuite() { executor_.reset(); }

void Execution::SetUp() {
    if (!executor_) {
        FAIL() << whyNot_; // to skip would pass for having executed what was not
    }
}

void Execution::TearDown() {
    if (PATINA_TEST_THINNED == 0) {
        expectMinimum();
    }
    if (tally_.empty()) {
        return;
    }
    Executed sum;
    for (const auto& [name, executed] : tally_) {
        sum.programs += executed.programs;
        sum.inputSets += executed.inputSets;
        sum.numbers += executed.numbers;
    }
    std::cout << printTally(tally_) << testName() << " on " << executor().renderer() << ": " << sum.programs
              << " programs, " << sum.inputSets << " input sets, " << sum.numbers << " numbers\n";
}

void Execution::expectMinimum() const {
    const Tally minimum = readMinimum(readText(PATINA_EXECUTION_COUNTS));
    const std::string prefix = testName() + ": ";
    EXPECT_EQ(shortfall(tally_, minimum, prefix), "") << "see counts.txt";
    if (!shortfall(minimum, tally_, prefix).empty()) {
        std::cout << "counts.txt demands less than this; raise it\n";
    }
}

void Execution::expectReference(const Case& shown) {
    SCOPED_TRACE(shown.title);
    ShownPrograms programs;
    try {
        programs = exportShown(shown.graph);
        const Outcome outcome = compare(shown, executor().draw(programs, shown.graph, shown.inputs));
        Executed& row =
            tally_[testName() + ": " + shown.kind + ", " + Reference(shown.graph).shownFormat().name];
        row.programs += outcome.executed.programs;
        row.inputSets += outcome.executed.inputSets;
        row.numbers += outcome.executed.numbers;
        row.worst = std::max(row.worst, outcome.executed.worst);
        if (!outcome.mismatches.empty()) {
            ADD_FAILURE() << outcome.mismatches.size()
                          << " mismatches, the first: " << outcome.mismatches.front() << '\n'
                          << programs.vertex << programs.fragment
                          << executor().translated(ProgramStage::Vertex, programs.vertex)
                          << executor().translated(ProgramStage::Fragment, programs.fragment);
        }
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what() << '\n' << programs.vertex << programs.fragment;
    }
}

Case perVertex(Case shown) {
    const bool isFloat = Reference(shown.graph).shownFormat().name == std::string("float");
    const std::size_t reader =
        shown.graph.add("CoreMaths", {choice("Function", "Addition"), choice("Execution Level", "Vertex")});
    shown.graph.connect(shown.graph.shown, reader, "in_value1");
    shown.graph.shown = {reader, "out_value"};
    if (isFloat) {
        shown.graph.demandFloat(shown.graph.shown, Reference(shown.graph).shownWidth());
    }
    shown.kind += " per vertex";
    shown.title += ", per vertex";
    return shown;
}

std::size_t strideOfTables() { return PATINA_TEST_THINNED != 0 ? 5 : 1; }

} // namespace patina::testing
