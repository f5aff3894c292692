#include "host/xpm.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using Strings = std::vector<const char*>;
using Faults = std::vector<std::string>;

/// The faults of an image, which a null ends.
Faults faultsOf(Strings image) {
    image.push_back(nullptr);
    return xpmFaults(image.data(), 2);
}

TEST(Xpm, TakesWellFormedImages) {
    EXPECT_EQ(faultsOf({"2 2 2 1", "  c None", ". c #FFFFFF", " .", ". "}), Faults());
    EXPECT_EQ(faultsOf({"2 2 1 2", "ab\tc #123456", "abab", "abab"}), Faults());
    EXPECT_EQ(faultsOf({"2\t2  1 1", ".\tm white c #FFFF00008080 s sky", "..", ".."}), Faults());
    EXPECT_EQ(faultsOf({"2 2 1 1", ". c light blue", "..", ".."}), Faults());
    EXPECT_EQ(faultsOf({"2 2 1 1", ". c #abc g #000000", "..", ".."}), Faults());
    EXPECT_EQ(faultsOf({"2 2 1 1", ". c gray50", "..", ".."}), Faults());
}

TEST(Xpm, FindsFaults) {
    const struct {
        Strings image;
        Faults faults;
    } cases[] = {
        {{}, {"it ends after 0 strings"}},
        {{"2 2 1"},
         {"its first string \"2 2 1\" is not four numbers: width, height, colours and characters per pixel"}},
        {{"2 2 x 1"},
         {"its first string \"2 2 x 1\" is not four numbers: width, height, colours and characters per "
          "pixel"}},
        {{"2 2 0 1"},
         {"its first string \"2 2 0 1\" is not four numbers: width, height, colours and characters per "
          "pixel"}},
        {{"2 2 1 1x"},
         {"its first string \"2 2 1 1x\" is not four numbers: width, height, colours and characters per "
          "pixel"}},
        {{"3 2 1 1"}, {"it is 3 by 2 pixels, not 2 by 2"}},
        {{"2 3 1 1"}, {"it is 2 by 3 pixels, not 2 by 2"}},
        {{"2 2 1 9"}, {"it has 9 characters per pixel, and no more than 8 can be needed"}},
        {{"2 2 2 1", ". c None"}, {"it ends after 2 strings"}},
        {{"2 2 1 1", ". c None", ".."}, {"it ends after 3 strings"}},
        {{"2 2 1 2", ".", "....", "...."}, {"string 2 \".\" is no colour"}},
        {{"2 2 1 1", ". #FFFFFF", "..", ".."}, {"string 2 \". #FFFFFF\" is no colour"}},
        {{"2 2 1 1", ". c #FFFF", "..", ".."}, {"string 2 \". c #FFFF\" is no colour"}},
        {{"2 2 1 1", ". c #GGGGGG", "..", ".."}, {"string 2 \". c #GGGGGG\" is no colour"}},
        {{"2 2 1 1", ". c #gggggg", "..", ".."}, {"string 2 \". c #gggggg\" is no colour"}},
        {{"2 2 1 1", ". c #@@@@@@", "..", ".."}, {"string 2 \". c #@@@@@@\" is no colour"}},
        {{"2 2 1 1", ". c #--", "..", ".."}, {"string 2 \". c #--\" is no colour"}},
        {{"2 2 1 1", ". c #---", "..", ".."}, {"string 2 \". c #---\" is no colour"}},
        {{"2 2 1 1", ". c #", "..", ".."}, {"string 2 \". c #\" is no colour"}},
        {{"2 2 1 1", ". c #111122223333444", "..", ".."}, {"string 2 \". c #111122223333444\" is no colour"}},
        {{"2 2 1 1", ". c {}", "..", ".."}, {"string 2 \". c {}\" is no colour"}},
        {{"2 2 1 1", ". c [x]", "..", ".."}, {"string 2 \". c [x]\" is no colour"}},
        {{"2 2 1 1", ". c a-b", "..", ".."}, {"string 2 \". c a-b\" is no colour"}},
        {{"2 2 1 1", ". c a{b", "..", ".."}, {"string 2 \". c a{b\" is no colour"}},
        {{"2 2 1 1", ". c", "..", ".."}, {"string 2 \". c\" is no colour"}},
        {{"2 2 1 1", ". c m black", "..", ".."}, {"string 2 \". c m black\" is no colour"}},
        {{"2 2 1 1", ". c 7up", "..", ".."}, {"string 2 \". c 7up\" is no colour"}},
        {{"2 2 2 1", ". c None", ". c None", "..", ".."}, {"string 3: the key \".\" has a colour already"}},
        {{"2 2 1 1", ". c None", "...", "."},
         {"pixel row 1 has 3 characters, not 2", "pixel row 2 has 1 characters, not 2"}},
        {{"2 2 1 1", ". c None", "..", ".x"}, {"pixel row 2 has the key \"x\", which has no colour"}},
    };
    for (const auto& [image, faults] : cases) {
        EXPECT_EQ(faultsOf(image), faults);
    }
}

} // namespace
} // namespace patina
