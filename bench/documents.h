#pragma once

#include "host/document.h"

#include <cstddef>

namespace patina::bench {

// Materials of any size, all of which export without a warning. [thread-safe]

/// A constant colour through `length` maths nodes in a row, all of one function and with equal defaults: the
/// shader has one function, called `length` times.
MaterialDocument constantChain(std::size_t length);

/// A texture through `length` maths nodes in a row, each with a default of its own: the shader has a function
/// for each.
MaterialDocument textureChain(std::size_t length);

/// A constant that feeds `width` maths nodes, whose values are summed pairwise down to one: twice as many
/// nodes as `width`.
MaterialDocument summedFanOut(std::size_t width);

/// A constant that feeds `width` maths nodes, all but the first of which nobody reads.
MaterialDocument unreadFanOut(std::size_t width);

} // namespace patina::bench
