#include "nodemodel/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace patina::detail {

namespace {

constexpr int significantDigits = 6;

/// Appends a number that needs no exponent, in a fraction of the time. Gives false, and appends nothing, for
/// all others.
bool appendShortFloat(std::string& text, float value) {
    constexpr std::array<double, 10> powers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    constexpr double smallest = 1e5; // with all significant digits before the point
    constexpr std::uint32_t beyond = 1000000;
    if (value == 0.0F && !std::signbit(value)) {
        text += '0';
        return true;
    }
    const double magnitude = value < 0.0F ? -static_cast<double>(value) : static_cast<double>(value);
    if (!(magnitude > 0.0001 && magnitude < beyond)) {
        return false;
    }
    std::size_t decimals = 0;
    auto number = static_cast<std::uint32_t>(magnitude);
    if (number != magnitude) {
        while (magnitude * powers[decimals] < smallest) { // exact: 24 bits of a float, 24 of 5 to the tenth
            ++decimals;
        }
        const double scaled = magnitude * powers[decimals];
        number = static_cast<std::uint32_t>(scaled);
        const double rest = scaled - number;
        if (rest > 0.5 || (rest == 0.5 && number % 2 != 0)) {
            ++number;
        }
        if (number == beyond && decimals == 0) {
            return false;
        }
        while (decimals > 0 && number % 10 == 0) {
            number /= 10;
            --decimals;
        }
    }
    std::array<char, 16> digits;
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
    text.append(first, end);
    return true;
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
    std::string text;
    appendFloat(text, value);
    return text;
}

void appendFloat(std::string& text, float value) {
    if (!appendShortFloat(text, value)) {
        std::array<char, 32> digits; // the longest text is like "-1.17549e-38"
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                       std::chars_format::general, significantDigits)
                             .ptr;
        text.append(digits.data(), end);
    }
}

} // namespace patina::detail
