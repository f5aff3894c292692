#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// [thread-safe], as long as no two threads write the same file.

/// Whether a text can name a file on every system: not empty, not "." or "..", without control characters and
/// without / \ : * ? " < > |
bool isFileName(std::string_view text);

/// The bytes of a document. Throws HostError, at line 1, when it cannot be read or is larger than `sizeLimit`
/// bytes.
std::string readFile(const std::filesystem::path& file, std::size_t sizeLimit);

/// A file to be written.
struct OutputFile {
    std::string name;
    std::string content;
};

/// Writes files into a directory, which is made when it is missing, replacing earlier ones. A file that holds
/// its content already is left alone, time stamp and all. Gives the number of files that changed.
/// Every file is complete on disk under a temporary name before the first takes its place; when one cannot,
/// those before it give theirs back. Throws HostError then, and nothing has changed.
std::size_t writeFiles(const std::filesystem::path& directory, const std::vector<OutputFile>& files);

/// Writes one file. It is complete on disk under a temporary name beside the earlier one before it takes its
/// place, with the earlier one's permissions; of a symbolic link, it is the target that is replaced. Throws
/// HostError when it cannot be written, or when the earlier one is write-protected or no regular file;
/// nothing has changed then.
void replaceFile(const std::filesystem::path& file, std::string_view content);

} // namespace patina
