#include "aggregate/aggregate_de_pril.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include "aggregate/crc16.h"
#include "base/recently_used.h"
#include "base/turn.h"
#include "classic/core_api.h"
#include "distributions/members.h"

namespace pral {

namespace {

bool same_bits(std::span<const double> a, std::span<const double> b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

std::unique_ptr<const Relative> relative_of(const std::vector<double>& probabilities) {
    if (probabilities.empty()) return nullptr;
    std::vector<double> amounts(probabilities.size());
    std::iota(amounts.begin(), amounts.end(), 0.0);
    const int count = static_cast<int>(amounts.size());
    return std::make_unique<Relative>(0, amounts.back(), amounts.data(), count, probabilities.data(), count);
}

std::shared_ptr<const ComputedPortfolio> compute(const Portfolio& portfolio, std::size_t order) {
    const AggregateClaims claims = aggregate_claims(portfolio, order);
    Message objection = claims.objection;
    auto uncertain = objection == nullptr ? relative_of(claims.probabilities) : nullptr;
    if (uncertain != nullptr) objection = uncertain->check();
    if (objection != nullptr) uncertain = nullptr;
    return std::make_shared<const ComputedPortfolio>(ComputedPortfolio{
        {portfolio.q.begin(), portfolio.q.end()},
        {portfolio.policies.begin(), portfolio.policies.end()},
        portfolio.amounts,
        order,
        claims.certain,
        std::move(uncertain),
        objection,
    });
}

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
        auto computed = compute(portfolio, order);
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

Message object_to_tables(const Portfolio& portfolio) {
    const bool numbers = data::all(portfolio.q, [](double q) { return q == q; });
    const double smallest = *std::ranges::min_element(portfolio.q);
    if (!(numbers && smallest >= 0 && smallest <= 1))
        return "Error: {probabilities} values must be in [0..1]";
    const auto is_count = [](double n) { return n >= 0 && n <= numerics::kInfinity && n == std::floor(n); };
    if (!data::all(portfolio.policies, is_count))
        return "Error: {n} values must be an integer values >= 0 ";  // the blank at the end belongs to it
    return nullptr;
}

}  // namespace

bool ComputedPortfolio::is_of(const Portfolio& portfolio, std::size_t of_order) const {
    return amounts == portfolio.amounts && order == of_order && same_bits(q, portfolio.q) &&
           same_bits(policies, portfolio.policies);
}

AggregateDePril::AggregateDePril(const double* q, const double* policies, int m, int c, double base,
                                 const int* K)
    : base_(numerics::finite_or_limit(base)) {
    if (m <= 0 || c <= 0) {
        objection_ = m <= 0 ? "Error: q must not be empty" : "Error: policies must not be empty";
        return;
    }
    if (q == nullptr || policies == nullptr) {
        objection_ = q == nullptr ? "Error: q must not be null" : "Error: policies must not be null";
        return;
    }
    const auto classes = static_cast<std::size_t>(m), amounts = static_cast<std::size_t>(c);
    const Portfolio portfolio{{q, classes}, {policies, classes * amounts}, amounts};
    const auto order = static_cast<std::size_t>(K != nullptr ? std::max(*K, 0) : 0);
    computed_ = store().latest(portfolio, order);
    if (computed_ == nullptr) objection_ = object_to_tables(portfolio);
    if (objection_ == nullptr && !(base > 0)) objection_ = "Error: base must be >0";
    if (objection_ == nullptr && K != nullptr && *K < 0) objection_ = "Error: K must be >0 or ommited.";
    if (objection_ != nullptr) return;
    if (computed_ == nullptr) computed_ = store().find_or_compute(portfolio, order);
    objection_ = computed_->objection;
}

Support AggregateDePril::support() const {
    if (objection_ != nullptr) return kReals;
    const double last = computed_->uncertain != nullptr ? uncertain().support().upper : 0;
    return {numerics::finite_or_limit(money(0)), numerics::finite_or_limit(money(last))};
}

std::optional<double> AggregateDePril::point_mass() const {
    if (computed_->uncertain != nullptr) return std::nullopt;
    return numerics::finite_or_limit(money(0));
}

double AggregateDePril::units(double x) const {
    return std::clamp(x / base_ - computed_->certain, 0.0, uncertain().support().upper);
}

namespace {

/// Calls for aggregates share the store.
Turnstile aggregates;

/// Runs `body` on the aggregate of these arguments, when no other call is at work on one.
template <class Body>
bool with_aggregate(double* out, const double* q, const double* policies, int m, int c, double base,
                    const int* K, Body body) {
    return guarded(out, 1, [&](int) {
        const Turnstile::Turn turn(aggregates);
        if (!turn) return fail("Error: another aggregate is being computed, and calls must not overlap");
        return body(AggregateDePril(q, policies, m, c, base, K));
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
