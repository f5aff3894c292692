#pragma once

#include <dlfcn.h>
#include <link.h>

#include <cstddef>
#include <string>
#include <vector>

namespace patina::testing {

/// Keeps the drivers of OpenGL that are loaded until the process ends, so that the leak sanitizer can tell by
/// name what they leave behind; see leaks.supp.
inline void keepGlDriversLoaded() {
    std::vector<std::string> drivers;
    const auto note = [](dl_phdr_info* library, std::size_t, void* names) {
        const std::string name = library->dlpi_name;
        if (name.find("_dri.so") != std::string::npos) {
            static_cast<std::vector<std::string>*>(names)->push_back(name);
        }
        return 0;
    };
    dl_iterate_phdr(note, &drivers);
    for (const std::string& driver : drivers) {
        dlopen(driver.c_str(), RTLD_LAZY | RTLD_NODELETE);
    }
}

} // namespace patina::testing
