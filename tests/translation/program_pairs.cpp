#include "tests/translation/program_pairs.h"

#include "tests/host/host_checks.h"
#include "tests/host/sample_materials.h"

#include <array>
#include <cstddef>

namespace patina::testing {

namespace {

ProgramPair pairOf(std::string name, const ExportedMaterial& exported) {
    return {std::move(name), exported.vertexProgram.content, exported.fragmentProgram.content};
}

constexpr const char* awkwardVertex = "uniform float4 OFFSET : register( c4 );\n"
                                      "void main( float4 position : ATTR0, float2 ATTRIBUTE : ATTR1,\n"
                                      "\tout float4 place : POSITION, out float2 STREAM : TEXCOORD0 )\n"
                                      "{ place = position + OFFSET; STREAM = ATTRIBUTE; }\n";

constexpr const char* awkwardFragment =
    "struct Pair { float2 MEMBER; };\n"
    "uniform sampler2D PAINT : TEXUNIT0;\n"
    "uniform sampler2D COAT : TEXUNIT1;\n"
    "uniform float4 TINT : register( c0 );\n"
    "float2 FUNCTION( float2 VALUE ) { float2 LOCAL = VALUE*2.0; return LOCAL + VALUE; }\n"
    "void main( float2 STREAM : TEXCOORD0, out float4 COLOUR : COLOR0 )\n"
    "{ Pair both; both.MEMBER = FUNCTION( STREAM );\n"
    "COLOUR = f4tex2D( PAINT, both.MEMBER ) + f4tex2D( COAT, STREAM )*TINT; }\n";

constexpr std::array<const char*, 11> roles = {"OFFSET", "ATTRIBUTE", "STREAM", "MEMBER", "PAINT", "COAT",
                                               "TINT",   "FUNCTION",  "VALUE",  "LOCAL",  "COLOUR"};

constexpr const char* awkwardNames[] = {
    // HLSL's
    "globallycoherent", "SubpassInput", "linear", "sample", "min16float", "min12int3", "WPOS", "TEXUNIT0",
    "line", "SamplerState", "Technique", "asfloat", "mad", "c0", "b0", "t1", "s0", "TEXCOORD0", "SV_Target0",
    // GLSL's
    "mix", "fract", "vec3", "mat4x2", "sampler2DShadow", "uimage3D", "noise1", "filter", "input",
    "texelFetch", "precision", "highp", "Rust_mask", "Rust__mask", "Rust___mask", "Rust_u_mask",
    "Rust__u_mask", "Rust_u__mask", "Rust_u_mask_of_cg", "gl_Position", "gl_mine", "cg_gl_Position",
    // C++'s and Metal's
    "and", "nullptr", "concept", "alignas", "kernel", "fragment", "device", "level", "texture2d",
    "packed_float3", "M_PI_F", "FLT_MAX", "NAN", "select",
    // the back ends'
    "SPIRV_Cross_Input", "SPIRV_Cross_Output", "stage_input", "stage_output", "frag_main", "vert_main",
    "main0", "main0_in", "spvInverse", "Uniforms", "uniforms", "PatinaUniform_u0", "PatinaUniform", "_m0_pad",
    "_12", "_1_2", "_3d", "param", "param_1", "Paint", "PaintSmplr", "_Paint_sampler", "Paint_1",
    // ours
    "sample_of_cg", "x", "xy", "f2tex2D_1"};

std::string withNames(std::string program, std::size_t first) {
    for (std::size_t role = 0; role < roles.size(); ++role) {
        const std::string mark = roles.at(role);
        const std::string name = awkwardNames[(first + role) % std::size(awkwardNames)];
        for (std::size_t at = program.find(mark); at != std::string::npos; at = program.find(mark, at)) {
            program.replace(at, mark.size(), name);
            at += name.size();
        }
    }
    return program;
}

} // namespace

ProgramPair examplePair() {
    Warnings warnings;
    Material material = buildMaterial(readMaterial(PATINA_EXAMPLE), corePlugins(), warnings);
    return pairOf("painted metal", exportedFrom(material));
}

std::vector<ProgramPair> nodePairs() {
    std::vector<ProgramPair> pairs;
    for (const SampleGroup& group : sampleGroups()) {
        for (const Sample& sample : group.samples) {
            pairs.push_back(pairOf(group.name + ", " + sample.name, exported(sample.body)));
        }
    }
    return pairs;
}

ProgramPair registerPair() {
    const CgPrograms printed = programsWithRegisters();
    return {"registers", printed.vertex, printed.fragment};
}

std::vector<ProgramPair> awkwardPairs() {
    std::vector<ProgramPair> pairs;
    for (std::size_t first = 0; first < std::size(awkwardNames); ++first) {
        pairs.push_back({std::string("names from ") + awkwardNames[first], withNames(awkwardVertex, first),
                         withNames(awkwardFragment, first)});
    }
    return pairs;
}

ProgramPair pointPair() {
    return {"points",
            "void main( float4 position : ATTR0, out float4 place : POSITION, out float size : PSIZE )\n"
            "{ place = position; size = position.x; }\n",
            "void main( out float4 colour : COLOR0 ) { colour = 1.0; }\n"};
}

} // namespace patina::testing
