// One call at a time.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "base/turn.h"

namespace {

using pral::Turnstile;

TEST(Turnstile, LetsOneThroughAtATime) {
    Turnstile turnstile;
    {
        const Turnstile::Turn first(turnstile);
        EXPECT_TRUE(static_cast<bool>(first));
        for (int i = 0; i < 2; ++i) EXPECT_FALSE(static_cast<bool>(Turnstile::Turn(turnstile)));
    }
    EXPECT_TRUE(static_cast<bool>(Turnstile::Turn(turnstile)));
}

TEST(Turnstile, HoldsAmongThreads) {
    Turnstile turnstile;
    std::atomic<int> inside = 0, most = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 20000; ++n) {
                const Turnstile::Turn turn(turnstile);
                if (!turn) continue;
                const int now = ++inside;
                if (now > most) most = now;
                --inside;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(most, 1);
}

}  // namespace
