#include "base/seed_sequence.h"

namespace pral {

namespace {

constexpr std::uint32_t kHashStart = 0x43b0d7e5, kHashStep = 0x931e8875;
constexpr std::uint32_t kStateStart = 0x8b51f9dd, kStateStep = 0x58f38ded;
constexpr std::uint32_t kMixLeft = 0xca01f9dd, kMixRight = 0x4973f715;

std::uint32_t folded(std::uint32_t word) { return word ^ (word >> 16); }

/// Each call hashes with another constant.
class Hash {
  public:
    std::uint32_t operator()(std::uint32_t word) {
        word ^= constant_;
        constant_ *= kHashStep;
        return folded(word * constant_);
    }

  private:
    std::uint32_t constant_ = kHashStart;
};

std::uint32_t mixed(std::uint32_t x, std::uint32_t y) { return folded(kMixLeft * x - kMixRight * y); }

}  // namespace

SeedSequence::SeedSequence(std::span<const std::uint64_t> origin) {
    for (const std::uint64_t number : origin) {
        origin_.push_back(static_cast<std::uint32_t>(number));
        if (number >> 32 != 0) origin_.push_back(static_cast<std::uint32_t>(number >> 32));
    }
    if (origin.empty()) origin_.push_back(0);
}

SeedSequence SeedSequence::child(std::uint32_t id) const {
    SeedSequence below = *this;
    below.path_.push_back(id);
    return below;
}

SeedSequence SeedSequence::child(std::string_view name) const {
    SeedSequence below = *this;
    below.path_.push_back(kNameFollows);
    below.path_.push_back(static_cast<std::uint32_t>(name.size()));
    for (std::size_t i = 0; i < name.size(); i += 4) {
        std::uint32_t word = 0;
        for (std::size_t j = i; j < name.size() && j < i + 4; ++j)
            word |= static_cast<std::uint32_t>(static_cast<unsigned char>(name[j])) << (8 * (j - i));
        below.path_.push_back(word);
    }
    return below;
}

std::array<std::uint32_t, SeedSequence::kPool> SeedSequence::pool() const {
    std::vector<std::uint32_t> words = origin_;
    // With a path behind it a short origin is filled up, so that the path is never taken for a part of it.
    if (!path_.empty() && words.size() < kPool) words.resize(kPool, 0);
    words.insert(words.end(), path_.begin(), path_.end());

    Hash hash;
    std::array<std::uint32_t, kPool> pool;
    for (std::size_t i = 0; i < kPool; ++i) pool[i] = hash(i < words.size() ? words[i] : 0);
    for (std::size_t from = 0; from < kPool; ++from) {
        for (std::size_t to = 0; to < kPool; ++to) {
            if (from != to) pool[to] = mixed(pool[to], hash(pool[from]));
        }
    }
    for (std::size_t i = kPool; i < words.size(); ++i) {
        for (std::uint32_t& word : pool) word = mixed(word, hash(words[i]));
    }
    return pool;
}

std::vector<std::uint64_t> SeedSequence::state(std::size_t count) const {
    const std::array<std::uint32_t, kPool> from = pool();
    std::vector<std::uint64_t> out(count);
    std::uint32_t constant = kStateStart;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        std::uint32_t word = from[i % kPool] ^ constant;
        constant *= kStateStep;
        word = folded(word * constant);
        out[i / 2] |= static_cast<std::uint64_t>(word) << (32 * (i % 2));
    }
    return out;
}

}  // namespace pral
