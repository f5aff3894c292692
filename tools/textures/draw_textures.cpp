// Draws the textures of the example materials into a folder, each under the name of the binding that it is
// for.
//
//     draw_textures DIRECTORY
//
// The same bytes come out of every run.

#include "artwork.h"

#include <array>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

using namespace patina::textures;

struct Texture {
    const char* name;
    Picture (*draw)();
};

constexpr std::array<Texture, 17> kTextures{{
    {"Paint", drawPaint},
    {"Bumps", drawBumps},
    {"Rain", drawRain},
    {"Brick", drawBrick},
    {"BrickNormal", drawBrickNormal},
    {"Moss", drawMoss},
    {"MossNormal", drawMossNormal},
    {"Flames", drawFlames},
    {"FireRamp", drawFireRamp},
    {"ToonRamp", drawToonRamp},
    {"Hatching", drawHatching},
    {"Weave", drawWeave},
    {"WeaveNormal", drawWeaveNormal},
    {"Quilt", drawQuilt},
    {"Motifs", drawMotifs},
    {"Fabric", drawFabric},
    {"Patches", drawPatches},
}};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: draw_textures DIRECTORY\n";
        return 2;
    }
    try {
        for (const Texture& texture : kTextures) {
            writePng(texture.draw(),
                     (std::filesystem::path(argv[1]) / (std::string(texture.name) + ".png")).string());
        }
    } catch (const std::exception& problem) {
        std::cerr << "draw_textures: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
