// Linear models of log returns: autoregressions, moving averages and both together.
#include "timeseries/exports.h"

namespace pral::timeseries {
namespace {

constexpr Message kSigmaMessage = "sigma must be >=0";

/// y_t = a y_(t-1) + (1 - a) mu + eps_t
struct AR1 {
    double mu, sigma, a, y;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaMessage; }
    double next() {
        y = a * y + (1 - a) * mu + normal(0, sigma);
        return y;
    }
};

/// y_t = a1 y_(t-1) + a2 y_(t-2) + (1 - a1 - a2) mu + eps_t
struct AR2 {
    double mu, sigma, a1, a2, y, previous;

    Message check(int n) const {
        if (!(n > 2)) return "Error: output array lemgth must be >2";
        if (!(sigma >= 0)) return kSigmaMessage;
        return nullptr;
    }
    double next() {
        const double next = a1 * y + a2 * previous + (1 - a1 - a2) * mu + normal(0, sigma);
        previous = y;
        return y = next;
    }
};

/// y_t = mu + eps_t + b eps_(t-1)
struct MA1 {
    double mu, sigma, b;
    double before = 0;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaMessage; }
    void start() { before = normal(0, sigma); }
    double next() {
        const double shock = normal(0, sigma);
        const double y = mu + shock + b * before;
        before = shock;
        return y;
    }
};

/// y_t = mu + eps_t + b1 eps_(t-1) + b2 eps_(t-2)
struct MA2 {
    double mu, sigma, b1, b2;
    double before = 0, long_before = 0;

    Message check(int) const { return sigma >= 0 ? nullptr : kSigmaMessage; }
    void start() {
        long_before = normal(0, sigma);
        before = normal(0, sigma);
    }
    double next() {
        const double shock = normal(0, sigma);
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
        if (!(sigma >= 0)) return kSigmaMessage;
        return nullptr;
    }
    void start() { before = normal(0, sigma); }
    double next() {
        const double shock = normal(0, sigma);
        y = a * y + (1 - a) * mu + shock + b * before;
        before = shock;
        return y;
    }
};

}  // namespace
}  // namespace pral::timeseries

using namespace pral::timeseries;

PRAL_EXPORT_PATH(AR1, (double mu, double sigma, double a, double lastReturn, int LogReturn, double LastValue),
                 (mu, sigma, a, lastReturn, LogReturn, LastValue),
                 price_path(out, n, AR1{mu, sigma, a, lastReturn}, {LogReturn, LastValue}))

PRAL_EXPORT_PATH(AR2,
                 (double mu, double sigma, double a1, double a2, double lastReturn, double returnBefore,
                  int LogReturn, double LastValue),
                 (mu, sigma, a1, a2, lastReturn, returnBefore, LogReturn, LastValue),
                 price_path(out, n, AR2{mu, sigma, a1, a2, lastReturn, returnBefore}, {LogReturn, LastValue}))

PRAL_EXPORT_PATH(MA1, (double mu, double sigma, double b, int LogReturn, double LastValue),
                 (mu, sigma, b, LogReturn, LastValue),
                 price_path(out, n, MA1{mu, sigma, b}, {LogReturn, LastValue}))

PRAL_EXPORT_PATH(MA2, (double mu, double sigma, double b1, double b2, int LogReturn, double LastValue),
                 (mu, sigma, b1, b2, LogReturn, LastValue),
                 price_path(out, n, MA2{mu, sigma, b1, b2}, {LogReturn, LastValue}))

PRAL_EXPORT_PATH(ARMA,
                 (double mu, double sigma, double a, double b, double lastReturn, int LogReturn,
                  double LastValue),
                 (mu, sigma, a, b, lastReturn, LogReturn, LastValue),
                 price_path(out, n, ARMA{mu, sigma, a, b, lastReturn}, {LogReturn, LastValue}))
