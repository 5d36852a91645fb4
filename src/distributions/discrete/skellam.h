// The difference of two Poisson counts.
#pragma once

#include "distributions/discrete/discrete.h"
#include "distributions/discrete/poisson.h"
#include "numerics/noncentral_chi_square.h"

namespace pral {

/// N1 - N2 of independent Poisson counts with rates Lambda1, Lambda2 > 0, on all integers. Both tails are those of
/// noncentral chi-square variables with an even number of degrees of freedom (Johnson 1959), and the mass, a modified
/// Bessel function, is their density.
struct Skellam : OnIntegers<Skellam> {
    static constexpr Tie kTie = Tie::stay;
    double Lambda1, Lambda2;

    Skellam(double Lambda1_, double Lambda2_) : Lambda1(Lambda1_), Lambda2(Lambda2_) {}
    Message check() const {
        if (!(Lambda1 > 0)) return "Error: Lambda1 must be > 0";
        if (!(Lambda2 > 0)) return "Error: Lambda2 must be > 0";
        return nullptr;
    }
    Support support() const { return kReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    Moments moments() const {
        const double variance = Lambda1 + Lambda2;
        return {Lambda1 - Lambda2, variance, (Lambda1 - Lambda2) / variance / std::sqrt(variance),
                1 / variance};
    }
    double cumulative(double k) const {
        return k < 0 ? numerics::noncentral_chi_square_lower(-2 * k, 2 * Lambda1, 2 * Lambda2)
                     : numerics::noncentral_chi_square_upper(2 * k + 2, 2 * Lambda2, 2 * Lambda1);
    }
    double survival(double k) const {
        return k < 0 ? numerics::noncentral_chi_square_upper(-2 * k, 2 * Lambda1, 2 * Lambda2)
                     : numerics::noncentral_chi_square_lower(2 * k + 2, 2 * Lambda2, 2 * Lambda1);
    }
    double log_density(double k) const {
        const double log_half =
            k < 0 ? numerics::noncentral_chi_square_log_density(2 - 2 * k, 2 * Lambda1, 2 * Lambda2)
                  : numerics::noncentral_chi_square_log_density(2 * k + 2, 2 * Lambda2, 2 * Lambda1);
        return log_half + numerics::kLn2;
    }
    double mass_ratio(double k) const { return std::exp(log_density(k + 1) - log_density(k)); }
    void masses(double first, std::span<double> out) const;
    /// The normal quantile, corrected for the skewness (Cornish and Fisher 1938).
    double start(double p) const;

    /// Two Poisson samples, each from a draw of its own; the one already drawn is not used.
    double random(double u, RandomStream& stream) const { return random_by<Poisson>(u, stream); }
    /// With this form of the Poisson distribution.
    template <class Count>
    double random_by(double, RandomStream& stream) const {
        const double first = Count(Lambda1).quantile(stream.uniform());
        return first - Count(Lambda2).quantile(stream.uniform());
    }
};

}  // namespace pral
