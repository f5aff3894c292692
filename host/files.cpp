#include "host/files.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace patina {

using namespace detail;

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

std::error_code lastError() { return {errno, std::generic_category()}; }

constexpr const char* cannotWrite = "cannot write this file";

[[noreturn]] void throwFileError(const std::filesystem::path& file, std::string_view what,
                                 const std::error_code& error) {
    throw HostError({file.string(), 0}, joinText({what, ": ", reasonText(error)}));
}

/// Messages about documents always name a line; for one that cannot be read it is the first.
[[noreturn]] void throwReadError(const std::filesystem::path& file, const std::error_code& error) {
    throw HostError({file.string(), 1}, joinText({"cannot read this file: ", reasonText(error)}));
}

[[noreturn]] void throwTooLarge(const std::filesystem::path& file, std::size_t sizeLimit) {
    throw HostError({file.string(), 1},
                    joinText({"this file is larger than ",
                              std::to_string(sizeLimit / (std::size_t{1024} * 1024)), " MiB"}));
}

/// A name beside `target` that no file bears yet. Short, so that it fits wherever the target's name does.
std::filesystem::path hiddenName(const std::filesystem::path& target, int attempt) {
    return target.parent_path() / (".patina-" + std::to_string(attempt) + ".tmp");
}

constexpr int nameAttempts = 1000;

void removeIfNamed(const std::filesystem::path& file) {
    if (!file.empty()) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
}

/// Waits until the disk has all that was written. Gives whether it has.
bool flushToDisk(std::FILE* file) {
#if defined(_WIN32)
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

/// Whether a replacement outlives a crash of the system.
enum class Durability { None, Crash };

/// Writes a content and closes the file. Gives what went wrong.
std::error_code writeAll(FileHandle file, std::string_view content, Durability durability) {
    errno = EIO; // should a failure not say more
    if (std::fwrite(content.data(), 1, content.size(), file.get()) != content.size() ||
        std::fflush(file.get()) != 0) {
        return lastError();
    }
    if (durability == Durability::Crash && !flushToDisk(file.get())) {
        return lastError();
    }
    // GCOVR_EXCL_BR_START: only file systems of other machines tell of failures now
    return std::fclose(file.release()) == 0 ? std::error_code() : lastError();
    // GCOVR_EXCL_BR_STOP
}

/// A complete file under a temporary name, which can take its target's place and give it back.
/// What is left under temporary names goes when it does.
class Replacement {
public:
    Replacement(std::filesystem::path target, std::string_view content,
                std::optional<std::filesystem::perms> permissions, Durability durability)
        : target_(std::move(target)) {
        FileHandle file = open();
        if (permissions) {
            setPermissions(*permissions);
        }
        const std::error_code error = writeAll(std::move(file), content, durability);
        if (error) {
            removeIfNamed(temporary_);
            throwFileError(target_, cannotWrite, error);
        }
    }

    ~Replacement() {
        removeIfNamed(temporary_);
        removeIfNamed(former_);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void takePlace() {
        std::error_code error;
        existed_ = std::filesystem::exists(target_, error);
        if (existed_) {
            keepFormer();
        }
        std::filesystem::rename(temporary_, target_, error);
        if (error) {
            throwFileError(target_, "cannot replace this file", error);
        }
        temporary_.clear();
    }

    void giveBack() {
        if (!temporary_.empty()) {
            return;
        }
        std::error_code ignored;
        if (!former_.empty()) {
            std::filesystem::rename(former_, target_, ignored);
            former_.clear();
        } else if (!existed_) { // GCOVR_EXCL_BR_LINE: what existed has a second name where there are such
            std::filesystem::remove(target_, ignored);
        }
    }

private:
    /// Makes a file of a name that nobody else uses, so that exports side by side do not meet.
    FileHandle open() {
        for (int attempt = 0; attempt < nameAttempts; ++attempt) {
            temporary_ = hiddenName(target_, attempt);
            if (FileHandle file{std::fopen(temporary_.string().c_str(), "wbx")}) {
                return file;
            }
            if (errno != EEXIST) {
                break;
            }
        }
        const std::error_code error = lastError();
        temporary_.clear();
        throwFileError(target_, cannotWrite, error);
    }

    /// To be done before anything is written, which those may not see who may not see the earlier file.
    void setPermissions(std::filesystem::perms permissions) {
        std::error_code error;
        std::filesystem::permissions(temporary_, permissions, error);
        // GCOVR_EXCL_START: only file systems without permissions refuse this to a file's owner
        if (error) {
            removeIfNamed(temporary_);
            throwFileError(target_, cannotWrite, error);
        }
        // GCOVR_EXCL_STOP
    }

    /// A second name for the file that is replaced, where the file system has such a thing.
    void keepFormer() {
        std::error_code error;
        for (int attempt = 0; attempt < nameAttempts; ++attempt) {
            std::filesystem::path name = hiddenName(target_, attempt);
            std::filesystem::create_hard_link(target_, name, error);
            if (!error) {
                former_ = std::move(name); // needs no memory, without which the link would stay
                return;
            }
            // GCOVR_EXCL_START: only file systems without hard links refuse for another reason
            if (error != std::errc::file_exists) {
                return;
            }
            // GCOVR_EXCL_STOP
        }
    }

    std::filesystem::path target_;
    std::filesystem::path temporary_; ///< empty once it took its place
    std::filesystem::path former_;    ///< what it replaced
    bool existed_ = false;
};

/// The file that a path names in the end, which need not exist.
std::filesystem::path linkTarget(std::filesystem::path file) {
    constexpr int linkLimit = 40;
    std::error_code error;
    for (int i = 0; std::filesystem::is_symlink(file, error); ++i) {
        if (i == linkLimit) {
            throwFileError(file, cannotWrite, std::make_error_code(std::errc::too_many_symbolic_link_levels));
        }
        // a target that is absolute replaces the whole path
        file = file.parent_path() / std::filesystem::read_symlink(file);
    }
    return file;
}

/// The permissions of a file that may be replaced; none when there is no file yet.
std::optional<std::filesystem::perms> permissionsToKeep(const std::filesystem::path& file) {
    using std::filesystem::perms;
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(file, ignored);
    if (!std::filesystem::exists(status)) {
        return std::nullopt;
    }
    if (std::filesystem::is_directory(status)) {
        throwFileError(file, cannotWrite, std::make_error_code(std::errc::is_a_directory));
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw HostError({file.string(), 0}, "cannot replace this file: it is no regular file");
    }
    constexpr perms anyWrite = perms::owner_write | perms::group_write | perms::others_write;
    if ((status.permissions() & anyWrite) == perms::none) {
        throw HostError({file.string(), 0}, "cannot replace this file: it is write-protected");
    }
    return status.permissions();
}

void requireName(const std::filesystem::path& file, std::string_view purpose) {
    if (file.empty()) {
        throw HostError({}, joinText({"the name of the file to ", purpose, " is empty; give it a name"}));
    }
}

/// Whether there is something that a file cannot take the place of: a device, a pipe, a socket.
bool isStream(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::is_other(std::filesystem::status(file, ignored));
}

bool hasContent(const std::filesystem::path& file, std::string_view content) {
    std::error_code ignored; // the size of what has none is that of no content
    if (std::filesystem::file_size(file, ignored) != content.size()) {
        return false;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string present(content.size(), '\0');
    stream.read(present.data(), static_cast<std::streamsize>(present.size()));
    present.resize(static_cast<std::size_t>(stream.gcount()));
    return present == content;
}

} // namespace

bool isFileName(std::string_view text) {
    constexpr std::size_t longest = 200; // file systems take 255 bytes; the rest is for endings
    constexpr std::string_view refused = "/\\:*?\"<>|";
    const auto isRefused = [&](char letter) {
        const auto code = static_cast<unsigned char>(letter);
        return code < 0x20 || code == 0x7F || refused.find(letter) != std::string_view::npos;
    };
    return !text.empty() && text.size() <= longest && text != "." && text != ".." &&
           std::none_of(text.begin(), text.end(), isRefused);
}

std::string readFile(const std::filesystem::path& file, std::size_t sizeLimit) {
    requireName(file, "read");
    std::error_code status;
    if (std::filesystem::is_directory(file, status)) {
        throwReadError(file, std::make_error_code(std::errc::is_a_directory));
    }
    const FileHandle handle(std::fopen(file.string().c_str(), "rb"));
    if (!handle) {
        throwReadError(file, lastError());
    }
    const std::uintmax_t size = std::filesystem::file_size(file, status);
    if (!status && size > sizeLimit) {
        throwTooLarge(file, sizeLimit);
    }
    std::string content;
    std::array<char, 65536> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), handle.get())) {
        if (content.size() + count > sizeLimit) { // of a stream, whose size nobody knows before
            throwTooLarge(file, sizeLimit);
        }
        content.append(buffer.data(), count);
    }
    if (std::ferror(handle.get()) != 0) {
        throwReadError(file, lastError());
    }
    return content;
}

