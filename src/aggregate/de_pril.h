// The aggregate claims of a portfolio of policies with at most one claim each, in monetary units.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/message.h"

namespace pral {

/// Class i < classes has claim probability q[i]; policies[i * amounts + j] counts its policies whose claim amounts to
/// j + 1 units.
struct Portfolio {
    std::span<const double> q, policies;
    std::size_t amounts;

    std::size_t classes() const { return q.size(); }
    double count(std::size_t i, std::size_t amount) const { return policies[i * amounts + amount - 1]; }
};

/// The aggregate: `certain` units for sure, and on top of them s units with a probability proportional to
/// probabilities[s]. Without `probabilities` there is nothing on top; with an objection there is no answer.
struct AggregateClaims {
    double certain = 0;
    std::vector<double> probabilities;
    Message objection = nullptr;
};

/// The distribution by the recursion of N. De Pril, "On the exact computation of the aggregate claims distribution in the
/// individual life model", ASTIN Bulletin 16 (1986), 109-112, with inner sums up to `order` (0: without limit):
///
///   s g(s) = sum over t = 1 .. s of H(t) g(s - t),    g(0) = product of (1 - q_i)^n_ij
///   H(t) = sum over j k = t, k <= order, of j (-1)^(k-1) sum over i of n_ij (q_i/(1 - q_i))^k
///
/// H is folded once, so that a step is one scalar product. Beyond the mean g(s) < 0 counts as 0, and the table ends
/// where no larger amount can come: after as many values of 0 in a row as the largest claim has units, or at the total; the
/// first of the row is its last entry. Without a limit of the order zeros are decided exactly: an amount that no set of
/// policies adds up to has probability 0, and the others do not, whatever rounding says. Policies with q = 1, whose ratio would be
/// infinite, are taken out first (`certain`); those with q = 0 never claim.
///
/// The signs of H alternate. Rounding errors grow as the sum of the recursion over absolute values does: by up to
/// product of (1/(1 - r_i^2))^n_ij, r = q/(1 - q). Where that exceeds 1000 (or some q >= 1/2) and the order has no
/// limit, the same distribution is computed as the convolution of binomials, in which every term is >= 0 and no digit is
/// lost. With a limited order the recursion stands as it is; negative values within rounding of 0 count as 0.
AggregateClaims aggregate_claims(const Portfolio& portfolio, std::size_t order);

}  // namespace pral
