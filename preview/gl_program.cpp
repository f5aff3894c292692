#include "preview/gl_program.h"

#include "host/diagnostic.h"
#include "nodemodel/text.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace patina::preview {

using namespace detail;

namespace {

void releaseShader(unsigned int name) { glDeleteShader(name); }
void releaseProgram(unsigned int name) { glDeleteProgram(name); }

[[noreturn]] void throwLog(const char* what, std::string log) {
    log.erase(std::find(log.begin(), log.end(), '\0'), log.end());
    throw HostError({}, joinText({"the graphics driver refuses ", what, ": ", log}));
}

GlObject compile(GLenum stage, const char* what, const std::string& text) {
    GlObject shader(glCreateShader(stage), releaseShader);
    const char* begin = text.data();
    const auto length = static_cast<GLint>(text.size());
    glShaderSource(shader.name(), 1, &begin, &length);
    glCompileShader(shader.name());
    GLint isCompiled = GL_FALSE;
    glGetShaderiv(shader.name(), GL_COMPILE_STATUS, &isCompiled);
    if (isCompiled == GL_FALSE) {
        GLint size = 0;
        glGetShaderiv(shader.name(), GL_INFO_LOG_LENGTH, &size);
        std::string log(static_cast<std::size_t>(size), '\0');
        glGetShaderInfoLog(shader.name(), size, nullptr, log.data());
        throwLog(what, log);
    }
    return shader;
}

GlObject link(const GlObject& vertex, const GlObject& fragment) {
    GlObject program(glCreateProgram(), releaseProgram);
    glAttachShader(program.name(), vertex.name());
    glAttachShader(program.name(), fragment.name());
    glLinkProgram(program.name());
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program.name(), GL_LINK_STATUS, &isLinked);
    if (isLinked == GL_FALSE) {
        GLint size = 0;
        glGetProgramiv(program.name(), GL_INFO_LOG_LENGTH, &size);
        std::string log(static_cast<std::size_t>(size), '\0');
        glGetProgramInfoLog(program.name(), size, nullptr, log.data());
        throwLog("two programs that are to work together", log);
    }
    return program;
}

using GetVariable = void (*)(GLuint program, GLuint index, GLsizei size, GLsizei* length, GLint* count,
                             GLenum* type, GLchar* name);
using GetLocation = GLint (*)(GLuint program, const GLchar* name);

/// Those that have a location, which built-in ones have not.
std::vector<GlVariable> variablesOf(GLuint program, GLenum countName, GLenum nameSizeName,
                                    GetVariable getVariable, GetLocation getLocation) {
    GLint variableCount = 0;
    glGetProgramiv(program, countName, &variableCount);
    GLint nameSize = 0; // of the longest
    glGetProgramiv(program, nameSizeName, &nameSize);
    std::vector<GlVariable> variables;
    for (GLint i = 0; i < variableCount; ++i) {
        std::string name(static_cast<std::size_t>(nameSize), '\0');
        GlVariable variable;
        GLsizei length = 0;
        getVariable(program, static_cast<GLuint>(i), nameSize, &length, &variable.count, &variable.type,
                    name.data());
        name.resize(static_cast<std::size_t>(length));
        variable.location = getLocation(program, name.c_str());
        variable.name = name.substr(0, name.find('['));
        if (variable.location >= 0) {
            variables.push_back(variable);
        }
    }
    return variables;
}

template <typename Integer>
std::vector<Integer> integers(std::span<const float> values) {
    std::vector<Integer> whole(values.size());
    std::transform(values.begin(), values.end(), whole.begin(),
                   [](float value) { return static_cast<Integer>(std::lround(value)); });
    return whole;
}

template <auto& Set>
void setFloats(GLint location, GLsizei count, std::span<const float> values) {
    Set(location, count, values.data());
}

template <auto& Set>
void setMatrices(GLint location, GLsizei count, std::span<const float> values) {
    Set(location, count, GL_FALSE, values.data());
}

template <auto& Set, typename Integer>
void setIntegers(GLint location, GLsizei count, std::span<const float> values) {
    Set(location, count, integers<Integer>(values).data());
}

struct UniformType {
    GLenum type;
    std::size_t components;
    void (*set)(GLint location, GLsizei count, std::span<const float> values);
};

