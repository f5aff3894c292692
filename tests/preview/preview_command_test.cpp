#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "tests/preview/png_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::Colour;
using testing::connection;
using testing::documentText;
using testing::Environment;
using testing::node;
using testing::Outcome;
using testing::output;
using testing::PngFile;
using testing::pngText;
using testing::property;
using testing::readText;
using testing::TemporaryDirectory;

using Names = std::vector<std::string>;

/// A parameter "Tint", a colour of linear light.
const std::string tint =
    node("tint", "CoreConstant",
         property("Name", "string", "Tint") + property("Default Colour", "colour", "0.5, 0.5, 0.5"));
const std::string tinted = tint + output("colour", "tint", "read");

/// A texture "Paint", which is shown as it is.
const std::string painted = node("uv", "CoreUv", property("Name", "string", "map1")) +
                            node("paint", "CoreTexture", property("Name", "string", "Paint")) +
                            connection("uv", "read", "paint", "in_uv") +
                            output("colour", "paint", "out_colour");

/// A folder with a material, and pictures of it.
class PreviewCommand : public ::testing::Test {
protected:
    void write(const std::string& body) { directory_.write("m.xml", documentText(body)); }

    /// Draws 64 by 64 pixels unless the arguments say otherwise.
    virtual Outcome run(Names arguments, const Environment& environment = {}) {
        if (std::find(arguments.begin(), arguments.end(), "--size") == arguments.end()) {
            arguments.insert(arguments.end(), {"--size", "64"});
        }
        return runWith(arguments, environment);
    }

    Outcome runWith(Names arguments, const Environment& environment) const {
        arguments.insert(arguments.begin(), {"preview", path("m.xml"), "-o", path("out.png"), "-q",
                                             "--plugin", PATINA_CORENODES});
        return testing::run(PATINA_COMMAND, arguments, environment);
    }

    /// The picture of a run in which all goes well.
    PngFile picture(const Names& arguments = {}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.output, "");
        return PngFile(path("out.png"));
    }

    /// What a run says that ends with an exit code and writes no picture.
    std::string refusal(int exitCode, const Names& arguments, const Environment& environment = {}) {
        const Outcome outcome = run(arguments, environment);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_FALSE(std::filesystem::exists(directory_ / "out.png"));
        return outcome.errors;
    }

    /// What a run says that ends with errors and draws a picture all the same.
    std::string errorsOf(const Names& arguments) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(PngFile(path("out.png")).middle(), (Colour{188, 188, 188}));
        return outcome.errors;
    }

    std::string path(const std::string& name) const { return (directory_ / name).string(); }

    TemporaryDirectory directory_;
};

/// A folder with a material, and pictures of its graph.
class ContactSheet : public PreviewCommand {
protected:
    Outcome run(Names arguments, const Environment& environment = {}) override {
        arguments.emplace_back("--contact-sheet");
        return runWith(arguments, environment);
    }
};

TEST_F(PreviewCommand, UnlitColoursAreShownExactly) {
    write(tinted);
    EXPECT_EQ(picture().middle(), (Colour{188, 188, 188}));
    EXPECT_EQ(picture({"--mesh", "cube"}).middle(), (Colour{188, 188, 188}));
    EXPECT_EQ(picture({"--mesh", "plane"}).middle(), (Colour{188, 188, 188}));
}

TEST_F(PreviewCommand, SaysWhatItDrew) {
    write(tinted);
    const Outcome outcome =
        testing::run(PATINA_COMMAND, {"preview", path("m.xml"), "-o", path("new/a.png"), "--size", "20x10",
                                      "--frames", "2", "--plugin", PATINA_CORENODES});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "Sample: " + path("new/a_000.png") + " to a_001.png, 20 by 10 pixels\n");
}

