// Work that falls into many parts, done by several threads.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace pral::inference {

/// Calls work(i) for all i < count, by that many threads (0: as many as the machine has processors). What each part does
/// must not depend on the others. The first exception ends the work and is thrown on.
template <class Work>
void in_parallel(std::size_t count, int threads, Work work) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr thrown;
    std::mutex lock;
    const auto run = [&] {
        try {
            for (std::size_t i = next++; i < count; i = next++) work(i);
        } catch (...) {
            const std::lock_guard guard(lock);
            if (!thrown) thrown = std::current_exception();
            next = count;
        }
    };
    constexpr std::size_t kMost = 64;
    const std::size_t wanted =
        threads > 0 ? static_cast<std::size_t>(threads) : std::thread::hardware_concurrency();
    const std::size_t helpers = std::min({std::max<std::size_t>(wanted, 1), count, kMost});
    std::vector<std::jthread> others;
    for (std::size_t i = 1; i < helpers; ++i) others.emplace_back(run);
    run();
    others.clear();  // joins
    if (thrown) std::rethrow_exception(thrown);
}

}  // namespace pral::inference
