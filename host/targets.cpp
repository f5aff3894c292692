#include "host/targets.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace patina {

using namespace detail;

namespace {

struct LanguageRow {
    TargetLanguage language;
    const char* name;
    const char* fileEnding;
    bool hasDot;                 ///< whether a version is written with a dot before its last digit
    std::array<int, 9> versions; ///< the first is the one that is meant without any; 0 for none
};

constexpr LanguageRow languages[] = {
    {TargetLanguage::Cg, "cg", "cg", false, {}},
    {TargetLanguage::Hlsl, "hlsl", "hlsl", true, {50, 51, 60, 61, 62, 63, 64, 65, 66}},
    {TargetLanguage::Glsl, "glsl", "glsl", false, {330, 450}},
    {TargetLanguage::Essl, "essl", "essl", false, {300, 310}},
    {TargetLanguage::Msl, "msl", "metal", true, {20, 21, 22, 23, 24, 30}},
    {TargetLanguage::Spirv, "spirv", "spv", true, {10}},
};

const LanguageRow& rowOf(TargetLanguage language) {
    const auto matches = [&](const LanguageRow& row) { return row.language == language; };
    return *std::find_if(std::begin(languages), std::end(languages), matches);
}

std::string versionText(const LanguageRow& row, int version) {
    if (version == 0) {
        return {};
    }
    constexpr int base = 10;
    return row.hasDot ? joinText({std::to_string(version / base), ".", std::to_string(version % base)})
                      : std::to_string(version);
}

/// Whether a text is how a version is written: "330", "6.2", or "6" for "6.0".
bool namesVersion(const LanguageRow& row, int version, std::string_view text) {
    const std::string full = versionText(row, version);
    constexpr std::string_view zero = ".0";
    const bool mayBeShort = full.ends_with(zero);
    return version != 0 &&
           (text == full || (mayBeShort && text == full.substr(0, full.size() - zero.size())));
}

} // namespace

std::string targetName(TargetLanguage language) { return rowOf(language).name; }

std::string targetVersion(const ShaderTarget& target) {
    return versionText(rowOf(target.language), target.version);
}

std::string targetFileEnding(TargetLanguage language) { return rowOf(language).fileEnding; }

std::optional<ShaderTarget> parseTarget(std::string_view text) {
    const std::size_t colon = text.find(':');
    const auto isNamed = [&](const LanguageRow& row) { return text.substr(0, colon) == row.name; };
    const auto* row = std::find_if(std::begin(languages), std::end(languages), isNamed);
    if (row == std::end(languages)) {
        return std::nullopt;
    }
    if (colon == std::string_view::npos) {
        return ShaderTarget{row->language, row->versions.front()};
    }
    for (const int version : row->versions) {
        if (namesVersion(*row, version, text.substr(colon + 1))) {
            return ShaderTarget{row->language, version};
        }
    }
    return std::nullopt;
}

std::string targetsText() {
    std::string text;
    for (const LanguageRow& row : languages) {
        appendText(text, {text.empty() ? "" : "; ", row.name});
        const char* separator = ":";
        for (const int version : row.versions) {
            if (version != 0) {
                appendText(text, {separator, versionText(row, version)});
                separator = ", ";
            }
        }
    }
    return text;
}

} // namespace patina
