// From the words that a caller chooses to the words that start a generator: O'Neill's seed sequence as NumPy has it
// (numpy.random.SeedSequence), so that NumPy is a witness of every stream.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace pral {

/// The words that name a stream: those of its origin, and a path of children below it. Two different names give
/// streams that are independent for all purposes, whoever draws how much from which.
class SeedSequence {
  public:
    explicit SeedSequence(std::span<const std::uint64_t> origin);

    /// The child of that number; NumPy's spawn_key with `id` appended. Below 2^32 - 1: that word opens a child's name.
    SeedSequence child(std::uint32_t id) const;
    /// The child of that name. No number and no other name has the same words.
    SeedSequence child(std::string_view name) const;

    /// The first words that a generator is started from, as generate_state(count, uint64) gives them.
    std::vector<std::uint64_t> state(std::size_t count) const;

    static constexpr std::uint32_t kNameFollows = 0xffffffff;

    bool operator==(const SeedSequence&) const = default;

    std::span<const std::uint32_t> origin() const { return origin_; }
    std::span<const std::uint32_t> path() const { return path_; }
    /// From the words that origin() and path() gave.
    SeedSequence(std::vector<std::uint32_t> origin, std::vector<std::uint32_t> path)
        : origin_(std::move(origin)), path_(std::move(path)) {}

  private:
    static constexpr std::size_t kPool = 4;
    std::array<std::uint32_t, kPool> pool() const;

    std::vector<std::uint32_t> origin_, path_;
};

}  // namespace pral
