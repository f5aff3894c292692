#include "preview/image.h"
#include "preview/srgb.h"
#include "tests/host/host_checks.h"

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace patina::preview {
namespace {

using testing::hostErrorOf;
using testing::TemporaryDirectory;
using Bytes = std::vector<std::uint8_t>;

// sRGB

TEST(Srgb, FollowsTheExactCurve) {
    EXPECT_NEAR(srgbFromLinear(0.0F), 0.0F, 1e-7F);
    EXPECT_NEAR(srgbFromLinear(0.001F), 0.01292F, 1e-6F);
    EXPECT_NEAR(srgbFromLinear(0.18F), 0.461356F, 1e-5F);
    EXPECT_NEAR(srgbFromLinear(0.5F), 0.735357F, 1e-5F);
    EXPECT_NEAR(srgbFromLinear(1.0F), 1.0F, 1e-6F);
    EXPECT_NEAR(linearFromSrgb(0.02F), 0.00154799F, 1e-7F);
    EXPECT_NEAR(linearFromSrgb(0.5F), 0.214041F, 1e-6F);
    EXPECT_NEAR(linearFromSrgb(1.0F), 1.0F, 1e-6F);
}

// Reading

/// The bytes of a PNG file, by libpng alone.
std::string pngOf(int width, int height, png_uint_32 format, const void* pixels) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = format;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string content(size, '\0');
    EXPECT_NE(png_image_write_to_memory(&image, content.data(), &size, 0, pixels, 0, nullptr), 0);
    content.resize(size);
    return content;
}

TEST(ReadImage, BytesFromTheTopRow) {
    const Bytes pixels = {255, 0, 0, 255, 0, 51, 0, 255, 0, 0, 102, 255, 255, 255, 255, 0};
    const Image image = decodeImage(pngOf(2, 2, PNG_FORMAT_RGBA, pixels.data()), "a.png");
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 2);
    EXPECT_FALSE(image.isLinear);
    EXPECT_EQ(image.depth, TexelFormat::Byte);
    EXPECT_EQ(image.pixels, (std::vector<float>{1, 0, 0, 1, 0, 0.2F, 0, 1, 0, 0, 0.4F, 1, 1, 1, 1, 0}));
}

TEST(ReadImage, GreyWithoutAlphaIsOpaque) {
    const Bytes pixels = {51};
    EXPECT_EQ(decodeImage(pngOf(1, 1, PNG_FORMAT_GRAY, pixels.data()), "a.png").pixels,
              (std::vector<float>{0.2F, 0.2F, 0.2F, 1}));
}

/// A Targa file of one pixel, as anyone can write it.
TEST(ReadImage, Targa) {
    std::string content(18, '\0');
    content[2] = 2;   // colours, not packed
    content[12] = 1;  // width
    content[14] = 1;  // height
    content[16] = 24; // bits: blue, green, red
    content += std::string("\x00\x33\xFF", 3);
    EXPECT_EQ(decodeImage(content, "a.tga").pixels, (std::vector<float>{1, 0.2F, 0, 1}));
}

TEST(ReadImage, SixteenBitsAreNotRounded) {
    const std::array<std::uint16_t, 3> pixel = {1, 32768, 65535};
    const Image image = decodeImage(pngOf(1, 1, PNG_FORMAT_LINEAR_RGB, pixel.data()), "a.png");
    EXPECT_EQ(image.depth, TexelFormat::Float);
    EXPECT_EQ(image.pixels, (std::vector<float>{1.0F / 65535.0F, 32768.0F / 65535.0F, 1, 1}));
}

TEST(ReadImage, LightBeyondOne) {
    std::string content = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 1\n";
    content += std::string("\x80\x40\x20\x83", 4); // 128, 64 and 32 of 256, times 8
    const Image image = decodeImage(content, "a.hdr");
    EXPECT_TRUE(image.isLinear);
    EXPECT_EQ(image.pixels, (std::vector<float>{4, 2, 1, 1}));
}

TEST(ReadImage, ErrorsNameTheFile) {
    const TemporaryDirectory directory;
    EXPECT_EQ(hostErrorOf([&] { readImage("/nowhere/a.png"); }),
              "/nowhere/a.png: error: cannot read this file: there is no such file or directory");
    EXPECT_EQ(hostErrorOf([&] { readImage(directory.path()); }),
              directory.path().string() + ": error: cannot read this file: it is a directory");
    const std::string text = directory.write("a.txt", "no image").string();
    EXPECT_EQ(hostErrorOf([&] { readImage(text); }), text +
                                                         ": error: this is no image that can be read; save "
                                                         "it as PNG, JPEG, TGA, BMP, GIF, PSD, PPM, PGM or "
                                                         "HDR");
}

