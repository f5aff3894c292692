// Materials, exported in other languages than Cg.

#include "tests/host/host_checks.h"
#include "translation/translator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::connection;
using testing::node;
using testing::output;
using testing::property;

const ShaderTranslator& translator() {
    static const std::unique_ptr<ShaderTranslator> made = makeTranslator();
    return *made;
}

ExportedMaterial exportedIn(Material& material, const std::vector<ShaderTarget>& targets) {
    ExportOptions options;
    options.targets = targets;
    options.translator = &translator();
    return testing::exportedFrom(material, options);
}

/// A texture, tinted.
const std::string& tintedTexture() {
    static const std::string body =
        node("uv", "CoreUv") + node("paint", "CoreTexture", property("Name", "string", "Paint")) +
        node("tint", "CoreConstant", property("Name", "string", "Tint")) +
        testing::maths("tinted", "Multiply") + connection("uv", "read", "paint", "in_uv") +
        connection("paint", "out_colour", "tinted", "in_value1") +
        connection("tint", "read", "tinted", "in_value2") + output("colour", "tinted", "out_value");
    return body;
}

std::vector<std::string> declarationsIn(const std::string& program) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < program.size()) {
        const std::size_t end = program.find('\n', begin);
        const std::string line = program.substr(begin, end - begin);
        for (const char* word : {"uniform ", "layout(", "in ", "out "}) {
            if (line.rfind(word, 0) == 0) {
                lines.push_back(line);
            }
        }
        begin = end + 1;
    }
    return lines;
}

TEST(ExportedTargets, GlslHasPlainUniforms) {
    Material material = testing::built(tintedTexture());
    const ExportedMaterial exported = exportedIn(material, {{TargetLanguage::Glsl, 330}});
    EXPECT_FALSE(exported.writesCg);
    ASSERT_EQ(exported.targetPrograms.size(), 2U);
    const TargetProgram& vertex = exported.targetPrograms[0];
    EXPECT_EQ(vertex.stage, ProgramStage::Vertex);
    EXPECT_EQ(vertex.file.name, "Sample.vert.glsl");
    EXPECT_EQ(vertex.file.content.substr(0, 13), "#version 330\n");
    EXPECT_EQ(declarationsIn(vertex.file.content),
              (std::vector<std::string>{"uniform mat4 worldViewProjection;",
                                        "layout(location = 0) in vec4 position;",
                                        "layout(location = 1) in vec2 Uv;", "out vec2 interpolant0;"}));
    const TargetProgram& fragment = exported.targetPrograms[1];
    EXPECT_EQ(fragment.stage, ProgramStage::Fragment);
    EXPECT_EQ(fragment.file.name, "Sample.frag.glsl");
    EXPECT_EQ(declarationsIn(fragment.file.content),
              (std::vector<std::string>{"uniform sampler2D Paint;", "uniform vec3 Tint;",
                                        "in vec2 interpolant0;", "layout(location = 0) out vec4 colour;"}));
}

} // namespace
} // namespace patina
