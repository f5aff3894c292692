// Cg programs in other languages, to the letter.

#include "tests/host/host_checks.h"
#include "translation/target_words.h"
#include "translation/translator.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace patina {
namespace {

using detail::nameInTarget;
using testing::readText;

constexpr ShaderTarget glsl = {TargetLanguage::Glsl, 330};
constexpr ShaderTarget hlsl = {TargetLanguage::Hlsl, 50};
constexpr ShaderTarget spirv = {TargetLanguage::Spirv, 10};

const ShaderTranslator& translator() {
    static const std::unique_ptr<ShaderTranslator> made = makeTranslator();
    return *made;
}

TranslatedProgram translated(ProgramStage stage, const std::string& program, const ShaderTarget& target) {
    return translator().translate(stage, program, {target}).front();
}

std::string expectedFile(const std::string& name) {
    return readText(std::filesystem::path(PATINA_EXPECTED) / name);
}

/// "half3 Tint -> Tint offset=32", a line for each parameter.
std::string parametersOf(const TranslatedProgram& program) {
    constexpr const char* kinds[] = {"uniform", "sampler", "attribute", "interpolant", "output"};
    std::ostringstream text;
    for (const ProgramParameter& parameter : program.parameters) {
        text << kinds[static_cast<std::size_t>(parameter.kind)] << ' ' << parameter.type << ' '
             << parameter.name << " ->";
        if (parameter.targetName != parameter.name) {
            text << ' ' << parameter.targetName;
        }
        for (const auto& [key, value] : parameter.place) {
            text << ' ' << key << '=' << value;
        }
        text << '\n';
    }
    return text.str();
}

struct LanguageRow {
    const char* ending;
    ShaderTarget target;
};

constexpr LanguageRow languages[] = {{"glsl", glsl},
                                     {"essl", {TargetLanguage::Essl, 300}},
                                     {"hlsl", hlsl},
                                     {"metal", {TargetLanguage::Msl, 20}}};

TEST(Translate, WritesEachLanguage) {
    for (const auto& [stage, name] :
         {std::pair{ProgramStage::Vertex, "sample.vert."}, {ProgramStage::Fragment, "sample.frag."}}) {
        const std::string program = expectedFile(std::string(name) + "cg");
        for (const auto& [ending, target] : languages) {
            EXPECT_EQ(translated(stage, program, target).content, expectedFile(std::string(name) + ending))
                << ending;
        }
    }
}

TEST(Translate, SaysWhereParametersAreInEachLanguage) {
    const std::string vertex = expectedFile("sample.vert.cg");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Vertex, vertex, glsl)),
              "uniform float4x4 worldViewProjection ->\n"
              "uniform half Scale ->\n"
              "attribute float4 position -> location=0\n"
              "attribute float2 map1 -> location=3\n"
              "attribute half4 Wear -> location=2\n"
              "output float4 clipPosition -> gl_Position\n"
              "interpolant float2 interpolant0 ->\n"
              "interpolant half4 interpolant1 ->\n");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Vertex, vertex, {TargetLanguage::Glsl, 450})),
              "uniform float4x4 worldViewProjection ->\n"
              "uniform half Scale ->\n"
              "attribute float4 position -> location=0\n"
              "attribute float2 map1 -> location=3\n"
              "attribute half4 Wear -> location=2\n"
              "output float4 clipPosition -> gl_Position\n"
              "interpolant float2 interpolant0 -> location=1\n"
              "interpolant half4 interpolant1 -> location=0\n");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Vertex, vertex, hlsl)),
              "uniform float4x4 worldViewProjection -> buffer=0 offset=0\n"
              "uniform half Scale -> buffer=0 offset=96\n"
              "attribute float4 position -> semantic=ATTR0\n"
              "attribute float2 map1 -> semantic=ATTR3\n"
              "attribute half4 Wear -> semantic=ATTR2\n"
              "output float4 clipPosition -> gl_Position semantic=SV_Position\n"
              "interpolant float2 interpolant0 -> semantic=TEXCOORD1\n"
              "interpolant half4 interpolant1 -> semantic=TEXCOORD0\n");
    const std::string fragment = expectedFile("sample.frag.cg");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment, fragment, {TargetLanguage::Msl, 20})),
              "sampler sampler2D Paint -> texture=1 sampler=1\n"
              "uniform half3 Tint -> buffer=0 offset=32\n"
              "uniform float4x3 Turn -> buffer=0 offset=64\n"
              "uniform float[3] Weights -> buffer=0 offset=160\n"
              "interpolant float4 interpolant0 -> user=locn2\n"
              "output float4 colour -> color=0\n");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment, fragment, spirv)),
              "sampler sampler2D Paint -> set=1 binding=1\n"
              "uniform half3 Tint -> set=1 binding=16 offset=32\n"
              "uniform float4x3 Turn -> set=1 binding=16 offset=64\n"
              "uniform float[3] Weights -> set=1 binding=16 offset=160\n"
              "interpolant float4 interpolant0 -> location=2\n"
              "output float4 colour -> location=0\n");
}