constexpr std::array<UniformType, 21> uniformTypes = {{
    {GL_FLOAT, 1, setFloats<glUniform1fv>},
    {GL_FLOAT_VEC2, 2, setFloats<glUniform2fv>},
    {GL_FLOAT_VEC3, 3, setFloats<glUniform3fv>},
    {GL_FLOAT_VEC4, 4, setFloats<glUniform4fv>},
    {GL_INT, 1, setIntegers<glUniform1iv, GLint>},
    {GL_INT_VEC2, 2, setIntegers<glUniform2iv, GLint>},
    {GL_INT_VEC3, 3, setIntegers<glUniform3iv, GLint>},
    {GL_INT_VEC4, 4, setIntegers<glUniform4iv, GLint>},
    {GL_UNSIGNED_INT, 1, setIntegers<glUniform1uiv, GLuint>},
    {GL_UNSIGNED_INT_VEC2, 2, setIntegers<glUniform2uiv, GLuint>},
    {GL_UNSIGNED_INT_VEC3, 3, setIntegers<glUniform3uiv, GLuint>},
    {GL_UNSIGNED_INT_VEC4, 4, setIntegers<glUniform4uiv, GLuint>},
    {GL_FLOAT_MAT2, 4, setMatrices<glUniformMatrix2fv>},
    {GL_FLOAT_MAT3, 9, setMatrices<glUniformMatrix3fv>},
    {GL_FLOAT_MAT4, 16, setMatrices<glUniformMatrix4fv>},
    {GL_FLOAT_MAT2x3, 6, setMatrices<glUniformMatrix2x3fv>},
    {GL_FLOAT_MAT2x4, 8, setMatrices<glUniformMatrix2x4fv>},
    {GL_FLOAT_MAT3x2, 6, setMatrices<glUniformMatrix3x2fv>},
    {GL_FLOAT_MAT3x4, 12, setMatrices<glUniformMatrix3x4fv>},
    {GL_FLOAT_MAT4x2, 8, setMatrices<glUniformMatrix4x2fv>},
    {GL_FLOAT_MAT4x3, 12, setMatrices<glUniformMatrix4x3fv>},
}};

} // namespace

GlProgram::GlProgram(const std::string& vertexText, const std::string& fragmentText)
    : object_(link(compile(GL_VERTEX_SHADER, "a vertex program", vertexText),
                   compile(GL_FRAGMENT_SHADER, "a fragment program", fragmentText))),
      uniforms_(variablesOf(
          object_.name(), GL_ACTIVE_UNIFORMS, GL_ACTIVE_UNIFORM_MAX_LENGTH,
          [](auto... arguments) { glGetActiveUniform(arguments...); },
          [](auto... arguments) { return glGetUniformLocation(arguments...); })),
      attributes_(variablesOf(
          object_.name(), GL_ACTIVE_ATTRIBUTES, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH,
          [](auto... arguments) { glGetActiveAttrib(arguments...); },
          [](auto... arguments) { return glGetAttribLocation(arguments...); })) {}

const GlVariable* GlProgram::findUniform(std::string_view name) const {
    const auto found = std::find_if(uniforms_.begin(), uniforms_.end(),
                                    [&](const GlVariable& variable) { return variable.name == name; });
    return found == uniforms_.end() ? nullptr : &*found;
}

bool GlProgram::setUniform(std::string_view name, std::span<const float> values) {
    const GlVariable* uniform = findUniform(name);
    if (uniform == nullptr) {
        return false;
    }
    const auto type = std::find_if(uniformTypes.begin(), uniformTypes.end(),
                                   [&](const UniformType& entry) { return entry.type == uniform->type; });
    if (type == uniformTypes.end()) {
        throw HostError({}, joinText({"the uniform \"", name, "\" does not hold numbers"}));
    }
    const std::size_t wanted = type->components * static_cast<std::size_t>(uniform->count);
    if (values.size() != wanted) {
        throw HostError({}, joinText({"the uniform \"", name, "\" holds ", std::to_string(wanted),
                                      " numbers, and cannot be set to ", std::to_string(values.size())}));
    }
    use();
    type->set(uniform->location, uniform->count, values);
    return true;
}

bool GlProgram::setSampler(std::string_view name, int unit) {
    const GlVariable* uniform = findUniform(name);
    if (uniform == nullptr) {
        return false;
    }
    use();
    glUniform1i(uniform->location, unit);
    return true;
}

void GlProgram::use() const { glUseProgram(object_.name()); }

} // namespace patina::preview
