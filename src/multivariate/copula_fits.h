// Fits of copulas to data by inversion of Kendall's tau.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "multivariate/archimedean.h"
#include "multivariate/elliptical.h"

namespace pral::multivariate {

/// Observations of d variables, kept by variable as ranks from 1 to their number m, ties averaged.
class RankedData {
  public:
    /// From data by variable, d of them.
    RankedData(std::vector<double> by_variable, int d);

    int variables() const { return static_cast<int>(d_); }
    int observations() const { return static_cast<int>(m_); }
    std::span<const double> variable(std::size_t j) const { return {&ranks_[j * m_], m_}; }

    /// Kendall's tau-a of two variables.
    double tau(std::size_t a, std::size_t b) const;

    /// The mean of tau over the ordered pairs (a, b) with a < d - 1 and b != a: pairs of which one is the last
    /// variable count once, the others twice.
    double mean_tau() const;

    /// The sign of the mean of (r + s)^3 of a pair of variables, where r and s are the ranks less their mean, each
    /// times 1 or -1: an estimate of the sign of E (u1 + u2 - 1)^3 (Rosco and Joe 2013).
    int corner(double first_sign, double second_sign) const;

  private:
    std::size_t d_, m_;
    std::vector<double> ranks_;
};

/// Samples of a copula, one after another, as data of d variables.
RankedData ranked_samples(const std::vector<double>& samples, int d);

/// A copula of pairs with its direction.
struct PairFit {
    double parameter;
    int direction;
};

/// The fit to pairs in a given direction, or, when that is 0, in the one that the data show: by the sign of tau, and
/// by the corner in which the dependence is closest. Where a given direction contradicts the sign of tau the parameter is
/// minus that of |tau|, which mirrors a coordinate once more: a sampler with both has the tau of the data.
template <class Copula>
PairFit fit_pair(const RankedData& pairs, int direction) {
    const double tau = pairs.tau(0, 1);
    if (direction == 0) {
        const bool falling = tau < 0;
        const bool own = pairs.corner(falling ? -1 : 1, 1) * Copula::kOwnCorner >= 0;
        direction = falling ? (own ? 2 : 3) : (own ? 1 : 4);
    }
    const bool mirrored = direction == 2 || direction == 3;  // one coordinate, which turns the sign of tau
    const double size = Copula::from_tau(std::fabs(tau));
    return {numerics::finite_or_limit((mirrored ? -tau : tau) < 0 ? -size : size), direction};
}

/// The fit to more variables.
template <class Copula>
double fit_all(const RankedData& data) {
    return Copula::limited(Copula::from_tau(data.mean_tau()));
}

/// A data set of so many observations drawn from the copula: refitting it shows the uncertainty of a fit.
template <class Copula>
RankedData replicate(double parameter, int variables, int observations, RandomStream& stream) {
    std::vector<double> samples(static_cast<std::size_t>(variables) * observations);
    sample<Copula>(parameter, variables, observations, samples.data(), stream);
    return ranked_samples(samples, variables);
}

/// The same of pairs.
template <class Copula>
RankedData replicate(const PairFit& fit, int observations, RandomStream& stream) {
    std::vector<double> samples(2 * static_cast<std::size_t>(observations));
    sample<Copula>(fit.parameter, 2, observations, samples.data(), stream);
    for (std::size_t i = 0; i < samples.size(); i += 2) apply_direction(fit.direction, &samples[i]);
    return ranked_samples(samples, 2);
}

/// The correlation matrix sin(pi tau/2) of the elliptical copulas, made positive semi-definite where it is not (see
/// matrix::valid_corrmat). Empty when that fails.
std::vector<double> fit_correlations(const RankedData& data);

/// The largest number of degrees of freedom that a fit gives; beyond it the t copula is normal for all that data can
/// tell.
inline constexpr int kMostDegrees = 256;

/// The whole number of degrees of freedom, 1 to kMostDegrees, with the largest likelihood of the t copula with the
/// given correlations, at the ranks over m + 1.
int fit_degrees(const RankedData& data, const std::vector<double>& correlations);

/// An elliptical copula: the correlations and, of the t copula, the degrees of freedom (0: the normal copula).
struct EllipticalFit {
    int nu;
    std::vector<double> correlations;
};
/// The fit to data, and in its place that to a data set of the same shape drawn from it. Return the message of what
/// failed, or null.
Message fit_elliptical(EllipticalFit& fit, const RankedData& data, bool student);
Message refit_elliptical(EllipticalFit& fit, int variables, int observations, RandomStream& stream);

}  // namespace pral::multivariate
