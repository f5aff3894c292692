#pragma once

#include <memory>
#include <string>

namespace patina::preview {

// OpenGL without a window. The objects of gl_program.h, gl_texture.h, gl_target.h and gl_geometry.h belong to
// the context that is current where they are made, and go before it does.

/// A context of OpenGL 3.3 or up, core profile. It is current on the thread that makes it until it goes.
/// Threads: one context at a time in a process, and that on one thread.
class GlContext {
public:
    /// Throws HostError, saying what to install, where there is no such OpenGL.
    GlContext();
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    const std::string& renderer() const { return renderer_; }  ///< as the driver names itself
    int textureLimit() const { return textureLimit_; }         ///< texels a side
    float anisotropyLimit() const { return anisotropyLimit_; } ///< 1 where the driver has no such filter

private:
    struct Connection;

    std::unique_ptr<Connection> connection_;
    std::string renderer_;
    int textureLimit_ = 0;
    float anisotropyLimit_ = 1.0F;
};

/// Throws HostError when OpenGL has reported an error since this was last asked; `action` is what was tried.
void requireNoGlError(const std::string& action);

} // namespace patina::preview
