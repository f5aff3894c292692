#include "tests/fuzz/decisions.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace patina::fuzz {

namespace {

// names that a graph may give to variables: of its own, of the framework, and of the languages that its
// programs are read as
constexpr std::string_view names[] = {
    // clang-format off
    "paint", "Name", "a", "_", "map1", "x1",
    "Constant", "Texture", "Uv", "VertexColour", "AnimatedUv", "Maths", "LayerBlend", "Swizzle", "Default",
    "in_value", "out_value", "in_value1", "in_uv", "in_sampler", "in_colour", "in_uniform", "in_one", "value",
    "scale", "frame1", "offset1", "screened", "numRowsRcp", "red", "alpha", "read", "write",
    "mathsCode", "textureCode", "colourCode", "lockCode", "swizzleCode", "swizzleColour", "animatedUv",
    "promoteAndSplat", "promoteAndSplat_2", "mathsCode_2",
    "position", "clipPosition", "colour", "interpolant0", "interpolant1", "colour_2", "position_2",
    "worldViewProjection", "QelSrgbToLinear", "QelTransformPosition", "QelShade", "eyePosition", "eye",
    "normal", "tangent", "lights", "framework_read", "framework", "lightColour0", "ambient",
    "main", "float", "float3", "half4x4", "sampler2D", "uniform", "out", "texture", "tex2D", "h4tex2D",
    "lerp", "saturate", "pow", "dot", "abs", "inf", "nan", "true", "NULL", "register", "COLOR", "TEXCOORD0",
    "POSITION", "SV_Position", "SV_Target", "c0", "TEXUNIT0", "packoffset", "_main", "__half",
    "point", "line", "linear", "sample", "precise", "layout", "centroid", "triangle", "export", "snorm",
    "cbuffer", "Texture2D", "SamplerState", "Buffer", "InputPatch", "point_hlsl_word", "line_hlsl_word",
    "min16float3", "uint2", "matrix", "vector", "vec3", "mat4", "sampler", "image2D", "double4", "dword",
    "mad", "rcp", "asfloat", "asuint", "countbits", "clip", "noise", "any", "log10", "tex2Dlod", "isnan",
    "gl_Position", "gl_FragColor", "attribute", "varying", "in", "inout", "highp", "discard", "unroll",
    "import", "module", "namespace", "template", "class", "this", "operator", "half", "fixed", "int",
    "constant", "device", "kernel", "vertex", "fragment", "metal", "using", "uint", "char", "string",
    "nointerpolation", "noperspective", "globallycoherent", "groupshared", "static", "const", "volatile",
    "RWTexture2D", "ByteAddressBuffer", "StructuredBuffer", "ConstantBuffer", "TextureCubeArray",
    "SubpassInput", "row_major", "column_major", "pass", "technique", "compile", "interface", "struct",
    // clang-format on
};

// what must not mean anything where it comes to stand in a program, a file or a message
constexpr std::string_view marks[] = {
    "",
    " ",
    "\n",
    "\r\n",
    "*/",
    "/*",
    "//",
    "\\",
    "a\\\n",
    "}",
    "{",
    ";",
    "\"",
    "'",
    "<",
    "]]>",
    "-->",
    "&amp;",
    "&",
    "%s%n",
    "#line 1",
    "#define a b",
    "\xC3\xA9",
    "\xE2\x80\xA8",
    "\xEF\xBF\xBE",
    "\xF0\x9F\x8E\xA8",
    "\xFF",
    "\x01",
    "\x7F",
    "\t",
    "0",
    "1a",
    "a.b",
    "a b",
    "a-b",
    "a__b",
    "../a",
    "a/b",
    "a:b",
    "CON",
    "a\"b",
    "\xEF\xBB\xBF",
    "{|}",
    "<br/>",
    "-",
};

constexpr std::string_view numbers[] = {
    "0",     "1",      "2",           "0.5",   "-1",         "-0",          "1e6",
    "1e38",  "3.4e38", "-3.40282e38", "1e39",  "1e-38",      "1e-45",       "1e-60",
    "nan",   "inf",    "-infinity",   "0x1p3", "2147483647", "-2147483648", "65504",
    "65536", "1.",     ".5",          "+1",    "1f",         "1,5",         "0, 0, 0",
    "1,1,1", "0.1,,2", " 1",          "1e",    "1e999",      "1e-9999",     "0,1e39,nan",
    "1;2",   "",       "-",           "Yes",   "1,2,3,",     "0X1.8P1"};

constexpr std::int32_t integers[] = {4,
                                     1,
                                     2,
                                     3,
                                     0,
                                     -1,
                                     5,
                                     255,
                                     65536,
                                     16777217,
                                     std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()};

constexpr std::size_t manyChoices = 8;

} // namespace

Decisions Decisions::part() {
    const std::size_t size = std::min(below(64), left_);
    const Decisions taken(data_, size);
    data_ += size;
    left_ -= size;
    return taken;
}

std::size_t Decisions::below(std::size_t count) {
    if (left_ == 0 || count < 2) {
        return 0;
    }
    --left_;
    return *data_++ % count;
}

std::uint32_t Decisions::word() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) {
        bits = bits << 8U | static_cast<std::uint32_t>(below(256));
    }
    return bits;
}

std::int32_t Decisions::integer() {
    return oneIn(manyChoices) ? static_cast<std::int32_t>(word()) : choose(integers);
}

float Decisions::number() {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr std::array<float, 10> values = {
        0.0F,     1.0F,    0.5F,   -1.0F,    2.0F,
        65536.0F, 3.4e38F, 1e-45F, infinity, std::numeric_limits<float>::quiet_NaN()};
    return oneIn(manyChoices) ? std::bit_cast<float>(word()) : choose(values);
}

std::string Decisions::bytes() {
    const std::size_t size = std::min(below(24), left_);
    std::string text(reinterpret_cast<const char*>(data_), size);
    data_ += size;
    left_ -= size;
    return text;
}

std::string Decisions::text() {
    switch (below(4)) {
    case 0:
        return std::string(choose(names));
    case 1:
        return std::string(choose(marks));
    case 2:
        return detail::joinText({choose(names), choose(marks), choose(names)});
    default:
        return bytes();
    }
}

std::string Decisions::name() {
    switch (below(manyChoices)) {
    case manyChoices - 1:
        return text();
    case manyChoices - 2:
        return detail::joinText({choose(names), "_", choose(names)});
    default:
        return std::string(choose(names));
    }
}

std::string Decisions::numberText() {
    switch (below(manyChoices)) {
    case manyChoices - 1:
        return bytes();
    case manyChoices - 2:
        return detail::formatFloat(number());
    default:
        return std::string(choose(numbers));
    }
}

} // namespace patina::fuzz
