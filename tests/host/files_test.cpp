#include "tests/host/host_checks.h"

#include "host/dependency_order.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Sees the descriptors that are flushed to the disk, and says whether they are.
std::function<bool(int)> onFlush;

} // namespace

/// Stands before the system's own.
extern "C" int fsync(int descriptor) {
    if (onFlush && !onFlush(descriptor)) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace patina {
namespace {

namespace fs = std::filesystem;

/// Sees what is flushed while it lives.
class FlushObserver {
public:
    explicit FlushObserver(std::function<bool(int)> action) { onFlush = std::move(action); }
    ~FlushObserver() { onFlush = nullptr; }
    FlushObserver(const FlushObserver&) = delete;
    FlushObserver& operator=(const FlushObserver&) = delete;
};

using testing::expectError;
using testing::hostErrorOf;
using testing::readText;
using testing::TemporaryDirectory;

using Names = std::vector<std::string>;

TEST(DiagnosticText, PutsThePlaceFirst) {
    EXPECT_EQ(diagnosticText({"a.xml", 12}, "error", "it broke"), "a.xml:12: error: it broke");
    EXPECT_EQ(diagnosticText({"a.xml", 0}, "warning", "it broke"), "a.xml: warning: it broke");
    EXPECT_EQ(diagnosticText({"", 0}, "error", "it broke"), "error: it broke");
    EXPECT_STREQ(HostError({"a.xml", 3}, "it broke").what(), "a.xml:3: error: it broke");
}

TEST(Attempt, KeepsOnlyWhatIsForTheUser) {
    Errors errors;
    EXPECT_TRUE(attempt(&errors, [] {}));
    EXPECT_FALSE(attempt(&errors, [] { throw HostError({"a.xml", 1}, "wrong"); }));
    EXPECT_EQ(errors.size(), 1U);
    EXPECT_THROW(attempt(&errors, [] { throw std::runtime_error("broken"); }), std::runtime_error);
    EXPECT_THROW(attempt(nullptr, [] { throw HostError({"a.xml", 1}, "wrong"); }), HostError);
    EXPECT_EQ(errors.size(), 1U);
}

TEST(ReasonText, IsEnglishForWhatIsKnown) {
    EXPECT_EQ(reasonText(std::make_error_code(std::errc::no_such_file_or_directory)),
              "there is no such file or directory");
    const struct {
        int error;
        const char* text;
    } rows[] = {
        {ENOSPC, "no space is left on the device"},
        {EINVAL, "the system does not allow this here"},
        {ELOOP, "its symbolic links lead in a circle"},
        {ENAMETOOLONG, "the name is too long"},
        {EFBIG, "the file would become too large"},
        {EROFS, "the file system is read-only"},
        {EDQUOT, "the disk quota is used up"},
        {EMFILE, "this process has too many files open"},
        {EBUSY, "it is in use"},
        {ETXTBSY, "it is a program that is running"},
        {ENOEXEC, "it is no program for this system"},
        {ENXIO, "nothing answers there"},
        {EIO, "input/output error"},
    };
    for (const auto& [error, text] : rows) {
        EXPECT_EQ(reasonText({error, std::generic_category()}), text);
        EXPECT_EQ(reasonText({error, std::system_category()}), text);
    }
    EXPECT_EQ(reasonText({ENOTTY, std::generic_category()}), "system error " + std::to_string(ENOTTY));
}

TEST(FileName, MustSuitEverySystem) {
    for (const char* name : {"a", "Painted Metal", "a.b", "...", "\xC3\xA4", "-", "a;b"}) {
        EXPECT_TRUE(isFileName(name)) << name;
    }
    for (const char* name : {"", ".", "..", "a/b", "a\\b", "a:b", "a*b", "a?b", "a\"b", "a<b", "a>b", "a|b",
                             "a\nb", "a\tb", "a\x7F"}) {
        EXPECT_FALSE(isFileName(name)) << name;
    }
    EXPECT_FALSE(isFileName(std::string_view("a\0b", 3)));
    EXPECT_TRUE(isFileName(std::string(200, 'a')));
    EXPECT_FALSE(isFileName(std::string(201, 'a'))) << "an ending must fit behind it";
}

TEST(EmptyFileName, IsRefusedByName) {
    EXPECT_EQ(hostErrorOf([] { readFile("", 1); }),
              "error: the name of the file to read is empty; give it a name");
    EXPECT_EQ(hostErrorOf([] { replaceFile("", "text"); }),
              "error: the name of the file to write is empty; give it a name");
    EXPECT_EQ(hostErrorOf([] { writeFileOrStream("", "text"); }),
              "error: the name of the file to write is empty; give it a name");
    EXPECT_EQ(hostErrorOf([] {
                  writeFiles("", {{"a", "text"}});
              }),
              "error: the name of the directory to write to is empty; \".\" is the current one");
}

TEST(ReadFile, ReadsEveryByte) {
    const TemporaryDirectory directory;
    std::string content;
    for (int i = 0; i < 200000; ++i) {
        content += static_cast<char>(i * 7 % 256);
    }
    EXPECT_EQ(readFile(directory.write("a", content), content.size()), content);
    EXPECT_EQ(readFile(directory.write("b", ""), 0), "");
}

TEST(ReadFile, RefusesWhatIsTooLarge) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", std::string(3 * 1024 * 1024 + 1, 'x'));
    expectError(hostErrorOf([&] { readFile(file, std::size_t{3} * 1024 * 1024); }), file.string() + ":1",
                {"3 MiB"});
    expectError(hostErrorOf([] { readFile("/dev/zero", std::size_t{1024} * 1024); }), "/dev/zero:1",
                {"1 MiB"});
}

TEST(WriteFiles, MakesTheDirectoryAndReplacesFiles) {
    const TemporaryDirectory directory;
    const auto deep = directory / "some/where";
    writeFiles(deep, {{"a", "first"}, {"b", ""}});
    EXPECT_EQ(readText(deep / "a"), "first");
    EXPECT_EQ(readText(deep / "b"), "");
    const std::string content("second\r\n\0\xFF", 10);
    writeFiles(deep, {{"a", content}});
    EXPECT_EQ(readText(deep / "a"), content);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(deep)) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names.size(), 2U) << "no temporary file is left";
}

