#include "tests/preview/perceptual.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <stdexcept>

namespace patina::testing {
namespace {

using Rgb = std::array<std::uint8_t, 3>;

constexpr int side = 40;

template <typename ColourAt>
Picture drawn(const ColourAt& colourAt) {
    Picture picture{side, side, {}};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const Rgb colour = colourAt(x, y);
            picture.bytes.insert(picture.bytes.end(), colour.begin(), colour.end());
        }
    }
    return picture;
}

Picture even(const Rgb& colour) {
    return drawn([&](int, int) { return colour; });
}

TEST(PerceptualDifference, IsNoneBetweenEqualPictures) {
    const Picture picture = drawn([](int x, int y) {
        return Rgb{static_cast<std::uint8_t>(6 * x), static_cast<std::uint8_t>(6 * y), 90};
    });

    const Difference difference = differenceOf(picture, picture);

    EXPECT_EQ(difference.mean, 0.0);
    EXPECT_EQ(difference.percentile99, 0.0);
}

TEST(PerceptualDifference, IsTheDistanceInLab) {
    struct Row {
        const char* about;
        Rgb left;
        Rgb right;
        double expected;
    };
    // L*a*b* of sRGB's corners: white 100, 0, 0; red 53.24, 80.09, 67.20; green 87.73, -86.18, 83.18;
    // blue 32.30, 79.19, -107.86
    const std::array<Row, 6> rows = {{
        {"black and white", {0, 0, 0}, {255, 255, 255}, 100.0},
        {"black and red", {0, 0, 0}, {255, 0, 0}, 117.34},
        {"black and green", {0, 0, 0}, {0, 255, 0}, 148.47},
        {"black and blue", {0, 0, 0}, {0, 0, 255}, 137.65},
        {"red and blue", {255, 0, 0}, {0, 0, 255}, 176.31},
        {"neighbouring greys", {119, 119, 119}, {120, 120, 120}, 0.39},
    }};

    for (const Row& row : rows) {
        const Difference difference = differenceOf(even(row.left), even(row.right));

        EXPECT_NEAR(difference.mean, row.expected, 0.05) << row.about;
        EXPECT_NEAR(difference.percentile99, row.expected, 0.05) << row.about;
    }
}

TEST(PerceptualDifference, HardlySeesRounding) {
    const Picture picture = even({90, 120, 150});
    const Picture rounded = drawn([](int x, int y) {
        const bool up = (x + y) % 2 == 0;
        return up ? Rgb{91, 121, 151} : Rgb{89, 119, 149};
    });

    const Difference difference = differenceOf(picture, rounded);

    EXPECT_LT(difference.percentile99, 0.1);
}

TEST(PerceptualDifference, SeesWhatCoversMoreThanAHundredth) {
    const Picture picture = even({90, 120, 150});
    const Picture patched = drawn([](int x, int y) {
        return x < 6 && y < 6 ? Rgb{220, 120, 150} : Rgb{90, 120, 150};
    });

    const Difference difference = differenceOf(picture, patched);

    EXPECT_LT(difference.mean, 2.0);
    EXPECT_GT(difference.percentile99, 40.0);
}

TEST(PerceptualDifference, IsOfPicturesOfOneSize) {
    const Picture small{1, 1, {0, 0, 0}};

    EXPECT_THROW(differenceOf(small, even({0, 0, 0})), std::runtime_error);
}

} // namespace
} // namespace patina::testing
