// Vectors of counts, sampled group by group: sharing a number of items among groups, and the waiting times until every
// group has its quota.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace pral::multivariate {

inline constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);

/// Shares n items among the groups but `skipped` by conditional binomials: a group takes Binomial(what is left, its
/// probability over that of the groups not yet asked); nothing is drawn once nothing is left, but for the first
/// group. The last group with a positive probability takes all. Writes the counts, 0 for the group skipped; false
/// when a draw fails.
bool share_by_probability(double n, std::span<const double> p, std::size_t skipped, double* counts);

/// The same without replacement, by conditional hypergeometrics over the sizes of the groups.
bool share_by_size(double n, std::span<const double> sizes, std::size_t skipped, double* counts);

/// Items are drawn until every group g has quota[g] of them; the result is how many each group has then.
///
/// The groups are taken in order. One that lacks m items waits for them: the items of other groups that come before
/// the m-th of its own are drawn as a number, and shared among all other groups, those that have their quota
/// included. Empty when a draw fails.
///
/// `process` has wait(g, missing, counts, others), which draws that number, and share(n, g, counts, shares); counts
/// are what the groups have so far, counts[g] already with the missing ones in share.
template <class Process>
std::vector<double> wait_for_quotas(std::span<const double> quota, const Process& process) {
    std::vector<double> counts(quota.size()), shares(quota.size());
    for (std::size_t g = 0; g < quota.size(); ++g) {
        const double missing = quota[g] - counts[g];
        if (g > 0 && !(missing > 0)) continue;
        double others = 0;
        if (!process.wait(g, missing, counts, others)) return {};
        counts[g] += missing;
        if (!process.share(others, g, counts, shares.data())) return {};
        for (std::size_t i = 0; i < counts.size(); ++i) counts[i] += shares[i];
    }
    return counts;
}

/// From an urn with D[g] items of each group, without replacement. quota[g] <= D[g].
std::vector<double> wait_for_urn(std::span<const double> quota, std::span<const double> D);

/// In independent trials with probability p[g] of each category.
std::vector<double> wait_for_trials(std::span<const double> quota, std::span<const double> p);

}  // namespace pral::multivariate
