#include "translation/cg_text.h"

#include "nodemodel/text.h"
#include "translation/hlsl_words.h"
#include "translation/text_pieces.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace patina::detail {

namespace {

struct Token {
    std::size_t begin;
    std::string_view text; ///< a name or number, or any other letter by itself
    bool beginsLine;
};

std::vector<Token> tokensOf(std::string_view program) {
    std::vector<Token> tokens;
    bool beginsLine = true;
    for (std::size_t at = 0; at < program.size();) {
        const std::string_view rest = program.substr(at);
        std::size_t length = 1;
        if (rest.starts_with("//")) {
            length = std::min(rest.find('\n'), rest.size());
        } else if (rest.starts_with("/*")) {
            const std::size_t end = rest.find("*/", 2);
            length = end == std::string_view::npos ? rest.size() : end + 2;
        } else if (rest.front() == '\n') {
            beginsLine = true;
        } else if (rest.find_first_not_of(" \t\r\f\v") != 0) {
            // between tokens
        } else {
            while (isNameLetter(rest.front()) && length < rest.size() && isNameLetter(rest[length])) {
                ++length;
            }
            tokens.push_back({at, rest.substr(0, length), beginsLine});
            beginsLine = false;
        }
        at += length;
    }
    return tokens;
}

bool isName(const Token& token) { return isNameLetter(token.text.front()); }

/// How HLSL spells a semantic, or nothing when it does as Cg does.
std::string hlslSpelling(std::string_view semantic) {
    constexpr std::string_view textureUnit = "TEXUNIT";
    if (semantic == "WPOS") {
        return "SV_Position";
    }
    if (!semantic.starts_with(textureUnit) || semantic.size() == textureUnit.size()) {
        return {};
    }
    const std::string_view number = semantic.substr(textureUnit.size());
    const bool isNumber = number.find_first_not_of("0123456789") == std::string_view::npos;
    return isNumber ? joinText({"register( s", number, " )"}) : std::string();
}

/// Whether what ends before a colon is a declaration, `float4 place` or `float4 places[2]`; the second value
/// of `?` and the label of a `case` have no type in front.
bool isDeclaration(const std::vector<Token>& tokens, std::size_t colon) {
    std::size_t at = colon;
    while (at > 0 && tokens[at - 1].text == "]") {
        while (at > 0 && tokens[at - 1].text != "[") {
            --at;
        }
        at -= at > 0 ? 1 : 0;
    }
    return at >= 2 && isName(tokens[at - 1]) && isName(tokens[at - 2]) && tokens[at - 2].text != "case";
}

} // namespace

std::string rewriteForHlsl(std::string_view program) {
    const std::vector<Token> tokens = tokensOf(program);
    std::string result;
    std::size_t copied = 0;
    const auto replace = [&](std::size_t begin, std::size_t end, std::string_view text) {
        if (begin >= copied) { // not within what is gone
            appendText(result, {program.substr(copied, begin - copied), text});
            copied = end;
        }
    };
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const auto& [begin, text, beginsLine] = tokens[i];
        const std::size_t end = begin + text.size();
        if (text == "#" && beginsLine && i + 1 < tokens.size() && tokens[i + 1].text == "line") {
            replace(begin, std::min(program.find('\n', begin), program.size()), "");
        } else if (meansMoreInHlsl(text)) {
            replace(begin, end, nameInHlsl(text));
        } else if (i > 0 && tokens[i - 1].text == ":" && isDeclaration(tokens, i - 1)) {
            const std::string spelling = hlslSpelling(text);
            replace(begin, end, spelling.empty() ? text : std::string_view(spelling));
        }
    }
    result += program.substr(copied);
    return result;
}

} // namespace patina::detail
