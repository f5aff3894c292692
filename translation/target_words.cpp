#include "translation/target_words.h"

#include "bindings/binding_kinds.h"
#include "nodemodel/text.h"
#include "translation/hlsl_words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace patina {

using namespace detail;

namespace {

// each list in byte order, for binary search; without what Cg has too, since nothing is called that there

// of GLSL and ESSL; the back ends keep them for themselves in every language
constexpr std::string_view glslWords[] = {
    "EmitStreamVertex",
    "EmitVertex",
    "EndPrimitive",
    "EndStreamPrimitive",
    "acosh",
    "active",
    "allInvocations",
    "allInvocationsEqual",
    "anyInvocation",
    "asinh",
    "atanh",
    "atomicAdd",
    "atomicAnd",
    "atomicCompSwap",
    "atomicCounter",
    "atomicCounterAdd",
    "atomicCounterDecrement",
    "atomicCounterIncrement",
    "atomicExchange",
    "atomicMax",
    "atomicMin",
    "atomicOr",
    "atomicXor",
    "atomic_uint",
    "attribute",
    "barrier",
    "buffer",
    "cast",
    "centroid",
    "coherent",
    "common",
    "dFdx",
    "dFdxCoarse",
    "dFdxFine",
    "dFdy",
    "dFdyCoarse",
    "dFdyFine",
    "demote",
    "devicecoherent",
    "equal",
    "external",
    "filter",
    "flat",
    "float16BitsToInt16",
    "float16BitsToUint16",
    "floatBitsToInt",
    "floatBitsToUint",
    "fma",
    "fract",
    "ftransform",
    "fwidthCoarse",
    "fwidthFine",
    "greaterThan",
    "greaterThanEqual",
    "groupMemoryBarrier",
    "highp",
    "imageAtomicAdd",
    "imageAtomicAnd",
    "imageAtomicCompSwap",
    "imageAtomicExchange",
    "imageAtomicMax",
    "imageAtomicMin",
    "imageAtomicOr",
    "imageAtomicXor",
    "imageLoad",
    "imageSamples",
    "imageSize",
    "imageStore",
    "imulExtended",
    "input",
    "int16BitsToFloat16",
    "interpolateAtCentroid",
    "interpolateAtOffset",
    "interpolateAtSample",
    "invariant",
    "inversesqrt",
    "layout",
    "lessThan",
    "lessThanEqual",
    "lowp",
    "matrixCompMult",
    "mediump",
    "memoryBarrier",
    "memoryBarrierAtomicCounter",
    "memoryBarrierBuffer",
    "memoryBarrierImage",
    "memoryBarrierShared",
    "mix",
    "mod",
    "noinline",
    "noise",
    "noise1",
    "noise2",
    "noise3",
    "noise4",
    "nonuniformEXT",
    "noperspective",
    "not",
    "notEqual",
    "outerProduct",
    "output",
    "packDouble2x32",
    "packHalf2x16",
    "packInt2x16",
    "packInt4x16",
    "packSnorm2x16",
    "packSnorm4x8",
    "packUint2x16",
    "packUint4x16",
    "packUnorm2x16",
    "packUnorm4x8",
    "partition",
    "patch",
    "precise",
    "precision",
    "readonly",
    "resource",
    "restrict",
    "roundEven",
    "sample",
    "sampler1DRect",
    "shadow1D",
    "shadow2D",
    "smooth",
    "subroutine",
    "superp",
    "texelFetch",
    "texelFetchOffset",
    "texture2DLod",
    "texture2DProj",
    "textureCube",
    "textureCubeLod",
    "textureGather",
    "textureGatherOffset",
    "textureGatherOffsets",
    "textureGrad",
    "textureGradOffset",
    "textureLod",
    "textureLodOffset",
    "textureOffset",
    "textureProj",
    "textureProjGrad",
    "textureProjGradOffset",
    "textureProjLod",
    "textureProjLodOffset",
    "textureProjOffset",
    "textureQueryLevels",
    "textureQueryLod",
    "textureSamples",
    "textureSize",
    "uaddCarry",
    "uint16BitsToFloat16",
    "uintBitsToFloat",
    "umulExtended",
    "unpackDouble2x32",
    "unpackHalf2x16",
    "unpackInt2x16",
    "unpackInt4x16",
    "unpackSnorm2x16",
    "unpackSnorm4x8",
    "unpackUint2x16",
    "unpackUint4x16",
    "unpackUnorm2x16",
    "unpackUnorm4x8",
    "usubBorrow",
    "varying",
    "workgroupcoherent",
    "writeonly",
};

// of C++, which HLSL's newer compilers and Metal begin with
constexpr std::string_view cppWords[] = {
    "alignas",   "alignof",   "and",       "and_eq",        "bitand",       "bitor",    "char16_t",
    "char32_t",  "char8_t",   "co_await",  "co_return",     "co_yield",     "compl",    "concept",
    "consteval", "constexpr", "constinit", "decltype",      "export",       "int16_t",  "int32_t",
    "int64_t",   "int8_t",    "noexcept",  "not_eq",        "nullptr",      "or",       "or_eq",
    "ptrdiff_t", "requires",  "size_t",    "static_assert", "thread_local", "uint16_t", "uint32_t",
    "uint64_t",  "uint8_t",   "wchar_t",   "xor",           "xor_eq",
};

// of HLSL beside those in hlsl_words.h, and what its back end calls things of its own
constexpr std::string_view hlslWords[] = {
    "AllMemoryBarrier",
    "AllMemoryBarrierWithGroupSync",
    "BlendState",
    "CheckAccessFullyMapped",
    "CompileShader",
    "ComputeShader",
    "D3DCOLORtoUBYTE4",
    "DepthStencilState",
    "DepthStencilView",
    "DeviceMemoryBarrier",
    "DeviceMemoryBarrierWithGroupSync",
    "DomainShader",
    "EvaluateAttributeAtCentroid",
    "EvaluateAttributeAtSample",
    "EvaluateAttributeSnapped",
    "FeedbackTexture2D",
    "FeedbackTexture2DArray",
    "GeometryShader",
    "GetRenderTargetSampleCount",
    "GetRenderTargetSamplePosition",
    "GroupMemoryBarrier",
    "GroupMemoryBarrierWithGroupSync",
    "HullShader",
    "InterlockedAdd",
    "InterlockedAnd",
    "InterlockedCompareExchange",
    "InterlockedCompareStore",
    "InterlockedExchange",
    "InterlockedMax",
    "InterlockedMin",
    "InterlockedOr",
    "InterlockedXor",
    "IsHelperLane",
    "NULL",
    "NonUniformResourceIndex",
    "PixelShader",
    "RasterizerOrderedBuffer",
    "RasterizerOrderedTexture2D",
    "RasterizerState",
    "RayDesc",
    "RayQuery",
    "RaytracingAccelerationStructure",
    "RenderTargetView",
    "TextureBuffer",
    "Uniforms",
    "VertexShader",
    "abort",
    "asdouble",
    "asfloat",
    "asfloat16",
    "asint",
    "asint16",
    "asuint",
    "asuint16",
    "compile_fragment",
    "countbits",
    "ddx_coarse",
    "ddx_fine",
    "ddy_coarse",
    "ddy_fine",
    "dot2add",
    "dot4add_i8packed",
    "dot4add_u8packed",
    "dst",
    "errorf",
    "f16tof32",
    "f32tof16",
    "firstbithigh",
    "firstbitlow",
    "float16_t",
    "float32_t",
    "float64_t",
    "frag_main",
    "fxgroup",
    "indices",
    "mad",
    "min10float",
    "min16float",
    "min16int",
    "min16uint",
    "msad4",
    "payload",
    "primitives",
    "printf",
    "rcp",
    "reversebits",
    "select",
    "stage_input",
    "stage_output",
    "stateblock",
    "stateblock_state",
    "technique10",
    "technique11",
    "vert_main",
    "vertices",
};

// of Metal, and what its back end calls things of its own
constexpr std::string_view metalWords[] = {
    "CHAR_BIT",
    "CHAR_MAX",
    "CHAR_MIN",
    "FP_ILOGB0",
    "FP_ILOGBNAN",
    "HUGE_VAL",
    "HUGE_VALF",
    "HUGE_VALH",
    "INFINITY",
    "INT_MAX",
    "INT_MIN",
    "LONG_MAX",
    "LONG_MIN",
    "MAXFLOAT",
    "MAXHALF",
    "NAN",
    "SCHAR_MAX",
    "SCHAR_MIN",
    "SHRT_MAX",
    "SHRT_MIN",
    "UCHAR_MAX",
    "UINT_MAX",
    "ULONG_MAX",
    "USHRT_MAX",
    "Uniforms",
    "absdiff",
    "access",
    "acospi",
    "address",
    "addsat",
    "array",
    "array_ref",
    "array_view",
    "as_type",
    "asinpi",
    "assert",
    "atan2pi",
    "atanpi",
    "atomic",
    "atomic_bool",
    "atomic_float",
    "atomic_int",
    "atomic_ulong",
    "bfloat",
    "bias",
    "border_color",
    "clz",
    "compare_func",
    "component",
    "compute",
    "constant",
    "coord",
    "copysign",
    "cospi",
    "ctz",
    "depth2d",
    "depth2d_array",
    "depth2d_ms",
    "depth2d_ms_array",
    "depthcube",
    "depthcube_array",
    "device",
    "dfdx",
    "dfdy",
    "discard_fragment",
    "distance_squared",
    "exp10",
    "extract_bits",
    "fabs",
    "fast",
    "fdim",
    "fmax",
    "fmax3",
    "fmedian3",
    "fmin",
    "fmin3",
    "fragment",
    "function_constant",
    "gradient2d",
    "gradient3d",
    "gradientcube",
    "hadd",
    "ilogb",
    "imageblock",
    "insert_bits",
    "intersector",
    "is_function_constant_defined",
    "is_null_texture",
    "isnormal",
    "isordered",
    "isunordered",
    "kernel",
    "length_squared",
    "level",
    "mad24",
    "mad_sat",
    "madhi",
    "madsat",
    "main0",
    "main0_in",
    "main0_out",
    "max3",
    "median3",
    "mem_flags",
    "memory_order",
    "mesh",
    "metal",
    "min3",
    "min_lod_clamp",
    "mip_filter",
    "mul24",
    "mulhi",
    "nan",
    "nextafter",
    "numeric_limits",
    "object_data",
    "patch_control_point",
    "popcount",
    "powr",
    "quad_broadcast",
    "r_address",
    "ray_data",
    "raytracing",
    "reverse_bits",
    "rhadd",
    "rint",
    "rotate",
    "s_address",
    "select",
    "signbit",
    "simd",
    "simdgroup",
    "sincospi",
    "sinpi",
    "subsat",
    "t_address",
    "tanpi",
    "texture1d",
    "texture1d_array",
    "texture2d",
    "texture2d_array",
    "texture2d_ms",
    "texture2d_ms_array",
    "texture3d",
    "texture_buffer",
    "texturecube",
    "texturecube_array",
    "thread",
    "thread_scope",
    "threadgroup",
    "threadgroup_barrier",
    "threadgroup_imageblock",
    "uchar",
    "ulong",
    "uniforms",
    "ushort",
    "vec",
    "vertex",
    "visible",
    "visible_function_table",
};

// which Metal has with _F and _H behind them, too
constexpr std::string_view metalConstants[] = {
    "M_1_PI",  "M_2_PI", "M_2_SQRTPI", "M_E",    "M_LN10",    "M_LN2",   "M_LOG10E",
    "M_LOG2E", "M_PI",   "M_PI_2",     "M_PI_4", "M_SQRT1_2", "M_SQRT2",
};

static_assert(std::is_sorted(std::begin(glslWords), std::end(glslWords)));
static_assert(std::is_sorted(std::begin(cppWords), std::end(cppWords)));
static_assert(std::is_sorted(std::begin(hlslWords), std::end(hlslWords)));
static_assert(std::is_sorted(std::begin(metalWords), std::end(metalWords)));
static_assert(std::is_sorted(std::begin(metalConstants), std::end(metalConstants)));

template <std::size_t size>
bool isIn(const std::string_view (&words)[size], std::string_view name) {
    return std::binary_search(std::begin(words), std::end(words), name);
}

template <std::size_t size>
bool isOneOf(const std::array<std::string_view, size>& texts, std::string_view name) {
    return std::find(texts.begin(), texts.end(), name) != texts.end();
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool isComponentCount(char letter) { return letter >= '2' && letter <= '4'; }

/// "vec3", "bvec2", "mat4", "dmat2x3" and the like.
bool isGlslVectorOrMatrix(std::string_view name) {
    constexpr std::string_view scalars = "bdfhiu";
    name.remove_prefix(!name.empty() && scalars.find(name.front()) != std::string_view::npos ? 1 : 0);
    if (!name.starts_with("vec") && !name.starts_with("mat")) {
        return false;
    }
    const bool isMatrix = name.front() == 'm';
    name.remove_prefix(3);
    return (name.size() == 1 && isComponentCount(name[0])) ||
           (isMatrix && name.size() == 3 && isComponentCount(name[0]) && name[1] == 'x' &&
            isComponentCount(name[2]));
}

/// "sampler2DShadow", "uimage3D", "isamplerCubeArray" and the like.
bool isGlslTextureType(std::string_view name) {
    constexpr std::array<std::string_view, 2> stems = {"sampler", "image"};
    constexpr std::array<std::string_view, 6> dimensions = {"1D",   "2D",     "3D",
                                                            "Cube", "Buffer", "ExternalOES"};
    constexpr std::array<std::string_view, 8> kinds = {"",   "Array",   "Shadow", "ArrayShadow",
                                                       "MS", "MSArray", "Rect",   "RectShadow"};
    name.remove_prefix(name.starts_with('i') && !name.starts_with("image") ? 1
                       : name.starts_with('u')                             ? 1
                                                                           : 0);
    for (const std::string_view stem : stems) {
        for (const std::string_view dimension : dimensions) {
            const std::string begin = joinText({stem, dimension});
            if (name.starts_with(begin) && isOneOf(kinds, name.substr(begin.size()))) {
                return true;
            }
        }
    }
    return false;
}

/// "uchar3", "packed_float4" and the like.
bool isMetalVector(std::string_view name) {
    constexpr std::array<std::string_view, 4> scalars = {"bfloat", "uchar", "ulong", "ushort"};
    const bool isSized = !name.empty() && isComponentCount(name.back());
    return isSized && (name.starts_with("packed_") || isOneOf(scalars, name.substr(0, name.size() - 1)));
}

bool isMetalMacro(std::string_view name) {
    constexpr std::array<std::string_view, 4> beginnings = {"DBL_", "FLT_", "HALF_", "METAL_"};
    const auto begins = [&](std::string_view beginning) { return name.starts_with(beginning); };
    const std::string_view constant =
        name.ends_with("_F") || name.ends_with("_H") ? name.substr(0, name.size() - 2) : name;
    return isIn(metalConstants, constant) || std::any_of(beginnings.begin(), beginnings.end(), begins);
}

bool isHlslTargetWord(std::string_view name) {
    // words whose letters may be of either case
    constexpr std::array<std::string_view, 6> caseless = {"asm",         "decl",      "pass",
                                                          "pixelshader", "technique", "vertexshader"};
    const std::string lower = lowerCase(std::string(name));
    const bool isNameOfSampler = name.starts_with('_') && name.ends_with("_sampler");
    return isNameOfSampler || isHlslWord(name) || isIn(hlslWords, name) || isIn(cppWords, name) ||
           isOneOf(caseless, lower);
}

bool isMetalWord(std::string_view name) {
    constexpr std::string_view samplerMark = "Smplr"; // the back end puts it behind the name of a texture
    return name.ends_with(samplerMark) || isIn(metalWords, name) || isIn(cppWords, name) ||
           isMetalVector(name) || isMetalMacro(name);
}

/// What the back ends keep for themselves: "gl_Position", "spvInverse", "_12", "_m0_pad".
bool beginsAsTheirs(std::string_view name) {
    constexpr std::array<std::string_view, 4> beginnings = {"gl_", "spv", "SPIRV_C", "PatinaUniform"};
    const auto begins = [&](std::string_view beginning) { return name.starts_with(beginning); };
    const bool isMember = name.starts_with("_m") && name.size() > 2 && isDigit(name[2]);
    const bool isNumber = name.size() > 1 && name[0] == '_' && isDigit(name[1]) &&
                          name.find_first_not_of("0123456789_") == std::string_view::npos;
    return isMember || isNumber || std::any_of(beginnings.begin(), beginnings.end(), begins);
}

// what stands around a name that is another in a target
constexpr std::string_view prefix = "cg_";
constexpr std::string_view suffix = "_of_cg";

/// A name without two underscores side by side: a "u" stands between them. What stands between two already
/// gets one more when it is nothing but that, so that no two names become one.
std::string parted(std::string_view name) {
    std::string result;
    for (std::size_t begin = 0; begin <= name.size();) {
        const std::size_t end = std::min(name.find('_', begin), name.size());
        const std::string_view part = name.substr(begin, end - begin);
        const bool isFilled = begin > 0 && part.find_first_not_of('u') == std::string_view::npos;
        appendText(result, {begin > 0 ? "_" : "", part, isFilled ? "u" : ""});
        begin = end + 1;
    }
    return result;
}

} // namespace

bool detail::isTargetWord(TargetLanguage language, std::string_view name) {
    const bool isTheirs = isIn(glslWords, name) || isGlslVectorOrMatrix(name) || isGlslTextureType(name) ||
                          beginsAsTheirs(name) || name.find("__") != std::string_view::npos;
    switch (language) {
    case TargetLanguage::Glsl:
    case TargetLanguage::Essl:
        return isTheirs;
    case TargetLanguage::Hlsl:
        return isTheirs || isHlslTargetWord(name);
    case TargetLanguage::Msl:
        return isTheirs || isMetalWord(name);
    case TargetLanguage::Cg:
    case TargetLanguage::Spirv:
        break;
    }
    return false;
}

std::string detail::nameInTarget(TargetLanguage language, std::string_view name) {
    const bool hasAll = language == TargetLanguage::Cg || language == TargetLanguage::Spirv;
    if (hasAll || !(isTargetWord(language, name) || name.ends_with(suffix))) {
        return std::string(name);
    }
    const bool needsPrefix = beginsAsTheirs(name) || name.starts_with(prefix);
    return parted(joinText({needsPrefix ? prefix : "", name, suffix}));
}

} // namespace patina
