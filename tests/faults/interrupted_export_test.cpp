// An export that is ended at any moment: what lies at the place of its files is whole, and the next export
// succeeds.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace patina {
namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

/// What lies in a directory, by name; nothing when there is none.
Files filesIn(const fs::path& directory) {
    Files files;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(directory, none)) {
        files.emplace(entry.path().filename().string(), testing::readText(entry.path()));
    }
    return files;
}

/// Takes the temporary files away, of which the names must tell what they are.
void dropTemporaryFiles(Files& files) {
    static const std::regex temporary("\\.patina-[0-9]+\\.tmp");
    for (auto file = files.begin(); file != files.end();) {
        file = std::regex_match(file->first, temporary) ? files.erase(file) : std::next(file);
    }
}

class InterruptedExport : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override {
        if (PATINA_TEST_SANITIZED) {
            GTEST_SKIP() << "a sanitizer has to be the first library of a program";
        }
        ASSERT_EQ(exportAgain().exitCode, 0);
        complete_ = filesIn(target_);
        ASSERT_EQ(complete_.size(), 5U);
    }

    testing::Outcome exportAgain(const testing::Environment& environment = {}) const {
        return testing::run(PATINA_COMMAND,
                            {"export", "--json", "-MD", "-o", target_.string(), document_.string()},
                            environment);
    }

    /// Ends exports that begin with these files there, each at a later call, until one is through.
    void interruptEachCall(const Files& earlier) const {
        for (int call = 0;; ++call) {
            restore(earlier);
            const testing::Outcome outcome =
                exportAgain({{"LD_PRELOAD", PATINA_INTERRUPTING},
                             {"PATINA_INTERRUPT_BELOW", target_.string()},
                             {"PATINA_INTERRUPT_AT", std::to_string(call)},
                             {"PATINA_INTERRUPT_SIGNAL", std::to_string(GetParam())}});
            requireWholeFiles(earlier, call);
            ASSERT_FALSE(HasFatalFailure());
            if (outcome.exitCode == 0) {
                ASSERT_GE(call, 30) << "it was not interrupted at each call";
                return;
            }
            ASSERT_EQ(outcome.exitCode, 128 + GetParam()) << outcome.errors;
            requireSuccess(call);
            ASSERT_FALSE(HasFatalFailure());
        }
    }

    /// The same as before, with other content.
    Files earlierExport() const {
        Files earlier;
        for (const auto& [name, text] : complete_) {
            const bool isRead = name == "Sample.bindings.xml";
            earlier.emplace(name, isRead ? text + "\n" : "// of an earlier export\n");
        }
        return earlier;
    }

private:
    void restore(const Files& files) const {
        fs::remove_all(target_);
        for (const auto& [name, text] : files) {
            replaceOrMake(name, text);
        }
    }

    void replaceOrMake(const std::string& name, const std::string& text) const {
        fs::create_directories(target_);
        testing::writeText(target_ / name, text);
    }

    void requireWholeFiles(const Files& earlier, int call) const {
        Files files = filesIn(target_);
        dropTemporaryFiles(files);
        for (const auto& [name, text] : files) {
            const auto before = earlier.find(name);
            const auto after = complete_.find(name);
            ASSERT_NE(after, complete_.end()) << name << " of call " << call;
            ASSERT_TRUE(text == after->second || (before != earlier.end() && text == before->second))
                << name << " of call " << call << ":\n"
                << text;
        }
        for (const auto& [name, text] : earlier) {
            ASSERT_EQ(files.count(name), 1U) << name << " of call " << call;
        }
    }

    void requireSuccess(int call) const {
        const testing::Outcome outcome = exportAgain();
        ASSERT_EQ(outcome.exitCode, 0) << call << outcome.errors;
        Files files = filesIn(target_);
        dropTemporaryFiles(files);
        ASSERT_EQ(files, complete_) << call;
    }

    testing::TemporaryDirectory directory_;
    fs::path document_ =
        directory_.write("material.xml", testing::documentText(testing::maths("m", "Invert") +
                                                               testing::output("colour", "m", "out_value")));
    fs::path target_ = directory_ / "out";
    Files complete_;
};

TEST_P(InterruptedExport, LeavesWholeFilesWhereThereWereNone) { interruptEachCall({}); }

TEST_P(InterruptedExport, LeavesWholeFilesWhereThereWereOthers) { interruptEachCall(earlierExport()); }

INSTANTIATE_TEST_SUITE_P(BySignal, InterruptedExport, ::testing::Values(SIGKILL, SIGTERM, SIGINT),
                         [](const auto& signal) {
                             return signal.param == SIGKILL   ? "Kill"
                                    : signal.param == SIGTERM ? "Terminate"
                                                              : "Interrupt";
                         });

} // namespace
} // namespace patina