TEST_F(PreviewCommand, ThePictureHasTheSizeThatIsAskedFor) {
    write(tinted);
    const PngFile square = picture({"--size", "40"});
    EXPECT_EQ(square.width(), 40);
    EXPECT_EQ(square.height(), 40);
    const PngFile wide = picture({"--size", "300x70"});
    EXPECT_EQ(wide.width(), 300);
    EXPECT_EQ(wide.height(), 70);
    EXPECT_EQ(wide.middle(), (Colour{188, 188, 188}));
}

TEST_F(PreviewCommand, PartsThatAreDrawnAloneJoin) {
    write(tinted); // 16 by 16 samples make parts of 64 by 64 pixels
    const PngFile picture = this->picture({"--size", "200", "--samples", "16"});
    for (int i = 30; i < 170; ++i) {
        ASSERT_EQ(picture.at(i, 100), (Colour{188, 188, 188})) << i;
        ASSERT_EQ(picture.at(100, i), (Colour{188, 188, 188})) << i;
    }
}

TEST_F(PreviewCommand, SetsParameters) {
    write(tinted);
    EXPECT_EQ(picture({"--set", "Tint=0.25,0.5,1"}).middle(), (Colour{137, 188, 255}));
    EXPECT_EQ(picture({"--set", "Tint=0.25"}).middle(), (Colour{137, 137, 137}));
    EXPECT_EQ(picture({"--set", "Tint=-1", "--set", "Tint=7,0,0"}).middle(), (Colour{255, 0, 0}));
}

TEST_F(PreviewCommand, ParametersGrowWithTime) {
    write(tinted);
    EXPECT_EQ(picture({"--animate", "Tint=0.25", "--time", "2"}).middle(), (Colour{255, 255, 255}));
    EXPECT_EQ(picture({"--animate", "Tint=-0.25,0,0.25", "--time", "1"}).middle(), (Colour{137, 188, 225}));
    EXPECT_EQ(picture({"--set", "Tint=0", "--animate", "Tint=0.5", "--time", "1"}).middle(),
              (Colour{188, 188, 188}));
}

