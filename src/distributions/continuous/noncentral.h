// The noncentral chi-square and F distributions.
#pragma once

#include "distributions/continuous/beta.h"
#include "distributions/continuous/gamma.h"
#include "distributions/quantile_search.h"
#include "distributions/quantile_table.h"
#include "numerics/noncentral_beta.h"
#include "numerics/noncentral_chi_square.h"

namespace pral {

/// The quantiles of a family by a search on its tails; `start(side, tail)` is where the family would look first.
template <class Family>
struct SearchedQuantile {
    double quantile(double p) const {
        return search(p <= 0.5 ? Side::lower : Side::upper, p <= 0.5 ? p : 1 - p);
    }
    double quantile_upper(double q) const {
        return search(q <= 0.5 ? Side::upper : Side::lower, q <= 0.5 ? q : 1 - q);
    }
    auto quantile_table() const {
        return QuantileTable(static_cast<const Family&>(*this), LinearPlace{0, 1});
    }

  private:
    double search(Side side, double tail) const {
        const auto& family = static_cast<const Family&>(*this);
        return search_quantile(family, side, tail, family.start(side, tail));
    }
};

/// Degrees of freedom nu, a positive integer, noncentrality pnonc >= 0, the sum of the squared means; support [0, inf).
struct NCChiSq : SearchedQuantile<NCChiSq> {
    double nu, pnonc;

    NCChiSq(double nu_, double pnonc_) : nu(nu_), pnonc(pnonc_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return nu == std::floor(nu) ? nullptr : "Error: nu must be an positive integer";
    }
    Message check_range() const {
        if (!(nu > 0)) return "Error: nu must be > 0";
        if (!(pnonc >= 0)) return "Error: PNONC must be >= 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return numerics::noncentral_chi_square_lower(nu, pnonc, x); }
    double survival(double x) const { return numerics::noncentral_chi_square_upper(nu, pnonc, x); }
    double log_cumulative(double x) const;
    double log_survival(double x) const;
    double log_density(double x) const {
        const double log = numerics::noncentral_chi_square_log_density(nu, pnonc, x);
        return std::fabs(log) == numerics::kInfinity ? std::copysign(HUGE_VAL, log) : log;
    }
    double start(Side side, double tail) const;
    Moments moments() const {
        const auto cumulant = [this](double k) { return nu + k * pnonc; };
        const double variance = 2 * cumulant(2);
        return {cumulant(1), variance, 8 * (cumulant(3) / variance) / std::sqrt(variance),
                48 * (cumulant(4) / variance) / variance};
    }
};

/// Degrees of freedom nu1 > 0, nu2 > 0, any real numbers, noncentrality ncp >= 0; support [0, inf):
/// (NCChiSq(nu1, ncp)/nu1)/(ChiSq(nu2)/nu2).
struct NCF : OfUnitVariable<ScaledOdds, numerics::NoncentralBeta>, SearchedQuantile<NCF> {
    double nu1, nu2, ncp;

    NCF(double nu1_, double nu2_, double ncp_)
        : OfUnitVariable{numerics::NoncentralBeta(shape_of(nu1_), shape_of(nu2_), ncp_),
                         ScaledOdds(numerics::exact_quotient(nu2_, nu1_)),
                         nu1_ + nu2_ > numerics::kRoundingCounts},
          nu1(nu1_),
          nu2(nu2_),
          ncp(ncp_) {}
    Message check() const {
        if (!(nu1 > 0)) return "Error: nu1 must be > 0";
        if (!(nu2 > 0)) return "Error: nu2 must be > 0";
        if (!(ncp >= 0)) return "Error: ncp must be >= 0";
        return nullptr;
    }
    double start(Side side, double tail) const;
    Moments moments() const {
        return linear(of_product(NCChiSq(nu1, ncp).moments(), Pearson5(0.5 * nu2, 0.5).moments()), nu2 / nu1,
                      0);
    }
    double moment_limit(Side side) const { return side == Side::upper ? 0.5 * nu2 : HUGE_VAL; }
};

}  // namespace pral
