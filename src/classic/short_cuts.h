// Counts with large parameters as the classic calls draw them: normal or gamma variables, rounded. And percentiles beyond
// which a count is infinite.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "classic/forms.h"
#include "distributions/discrete/binomial.h"
#include "distributions/discrete/negative_binomial.h"
#include "distributions/discrete/poisson.h"
#include "distributions/discrete/poisson_mixtures.h"
#include "numerics/normal.h"

namespace pral::classic {

/// From where on counts are approximated: Poisson rates, variances of binomial and negative binomial counts; and below which
/// probability of success negative binomial ones are.
inline constexpr double kLargeRate = 5000, kLargeVariance = 100000, kRareSuccess = 0.01;

/// The standard normal value with this tail.
inline double normal_value(Side side, double tail) {
    return side == Side::lower ? numerics::normal_quantile(tail) : -numerics::normal_quantile(tail);
}

/// A large Poisson count, before it is rounded: its square root is taken as normal.
inline bool approximates(const Poisson& d) { return d.lambda > kLargeRate; }
inline double unrounded_quantile(const Poisson& d, Side side, double tail) {
    const double root = 2 * std::sqrt(d.lambda) + normal_value(side, tail);
    return 0.25 * root * root;
}
inline double approximate_quantile(const Poisson& d, Side side, double tail) {
    return std::trunc(unrounded_quantile(d, side, tail));
}

/// Of equal rates it is the Poisson count.
inline bool approximates(const BurntFingerPoisson& d) {
    return d.equal() && approximates(Poisson(d.Lambda2));
}
inline double unrounded_quantile(const BurntFingerPoisson& d, Side side, double tail) {
    return unrounded_quantile(Poisson(d.Lambda2), side, tail);
}
inline double approximate_quantile(const BurntFingerPoisson& d, Side side, double tail) {
    return approximate_quantile(Poisson(d.Lambda2), side, tail);
}

/// A binomial count is taken as normal.
inline bool approximates(const Binomial& d) { return d.n * d.p * (1 - d.p) > kLargeVariance; }
inline double approximate_quantile(const Binomial& d, Side side, double tail) {
    const double z = d.n * d.p + std::sqrt(d.n * d.p * (1 - d.p)) * normal_value(side, tail);
    return std::floor(z + 0.5);
}

/// A negative binomial count with rare successes is taken as the gamma variable with the same mean and variance, another one
/// as normal.
inline bool approximates(const NegBin& d) {
    return d.p < kRareSuccess || d.s * d.q > kLargeVariance * d.p * d.p;
}
inline double approximate_quantile(const NegBin& d, Side side, double tail) {
    if (d.p < kRareSuccess) return std::floor(d.matched_gamma(side == Side::lower ? tail : 1 - tail) + 0.5);
    const double normal = d.s * d.q / d.p + std::sqrt(d.s * d.q) / d.p * normal_value(side, tail);
    return std::max(0.0, std::floor(normal + 0.5));
}

/// Larger percentiles give infinity.
inline double last_percentile(const Poisson&) { return 1; }
inline double last_percentile(const Binomial&) { return 1; }
inline double last_percentile(const NegBin&) { return 0.9999999; }
inline double last_percentile(const BurntFingerPoisson& d) {
    return d.equal() ? 1 : 0.99999999999999 - 0x1p-53;
}

/// A count that is approximated for large parameters.
template <class D>
struct ShortCut : D {
    using D::D;
    explicit ShortCut(const D& d) : D(d) {}

    bool approximates() const { return classic::approximates(plain()); }
    double quantile(double p) const {
        if (p > last_percentile(plain())) return D::support().upper;
        return approximates() ? approximate_quantile(plain(), Side::lower, p) : D::quantile(p);
    }
    double quantile_upper(double q) const {
        if (1 - q > last_percentile(plain())) return D::support().upper;
        return approximates() ? approximate_quantile(plain(), Side::upper, q) : D::quantile_upper(q);
    }
    /// quantile_upper() so far out that an approximation would be of percentiles that are as good as 1: without one.
    double far_quantile_upper(double q) const {
        return 1 - q > last_percentile(plain()) ? D::support().upper : D::quantile_upper(q);
    }
    void quantiles(std::span<double> p) const {
        invert(
            p, [this](double t) { return t > last_percentile(plain()); },
            [this](double t) { return approximate_quantile(plain(), Side::lower, t); },
            [this](std::span<double> t) { D::quantiles(t); });
    }
    void quantiles_upper(std::span<double> q) const {
        invert(
            q, [this](double t) { return 1 - t > last_percentile(plain()); },
            [this](double t) { return approximate_quantile(plain(), Side::upper, t); },
            [this](std::span<double> t) { D::quantiles_upper(t); });
    }
    /// A fractional shift is added to the nearly normal value before that is rounded.
    double quantile_unrounded(Side side, double tail) const requires requires(const D& d) {
        unrounded_quantile(d, Side::lower, 0.5);
    }
    { return unrounded_quantile(plain(), side, tail); }

  private:
    const D& plain() const { return *this; }

    template <class Beyond, class Approximate, class Exact>
    void invert(std::span<double> tails, Beyond is_beyond, Approximate approximate, Exact exact) const {
        std::vector<std::size_t> beyond;
        for (std::size_t i = 0; i < tails.size(); ++i) {
            if (!is_beyond(tails[i])) continue;
            beyond.push_back(i);
            tails[i] = 0.5;
        }
        if (approximates()) {
            for (double& value : tails) value = approximate(value);
        } else {
            exact(tails);
        }
        for (const std::size_t i : beyond) tails[i] = D::support().upper;
    }
};

/// A family whose bare calls draw Poisson counts: these are approximated, too.
template <class D>
struct SumOfShortCuts : D {
    using D::D;
    explicit SumOfShortCuts(const D& d) : D(d) {}
    double random(double u, RandomStream& stream) const {
        return D::template random_by<ShortCut<Poisson>>(u, stream);
    }
};

}  // namespace pral::classic
