#include "xpm.h"

#include "colour.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace patina::icons {

namespace {

// Without the quotation mark and the backslash, which would need escapes,
// without the question mark, which could form a trigraph, and without the
// slash and the star, which simple readers could take for a comment. The blank
// is kept for the first colour.
constexpr std::string_view kKeyCharacters = ".+@#$%&=-;:>,<'){!~}[]^(_|`"
                                            "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

constexpr std::uint32_t kWhite = 0xFFFFFFU;

std::string hexText(std::uint32_t rgb) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "#";
    for (unsigned shift = 24; shift > 0; shift -= 4) {
        text += kDigits[(rgb >> (shift - 4)) & 0xFU];
    }
    return text;
}

std::string keyText(std::size_t index, int keyLength) {
    std::string text;
    for (int i = 0; i < keyLength; ++i) {
        text += kKeyCharacters[index % kKeyCharacters.size()];
        index /= kKeyCharacters.size();
    }
    if (index != 0) {
        throw std::runtime_error("too many colours for the key length");
    }
    return text;
}

double brightness(std::uint32_t rgb) {
    const Colour c = hex(rgb);
    return 0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b;
}

} // namespace

std::string formatXpm(const Raster& raster, const std::string& arrayName, int keyLength) {
    const bool transparent = keyLength > 1;

    std::set<std::uint32_t> shown;
    bool anyTransparent = false;
    for (const Pixel& pixel : raster.pixels) {
        if (pixel) {
            shown.insert(*pixel);
        } else {
            anyTransparent = true;
        }
    }
    if (anyTransparent != transparent) {
        throw std::runtime_error(transparent ? "the drawing leaves no pixel transparent"
                                             : "the drawing leaves pixels transparent");
    }
    if (!transparent && shown.erase(kWhite) == 0) {
        throw std::runtime_error("the drawing has no white");
    }

    // Dark to light, so that neighbouring keys are neighbouring tones.
    std::vector<std::uint32_t> ordered(shown.begin(), shown.end());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](std::uint32_t a, std::uint32_t b) { return brightness(a) < brightness(b); });

    const std::string blank(static_cast<std::size_t>(keyLength), ' ');
    std::map<std::uint32_t, std::string> keys;
    std::string colours = "\"" + blank + "\tc " + (transparent ? "None" : hexText(kWhite)) + "\",\n";
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        const std::string key = keyText(i, keyLength);
        colours += "\"" + key + "\tc " + hexText(ordered[i]) + "\",\n";
        keys[ordered[i]] = key;
    }
    if (!transparent) {
        keys[kWhite] = blank;
    }

    const std::string side = std::to_string(kIconSide);
    std::string text = "/* XPM */\nstatic const char* const " + arrayName + "[] = {\n";
    text += "\"" + side + " " + side + " " + std::to_string(ordered.size() + 1) + " " +
            std::to_string(keyLength) + "\",\n";
    text += colours;
    for (int y = 0; y < kIconSide; ++y) {
        text += '"';
        for (int x = 0; x < kIconSide; ++x) {
            const Pixel& pixel = raster.at(x, y);
            text += pixel ? keys.at(*pixel) : blank;
        }
        text += y + 1 < kIconSide ? "\",\n" : "\"\n";
    }
    text += "};\n";
    return text;
}

} // namespace patina::icons
