#include "preview/gl_target.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"
#include "preview/gl_context.h"

#include <epoxy/gl.h>

#include <cstddef>
#include <string>

namespace patina::preview {

using namespace detail;

namespace {

void releaseRenderbuffer(unsigned int name) { glDeleteRenderbuffers(1, &name); }
void releaseFramebuffer(unsigned int name) { glDeleteFramebuffers(1, &name); }

GlObject makeRenderbuffer(GLenum format, int width, int height) {
    GLuint name = 0;
    glGenRenderbuffers(1, &name);
    GlObject buffer(name, releaseRenderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    return buffer;
}

GlObject makeFramebuffer(const GlObject& colour, const GlObject& depth) {
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    GlObject framebuffer(name, releaseFramebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour.name());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth.name());
    return framebuffer;
}

} // namespace

GlTarget::GlTarget(int width, int height)
    : width_(width), height_(height), colour_(makeRenderbuffer(GL_RGBA32F, width, height)),
      depth_(makeRenderbuffer(GL_DEPTH_COMPONENT24, width, height)),
      framebuffer_(makeFramebuffer(colour_, depth_)) {
    const std::string action = joinText({"cannot make an image of ", std::to_string(width), " by ",
                                         std::to_string(height), " pixels to draw into"});
    requireNoGlError(action);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        throw HostError({}, action + ": the graphics driver has none of floats");
    }
}

void GlTarget::bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.name());
    glViewport(0, 0, width_, height_);
    glEnable(GL_DEPTH_TEST);
}

void GlTarget::clear(const std::array<float, 4>& colour) const {
    constexpr GLfloat farthest = 1.0F;
    glClearBufferfv(GL_COLOR, 0, colour.data());
    glClearBufferfv(GL_DEPTH, 0, &farthest);
}

std::vector<float> GlTarget::read() const {
    constexpr std::size_t channels = 4;
    std::vector<float> pixels(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) *
                              channels);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.name());
    glReadPixels(0, 0, width_, height_, GL_RGBA, GL_FLOAT, pixels.data());
    requireNoGlError("cannot draw");
    return pixels;
}

} // namespace patina::preview