std::size_t writeFiles(const std::filesystem::path& directory, const std::vector<OutputFile>& files) {
    if (directory.empty()) {
        throw HostError({}, "the name of the directory to write to is empty; \".\" is the current one");
    }
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        throwFileError(directory, "cannot make this directory", error);
    }
    std::vector<std::unique_ptr<Replacement>> replacements;
    for (const OutputFile& file : files) {
        const std::filesystem::path target = linkTarget(directory / file.name);
        if (!hasContent(target, file.content)) {
            replacements.push_back(std::make_unique<Replacement>(
                target, file.content, permissionsToKeep(target), Durability::None));
        }
    }
    try {
        for (const auto& replacement : replacements) {
            replacement->takePlace();
        }
    } catch (...) {
        for (const auto& replacement : replacements) {
            replacement->giveBack();
        }
        throw;
    }
    return replacements.size();
}

void replaceFile(const std::filesystem::path& file, std::string_view content) {
    requireName(file, "write");
    const std::filesystem::path target = linkTarget(file);
    Replacement(target, content, permissionsToKeep(target), Durability::Crash).takePlace();
}

void writeFileOrStream(const std::filesystem::path& file, std::string_view content) {
    requireName(file, "write");
    if (!isStream(file)) {
        const std::filesystem::path directory = file.parent_path();
        writeFiles(directory.empty() ? "." : directory, {{file.filename().string(), std::string(content)}});
        return;
    }
    FileHandle stream(std::fopen(file.string().c_str(), "wb"));
    const std::error_code error =
        stream ? writeAll(std::move(stream), content, Durability::None) : lastError();
    if (error) {
        throwFileError(file, cannotWrite, error);
    }
}

} // namespace patina
