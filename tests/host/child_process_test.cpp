#include "tests/host/host_checks.h"

#include "host/child_process.h"

#include <gtest/gtest.h>

#include <signal.h> // NOLINT: kill is POSIX

#include <chrono>
#include <string>

namespace patina {
namespace {

using End = ChildOutcome::End;
using testing::hostErrorOf;

constexpr std::chrono::seconds longEnough(60);

ChildOutcome shell(const std::string& script, std::chrono::milliseconds timeLimit = longEnough) {
    return runChild("/bin/sh", {"-c", script, "sh", "first", "*"}, {.timeLimit = timeLimit});
}

TEST(ChildProcess, GivesWhatItPrintedAndItsExitCode) {
    const ChildOutcome outcome = shell("echo \"$2\"; echo \"$1\" >&2; exit 3");
    EXPECT_EQ(outcome.end, End::Exited);
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.output, "*\n");
    EXPECT_EQ(outcome.errors, "first\n");
}

TEST(ChildProcess, HasNothingToRead) { EXPECT_EQ(shell("cat; echo over").output, "over\n"); }

TEST(ChildProcess, MayPrintMoreThanAPipeHolds) {
    const ChildOutcome outcome = shell("head -c 300000 /dev/zero; head -c 400000 /dev/zero >&2");
    EXPECT_EQ(outcome.output.size(), 300000U);
    EXPECT_EQ(outcome.errors.size(), 400000U);
}

TEST(ChildProcess, IsToldApartWhenASignalEndsIt) {
    const ChildOutcome outcome = shell("echo before; kill -9 $$");
    EXPECT_EQ(outcome.end, End::Signalled);
    EXPECT_EQ(outcome.code, 9);
    EXPECT_EQ(outcome.output, "before\n");
}

TEST(ChildProcess, IsKilledWhenItsTimeIsOver) {
    const ChildOutcome outcome = shell("echo before; exec sleep 600", std::chrono::milliseconds(300));
    EXPECT_EQ(outcome.end, End::TimedOut);
    EXPECT_EQ(outcome.output, "before\n");
}

TEST(ChildProcess, IsKilledEvenWhenItClosedItsStreams) {
    EXPECT_EQ(shell("exec sleep 600 >&- 2>&-", std::chrono::milliseconds(300)).end, End::TimedOut);
}

TEST(ChildProcess, IsKilledEvenWhenItNeverStopsPrinting) {
    const ChildOutcome outcome = shell("while :; do echo more; done", std::chrono::milliseconds(300));
    EXPECT_EQ(outcome.end, End::TimedOut);
    EXPECT_EQ(outcome.output.substr(0, 10), "more\nmore\n");
    EXPECT_EQ(shell("exec cat /dev/zero >&2", std::chrono::milliseconds(300)).end, End::TimedOut);
}

TEST(ChildProcess, ReadsItsInputWhenItLikes) {
    const std::string input(300000, 'x');
    EXPECT_EQ(runChild("cat", {}, {.input = input}).output, input) << "and is found on the path";
    EXPECT_EQ(runChild("true", {}, {.input = input}).code, 0) << "and need not read it";
}

TEST(ChildProcess, IsKilledWhenItPrintsMoreThanItMay) {
    const ChildOutcome endless = runChild("cat", {"/dev/zero"}, {.outputLimit = 1000});
    EXPECT_EQ(endless.end, End::TooMuchOutput);
    EXPECT_EQ(endless.output, std::string(1000, '\0'));
    EXPECT_EQ(runChild("echo", {"four"}, {.outputLimit = 4}).end, End::TooMuchOutput) << "even in its last";
    EXPECT_EQ(runChild("echo", {"four"}, {.outputLimit = 5}).end, End::Exited);
    const ChildOutcome complaint = runChild("sh", {"-c", "echo complaint >&2"}, {.outputLimit = 4});
    EXPECT_EQ(complaint.end, End::Exited);
    EXPECT_EQ(complaint.errors, "comp");
}

TEST(ChildProcess, IsNotWaitedForLongerThanItRuns) {
    // a process that it leaves behind keeps the streams open
    const ChildOutcome outcome = shell("sleep 600 & echo $!");
    EXPECT_EQ(outcome.end, End::Exited);
    EXPECT_EQ(kill(std::stoi(outcome.output), SIGKILL), 0);
}

TEST(ChildProcess, IsRefusedWhenItIsNoProgram) {
    EXPECT_EQ(hostErrorOf([] { runChild("/no/such/program", {}); }),
              "/no/such/program: error: cannot start this program: there is no such file or directory");
}

} // namespace
} // namespace patina
