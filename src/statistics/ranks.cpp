#include "statistics/ranks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "matrix/decomposition.h"
#include "numerics/constants.h"

namespace pral::statistics {

namespace {

constexpr std::uint64_t kNanKey = UINT64_MAX;

/// The bits of positive doubles are in their order, those of negative ones in the reverse.
std::uint64_t sort_key(double value) {
    if (std::isnan(value)) return kNanKey;
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(value + 0.0);  // -0 becomes 0
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

/// Calls `visit(begin, end)` for each run of entries that are equal to their neighbours.
template <class Equal, class Visit>
void for_each_run(const std::vector<SortEntry>& entries, Equal equal, Visit visit) {
    for (std::size_t begin = 0; begin < entries.size();) {
        std::size_t end = begin + 1;
        while (end < entries.size() && equal(entries[end - 1], entries[end])) ++end;
        visit(begin, end);
        begin = end;
    }
}

std::int64_t pairs(std::size_t count) {
    const auto n = static_cast<std::int64_t>(count);
    return n * (n - 1) / 2;  // below 2^61 for any int n
}

/// The pairs of entries within the runs.
template <class Equal>
std::int64_t tied_pairs(const std::vector<SortEntry>& entries, Equal equal) {
    std::int64_t tied = 0;
    for_each_run(entries, equal, [&](std::size_t begin, std::size_t end) { tied += pairs(end - begin); });
    return tied;
}

/// The number of pairs i < j with values[i] > values[j], by merging; sorts the values.
std::int64_t count_inversions(std::vector<std::uint32_t>& values) {
    constexpr std::size_t kBlock = 16;
    const std::size_t n = values.size();
    std::int64_t inversions = 0;
    for (std::size_t begin = 0; begin < n; begin += kBlock) {
        const std::size_t end = std::min(begin + kBlock, n);
        for (std::size_t i = begin + 1; i < end; ++i) {
            const std::uint32_t value = values[i];
            std::size_t place = i;
            for (; place > begin && values[place - 1] > value; --place) values[place] = values[place - 1];
            values[place] = value;
            inversions += static_cast<std::int64_t>(i - place);
        }
    }
    std::vector<std::uint32_t> merged(n);
    for (std::size_t width = kBlock; width < n; width *= 2) {
        for (std::size_t begin = 0; begin < n; begin += 2 * width) {
            const std::size_t middle = std::min(begin + width, n), end = std::min(begin + 2 * width, n);
            std::size_t left = begin, right = middle;
            for (std::size_t k = begin; k < end; ++k) {
                const bool take_right = left == middle || (right < end && values[right] < values[left]);
                inversions += take_right ? static_cast<std::int64_t>(middle - left) : 0;
                merged[k] = take_right ? values[right++] : values[left++];
            }
        }
        values.swap(merged);
    }
    return inversions;
}

bool has_nan(Data x) {
    return std::any_of(x.begin(), x.end(), [](double value) { return std::isnan(value); });
}

}  // namespace

/// Digit by digit from the lowest, which a few hundred entries repay. Digits that all keys share cost nothing.
void sort_by_key(std::vector<SortEntry>& entries) {
    constexpr int kBits = 11, kDigits = 6;
    constexpr std::size_t kBuckets = std::size_t{1} << kBits, kWorthwhile = 600;
    if (entries.size() < kWorthwhile) {
        std::stable_sort(entries.begin(), entries.end(),
                         [](const SortEntry& a, const SortEntry& b) { return a.key < b.key; });
        return;
    }
    const auto digit = [](std::uint64_t key, int place) { return key >> (place * kBits) & (kBuckets - 1); };
    std::vector<std::array<std::uint32_t, kBuckets>> counts(kDigits);
    for (const SortEntry& entry : entries) {
        for (int place = 0; place < kDigits; ++place) ++counts[place][digit(entry.key, place)];
    }
    std::vector<SortEntry> other(entries.size());
    for (int place = 0; place < kDigits; ++place) {
        auto& starts = counts[place];
        if (starts[digit(entries[0].key, place)] == entries.size()) continue;
        std::uint32_t start = 0;
        for (std::uint32_t& bucket : starts) start += std::exchange(bucket, start);
        for (const SortEntry& entry : entries) other[starts[digit(entry.key, place)]++] = entry;
        entries.swap(other);
    }
}

bool same_value(const SortEntry& a, const SortEntry& b) { return a.key == b.key && a.key != kNanKey; }

std::vector<SortEntry> sorted(Data x) {
    std::vector<SortEntry> entries(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) entries[i] = {sort_key(x[i]), static_cast<std::uint32_t>(i)};
    sort_by_key(entries);
    return entries;
}

void ranks(Data x, bool descending, double* out) {
    const std::vector<SortEntry> entries = sorted(x);
    const double count = static_cast<double>(x.size());
    for_each_run(entries, same_value, [&](std::size_t begin, std::size_t end) {
        const double rank = static_cast<double>(begin + 1 + end) / 2;  // the mean of begin + 1 .. end
        for (std::size_t i = begin; i < end; ++i) {
            out[entries[i].index] = descending ? count - rank + 1 : rank;
        }
    });
}

double spearman(Data x, Data y) {
    if (has_nan(x) || has_nan(y)) return numerics::kNaN;
    // The ranks of ranks are the ranks, and ranks are finite, which ALGLIB asks for.
    std::vector<double> ranked_x(x.size()), ranked_y(x.size());
    ranks(x, false, ranked_x.data());
    ranks(y, false, ranked_y.data());
    return matrix::rank_correlation(ranked_x.data(), ranked_y.data(), static_cast<int>(x.size()))
        .value_or(numerics::kNaN);
}

std::vector<double> spearman_matrix(Data data, int variables) {
    const std::size_t columns = variables, observations = data.size() / columns;
    // Ranks instead of data, as above.
    std::vector<double> ranked(data.size()), column(observations);
    std::vector<bool> undefined(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        for (std::size_t i = 0; i < observations; ++i) column[i] = data[i * columns + j];
        undefined[j] = has_nan(column);
        ranks(column, false, column.data());
        for (std::size_t i = 0; i < observations; ++i) ranked[i * columns + j] = column[i];
    }
    std::vector<double> result =
        matrix::rank_correlations(ranked.data(), static_cast<int>(observations), variables)
            .value_or(std::vector<double>(columns * columns, numerics::kNaN));
    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            if (undefined[i] || undefined[j]) result[i * columns + j] = numerics::kNaN;
        }
        result[i * columns + i] = 1;
    }
    return result;
}

