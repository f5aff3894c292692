#include "tests/host/process.h"

#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h> // NOLINT: setenv is POSIX
#include <sys/wait.h>
#include <unistd.h>

namespace patina::testing {

namespace {

/// Lets a descriptor of the child write to a file.
void redirect(int descriptor, const std::filesystem::path& file) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0) {
        _exit(127);
    }
    close(opened);
}

} // namespace

Outcome run(const std::string& program, const std::vector<std::string>& arguments,
            const Environment& environment) {
    const TemporaryDirectory directory;
    const auto output = directory / "output";
    const auto errors = directory / "errors";
    std::vector<char*> list = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        redirect(STDOUT_FILENO, output);
        redirect(STDERR_FILENO, errors);
        for (const auto& [name, value] : environment) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execvp(program.c_str(), list.data());
        _exit(127);
    }
    EXPECT_GT(child, 0);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exitCode, readText(output), readText(errors)};
}

} // namespace patina::testing
