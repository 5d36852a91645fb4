// The noncentral chi-square distribution.
#pragma once

#include "distributions/quantile_search.h"
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
        if (!(nu > 0)) return "Error: nu must be > 0";
        if (!(pnonc >= 0)) return "Error: PNONC must be >= 0";
        if (nu != std::floor(nu)) return "Error: nu must be an positive integer";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return numerics::noncentral_chi_square_lower(nu, pnonc, x); }
    double survival(double x) const { return numerics::noncentral_chi_square_upper(nu, pnonc, x); }
    double log_density(double x) const {
        const double log = numerics::noncentral_chi_square_log_density(nu, pnonc, x);
        return std::fabs(log) == numerics::kInfinity ? std::copysign(HUGE_VAL, log) : log;
    }
    double start(Side side, double tail) const;
};

}  // namespace pral