TEST_F(PreviewCommand, ATurntableIsManyPictures) {
    write(tinted);
    const Outcome outcome = run({"--frames", "3", "--set", "Tint=0", "--animate", "Tint=25,12.5,0"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(directory_.names(), (Names{"m.xml", "out_000.png", "out_001.png", "out_002.png"}));
    EXPECT_EQ(PngFile(path("out_000.png")).middle(), (Colour{0, 0, 0}));
    EXPECT_EQ(PngFile(path("out_001.png")).middle(), (Colour{255, 188, 0}));
    EXPECT_EQ(PngFile(path("out_002.png")).middle(), (Colour{255, 255, 0}));
}

TEST_F(PreviewCommand, TheSameInputGivesTheSameBytes) {
    write(painted);
    picture({"--mesh", "cube"});
    const std::string first = readText(directory_ / "out.png");
    picture({"--mesh", "cube"});
    EXPECT_EQ(readText(directory_ / "out.png"), first);
}

// Light

/// A material of one colour under light.
std::string lit(const std::string& colour, const std::string& gloss) {
    return node("tint", "CoreConstant",
                property("Name", "string", "Tint") + property("Default Colour", "colour", colour)) +
           node("gloss", "CoreConstant",
                property("Name", "string", "Gloss") + property("Constant Type", "enum", "Scalar") +
                    property("Default Scalar", "float", gloss)) +
           output("colour", "tint", "read") + output("gloss", "gloss", "read");
}

TEST_F(PreviewCommand, LightComesFromAboveTheLeft) {
    write(lit("0.5, 0.5, 0.5", "0"));
    const PngFile sphere = picture();
    EXPECT_GT(sphere.at(22, 22)[0], sphere.at(42, 46)[0] + 40);
    const PngFile plane = picture({"--mesh", "plane"});
    EXPECT_GT(plane.middle()[0], 120); // it faces the light
}

TEST_F(PreviewCommand, NoLitSurfaceIsFlatWhite) {
    write(lit("0.9, 0.9, 0.9", "0"));
    const PngFile sphere = picture();
    for (int i = 8; i < 56; ++i) {
        EXPECT_LT(sphere.at(i, 32)[0], 255) << i;
        EXPECT_LT(sphere.at(32, i)[0], 255) << i;
    }
}

TEST_F(PreviewCommand, GlossMakesHighlights) {
    write(lit("0.02, 0.02, 0.02", "0.8"));
    const auto brightest = [](const PngFile& picture) {
        int most = 0;
        for (int y = 12; y < 32; ++y) {
            for (int x = 12; x < 32; ++x) {
                most = std::max(most, picture.at(x, y)[0]);
            }
        }
        return most;
    };
    const int glossy = brightest(picture());
    EXPECT_GT(glossy, brightest(picture({"--set", "Gloss=0"})) + 100);
}

TEST_F(PreviewCommand, ValuesOfALitMaterialAreNotLit) {
    write(lit("0.5, 0.5, 0.5", "0.25"));
    EXPECT_EQ(picture({"--node", "tint"}).middle(), (Colour{188, 188, 188}));
    EXPECT_EQ(picture({"--node", "gloss"}).middle(), (Colour{137, 137, 137}));
}

TEST_F(PreviewCommand, NamesOfTheFrameworkDoNotLight) {
    write(node("tint", "CoreConstant", property("Name", "string", "lightDirections")) +
          output("colour", "tint", "read"));
    EXPECT_EQ(picture({"--set", "lightDirections=1"}).middle(), (Colour{255, 255, 255}));
}

TEST_F(PreviewCommand, NamesOfTheCameraAreTheMaterialsOwn) {
    for (const std::string name : {"world", "eyePosition", "time"}) {
        write(node("tint", "CoreConstant",
                   property("Name", "string", name) + property("Default Colour", "colour", "0.5, 0.25, 1")) +
              output("colour", "tint", "read"));
        EXPECT_EQ(picture().middle(), (Colour{188, 137, 255})) << name;
    }
}

/// A lit material in which a node reads a parameter of the framework, and shines with it.
std::string sharing(const std::string& name) {
    return tint +
           node("shared", "CoreConstant",
                property("Name", "string", name) + property("Constant Type", "enum", "Vector") +
                    property("Component Count", "integer", "3")) +
           node("split", "CoreSwizzle",
                property("Vector Type", "enum", "Vector") + property("Component Count", "integer", "3")) +
           connection("shared", "read", "split", "in_vec") +
           node("ramp", "CoreTexture",
                property("Name", "string", "Ramp") + property("Texture Type", "enum", "1D")) +
           connection("split", "out_y", "ramp", "in_uv") + output("colour", "tint", "read") +
           output("emissive", "ramp", "out_colour");
}

TEST_F(PreviewCommand, WhatALitMaterialSharesWithTheFrameworkIsSupplied) {
    write(sharing("ambientAbove"));
    const PngFile supplied = picture({"--set", "Tint=0.5"});
    EXPECT_GT(supplied.at(32, 12)[0],
              picture({"--set", "Tint=0.5", "--set", "ambientAbove=0"}).at(32, 12)[0]);
}

TEST_F(PreviewCommand, WhatIsSetStaysWhatItIs) {
    for (const std::string name : {"world", "eyePosition", "time"}) {
        write(node("tint", "CoreConstant", property("Name", "string", name)) +
              output("colour", "tint", "read"));
        EXPECT_EQ(picture({"--set", name + "=0.5,0.25,1"}).middle(), (Colour{188, 137, 255})) << name;
    }
}

// Background and alpha

TEST_F(PreviewCommand, TheBackgroundIsLinearLight) {
    write(tinted);
    EXPECT_EQ(picture({"--background", "0.5,0.25,1"}).at(0, 0), (Colour{188, 137, 255}));
}

TEST_F(PreviewCommand, TheBackgroundMayBeTransparent) {
    write(tinted);
    const PngFile picture = this->picture({"--background", "transparent"});
    EXPECT_EQ(picture.at(0, 0), (Colour{0, 0, 0, 0}));
    EXPECT_EQ(picture.middle(), (Colour{188, 188, 188, 255}));
}

TEST_F(PreviewCommand, TheStudioIsGrey) {
    write(tinted);
    const Colour corner = picture().at(0, 0);
    EXPECT_EQ(corner[0], corner[1]);
    EXPECT_EQ(corner[1], corner[2]);
    EXPECT_GT(corner[0], 60);
    EXPECT_LT(corner[0], 180);
}

TEST_F(PreviewCommand, AlphaLetsTheBackgroundThrough) {
    write(node("tint", "CoreConstant",
               property("Name", "string", "Light") + property("Default Colour", "colour", "1, 1, 1")) +
          node("cover", "CoreConstant",
               property("Constant Type", "enum", "Scalar") + property("Default Scalar", "float", "0.5")) +
          output("colour", "tint", "read") + output("alpha", "cover", "read"));
    EXPECT_EQ(picture({"--background", "0,0,0"}).middle(), (Colour{188, 188, 188}));
    EXPECT_EQ(picture({"--background", "transparent"}).middle(), (Colour{255, 255, 255, 128}));
}

// Textures

/// Red, green, blue and white from the top left corner, 32 by 32 pixels each.
std::string fourColours() {
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool isRight = x >= 32;
            const bool isLow = y >= 32;
            const std::uint8_t red = isRight == isLow ? 255 : 0;
            const std::uint8_t green = isRight ? 255 : 0;
            const std::uint8_t blue = isLow ? 255 : 0;
            pixels.insert(pixels.end(), {red, green, blue});
        }
    }
    return pngText(64, 64, pixels);
}

