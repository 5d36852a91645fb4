// The exported series of prices, log returns and populations: what they check and draw stands in timeseries/.
#include "classic/short_cuts.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "timeseries/autoregressive.h"
#include "timeseries/brownian_motion.h"
#include "timeseries/heteroskedastic.h"
#include "timeseries/population.h"

using namespace pral::timeseries;
using pral::classic::Form;

namespace {

template <class Model>
bool prices(double* out, int n, const Model& model, Output output) {
    return pral::guarded(out, n, [&](int count) {
        const std::span<double> path(out, static_cast<std::size_t>(count));
        return pral::succeeded(price_path(path, model, output, pral::random_stream()));
    });
}

template <class Process>
bool population(double* out, int n, const Process& process, int logarithm) {
    return pral::guarded(out, n, [&](int count) {
        const std::span<double> path(out, static_cast<std::size_t>(count));
        return pral::succeeded(population_path(path, process, logarithm, pral::random_stream()));
    });
}

}  // namespace

PRAL_EXPORT_VECTOR(TimeAR1,
                   (double mu, double sigma, double a, double lastReturn, int LogReturn, double LastValue),
                   (mu, sigma, a, lastReturn, LogReturn, LastValue),
                   prices(out, size, AR1{mu, sigma, a, lastReturn}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeAR2,
                   (double mu, double sigma, double a1, double a2, double lastReturn, double returnBefore,
                    int LogReturn, double LastValue),
                   (mu, sigma, a1, a2, lastReturn, returnBefore, LogReturn, LastValue),
                   prices(out, size, AR2{mu, sigma, a1, a2, lastReturn, returnBefore},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeMA1, (double mu, double sigma, double b, int LogReturn, double LastValue),
                   (mu, sigma, b, LogReturn, LastValue),
                   prices(out, size, MA1{mu, sigma, b}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeMA2, (double mu, double sigma, double b1, double b2, int LogReturn, double LastValue),
                   (mu, sigma, b1, b2, LogReturn, LastValue),
                   prices(out, size, MA2{mu, sigma, b1, b2}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeARMA,
                   (double mu, double sigma, double a, double b, double lastReturn, int LogReturn,
                    double LastValue),
                   (mu, sigma, a, b, lastReturn, LogReturn, LastValue),
                   prices(out, size, ARMA{mu, sigma, a, b, lastReturn}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeARCH,
                   (double mu, double omega, double a, double lastReturn, int LogReturn, double LastValue),
                   (mu, omega, a, lastReturn, LogReturn, LastValue),
                   prices(out, size, ARCH{mu, omega, a, lastReturn - mu}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeGARCH,
                   (double mu, double omega, double a, double b, double lastShock, int LogReturn,
                    double LastValue),
                   (mu, omega, a, b, lastShock, LogReturn, LastValue),
                   prices(out, size, GARCH{mu, omega, a, b, lastShock}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeEGARCH,
                   (double mu, double omega, double gamma, double alpha, double beta, double lastSigma,
                    int LogReturn, double LastValue),
                   (mu, omega, gamma, alpha, beta, lastSigma, LogReturn, LastValue),
                   prices(out, size, EGARCH{mu, omega, gamma, alpha, beta, lastSigma},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeAPARCH,
                   (double mu, double omega, double delta, double gamma, double alpha, double beta,
                    double lastSigma, int LogReturn, double LastValue),
                   (mu, omega, delta, gamma, alpha, beta, lastSigma, LogReturn, LastValue),
                   prices(out, size, APARCH{mu, omega, delta, gamma, alpha, beta, lastSigma},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeGBM,
                   (double mu, double sigma, double LastValue, const double* TimeStamps, int LogReturn,
                    double LastTime),
                   (mu, sigma, LastValue, TimeStamps, LogReturn, LastTime),
                   prices(out, size, GBM{mu, sigma, {TimeStamps, LastTime}}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeGBMJD,
                   (double mu, double sigma, double lambda, double muJ, double sigmaJ, int LogReturn,
                    double LastValue),
                   (mu, sigma, lambda, muJ, sigmaJ, LogReturn, LastValue),
                   prices(out, size, GBMJD{mu, sigma, {lambda, muJ, sigmaJ}}, {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeGBMMR,
                   (double mu, double sigma, double alpha, double lastReturn, double LastValue,
                    const double* TimeStamps, int LogReturn),
                   (mu, sigma, alpha, lastReturn, LastValue, TimeStamps, LogReturn),
                   prices(out, size, GBMMR{mu, sigma, alpha, lastReturn, {TimeStamps, 0}},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeGBMJDMR,
                   (double mu, double sigma, double alpha, double lambda, double muJ, double sigmaJ,
                    int LogReturn, double LastValue),
                   (mu, sigma, alpha, lambda, muJ, sigmaJ, LogReturn, LastValue),
                   prices(out, size, GBMJDMR{mu, sigma, alpha, {lambda, muJ, sigmaJ}},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeSeasonalGBM,
                   (double mu, double sigma, const double* s1, int count_s1, int p1, const double* s2,
                    int count_s2, int p2, int LogReturn, double LastValue),
                   (mu, sigma, s1, count_s1, p1, s2, count_s2, p2, LogReturn, LastValue),
                   prices(out, size, SeasonalGBM{mu, sigma, s1, count_s1, p1, s2, count_s2, p2},
                          {LogReturn, LastValue}));

PRAL_EXPORT_VECTOR(TimeYule, (double N0, double beta, double t, int logarithm), (N0, beta, t, logarithm),
                   population(out, size, YuleOf<Form<pral::NegBin>>{N0, beta, t}, logarithm));

PRAL_EXPORT_VECTOR(TimeDeath, (double N0, double beta, double t, int logarithm), (N0, beta, t, logarithm),
                   population(out, size, DeathOf<Form<pral::Binomial>>{N0, beta, t}, logarithm));
