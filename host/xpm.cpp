#include "host/xpm.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <set>
#include <string_view>

namespace patina {

using namespace detail;

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::size_t longestKey = 8;

/// The kinds of screen that a colour line can give colours for; "c" is the one with colours.
constexpr std::array<std::string_view, 5> colourContexts = {"c", "m", "g", "g4", "s"};

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
        if (text.empty()) {
            return found;
        }
        found.push_back(text.substr(0, text.find_first_of(blanks)));
        text.remove_prefix(found.back().size());
    }
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool isLetter(char letter) { return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'); }

bool isHexDigit(char letter) {
    return isDigit(letter) || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
}

std::optional<std::size_t> number(std::string_view text) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// #RGB with one to four digits for each component, None, or a word of a colour's name.
bool isColour(std::string_view text) {
    if (text.substr(0, 1) == "#") {
        const std::string_view digits = text.substr(1);
        return !digits.empty() && digits.size() % 3 == 0 && digits.size() <= 12 &&
               std::all_of(digits.begin(), digits.end(), isHexDigit);
    }
    return isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char letter) {
               return isLetter(letter) || isDigit(letter);
           });
}

bool isContext(std::string_view word) {
    return std::find(colourContexts.begin(), colourContexts.end(), word) != colourContexts.end();
}

/// Whether a colour line's text behind its key gives a colour for screens with colours.
bool givesColour(std::string_view text) {
    const std::vector<std::string_view> parts = words(text);
    const auto context = std::find(parts.begin(), parts.end(), "c");
    if (context == parts.end()) {
        return false;
    }
    const auto end = std::find_if(context + 1, parts.end(), isContext);
    return end != context + 1 && std::all_of(context + 1, end, isColour);
}

class XpmReader {
public:
    XpmReader(const char* const* image, std::size_t size) : image_(image), size_(size) {}

    std::vector<std::string> read() {
        if (readHeader() && readColours()) {
            readPixels();
        }
        return faults_;
    }

private:
    void fault(std::initializer_list<std::string_view> text) { faults_.push_back(joinText(text)); }

    /// A string of the image; nothing, with a fault, where the array ends early.
    std::optional<std::string_view> line(std::size_t index) {
        if (image_[index] == nullptr) {
            fault({"it ends after ", std::to_string(index), " strings"});
            return std::nullopt;
        }
        return image_[index];
    }

    bool readHeader() {
        const auto header = line(0);
        if (!header) {
            return false;
        }
        std::vector<std::size_t> values;
        for (const std::string_view word : words(*header)) {
            values.push_back(number(word).value_or(0));
        }
        if (values.size() != 4 || std::count(values.begin(), values.end(), 0U) != 0) {
            fault({"its first string \"", *header,
                   "\" is not four numbers: width, height, colours and characters per pixel"});
            return false;
        }
        colourCount_ = values[2];
        keyLength_ = values[3];
        if (values[0] != size_ || values[1] != size_) {
            fault({"it is ", std::to_string(values[0]), " by ", std::to_string(values[1]), " pixels, not ",
                   std::to_string(size_), " by ", std::to_string(size_)});
            return false;
        }
        if (keyLength_ > longestKey) {
            fault({"it has ", std::to_string(keyLength_), " characters per pixel, and no more than ",
                   std::to_string(longestKey), " can be needed"});
            return false;
        }
        return true;
    }

    bool readColours() {
        for (std::size_t index = 1; index <= colourCount_; ++index) {
            const auto text = line(index);
            if (!text) {
                return false;
            }
            const std::string_view key = text->substr(0, keyLength_);
            if (key.size() < keyLength_ || !givesColour(text->substr(keyLength_))) {
                fault({"string ", std::to_string(index + 1), " \"", *text, "\" is no colour"});
            } else if (!keys_.insert(key).second) {
                fault({"string ", std::to_string(index + 1), ": the key \"", key, "\" has a colour already"});
            }
        }
        // what a wrong number of colours leads to would only hide the reason
        return faults_.empty();
    }

    void readPixels() {
        for (std::size_t row = 0; row < size_; ++row) {
            const std::size_t index = 1 + colourCount_ + row;
            const auto text = line(index);
            if (!text) {
                return;
            }
            if (text->size() != size_ * keyLength_) {
                fault({"pixel row ", std::to_string(row + 1), " has ", std::to_string(text->size()),
                       " characters, not ", std::to_string(size_ * keyLength_)});
                continue;
            }
            readRow(row, *text);
        }
    }

    void readRow(std::size_t row, std::string_view text) {
        for (std::size_t column = 0; column < size_; ++column) {
            const std::string_view key = text.substr(column * keyLength_, keyLength_);
            if (keys_.count(key) == 0) {
                fault({"pixel row ", std::to_string(row + 1), " has the key \"", key,
                       "\", which has no colour"});
                return;
            }
        }
    }

    const char* const* image_;
    std::size_t size_;
    std::size_t colourCount_ = 0;
    std::size_t keyLength_ = 0;
    std::set<std::string_view> keys_;
    std::vector<std::string> faults_;
};

} // namespace

std::vector<std::string> xpmFaults(const char* const* image, std::size_t size) {
    return XpmReader(image, size).read();
}

} // namespace patina
