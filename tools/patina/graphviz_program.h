#pragma once

#include <string>
#include <string_view>

namespace patina::tool {

/// What Graphviz's program `dot` draws of a graph in its language, in a format that it knows: "svg", or "png"
/// at `pixelsPerPoint` pixels for each of the 72 points of an inch, or fewer, so that it has no more than
/// `drawingSide` on a side. Its warnings go to standard error. Throws
/// HostError when the program is not there or fails, with the advice to install it, behind which `otherWay`
/// is put.
std::string drawGraph(const std::string& dot, const std::string& format, std::string_view otherWay = {});

inline constexpr int pixelsPerPoint = 2;
inline constexpr int drawingSide = 4096;

} // namespace patina::tool