TEST(ReadImage, ADamagedOneIsRefused) {
    const Bytes pixels(std::size_t{64} * 64 * 3, 7);
    const std::string whole = pngOf(64, 64, PNG_FORMAT_RGB, pixels.data());
    EXPECT_EQ(hostErrorOf([&] { decodeImage(whole.substr(0, whole.size() / 2), "a.png"); }),
              "a.png: error: this image is damaged, or saved in an unusual way; save it again, as PNG, JPEG, "
              "TGA, BMP, GIF, PSD, PPM, PGM or HDR");
}

TEST(ReadImage, PixelMapsOfSixteenBitsAreRefused) {
    EXPECT_EQ(hostErrorOf([] { decodeImage("P6 1 1 65535\n123456", "a.ppm"); }),
              "a.ppm: error: this is no image that can be read; save it as PNG, JPEG, TGA, BMP, GIF, PSD, "
              "PPM, PGM or "
              "HDR");
}

TEST(ReadImage, TooLargeOnesAreRefused) {
    EXPECT_EQ(
        hostErrorOf([] { decodeImage("P6 16385 1 255\n", "a.ppm"); }),
        "a.ppm: error: this image has 16385 by 1 pixels; at most 16384 on a side and 67108864 in all can "
        "be used; make it smaller");
    EXPECT_EQ(
        hostErrorOf([] { decodeImage("P6 16384 16384 255\n", "a.ppm"); }),
        "a.ppm: error: this image has 16384 by 16384 pixels; at most 16384 on a side and 67108864 in all "
        "can be used; make it smaller");
}

/// libstb says of such a file that it is no image.
TEST(ReadImage, APngThatIsTooLargeToBeDecodedIsRefusedForItsSize) {
    const std::string signature("\x89PNG\r\n\x1A\n", 8);
    const std::string header("\0\0\0\x0DIHDR\0\0\x4E\x20\0\0\x4E\x20\x08\0\0\0\0\xC6\x1B\x19\xE5\0\0\0\0IDAT",
                             33);
    EXPECT_EQ(hostErrorOf([&] { decodeImage(signature + header, "a.png"); }),
              "a.png: error: this image has 20000 by 20000 pixels; at most 16384 on a side and 67108864 in "
              "all can be used; make it smaller");
}

TEST(ReadImage, TheFirstImageOfAnAnimation) {
    // one red pixel, with a palette of two colours
    const std::string content("GIF89a\x01\0\x01\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\x01\0\x01\0\0\x02\x02\x44"
                              "\x01\0;",
                              35);
    EXPECT_EQ(decodeImage(content, "a.gif").pixels, (std::vector<float>{1, 0, 0, 1}));
}

TEST(ReadImage, PixelMaps) {
    EXPECT_EQ(decodeImage("P6 1 1 255\n\xFF\x33\xFF", "a.ppm").pixels, (std::vector<float>{1, 0.2F, 1, 1}));
    EXPECT_EQ(decodeImage("P5 1 1 255\n\x33", "a.pgm").pixels, (std::vector<float>{0.2F, 0.2F, 0.2F, 1}));
}

// Levels

/// An image of grey pixels that are opaque.
Image greyImage(int width, int height, const std::vector<float>& greys) {
    Image image;
    image.width = width;
    image.height = height;
    for (const float grey : greys) {
        image.pixels.insert(image.pixels.end(), {grey, grey, grey, 1.0F});
    }
    return image;
}

/// The red channel.
std::vector<float> reds(const TextureLevel& level) {
    std::vector<float> values;
    for (std::size_t i = 0; i < level.texels.size(); i += 4) {
        values.push_back(level.texels[i]);
    }
    return values;
}

TEST(TextureLevels, BeginWithTheBottomRow) {
    const auto levels = textureLevels(greyImage(2, 2, {0.1F, 0.2F, 0.3F, 0.4F}), false);
    ASSERT_EQ(levels.size(), 2U);
    EXPECT_EQ(reds(levels[0]), (std::vector<float>{0.3F, 0.4F, 0.1F, 0.2F}));
    EXPECT_NEAR(reds(levels[1]).at(0), 0.25F, 1e-6F);
}

