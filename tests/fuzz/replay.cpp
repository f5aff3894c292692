// The main of a fuzz target where there is no libFuzzer: runs it over files, and over those in directories.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& place) {
    if (!std::filesystem::is_directory(place)) {
        return {place};
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(place)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return false;
    }
    const std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    // before it runs, so that the last line tells which input ended the program
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    return true;
}

} // namespace

int main(int count, char** arguments) {
    std::size_t replayed = 0;
    for (int i = 1; i < count; ++i) {
        for (const std::filesystem::path& file : filesIn(arguments[i])) {
            if (!replay(file)) {
                return 1;
            }
            ++replayed;
        }
    }
    std::printf("%zu inputs\n", replayed);
    return replayed == 0 ? 1 : 0;
}