TEST(WriteFiles, ReplacesAtomically) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old content");
    std::filesystem::create_hard_link(file, directory / "old");
    writeFiles(directory.path(), {{"a", "new"}});
    EXPECT_EQ(readText(directory / "old"), "old content") << "nobody sees a file half written";
    EXPECT_EQ(readText(file), "new");
}

TEST(WriteFiles, LeavesTemporaryFilesOfOthersAlone) {
    const TemporaryDirectory directory;
    directory.write("a.tmp0", "of another export");
    writeFiles(directory.path(), {{"a", "new"}});
    EXPECT_EQ(directory.names(), (Names{"a", "a.tmp0"}));
    EXPECT_EQ(readText(directory / "a.tmp0"), "of another export");
}

TEST(WriteFiles, ReplacesNothingWhenATargetIsADirectory) {
    const TemporaryDirectory directory;
    directory.write("a", "old");
    std::filesystem::create_directory(directory / "c");
    expectError(hostErrorOf([&] {
                    writeFiles(directory.path(), {{"a", "new"}, {"b", "new"}, {"c", "new"}});
                }),
                (directory / "c").string(), {"it is a directory"});
    EXPECT_EQ(directory.names(), (Names{"a", "c"}));
    EXPECT_EQ(readText(directory / "a"), "old");
}

