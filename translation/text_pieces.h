#pragma once

#include <cstddef>
#include <string_view>

namespace patina::detail {

/// Whether names have such a letter, whatever the locale. [thread-safe]
constexpr bool isNameLetter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '_';
}

/// Calls an action with each piece of a program, in order: names and numbers as a whole, and what is between.
template <typename Action>
void forEachPiece(std::string_view program, Action&& action) {
    for (std::size_t begin = 0; begin < program.size();) {
        const bool isName = isNameLetter(program[begin]);
        std::size_t end = begin + 1;
        while (end < program.size() && isNameLetter(program[end]) == isName) {
            ++end;
        }
        action(program.substr(begin, end - begin));
        begin = end;
    }
}

} // namespace patina::detail
