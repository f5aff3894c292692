#include "tests/host/host_checks.h"

#include "host/child_process.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h> // NOLINT: kill is POSIX
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
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

/// Lowers a limit of this process while it lives.
class Limit {
public:
    Limit(decltype(RLIMIT_NOFILE) resource, rlim_t most) : resource_(resource) {
        getrlimit(resource_, &before_);
        rlimit limit = before_;
        limit.rlim_cur = most;
        setrlimit(resource_, &limit);
    }
    ~Limit() { setrlimit(resource_, &before_); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    decltype(RLIMIT_NOFILE) resource_;
    rlimit before_{};
};

TEST(ChildProcess, IsNotStartedWithoutRoomForItsStreams) {
    if (PATINA_TEST_SANITIZED) {
        GTEST_SKIP() << "the sanitizers open files of their own";
    }
    const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(lowest, 0);
    close(lowest);
    const struct {
        rlim_t descriptors; ///< that are free
        const char* input;
        const char* message;
    } rows[] = {
        {0, "", "error: cannot put the input of a program into a temporary file: "},
        {0, "text", "error: cannot put the input of a program into a temporary file: "},
        {1, "", "error: cannot make a pipe: "},
    };
    for (const auto& [descriptors, input, message] : rows) {
        const Limit limit(RLIMIT_NOFILE, static_cast<rlim_t>(lowest) + descriptors);
        const std::string error = hostErrorOf([text = input] { runChild("true", {}, {.input = text}); });
        EXPECT_EQ(error.rfind(message, 0), 0U) << error;
    }
}

TEST(ChildProcess, IsNotStartedWithoutAllOfItsInput) {
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    // small enough for a buffer that is only written in the end, and larger than any buffer
    for (const std::size_t size : {std::size_t{100}, std::size_t{1000000}}) {
        const std::string input(size, 'x');
        const Limit limit(RLIMIT_FSIZE, 10);
        const std::string error = hostErrorOf([&] { runChild("true", {}, {.input = input}); });
        EXPECT_EQ(error.rfind("error: cannot put the input of a program into a temporary file: ", 0), 0U)
            << error;
    }
    std::signal(SIGXFSZ, handler);
}

TEST(ChildProcess, MayPrintTooMuchInItsLastMoment) {
    // so much at once that the rest is only read when the process is gone
    EXPECT_EQ(runChild("sh", {"-c", "printf 12345; exit 0"}, {.outputLimit = 4}).end, End::TooMuchOutput);
}

/// Puts another file in the place of a descriptor while it lives, or closes it.
class Replaced {
public:
    Replaced(int descriptor, int other) : descriptor_(descriptor), kept_(dup(descriptor)) {
        if (other < 0) {
            close(descriptor);
        } else {
            dup2(other, descriptor);
        }
    }
    ~Replaced() {
        dup2(kept_, descriptor_);
        close(kept_);
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

private:
    int descriptor_;
    int kept_;
};

TEST(PrivateOutput, KeepsStandardOutputToItself) {
    const testing::TemporaryDirectory directory;
    const auto output = directory.write("output", "");
    const auto errors = directory.write("errors", "");
    const int outputFile = open(output.c_str(), O_WRONLY | O_APPEND);
    const int errorFile = open(errors.c_str(), O_WRONLY | O_APPEND);
    {
        std::fflush(stdout);
        const Replaced replacedOutput(STDOUT_FILENO, outputFile);
        const Replaced replacedErrors(STDERR_FILENO, errorFile);
        {
            PrivateOutput report;
            std::printf("noise");
            report.write("report");
            report.write("");
        }
        std::printf("after");
        std::fflush(stdout);
    }
    close(outputFile);
    close(errorFile);
    EXPECT_EQ(testing::readText(output), "reportafter");
    EXPECT_EQ(testing::readText(errors), "noise");
}

TEST(PrivateOutput, NeedsStandardOutput) {
    std::fflush(stdout);
    for (const int missing : {STDOUT_FILENO, STDERR_FILENO}) {
        std::string error;
        {
            const Replaced replaced(missing, -1);
            error = hostErrorOf([] { const PrivateOutput output; });
        }
        EXPECT_EQ(error.rfind("error: cannot use the standard output: ", 0), 0U) << error;
    }
}

TEST(PrivateOutput, SaysWhenNobodyReads) {
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    std::fflush(stdout);
    std::string error;
    {
        const Replaced replaced(STDOUT_FILENO, ends[1]);
        PrivateOutput output;
        error = hostErrorOf([&] { output.write("report"); });
    }
    close(ends[1]);
    std::signal(SIGPIPE, handler);
    EXPECT_EQ(error.rfind("error: cannot write to the standard output: ", 0), 0U) << error;
}

} // namespace
} // namespace patina
