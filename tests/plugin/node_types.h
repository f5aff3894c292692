#pragma once

namespace patina::testing {

/// The type names of the Core nodes in the order of the node library.
inline constexpr const char* nodeTypeNames[] = {
    "CoreDefault", "CoreVertexColour", "CoreUv",         "CoreTexture",    "CoreConstant",
    "CoreMaths",   "CoreSwizzle",      "CoreLayerBlend", "CoreAnimatedUv",
};

} // namespace patina::testing