TEST(WriteFiles, ReplacesNothingWhenTheDirectoryIsAFile) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old");
    EXPECT_NE(hostErrorOf([&] { writeFiles(file, {{"b", "new"}}); }), testing::noError);
    EXPECT_NE(hostErrorOf([&] { writeFiles(file / "below", {{"b", "new"}}); }), testing::noError);
    EXPECT_EQ(readText(file), "old");
    EXPECT_EQ(directory.names(), Names{"a"});
}

TEST(WriteFiles, ReplacesNothingInAnUnwritableDirectory) {
    const TemporaryDirectory directory;
    directory.write("a", "old");
    std::filesystem::permissions(directory.path(),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    if (access(directory.path().c_str(), W_OK) == 0) {
        GTEST_SKIP() << "this user may write everywhere";
    }
    expectError(hostErrorOf([&] {
                    writeFiles(directory.path(), {{"a", "new"}});
                }),
                (directory / "a").string(), {"permission denied"});
    EXPECT_EQ(readText(directory / "a"), "old");
}

TEST(WriteFiles, ReplacesNothingWhenANameIsTooLong) {
    const TemporaryDirectory directory;
    directory.write("a", "old");
    const std::string name(300, 'n');
    expectError(hostErrorOf([&] {
                    writeFiles(directory.path(), {{"a", "new"}, {name, "new"}});
                }),
                (directory / name).string(), {"the name is too long"});
    EXPECT_EQ(directory.names(), Names{"a"});
    EXPECT_EQ(readText(directory / "a"), "old");
}

/// Lets no file of this process grow beyond a size while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST(WriteFiles, ReplacesNothingWhenAFileCannotBeWrittenWhole) {
    const TemporaryDirectory directory;
    directory.write("a", "old");
    {
        const FileSizeLimit limit(4096);
        // small enough for a buffer that is only written in the end, and larger than any buffer
        for (const std::size_t size : {std::size_t{4097}, std::size_t{1000000}}) {
            const std::string error = hostErrorOf([&] {
                writeFiles(directory.path(), {{"a", "new"}, {"b", std::string(size, 'x')}});
            });
            EXPECT_EQ(error.rfind((directory / "b").string() + ": error: ", 0), 0U) << error;
        }
    }
    EXPECT_EQ(directory.names(), Names{"a"});
    EXPECT_EQ(readText(directory / "a"), "old");
}

TEST(WriteFiles, KeepsLinksAndPermissions) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "sub");
    const auto file = directory.write("sub/a", "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("sub/a", directory / "link");
    fs::create_symlink("sub/b", directory / "dangling");
    EXPECT_EQ(writeFiles(directory.path(), {{"link", "new"}, {"dangling", "made"}}), 2U);
    EXPECT_EQ(readText(file), "new");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(readText(directory / "sub/b"), "made");
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    EXPECT_TRUE(fs::is_symlink(directory / "dangling"));
}

TEST(WriteFiles, ReplacesNothingWhenATargetIsNotToBeReplaced) {
    const TemporaryDirectory directory;
    directory.write("a", "old");
    fs::permissions(directory.write("protected", "old"), fs::perms::owner_read);
    fs::create_symlink("circle", directory / "circle");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    const Names before = directory.names();
    const std::string where = directory.path().string() + "/";
    const struct {
        const char* name;
        const char* error;
    } rows[] = {
        {"protected", "protected: error: cannot replace this file: it is write-protected"},
        {"circle", "circle: error: cannot write this file: its symbolic links lead in a circle"},
        {"pipe", "pipe: error: cannot replace this file: it is no regular file"},
    };
    for (const auto& [name, error] : rows) {
        EXPECT_EQ(hostErrorOf([&, target = name] {
                      writeFiles(directory.path(), {{"a", "new"}, {target, "new"}});
                  }),
                  where + error);
        EXPECT_EQ(readText(directory / "a"), "old") << name;
        EXPECT_EQ(directory.names(), before) << name;
    }
    EXPECT_EQ(readText(directory / "protected"), "old");
}

