#include "tools/patina/filter_process.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace patina::tool {

using namespace detail;

namespace {

constexpr int notFound = 127; ///< how a child ends that could not become the program

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void fail(std::initializer_list<std::string_view> pieces) {
    throw HostError({}, joinText(pieces));
}

std::string lastReason() { return reasonText({errno, std::generic_category()}); }

/// A descriptor, closed when it goes.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }
    void close() {
        if (number_ >= 0) {
            ::close(number_);
            number_ = -1;
        }
    }

private:
    int number_;
};

/// The input as a file without a name: the program reads it when it likes, and cannot leave this process
/// waiting to write.
FileHandle inputFile(const std::string& program, const std::string& input) {
    FileHandle file(std::tmpfile());
    if (!file || std::fwrite(input.data(), 1, input.size(), file.get()) != input.size() ||
        std::fflush(file.get()) != 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) {
        fail({"cannot write the input of \"", program, "\" to a temporary file: ", lastReason()});
    }
    return file;
}

/// Redirections of a program to be started.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void redirect(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

[[noreturn]] void throwNotFound(const std::string& program, const std::string& advice) {
    fail({"cannot run \"", program, "\"; ", advice});
}

pid_t start(const std::string& program, const std::vector<std::string>& arguments, const FileActions& actions,
            const std::string& advice) {
    // the program does not write to its arguments
    std::vector<char*> list = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, program.c_str(), actions.get(), nullptr, list.data(), environ) != 0) {
        throwNotFound(program, advice);
    }
    return child;
}

std::string readAll(int descriptor) {
    std::string content;
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            content.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return content;
        }
    }
}

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

} // namespace

std::string runFilter(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input, const std::string& advice) {
    const FileHandle file = inputFile(program, input);
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0) {
        fail({"cannot make a pipe from \"", program, "\": ", lastReason()});
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    // the program has it as its standard output, and no further copy that would keep it open
    fcntl(reading.number(), F_SETFD, FD_CLOEXEC);
    fcntl(writing.number(), F_SETFD, FD_CLOEXEC);
    FileActions actions;
    actions.redirect(fileno(file.get()), STDIN_FILENO);
    actions.redirect(writing.number(), STDOUT_FILENO);
    const pid_t child = start(program, arguments, actions, advice);
    writing.close();
    std::string output = readAll(reading.number());
    const int status = waitFor(child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == notFound) {
        throwNotFound(program, advice);
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        fail({"\"", program, "\" failed; ", advice});
    }
    return output;
}

} // namespace patina::tool
