#include "translation/hlsl_words.h"

#include "nodemodel/text.h"
#include "translation/text_pieces.h"

#include <algorithm>
#include <set>

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

// what behind such a word makes another name of it
constexpr std::string_view ending = "_hlsl_word";

} // namespace

bool detail::isHlslWord(std::string_view name) {
    return std::binary_search(std::begin(words), std::end(words), name);
}

std::string detail::renameHlslWords(std::string_view program) {
    std::set<std::string_view> found;
    forEachPiece(program, [&](std::string_view piece) {
        if (isHlslWord(piece)) {
            found.insert(piece);
        }
    });
    std::string definitions;
    for (const std::string_view word : found) {
        appendText(definitions, {"#define ", word, " ", word, ending, "\n"});
    }
    return definitions;
}

std::string detail::nameInCg(std::string_view name) {
    const bool isRenamed = name.size() > ending.size() &&
                           name.substr(name.size() - ending.size()) == ending &&
                           isHlslWord(name.substr(0, name.size() - ending.size()));
    return std::string(isRenamed ? name.substr(0, name.size() - ending.size()) : name);
}

} // namespace patina