TEST_F(PreviewCommand, TexturesStandUpright) {
    write(painted);
    const std::string texture = "Paint=" + directory_.write("four.png", fourColours()).string();
    for (const char* mesh : {"plane", "sphere"}) {
        const PngFile picture = this->picture({"--mesh", mesh, "--texture", texture});
        EXPECT_EQ(picture.at(24, 24), (Colour{255, 0, 0})) << mesh;
        EXPECT_EQ(picture.at(40, 24), (Colour{0, 255, 0})) << mesh;
        EXPECT_EQ(picture.at(24, 40), (Colour{0, 0, 255})) << mesh;
        EXPECT_EQ(picture.at(40, 40), (Colour{255, 255, 255})) << mesh;
    }
}

TEST_F(PreviewCommand, BytesOfATextureComeOutAsTheyWentIn) {
    write(painted);
    directory_.write("a.png", pngText(1, 1, {12, 119, 230}));
    EXPECT_EQ(picture({"--texture", "Paint=" + path("a.png")}).middle(), (Colour{12, 119, 230}));
}

TEST_F(PreviewCommand, ATextureOfOneDimensionIsTheMiddleRowOfItsImage) {
    write(tint + node("cut", "CoreSwizzle", "") + connection("tint", "read", "cut", "in_vec") +
          node("ramp", "CoreTexture",
               property("Name", "string", "Ramp") + property("Texture Type", "enum", "1D")) +
          connection("cut", "out_x", "ramp", "in_uv") + output("colour", "ramp", "out_colour"));
    const std::string texture = "Ramp=" + directory_.write("four.png", fourColours()).string();
    EXPECT_EQ(picture({"--texture", texture, "--set", "Tint=0.25"}).middle(), (Colour{255, 0, 0}));
    EXPECT_EQ(picture({"--texture", texture, "--set", "Tint=0.75"}).middle(), (Colour{0, 255, 0}));
}

TEST_F(PreviewCommand, TexturesAreFoundByTheirNames) {
    write(painted);
    std::filesystem::create_directory(directory_ / "textures");
    std::filesystem::create_directory(directory_ / "others");
    directory_.write("textures/Paint.png", pngText(1, 1, {1, 2, 3}));
    directory_.write("others/Paint.png", pngText(1, 1, {4, 5, 6}));
    EXPECT_EQ(picture().middle(), (Colour{1, 2, 3}));
    EXPECT_EQ(picture({"--textures", path("others")}).middle(), (Colour{4, 5, 6}));
}

