// The exported aggregate claims of a portfolio, and the store of the portfolios computed last.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "aggregate/aggregate_de_pril.h"
#include "base/recently_used.h"
#include "base/turn.h"
#include "classic/core_api.h"
#include "classic/crc16.h"
#include "classic/members.h"

namespace pral {

namespace {

/// The portfolios computed last.
class Store {
  public:
    /// The portfolio of the latest call, when it is this one: no key needs to be computed.
    std::shared_ptr<const ComputedPortfolio> latest(const Portfolio& portfolio, std::size_t order) const {
        const auto* const latest = computed_.latest();
        return latest != nullptr && (*latest)->is_of(portfolio, order) ? *latest : nullptr;
    }

    std::shared_ptr<const ComputedPortfolio> find_or_compute(const Portfolio& portfolio, std::size_t order) {
        const std::uint16_t key = key_of(portfolio, order);
        const auto* const found =
            computed_.find(key, [&](const auto& computed) { return computed->is_of(portfolio, order); });
        if (found != nullptr) return *found;
        auto computed = computed_portfolio(portfolio, order);
        const std::size_t bytes = bytes_of(*computed);
        return computed_.add(key, std::move(computed), bytes);
    }

  private:
    static constexpr std::size_t kMostPortfolios = 4096, kMostBytes = 64'000'000;

    static std::uint16_t key_of(const Portfolio& portfolio, std::size_t order) {
        const std::size_t shape[] = {portfolio.amounts, order};
        std::uint16_t key = crc16(std::as_bytes(portfolio.q));
        key = crc16(std::as_bytes(portfolio.policies), key);
        return crc16(std::as_bytes(std::span(shape)), key);
    }
    /// A Relative keeps six numbers for each amount.
    static std::size_t bytes_of(const ComputedPortfolio& computed) {
        const double amounts = computed.uncertain != nullptr ? computed.uncertain->support().upper : 0;
        const std::size_t numbers =
            computed.q.size() + computed.policies.size() + 6 * static_cast<std::size_t>(amounts);
        return numbers * sizeof(double);
    }

    RecentlyUsed<std::shared_ptr<const ComputedPortfolio>> computed_{kMostPortfolios, kMostBytes};
};

Store& store() {
    static Store all;
    return all;
}

/// The aggregate of the arguments as callers give them; those of a portfolio in the store are known to be in order.
AggregateDePril aggregate_of(const double* q, const double* policies, int m, int c, double base,
                             const int* K) {
    if (m <= 0) return AggregateDePril("Error: q must not be empty");
    if (c <= 0) return AggregateDePril("Error: policies must not be empty");
    if (q == nullptr) return AggregateDePril("Error: q must not be null");
    if (policies == nullptr) return AggregateDePril("Error: policies must not be null");
    const auto classes = static_cast<std::size_t>(m), amounts = static_cast<std::size_t>(c);
    const Portfolio portfolio{{q, classes}, {policies, classes * amounts}, amounts};
    const auto order = static_cast<std::size_t>(K != nullptr ? std::max(*K, 0) : 0);
    auto computed = store().latest(portfolio, order);
    if (computed == nullptr) {
        if (const Message objection = object_to_tables(portfolio)) return AggregateDePril(objection);
    }
    if (!(base > 0)) return AggregateDePril(kBaseMessage);
    if (K != nullptr && *K < 0) return AggregateDePril("Error: K must be >0 or ommited.");
    if (computed == nullptr) computed = store().find_or_compute(portfolio, order);
    return {std::move(computed), base};
}

/// Calls for aggregates share the store.
Turnstile aggregates;

/// Runs `body` on the aggregate of these arguments, when no other call is at work on one.
template <class Body>
bool with_aggregate(double* out, const double* q, const double* policies, int m, int c, double base,
                    const int* K, Body body) {
    return guarded(out, 1, [&](int) {
        const Turnstile::Turn turn(aggregates);
        if (!turn) return fail("Error: another aggregate is being computed, and calls must not overlap");
        return body(aggregate_of(q, policies, m, c, base, K));
    });
}

bool joint_probability(double* out, double* x, int count, const double* q, const double* policies, int m,
                       int c, double base, const int* K, const int* cumulative, Scale scale) {
    return with_aggregate(out, q, policies, m, c, base, K, [=](const AggregateDePril& aggregate) {
        return probability_member(out, x, count, aggregate, cumulative, {}, scale);
    });
}

}  // namespace

}  // namespace pral

/// The parameters stand before the percentile here, which is drawn for a portfolio that has been computed.
bool PralAggregateDePril_Core(double* out, const double* q, const double* policies, int m, int c, double base,
                              const int* K, const double* U) {
    return pral::with_aggregate(out, q, policies, m, c, base, K, [=](const pral::AggregateDePril& aggregate) {
        if (aggregate.check() != nullptr) return pral::fail(aggregate.check());
        return pral::value_member(out, aggregate, {U, nullptr, nullptr, nullptr, nullptr});
    });
}

bool PralAggregateDePrilProb_Core(double* out, double* x, int count, const double* q, const double* policies,
                                  int m, int c, double base, const int* K, const int* cumulative) {
    return pral::joint_probability(out, x, count, q, policies, m, c, base, K, cumulative, pral::Scale::plain);
}

bool PralAggregateDePrilProb10_Core(double* out, double* x, int count, const double* q,
                                    const double* policies, int m, int c, double base, const int* K,
                                    const int* cumulative) {
    return pral::joint_probability(out, x, count, q, policies, m, c, base, K, cumulative,
                                   pral::Scale::natural_log);
}
