#include "host/cg_names.h"

#include "host/framework.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace patina {

using namespace detail;

namespace {

constexpr std::string_view keywords[] = {
    "AttribArray",
    "asm",
    "asm_fragment",
    "auto",
    "break",
    "case",
    "catch",
    "cfloat",
    "cint",
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
    "sampler_state",
    "shared",
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
    "debug",
    "degrees",
    "determinant",
    "distance",
    "dot",
    "emitVertex",
    "exp",
    "exp2",
    "faceforward",
    "findLSB",
    "findMSB",
    "flatAttrib",
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
    "pack_2half",
    "pack_2ushort",
    "pack_4byte",
    "pack_4ubyte",
    "pow",
    "radians",
    "reflect",
    "refract",
    "restartStrip",
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
    "unpack_2half",
    "unpack_2ushort",
    "unpack_4byte",
    "unpack_4ubyte",
};

/// Scalar types; each is the beginning of vector and matrix types too.
constexpr std::array<std::string_view, 10> scalarTypes = {"bool", "char", "double", "fixed", "float",
                                                          "half", "int",  "long",   "short", "uint"};

/// What samplers and the functions that read them are named after.
constexpr std::array<std::string_view, 12> textureKinds = {
    "1D", "1DARRAY", "2D", "2DARRAY", "2DMS", "2DMSARRAY", "3D", "BUF", "CUBE", "CUBEARRAY", "RBUF", "RECT"};

bool isDimension(char letter) { return letter >= '1' && letter <= '4'; }

/// "float", "float3", "float4x4" and the like.
bool isTypeName(std::string_view name) {
    constexpr std::size_t longest = std::string_view("double4x4").size();
    if (name.size() > longest) {
        return false;
    }
    return std::any_of(scalarTypes.begin(), scalarTypes.end(), [&](std::string_view scalar) {
        if (name.front() != scalar.front() || !name.starts_with(scalar)) {
            return false;
        }
        const std::string_view rest = name.substr(scalar.size());
        return rest.empty() || (rest.size() == 1 && isDimension(rest[0])) ||
               (rest.size() == 3 && isDimension(rest[0]) && rest[1] == 'x' && isDimension(rest[2]));
    });
}

bool isTextureKind(std::string_view text) {
    return std::find(textureKinds.begin(), textureKinds.end(), text) != textureKinds.end();
}

/// "sampler2D", "isamplerBUF", "usampler2DARRAY" and the like.
bool isSamplerType(std::string_view name) {
    constexpr std::string_view stem = "sampler";
    if (name.starts_with('i') || name.starts_with('u')) {
        name.remove_prefix(1);
    }
    return name.starts_with(stem) && isTextureKind(name.substr(stem.size()));
}

/// "tex2D", "h4tex2Dproj", "f1texCUBE", "tex2DARRAYcmplod" and the like.
bool isSamplingFunction(std::string_view name) {
    if (name.size() > 2 && (name[0] == 'f' || name[0] == 'h' || name[0] == 'x') && isDimension(name[1])) {
        name.remove_prefix(2);
    }
    constexpr std::string_view stem = "tex";
    constexpr std::array<std::string_view, 8> suffixes = {"",      "bias", "cmpbias", "cmplod",
                                                          "fetch", "lod",  "proj",    "size"};
    return name.starts_with(stem) &&
           std::any_of(suffixes.begin(), suffixes.end(), [&](std::string_view suffix) {
               return name.ends_with(suffix) && name.size() > stem.size() + suffix.size() &&
                      isTextureKind(name.substr(stem.size(), name.size() - stem.size() - suffix.size()));
           });
}

/// By the code of a character, whether it is a letter or digit.
constexpr std::array<bool, 256> alphanumerics = [] {
    std::array<bool, 256> table = {};
    for (const char letter :
         std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789")) {
        table[static_cast<unsigned char>(letter)] = true;
    }
    return table;
}();

bool isAlphanumeric(char letter) { return alphanumerics[static_cast<unsigned char>(letter)]; }

/// Cg's words and functions, and the framework's names, sorted.
constexpr auto reservedWords = [] {
    std::array<std::string_view, std::size(keywords) + std::size(standardFunctions) + frameworkNames.size()>
        all;
    auto end = std::copy(std::begin(keywords), std::end(keywords), all.begin());
    end = std::copy(std::begin(standardFunctions), std::end(standardFunctions), end);
    std::copy(frameworkNames.begin(), frameworkNames.end(), end);
    std::sort(all.begin(), all.end());
    return all;
}();

constexpr std::size_t longestWord = 30;
static_assert(std::all_of(reservedWords.begin(), reservedWords.end(),
                          [](std::string_view word) { return word.size() <= longestWord; }));

/// Stands among the lengths for names that are put together, as those of types are.
constexpr std::uint32_t composedName = std::uint32_t{1} << 31;

/// By the code of a first letter, a bit for each length of a reserved word that begins with it: most names
/// need not be looked for.
constexpr std::array<std::uint32_t, 256> reservedLengths = [] {
    std::array<std::uint32_t, 256> lengths = {};
    for (const std::string_view word : reservedWords) {
        lengths[static_cast<unsigned char>(word.front())] |= std::uint32_t{1} << word.size();
    }
    for (const char letter : std::string_view("_bcdfhilstux")) {
        lengths[static_cast<unsigned char>(letter)] |= composedName;
    }
    return lengths;
}();

/// Whether a text is as toCgName makes it, which most are.
bool isCgName(std::string_view text) {
    if (text.empty() || text.front() <= '9') {
        return false;
    }
    const auto end = text.end();
    auto other = std::find_if_not(text.begin(), end, isAlphanumeric);
    while (other != end) {
        if (*other != '_' || (++other != end && *other == '_')) {
            return false;
        }
        other = std::find_if_not(other, end, isAlphanumeric);
    }
    return true;
}

} // namespace

