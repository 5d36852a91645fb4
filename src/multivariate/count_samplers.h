// Vectors of counts, sampled group by group: sharing a number of items among groups, and the waiting times until every
// group has its quota. The functions return the message of the family that refuses a draw, or null.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/message.h"
#include "base/random_stream.h"

namespace pral::multivariate {

inline constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);

/// How counts are drawn; null, or the message of the family that refuses.
struct CountDraws {
    using Draw = Message (*)(double& out, double number, double p, RandomStream& stream);
    Draw binomial, negative_binomial;
};
extern const CountDraws kPlainDraws;

/// Shares n items among the groups but `skipped` by conditional binomials: a group takes Binomial(what is left, its
/// probability over that of the groups not yet asked); nothing is drawn once nothing is left, but for the first
/// group. The last group with a positive probability takes all. Writes the counts, 0 for the group skipped.
Message share_by_probability(double n, std::span<const double> p, std::size_t skipped, double* counts,
                             RandomStream& stream, const CountDraws& draws = kPlainDraws);

/// The same without replacement, by conditional hypergeometrics over the sizes of the groups.
Message share_by_size(double n, std::span<const double> sizes, std::size_t skipped, double* counts,
                      RandomStream& stream);

/// Items are drawn until every group g has quota[g] of them; `counts` are how many each group has then.
///
/// The groups are taken in order. One that lacks m items waits for them: the items of other groups that come before
/// the m-th of its own are drawn as a number, and shared among all other groups, those that have their quota
/// included.
///
/// `process` has wait(g, missing, counts, others), which draws that number, and share(n, g, counts, shares); counts
/// are what the groups have so far, counts[g] already with the missing ones in share.
template <class Process>
Message wait_for_quotas(std::span<const double> quota, const Process& process, std::vector<double>& counts) {
    std::vector<double> shares(quota.size());
    counts.assign(quota.size(), 0.0);
    for (std::size_t g = 0; g < quota.size(); ++g) {
        const double missing = quota[g] - counts[g];
        if (g > 0 && !(missing > 0)) continue;
        double others = 0;
        if (const Message objection = process.wait(g, missing, counts, others)) return objection;
        counts[g] += missing;
        if (const Message objection = process.share(others, g, counts, shares.data())) return objection;
        for (std::size_t i = 0; i < counts.size(); ++i) counts[i] += shares[i];
    }
    return nullptr;
}

/// From an urn with D[g] items of each group, without replacement. quota[g] <= D[g].
Message wait_for_urn(std::span<const double> quota, std::span<const double> D, std::vector<double>& counts,
                     RandomStream& stream);

/// In independent trials with probability p[g] of each category.
Message wait_for_trials(std::span<const double> quota, std::span<const double> p, std::vector<double>& counts,
                        RandomStream& stream, const CountDraws& draws = kPlainDraws);

}  // namespace pral::multivariate