// words of the targets, a name that back ends make up, and one that a parameter of a function has too
constexpr const char* awkwardNames = R"cg(uniform sampler1D linear : TEXUNIT1;
uniform sampler3D Volume : TEXUNIT2;
uniform samplerCUBE sample : TEXUNIT3;
uniform half3 in_tint : register( c2 );
uniform float param_1 : register( c3 );
uniform float line : register( c4 );
uniform bool Flag : register( c5 );
uniform int Count : register( c6 );

void tint( float2 in_uv, half3 in_tint, out half3 out_colour )
{
	out_colour = in_uv.xyx * in_tint;
}

void main(
	float4 point : TEXCOORD2,
	float4 place : WPOS,
	out float4 colour : COLOR0 )
{
	half3 tinted;
	tint( point.xy, in_tint, tinted );
	tinted += param_1 * f3tex3D( Volume, point.xyz ) + h3texCUBE( sample, point.xyz );
	colour = float4( tinted + f1tex1D( linear, point.x ) + line + ( Flag ? Count : 1 ), 1.0 ) + place;
}
)cg";

TEST(Translate, AnyNameOfCgWillDo) {
    EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment, awkwardNames, glsl)),
              "uniform half3 in_tint ->\n"
              "uniform float param_1 ->\n"
              "uniform float line ->\n"
              "uniform bool Flag ->\n"
              "uniform int Count ->\n"
              "sampler sampler3D Volume ->\n"
              "sampler samplerCUBE sample -> sample_of_cg\n"
              "sampler sampler1D linear ->\n"
              "interpolant float4 point ->\n"
              "interpolant float4 place -> gl_FragCoord\n"
              "output float4 colour -> location=0\n");
    const TranslatedProgram inHlsl = translated(ProgramStage::Fragment, awkwardNames, hlsl);
    EXPECT_EQ(parametersOf(inHlsl), "uniform half3 in_tint -> buffer=0 offset=32\n"
                                    "uniform float param_1 -> buffer=0 offset=48\n"
                                    "uniform float line -> line_of_cg buffer=0 offset=64\n"
                                    "uniform bool Flag -> buffer=0 offset=80\n"
                                    "uniform int Count -> buffer=0 offset=96\n"
                                    "sampler sampler3D Volume -> texture=2 sampler=2\n"
                                    "sampler samplerCUBE sample -> sample_of_cg texture=3 sampler=3\n"
                                    "sampler sampler1D linear -> linear_of_cg texture=1 sampler=1\n"
                                    "interpolant float4 point -> point_of_cg semantic=TEXCOORD2\n"
                                    "interpolant float4 place -> gl_FragCoord semantic=SV_Position\n"
                                    "output float4 colour -> semantic=SV_Target0\n");
    EXPECT_NE(inHlsl.content.find("float3 in_tint : packoffset(c2);"), std::string::npos) << inHlsl.content;
}

