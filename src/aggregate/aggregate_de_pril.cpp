#include "aggregate/aggregate_de_pril.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include "numerics/constants.h"

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

}  // namespace

std::shared_ptr<const ComputedPortfolio> computed_portfolio(const Portfolio& portfolio, std::size_t order) {
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

bool ComputedPortfolio::is_of(const Portfolio& portfolio, std::size_t of_order) const {
    return amounts == portfolio.amounts && order == of_order && same_bits(q, portfolio.q) &&
           same_bits(policies, portfolio.policies);
}

AggregateDePril::AggregateDePril(std::shared_ptr<const ComputedPortfolio> computed, double base)
    : objection_(base > 0 ? computed->objection : kBaseMessage),
      base_(numerics::finite_or_limit(base)),
      computed_(std::move(computed)) {}

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

}  // namespace pral
