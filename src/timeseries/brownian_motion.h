// Geometric Brownian motion and its kin: with jumps, with reversion to a mean, with both, with seasons.
#pragma once

#include "distributions/discrete/negative_binomial.h"
#include "numerics/elementary.h"
#include "timeseries/path.h"

namespace pral::timeseries {

inline constexpr Message kSigmaPositive = "Error: sigma must be >0";
inline constexpr Message kPositiveLastPrice = "Error: LastValue must be >0";

/// y_t ~ Normal(mu dt, sigma sqrt(dt)): mu is the mean log return, without a correction by sigma^2/2.
struct GBM {
    double mu, sigma;
    Clock clock;
    double length = numerics::kNaN, deviation = 0;

    Message check(int n) const { return sigma > 0 ? clock.check(n) : kSigmaPositive; }
    double next(Draws& draws) {
        const double dt = clock.step();
        if (dt != length) deviation = sigma * std::sqrt(dt);
        length = dt;
        return draws.normal(mu * dt, deviation);
    }
};

/// Jumps at the rate lambda a step, at most one in a step, which the rate is small enough for: Normal(mu, sigma) each.
struct Jumps {
    double lambda, mu, sigma;
    Bernoulli indicator{-numerics::expm1_fn(-lambda)};

    Message check() const {
        if (!(lambda > 0 && lambda < 0.16)) return "Error: lambda must be between (0, 0.16)";
        if (!(sigma > 0)) return "Error: sigmaj must be >0";
        return nullptr;
    }
    bool one(Draws& draws) const { return draws(indicator) != 0; }
    double variance() const { return sigma * sigma; }
    /// The mean time of a single jump in the unit step, 1/lambda - 1/(e^lambda - 1), whose terms cancel for small lambda: its
    /// series in Bernoulli numbers (DLMF 24.2.1), for lambda < 0.16 to the last bit.
    double mean_time() const {
        const double x = lambda * lambda;
        return 0.5 -
               lambda * (1 / 12.0 - x * (1 / 720.0 - x * (1 / 30240.0 - x * (1 / 1209600.0 - x / 47900160))));
    }
};

/// y_t ~ Normal(mu + J_t muJ, sqrt(J_t sigmaJ^2 + sigma^2)), J_t = 1 with a jump and 0 without
struct GBMJD {
    static constexpr Message kLastValueMessage = kPositiveLastPrice;
    double mu, sigma;
    Jumps jumps;
    double with_jump = std::sqrt(jumps.variance() + sigma * sigma);

    Message check(int) const { return sigma > 0 ? jumps.check() : kSigmaPositive; }
    double next(Draws& draws) const {
        return jumps.one(draws) ? draws.normal(mu + jumps.mu, with_jump) : draws.normal(mu, sigma);
    }
};

/// What an Ornstein-Uhlenbeck process keeps of its distance from the mean over a time dt, and the variance that unit noise
/// adds to it meanwhile: e^(-alpha dt) and (1 - e^(-2 alpha dt))/(2 alpha), which is dt where alpha vanishes.
struct Reversion {
    double kept, variance;

    Reversion(double alpha, double dt) : kept(std::exp(-alpha * dt)) {
        const double twice = 2 * alpha * dt;
        variance = std::fabs(twice) < 0x1p-54 ? dt : -numerics::expm1_fn(-twice) / (2 * alpha);
    }
};

/// y_t ~ Normal(mu + (y_(t-1) - mu) e^(-alpha dt), sigma sqrt((1 - e^(-2 alpha dt))/(2 alpha)))
struct GBMMR {
    static constexpr Message kLastValueMessage = "Error: If LogReturn=FALSE LastValue must be >0";
    double mu, sigma, alpha, y;
    Clock clock;  // from time 0
    double length = 1;
    Reversion reversion{alpha, length};

    Message check(int n) const {
        const Message objection = clock.check(n);
        return objection == nullptr && !(sigma > 0) ? kSigmaPositive : objection;
    }
    double next(Draws& draws) {
        double dt = clock.step();
        if (dt <= 0) dt = 1;  // a first stamp that is not positive; later ones ascend
        if (dt != length) reversion = Reversion(alpha, dt);
        length = dt;
        y = draws.normal(mu + (y - mu) * reversion.kept, sigma * std::sqrt(reversion.variance));
        return y;
    }
};

/// Reversion and jumps: from the mean on, steps of GBMMR. A step with a jump is two, up to the jump, which adds to its mean
/// and its variance, and from there to the end.
struct GBMJDMR {
    static constexpr Message kLastValueMessage = kPositiveLastPrice;
    double mu, sigma, alpha;
    Jumps jumps;
    double y = mu;
    double tau = jumps.mean_time();
    Reversion whole{alpha, 1}, before{alpha, tau}, after{alpha, 1 - tau};

    Message check(int) const {
        if (!(sigma > 0)) return kSigmaPositive;
        if (!(alpha > 0)) return "Error: alpha must be >0";
        return jumps.check();
    }
    double next(Draws& draws) {
        if (jumps.one(draws)) {
            const double variance = sigma * sigma * before.variance + jumps.variance();
            y = draws.normal(mu + jumps.mu + (y - mu) * before.kept, std::sqrt(variance));
            y = step(after, draws);
        } else {
            y = step(whole, draws);
        }
        return y;
    }
    double step(const Reversion& r, Draws& draws) const {
        return draws.normal(mu + (y - mu) * r.kept, sigma * std::sqrt(r.variance));
    }
};

/// y_t = mu + s1[t mod p1] + s2[t mod p2] + eps_t
struct SeasonalGBM {
    double mu, sigma;
    const double* s1;
    int count1, p1;
    const double* s2;
    int count2, p2;
    int season1 = 0, season2 = 0;

    Message check(int) const {
        if (!(sigma > 0)) return kSigmaPositive;
        if (p1 <= 0) return "Error: p1 must be >0";
        if (p2 <= 0) return "Error: p2 must be >0";
        if (p1 > count1) return "Error: p1 must be <= count_s1";
        if (p2 > count2) return "Error: p2 must be <= count_s2";
        if (s1 == nullptr) return "Error: s1 must not be null";
        if (s2 == nullptr) return "Error: s2 must not be null";
        return nullptr;
    }
    double next(Draws& draws) {
        const double y = draws.normal(mu + s1[season1] + s2[season2], sigma);
        season1 = season1 + 1 < p1 ? season1 + 1 : 0;
        season2 = season2 + 1 < p2 ? season2 + 1 : 0;
        return y;
    }
};

}  // namespace pral::timeseries
