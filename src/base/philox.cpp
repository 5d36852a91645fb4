#include "base/philox.h"

#include <algorithm>
#include <utility>

namespace pral {

namespace {

__extension__ using Wide = unsigned __int128;

struct Product {
    std::uint64_t high, low;
};
Product multiply(std::uint64_t a, std::uint64_t b) {
    const Wide product = static_cast<Wide>(a) * b;
    return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
}

}  // namespace

std::array<std::uint64_t, 4> philox(std::array<std::uint64_t, 4> counter, std::array<std::uint64_t, 2> key) {
    constexpr int kRounds = 10;
    for (int round = 0; round < kRounds; ++round) {
        const Product first = multiply(0xD2E7470EE14C6C93, counter[0]);
        const Product second = multiply(0xCA5A826395121157, counter[2]);
        counter = {second.high ^ counter[1] ^ key[0], second.low, first.high ^ counter[3] ^ key[1],
                   first.low};
        key[0] += 0x9E3779B97F4A7C15;
        key[1] += 0xBB67AE8584CAA73B;
    }
    return counter;
}

PhiloxStream::PhiloxStream(SeedSequence name) : name_(std::move(name)) {
    const auto words = name_.state(key_.size());
    std::ranges::copy(words, key_.begin());
}

void PhiloxStream::advance() {
    for (std::uint64_t& word : counter_) {
        if (++word != 0) break;  // no carry
    }
}

void PhiloxStream::refill() {
    advance();
    block_ = philox(counter_, key_);
    next_ = 0;
}

void PhiloxStream::fill(std::span<double> out) {
    std::size_t i = 0;
    while (i < out.size() && next_ < kBlock) out[i++] = uniform();
    for (; out.size() - i >= kBlock; i += kBlock) {
        advance();
        const auto words = philox(counter_, key_);
        for (std::size_t j = 0; j < kBlock; ++j) out[i + j] = to_double(words[j]);
    }
    for (; i < out.size(); ++i) out[i] = uniform();
}

void PhiloxStream::move_to(const Position& position) {
    counter_ = position.counter;
    next_ = std::min<std::size_t>(position.next, kBlock);
    if (next_ < kBlock) block_ = philox(counter_, key_);
}

}  // namespace pral
