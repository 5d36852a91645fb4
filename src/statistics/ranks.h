// Ranks and what rests on them: Spearman's and Kendall's rank correlations.
#pragma once

#include <cstdint>
#include <vector>

#include "statistics/moments.h"

namespace pral::statistics {

/// A value to be sorted: an integer in the order of the doubles (0 and -0 are one, NaN is last), and the place
/// of the value in the data.
struct SortEntry {
    std::uint64_t key;
    std::uint32_t index;
};

/// Whether two entries hold equal values; NaN equals nothing.
bool same_value(const SortEntry& a, const SortEntry& b);

/// Stable sort by the keys, n log n.
void sort_by_key(std::vector<SortEntry>& entries);

/// The data ascending, equal values and NaNs in their own order.
std::vector<SortEntry> sorted(Data x);

/// Ranks 1 .. n into `out`, in the order of the data; equal values share their mean rank. Descending ranks count
/// from the largest value. `out` may be x itself.
void ranks(Data x, bool descending, double* out);

/// Spearman's rank correlation of x and y, of equal length: Pearson's correlation of their ranks. 0 when one of
/// them does not vary, NaN when there is a NaN among them.
double spearman(Data x, Data y);

/// Spearman's rank correlations of all pairs of variables, `variables` x `variables`, with ones on the diagonal;
/// `data` has a row per observation.
std::vector<double> spearman_matrix(Data data, int variables);

/// Kendall's S of x and y, of equal length: concordant less discordant pairs. A pair with a tie or a NaN counts
/// as neither. Knight's method (1966), n log n.
std::int64_t kendall_s(Data x, Data y);

/// Kendall's tau-a, S over the number of pairs: exactly 1 and -1 for perfect concordance and discordance; NaN for fewer than two observations.
double kendalls_tau(Data x, Data y);

}  // namespace pral::statistics
