#include "tests/host/host_checks.h"

#include "host/cg_names.h"

#include <gtest/gtest.h>

#include <string>

namespace patina {
namespace {

using testing::connection;
using testing::expectErrorAt;
using testing::exported;
using testing::exportError;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

constexpr const char* reservedNames[] = {
    "__",
    "__x",
    "AttribArray",
    "asm",
    "bool",
    "break",
    "const",
    "discard",
    "do",
    "else",
    "false",
    "fixed",
    "fixed4",
    "float",
    "float1",
    "float3",
    "float4x4",
    "for",
    "half",
    "half2",
    "half3x4",
    "if",
    "in",
    "inout",
    "int",
    "int4",
    "main",
    "out",
    "packed",
    "register",
    "return",
    "sampler",
    "sampler1D",
    "sampler2D",
    "samplerCUBE",
    "samplerRECT",
    "static",
    "struct",
    "switch",
    "this",
    "true",
    "typedef",
    "uniform",
    "void",
    "while",
    "abs",
    "ceil",
    "clamp",
    "cross",
    "dot",
    "floor",
    "frac",
    "lerp",
    "max",
    "min",
    "mul",
    "normalize",
    "pow",
    "saturate",
    "smoothstep",
    "sqrt",
    "step",
    "transpose",
    "tex1D",
    "tex2D",
    "tex3D",
    "texCUBE",
    "texRECT",
    "f3tex2D",
    "f4tex1D",
    "h3tex1D",
    "h4tex2D",
    "x4tex2D",
    "tex2Dlod",
    "tex2Dproj",
    "h4tex2Dproj",
    "QelSrgbToLinear",
    "QelTransformPosition",
    "worldViewProjection",
    "cfloat",
    "char",
    "char4",
    "cint",
    "double2x3",
    "long3",
    "short2",
    "uint",
    "uint1",
    "uint4",
    "uint4x4",
    "unsigned",
    "sampler1DARRAY",
    "sampler2DARRAY",
    "sampler2DMS",
    "samplerBUF",
    "samplerCUBEARRAY",
    "samplerRBUF",
    "isampler2D",
    "usamplerBUF",
    "tex1DARRAYlod",
    "tex2DARRAY",
    "tex2DMSARRAYfetch",
    "tex2Dcmpbias",
    "tex3Dcmplod",
    "texBUF",
    "texCUBEARRAYsize",
    "texRBUFsize",
    "debug",
    "emitVertex",
    "flatAttrib",
    "restartStrip",
    "pack_2half",
    "pack_2ushort",
    "pack_4byte",
    "pack_4ubyte",
    "unpack_2half",
    "unpack_2ushort",
    "unpack_4byte",
    "unpack_4ubyte",
};

constexpr const char* freeNames[] = {
    "",          "a",
    "Float",     "float5",
    "float0",    "float33",
    "float3x",   "float3x5",
    "halfway",   "boolean",
    "Main",      "mains",
    "integer",   "f2",
    "map1",      "colour",
    "position",  "Paint",
    "lerped",    "in_value1",
    "_tex2D",    "clipPosition",
    "mathsCode", "textureCode",
    "out_value", "qelSrgbToLinear",
    "_x",        "a__b",
    "uint5",     "cint2",
    "tex",       "tex4D",
    "sampler4D", "tex2Dbiased",
    "texlod",    "textures",
    "pack",      "Texture",
    "in_uv",     "in_sampler",
    "float3y3",  "float9x3",
    "s",         "samplers_of_more_letters_than_any_word",
};

TEST(CgNames, KnowWhatIsReserved) {
    for (const char* name : reservedNames) {
        EXPECT_TRUE(isReservedName(name)) << name;
    }
    for (const char* name : freeNames) {
        EXPECT_FALSE(isReservedName(name)) << name;
    }
}

TEST(CgNames, AreMadeOfAnyText) {
    const struct {
        const char* text;
        const char* name;
    } rows[] = {
        {"paint", "paint"}, {"a_b", "a_b"},     {"a b", "a_b"},  {"1st", "_1st"}, {"", "_"},
        {"\xC3\xA4", "_"},  {"a-b.c", "a_b_c"}, {"A1", "A1"},    {"a{b", "a_b"},  {"a[b", "a_b"},
        {"a:b", "a_b"},     {"zZ9", "zZ9"},     {"a__b", "a_b"}, {"__a", "_a"},   {"_a_", "_a_"},
    };
    for (const auto& [text, name] : rows) {
        EXPECT_EQ(toCgName(text), name) << text;
    }
}

TEST(NameAllocator, TellsNamesApart) {
    NameAllocator names;
    names.take("a_2");
    EXPECT_EQ(names.allocate("a"), "a");
    EXPECT_EQ(names.allocate("a"), "a_3");
    EXPECT_EQ(names.allocate("a"), "a_4");
    EXPECT_EQ(names.allocate("a_2"), "a_2_2");
    EXPECT_EQ(names.allocate("float"), "float_2") << "reserved";
    EXPECT_EQ(names.allocate("b"), "b");
    EXPECT_EQ(names.allocate("_"), "_");
    EXPECT_EQ(names.allocate("_"), "_2");
    EXPECT_EQ(names.allocate("_"), "_3");
    EXPECT_EQ(names.allocate("c d"), "c_d") << "made a Cg name";
    EXPECT_EQ(names.allocate("c__d"), "c_d_2") << "made the same";
    EXPECT_EQ(names.allocate(""), "_4");
    EXPECT_EQ(names.allocate("1st"), "_1st");
}

/// Every line of the text that contains the piece.
std::vector<std::string> linesWith(const std::string& text, const std::string& piece) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = text.find('\n', begin);
        const std::string line = text.substr(begin, end - begin);
        if (line.find(piece) != std::string::npos) {
            lines.push_back(line);
        }
        begin = end + 1;
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(NameShader, TellsTwoFunctionsOfOneNameApart) {
    const std::string program =
        exported(maths("a", "Invert") + maths("b", "Ceil") + node("c", "CoreLayerBlend") +
                 connection("a", "out_value", "b", "in_value1") +
                 connection("b", "out_value", "c", "in_value1") + output("colour", "c", "out_value"))
            .fragmentProgram.content;
    EXPECT_EQ(linesWith(program, "void "),
              (Lines{"void mathsCode( out half out_value )",
                     "void mathsCode_2( half in_value1, out half out_value )",
                     "void mathsCode_3( half in_value1, out half out_value )", "void main("}));
}

TEST(NameShader, PrintsEqualFunctionsOnce) {
    std::string body = maths("m0", "Invert");
    for (int i = 1; i < 10; ++i) {
        const std::string id = "m" + std::to_string(i);
        body += maths(id, "Invert") + connection("m" + std::to_string(i - 1), "out_value", id, "in_value1");
    }
    const std::string program = exported(body + output("colour", "m9", "out_value")).fragmentProgram.content;
    EXPECT_EQ(linesWith(program, "void ").size(), 3U) << program; // without and with an input, and main
    EXPECT_EQ(linesWith(program, "\tmathsCode").size(), 10U);
    EXPECT_EQ(linesWith(program, "// node \"m1\" (\"Maths\"), node \"m2\" (\"Maths\")").size(), 1U);
}

TEST(NameShader, KeepsTheNamesOfParameters) {
    // each name that the program would like for itself belongs to a parameter here
    const std::string uniform = property("Constant Type", "enum", "Scalar");
    std::string body;
    std::string last;
    for (const std::string name : {"mathsCode", "colour", "interpolant0", "position", "clipPosition",
                                   "a_out_value", "in_value1", "out_value", "in_ref"}) {
        const std::string id = "u_" + name;
        body += node(id, "CoreConstant", uniform + property("Name", "string", name));
        const std::string sum = "s_" + name;
        body += maths(sum, "Addition") + connection(id, "read", sum, "in_value1");
        if (!last.empty()) {
            body += connection(last, "out_value", sum, "in_value2");
        }
        last = sum;
    }
    body += maths("a", "Invert") + connection(last, "out_value", "a", "in_value1");
    const ExportedMaterial material = exported(body + output("colour", "a", "out_value"));
    const std::string& program = material.fragmentProgram.content;
    EXPECT_EQ(linesWith(program, "uniform half ").size(), 9U) << program;
    EXPECT_EQ(linesWith(program, "uniform half mathsCode : register( c0 );").size(), 1U);
    EXPECT_EQ(linesWith(program, "void mathsCode(").size(), 0U);
    EXPECT_EQ(linesWith(program, "out float4 colour_2 : COLOR0").size(), 1U);
    EXPECT_EQ(linesWith(program, "half a_out_value_2;").size(), 1U);
}

TEST(NameShader, RefusesReservedParameterNames) {
    for (const std::string name :
         {"float3", "lerp", "main", "QelSrgbToLinear", "worldViewProjection", "h4tex2D"}) {
        expectErrorAt(exportError("\n" + node("c", "CoreConstant", property("Name", "string", name)) +
                                  output("colour", "c", "read")),
                      3, {"node \"c\" (\"" + name + "\")", '"' + name + '"'});
    }
}

TEST(NameShader, RefusesParametersThatShareANameAndDiffer) {
    const std::string name = property("Name", "string", "Shared");
    const std::string uv = node("uv", "CoreUv", name);
    const std::string scalar = node("s", "CoreConstant", name + property("Constant Type", "enum", "Scalar"));
    const std::string colour = node("c", "CoreConstant", name);
    const auto sum = [](const std::string& left, const std::string& right) {
        return maths("m", "Addition") + connection(left, "read", "m", "in_value1") +
               connection(right, "read", "m", "in_value2");
    };
    const std::string split = node("k", "CoreSwizzle", property("Vector Type", "enum", "Uv")) +
                              connection("uv", "read", "k", "in_vec");
    // a varying and a uniform
    expectErrorAt(exportError(uv + scalar + split + maths("m", "Addition") +
                              connection("k", "out_x", "m", "in_value1") +
                              connection("s", "read", "m", "in_value2") + output("colour", "m", "out_value")),
                  3, {"node \"s\" (\"Shared\")", "node \"uv\" (\"Shared\")"});
    // two uniforms of unequal types
    expectErrorAt(exportError(scalar + colour + sum("s", "c") + output("colour", "m", "out_value")), 3,
                  {"node \"c\" (\"Shared\")", "node \"s\" (\"Shared\")"});
}

TEST(NameShader, LetsAReferenceShareItsUniform) {
    const std::string program =
        exported(node("uv", "CoreUv") + node("a", "CoreTexture", property("Name", "string", "Paint")) +
                 node("b", "CoreTexture", property("Reference", "node", "a")) + maths("m", "Multiply") +
                 connection("uv", "read", "a", "in_uv") + connection("uv", "read", "b", "in_uv") +
                 connection("a", "out_colour", "m", "in_value1") +
                 connection("b", "out_colour", "m", "in_value2") + output("colour", "m", "out_value"))
            .fragmentProgram.content;
    EXPECT_EQ(linesWith(program, "uniform "), Lines{"uniform sampler2D Paint : TEXUNIT0;"});
    EXPECT_EQ(linesWith(program, "void textureCode").size(), 1U);
    EXPECT_EQ(linesWith(program, "\ttextureCode( Uv, Paint, ").size(), 2U) << program;
}

TEST(NameShader, NamesValuesAfterAnyId) {
    const std::string program =
        exported(maths("1 \xC3\xA4", "Invert") + maths("1_.", "Invert") + maths("float", "Invert") +
                 connection("1 \xC3\xA4", "out_value", "1_.", "in_value1") +
                 connection("1_.", "out_value", "float", "in_value1") +
                 output("colour", "float", "out_value"))
            .fragmentProgram.content;
    EXPECT_EQ(linesWith(program, "\thalf _1_out_value;").size(), 1U) << program;
    EXPECT_EQ(linesWith(program, "\thalf _1_out_value_2;").size(), 1U) << program;
    EXPECT_EQ(linesWith(program, "\thalf float_out_value;").size(), 1U) << program;
}

} // namespace
} // namespace patina
