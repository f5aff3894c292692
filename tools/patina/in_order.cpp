#include "tools/patina/in_order.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace patina::tool {

void prepareAndFinishInOrder(std::size_t count, std::size_t threadCount,
                             const std::function<void(std::size_t)>& prepare,
                             const std::function<void(std::size_t)>& finish) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::condition_variable turnChanged;
    std::size_t turn = 0;
    const auto work = [&] {
        for (std::size_t item = next++; item < count; item = next++) {
            prepare(item);
            std::unique_lock lock(mutex);
            turnChanged.wait(lock, [&] { return turn == item; });
            finish(item);
            ++turn;
            turnChanged.notify_all();
        }
    };
    std::vector<std::thread> helpers;
    const std::size_t wanted = std::min(threadCount, count);
    helpers.reserve(wanted);
    try {
        for (std::size_t i = 1; i < wanted; ++i) {
            helpers.emplace_back(work);
        }
    } catch (const std::exception&) { // the system gives no more: fewer do the same
    }
    work();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

} // namespace patina::tool
