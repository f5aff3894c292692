#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace patina {

// What a generated program needs beside the code of its nodes; see host/framework.cg. [thread-safe]

/// The functions that the nodes of both programs may call.
std::string frameworkText();

/// What the fragment program of a lit material needs beyond that.
std::string litFrameworkText();

/// What the vertex program needs beyond that.
std::string vertexFrameworkText();

/// The names that the framework takes for itself.
inline constexpr std::array<const char*, 9> frameworkNames = {
    "QelSrgbToLinear", "QelDirection", "QelFresnel",           "QelSurroundings",    "QelHighlight",
    "QelBend",         "QelShade",     "QelTransformPosition", "worldViewProjection"};

/// The constant registers of the vertex program, from c0, that hold worldViewProjection.
inline constexpr std::int32_t frameworkConstantCount = 4;

} // namespace patina
