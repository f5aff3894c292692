#include "preview/gl_context.h"
#include "preview/gl_geometry.h"
#include "preview/gl_program.h"
#include "preview/gl_target.h"
#include "preview/gl_texture.h"
#include "preview/material_program.h"
#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace patina::preview {
namespace {

using Pixel = std::array<float, 4>;

constexpr const char* vertexText = "#version 330\n"
                                   "layout(location = 0) in vec2 corner;\n"
                                   "layout(location = 1) in vec4 given;\n"
                                   "out vec4 passed;\n"
                                   "out vec2 uv;\n"
                                   "void main() {\n"
                                   "    gl_Position = vec4(corner, 0.0, 1.0);\n"
                                   "    uv = 0.5*corner + 0.5;\n"
                                   "    passed = given;\n"
                                   "}\n";

/// A fragment program that gives an expression of `passed`, `uv` and what `declarations` declare.
std::string fragmentText(const std::string& expression, const std::string& declarations = "") {
    return "#version 330\n"
           "in vec4 passed;\n"
           "in vec2 uv;\n" +
           declarations +
           "layout(location = 0) out vec4 colour;\n"
           "void main() { colour = " +
           expression + "; }\n";
}

/// A square over all of the target.
GlGeometry makeSquare() {
    constexpr std::array<float, 8> corners = {-1, -1, 1, -1, 1, 1, -1, 1};
    constexpr std::array<std::uint32_t, 6> indices = {0, 1, 2, 0, 2, 3};
    const std::array<GlAttribute, 1> attributes = {{{.location = 0, .components = 2, .values = corners}}};
    return {attributes, indices};
}

std::vector<Pixel> draw(const GlProgram& program, int width, int height) {
    const GlTarget target(width, height);
    target.bind();
    target.clear({-1, -1, -1, -1});
    program.use();
    makeSquare().draw();
    const std::vector<float> values = target.read();
    std::vector<Pixel> pixels;
    for (std::size_t i = 0; i < values.size(); i += 4) {
        pixels.push_back({values[i], values[i + 1], values[i + 2], values[i + 3]});
    }
    return pixels;
}

class Gl : public ::testing::Test {
protected:
    GlContext context_;
};

TEST_F(Gl, NamesItsRendererAndLimits) {
    EXPECT_NE(context_.renderer(), "");
    EXPECT_GE(context_.textureLimit(), 1024);
    EXPECT_GE(context_.anisotropyLimit(), 1.0F);
}

TEST_F(Gl, TargetsKeepFloatsBeyondZeroAndOne) {
    const GlProgram program(vertexText, fragmentText("vec4(-2.5, 0.123456789, 70000.0, 1.0e-20)"));
    EXPECT_EQ(draw(program, 1, 1), (std::vector<Pixel>{{-2.5F, 0.123456789F, 70000.0F, 1.0e-20F}}));
}

TEST_F(Gl, RowsAreReadFromTheBottom) {
    const GlProgram program(vertexText, fragmentText("vec4(uv, 0.0, 1.0)"));
    EXPECT_EQ(draw(program, 2, 2),
              (std::vector<Pixel>{
                  {0.25F, 0.25F, 0, 1}, {0.75F, 0.25F, 0, 1}, {0.25F, 0.75F, 0, 1}, {0.75F, 0.75F, 0, 1}}));
}

TEST_F(Gl, WhatIsNotDrawnKeepsTheClearColour) {
    const GlTarget target(1, 1);
    target.bind();
    target.clear({0.25F, 0.5F, 2.0F, 0.0F});
    EXPECT_EQ(target.read(), (std::vector<float>{0.25F, 0.5F, 2.0F, 0.0F}));
}

TEST_F(Gl, AMissingAttributeReadsAsTheOrigin) {
    const GlProgram program(vertexText, fragmentText("passed"));
    EXPECT_EQ(draw(program, 1, 1), (std::vector<Pixel>{{0, 0, 0, 1}}));
}

TEST_F(Gl, UniformsAreSetByName) {
    GlProgram program(vertexText,
                      fragmentText("matrix[1] + vec4(list[1], list[0], float(whole), flag != 0u ? 1.0 : 0.0)",
                                   "uniform mat4 matrix;\n"
                                   "uniform float list[2];\n"
                                   "uniform int whole;\n"
                                   "uniform uint flag;\n"));
    const std::array<float, 16> matrix = {0, 0, 0, 0, 10, 20, 30, 40, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(program.setUniform("matrix", matrix));
    EXPECT_TRUE(program.setUniform("list", std::array<float, 2>{1, 2}));
    EXPECT_TRUE(program.setUniform("whole", std::array<float, 1>{3}));
    EXPECT_TRUE(program.setUniform("flag", std::array<float, 1>{1}));
    EXPECT_FALSE(program.setUniform("absent", std::array<float, 1>{1}));
    EXPECT_EQ(draw(program, 1, 1), (std::vector<Pixel>{{12, 21, 33, 41}}));
}

TEST_F(Gl, UnsignedIntegersMayBeVectors) {
    GlProgram program(vertexText,
                      fragmentText("vec4(pair, list[1].xy) + vec4(all)", "uniform uvec2 pair;\n"
                                                                         "uniform uvec3 list[2];\n"
                                                                         "uniform uvec4 all;\n"));
    EXPECT_TRUE(program.setUniform("pair", std::array<float, 2>{1, 2}));
    EXPECT_TRUE(program.setUniform("list", std::array<float, 6>{3, 4, 5, 6, 7, 8}));
    EXPECT_TRUE(program.setUniform("all", std::array<float, 4>{10, 20, 30, 40}));
    EXPECT_EQ(draw(program, 1, 1), (std::vector<Pixel>{{11, 22, 36, 47}}));
}

TEST_F(Gl, NamesMayBeLong) {
    const std::string name(800, 'n');
    GlProgram program(vertexText, fragmentText(name, "uniform vec4 " + name + ";\n"));
    EXPECT_TRUE(program.setUniform(name, std::array<float, 4>{1, 2, 3, 4}));
    EXPECT_EQ(draw(program, 1, 1), (std::vector<Pixel>{{1, 2, 3, 4}}));
}

TEST_F(Gl, ATextureOfAnotherKindIsBlackWithAWarning) {
    ExportedMaterial exported;
    exported.targetPrograms.resize(2);
    exported.targetPrograms[0].file.content = vertexText;
    TargetProgram& fragment = exported.targetPrograms[1];
    fragment.stage = ProgramStage::Fragment;
    fragment.file.content = fragmentText("vec4(1.0, texture(sky, vec3(1.0)).rg, 1.0) + texture(map, uv).aaaa",
                                         "uniform samplerCube sky;\nuniform sampler2D map;\n");
    const auto sampler = [](const char* name, ComponentType type) {
        ProgramParameter parameter;
        parameter.name = name;
        parameter.kind = ParameterKind::Sampler;
        parameter.type.componentType = type;
        parameter.targetName = name;
        return parameter;
    };
    fragment.parameters = {sampler("sky", ComponentType::SamplerCube),
                           sampler("map", ComponentType::Sampler2D)};
    const PreviewOptions options;
    Warnings warnings;
    Errors errors;
    const MaterialProgram material(exported, MaterialInputs({}, options, "m.xml", errors), context_, warnings,
                                   errors);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].text,
              "the texture \"sky\" is a samplerCUBE; previews show those of 1D and 2D, and black for it");
    EXPECT_TRUE(errors.empty());
    const GlTarget target(1, 1);
    target.bind();
    target.clear({});
    material.use();
    makeSquare().draw();
    EXPECT_EQ(target.read(), (std::vector<float>{2, 1, 1, 2}));
}

