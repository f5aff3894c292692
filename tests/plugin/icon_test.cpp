// The icons of the real module, read by the library that hosts read XPM images with.

#include "plugin/plugin.h"

#include "tests/plugin/loaded_module.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <memory>
#include <set>
#include <string>

// last, because it defines macros with everyday names
#include <X11/xpm.h>

namespace patina {
namespace {

struct IconRow {
    const char* typeName;
    const char* values;
    unsigned int colours;
    unsigned int charactersPerPixel;
    const char* firstColour;
};

constexpr IconRow iconRows[] = {
    {"CoreVertexColour", "32 32 463 2", 463, 2, "  \tc None"},
    {"CoreUv", "32 32 246 2", 246, 2, "  \tc None"},
    {"CoreTexture", "32 32 651 2", 651, 2, "  \tc None"},
    {"CoreConstant", "32 32 135 2", 135, 2, "  \tc None"},
    {"CoreMaths", "32 32 273 2", 273, 2, "  \tc None"},
    {"CoreSwizzle", "32 32 248 2", 248, 2, "  \tc None"},
    {"CoreLayerBlend", "32 32 12 1", 12, 1, " \tc #FFFFFF"},
    {"CoreAnimatedUv", "32 32 246 2", 246, 2, "  \tc None"},
};

constexpr unsigned int side = 32;

class Icons : public ::testing::Test {
protected:
    const char* const* iconOf(const std::string& typeName) const {
        for (const NodeDescription& description : factory->nodeLibrary) {
            if (description.typeName == typeName) {
                return description.icon;
            }
        }
        ADD_FAILURE() << typeName;
        return nullptr;
    }

    testing::LoadedModule module;
    std::unique_ptr<NodeFactory> factory = module.makeFactory();
};

/// An icon as libXpm reads it.
class XpmIcon {
public:
    explicit XpmIcon(const char* const* icon)
        : status_(XpmCreateXpmImageFromData(const_cast<char**>(icon), &image_, nullptr)) {}
    ~XpmIcon() {
        if (status_ == XpmSuccess) {
            XpmFreeXpmImage(&image_);
        }
    }
    XpmIcon(const XpmIcon&) = delete;
    XpmIcon& operator=(const XpmIcon&) = delete;

    int status() const { return status_; }
    const XpmImage& image() const { return image_; }
    std::string colourAt(unsigned int column, unsigned int row) const {
        return image_.colorTable[image_.data[row * image_.width + column]].c_color;
    }

private:
    XpmImage image_ = {};
    int status_;
};

TEST_F(Icons, HaveTheirSizesAndColourCounts) {
    for (const IconRow& row : iconRows) {
        SCOPED_TRACE(row.typeName);
        const XpmIcon icon(iconOf(row.typeName));
        ASSERT_EQ(icon.status(), XpmSuccess);
        EXPECT_EQ(icon.image().width, side);
        EXPECT_EQ(icon.image().height, side);
        EXPECT_EQ(icon.image().ncolors, row.colours);
        EXPECT_EQ(icon.image().cpp, row.charactersPerPixel);
    }
}

TEST_F(Icons, HaveDistinctColoursThatAreAllUsed) {
    for (const IconRow& row : iconRows) {
        SCOPED_TRACE(row.typeName);
        const XpmIcon icon(iconOf(row.typeName));
        ASSERT_EQ(icon.status(), XpmSuccess);
        const XpmImage& image = icon.image();
        std::set<std::string> colours;
        std::set<std::string> keys;
        for (unsigned int i = 0; i < image.ncolors; ++i) {
            std::string colour = image.colorTable[i].c_color;
            for (char& character : colour) {
                character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
            }
            colours.insert(colour);
            keys.insert(image.colorTable[i].string);
        }
        EXPECT_EQ(colours.size(), row.colours);
        EXPECT_EQ(keys.size(), row.colours);
        const std::set<unsigned int> used(image.data, image.data + std::size_t{side} * side);
        EXPECT_EQ(used.size(), row.colours);
    }
}

TEST_F(Icons, BeginWithTheirValuesAndFirstColour) {
    for (const IconRow& row : iconRows) {
        const char* const* icon = iconOf(row.typeName);
        ASSERT_NE(icon, nullptr);
        EXPECT_STREQ(icon[0], row.values) << row.typeName;
        EXPECT_STREQ(icon[1], row.firstColour) << row.typeName;
    }
}

/// Whether the text behind the key is a tab, the letter c, a blank, and a colour.
bool isColourText(const std::string& text, bool mayBeTransparent) {
    if (text == "\tc None") {
        return mayBeTransparent;
    }
    if (text.size() != 10 || text.rfind("\tc #", 0) != 0) {
        return false;
    }
    for (std::size_t i = 4; i < text.size(); ++i) {
        if (std::isxdigit(static_cast<unsigned char>(text[i])) == 0) {
            return false;
        }
    }
    return true;
}

TEST_F(Icons, AreWrittenInXpm3Form) {
    for (const IconRow& row : iconRows) {
        SCOPED_TRACE(row.typeName);
        const char* const* icon = iconOf(row.typeName);
        ASSERT_NE(icon, nullptr);
        std::set<std::string> keys;
        for (unsigned int i = 0; i < row.colours; ++i) {
            const std::string line = icon[1 + i];
            keys.insert(line.substr(0, row.charactersPerPixel));
            const bool mayBeTransparent = i == 0 && row.charactersPerPixel == 2;
            EXPECT_TRUE(isColourText(line.substr(row.charactersPerPixel), mayBeTransparent)) << line;
        }
        EXPECT_EQ(keys.size(), row.colours);
        for (unsigned int y = 0; y < side; ++y) {
            const std::string pixels = icon[1 + row.colours + y];
            ASSERT_EQ(pixels.size(), std::size_t{side} * row.charactersPerPixel);
            for (unsigned int x = 0; x < side; ++x) {
                const std::size_t at = std::size_t{x} * row.charactersPerPixel;
                EXPECT_EQ(keys.count(pixels.substr(at, row.charactersPerPixel)), 1U) << x << ", " << y;
            }
        }
    }
}

TEST_F(Icons, OfTwoCharactersHaveTransparentCorners) {
    for (const IconRow& row : iconRows) {
        const XpmIcon icon(iconOf(row.typeName));
        ASSERT_EQ(icon.status(), XpmSuccess);
        if (row.charactersPerPixel == 2) {
            EXPECT_EQ(icon.colourAt(0, 0), "None") << row.typeName;
            EXPECT_EQ(icon.colourAt(side - 1, 0), "None") << row.typeName;
            EXPECT_EQ(icon.colourAt(0, side - 1), "None") << row.typeName;
            EXPECT_EQ(icon.colourAt(side - 1, side - 1), "None") << row.typeName;
        }
    }
}

TEST_F(Icons, AreSharedByTheUvNodesOnly) {
    EXPECT_EQ(iconOf("CoreUv"), iconOf("CoreAnimatedUv"));
    std::set<const char* const*> icons;
    for (const IconRow& row : iconRows) {
        icons.insert(iconOf(row.typeName));
    }
    EXPECT_EQ(icons.size(), 7U);
    EXPECT_EQ(iconOf("CoreDefault"), nullptr);
}

} // namespace
} // namespace patina
