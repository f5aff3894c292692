#include "preview/gl_texture.h"

#include "preview/gl_context.h"

#include <epoxy/gl.h>

namespace patina::preview {

namespace {

void releaseTexture(unsigned int name) { glDeleteTextures(1, &name); }

GlObject makeTexture() {
    GLuint name = 0;
    glGenTextures(1, &name);
    return {name, releaseTexture};
}

GLint internalFormat(TexelFormat format) { return format == TexelFormat::Byte ? GL_RGBA8 : GL_RGBA32F; }

GLint minifyingFilter(TextureFilter filter, bool hasLevels) {
    if (filter == TextureFilter::Nearest) {
        return hasLevels ? GL_NEAREST_MIPMAP_NEAREST : GL_NEAREST;
    }
    return hasLevels ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR;
}

void setSampling(GLenum target, const TextureOptions& options, int levelCount) {
    const GLint wrap = options.wrap == TextureWrap::Repeat ? GL_REPEAT : GL_CLAMP_TO_EDGE;
    glTexParameteri(target, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, wrap);
    glTexParameteri(target, GL_TEXTURE_MAX_LEVEL, levelCount - 1);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER,
                    options.filter == TextureFilter::Nearest ? GL_NEAREST : GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, minifyingFilter(options.filter, levelCount > 1));
    // drivers need not look for it where there is one direction only, and llvmpipe crashes
    if (target == GL_TEXTURE_2D && options.anisotropy > 1.0F) {
        glTexParameterf(target, GL_TEXTURE_MAX_ANISOTROPY_EXT, options.anisotropy);
    }
}

} // namespace

GlTexture::GlTexture(std::span<const TextureLevel> levels, const TextureOptions& options)
    : target_(GL_TEXTURE_2D), object_(makeTexture()) {
    bind(0);
    GLint index = 0;
    for (const TextureLevel& level : levels) {
        glTexImage2D(target_, index++, internalFormat(options.format), level.width, level.height, 0, GL_RGBA,
                     GL_FLOAT, level.texels.data());
    }
    setSampling(target_, options, index);
    requireNoGlError("cannot make a texture");
}

GlTexture::GlTexture(std::span<const float> texels, const TextureOptions& options)
    : target_(GL_TEXTURE_1D), object_(makeTexture()) {
    bind(0);
    glTexImage1D(target_, 0, internalFormat(options.format), static_cast<GLsizei>(texels.size() / 4), 0,
                 GL_RGBA, GL_FLOAT, texels.data());
    setSampling(target_, options, 1);
    requireNoGlError("cannot make a texture");
}

void GlTexture::bind(int unit) const {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    glBindTexture(target_, object_.name());
}

} // namespace patina::preview
