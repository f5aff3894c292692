#include "host/child_process.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#if defined(_WIN32)

namespace patina {

namespace {

[[noreturn]] void throwUnsupported() {
    throw HostError({}, "child processes are not supported on this system; run this command on a POSIX one");
}

} // namespace

ChildOutcome runChild(const std::filesystem::path& /*program*/, const std::vector<std::string>& /*arguments*/,
                      const ChildOptions& /*options*/) {
    throwUnsupported();
}

PrivateOutput::PrivateOutput() { throwUnsupported(); }

PrivateOutput::~PrivateOutput() = default;

void PrivateOutput::write(std::string_view /*text*/) { throwUnsupported(); }

} // namespace patina

#else

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): kill is POSIX
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace patina {

using namespace detail;

namespace {

using Clock = std::chrono::steady_clock;

/// No pipe holds more, unless somebody with privileges wants it to.
constexpr std::size_t pipeCapacity = std::size_t{1024} * 1024;

/// How long an ended child may go unnoticed when it closed its streams early, or left them to another
/// process.
constexpr std::chrono::milliseconds longestWait(10);

[[noreturn]] void throwSystemError(std::string_view what, int error) {
    throw HostError({}, joinText({what, ": ", reasonText({error, std::generic_category()})}));
}

/// A descriptor of this process that no child inherits.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    void reset() {
        if (isOpen()) {
            close(number_);
            number_ = -1;
        }
    }

private:
    int number_;
};

std::array<int, 2> makePipe() {
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0) {
        throwSystemError("cannot make a pipe", errno);
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    return ends;
}

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

/// A child's input as a file without a name: the child reads it when it likes, and cannot leave this process
/// waiting to write.
class InputFile {
public:
    explicit InputFile(std::string_view input)
        : file_(input.empty() ? std::fopen("/dev/null", "rb") : std::tmpfile()) {
        if (!file_ || (!input.empty() && !write(input))) {
            throwSystemError("cannot put the input of a program into a temporary file", errno);
        }
        fcntl(descriptor(), F_SETFD, FD_CLOEXEC);
    }

    int descriptor() const { return fileno(file_.get()); }

private:
    bool write(std::string_view input) {
        if (std::fwrite(input.data(), 1, input.size(), file_.get()) != input.size() ||
            std::fflush(file_.get()) != 0) {
            return false;
        }
        std::rewind(file_.get());
        return true;
    }

    std::unique_ptr<std::FILE, CloseFile> file_;
};

/// One captured stream of a child, of which a limited number of bytes is kept.
class Capture {
public:
    explicit Capture(std::size_t limit) : Capture(makePipe(), limit) {}

    const Descriptor& reader() const { return reader_; }
    const Descriptor& writer() const { return writer_; }
    void closeWriter() { writer_.reset(); }
    bool isCut() const { return isCut_; }
    std::string take() { return std::move(text_); }

    /// Reads what is there without waiting, as much as a pipe can hold; at the end of the stream closes it.
    /// More would be waiting for a writer that never stops.
    void read() {
        std::array<char, 65536> buffer;
        // GCOVR_EXCL_BR_START: whether a writer keeps up with this is for the system to decide
        for (std::size_t total = 0; reader_.isOpen() && total < pipeCapacity;) {
            // GCOVR_EXCL_BR_STOP
            const ssize_t count = ::read(reader_.number(), buffer.data(), buffer.size());
            if (count > 0) {
                const auto bytes = static_cast<std::size_t>(count);
                const std::size_t kept = std::min(bytes, limit_ - text_.size());
                text_.append(buffer.data(), kept);
                isCut_ = isCut_ || kept < bytes;
                total += bytes;
            } else if (count == 0) {
                reader_.reset();
            } else {
                return; // there is nothing yet: reading a pipe without waiting fails for no other reason
            }
        }
    }

private:
    Capture(const std::array<int, 2>& ends, std::size_t limit)
        : reader_(ends[0]), writer_(ends[1]), limit_(limit) {
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }

    Descriptor reader_;
    Descriptor writer_;
    std::size_t limit_;
    std::string text_;
    bool isCut_ = false;
};

/// The streams that a child starts with.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void redirect(int descriptor, int opened) {
        posix_spawn_file_actions_adddup2(&actions_, opened, descriptor);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_ = {};
};

pid_t spawn(const std::filesystem::path& program, const std::vector<std::string>& arguments,
            const FileActions& actions) {
    const std::string& path = program.native();
    // posix_spawn promises to change none of the texts
    std::vector<char*> list = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    pid_t child = 0;
    const int error = posix_spawnp(&child, path.c_str(), actions.get(), nullptr, list.data(), environ);
    if (error != 0) {
        throw HostError({path, 0}, joinText({"cannot start this program: ",
                                             reasonText({error, std::generic_category()})}));
    }
    return child;
}

void waitForOutput(Capture& output, Capture& errors, std::chrono::milliseconds longest) {
    // poll leaves out negative descriptors
    std::array<pollfd, 2> streams = {
        {{output.reader().number(), POLLIN, 0}, {errors.reader().number(), POLLIN, 0}}};
    poll(streams.data(), streams.size(), static_cast<int>(longest.count()));
    output.read();
    errors.read();
}

ChildOutcome::End endOf(bool isOver, const Capture& output, int status) {
    if (isOver) {
        return ChildOutcome::End::TimedOut;
    }
    if (output.isCut()) {
        return ChildOutcome::End::TooMuchOutput;
    }
    return WIFSIGNALED(status) ? ChildOutcome::End::Signalled : ChildOutcome::End::Exited;
}

} // namespace

ChildOutcome runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      const ChildOptions& options) {
    const InputFile input(options.input);
    Capture output(options.outputLimit);
    Capture errors(options.outputLimit);
    FileActions actions;
    actions.redirect(STDIN_FILENO, input.descriptor());
    actions.redirect(STDOUT_FILENO, output.writer().number());
    actions.redirect(STDERR_FILENO, errors.writer().number());
    const pid_t child = spawn(program, arguments, actions);
    output.closeWriter();
    errors.closeWriter();

    bool isOver = false;
    int status = 0;
    const auto begin = Clock::now();
    while (waitpid(child, &status, WNOHANG) == 0) {
        isOver = options.timeLimit && Clock::now() - begin >= *options.timeLimit;
        if (isOver || output.isCut()) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        waitForOutput(output, errors, longestWait);
    }
    output.read();
    errors.read();
    ChildOutcome outcome;
    outcome.end = endOf(isOver, output, status);
    outcome.code = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    outcome.output = output.take();
    outcome.errors = errors.take();
    return outcome;
}

PrivateOutput::PrivateOutput() {
    static_cast<void>(std::fflush(stdout));
    descriptor_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (descriptor_ < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        throwSystemError("cannot use the standard output", errno);
    }
}

PrivateOutput::~PrivateOutput() {
    static_cast<void>(std::fflush(stdout));
    dup2(descriptor_, STDOUT_FILENO);
    close(descriptor_);
}

void PrivateOutput::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor_, text.data(), text.size());
        // GCOVR_EXCL_BR_START: a signal cannot be made to come in the middle
        if (count < 0 && errno != EINTR) {
            throwSystemError("cannot write to the standard output", errno);
        }
        // GCOVR_EXCL_BR_STOP
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

} // namespace patina

#endif
