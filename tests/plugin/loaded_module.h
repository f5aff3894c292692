#pragma once

#include "plugin/plugin.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace patina::testing {

inline const char* modulePath() { return PATINA_TEST_MODULE; }

/// Whether a module is in this process.
inline bool isLoaded(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

/// A plug-in as a host loads it: by path, with its entry points looked up by their plain names.
class LoadedModule {
public:
    explicit LoadedModule(const std::string& path = modulePath())
        : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(handle_, nullptr) << dlerror();
    }
    ~LoadedModule() {
        if (handle_ != nullptr) {
            EXPECT_EQ(dlclose(handle_), 0);
        }
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    void* symbol(const char* name) const { return dlsym(handle_, name); }

    std::uint32_t version() const {
        return reinterpret_cast<std::uint32_t (*)()>(symbol("GetMaterialLibVersion"))();
    }
    std::unique_ptr<NodeFactory> makeFactory() const {
        return std::unique_ptr<NodeFactory>(
            reinterpret_cast<NodeFactory* (*)()>(symbol("CreateNodeFactory"))());
    }

private:
    void* handle_;
};

} // namespace patina::testing
