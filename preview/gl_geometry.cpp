#include "preview/gl_geometry.h"

#include "preview/gl_context.h"

#include <epoxy/gl.h>

#include <cstddef>

namespace patina::preview {

namespace {

void releaseArray(unsigned int name) { glDeleteVertexArrays(1, &name); }
void releaseBuffer(unsigned int name) { glDeleteBuffers(1, &name); }

GlObject makeArray() {
    GLuint name = 0;
    glGenVertexArrays(1, &name);
    return {name, releaseArray};
}

template <typename Value>
GlObject makeBuffer(GLenum target, std::span<const Value> values) {
    GLuint name = 0;
    glGenBuffers(1, &name);
    GlObject buffer(name, releaseBuffer);
    glBindBuffer(target, name);
    glBufferData(target, static_cast<GLsizeiptr>(values.size_bytes()), values.data(), GL_STATIC_DRAW);
    return buffer;
}

} // namespace

GlGeometry::GlGeometry(std::span<const GlAttribute> attributes, std::span<const std::uint32_t> indices)
    : array_(makeArray()), indexCount_(static_cast<int>(indices.size())) {
    glBindVertexArray(array_.name());
    buffers_.push_back(makeBuffer(GL_ELEMENT_ARRAY_BUFFER, indices));
    for (const GlAttribute& attribute : attributes) {
        buffers_.push_back(makeBuffer(GL_ARRAY_BUFFER, attribute.values));
        const auto location = static_cast<GLuint>(attribute.location);
        glEnableVertexAttribArray(location);
        glVertexAttribPointer(location, attribute.components, GL_FLOAT, GL_FALSE, 0, nullptr);
    }
    requireNoGlError("cannot pass a mesh to the graphics driver");
}

void GlGeometry::draw() const {
    glBindVertexArray(array_.name());
    glDrawElements(GL_TRIANGLES, indexCount_, GL_UNSIGNED_INT, nullptr);
}

} // namespace patina::preview