TEST_F(PreviewCommand, ADirectoryOfTexturesMustBeThere) {
    write(tinted);
    EXPECT_EQ(errorsOf({"--textures", path("none")}),
              path("none") +
                  ": error: there is no such directory; give the one that textures are in with --textures\n");
    EXPECT_EQ(errorsOf({"--textures", path("m.xml")}),
              path("m.xml") + ": error: this is a file; give the directory that textures are in with "
                              "--textures, and a single image with --texture NAME=FILE\n");
}

TEST_F(PreviewCommand, AMissingTextureIsACheckerWithItsName) {
    write(painted);
    picture();
    const std::string checker = readText(directory_ / "out.png");
    const std::string missing = path("missing.png");
    const Outcome outcome = run({"--texture", "Paint=" + missing});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors,
              missing + ": error: cannot read this file: there is no such file or directory\n");
    EXPECT_EQ(readText(directory_ / "out.png"), checker);
}

TEST_F(PreviewCommand, AMissingNormalMapIsNearlyFlat) {
    for (const std::string type : {"Normal", "DXT5 Normal"}) {
        write(tinted + node("uv", "CoreUv") +
              node("bumps", "CoreTexture",
                   property("Name", "string", "Bumps") + property("Colour Type", "enum", type)) +
              connection("uv", "read", "bumps", "in_uv") + output("normal", "bumps", "out_colour"));
        EXPECT_GT(picture().middle()[0], 60) << type;
    }
}

TEST_F(PreviewCommand, AGreyMapBendsNoNormals) {
    write(tinted + node("uv", "CoreUv") +
          node("bumps", "CoreTexture",
               property("Name", "string", "Bumps") + property("Colour Type", "enum", "Normal")) +
          connection("uv", "read", "bumps", "in_uv") + output("normal", "bumps", "out_colour"));
    directory_.write("grey.png", pngText(2, 2, std::vector<std::uint8_t>(12, 128)));
    EXPECT_GT(picture({"--texture", "Bumps=" + path("grey.png")}).middle()[0], 60);
}

TEST_F(PreviewCommand, AWhiteMapInAlphaAndGreenBendsNoNormals) {
    write(tinted + node("uv", "CoreUv") +
          node("bumps", "CoreTexture",
               property("Name", "string", "Bumps") + property("Colour Type", "enum", "DXT5 Normal")) +
          connection("uv", "read", "bumps", "in_uv") + output("normal", "bumps", "out_colour"));
    directory_.write("white.png", pngText(2, 2, std::vector<std::uint8_t>(12, 255)));
    EXPECT_GT(picture({"--texture", "Bumps=" + path("white.png")}).middle()[0], 60);
}

TEST_F(PreviewCommand, AFoundTextureThatCannotBeReadIsAChecker) {
    write(painted);
    picture();
    const std::string checker = readText(directory_ / "out.png");
    std::filesystem::create_directory(directory_ / "textures");
    directory_.write("textures/Paint.png", "no image");
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, path("textures/Paint.png") +
                                  ": warning: this is no image that can be read; save it as PNG, JPEG, TGA, "
                                  "BMP, GIF, PSD, PPM, PGM or HDR\n");
    EXPECT_EQ(readText(directory_ / "out.png"), checker);
}

// Meshes

TEST_F(PreviewCommand, VertexColoursTellThePosition) {
    write(node("c", "CoreVertexColour", "") + output("colour", "c", "out_colour"));
    const PngFile sphere = picture();
    EXPECT_GT(sphere.at(32, 12)[0], sphere.at(32, 52)[0] + 100);
    EXPECT_GT(sphere.at(52, 32)[1], sphere.at(12, 32)[1] + 100);
    EXPECT_GT(sphere.at(32, 32)[2], 240);
}

