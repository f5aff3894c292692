#include "bindings/float_list.h"

#include "bindings/binding_kinds.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace patina::detail {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Expects lower case.
bool isHexDigit(char letter) { return isDigit(letter) || (letter >= 'a' && letter <= 'f'); }

/// A number without sign and prefix, in lower case.
struct Mantissa {
    std::string_view text; ///< digits, point and exponent
    bool hasDigits = false;
    std::int64_t magnitude = 0; ///< the number is just below 10, or 2, to this power
};

/// An exponent's value, held within bounds that no sum with a text length overflows.
std::int64_t exponentValue(std::string_view digits) {
    constexpr std::int64_t bound = std::int64_t{1} << 40;
    std::int64_t value = 0;
    for (const char digit : digits) {
        value = std::min(bound, value * 10 + (digit - '0'));
    }
    return value;
}

/// Scans the longest number at the start of `text`. An exponent may lack its digits: no conversion takes it.
Mantissa scanMantissa(std::string_view text, bool hexadecimal) {
    Mantissa mantissa;
    std::int64_t integerDigits = 0; // from the first significant digit to the point
    std::int64_t leadingZeros = 0;  // behind the point
    bool significant = false;
    bool behindPoint = false;
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const char letter = text[end];
        if (letter == '.' && !behindPoint) {
            behindPoint = true;
        } else if (hexadecimal ? isHexDigit(letter) : isDigit(letter)) {
            mantissa.hasDigits = true;
            significant = significant || letter != '0';
            if (significant && !behindPoint) {
                ++integerDigits;
            } else if (!significant && behindPoint) {
                ++leadingZeros;
            }
        } else {
            break;
        }
    }
    if (significant) {
        mantissa.magnitude = (integerDigits > 0 ? integerDigits : -leadingZeros) * (hexadecimal ? 4 : 1);
    }
    if (end < text.size() && text[end] == (hexadecimal ? 'p' : 'e')) {
        std::size_t first = end + 1;
        const bool negative = first < text.size() && text[first] == '-';
        if (negative || (first < text.size() && text[first] == '+')) {
            ++first;
        }
        std::size_t last = first;
        while (last < text.size() && isDigit(text[last])) {
            ++last;
        }
        const std::int64_t exponent = exponentValue(text.substr(first, last - first));
        if (significant) {
            mantissa.magnitude += negative ? -exponent : exponent;
        }
        end = last;
    }
    mantissa.text = text.substr(0, end);
    return mantissa;
}

float convert(const Mantissa& mantissa, bool hexadecimal) {
    float value = 0.0F;
    const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto result =
        std::from_chars(mantissa.text.data(), mantissa.text.data() + mantissa.text.size(), value, format);
    if (result.ec == std::errc::result_out_of_range) {
        // the standard conversion says only that no float is near enough
        return mantissa.magnitude > 0 ? std::numeric_limits<float>::infinity() : 0.0F;
    }
    return value;
}

/// Reads an unsigned number in lower case.
std::optional<float> parseUnsigned(std::string_view text) {
    constexpr std::string_view inf = "inf";
    constexpr std::string_view infinity = "infinity";
    if (text.starts_with("nan")) {
        return std::numeric_limits<float>::quiet_NaN();
    }
    if (text.starts_with(inf)) {
        // scanf cannot go back: once "infi" is read, the whole word must follow
        const bool longWord = text.size() > inf.size() && text[inf.size()] == infinity[inf.size()];
        if (longWord && !text.starts_with(infinity)) {
            return std::nullopt;
        }
        return std::numeric_limits<float>::infinity();
    }
    if (text.starts_with("0x")) {
        const std::string_view digits = text.substr(2);
        const Mantissa mantissa = scanMantissa(digits, true);
        if (mantissa.hasDigits) {
            return convert(mantissa, true);
        }
        // a bare prefix is no number, but a point behind it leaves the zero to be read
        return digits.starts_with('.') ? std::optional<float>(0.0F) : std::nullopt;
    }
    const Mantissa mantissa = scanMantissa(text, false);
    return mantissa.hasDigits ? std::optional<float>(convert(mantissa, false)) : std::nullopt;
}

} // namespace

std::optional<float> parseLeadingFloat(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const std::string lower = lowerCase(std::string(text));
    const std::optional<float> magnitude = parseUnsigned(lower);
    return magnitude && negative ? -*magnitude : magnitude;
}

std::optional<std::vector<float>> parseFloatList(std::string_view text) {
    std::vector<float> values;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, text.find(','));
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
        if (piece.empty()) {
            continue;
        }
        const std::optional<float> value = parseLeadingFloat(piece);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*value);
    }
    return values;
}

} // namespace patina::detail
