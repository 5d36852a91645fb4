// The members that a distribution may have beside those of every family, as named concepts. family.h says what each promises.
#pragma once

#include <span>

namespace pral {

enum class Side;
class Sample;

/// Values are integers.
template <class D>
concept IntegerFamily = requires {
    D::kIntegers;
};
/// Values are a countable set.
template <class D>
concept CountableFamily = requires {
    D::kDiscrete;
};
/// The density jumps inside the support.
template <class D>
concept HasKnots = requires {
    D::kKnots;
};

template <class D>
concept HasQuantiles = requires(const D& d, std::span<double> p) {
    d.quantiles(p);
};
template <class D>
concept HasUpperQuantile = requires(const D& d, double q) {
    d.quantile_upper(q);
};
template <class D>
concept HasUpperQuantiles = requires(const D& d, std::span<double> q) {
    d.quantiles_upper(q);
};
template <class D>
concept HasQuantileTable = requires(const D& d) {
    d.quantile_table();
};

template <class D>
concept HasLogCumulative = requires(const D& d, double x) {
    d.log_cumulative(x);
};
template <class D>
concept HasLogSurvival = requires(const D& d, double x) {
    d.log_survival(x);
};
template <class D>
concept HasLogLikelihood = requires(const D& d, std::span<const double> x) {
    d.log_likelihood(x);
};
/// Statistics of the data are enough for the likelihood.
template <class D>
concept SummarisedLikelihood = requires(const D& d, const Sample& x) {
    d.log_likelihood(x);
};

template <class D>
concept HasPointMass = requires(const D& d) {
    d.point_mass();
};
template <class D>
concept HasMoments = requires(const D& d) {
    d.moments();
};
template <class D>
concept HasMomentLimit = requires(const D& d, Side side) {
    d.moment_limit(side);
};
template <class D>
concept HasMode = requires(const D& d) {
    d.mode();
};

/// Of standard distributions, for the moments of their exponentials: the logarithm of the moment-generating function, the
/// mode of the density times e^(t x), and how fast the tails fall.
template <class D>
concept HasLogMgf = requires(const D& d, double t) {
    d.log_mgf(t);
};
template <class D>
concept HasTiltedMode = requires(const D& d, double t) {
    d.tilted_mode(t);
};
template <class D>
concept HasLowerRate = requires(const D& d) {
    d.lower_rate();
};
template <class D>
concept HasUpperRate = requires(const D& d) {
    d.upper_rate();
};
template <class D>
concept HasNormalDeviation = requires(const D& d) {
    d.normal_deviation();
};

}  // namespace pral
