#pragma once

#include <filesystem>

namespace patina {

/// A dynamically loaded module; unloads it when destroyed.
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