TEST_F(Gl, AUniformIsRefusedAWrongNumberOfValues) {
    GlProgram program(vertexText, fragmentText("tint*passed", "uniform vec4 tint;\n"));
    EXPECT_EQ(testing::hostErrorOf([&] { program.setUniform("tint", std::array<float, 3>{}); }),
              "error: the uniform \"tint\" holds 4 numbers, and cannot be set to 3");
}

TEST_F(Gl, ASamplerIsNoUniformOfNumbers) {
    GlProgram program(vertexText, fragmentText("texture(map, uv)", "uniform sampler2D map;\n"));
    EXPECT_EQ(testing::hostErrorOf([&] { program.setUniform("map", std::array<float, 1>{}); }),
              "error: the uniform \"map\" does not hold numbers");
}

TEST_F(Gl, TexturesBeginAtCoordinateZero) {
    GlProgram program(vertexText,
                      fragmentText("texture(map, uv) + texture(ramp, uv.x)", "uniform sampler2D map;\n"
                                                                             "uniform sampler1D ramp;\n"));
    const std::array<TextureLevel, 1> levels = {{{2, 2, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0}}}};
    const GlTexture map(levels, {.filter = TextureFilter::Nearest});
    const GlTexture ramp(std::vector<float>{10, 0, 0, 0, 20, 0, 0, 0}, {.filter = TextureFilter::Nearest});
    map.bind(0);
    ramp.bind(1);
    EXPECT_TRUE(program.setSampler("map", 0));
    EXPECT_TRUE(program.setSampler("ramp", 1));
    EXPECT_FALSE(program.setSampler("absent", 1));
    EXPECT_EQ(draw(program, 2, 2),
              (std::vector<Pixel>{{11, 0, 0, 0}, {22, 0, 0, 0}, {13, 0, 0, 0}, {24, 0, 0, 0}}));
}

TEST_F(Gl, ErrorsOfAShaderHaveTheDriversWords) {
    const std::string message =
        testing::hostErrorOf([] { GlProgram(vertexText, fragmentText("missing_name")); });
    EXPECT_EQ(message.find("error: the graphics driver refuses a fragment program: "), 0U) << message;
    EXPECT_NE(message.find("missing_name"), std::string::npos) << message;
}

} // namespace
} // namespace patina::preview