TEST(NamesInTargets, AreThoseOfCgUnlessTheTargetHasThem) {
    struct Row {
        const char* name;
        const char* glsl;
        const char* hlsl;
        const char* msl;
    };
    constexpr Row rows[] = {
        {"Tint", "Tint", "Tint", "Tint"},
        {"Rust_mask", "Rust_mask", "Rust_mask", "Rust_mask"},
        {"Texture", "Texture", "Texture", "Texture"},
        {"_3d", "_3d", "_3d", "_3d"},
        {"mask_", "mask_", "mask_", "mask_"},
        {"sample", "sample_of_cg", "sample_of_cg", "sample_of_cg"},
        {"mix", "mix_of_cg", "mix_of_cg", "mix_of_cg"},
        {"mat2x3", "mat2x3_of_cg", "mat2x3_of_cg", "mat2x3_of_cg"},
        {"mat2x5", "mat2x5", "mat2x5", "mat2x5"},
        {"usampler2DArray", "usampler2DArray_of_cg", "usampler2DArray_of_cg", "usampler2DArray_of_cg"},
        {"image2DTint", "image2DTint", "image2DTint", "image2DTint"},
        // words of one language, or of those that begin with C++
        {"line", "line", "line_of_cg", "line"},
        {"min16float3", "min16float3", "min16float3_of_cg", "min16float3"},
        {"Technique", "Technique", "Technique_of_cg", "Technique"},
        {"and", "and", "and_of_cg", "and_of_cg"},
        {"nullptr", "nullptr", "nullptr_of_cg", "nullptr_of_cg"},
        {"kernel", "kernel", "kernel", "kernel_of_cg"},
        {"packed_float3", "packed_float3", "packed_float3", "packed_float3_of_cg"},
        {"ushort2", "ushort2", "ushort2", "ushort2_of_cg"},
        {"M_PI_F", "M_PI_F", "M_PI_F", "M_PI_F_of_cg"},
        {"FLT_MAX", "FLT_MAX", "FLT_MAX", "FLT_MAX_of_cg"},
        // the back ends' own names
        {"stage_input", "stage_input", "stage_input_of_cg", "stage_input"},
        {"frag_main", "frag_main", "frag_main_of_cg", "frag_main"},
        {"_Paint_sampler", "_Paint_sampler", "_Paint_sampler_of_cg", "_Paint_sampler"},
        {"PaintSmplr", "PaintSmplr", "PaintSmplr", "PaintSmplr_of_cg"},
        {"main0_in", "main0_in", "main0_in", "main0_in_of_cg"},
        {"SPIRV_Cross_Input", "cg_SPIRV_Cross_Input_of_cg", "cg_SPIRV_Cross_Input_of_cg",
         "cg_SPIRV_Cross_Input_of_cg"},
        {"gl_Position", "cg_gl_Position_of_cg", "cg_gl_Position_of_cg", "cg_gl_Position_of_cg"},
        {"spvInverse", "cg_spvInverse_of_cg", "cg_spvInverse_of_cg", "cg_spvInverse_of_cg"},
        {"_12", "cg_u_12_of_cg", "cg_u_12_of_cg", "cg_u_12_of_cg"},
        {"_m0_pad", "cg_u_m0_pad_of_cg", "cg_u_m0_pad_of_cg", "cg_u_m0_pad_of_cg"},
        // underscores side by side, and what might be taken for names without them
        {"Rust__mask", "Rust_u_mask_of_cg", "Rust_u_mask_of_cg", "Rust_u_mask_of_cg"},
        {"Rust___mask", "Rust_u_u_mask_of_cg", "Rust_u_u_mask_of_cg", "Rust_u_u_mask_of_cg"},
        {"Rust_u_mask", "Rust_u_mask", "Rust_u_mask", "Rust_u_mask"},
        {"Rust_u__mask", "Rust_uu_u_mask_of_cg", "Rust_uu_u_mask_of_cg", "Rust_uu_u_mask_of_cg"},
        {"Rust__u_mask", "Rust_u_uu_mask_of_cg", "Rust_u_uu_mask_of_cg", "Rust_u_uu_mask_of_cg"},
        {"mask__", "mask_u_u_of_cg", "mask_u_u_of_cg", "mask_u_u_of_cg"},
        {"gl__mask", "cg_gl_u_mask_of_cg", "cg_gl_u_mask_of_cg", "cg_gl_u_mask_of_cg"},
        {"cg_gl__mask", "cg_cg_gl_u_mask_of_cg", "cg_cg_gl_u_mask_of_cg", "cg_cg_gl_u_mask_of_cg"},
        {"sample_of_cg", "sample_of_cg_of_cg", "sample_of_cg_of_cg", "sample_of_cg_of_cg"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(nameInTarget(TargetLanguage::Glsl, row.name), row.glsl) << row.name;
        EXPECT_EQ(nameInTarget(TargetLanguage::Essl, row.name), row.glsl) << row.name;
        EXPECT_EQ(nameInTarget(TargetLanguage::Hlsl, row.name), row.hlsl) << row.name;
        EXPECT_EQ(nameInTarget(TargetLanguage::Msl, row.name), row.msl) << row.name;
        EXPECT_EQ(nameInTarget(TargetLanguage::Spirv, row.name), row.name);
        EXPECT_EQ(nameInTarget(TargetLanguage::Cg, row.name), row.name);
    }
}

/// "Tint -> Tint_of_cg", a line for each uniform, texture and interpolant whose name is another.
std::string renamedIn(const TranslatedProgram& program) {
    std::string text;
    for (const ProgramParameter& parameter : program.parameters) {
        const bool isNamed = parameter.kind != ParameterKind::Attribute &&
                             parameter.kind != ParameterKind::Output &&
                             parameter.targetName != parameter.name;
        text += isNamed ? parameter.name + " -> " + parameter.targetName + "\n" : "";
    }
    return text;
}

TEST(NamesInTargets, AreTheSameInBothProgramsWhateverElseIsThere) {
    const std::string vertex =
        "uniform float4 Rust__mask : register( c4 );\n"
        "uniform float4 Rust_mask : register( c5 );\n"
        "void main( float4 position : ATTR0, out float4 place : POSITION, out float4 filter : TEXCOORD0 )\n"
        "{ place = position; filter = Rust__mask + Rust_mask; }\n";
    const std::string fragment = "uniform float4 Rust__mask : register( c0 );\n"
                                 "void main( float4 filter : TEXCOORD0, out float4 colour : COLOR0 )\n"
                                 "{ colour = filter + Rust__mask; }\n";
    const std::string expected = "Rust__mask -> Rust_u_mask_of_cg\n"
                                 "filter -> filter_of_cg\n";
    for (const auto& [ending, target] : languages) {
        EXPECT_EQ(renamedIn(translated(ProgramStage::Vertex, vertex, target)), expected) << ending;
        EXPECT_EQ(renamedIn(translated(ProgramStage::Fragment, fragment, target)), expected) << ending;
    }
}

// a uniform by each name that may stand for it: of a local variable, a member, and what a back end makes of
// two
constexpr const char* sharedNames = R"cg(struct Two
{
	float4 Tint;
};
uniform float4 Tint : register( c0 );
uniform float4 Tint_1 : register( c1 );
uniform float4 Tint_2 : register( c2 );
uniform float4 x : register( c3 );

float4 twice( float4 Tint ) { float4 x = Tint; return x + Tint; }

void main( out float4 colour : COLOR0 )
{
	Two two;
	two.Tint = twice( Tint );
	colour = two.Tint + Tint_1 + Tint_2*x.x;
}
)cg";