TEST(WriteFiles, LeavesAProtectedFileAloneThatHasItsContent) {
    const TemporaryDirectory directory;
    fs::permissions(directory.write("a", "same"), fs::perms::owner_read);
    EXPECT_EQ(writeFiles(directory.path(), {{"a", "same"}}), 0U);
}

TEST(ReplaceFile, WaitsForTheDiskBeforeItTakesThePlace) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old");
    std::vector<off_t> flushed;
    const FlushObserver observer([&](int descriptor) {
        struct stat state = {};
        EXPECT_EQ(fstat(descriptor, &state), 0);
        flushed.push_back(state.st_size);
        EXPECT_EQ(readText(file), "old");
        return true;
    });
    replaceFile(file, "12345");
    EXPECT_EQ(flushed, std::vector<off_t>{5}) << "all of it";
    EXPECT_EQ(readText(file), "12345");
    writeFiles(directory.path(), {{"a", "again"}});
    EXPECT_EQ(flushed.size(), 1U) << "what can be made again does not wait";
}

TEST(ReplaceFile, ReplacesNothingThatTheDiskDoesNotTake) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old");
    const FlushObserver observer([](int) { return false; });
    expectError(hostErrorOf([&] { replaceFile(file, "new"); }), file.string(), {"cannot write this file"});
    EXPECT_EQ(directory.names(), Names{"a"});
    EXPECT_EQ(readText(file), "old");
}

TEST(WriteFiles, TakesBackWhatIsNewWhenALaterFileFails) {
    const TemporaryDirectory directory;
    const std::string name(300, 'n');
    expectError(hostErrorOf([&] {
                    writeFiles(directory.path(), {{"a", "new"}, {name, "new"}});
                }),
                (directory / name).string(), {"cannot replace this file"});
    EXPECT_EQ(directory.names(), Names{});
}

TEST(WriteFiles, LooksForATemporaryNameForSomeTime) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old");
    for (int i = 0; i < 999; ++i) {
        directory.write(".patina-" + std::to_string(i) + ".tmp", "");
    }
    // the last name is the new file's, and none is left for the old one
    EXPECT_EQ(writeFiles(directory.path(), {{"a", "new"}}), 1U);
    EXPECT_EQ(readText(file), "new");
    directory.write(".patina-999.tmp", "");
    expectError(hostErrorOf([&] {
                    writeFiles(directory.path(), {{"a", "newer"}});
                }),
                file.string(), {"cannot write this file"});
    EXPECT_EQ(readText(file), "new");
}

TEST(WriteFiles, TouchesNoTemporaryFileOfAnother) {
    const TemporaryDirectory directory;
    const std::string left = ".patina-0.tmp";
    directory.write("a", "old");
    directory.write(left, "of a process that is still at it, perhaps");
    // however long that has taken
    fs::last_write_time(directory / left, fs::file_time_type::clock::now() - std::chrono::hours(1000));
    writeFiles(directory.path(), {{"a", "new"}});
    EXPECT_EQ(directory.names(), (Names{left, "a"}));
    EXPECT_EQ(readText(directory / "a"), "new");
    EXPECT_EQ(readText(directory / left), "of a process that is still at it, perhaps");
}

TEST(ReadFile, ReportsWhatCannotBeReadOnceItIsOpen) {
    const fs::path unreadable = "/proc/self/mem";
    if (fs::exists(unreadable)) {
        expectError(hostErrorOf([&] { readFile(unreadable, 1000); }), unreadable.string() + ":1",
                    {"cannot read this file"});
    }
}

