// Geometric Brownian motion and its kin: with jumps, with reversion to a mean, with both, with seasons.
#include "numerics/elementary.h"
#include "timeseries/exports.h"

namespace pral::timeseries {
namespace {

constexpr Message kSigmaMessage = "Error: sigma must be >0";
constexpr Message kLambdaMessage = "Error: lambda must be between (0, 0.16)";
constexpr Message kJumpSigmaMessage = "Error: sigmaj must be >0";

/// y_t ~ Normal(mu dt, sigma sqrt(dt)): mu is the mean log return, without a correction by sigma^2/2.
struct GBM {
    double mu, sigma;
    Clock clock;
    double length = numerics::kNaN, deviation = 0;

    Message check(int n) const { return sigma > 0 ? clock.check(n) : kSigmaMessage; }
    double next() {
        const double dt = clock.step();
        if (dt != length) deviation = sigma * std::sqrt(dt);
        length = dt;
        return normal(mu * dt, deviation);
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
        return objection == nullptr && !(sigma > 0) ? kSigmaMessage : objection;
    }
    double next() {
        double dt = clock.step();
        if (dt <= 0) dt = 1;  // a first stamp that is not positive; later ones ascend
        if (dt != length) reversion = Reversion(alpha, dt);
        length = dt;
        y = normal(mu + (y - mu) * reversion.kept, sigma * std::sqrt(reversion.variance));
        return y;
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
        if (!(sigma > 0)) return kSigmaMessage;
        if (p1 <= 0) return "Error: p1 must be >0";
        if (p2 <= 0) return "Error: p2 must be >0";
        if (p1 > count1) return "Error: p1 must be <= count_s1";
        if (p2 > count2) return "Error: p2 must be <= count_s2";
        if (s1 == nullptr) return "Error: s1 must not be null";
        if (s2 == nullptr) return "Error: s2 must not be null";
        return nullptr;
    }
    double next() {
        const double y = normal(mu + s1[season1] + s2[season2], sigma);
        season1 = season1 + 1 < p1 ? season1 + 1 : 0;
        season2 = season2 + 1 < p2 ? season2 + 1 : 0;
        return y;
    }
};

}  // namespace
}  // namespace pral::timeseries

using namespace pral::timeseries;

PRAL_EXPORT_PATH(GBM,
                 (double mu, double sigma, double LastValue, const double* TimeStamps, int LogReturn,
                  double LastTime),
                 (mu, sigma, LastValue, TimeStamps, LogReturn, LastTime),
                 price_path(out, n, GBM{mu, sigma, {TimeStamps, LastTime}}, {LogReturn, LastValue}))

PRAL_EXPORT_PATH(GBMMR,
                 (double mu, double sigma, double alpha, double lastReturn, double LastValue,
                  const double* TimeStamps, int LogReturn),
                 (mu, sigma, alpha, lastReturn, LastValue, TimeStamps, LogReturn),
                 price_path(out, n, GBMMR{mu, sigma, alpha, lastReturn, {TimeStamps, 0}},
                            {LogReturn, LastValue}))

PRAL_EXPORT_PATH(SeasonalGBM,
                 (double mu, double sigma, const double* s1, int count_s1, int p1, const double* s2,
                  int count_s2, int p2, int LogReturn, double LastValue),
                 (mu, sigma, s1, count_s1, p1, s2, count_s2, p2, LogReturn, LastValue),
                 price_path(out, n, SeasonalGBM{mu, sigma, s1, count_s1, p1, s2, count_s2, p2},
                            {LogReturn, LastValue}))
