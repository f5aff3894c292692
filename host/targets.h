#pragma once

#include "host/translation.h"

#include <optional>
#include <string>
#include <string_view>

namespace patina {

// The languages of programs by name. [thread-safe]

/// "cg", "hlsl", "glsl", "essl", "msl" or "spirv".
std::string targetName(TargetLanguage language);

/// The version as its language writes it, "330" or "5.0"; empty for Cg.
std::string targetVersion(const ShaderTarget& target);

/// How the names of a language's files end: "glsl", "metal", "spv".
std::string targetFileEnding(TargetLanguage language);

/// The target that a text names: a language alone, in its version that most machines know, or "glsl:450".
/// "hlsl:6" is 6.0.
/// Nothing when there is no such language or version.
std::optional<ShaderTarget> parseTarget(std::string_view text);

/// Every language with its versions, the one that is meant without any first: "glsl:330, 450; ...".
std::string targetsText();

} // namespace patina