TEST(WriteFileOrStream, WritesToWhatIsNoFile) {
    const TemporaryDirectory directory;
    const auto pipe = directory / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    fs::create_symlink("pipe", directory / "link");
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    writeFileOrStream(directory / "link", "text");
    std::string text(10, '\0');
    EXPECT_EQ(read(reader, text.data(), text.size()), 4);
    EXPECT_EQ(text.substr(0, 4), "text");
    close(reader);
    EXPECT_TRUE(fs::is_fifo(pipe));

    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string socketName = (directory / "socket").string();
    ASSERT_LT(socketName.size(), sizeof(address.sun_path));
    std::copy(socketName.begin(), socketName.end(), address.sun_path);
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    expectError(hostErrorOf([&] { writeFileOrStream(socketName, "text"); }), socketName,
                {"cannot write this file"});
    close(server);

    writeFileOrStream("/dev/null", "text");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    if (fs::exists("/dev/full")) {
        EXPECT_EQ(hostErrorOf([] { writeFileOrStream("/dev/full", "text"); }),
                  "/dev/full: error: cannot write this file: no space is left on the device");
    }
}

TEST(WriteFileOrStream, ReplacesFiles) {
    const TemporaryDirectory directory;
    const auto file = directory.write("a", "old");
    writeFileOrStream(file, "new");
    EXPECT_EQ(readText(file), "new");
    writeFileOrStream(directory / "some/where", "made");
    EXPECT_EQ(readText(directory / "some/where"), "made");
    const fs::path before = fs::current_path();
    fs::current_path(directory.path());
    writeFileOrStream("here", "made");
    fs::current_path(before);
    EXPECT_EQ(readText(directory / "here"), "made");
    expectError(hostErrorOf([&] { writeFileOrStream(directory.path(), "text"); }), directory.path().string(),
                {"it is a directory"});
}

// Ordering

TEST(OrderByDependencies, KeepsTheOrderOfTheIndexWhereItCan) {
    EXPECT_TRUE(orderByDependencies({}).order.empty());
    EXPECT_EQ(orderByDependencies({{}, {}, {}}).order, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(orderByDependencies({{2}, {}, {1}}).order, (std::vector<std::size_t>{1, 2, 0}));
    EXPECT_EQ(orderByDependencies({{1, 1}, {}}).order, (std::vector<std::size_t>{1, 0}));
}

TEST(OrderByDependencies, PutsEveryDependencyFirst) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        const std::size_t count = 1 + random() % 40;
        std::vector<std::size_t> rank(count);
        for (std::size_t& value : rank) {
            value = random();
        }
        Dependencies dependencies(count);
        for (std::size_t edge = 0; edge < count * 2; ++edge) {
            const std::size_t from = random() % count;
            const std::size_t to = random() % count;
            if (rank[from] > rank[to]) {
                dependencies.add(from, to);
            }
        }
        const DependencyOrder order = orderByDependencies(dependencies);
        ASSERT_EQ(order.order.size(), count);
        std::vector<bool> seen(count, false);
        for (const std::size_t item : order.order) {
            for (std::size_t link = dependencies.first(item); link != Dependencies::none;
                 link = dependencies.next(link)) {
                EXPECT_TRUE(seen[dependencies.dependency(link)]);
            }
            EXPECT_FALSE(seen[item]);
            seen[item] = true;
        }
    }
}

TEST(OrderByDependencies, FindsACycle) {
    EXPECT_EQ(orderByDependencies({{0}}).cycle, std::vector<std::size_t>{0});
    const Dependencies dependencies = {{1}, {2}, {3}, {1}, {}};
    const DependencyOrder order = orderByDependencies(dependencies);
    EXPECT_TRUE(order.order.empty());
    EXPECT_EQ(order.cycle, (std::vector<std::size_t>{1, 2, 3}));
}

TEST(OrderByDependencies, HoldsChainsOfAnyLength) {
    constexpr std::size_t length = 1000000;
    Dependencies dependencies(length);
    for (std::size_t i = 0; i + 1 < length; ++i) {
        dependencies.add(i, i + 1);
    }
    EXPECT_EQ(orderByDependencies(dependencies).order.front(), length - 1);
    dependencies.add(length - 1, 0);
    EXPECT_EQ(orderByDependencies(dependencies).cycle.size(), length);
}

} // namespace
} // namespace patina
