// The members between whose values a fit searches: zero-inflated and -truncated families with a real n or s.
#include "classic/family_exports.h"
#include "classic/variants.h"

#define PRAL_EXPORT_FOR_FIT(X, FAMILY, PARAMETERS, ARGUMENTS)                                                \
    bool Pral##X##_Core_for_fit(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,            \
                                const int* boundsMode, const double* boundsMin, const double* boundsMax,     \
                                const double* shift) {                                                       \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::value_member(out, pral::made<pral::classic::Form<FAMILY>> ARGUMENTS,                \
                                      {U, boundsMode, boundsMin, boundsMax, shift});                         \
        });                                                                                                  \
    }                                                                                                        \
    bool Pral##X##Prob_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,   \
                                    const int* cumulative, const int* boundsMode, const double* boundsMin,   \
                                    const double* boundsMax, const double* shift) {                          \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::probability_member(                                                                 \
                out, x, count, pral::made<pral::classic::Form<FAMILY>> ARGUMENTS, cumulative,                \
                {nullptr, boundsMode, boundsMin, boundsMax, shift}, pral::Scale::plain);                     \
        });                                                                                                  \
    }                                                                                                        \
    bool Pral##X##Prob10_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, \
                                      const int* cumulative, const int* boundsMode, const double* boundsMin, \
                                      const double* boundsMax, const double* shift) {                        \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::probability_member(                                                                 \
                out, x, count, pral::made<pral::classic::Form<FAMILY>> ARGUMENTS, cumulative,                \
                {nullptr, boundsMode, boundsMin, boundsMax, shift}, pral::Scale::natural_log);               \
        });                                                                                                  \
    }                                                                                                        \
    static_assert(pral::Family<pral::classic::Form<FAMILY>>)

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
using ZINegBinForFit = pral::ZeroInflated<pral::RealCounts<pral::NegBin>>;
PRAL_EXPORT_FOR_FIT(ZINegBin, ZINegBinForFit, (double s, double p, double pi), (s, p, pi));
using ZTNegBinForFit = pral::ZeroTruncated<pral::RealCounts<pral::NegBin>>;
PRAL_EXPORT_FOR_FIT(ZTNegBin, ZTNegBinForFit, (double s, double p), (s, p));