TEST(NamesInTargets, OfUniformsGoBeforeAllOthers) {
    const TranslatedProgram program = translated(ProgramStage::Fragment, sharedNames, hlsl);
    EXPECT_EQ(renamedIn(program), "");
    EXPECT_NE(program.content.find("    float4 Tint : packoffset(c0);\n"
                                   "    float4 Tint_1 : packoffset(c1);\n"
                                   "    float4 Tint_2 : packoffset(c2);\n"
                                   "    float4 x : packoffset(c3);\n"),
              std::string::npos)
        << program.content;
    EXPECT_NE(program.content.find("(Tint_2 * x.x)"), std::string::npos) << program.content;
}

TEST(NamesInTargets, OfEverythingKeepClearOfMetal) {
    const TranslatedProgram program =
        translated(ProgramStage::Fragment,
                   "struct Two { float4 kernel; };\n"
                   "uniform float4 nullptr : register( c0 );\n"
                   "float4 and( float4 device ) { float4 M_PI_F = device; return M_PI_F; }\n"
                   "void main( out float4 colour : COLOR0 )\n"
                   "{ Two two; two.kernel = and( nullptr ); colour = two.kernel; }\n",
                   {TargetLanguage::Msl, 20});
    for (const char* text : {"float4 kernel_of_cg;", "float4 nullptr_of_cg;", "float4 and_of_cg(",
                             "device_of_cg", "M_PI_F_of_cg"}) {
        EXPECT_NE(program.content.find(text), std::string::npos) << text << "\n" << program.content;
    }
    EXPECT_EQ(renamedIn(program), "nullptr -> nullptr_of_cg\n");
}

