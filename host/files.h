#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

// [thread-safe], as long as no two threads write the same file.

/// Whether a text can name a file on every system, with an ending behind it: neither empty nor longer than
/// 200 bytes, not "." or "..", and without control characters and any of `/ \ : * ? " < > |`.
bool isFileName(std::string_view text);

/// The bytes of a document. Throws HostError, at line 1, when it cannot be read or is larger than `sizeLimit`
/// bytes, and without a line when the name is empty.
std::string readFile(const std::filesystem::path& file, std::size_t sizeLimit);

/// A file to be written.
struct OutputFile {
    std::string name;
    std::string content;
};

/// Writes files into a directory, which is made when it is missing, replacing earlier ones. A file that holds
/// its content already is left alone, time stamp and all. Gives the number of files that changed.
/// Every file is complete under a temporary name before the first takes its place, with the permissions of
/// the earlier one; of a symbolic link, it is the target that is replaced. When one cannot take its place,
/// those before it give theirs back. Throws HostError then, and when an earlier file is write-protected or no
/// regular file; no file has changed. A process that is killed meanwhile leaves each file as it was or as it
/// shall be, and may leave temporary ones, ".patina-0.tmp" and the like, which nothing here removes: another
/// process may be writing them. What is written can be made again, and need not outlive a crash of the
/// system: nothing waits for the disk.
std::size_t writeFiles(const std::filesystem::path& directory, const std::vector<OutputFile>& files);

/// Writes one file, which is somebody's work. It is complete under a temporary name beside the earlier one,
/// and has reached the disk, before it takes its place, so that a crash of the system leaves the one or the
/// other. It has the earlier one's permissions; of a symbolic link, it is the target that is replaced. Throws
/// HostError when it cannot be written, or when the earlier one is write-protected or no regular file;
/// nothing has changed then.
void replaceFile(const std::filesystem::path& file, std::string_view content);

/// Writes one file as writeFiles does, in a directory that is made when it is missing. A device or a pipe is
/// not replaced but written to. Throws HostError when that cannot be; of what a device or pipe was to get, a
/// part may have arrived.
void writeFileOrStream(const std::filesystem::path& file, std::string_view content);

} // namespace patina
