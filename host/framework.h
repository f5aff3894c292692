#pragma once

#include <array>
#include <string>

namespace patina {

// What a generated program needs beside the code of its nodes; see host/framework.cg. [thread-safe]

/// The functions that both programs may call.
std::string frameworkText();

/// What the vertex program needs beyond that.
std::string vertexFrameworkText();

/// The names that the framework takes for itself.
inline constexpr std::array<const char*, 3> frameworkNames = {"QelSrgbToLinear", "QelTransformPosition",
                                                              "worldViewProjection"};

} // namespace patina
