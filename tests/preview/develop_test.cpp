#include "preview/develop.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace patina::preview {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Develops a picture of one tile.
Bytes developed(PreviewOptions options, bool isLit, const std::vector<float>& samples, int side = 1) {
    options.width = side;
    options.height = side;
    const Subject subject;
    const Studio studio(subject, {}, 0.0F);
    const Development development(options, studio, isLit);
    Picture picture = development.start();
    development.develop(picture, {0, 0, side}, samples);
    return picture.bytes;
}

PreviewOptions over(const std::array<float, 3>& colour, int samples = 1) {
    PreviewOptions options;
    options.background = PreviewBackground::Colour;
    options.colour = colour;
    options.samples = samples;
    return options;
}

PreviewOptions transparent() {
    PreviewOptions options;
    options.background = PreviewBackground::Transparent;
    options.samples = 1;
    return options;
}

TEST(Develop, LightBecomesSrgb) {
    EXPECT_EQ(developed(over({}), false, {0.0F, 0.5F, 1.0F, 1.0F}), (Bytes{0, 188, 255}));
    EXPECT_EQ(developed(over({}), false, {0.001F, 0.18F, 0.75F, 1.0F}), (Bytes{3, 118, 225}));
}

TEST(Develop, WhatIsNotShownEndsAtBlackAndWhite) {
    EXPECT_EQ(developed(over({}), false, {-3.0F, 7.0F, infinite, 1.0F}), (Bytes{0, 255, 255}));
    EXPECT_EQ(developed(over({}), false, {notANumber, -infinite, 0.5F, 1.0F}), (Bytes{0, 0, 188}));
    EXPECT_EQ(developed(over({}), true, {notANumber, -infinite, -1.0F, 1.0F}), (Bytes{0, 0, 0}));
}

TEST(Develop, AlphaLetsTheBackgroundThrough) {
    const PreviewOptions options = over({0.0F, 1.0F, 0.5F});
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, 0.0F}), (Bytes{0, 255, 188}));
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, 0.5F}), (Bytes{188, 188, 188}));
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, 1.0F}), (Bytes{255, 0, 188}));
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, 9.0F}), (Bytes{255, 0, 188}));
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, -9.0F}), (Bytes{0, 255, 188}));
    EXPECT_EQ(developed(options, false, {1.0F, 0.0F, 0.5F, notANumber}), (Bytes{0, 255, 188}));
}

TEST(Develop, TransparentPicturesKeepColourAndAlphaApart) {
    EXPECT_EQ(developed(transparent(), false, {0.5F, 1.0F, 0.0F, 0.2F}), (Bytes{188, 255, 0, 51}));
    EXPECT_EQ(developed(transparent(), false, {0.5F, 1.0F, 0.0F, 0.0F}), (Bytes{0, 0, 0, 0}));
}

TEST(Develop, APixelIsTheMeanOfTheLightOfItsSamples) {
    const std::vector<float> samples = {0, 0, 0, 1, 1, 1, 1, 1, 0, 0, 0, 1, 9, 9, 9, 1};
    EXPECT_EQ(developed(over({}, 2), false, samples), (Bytes{188, 188, 188}));
}

TEST(Develop, SamplesComeFromTheBottomAndPixelsFromTheTop) {
    const std::vector<float> samples = {0, 0, 0, 1, 1, 0, 0, 1, 0, 1, 0, 1, 1, 1, 0, 1};
    EXPECT_EQ(developed(over({}), false, samples, 2), (Bytes{0, 255, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0}));
}

TEST(Develop, HighlightsOfLitMaterialsRollOff) {
    std::uint8_t last = 0;
    for (const float light : {0.1F, 0.3F, 0.5F, 0.7F, 0.9F, 1.1F, 1.5F, 2.0F}) {
        const std::uint8_t now = developed(over({}), true, {light, light, light, 1.0F}).front();
        EXPECT_GT(now, last + 1) << light;
        last = now;
    }
    EXPECT_LT(developed(over({}), true, {1.0F, 1.0F, 1.0F, 1.0F}).front(), 250);
    EXPECT_NEAR(developed(over({}), true, {0.5F, 0.5F, 0.5F, 1.0F}).front(), 188, 1);
}

/// The different values in the red channel of 8 by 8 pixels of one light.
std::set<int> shades(const PreviewOptions& options, bool isLit) {
    std::vector<float> samples;
    for (int i = 0; i < 64; ++i) {
        samples.insert(samples.end(), {0.2F, 0.2F, 0.2F, 1.0F});
    }
    const Bytes bytes = developed(options, isLit, samples, 8);
    std::set<int> values;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        values.insert(bytes[i]);
    }
    return values;
}

TEST(Develop, OnlyWhatChangesSlowlyHasAPattern) {
    EXPECT_EQ(shades(over({}), false), (std::set<int>{124})); // 123.53
    EXPECT_EQ(shades(over({}), true), (std::set<int>{123, 124}));
    PreviewOptions studio;
    studio.samples = 1;
    EXPECT_EQ(shades(studio, false), (std::set<int>{124}));
}

} // namespace
} // namespace patina::preview
