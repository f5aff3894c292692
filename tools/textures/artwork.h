// The textures of the example materials, each drawn from nothing.

#pragma once

#include "picture.h"

namespace patina::textures {

// metal.cpp: painted metal in the rain
[[nodiscard]] Picture drawPaint(); // colour; alpha: how firmly the paint holds on to the metal
[[nodiscard]] Picture drawBumps(); // normals of the same paint, in alpha and green
[[nodiscard]] Picture drawRain();  // 4 by 4 frames of water that runs down

// masonry.cpp: a mossy brick wall
[[nodiscard]] Picture drawBrick();       // colour; alpha: height, 0 deep in the mortar
[[nodiscard]] Picture drawBrickNormal(); // normals of the same wall
[[nodiscard]] Picture drawMoss();        // colour; alpha: height of the cushions
[[nodiscard]] Picture drawMossNormal();  // normals of the same moss

// fire.cpp: 4 by 4 frames of a flame, and the colours of its heat
[[nodiscard]] Picture drawFlames();
[[nodiscard]] Picture drawFireRamp();

// toon.cpp: bands of light, and pen strokes that darken at different lights
[[nodiscard]] Picture drawToonRamp();
[[nodiscard]] Picture drawHatching();

// carbon.cpp: a twill weave
[[nodiscard]] Picture drawWeave();       // red: sheen of the fibres, green: height, blue: which way they run
[[nodiscard]] Picture drawWeaveNormal(); // normals of the same weave

// quilt.cpp: patchwork
[[nodiscard]] Picture drawQuilt();   // normals of one padded, stitched patch
[[nodiscard]] Picture drawMotifs();  // four printed motifs, one in each channel
[[nodiscard]] Picture drawFabric();  // colour of woven cloth; alpha: its threads
[[nodiscard]] Picture drawPatches(); // the colours of sixteen patches, in a row

} // namespace patina::textures
