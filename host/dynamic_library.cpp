#include "host/dynamic_library.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace patina {

using namespace detail;

#if defined(_WIN32)

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file) : handle_(LoadLibraryW(file.c_str())) {
    if (handle_ == nullptr) {
        throw HostError({file.string(), 0}, joinText({"cannot load this plug-in: system error ",
                                                      std::to_string(GetLastError())}));
    }
}

DynamicLibrary::~DynamicLibrary() { FreeLibrary(static_cast<HMODULE>(handle_)); }

void* DynamicLibrary::findSymbol(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

const char* DynamicLibrary::extension() { return ".dll"; }

#else

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    // a name without a directory would be looked for in the system's library folders
    : handle_(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
        throw HostError({file.string(), 0}, joinText({"cannot load this plug-in: ", dlerror()}));
    }
}

DynamicLibrary::~DynamicLibrary() { dlclose(handle_); }

void* DynamicLibrary::findSymbol(const char* name) const { return dlsym(handle_, name); }

const char* DynamicLibrary::extension() {
#if defined(__APPLE__)
    return ".dylib";
#else
    return ".so";
#endif
}

#endif

} // namespace patina
