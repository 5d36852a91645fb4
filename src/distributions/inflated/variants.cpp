#include "distributions/inflated/variants.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(ZIBetaBinomial, (double n, double alpha, double beta, double pi), (n, alpha, beta, pi));
PRAL_EXPORT_FAMILY(ZIBetaGeometric, (double alpha, double beta, double pi), (alpha, beta, pi));
PRAL_EXPORT_FAMILY(ZIBetaNegBin, (double s, double alpha, double beta, double pi), (s, alpha, beta, pi));
PRAL_EXPORT_FAMILY(ZIBinomial, (double n, double p, double pi), (n, p, pi));
PRAL_EXPORT_FAMILY(ZIDelaporte, (double alpha, double beta, double lambda, double pi),
                   (alpha, beta, lambda, pi));
PRAL_EXPORT_FAMILY(ZIGeometric, (double p, double pi), (p, pi));
PRAL_EXPORT_FAMILY(ZIHypergeo, (double n, double D, double M, double pi), (n, D, M, pi));
PRAL_EXPORT_FAMILY(ZIInvHypergeo, (double s, double D, double M, double pi), (s, D, M, pi));
PRAL_EXPORT_FAMILY(ZILogarithmic, (double theta, double pi), (theta, pi));
PRAL_EXPORT_FAMILY(ZINegBin, (double s, double p, double pi), (s, p, pi));
PRAL_EXPORT_FAMILY(ZIPoisson, (double lambda, double pi), (lambda, pi));
PRAL_EXPORT_FAMILY(ZIPolya, (double alpha, double beta, double pi), (alpha, beta, pi));
PRAL_EXPORT_FAMILY(ZISkellam, (double Lambda1, double Lambda2, double P), (Lambda1, Lambda2, P));

PRAL_EXPORT_FAMILY(ZTBetaBinomial, (double n, double alpha, double beta), (n, alpha, beta));
PRAL_EXPORT_FAMILY(ZTBetaGeometric, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(ZTBetaNegBin, (double s, double alpha, double beta), (s, alpha, beta));
PRAL_EXPORT_FAMILY(ZTBinomial, (double n, double p), (n, p));
PRAL_EXPORT_FAMILY(ZTDelaporte, (double alpha, double beta, double lambda), (alpha, beta, lambda));
PRAL_EXPORT_FAMILY(ZTGeometric, (double p), (p));
PRAL_EXPORT_FAMILY(ZTHypergeo, (double n, double D, double M), (n, D, M));
PRAL_EXPORT_FAMILY(ZTInvHypergeo, (double s, double D, double M), (s, D, M));
PRAL_EXPORT_FAMILY(ZTNegBin, (double s, double p), (s, p));
PRAL_EXPORT_FAMILY(ZTPoisson, (double lambda), (lambda));
PRAL_EXPORT_FAMILY(ZTPolya, (double alpha, double beta), (alpha, beta));

#define PRAL_EXPORT_FOR_FIT(X, FAMILY, PARAMETERS, ARGUMENTS)                                                \
    bool Pral##X##_Core_for_fit(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,            \
                                const int* boundsMode, const double* boundsMin, const double* boundsMax,     \
                                const double* shift) {                                                       \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::value_member(out, pral::made<FAMILY> ARGUMENTS,                                     \
                                      {U, boundsMode, boundsMin, boundsMax, shift});                         \
        });                                                                                                  \
    }                                                                                                        \
    bool Pral##X##Prob_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,   \
                                    const int* cumulative, const int* boundsMode, const double* boundsMin,   \
                                    const double* boundsMax, const double* shift) {                          \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::probability_member(out, x, count, pral::made<FAMILY> ARGUMENTS, cumulative,         \
                                            {nullptr, boundsMode, boundsMin, boundsMax, shift},              \
                                            pral::Scale::plain);                                             \
        });                                                                                                  \
    }                                                                                                        \
    bool Pral##X##Prob10_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, \
                                      const int* cumulative, const int* boundsMode, const double* boundsMin, \
                                      const double* boundsMax, const double* shift) {                        \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::probability_member(out, x, count, pral::made<FAMILY> ARGUMENTS, cumulative,         \
                                            {nullptr, boundsMode, boundsMin, boundsMax, shift},              \
                                            pral::Scale::natural_log);                                       \
        });                                                                                                  \
    }                                                                                                        \
    static_assert(pral::Family<FAMILY>)

using ZIBetaBinomialForFit = pral::ZeroInflated<pral::RealCounts<pral::BetaBinomial>>;
PRAL_EXPORT_FOR_FIT(ZIBetaBinomial, ZIBetaBinomialForFit, (double n, double alpha, double beta, double pi),
                    (n, alpha, beta, pi));
using ZTBetaBinomialForFit = pral::ZeroTruncated<pral::RealCounts<pral::BetaBinomial>>;
PRAL_EXPORT_FOR_FIT(ZTBetaBinomial, ZTBetaBinomialForFit, (double n, double alpha, double beta),
                    (n, alpha, beta));
using ZIBinomialForFit = pral::ZeroInflated<pral::RealCounts<pral::Binomial>>;
PRAL_EXPORT_FOR_FIT(ZIBinomial, ZIBinomialForFit, (double n, double p, double pi), (n, p, pi));
using ZTBinomialForFit = pral::ZeroTruncated<pral::RealCounts<pral::Binomial>>;
PRAL_EXPORT_FOR_FIT(ZTBinomial, ZTBinomialForFit, (double n, double p), (n, p));
using ZINegBinForFit = pral::ZeroInflated<pral::RealCounts<pral::NegBin>, pral::NegBinChecks>;
PRAL_EXPORT_FOR_FIT(ZINegBin, ZINegBinForFit, (double s, double p, double pi), (s, p, pi));
using ZTNegBinForFit = pral::ZeroTruncated<pral::RealCounts<pral::NegBin>, pral::NegBinChecks>;
PRAL_EXPORT_FOR_FIT(ZTNegBin, ZTNegBinForFit, (double s, double p), (s, p));
