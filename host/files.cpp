#include "host/files.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>

namespace patina {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

std::error_code lastError() { return {errno, std::generic_category()}; }

[[noreturn]] void throwFileError(const std::filesystem::path& file, std::string_view what,
                                 const std::error_code& error) {
    throw HostError({file.string(), 0}, joinText({what, ": ", reasonText(error)}));
}

/// A file under a temporary name that disappears unless it takes its final place.
class TemporaryFile {
public:
    TemporaryFile(std::filesystem::path target, std::string_view content) : target_(std::move(target)) {
        FileHandle file = open();
        const bool complete = std::fwrite(content.data(), 1, content.size(), file.get()) == content.size() &&
                              std::fflush(file.get()) == 0;
        const std::error_code error = lastError();
        const bool closed = std::fclose(file.release()) == 0;
        if (!complete || !closed) {
            const std::error_code reason = complete ? lastError() : error;
            remove();
            throwFileError(target_, "cannot write this file", reason);
        }
    }

    ~TemporaryFile() { remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void takePlace() {
        std::error_code error;
        std::filesystem::rename(temporary_, target_, error);
        if (error) {
            throwFileError(target_, "cannot replace this file", error);
        }
        temporary_.clear();
    }

private:
    /// Makes a file of a name that nobody else uses, so that exports side by side do not meet.
    FileHandle open() {
        constexpr int attempts = 1000;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            temporary_ = target_;
            temporary_ += ".tmp" + std::to_string(attempt);
            if (FileHandle file{std::fopen(temporary_.string().c_str(), "wbx")}) {
                return file;
            }
            if (errno != EEXIST) {
                break;
            }
        }
        const std::error_code error = lastError();
        temporary_.clear();
        throwFileError(target_, "cannot write this file", error);
    }

    void remove() const {
        if (!temporary_.empty()) {
            std::error_code ignored;
            std::filesystem::remove(temporary_, ignored);
        }
    }

    std::filesystem::path target_;
    std::filesystem::path temporary_; ///< empty once it took its place
};

} // namespace

bool isFileName(std::string_view text) {
    constexpr std::string_view refused = "/\\:*?\"<>|";
    const auto isRefused = [&](char letter) {
        const auto code = static_cast<unsigned char>(letter);
        return code < 0x20 || code == 0x7F || refused.find(letter) != std::string_view::npos;
    };
    return !text.empty() && text != "." && text != ".." && std::none_of(text.begin(), text.end(), isRefused);
}

std::string readFile(const std::filesystem::path& file, std::size_t sizeLimit) {
    std::error_code status;
    if (std::filesystem::is_directory(file, status)) {
        throwFileError(file, "cannot read this file", std::make_error_code(std::errc::is_a_directory));
    }
    const FileHandle handle(std::fopen(file.string().c_str(), "rb"));
    if (!handle) {
        throwFileError(file, "cannot open this file", lastError());
    }
    std::string content;
    std::array<char, 65536> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), handle.get())) {
        if (content.size() + count > sizeLimit) {
            throw HostError(
                {file.string(), 0},
                joinText({"this file is larger than ", std::to_string(sizeLimit / (1024 * 1024)), " MiB"}));
        }
        content.append(buffer.data(), count);
    }
    if (std::ferror(handle.get()) != 0) {
        throwFileError(file, "cannot read this file", lastError());
    }
    return content;
}

void writeFiles(const std::filesystem::path& directory, const std::vector<OutputFile>& files) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        throwFileError(directory, "cannot make this directory", error);
    }
    std::vector<std::unique_ptr<TemporaryFile>> temporaries;
    for (const OutputFile& file : files) {
        const std::filesystem::path target = directory / file.name;
        if (std::filesystem::is_directory(target, error)) {
            throwFileError(target, "cannot write this file", std::make_error_code(std::errc::is_a_directory));
        }
        temporaries.push_back(std::make_unique<TemporaryFile>(target, file.content));
    }
    for (const auto& temporary : temporaries) {
        temporary->takePlace();
    }
}

} // namespace patina
