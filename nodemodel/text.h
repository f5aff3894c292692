#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace patina::detail {

// Text building for messages and generated code. Nothing here looks at the locale of the process.
// [thread-safe]

/// The pieces one after another. A message is written as its fixed pieces and the names between them:
/// `joinText({"cannot create \"", typeName, "\" node"})`.
std::string joinText(std::initializer_list<std::string_view> pieces);

/// Appends the pieces one after another to `text`.
void appendText(std::string& text, std::initializer_list<std::string_view> pieces);

/// A number as a standard stream with default settings prints it in the "C" locale: general notation with six
/// significant digits, so 1.0 gives "1", 0.1 gives "0.1" and 1234567 gives "1.23457e+06".
std::string formatFloat(float value);

/// A text of many short pieces, which are collected before they are appended together: that takes a fraction
/// of the time. Threads: one thread at a time. Errors: std::bad_alloc.
class TextBuilder {
public:
    /// Makes room for a text of that many characters, beyond which it may still grow.
    void reserve(std::size_t size) { text_.reserve(size); }

    /// No piece is part of its own text.
    template <std::convertible_to<std::string_view>... Pieces>
    void append(const Pieces&... pieces) {
        appendViews(std::string_view(pieces)...);
    }

    /// As formatFloat gives it.
    void appendFloat(float value);

    std::size_t size() const { return text_.size() + collectedSize_; }

    /// Of what there is so far; it lasts until something is appended.
    std::string_view view() {
        if (text_.empty()) {
            return {collected_.data(), collectedSize_};
        }
        flush();
        return text_;
    }

    void clear() {
        text_.clear();
        collectedSize_ = 0;
    }

    /// The text, after which the builder is empty.
    std::string take();

private:
    static constexpr std::size_t capacity = 128;

    template <typename... Views>
    void appendViews(const Views... views) {
        const std::size_t size = (views.size() + ...);
        if (size > capacity - collectedSize_) {
            flush();
            if (size > capacity) {
                (text_.append(views), ...);
                return;
            }
        }
        char* end = collected_.data() + collectedSize_;
        ((end = std::copy_n(views.data(), views.size(), end)), ...);
        collectedSize_ += size;
    }

    void flush();

    std::string text_;
    std::size_t collectedSize_ = 0;
    std::array<char, capacity> collected_ = {}; ///< behind text_
};

} // namespace patina::detail
