// Models of log returns whose variance follows the shocks: ARCH (Engle 1982), GARCH (Bollerslev 1986), EGARCH (Nelson 1991),
// APARCH (Ding, Granger and Engle 1993).
#pragma once

#include "timeseries/path.h"

namespace pral::timeseries {

/// y_t = mu + e_t, e_t = sqrt(omega + a e_(t-1)^2) z_t
struct ARCH {
    static constexpr Message kLastValueMessage = kPositiveLastValue;
    double mu, omega, a, shock;

    Message check(int n) const {
        if (!(n >= 2)) return kTwoStepsMessage;
        if (!(omega > 0)) return "Error: omega must be >0";
        if (!(a >= 0)) return "Error: \"a\" must be >=0";
        return nullptr;
    }
    double next(Draws& draws) {
        shock = std::sqrt(omega + a * shock * shock) * draws.normal(0, 1);
        return mu + shock;
    }
};

/// y_t = mu + sqrt(h_t) z_t, h_t = omega + a e_(t-1)^2 + b h_(t-1). The shock e_t that is carried on is the whole return,
/// mu included, and h_(-1) = a e_(-1) + omega takes the last shock unsquared: the library's definition of this model.
struct GARCH {
    static constexpr Message kLastValueMessage = kPositiveLastValue;
    double mu, omega, a, b, shock;
    double variance = a * shock + omega;

    Message check(int n) const {
        if (!(n >= 2)) return kTwoStepsMessage;
        if (!(omega > 0)) return "Error: omega must be >0";
        if (!(a >= 0)) return "Error: a must be >=0";
        if (!(b >= 0)) return "Error: b must be >=0";
        return nullptr;
    }
    double next(Draws& draws) {
        variance = omega + a * shock * shock + b * variance;
        shock = mu + std::sqrt(variance) * draws.normal(0, 1);
        return shock;
    }
};

/// y_t = mu + sigma_t z_t, ln sigma_t^2 = omega + alpha (|e/sigma| + gamma e/sigma - 2/pi) + beta ln sigma_(t-1)^2 with
/// e/sigma = e_(t-1)/sigma_(t-1). e_t is the whole return, mu included, and the constant is 2/pi, not the
/// sqrt(2/pi) that would centre |z|: the library's definition of this model.
struct EGARCH {
    static constexpr Message kLastValueMessage = kPositiveLastValue;
    static constexpr double kCentre = 0.6366197723675814;
    double mu, omega, gamma, alpha, beta, sigma;
    double shock = 0, log_variance = 0;

    Message check(int n) const { return n >= 2 ? nullptr : kTwoStepsMessage; }
    void start(Draws& draws) {
        shock = sigma * draws.normal(0, 1);
        log_variance = 2 * std::log(sigma);
    }
    double next(Draws& draws) {
        const double ratio = shock / sigma;
        log_variance = omega + alpha * (std::fabs(ratio) + gamma * ratio - kCentre) + beta * log_variance;
        sigma = std::exp(log_variance / 2);
        shock = mu + sigma * draws.normal(0, 1);
        return shock;
    }
};

/// y_t = mu + e_t, e_t = sigma_t z_t, sigma_t^delta = omega + alpha (|e_(t-1)| - gamma e_(t-1))^delta
/// + beta sigma_(t-1)^delta
struct APARCH {
    static constexpr Message kLastValueMessage = kPositiveLastValue;
    double mu, omega, delta, gamma, alpha, beta, sigma;
    double shock = 0, power = 0;

    Message check(int n) const {
        if (!(n >= 2)) return kTwoStepsMessage;
        if (!(omega > 0)) return "Error: omega must be >0";
        if (!(delta >= 0)) return "Error: delta must be >=0";
        if (!(gamma > -1 && gamma < 1))
            return "Error: omega must be between (-1,1)";  // it has always said omega
        if (!(alpha >= 0)) return "Error: \"a\" must be >=0";
        if (!(beta >= 0)) return "Error: \"b\" must be >=0";
        return nullptr;
    }
    void start(Draws& draws) {
        shock = sigma * draws.normal(0, 1);
        power = std::pow(sigma, delta);
    }
    double next(Draws& draws) {
        power = omega + alpha * std::pow(std::fabs(shock) - gamma * shock, delta) + beta * power;
        shock = std::pow(power, 1 / delta) * draws.normal(0, 1);
        return mu + shock;
    }
};

}  // namespace pral::timeseries