TEST_F(PreviewCommand, MeshesAreReadFromFiles) {
    write(tinted);
    directory_.write("mesh.obj", "v 0 0 0\nv 4 0 0\nv 0 4 0\nv 0 0 4\nf 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4\n");
    EXPECT_EQ(picture({"--mesh", path("mesh.obj")}).middle(), (Colour{188, 188, 188}));
}

TEST_F(PreviewCommand, MeshesThatCannotBeReadAreRefused) {
    write(tinted);
    directory_.write("mesh.obj", "v 0 0 0\nv 1 0\n");
    EXPECT_EQ(refusal(1, {"--mesh", path("mesh.obj")}),
              path("mesh.obj") + ":2: error: \"v\" needs 3 numbers\n");
    EXPECT_EQ(refusal(1, {"--mesh", "ball"}),
              "error: there is no mesh \"ball\"; give sphere, plane, cube, or a Wavefront file, NAME.obj\n");
}

// Values of nodes

TEST_F(PreviewCommand, ShowsTheValueOfANode) {
    const auto constant = [](const std::string& id, int count) {
        return node(id, "CoreConstant",
                    property("Constant Type", "enum", "Vector") +
                        property("Component Count", "integer", std::to_string(count)) +
                        property("Name", "string", "V" + std::to_string(count)));
    };
    write(tinted + constant("two", 2) + constant("three:x", 3) + node("cut", "CoreSwizzle") +
          connection("three:x", "read", "cut", "in_vec"));
    EXPECT_EQ(picture({"--node", "tint"}).middle(), (Colour{188, 188, 188}));
    EXPECT_EQ(picture({"--node", "two", "--set", "V2=0.5,1"}).middle(), (Colour{188, 255, 0}));
    EXPECT_EQ(picture({"--node", "three:x", "--set", "V3=1,0.5,0.25"}).middle(), (Colour{255, 188, 137}));
    EXPECT_EQ(picture({"--node", "cut", "--set", "V3=1,0.5,0.25"}).middle(), (Colour{255, 255, 255}));
    EXPECT_EQ(picture({"--node", "cut:out_y", "--set", "V3=1,0.5,0.25"}).middle(), (Colour{188, 188, 188}));
}

TEST_F(PreviewCommand, NodesThatAreNotThereAreRefused) {
    write(tinted);
    EXPECT_NE(refusal(1, {"--node", "nobody"}).find("nobody"), std::string::npos);
    EXPECT_NE(refusal(1, {"--node", "tint:nothing"}).find("nothing"), std::string::npos);
}

// The contact sheet

/// How many pixels of a picture have exactly that colour.
int count(const PngFile& picture, const Colour& colour) {
    int found = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            found += picture.at(column, row) == colour ? 1 : 0;
        }
    }
    return found;
}

/// What is certainly inside of a sphere's picture.
constexpr int diskPixels = 20000;

TEST_F(ContactSheet, ShowsWhatEachNodeGives) {
    write(tint + node("invert", "CoreMaths", property("Function", "enum", "Invert")) +
          connection("tint", "read", "invert", "in_value1") + output("colour", "invert", "out_value"));
    const PngFile sheet = picture({"--set", "Tint=1,0,0"});
    const int red = count(sheet, {255, 0, 0});
    const int cyan = count(sheet, {0, 255, 255});
    EXPECT_GT(red, diskPixels);
    EXPECT_LT(red, 2 * diskPixels) << "one node is red";
    EXPECT_GT(cyan, 2 * diskPixels) << "one node is cyan, and so is the material";
}

