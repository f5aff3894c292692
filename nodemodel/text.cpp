#include "nodemodel/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace patina::detail {

namespace {

constexpr int significantDigits = 6;

/// With some to spare: the longest text is like "-1.17549e-38".
constexpr std::size_t longestFloat = 16;

/// Writes a number that needs no exponent, in a fraction of the time. Gives its end, or null for all others.
char* writeShortFloat(char* text, float value) {
    constexpr std::array<double, 9> powers = {1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    constexpr double smallest = 1e5; // with all significant digits before the point
    constexpr std::uint32_t beyond = 1000000;
    if (value == 0.0F && !std::signbit(value)) {
        *text = '0';
        return text + 1;
    }
    const double magnitude = value < 0.0F ? -static_cast<double>(value) : static_cast<double>(value);
    if (!(magnitude > 0.0001 && magnitude < beyond)) {
        return nullptr;
    }
    std::size_t decimals = 0;
    double scaled = magnitude;
    auto number = static_cast<std::uint32_t>(magnitude);
    while (number != scaled && scaled < smallest) {
        scaled = magnitude * powers[decimals++]; // exact: 24 bits of a float, 24 of 5 to the tenth
        number = static_cast<std::uint32_t>(scaled);
    }
    if (number != scaled) {
        const double rest = scaled - number;
        if (rest > 0.5 || (rest == 0.5 && number % 2 != 0)) {
            ++number;
        }
        if (number == beyond && decimals == 0) {
            return nullptr;
        }
        while (decimals > 0 && number % 10 == 0) {
            number /= 10;
            --decimals;
        }
    }
    std::array<char, longestFloat> digits;
    char* const end = digits.data() + digits.size();
    char* first = end;
    for (std::size_t place = 0; number != 0 || place <= decimals; ++place) {
        if (place == decimals && place != 0) {
            *--first = '.';
        }
        *--first = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    if (value < 0.0F) {
        *--first = '-';
    }
    return std::copy(first, end, text);
}

/// Writes at most longestFloat characters, and gives their end.
char* writeFloat(char* text, float value) {
    if (char* const end = writeShortFloat(text, value)) {
        return end;
    }
    return std::to_chars(text, text + longestFloat, value, std::chars_format::general, significantDigits).ptr;
}

} // namespace

void appendText(std::string& text, std::initializer_list<std::string_view> pieces) {
    std::size_t size = text.size();
    for (const std::string_view piece : pieces) {
        size += piece.size();
    }
    text.reserve(size);
    for (const std::string_view piece : pieces) {
        text.append(piece);
    }
}

std::string joinText(std::initializer_list<std::string_view> pieces) {
    std::string text;
    appendText(text, pieces);
    return text;
}

std::string formatFloat(float value) {
    std::array<char, longestFloat> digits;
    return {digits.data(), writeFloat(digits.data(), value)};
}

void TextBuilder::appendFloat(float value) {
    if (capacity - collectedSize_ < longestFloat) {
        flush();
    }
    char* const text = collected_.data() + collectedSize_;
    collectedSize_ += static_cast<std::size_t>(writeFloat(text, value) - text);
}

std::string TextBuilder::take() {
    flush();
    return std::exchange(text_, {});
}

void TextBuilder::flush() {
    text_.append(collected_.data(), collectedSize_);
    collectedSize_ = 0;
}

} // namespace patina::detail
