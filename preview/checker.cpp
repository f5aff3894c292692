#include "preview/image.h"

#include <stb/stb_easy_font.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace patina::preview {

namespace {

constexpr int side = 512;
constexpr int cell = side / 8;
constexpr int labelWidth = side * 6 / 10; ///< what of it can be seen on the front of a sphere
constexpr int longestLabel = 100;
constexpr int lineHeight = 8; ///< of a letter without a descender, and the gap over it

/// A rectangle of pixels, from the top left corner.
struct Rectangle {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

void fill(Image& image, const Rectangle& area, float value) {
    for (int y = std::max(area.top, 0); y < std::min(area.bottom, side); ++y) {
        for (int x = std::max(area.left, 0); x < std::min(area.right, side); ++x) {
            float* pixel = &image.pixels[static_cast<std::size_t>(y * side + x) * 4];
            std::fill(pixel, pixel + 3, value);
        }
    }
}

Image plainChecker() {
    Image image;
    image.width = side;
    image.height = side;
    image.pixels.assign(static_cast<std::size_t>(side) * side * 4, 1.0F);
    constexpr float dark = 0.46F;
    constexpr float light = 0.56F;
    for (int y = 0; y < side; y += cell) {
        for (int x = 0; x < side; x += cell) {
            fill(image, {x, y, x + cell, y + cell}, (x + y) / cell % 2 == 0 ? light : dark);
        }
    }
    return image;
}

/// What the font has letters for.
std::string printable(const std::string& label) {
    std::string text = label.substr(0, longestLabel);
    std::replace_if(
        text.begin(), text.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return text;
}

/// The rectangles that a text is made of.
// cppcheck-suppress passedByValue ; what prints it takes a buffer that it may change
std::vector<Rectangle> strokes(std::string text) {
    struct Corner {
        float x, y, z;
        std::array<unsigned char, 4> colour;
    };
    std::vector<Corner> corners(static_cast<std::size_t>(longestLabel) * 17 * 4); // more than any text takes
    const int count = stb_easy_font_print(0.0F, 0.0F, text.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    std::vector<Rectangle> rectangles;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count) * 4; i += 4) {
        rectangles.push_back({static_cast<int>(corners[i].x), static_cast<int>(corners[i].y),
                              static_cast<int>(corners[i + 2].x), static_cast<int>(corners[i + 2].y)});
    }
    return rectangles;
}

/// Letters on a dark plate in the middle, as large as they fit.
void writeLabel(Image& image, const std::string& text) {
    constexpr int largest = 6;
    const std::vector<Rectangle> rectangles = strokes(text);
    int width = 0;
    for (const Rectangle& rectangle : rectangles) {
        width = std::max(width, rectangle.right);
    }
    if (width == 0) {
        return;
    }
    const int scale = std::clamp(labelWidth / width, 1, largest);
    const int left = (side - width * scale) / 2;
    const int top = (side - lineHeight * scale) / 2;
    const int margin = 3 * scale;
    fill(image,
         {left - margin, top - margin, left + width * scale + margin, top + lineHeight * scale + margin},
         0.12F);
    for (const Rectangle& area : rectangles) {
        fill(image,
             {left + area.left * scale, top + area.top * scale, left + area.right * scale,
              top + area.bottom * scale},
             0.92F);
    }
}

} // namespace

Image labelledChecker(const std::string& label) {
    Image image = plainChecker();
    writeLabel(image, printable(label));
    return image;
}

Image labelledSlopes(const std::string& label) {
    constexpr float steepness = 0.25F;
    Image image = labelledChecker(label);
    for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
        const float slope = 0.5F + steepness * (image.pixels[i] - 0.5F);
        image.pixels[i] = slope;
        image.pixels[i + 1] = slope;
        image.pixels[i + 2] = 1.0F;
        image.pixels[i + 3] = slope;
    }
    return image;
}

} // namespace patina::preview
