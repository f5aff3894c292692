#include "preview/gl_context.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <string_view>
#include <vector>

namespace patina::preview {

using namespace detail;

namespace {

[[noreturn]] void throwMissing(std::string_view what) {
    throw HostError({}, joinText({"cannot draw: ", what,
                                  "; install an OpenGL 3.3 driver (Debian's packages libegl1, libopengl0 and "
                                  "libgl1-mesa-dri have one that needs no graphics card)"}));
}

bool canLoad(const char* library) {
    void* handle = dlopen(library, RTLD_LAZY | RTLD_LOCAL);
    if (handle == nullptr) {
        return false;
    }
    dlclose(handle);
    return true;
}

/// The functions of OpenGL are looked up when they are first called, which ends the process without these.
void requireLibraries() {
    if (!epoxy_has_egl()) {
        throwMissing("there is no libEGL.so.1");
    }
    if (!canLoad("libOpenGL.so.0") && !canLoad("libGL.so.1")) {
        throwMissing("there is neither libOpenGL.so.0 nor libGL.so.1");
    }
}

bool hasClientExtension(const char* extension) { return epoxy_has_egl_extension(EGL_NO_DISPLAY, extension); }

void addDeviceDisplays(std::vector<EGLDisplay>& displays) {
    constexpr EGLint deviceLimit = 16;
    std::array<EGLDeviceEXT, deviceLimit> devices = {};
    EGLint count = 0;
    if (eglQueryDevicesEXT(deviceLimit, devices.data(), &count) == EGL_TRUE) {
        for (EGLint i = 0; i < count; ++i) {
            displays.push_back(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT,
                                                        devices.at(static_cast<std::size_t>(i)), nullptr));
        }
    }
}

/// Where a context may be had, best first.
std::vector<EGLDisplay> candidateDisplays() {
    std::vector<EGLDisplay> displays;
    if (hasClientExtension("EGL_EXT_platform_base")) {
        if (hasClientExtension("EGL_MESA_platform_surfaceless")) {
            displays.push_back(
                eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
        }
        if (hasClientExtension("EGL_EXT_platform_device") &&
            hasClientExtension("EGL_EXT_device_enumeration")) {
            addDeviceDisplays(displays);
        }
    }
    displays.push_back(eglGetDisplay(EGL_DEFAULT_DISPLAY));
    return displays;
}

EGLContext makeContext(EGLDisplay display) {
    if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE) {
        return EGL_NO_CONTEXT;
    }
    constexpr std::array<EGLint, 5> wantedConfig = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                                    EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display, wantedConfig.data(), &config, 1, &count) != EGL_TRUE || count == 0) {
        return EGL_NO_CONTEXT;
    }
    constexpr std::array<EGLint, 7> wantedContext = {EGL_CONTEXT_MAJOR_VERSION_KHR,
                                                     3,
                                                     EGL_CONTEXT_MINOR_VERSION_KHR,
                                                     3,
                                                     EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR,
                                                     EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT_KHR,
                                                     EGL_NONE};
    return eglCreateContext(display, config, EGL_NO_CONTEXT, wantedContext.data());
}

} // namespace

struct GlContext::Connection {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext context = EGL_NO_CONTEXT;

    Connection() = default;
    ~Connection() { close(); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Makes a context there and makes it current. Gives whether there is one.
    bool open(EGLDisplay candidate) {
        if (candidate == EGL_NO_DISPLAY || eglInitialize(candidate, nullptr, nullptr) != EGL_TRUE) {
            return false;
        }
        display = candidate;
        context = makeContext(display);
        if (context != EGL_NO_CONTEXT &&
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE) {
            return true;
        }
        close();
        return false;
    }

    /// The display stays open until the process ends: a driver that is unloaded with it loses memory.
    void close() {
        if (display == EGL_NO_DISPLAY) {
            return;
        }
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (context != EGL_NO_CONTEXT) {
            eglDestroyContext(display, context);
        }
        display = EGL_NO_DISPLAY;
        context = EGL_NO_CONTEXT;
    }
};

GlContext::GlContext() {
    requireLibraries();
    connection_ = std::make_unique<Connection>();
    const std::vector<EGLDisplay> displays = candidateDisplays();
    if (std::none_of(displays.begin(), displays.end(),
                     [&](EGLDisplay display) { return connection_->open(display); })) {
        throwMissing("there is no driver that offers OpenGL 3.3 without a window");
    }
    // glGetString gives bytes
    renderer_ = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &textureLimit_);
    if (epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic")) {
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &anisotropyLimit_);
    }
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

GlContext::~GlContext() = default;

void requireNoGlError(const std::string& action) {
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR) {
        return;
    }
    if (error == GL_OUT_OF_MEMORY) {
        throw HostError({}, action + ": the graphics driver is out of memory");
    }
    throw HostError({}, action + ": the graphics driver reports error " + std::to_string(error));
}

} // namespace patina::preview
