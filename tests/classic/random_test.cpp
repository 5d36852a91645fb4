// The random stream against the C++ library's own Mersenne Twister.
#include "classic/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using pral::RandomStream;

TEST(Random, StartsWithSeed5489) {
    RandomStream stream;
    EXPECT_EQ(stream.word(), 3499211612u);
    for (int i = 2; i < 10000; ++i) stream.word();
    EXPECT_EQ(stream.word(), 4123659995u);  // the 10,000th word, as the C++ standard requires it
}

TEST(Random, SingleDrawsAndBlocksReadOneSequence) {
    for (const std::uint32_t seed : {0u, 1u, 5489u, 4294967295u}) {
        RandomStream stream;
        stream.seed(seed);
        std::mt19937 reference(seed);
        const auto expected = [&] { return (reference() + 0.5) * 2.3283064365386963e-10; };
        for (const std::size_t block : {1, 623, 1, 624, 625, 5000, 0, 3}) {
            std::vector<double> values(block);
            stream.fill(values);
            for (const double value : values) ASSERT_EQ(value, expected());
            ASSERT_EQ(stream.uniform(), expected());
            ASSERT_EQ(stream.word(), reference());
        }
    }
}

/// The generator makes its words 624 at a time: a fill may begin at each of them, the last one included.
TEST(Random, FillsBeginAnywhereInABlock) {
    for (int start = 0; start <= 624; ++start) {
        RandomStream stream;
        stream.seed(7);
        std::mt19937 reference(7);
        for (int i = 0; i < start; ++i) ASSERT_EQ(stream.word(), reference());
        double values[2];
        stream.fill(values);
        for (const double value : values)
            ASSERT_EQ(value, (reference() + 0.5) * 2.3283064365386963e-10) << "from word " << start;
        ASSERT_EQ(stream.word(), reference()) << "after a fill from word " << start;
    }
}

}  // namespace
