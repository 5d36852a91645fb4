// What a memory of results keeps and forgets.
#include <gtest/gtest.h>

#include <string>

#include "base/recently_used.h"

namespace {

using Memory = pral::RecentlyUsed<std::string>;

bool has(Memory& memory, std::uint64_t hash, const std::string& text) {
    return memory.find(hash, [&](const std::string& entry) { return entry == text; }) != nullptr;
}

TEST(RecentlyUsed, ForgetsWhatHasNotBeenUsedForLongest) {
    Memory memory(3, 1000);
    // One hash for all, so that entries are told apart by themselves.
    for (const char* text : {"a", "b", "c"}) memory.add(7, text, 1);
    EXPECT_TRUE(has(memory, 7, "a"));  // used: "b" is the oldest now
    memory.add(7, "d", 1);
    EXPECT_EQ(*memory.latest(), "d");
    EXPECT_FALSE(has(memory, 7, "b"));
    EXPECT_FALSE(has(memory, 8, "a"));
    for (const char* text : {"a", "c", "d"}) EXPECT_TRUE(has(memory, 7, text)) << text;
}

TEST(RecentlyUsed, KeepsToItsSizeButForTheLatest) {
    Memory memory(100, 50);
    for (int i = 0; i < 100; ++i) {
        memory.add(static_cast<std::uint64_t>(i), std::to_string(i), 10);
        EXPECT_LE(memory.bytes(), 50);
    }
    EXPECT_EQ(memory.size(), 5);
    memory.add(1, "large", 51);
    EXPECT_EQ(memory.size(), 1);
    EXPECT_EQ(memory.bytes(), 51);
    EXPECT_TRUE(has(memory, 1, "large"));
    memory.add(2, "small", 1);
    EXPECT_EQ(memory.bytes(), 1);
    EXPECT_FALSE(has(memory, 1, "large"));
}

}  // namespace
