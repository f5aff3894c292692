#pragma once

#include <cstddef>
#include <functional>

namespace patina::tool {

/// Prepares items 0 to count - 1 on several threads at once, and finishes them one at a time in their order:
/// no more items are prepared and unfinished than there are threads. Where the system cannot give as many
/// threads, fewer do. Neither action may throw. `prepare` is called from any thread, for several items at
/// once; `finish` from any thread, for one at a time.
void prepareAndFinishInOrder(std::size_t count, std::size_t threadCount,
                             const std::function<void(std::size_t)>& prepare,
                             const std::function<void(std::size_t)>& finish);

} // namespace patina::tool