std::int64_t kendall_s(Data x, Data y) {
    std::vector<double> known_x, known_y;
    known_x.reserve(x.size());
    known_y.reserve(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (std::isnan(x[i]) || std::isnan(y[i])) continue;
        known_x.push_back(x[i]);
        known_y.push_back(y[i]);
    }

    // The places of y among its distinct values, then the observations by x and, where x is equal, by y.
    std::vector<SortEntry> entries = sorted(known_y);
    std::vector<std::uint32_t> place(entries.size());
    std::uint32_t distinct = 0;
    const std::int64_t tied_y = tied_pairs(entries, same_value);
    for_each_run(entries, same_value, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) place[entries[i].index] = distinct;
        ++distinct;
    });
    for (SortEntry& entry : entries) entry.key = sort_key(known_x[entry.index]);
    sort_by_key(entries);
    const std::int64_t tied_x = tied_pairs(entries, same_value);
    const std::int64_t tied_both = tied_pairs(entries, [&](const SortEntry& a, const SortEntry& b) {
        return same_value(a, b) && place[a.index] == place[b.index];
    });

    std::vector<std::uint32_t> y_by_x(entries.size());
    std::transform(entries.begin(), entries.end(), y_by_x.begin(),
                   [&](const SortEntry& entry) { return place[entry.index]; });
    const std::int64_t discordant = count_inversions(y_by_x);
    return pairs(entries.size()) - tied_x - tied_y + tied_both - 2 * discordant;
}

double kendalls_tau(Data x, Data y) {
    if (x.size() < 2) return numerics::kNaN;
    return static_cast<double>(kendall_s(x, y)) / static_cast<double>(pairs(x.size()));
}

}  // namespace pral::statistics
