// Translated programs, compiled and linked by a driver of OpenGL ES.

#include "tests/translation/program_pairs.h"
#include "translation/translator.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

EGLDisplay openDisplay() {
    if (!epoxy_has_egl() || !epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
        return EGL_NO_DISPLAY;
    }
    EGLDisplay display =
        eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    return eglInitialize(display, nullptr, nullptr) == EGL_TRUE ? display : EGL_NO_DISPLAY;
}

EGLContext openContext(EGLDisplay display) {
    constexpr std::array<EGLint, 5> wantedConfig = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                                    EGL_OPENGL_ES3_BIT, EGL_NONE};
    constexpr std::array<EGLint, 5> wantedContext = {EGL_CONTEXT_MAJOR_VERSION_KHR, 3,
                                                     EGL_CONTEXT_MINOR_VERSION_KHR, 1, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (display == EGL_NO_DISPLAY || eglBindAPI(EGL_OPENGL_ES_API) != EGL_TRUE ||
        eglChooseConfig(display, wantedConfig.data(), &config, 1, &count) != EGL_TRUE || count == 0) {
        return EGL_NO_CONTEXT;
    }
    return eglCreateContext(display, config, EGL_NO_CONTEXT, wantedContext.data());
}

/// Threads that a driver keeps end with the process, and so does the display.
class Driver : public ::testing::Test {
protected:
    void SetUp() override {
        display_ = openDisplay();
        context_ = openContext(display_);
        ASSERT_TRUE(context_ != EGL_NO_CONTEXT &&
                    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) == EGL_TRUE)
            << "there is no OpenGL ES 3.1 without a window; install libegl1, libgles2 and libgl1-mesa-dri";
    }

    void TearDown() override {
        if (context_ != EGL_NO_CONTEXT) {
            eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
            eglDestroyContext(display_, context_);
        }
    }

private:
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLContext context_ = EGL_NO_CONTEXT;
};

constexpr GLsizei logSize = 2000;

void expectCompiled(GLuint shader, const std::string& text) {
    const char* begin = text.data();
    const auto size = static_cast<GLint>(text.size());
    glShaderSource(shader, 1, &begin, &size);
    glCompileShader(shader);
    GLint isCompiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &isCompiled);
    std::array<char, logSize> log = {};
    glGetShaderInfoLog(shader, logSize, nullptr, log.data());
    EXPECT_EQ(isCompiled, GL_TRUE) << log.data() << "\n" << text;
}

void expectLinked(const std::string& vertex, const std::string& fragment) {
    const GLuint program = glCreateProgram();
    for (const auto& [kind, text] :
         {std::pair{GL_VERTEX_SHADER, &vertex}, std::pair{GL_FRAGMENT_SHADER, &fragment}}) {
        const GLuint shader = glCreateShader(kind);
        expectCompiled(shader, *text);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
    std::array<char, logSize> log = {};
    glGetProgramInfoLog(program, logSize, nullptr, log.data());
    EXPECT_EQ(isLinked, GL_TRUE) << log.data() << "\n" << vertex << "\n" << fragment;
    glDeleteProgram(program);
}

void expectAllLinked(const std::vector<testing::ProgramPair>& pairs) {
    const std::unique_ptr<ShaderTranslator> translator = makeTranslator();
    const std::vector<ShaderTarget> targets = {{TargetLanguage::Essl, 300}, {TargetLanguage::Essl, 310}};
    ASSERT_FALSE(pairs.empty());
    for (const testing::ProgramPair& pair : pairs) {
        const auto vertex = translator->translate(ProgramStage::Vertex, pair.vertex, targets);
        const auto fragment = translator->translate(ProgramStage::Fragment, pair.fragment, targets);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            SCOPED_TRACE(pair.name + " in " + std::to_string(targets[i].version));
            expectLinked(vertex[i].content, fragment[i].content);
        }
    }
}

TEST_F(Driver, TakesExportedPrograms) {
    expectAllLinked({testing::examplePair(), testing::registerPair(), testing::pointPair()});
}

TEST_F(Driver, TakesEveryNodeInEveryMode) { expectAllLinked(testing::nodePairs()); }

TEST_F(Driver, TakesNamesThatItKeeps) { expectAllLinked(testing::awkwardPairs()); }

} // namespace
} // namespace patina
