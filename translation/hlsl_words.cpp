#include "translation/hlsl_words.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <array>

namespace patina {

using namespace detail;

namespace {

// in byte order, for binary search
constexpr std::string_view words[] = {
    "AppendStructuredBuffer",
    "Buffer",
    "ByteAddressBuffer",
    "ConstantBuffer",
    "ConsumeStructuredBuffer",
    "InputPatch",
    "LineStream",
    "OutputPatch",
    "PointStream",
    "RWBuffer",
    "RWByteAddressBuffer",
    "RWStructuredBuffer",
    "RWTexture1D",
    "RWTexture1DArray",
    "RWTexture2D",
    "RWTexture2DArray",
    "RWTexture3D",
    "SamplerComparisonState",
    "SamplerState",
    "StructuredBuffer",
    "SubpassInput",
    "SubpassInputMS",
    "Texture1D",
    "Texture1DArray",
    "Texture2D",
    "Texture2DArray",
    "Texture2DMS",
    "Texture2DMSArray",
    "Texture3D",
    "TextureBuffer",
    "TextureCube",
    "TextureCubeArray",
    "TriangleStream",
    "VULKAN",
    "cbuffer",
    "centroid",
    "export",
    "globallycoherent",
    "groupshared",
    "layout",
    "line",
    "lineadj",
    "linear",
    "nointerpolation",
    "noperspective",
    "packoffset",
    "point",
    "precise",
    "sample",
    "snorm",
    "tbuffer",
    "triangle",
    "triangleadj",
    "uint64_t",
    "unorm",
};

// scalar types of low precision; each is the beginning of vector and matrix types too
constexpr std::string_view lowTypes[] = {"min10float", "min12int", "min16float", "min16int", "min16uint"};

bool isDimension(char letter) { return letter >= '1' && letter <= '4'; }

/// "min16float", "min16float3", "min16float4x4" and the like.
bool isLowType(std::string_view name) {
    return std::any_of(std::begin(lowTypes), std::end(lowTypes), [&](std::string_view scalar) {
        if (!name.starts_with(scalar)) {
            return false;
        }
        const std::string_view rest = name.substr(scalar.size());
        return rest.empty() || (rest.size() == 1 && isDimension(rest[0])) ||
               (rest.size() == 3 && isDimension(rest[0]) && rest[1] == 'x' && isDimension(rest[2]));
    });
}

// how names begin that the front end gives a meaning, of macros and of what a program's stage hands it
constexpr std::array<std::string_view, 2> frontEndBeginnings = {"GL_", "gl_"};

// what behind a name that means something to the front end makes another name of it
constexpr std::string_view ending = "_hlsl_word";

} // namespace

bool detail::isHlslWord(std::string_view name) {
    return std::binary_search(std::begin(words), std::end(words), name) || isLowType(name);
}

bool detail::meansMoreInHlsl(std::string_view name) {
    // what looks like a name that was made here is made another too, so that no two become one
    while (name.ends_with(ending)) {
        name.remove_suffix(ending.size());
    }
    return isHlslWord(name) ||
           std::any_of(frontEndBeginnings.begin(), frontEndBeginnings.end(),
                       [&](std::string_view beginning) { return name.starts_with(beginning); });
}

std::string detail::nameInHlsl(std::string_view name) { return joinText({name, ending}); }

std::string detail::nameInCg(std::string_view name) {
    if (name.ends_with(ending) && meansMoreInHlsl(name)) {
        name.remove_suffix(ending.size());
    }
    return std::string(name);
}

} // namespace patina