TEST(TextureLevels, GoDownToOneByOne) {
    const auto levels = textureLevels(greyImage(5, 2, std::vector<float>(10, 0.5F)), false);
    ASSERT_EQ(levels.size(), 3U);
    EXPECT_EQ(levels[1].width, 2);
    EXPECT_EQ(levels[1].height, 1);
    EXPECT_EQ(levels[2].width, 1);
    EXPECT_EQ(levels[2].height, 1);
}

TEST(TextureLevels, OddSizesAreSharedOut) {
    const auto levels = textureLevels(greyImage(3, 1, {0.0F, 0.3F, 0.9F}), false);
    EXPECT_NEAR(reds(levels.back()).at(0), 0.4F, 1e-6F);
    const auto five = textureLevels(greyImage(5, 1, {1.0F, 1.0F, 0.5F, 0.0F, 0.0F}), false);
    EXPECT_NEAR(reds(five[1]).at(0), 0.9F, 1e-6F); // 1, 1 and half of 0.5, over 2.5
    EXPECT_NEAR(reds(five[1]).at(1), 0.1F, 1e-6F);
}

TEST(TextureLevels, ColoursHaveTheMeanOfTheirLight) {
    const auto levels = textureLevels(greyImage(2, 1, {0.0F, 1.0F}), true);
    EXPECT_NEAR(reds(levels[0]).at(1), 1.0F, 1e-6F);
    EXPECT_NEAR(reds(levels[1]).at(0), 0.735357F, 1e-5F);
    EXPECT_EQ(levels[1].texels[3], 1.0F);
}

TEST(TextureLevels, LightBecomesSrgbWhereTheShaderReadsThat) {
    Image image = greyImage(1, 1, {0.5F});
    image.isLinear = true;
    EXPECT_NEAR(reds(textureLevels(image, true)[0]).at(0), 0.735357F, 1e-5F);
    EXPECT_EQ(reds(textureLevels(image, false)[0]).at(0), 0.5F);
}

// The checker

TEST(LabelledChecker, BearsItsLabelInTheMiddle) {
    const Image plain = labelledChecker("");
    const Image labelled = labelledChecker("Paint");
    ASSERT_EQ(labelled.pixels.size(), plain.pixels.size());
    std::size_t changed = 0;
    for (int y = 0; y < labelled.height; ++y) {
        for (int x = 0; x < labelled.width; ++x) {
            const auto index = static_cast<std::size_t>(y * labelled.width + x) * 4;
            if (labelled.pixels[index] != plain.pixels[index]) {
                ++changed;
                ASSERT_GT(y, labelled.height / 3);
                ASSERT_LT(y, labelled.height * 2 / 3);
            }
        }
    }
    EXPECT_GT(changed, 1000U);
    EXPECT_NE(labelled.pixels, labelledChecker("Point").pixels);
}

TEST(LabelledChecker, AnyTextWillDo) {
    EXPECT_EQ(labelledChecker("f\xC3\xA4rg").pixels, labelledChecker("f??rg").pixels);
    EXPECT_EQ(labelledChecker(std::string(5000, 'M')).width, 512);
    EXPECT_EQ(labelledChecker("a\nb").pixels, labelledChecker("a?b").pixels);
}

// Writing

/// What libpng reads from the bytes of a file.
Bytes readBack(const std::string& content, png_uint_32 format) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, content.data(), content.size()), 0);
    EXPECT_EQ(image.format, format);
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    return pixels;
}

TEST(EncodePng, IsReadBack) {
    const Bytes opaque = {1, 2, 3, 250, 128, 0};
    EXPECT_EQ(readBack(encodePng({2, 1, false, opaque}), PNG_FORMAT_RGB), opaque);
    const Bytes transparent = {1, 2, 3, 0, 250, 128, 0, 77};
    EXPECT_EQ(readBack(encodePng({1, 2, true, transparent}), PNG_FORMAT_RGBA), transparent);
}

TEST(EncodePng, SaysThatItIsSrgbAndNothingOfTheTime) {
    const std::string content = encodePng({1, 1, false, {1, 2, 3}});
    EXPECT_NE(content.find("sRGB"), std::string::npos);
    EXPECT_EQ(content.find("tIME"), std::string::npos);
    EXPECT_EQ(content, encodePng({1, 1, false, {1, 2, 3}}));
}

} // namespace
} // namespace patina::preview
