#pragma once

#include "tests/execution/executor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace patina::testing {

/// What tests that execute programs share: the GPU, and the count of what each of them executed, which must
/// not fall below the lines of counts.txt that begin with the test's name.
class Execution : public ::testing::Test {
protected:
    static void SetUpTestSuite() { start(interpretingDriver); }
    static void TearDownTestSuite();
    static void start(const char* driver);
    void SetUp() override;
    void TearDown() override;

    /// Executes a case and holds it against the reference.
    void expectReference(const Case& shown);

    static Executor& executor() { return *executor_; }

private:
    void expectMinimum() const;

    static std::unique_ptr<Executor> executor_;
    static std::string whyNot_; ///< there is no executor
    Tally tally_;
};

/// The same with the driver that compiles. The first driver of a process stays, so that tests of both kinds
/// take a process each.
class CompiledExecution : public Execution {
protected:
    static void SetUpTestSuite() { start(compilingDriver); }
};

/// The same case with its value computed per vertex: a vertex function reads it, and adds nothing.
Case perVertex(Case shown);

/// Every how many of the cases of a large table a test takes.
std::size_t strideOfTables();

} // namespace patina::testing