/// Names in place of every "NAME" of a program.
std::string withName(std::string program, const std::string& name) {
    const std::string mark = "NAME";
    for (std::size_t at = program.find(mark); at != std::string::npos; at = program.find(mark, at)) {
        program.replace(at, mark.size(), name);
        at += name.size();
    }
    return program;
}

// where `: NAME` is a value, and no semantic
constexpr const char* namedValue = R"cg(uniform sampler2D Paint : TEXUNIT3;
uniform half3 NAME : register( c2 );

void main(
	float4 place /* of the pixel */ : WPOS,
	out float4 colour : COLOR0 )
{
	half3 value = place.x > 1.0 ? place.xyz : NAME;
	colour = float4( value + f3tex2D( Paint, place.xy ), 1.0 );
}
)cg";

TEST(Translate, SemanticsAndTypesOfHlslAreNamesLikeOthers) {
    for (const std::string name :
         {"WPOS", "TEXUNIT0", "TEXUNIT3", "TEXUNIT", "TEXUNIT3x", "SV_Position", "min16float", "min16float3",
          "min10float4x4", "min12int", "s3", "VULKAN", "TextureBuffer", "uint64_t", "GL_EXT_multiview",
          "gl_ViewportMask", "line_hlsl_word", "gl_a_hlsl_word_hlsl_word", "_hlsl_word"}) {
        EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment, withName(namedValue, name), spirv)),
                  "uniform half3 " + name +
                      " -> set=1 binding=16 offset=32\n"
                      "sampler sampler2D Paint -> set=1 binding=3\n"
                      "interpolant float4 place -> builtin=FragCoord\n"
                      "output float4 colour -> location=0\n");
    }
}

TEST(Translate, NamesThatLookAlikeStayApart) {
    EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment,
                                      "uniform float4 line : register( c0 );\n"
                                      "uniform float4 line_hlsl_word : register( c1 );\n"
                                      "void main( out float4 colour : COLOR0 )\n"
                                      "{ colour = line + line_hlsl_word; }\n",
                                      spirv)),
              "uniform float4 line -> set=1 binding=16 offset=0\n"
              "uniform float4 line_hlsl_word -> set=1 binding=16 offset=16\n"
              "output float4 colour -> location=0\n");
}

TEST(Translate, AParameterMayHaveTheNameOfItsSemantic) {
    EXPECT_EQ(parametersOf(translated(ProgramStage::Fragment,
                                      "uniform sampler2D TEXUNIT2 : TEXUNIT2;\n"
                                      "void main( float4 WPOS : WPOS, out float4 colour : COLOR0 )\n"
                                      "{ colour = f4tex2D( TEXUNIT2, WPOS.xy ); }\n",
                                      hlsl)),
              "sampler sampler2D TEXUNIT2 -> texture=2 sampler=2\n"
              "interpolant float4 WPOS -> gl_FragCoord semantic=SV_Position\n"
              "output float4 colour -> semantic=SV_Target0\n");
}

constexpr const char* pointProgram = "void main( float4 position : ATTR0, out float4 place : POSITION,\n"
                                     "\tout float size : PSIZE )\n"
                                     "{ place = position; size = position.x; }\n";

TEST(Translate, PointsHaveSizesWhereTheTargetHas) {
    EXPECT_EQ(parametersOf(translated(ProgramStage::Vertex, pointProgram, glsl)),
              "attribute float4 position -> location=0\n"
              "output float4 place -> gl_Position\n"
              "output float size -> gl_PointSize\n");
    EXPECT_EQ(parametersOf(translated(ProgramStage::Vertex, pointProgram, hlsl)),
              "attribute float4 position -> semantic=ATTR0\n"
              "output float4 place -> gl_Position semantic=SV_Position\n");
}