bool isReservedName(std::string_view name) {
    if (name.empty()) {
        return false;
    }
    const std::uint32_t lengths = reservedLengths[static_cast<unsigned char>(name.front())];
    if (name.size() <= longestWord && (lengths >> name.size() & 1) != 0 &&
        std::binary_search(reservedWords.begin(), reservedWords.end(), name)) {
        return true;
    }
    return (lengths & composedName) != 0 &&
           (name.starts_with("__") || isTypeName(name) || isSamplerType(name) || isSamplingFunction(name));
}

std::string toCgName(std::string_view text) {
    std::string name;
    for (const char letter : text) {
        if (isAlphanumeric(letter)) {
            name += letter;
        } else if (name.empty() || name.back() != '_') {
            name += '_';
        }
    }
    if (name.empty() || name.front() <= '9') { // digits come before all else that is left
        name.insert(name.begin(), '_');
    }
    return name;
}

void NameAllocator::reserve(std::size_t count) { taken_.reserve(count); }

std::string_view NameAllocator::keep(std::string_view name) {
    std::pmr::polymorphic_allocator<char> allocator(&memory_);
    char* const text = allocator.allocate(name.size());
    std::copy(name.begin(), name.end(), text);
    return {text, name.size()};
}

std::string_view NameAllocator::take(std::string_view name) { return *taken_.insert(keep(name)).first; }

std::string_view NameAllocator::allocate(std::string_view text) {
    const std::string_view wanted = isCgName(text) ? keep(text) : keep(toCgName(text));
    if (!isReservedName(wanted) && taken_.insert(wanted).second) {
        return wanted;
    }
    // "__2" is as reserved as "_" is taken
    const std::string_view separator = wanted.ends_with('_') ? "" : "_";
    int& suffix = nextSuffix_.try_emplace(wanted, 2).first->second;
    for (;;) {
        const std::string_view name = keep(joinText({wanted, separator, std::to_string(suffix++)}));
        if (taken_.insert(name).second) { // nothing that is reserved ends with a number like that
            return name;
        }
    }
}

} // namespace patina
