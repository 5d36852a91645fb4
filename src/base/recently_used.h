// A memory of results that forgets what has not been used for longest.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <unordered_map>
#include <utility>

namespace pral {

/// The entries used last, as many as the limits allow; the latest one in any case.
template <class Entry>
class RecentlyUsed {
  public:
    RecentlyUsed(std::size_t most_entries, std::size_t most_bytes)
        : most_entries_(most_entries), most_bytes_(most_bytes) {}

    /// The entry of that hash which `matches` recognises, now the latest one; or null.
    template <class Matches>
    const Entry* find(std::uint64_t hash, Matches matches) {
        const auto [begin, end] = by_hash_.equal_range(hash);
        const auto found =
            std::find_if(begin, end, [&](const auto& of_hash) { return matches(of_hash.second->entry); });
        if (found == end) return nullptr;
        kept_.splice(kept_.begin(), kept_, found->second);
        return &found->second->entry;
    }
    const Entry* latest() const { return kept_.empty() ? nullptr : &kept_.front().entry; }

    /// Becomes the latest one. Valid until it is forgotten.
    const Entry& add(std::uint64_t hash, Entry entry, std::size_t bytes) {
        kept_.push_front({std::move(entry), hash, bytes});
        try {
            by_hash_.emplace(hash, kept_.begin());
        } catch (...) {
            kept_.pop_front();
            throw;
        }
        bytes_ += bytes;
        while (kept_.size() > 1 && (kept_.size() > most_entries_ || bytes_ > most_bytes_)) forget_oldest();
        return kept_.front().entry;
    }

    std::size_t size() const { return kept_.size(); }
    std::size_t bytes() const { return bytes_; }

  private:
    struct Kept {
        Entry entry;
        std::uint64_t hash;
        std::size_t bytes;
    };
    using List = std::list<Kept>;

    void forget_oldest() {
        const auto oldest = std::prev(kept_.end());
        const auto [begin, end] = by_hash_.equal_range(oldest->hash);
        by_hash_.erase(
            std::find_if(begin, end, [&](const auto& of_hash) { return of_hash.second == oldest; }));
        bytes_ -= oldest->bytes;
        kept_.erase(oldest);
    }

    std::size_t most_entries_, most_bytes_, bytes_ = 0;
    List kept_;  // the latest one first
    std::unordered_multimap<std::uint64_t, typename List::iterator> by_hash_;
};

}  // namespace pral