TEST(Translate, EsslSamplesOneDimensionInARowOfTwo) {
    const TranslatedProgram program =
        translated(ProgramStage::Fragment, awkwardNames, {TargetLanguage::Essl, 300});
    EXPECT_NE(program.content.find("uniform highp sampler2D linear;\n"), std::string::npos)
        << program.content;
    EXPECT_NE(program.content.find("texture(in_sampler, vec2(in_uv, 0.0)).x"), std::string::npos)
        << program.content;
}

constexpr const char* mixedPrecision = R"cg(uniform half3 Tint : register( c0 );

float3 linear3( float3 colour ) { return pow( colour, 2.2 ); }

half3 low( half3 colour ) { return colour*0.5; }

void main( float4 place : TEXCOORD0, half4 tone : TEXCOORD1, out float4 colour : COLOR0 )
{
	half3 exact = linear3( place.xyz );
	half3 product = place.xyz*tone.xyz;
	half3 rough = low( tone.xyz*Tint );
	colour = float4( exact + product + rough, 1.0 );
}
)cg";

TEST(Translate, WhatCgComputesInFloatStaysSo) {
    const std::string essl =
        translated(ProgramStage::Fragment, mixedPrecision, {TargetLanguage::Essl, 300}).content;
    for (const char* line : {"\nvec3 linear3(vec3 colour_1)\n", "\nmediump vec3 low(mediump vec3 colour_1)\n",
                             "    mediump vec3 exact = linear3(", "uniform mediump vec3 Tint;\n"}) {
        EXPECT_NE(essl.find(line), std::string::npos) << line << "\n" << essl;
    }
}

std::pair<int, std::string> errorOf(const std::string& program, const ShaderTarget& target = glsl) {
    try {
        translated(ProgramStage::Fragment, program, target);
    } catch (const TranslationError& error) {
        return {error.line(), error.what()};
    }
    return {-1, ""};
}

using Error = std::pair<int, std::string>;

TEST(Translate, RefusesWhatDoesNotCompile) {
    EXPECT_EQ(errorOf("void main( out float4 colour : COLOR0 )\n{\n\tcolour = nowhere;\n}\n"),
              (Error{3, "'nowhere': unknown variable"}));
    EXPECT_EQ(errorOf("\nvoid main( out float4 colour : COLOR0 ) {"), (Error{2, "'declaration': Expected"}));
}

TEST(Translate, LinesAreThoseOfTheProgramWhateverItSays) {
    for (const char* directive :
         {"#line 5000", "  #  line 5000 7", "#line 1 // once more", "# /**/ line 5000"}) {
        EXPECT_EQ(errorOf(std::string("void main( out float4 colour : COLOR0 )\n{\n") + directive +
                          "\n\tcolour = nowhere;\n}\n"),
                  (Error{4, "'nowhere': unknown variable"}))
            << directive;
    }
}

TEST(Translate, RefusesSemanticsThatOtherLanguagesLack) {
    EXPECT_EQ(errorOf("void main( float side : FACE, out float4 colour : COLOR0 ) { colour = side; }\n"),
              (Error{0, "what Cg calls \"FACE\" cannot be translated"}));
    EXPECT_EQ(
        errorOf("void main( int part : SV_PrimitiveID, out float4 colour : COLOR0 ) { colour = part; }\n"),
        (Error{0, "the built-in value that \"part\" stands for cannot be translated"}));
}

TEST(Translate, SeveralThreadsAtOnce) {
    const std::string program = expectedFile("sample.frag.cg");
    const std::string expected = expectedFile("sample.frag.hlsl");
    const std::unique_ptr<ShaderTranslator> shared = makeTranslator();
    std::vector<std::string> results(4);
    std::vector<std::thread> threads;
    for (std::string& result : results) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i) {
                result = shared->translate(ProgramStage::Fragment, program, {hlsl}).front().content;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& result : results) {
        EXPECT_EQ(result, expected);
    }
}

} // namespace
} // namespace patina
