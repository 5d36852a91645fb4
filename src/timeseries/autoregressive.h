// Linear models of log returns: autoregressions, moving averages and both together.
#pragma once

#include "timeseries/path.h"

namespace pral::timeseries {

inline constexpr Message kSigmaNotNegative = "sigma must be >=0";

/// y_t = a y_(t-1) + (1 - a) mu + eps_t
struct AR1 {
    double mu, sigma, a, y;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaNotNegative; }
    double next(Draws& draws) {
        y = a * y + (1 - a) * mu + draws.normal(0, sigma);
        return y;
    }
};

/// y_t = a1 y_(t-1) + a2 y_(t-2) + (1 - a1 - a2) mu + eps_t
struct AR2 {
    double mu, sigma, a1, a2, y, previous;

    Message check(int n) const {
        if (!(n > 2)) return "Error: output array lemgth must be >2";
        if (!(sigma >= 0)) return kSigmaNotNegative;
        return nullptr;
    }
    double next(Draws& draws) {
        const double next = a1 * y + a2 * previous + (1 - a1 - a2) * mu + draws.normal(0, sigma);
        previous = y;
        return y = next;
    }
};

/// y_t = mu + eps_t + b eps_(t-1)
struct MA1 {
    double mu, sigma, b;
    double before = 0;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaNotNegative; }
    void start(Draws& draws) { before = draws.normal(0, sigma); }
    double next(Draws& draws) {
        const double shock = draws.normal(0, sigma);
        const double y = mu + shock + b * before;
        before = shock;
        return y;
    }
};

/// y_t = mu + eps_t + b1 eps_(t-1) + b2 eps_(t-2)
struct MA2 {
    double mu, sigma, b1, b2;
    double before = 0, long_before = 0;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaNotNegative; }
    void start(Draws& draws) {
        long_before = draws.normal(0, sigma);
        before = draws.normal(0, sigma);
    }
    double next(Draws& draws) {
        const double shock = draws.normal(0, sigma);
        const double y = mu + shock + b1 * before + b2 * long_before;
        long_before = before;
        before = shock;
        return y;
    }
};

/// y_t = a y_(t-1) + (1 - a) mu + eps_t + b eps_(t-1)
struct ARMA {
    static constexpr Message kLastValueMessage = kPositiveLastValue;
    double mu, sigma, a, b, y;
    double before = 0;

    Message check(int n) const {
        if (!(n >= 2)) return kTwoStepsMessage;
        if (!(sigma >= 0)) return kSigmaNotNegative;
        return nullptr;
    }
    void start(Draws& draws) { before = draws.normal(0, sigma); }
    double next(Draws& draws) {
        const double shock = draws.normal(0, sigma);
        y = a * y + (1 - a) * mu + shock + b * before;
        before = shock;
        return y;
    }
};

}  // namespace pral::timeseries
