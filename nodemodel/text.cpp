#include "nodemodel/text.h"

#include <array>
#include <charconv>

namespace patina::detail {

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
    constexpr int significantDigits = 6;
    std::array<char, 32> digits; // the longest text is like "-1.17549e-38"
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::general, significantDigits)
                         .ptr;
    return {digits.data(), end};
}

} // namespace patina::detail