TEST_F(ContactSheet, LeavesOutWhatCannotBeShown) {
    write(tint + node("rim", "CoreMaths", property("Function", "enum", "Fresnel")) +
          output("colour", "tint", "read"));
    const Outcome outcome = run({"--set", "Tint=1,0,0"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, path("m.xml") +
                                  ":3: error: node \"rim\" (\"Maths\"): a value needs to be supplied to "
                                  "the \"facing\" port on the Fresnel maths node\n");
    EXPECT_GT(count(PngFile(path("out.png")), {255, 0, 0}), diskPixels);
}

TEST_F(ContactSheet, ShowsTheNodesOfAMaterialThatCannotBeShown) {
    write(tint);
    const Outcome outcome = run({"--set", "Tint=1,0,0"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.errors.find("error: "), std::string::npos);
    EXPECT_GT(count(PngFile(path("out.png")), {255, 0, 0}), diskPixels);
}

TEST_F(ContactSheet, SaysEachThingOnce) {
    write(painted);
    const Outcome outcome = run({"--texture", "Paint=" + path("none.png")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors,
              path("none.png") + ": error: cannot read this file: there is no such file or directory\n");
}

TEST_F(ContactSheet, HasNoMoreThan4096PixelsOnASide) {
    std::string many; // nodes without pictures, which would take their time
    for (int i = 0; i < 60; ++i) {
        many += node("n" + std::to_string(i), "CoreMaths", property("Function", "enum", "Fresnel"));
    }
    write(tinted + many);
    EXPECT_EQ(run({}).exitCode, 1);
    const PngFile sheet(path("out.png"));
    EXPECT_LE(sheet.height(), 4096);
    EXPECT_GT(sheet.height(), 3900);
}

TEST_F(ContactSheet, NeedsGraphviz) {
    write(tinted);
    EXPECT_EQ(
        refusal(1, {}, {{"PATH", path(".")}}),
        "dot: error: cannot start this program: there is no such file or directory; install Graphviz\n");
}

TEST_F(ContactSheet, NeedsATemporaryDirectory) {
    write(tinted);
    EXPECT_EQ(refusal(1, {}, {{"TMPDIR", path("none")}}),
              "error: cannot make a directory for temporary files: there is no such file or directory; set "
              "TMPDIR to a "
              "directory that can be written to\n");
}

TEST_F(ContactSheet, ExcludesWhatItDecidesItself) {
    write(tinted);
    for (const Names& row : {Names{"--node", "tint"}, Names{"--size", "64"}, Names{"--frames", "2"},
                             Names{"--background", "1,1,1"}}) {
        EXPECT_NE(refusal(2, row), "") << row.front();
    }
}

// Errors

TEST_F(PreviewCommand, NamesThatNoBindingHasAreErrorsAndTheRestIsDrawn) {
    write(tinted + node("more", "CoreConstant", property("Name", "string", "Shine")));
    const std::string begin = path("m.xml") + ": error: ";
    EXPECT_EQ(errorsOf({"--set", "Tind=1"}),
              begin + "this material has no value \"Tind\"; it has Tint, Shine\n");
    EXPECT_EQ(errorsOf({"--animate", "Tind=1"}),
              begin + "this material has no value \"Tind\"; it has Tint, Shine\n");
    EXPECT_EQ(errorsOf({"--texture", "Paint=a.png"}),
              begin + "this material has no texture that can be set, and so none \"Paint\"\n");
    EXPECT_EQ(errorsOf({"--set", "Tint=1,2"}),
              begin + "\"Tint\" takes 3 numbers, or one for all, and not 2\n");
}

TEST_F(PreviewCommand, AMaterialMustBeSound) {
    write(output("colour", "nobody", "read"));
    EXPECT_EQ(refusal(1, {}).rfind(path("m.xml") + ":2: error: ", 0), 0U);
}

TEST_F(PreviewCommand, ThePictureMustBeWritable) {
    write(tinted);
    std::filesystem::create_directory(directory_ / "out.png");
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, path("out.png") + ": error: cannot write this file: it is a directory\n");
}

TEST_F(PreviewCommand, FramesNeedANameThatCanBeNumbered) {
    write(tinted);
    for (const std::string& output : {path("."), path("new/"), std::string("/dev/null")}) {
        const Outcome outcome = testing::run(PATINA_COMMAND, {"preview", path("m.xml"), "-o", output,
                                                              "--frames", "2", "--plugin", PATINA_CORENODES});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, output + ": error: this is no file that can be numbered; each of the "
                                           "frames is a file of its own: give a name such as turn.png\n");
    }
    EXPECT_EQ(directory_.names(), Names{"m.xml"});
}

TEST_F(PreviewCommand, FramesThatAreAskedForHaveNumbersEvenIfThereIsOne) {
    write(tinted);
    EXPECT_EQ(run({"--frames", "1"}).exitCode, 0);
    EXPECT_EQ(directory_.names(), (Names{"m.xml", "out_000.png"}));
}

Outcome drawTo(const std::string& material, const std::string& output, const Names& further = {}) {
    Names arguments = {"preview", material, "-o", output, "--size", "16", "--plugin", PATINA_CORENODES};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return testing::run(PATINA_COMMAND, arguments);
}

TEST_F(PreviewCommand, ThePictureMayGoToStandardOutput) {
    write(tinted);
    const Outcome file = drawTo(path("m.xml"), path("out.PNG"));
    EXPECT_EQ(file.exitCode, 0) << file.errors;
    for (const char* output : {"-", "/dev/stdout"}) {
        const Outcome outcome = drawTo(path("m.xml"), output);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        EXPECT_TRUE(outcome.output == readText(directory_ / "out.PNG")) << output;
    }
    const Outcome frames = drawTo(path("m.xml"), "-", {"--frames", "2"});
    EXPECT_EQ(frames.exitCode, 1);
    EXPECT_EQ(frames.output, "");
    EXPECT_EQ(frames.errors,
              "-: error: this is no file that can be numbered; each of the frames is a file of "
              "its own: give a name such as turn.png\n");
}

TEST_F(PreviewCommand, APictureIsNoOtherKindOfImage) {
    write(tinted);
    for (const std::string name : {"a.jpg", "a.png.tga", "a.v2"}) {
        const Outcome outcome = drawTo(path("m.xml"), path(name));
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_NE(outcome.errors.find("\"" + path(name) +
                                      "\" is not the name of a PNG file; a picture is one, such as turn.png"),
                  std::string::npos)
            << outcome.errors;
    }
    EXPECT_EQ(directory_.names(), Names{"m.xml"});
}

TEST_F(PreviewCommand, WrongUsage) {
    write(tinted);
    const std::vector<Names> rows = {
        {"--size", "0"},         {"--size", "x"},         {"--size", "64x"},     {"--size", "8193"},
        {"--size", "10x8193"},   {"--size", "10x10x1"},   {"--size", "-5"},      {"--set", "Tint"},
        {"--set", "=1"},         {"--set", "Tint="},      {"--set", "Tint=red"}, {"--set", "Tint=1,,2"},
        {"--set", "Tint=inf"},   {"--set", "Tint=1,"},    {"--animate", "Tint"}, {"--texture", "Paint"},
        {"--texture", "=a"},     {"--samples", "0"},      {"--samples", "17"},   {"--frames", "0"},
        {"--background", "1,2"}, {"--background", "sky"}, {"--time", "soon"},    {"--time", "nan"},
        {"--node", ""},          {"--mesh", ""}};
    for (const Names& row : rows) {
        EXPECT_NE(refusal(2, row), "") << row.front() << ' ' << row.back();
    }
}

TEST_F(PreviewCommand, SaysWhatIsMissingWhereNothingCanDraw) {
    write(tinted);
    EXPECT_EQ(refusal(1, {}, {{"__EGL_VENDOR_LIBRARY_FILENAMES", "/nowhere/driver.json"}}),
              "error: cannot draw: there is no driver that offers OpenGL 3.3 without a window; install an "
              "OpenGL 3.3 driver (Debian's packages libegl1, libopengl0 and libgl1-mesa-dri have one that "
              "needs no graphics card)\n");
}

} // namespace
} // namespace patina
