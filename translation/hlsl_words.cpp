#include "translation/hlsl_words.h"

#include "nodemodel/text.h"

#include <algorithm>

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
    "TextureCube",
    "TextureCubeArray",
    "TriangleStream",
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

// what behind such a word makes another name of it
constexpr std::string_view ending = "_hlsl_word";

} // namespace

bool detail::isHlslWord(std::string_view name) {
    return std::binary_search(std::begin(words), std::end(words), name) || isLowType(name);
}

std::string detail::nameInHlsl(std::string_view word) { return joinText({word, ending}); }

std::string detail::nameInCg(std::string_view name) {
    const bool isRenamed = name.size() > ending.size() &&
                           name.substr(name.size() - ending.size()) == ending &&
                           isHlslWord(name.substr(0, name.size() - ending.size()));
    return std::string(isRenamed ? name.substr(0, name.size() - ending.size()) : name);
}

} // namespace patina
