#pragma once

#include <filesystem>

namespace patina {

/// A dynamically loaded module; unloads it when destroyed.
/// Threads: load from one thread at a time; find and extension are thread-safe.
class DynamicLibrary {
public:
    /// Throws HostError when the module cannot be loaded.
    explicit DynamicLibrary(const std::filesystem::path& file);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// The function exported under that name, or null; callable while the module is loaded.
    template <typename Function>
    Function* find(const char* name) const {
        return reinterpret_cast<Function*>(findSymbol(name));
    }

    /// The file name ending of modules: ".so", ".dylib" or ".dll".
    static const char* extension();

private:
    void* findSymbol(const char* name) const;

    void* handle_;
};

} // namespace patina
