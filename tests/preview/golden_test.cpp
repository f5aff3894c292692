// The example materials look as they did: what the command draws, held against pictures that
// tools/draw-gallery made.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "tests/preview/perceptual.h"

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::Difference;
using testing::differenceOf;
using testing::Picture;
using testing::readPng;
using testing::TemporaryDirectory;

// Half of a just noticeable difference over all of the picture, and little more than one where it differs
// most: drivers may round, filter and cover pixels in their own ways, and nobody sees it; what an artist
// would see is more.
constexpr double meanAllowed = 1.0;
constexpr double percentile99Allowed = 3.0;

bool looksAlike(const Difference& difference) {
    return difference.mean <= meanAllowed && difference.percentile99 <= percentile99Allowed;
}

std::string described(const Difference& difference) {
    return "mean " + std::to_string(difference.mean) + ", 99th percentile " +
           std::to_string(difference.percentile99);
}

struct Example {
    const char* name;
    const char* mesh;
    const char* background = "";
};

void PrintTo(const Example& example, std::ostream* out) { *out << example.name; }

constexpr std::array<Example, 6> examples = {{
    {"painted_metal", "sphere"},
    {"brick", "cube"},
    {"fire", "plane", "0,0,0"},
    {"toon", "sphere"},
    {"carbon", "cube"},
    {"kitchen_sink", "cube"},
}};

std::filesystem::path golden(const std::string& name) {
    return std::filesystem::path(PATINA_GOLDEN_PICTURES) / (name + ".png");
}

/// What the command draws of an example, with further arguments.
Picture drawn(const Example& example, const std::vector<std::string>& further = {}) {
    const TemporaryDirectory directory;
    const std::string file = (directory / "drawn.png").string();
    std::vector<std::string> arguments = {"preview", std::string(PATINA_EXAMPLES "/") + example.name + ".xml",
                                          "--mesh",  example.mesh,
                                          "--size",  "128",
                                          "-q",      "-o",
                                          file};
    if (*example.background != '\0') {
        arguments.insert(arguments.end(), {"--background", example.background});
    }
    arguments.insert(arguments.end(), further.begin(), further.end());
    const testing::Outcome outcome = testing::run(PATINA_COMMAND, arguments);
    if (!std::filesystem::exists(file)) {
        throw std::runtime_error(outcome.errors);
    }
    return readPng(file);
}

/// A copy of a normal map whose bumps are dents.
std::filesystem::path turnedInsideOut(const std::filesystem::path& normals,
                                      const std::filesystem::path& copy) {
    Picture picture = readPng(normals);
    for (std::size_t i = 0; i < picture.bytes.size(); i += 3) {
        picture.bytes[i] = static_cast<std::uint8_t>(255 - picture.bytes[i]);
        picture.bytes[i + 1] = static_cast<std::uint8_t>(255 - picture.bytes[i + 1]);
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, copy.string().c_str(), 0, picture.bytes.data(), 0, nullptr) == 0) {
        throw std::runtime_error(image.message);
    }
    return copy;
}

class Golden : public ::testing::TestWithParam<Example> {};

TEST_P(Golden, LooksAsItDid) {
    const Difference difference = differenceOf(drawn(GetParam()), readPng(golden(GetParam().name)));

    EXPECT_TRUE(looksAlike(difference)) << described(difference);
}

INSTANTIATE_TEST_SUITE_P(Examples, Golden, ::testing::ValuesIn(examples),
                         [](const auto& example) { return std::string(example.param.name); });

TEST(GoldenTolerance, NoticesAWrongTint) {
    const Difference difference =
        differenceOf(drawn(examples[0], {"--set", "Tint=0.5,0.06,0.014"}), readPng(golden("painted_metal")));

    EXPECT_FALSE(looksAlike(difference)) << described(difference);
}

TEST(GoldenTolerance, NoticesAMissingTexture) {
    const TemporaryDirectory directory;
    for (const char* name : {"Brick", "BrickNormal", "MossNormal"}) {
        std::filesystem::copy_file(std::string(PATINA_EXAMPLES "/textures/") + name + ".png",
                                   directory / (std::string(name) + ".png"));
    }
    const Difference difference =
        differenceOf(drawn(examples[1], {"--textures", directory.path().string()}), readPng(golden("brick")));

    EXPECT_FALSE(looksAlike(difference)) << described(difference);
}

TEST(GoldenTolerance, NoticesAFlippedNormal) {
    const TemporaryDirectory directory;
    const std::string flipped =
        turnedInsideOut(PATINA_EXAMPLES "/textures/BrickNormal.png", directory / "flipped.png").string();
    const Difference difference =
        differenceOf(drawn(examples[1], {"--texture", "BrickNormal=" + flipped}), readPng(golden("brick")));

    EXPECT_FALSE(looksAlike(difference)) << described(difference);
}

TEST(GoldenTolerance, NoticesOneFrameOfAnAnimation) {
    const Difference difference =
        differenceOf(drawn(examples[2], {"--set", "FlameFrame=3"}), readPng(golden("fire")));

    EXPECT_FALSE(looksAlike(difference)) << described(difference);
}

TEST(GoldenTolerance, ForgivesWhatNobodySees) {
    const Difference samples = differenceOf(drawn(examples[1], {"--samples", "2"}), readPng(golden("brick")));
    const Difference tint = differenceOf(drawn(examples[0], {"--set", "Tint=0.502,0.0221,0.0141"}),
                                         readPng(golden("painted_metal")));

    EXPECT_TRUE(looksAlike(samples)) << described(samples);
    EXPECT_TRUE(looksAlike(tint)) << described(tint);
}

} // namespace
} // namespace patina
