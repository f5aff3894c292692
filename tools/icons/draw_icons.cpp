// Draws the node icons: an XPM array for each, and a contact sheet of them all.
//
//     draw_icons ICON_DIRECTORY CONTACT_SHEET.png
//
// The same bytes come out of every run.

#include "artwork.h"
#include "contact_sheet.h"
#include "palette.h"
#include "xpm.h"

#include <array>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace patina::icons;

struct Icon {
    const char* file;
    const char* array;
    Raster (*draw)();
    std::size_t colours; // as declared in the file, the transparent one included
    int keyLength;
};

constexpr std::array<Icon, 7> kIcons{{
    {"vertex_colour.xpm", "vertexColourIcon", drawVertexColour, 463, 2},
    {"uv.xpm", "uvIcon", drawUv, 246, 2},
    {"texture.xpm", "textureIcon", drawTexture, 651, 2},
    {"constant.xpm", "constantIcon", drawConstant, 135, 2},
    {"maths.xpm", "mathsIcon", drawMaths, 273, 2},
    {"swizzle.xpm", "swizzleIcon", drawSwizzle, 248, 2},
    {"layer_blend.xpm", "layerBlendIcon", drawLayerBlend, 12, 1},
}};

void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void drawAll(const std::filesystem::path& directory, const std::string& contactSheet) {
    std::vector<Raster> rasters;
    for (const Icon& icon : kIcons) {
        try {
            Raster raster = icon.draw();
            const std::size_t transparent = icon.keyLength > 1 ? 1 : 0;
            reduceColours(raster, icon.colours - transparent);
            writeText(directory / icon.file, formatXpm(raster, icon.array, icon.keyLength));
            rasters.push_back(raster);
        } catch (const std::exception& problem) {
            throw std::runtime_error(std::string(icon.file) + ": " + problem.what());
        }
    }
    writeContactSheet(rasters, contactSheet);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: draw_icons ICON_DIRECTORY CONTACT_SHEET.png\n";
        return 2;
    }
    try {
        drawAll(argv[1], argv[2]);
    } catch (const std::exception& problem) {
        std::cerr << "draw_icons: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
