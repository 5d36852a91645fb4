// The aggregate claim amount of a portfolio as a distribution family.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "aggregate/de_pril.h"
#include "distributions/data/density.h"
#include "distributions/family.h"

namespace pral {

/// A computed portfolio: Relative(0, S, {0, ..., S}, g) above the certain claims, in units; no Relative where nothing but
/// these can happen.
struct ComputedPortfolio {
    std::vector<double> q, policies;
    std::size_t amounts, order;
    double certain;
    std::unique_ptr<const Relative> uncertain;
    Message objection;

    /// Bit for bit the same inputs.
    bool is_of(const Portfolio& portfolio, std::size_t of_order) const;
};

/// The objection to probabilities and numbers of policies that are none, or null.
Message object_to_tables(const Portfolio& portfolio);

/// By the recursion of that order; of a portfolio without objections.
std::shared_ptr<const ComputedPortfolio> computed_portfolio(const Portfolio& portfolio, std::size_t order);

inline constexpr Message kBaseMessage = "Error: base must be >0";

/// The amount in money: `base` for each unit.
class AggregateDePril {
  public:
    AggregateDePril(std::shared_ptr<const ComputedPortfolio> computed, double base);
    /// Of arguments that have been refused.
    explicit AggregateDePril(Message objection) : objection_(objection), base_(1) {}

    Message check() const { return objection_; }
    Support support() const;
    std::optional<double> point_mass() const;

    double cumulative(double x) const { return std::isnan(x) ? x : uncertain().cumulative(units(x)); }
    double survival(double x) const { return std::isnan(x) ? x : uncertain().survival(units(x)); }
    /// Per unit, not per money.
    double log_density(double x) const { return std::isnan(x) ? x : uncertain().log_density(units(x)); }
    double quantile(double p) const { return money(uncertain().quantile(p)); }
    double quantile_upper(double q) const { return money(uncertain().quantile_upper(q)); }

  private:
    const Relative& uncertain() const { return *computed_->uncertain; }
    double money(double units) const { return (units + computed_->certain) * base_; }
    double units(double x) const;

    Message objection_;
    double base_;
    std::shared_ptr<const ComputedPortfolio> computed_;
};

}  // namespace pral
