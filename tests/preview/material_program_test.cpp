#include "preview/material_program.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina::preview {
namespace {

constexpr ShaderType float1 = {ComponentType::Float, 1, 1, 1};
constexpr ShaderType float4 = {ComponentType::Float, 4, 1, 1};

TargetProgram program(ProgramStage stage, const std::string& text,
                      const std::vector<ProgramParameter>& parameters) {
    return {{TargetLanguage::Glsl, 330}, stage, {"", "#version 330\n" + text}, parameters};
}

/// What is said of a material that reads `attribute` and, in both programs, `uniform`.
std::vector<std::string> warningsFor(const std::string& attribute, const std::string& uniform) {
    const ProgramParameter read = {uniform, ParameterKind::Uniform, float1, uniform, {}};
    ExportedMaterial exported;
    exported.targetPrograms = {
        program(ProgramStage::Vertex,
                "layout( location = 3 ) in vec4 a;\nuniform float " + uniform +
                    ";\nvoid main() { gl_Position = a*" + uniform + "; }\n",
                {{attribute, ParameterKind::Attribute, float4, "a", {{"location", "3"}}}, read}),
        program(ProgramStage::Fragment,
                "uniform float " + uniform + ";\nout vec4 colour;\nvoid main() { colour = vec4( " + uniform +
                    " ); }\n",
                {read})};
    const GlContext context;
    Warnings warnings;
    Errors errors;
    MaterialProgram(exported, MaterialInputs({}, {}, "m.xml", errors), context, warnings, errors);
    EXPECT_TRUE(errors.empty());
    std::vector<std::string> texts;
    for (const Warning& warning : warnings) {
        texts.push_back(warning.position.file + ": " + warning.text);
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(MaterialProgram, WarnsOnceOfAUniformThatNobodySets) {
    EXPECT_EQ(warningsFor("position", "wind"),
              Texts{"m.xml: no binding presents the uniform \"wind\"; it is 0 in this preview"});
    EXPECT_EQ(warningsFor("position", "time"), Texts{});
}

TEST(MaterialProgram, WarnsOfAStreamThatNoMeshHas) {
    EXPECT_EQ(warningsFor("weights", "time"),
              Texts{"m.xml: no mesh of a preview has the vertex stream \"weights\"; it is (0, 0, 0, 1)"});
    for (const char* known : {"position", "normal", "tangent", "binormal", "colour", "uv2", "TexCoord0"}) {
        EXPECT_EQ(warningsFor(known, "time"), Texts{}) << known;
    }
}

} // namespace
} // namespace patina::preview
