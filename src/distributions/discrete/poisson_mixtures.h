// Poisson counts whose rate is itself random or changes: a uniform rate, a rate that changes at the first event.
#pragma once

#include "distributions/continuous/exponential.h"
#include "distributions/continuous/uniform.h"
#include "distributions/discrete/discrete.h"
#include "distributions/discrete/poisson.h"

namespace pral {

/// A Poisson count with a rate uniform on [Min, Max], 0 <= Min < Max. Its tails are the means of the Poisson ones over the
/// rates; f(k) = (P(k + 1, Max) - P(k + 1, Min))/(Max - Min).
struct PoissonUniform : OnIntegers<PoissonUniform> {
    static constexpr Tie kTie = Tie::stay;
    double Min, Max;

    PoissonUniform(double Min_, double Max_) : Min(Min_), Max(Max_) {}
    Message check() const {
        if (!(Min >= 0)) return "Error: Min must be >= 0";
        if (!(Max > Min)) return "Error: Max must be > Min";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    Moments moments() const {
        return poisson_mixture({0.5 * Min + 0.5 * Max, (Max - Min) * ((Max - Min) / 12), 0, -1.2});
    }
    double cumulative(double k) const;
    double survival(double k) const;
    double log_density(double k) const;
    double mass_ratio(double k) const { return std::exp(log_density(k + 1) - log_density(k)); }
    void masses(double first, std::span<double> out) const;
    double start(double p) const;

    /// A uniform rate, then a Poisson sample, each from a draw of its own; the one already drawn is not used.
    double random(double u, RandomStream& stream) const { return random_by<Poisson>(u, stream); }
    /// With this form of the Poisson distribution.
    template <class Count>
    double random_by(double, RandomStream& stream) const {
        const double rate = Uniform{Min, Max}.quantile(stream.uniform());
        return rate > 0 ? Count(rate).quantile(stream.uniform()) : 0;
    }
};

/// Events within unit time, at rate Lambda1 until the first and Lambda2 afterwards, Lambda1 >= Lambda2 > 0. With
/// K(k) = integral over t in [0, 1] of (1 - t)^(k-1) e^(-(Lambda1 - Lambda2) t),
///   f(0) = e^-Lambda1, f(k) = Lambda1 e^-Lambda2 Lambda2^(k-1)/(k-1)! K(k),
///   1 - F(k) = P(k, Lambda2) - (Lambda2/Lambda1) f(k), k >= 1.
/// Equal rates are the Poisson distribution.
struct BurntFingerPoisson : OnIntegers<BurntFingerPoisson> {
    static constexpr Tie kTie = Tie::stay;
    double Lambda1, Lambda2;

    BurntFingerPoisson(double Lambda1_, double Lambda2_) : Lambda1(Lambda1_), Lambda2(Lambda2_) {}
    Message check() const {
        if (!(Lambda1 >= Lambda2)) return "Error: Lambda1 must be >= Lambda2";
        if (!(Lambda2 > 0)) return "Error: Lambda2 must be > 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double k) const;
    double survival(double k) const;
    double log_density(double k) const;
    double mass_ratio(double k) const;
    double start(double p) const { return poisson_after().start(p); }

    double quantile(double p) const {
        return equal() ? poisson_after().quantile(p) : OnIntegers::quantile(p);
    }
    double quantile_upper(double q) const {
        return equal() ? poisson_after().quantile_upper(q) : OnIntegers::quantile_upper(q);
    }
    void quantiles(std::span<double> p) const {
        equal() ? poisson_after().quantiles(p) : OnIntegers::quantiles(p);
    }
    void quantiles_upper(std::span<double> q) const {
        equal() ? poisson_after().quantiles_upper(q) : OnIntegers::quantiles_upper(q);
    }
    Moments moments() const;
    /// The time of the first event from a draw of its own; if it is below 1, the later events from another. The draw made
    /// already is not used, except by equal rates: it is the Poisson's.
    double random(double u, RandomStream& stream) const { return random_by<Poisson>(u, stream); }
    /// With this form of the Poisson distribution.
    template <class Count>
    double random_by(double u, RandomStream& stream) const {
        if (equal()) return Count(Lambda2).quantile(u);
        const double first = Expon{1 / Lambda1}.quantile(stream.uniform());
        return first < 1 ? 1 + Count((1 - first) * Lambda2).quantile(stream.uniform()) : 0;
    }

    bool equal() const { return Lambda1 == Lambda2; }

  private:
    Poisson poisson_after() const { return Poisson(Lambda2); }
};

}  // namespace pral
