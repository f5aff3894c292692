#include "host/cg_names.h"

#include "host/framework.h"

#include <algorithm>
#include <array>

namespace patina {

namespace {

// each list in byte order, for binary search

constexpr std::string_view keywords[] = {
    "asm",
    "asm_fragment",
    "auto",
    "break",
    "case",
    "catch",
    "char",
    "class",
    "column_major",
    "compile",
    "const",
    "const_cast",
    "continue",
    "decl",
    "default",
    "delete",
    "discard",
    "do",
    "double",
    "dword",
    "dynamic_cast",
    "else",
    "emit",
    "enum",
    "explicit",
    "extern",
    "false",
    "for",
    "friend",
    "get",
    "goto",
    "if",
    "in",
    "inline",
    "inout",
    "interface",
    "long",
    "main",
    "matrix",
    "mutable",
    "namespace",
    "new",
    "operator",
    "out",
    "packed",
    "pass",
    "pixelfragment",
    "pixelshader",
    "private",
    "protected",
    "public",
    "register",
    "reinterpret_cast",
    "return",
    "row_major",
    "sampler",
    "sampler1D",
    "sampler2D",
    "sampler3D",
    "samplerCUBE",
    "samplerRECT",
    "sampler_state",
    "shared",
    "short",
    "signed",
    "sizeof",
    "static",
    "static_cast",
    "string",
    "struct",
    "switch",
    "technique",
    "template",
    "texture",
    "texture1D",
    "texture2D",
    "texture3D",
    "textureCUBE",
    "textureRECT",
    "this",
    "throw",
    "true",
    "try",
    "typedef",
    "typeid",
    "typename",
    "uniform",
    "union",
    "unsigned",
    "using",
    "vector",
    "vertexfragment",
    "vertexshader",
    "virtual",
    "void",
    "volatile",
    "while",
};

constexpr std::string_view standardFunctions[] = {
    "abs",
    "acos",
    "all",
    "any",
    "asin",
    "atan",
    "atan2",
    "bitCount",
    "bitfieldExtract",
    "bitfieldInsert",
    "bitfieldReverse",
    "ceil",
    "clamp",
    "clip",
    "cos",
    "cosh",
    "cross",
    "ddx",
    "ddy",
    "degrees",
    "determinant",
    "distance",
    "dot",
    "exp",
    "exp2",
    "faceforward",
    "findLSB",
    "findMSB",
    "floatToIntBits",
    "floatToRawIntBits",
    "floor",
    "fmod",
    "frac",
    "frexp",
    "fwidth",
    "intBitsToFloat",
    "inverse",
    "isfinite",
    "isinf",
    "isnan",
    "ldexp",
    "length",
    "lerp",
    "lit",
    "log",
    "log10",
    "log2",
    "max",
    "min",
    "modf",
    "mul",
    "normalize",
    "pow",
    "radians",
    "reflect",
    "refract",
    "round",
    "rsqrt",
    "saturate",
    "sign",
    "sin",
    "sincos",
    "sinh",
    "smoothstep",
    "sqrt",
    "step",
    "tan",
    "tanh",
    "transpose",
    "trunc",
};

static_assert(std::is_sorted(std::begin(keywords), std::end(keywords)));
static_assert(std::is_sorted(std::begin(standardFunctions), std::end(standardFunctions)));

/// Scalar types; each is the beginning of vector and matrix types too.
constexpr std::array<std::string_view, 5> scalarTypes = {"bool", "fixed", "float", "half", "int"};

bool isDimension(char letter) { return letter >= '1' && letter <= '4'; }

/// "float", "float3", "float4x4" and the like.
bool isTypeName(std::string_view name) {
    return std::any_of(scalarTypes.begin(), scalarTypes.end(), [&](std::string_view scalar) {
        if (!name.starts_with(scalar)) {
            return false;
        }
        const std::string_view rest = name.substr(scalar.size());
        return rest.empty() || (rest.size() == 1 && isDimension(rest[0])) ||
               (rest.size() == 3 && isDimension(rest[0]) && rest[1] == 'x' && isDimension(rest[2]));
    });
}

/// "tex2D", "h4tex2Dproj", "f1texCUBE" and the like.
bool isSamplingFunction(std::string_view name) {
    if (name.size() > 2 && (name[0] == 'f' || name[0] == 'h' || name[0] == 'x') && isDimension(name[1])) {
        name.remove_prefix(2);
    }
    constexpr std::array<std::string_view, 5> prefixes = {"tex1D", "tex2D", "tex3D", "texCUBE", "texRECT"};
    constexpr std::array<std::string_view, 6> suffixes = {"", "bias", "fetch", "lod", "proj", "size"};
    return std::any_of(prefixes.begin(), prefixes.end(), [&](std::string_view prefix) {
        return name.starts_with(prefix) &&
               std::find(suffixes.begin(), suffixes.end(), name.substr(prefix.size())) != suffixes.end();
    });
}

bool isNameCharacter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

} // namespace

bool isReservedName(std::string_view name) {
    return std::binary_search(std::begin(keywords), std::end(keywords), name) ||
           std::binary_search(std::begin(standardFunctions), std::end(standardFunctions), name) ||
           std::find(frameworkNames.begin(), frameworkNames.end(), name) != frameworkNames.end() ||
           isTypeName(name) || isSamplingFunction(name);
}

std::string toCgName(std::string_view text) {
    std::string name;
    for (const char letter : text) {
        if (isNameCharacter(letter)) {
            name += letter;
        } else if (name.empty() || name.back() != '_') {
            name += '_';
        }
    }
    if (name.empty() || (name.front() >= '0' && name.front() <= '9')) {
        name.insert(name.begin(), '_');
    }
    return name;
}

void NameAllocator::take(const std::string& name) { taken_.insert(name); }

std::string NameAllocator::allocate(const std::string& wanted) {
    if (!isReservedName(wanted) && taken_.insert(wanted).second) {
        return wanted;
    }
    int& suffix = nextSuffix_.try_emplace(wanted, 2).first->second;
    for (;;) {
        std::string name = wanted + "_" + std::to_string(suffix++);
        if (!isReservedName(name) && taken_.insert(name).second) {
            return name;
        }
    }
}

} // namespace patina
