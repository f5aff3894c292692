#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace patina::fuzz {

/// The bytes of a fuzz input as answers to questions, asked in any number. When they are spent every answer
/// is the first choice, which should be the plainest. No call takes two answers as its arguments: compilers
/// differ in which they ask for first, and an input should mean the same to all.
class Decisions {
public:
    Decisions() = default;
    Decisions(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    bool isSpent() const { return left_ == 0; }

    /// The next few bytes for a part of the input that asks for itself, more than once perhaps.
    Decisions part();

    /// From 0 to `count` - 1; of more than 256 choices only the first 256 are taken.
    std::size_t below(std::size_t count);

    /// Whether the rarer of two things is to be done, one time in `count`.
    bool oneIn(std::size_t count) { return below(count) + 1 == count; }

    template <typename List>
    const auto& choose(const List& list) {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(below(std::size(list))));
    }

    /// Any value of 32 bits, small and extreme ones more often.
    std::int32_t integer();

    /// Any float, infinities and what is no number included.
    float number();

    /// A text of a few bytes, which need not be characters.
    std::string bytes();

    /// A text that something in a program, a file or a message might take for something else.
    std::string text();

    /// The same, but most often one that can name a variable.
    std::string name();

    /// A text that is most often a number.
    std::string numberText();

private:
    std::uint32_t word();

    const std::uint8_t* data_ = nullptr;
    std::size_t left_ = 0;
};

/// What a target does with an input that is taken as decisions. Each such target defines its own, and links
/// decided_input.cpp, which calls it.
void runDecided(Decisions& decide);

} // namespace patina::fuzz
