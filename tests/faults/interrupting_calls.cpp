// A library to be loaded before all others (LD_PRELOAD). It counts the calls that change what lies below a
// directory, and sends the process a signal before one of them takes effect, or half way through a write:
//
// PATINA_INTERRUPT_BELOW   the directory
// PATINA_INTERRUPT_AT      which call, from 0
// PATINA_INTERRUPT_SIGNAL  the number of the signal

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_set>

namespace {

std::string setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

bool isBelow(const char* file) {
    static const std::string directory = setting("PATINA_INTERRUPT_BELOW");
    return std::strncmp(file, directory.c_str(), directory.size()) == 0;
}

/// Whether the process is to end at this call.
bool isTurn() {
    static long left = std::atol(setting("PATINA_INTERRUPT_AT").c_str());
    return left-- == 0;
}

void interrupt() { std::raise(std::atoi(setting("PATINA_INTERRUPT_SIGNAL").c_str())); }

void passCall() {
    if (isTurn()) {
        interrupt();
    }
}

void pass(const char* file) {
    if (isBelow(file)) {
        passCall();
    }
}

/// The open ones of those files that are written.
std::unordered_set<const std::FILE*>& written() {
    static std::unordered_set<const std::FILE*> files;
    return files;
}

void pass(const std::FILE* file) {
    if (written().count(file) != 0) {
        passCall();
    }
}

/// What would be called without this library.
template <typename Function>
Function* following(Function* /*type*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

std::FILE* fopen(const char* file, const char* mode) {
    const bool isWritten = std::strchr(mode, 'r') == nullptr && isBelow(file);
    if (isWritten) {
        passCall();
    }
    std::FILE* opened = following(&fopen, "fopen")(file, mode);
    if (isWritten && opened != nullptr) {
        written().insert(opened);
    }
    return opened;
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
    const auto write = following(&fwrite, "fwrite");
    pass(file);
    if (written().count(file) != 0 && isTurn()) {
        write(data, size, count / 2, file);
        following(&fflush, "fflush")(file);
        interrupt();
    }
    return write(data, size, count, file);
}

int fflush(std::FILE* file) {
    pass(file);
    return following(&fflush, "fflush")(file);
}

int fclose(std::FILE* file) {
    pass(file);
    written().erase(file);
    return following(&fclose, "fclose")(file);
}

int mkdir(const char* directory, mode_t mode) noexcept {
    pass(directory);
    return following(&mkdir, "mkdir")(directory, mode);
}

int fchmodat(int directory, const char* file, mode_t mode, int flags) noexcept {
    pass(file);
    return following(&fchmodat, "fchmodat")(directory, file, mode, flags);
}

int link(const char* from, const char* to) noexcept {
    pass(to);
    return following(&link, "link")(from, to);
}

int rename(const char* from, const char* to) noexcept {
    pass(to);
    return following(&rename, "rename")(from, to);
}

int remove(const char* file) noexcept {
    pass(file);
    return following(&remove, "remove")(file);
}

} // extern "C"
