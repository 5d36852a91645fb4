// Arrays of densities, probabilities, quantiles and means.
#include <cmath>
#include <span>
#include <vector>

#include "distributions/expectations.h"
#include "numerics/each.h"
#include "objects/handles.h"

using namespace pral::objects;
using pral::Function;
using pral::Univariate;

namespace {

/// The arrays of a call, once they are known to be there.
template <class Body>
pral_status over(const pral_distribution* distribution, const double* in, double* out, size_t n,
                 pral_error* error, Body body) {
    return guarded(error, [&] {
        const Univariate& d = checked(distribution);
        required_array(in, n, "in");
        required_array(out, n, "out");
        body(d, std::span<const double>(in, n), std::span<double>(out, n));
    });
}

pral_status evaluate(Function function, const pral_distribution* distribution, const double* in, double* out,
                     size_t n, pral_error* error) {
    return over(distribution, in, out, n, error,
                [&](const Univariate& d, auto from, auto to) { d.evaluate(function, from, to); });
}

}  // namespace

#define PRAL_EVALUATION(NAME, FUNCTION)                                                              \
    pral_status NAME(const pral_distribution* distribution, const double* in, double* out, size_t n, \
                     pral_error* error) {                                                            \
        return evaluate(Function::FUNCTION, distribution, in, out, n, error);                        \
    }
PRAL_EVALUATION(pral_logpdf, log_density)
PRAL_EVALUATION(pral_cdf, cumulative)
PRAL_EVALUATION(pral_logcdf, log_cumulative)
PRAL_EVALUATION(pral_sf, survival)
PRAL_EVALUATION(pral_logsf, log_survival)
PRAL_EVALUATION(pral_quantile, quantile)
PRAL_EVALUATION(pral_upper_quantile, upper_quantile)
#undef PRAL_EVALUATION

pral_status pral_pdf(const pral_distribution* distribution, const double* in, double* out, size_t n,
                     pral_error* error) {
    return over(distribution, in, out, n, error, [](const Univariate& d, auto from, auto to) {
        d.evaluate(Function::log_density, from, to);
        pral::numerics::exp_each(to);
    });
}

#define PRAL_EVALUATION(NAME, EXPRESSION)                                                            \
    pral_status NAME(const pral_distribution* distribution, const double* in, double* out, size_t n, \
                     pral_error* error) {                                                            \
        return over(distribution, in, out, n, error, [](const Univariate& d, auto from, auto to) {   \
            for (std::size_t i = 0; i < from.size(); ++i) to[i] = EXPRESSION;                        \
        });                                                                                          \
    }
PRAL_EVALUATION(pral_log_quantile, pral::log_quantile(d, pral::Side::lower, from[i]))
PRAL_EVALUATION(pral_log_upper_quantile, pral::log_quantile(d, pral::Side::upper, from[i]))
PRAL_EVALUATION(pral_upper_tail_mean, pral::tail_mean(d, pral::Side::upper, from[i]))
PRAL_EVALUATION(pral_lower_tail_mean, pral::tail_mean(d, pral::Side::lower, from[i]))
PRAL_EVALUATION(pral_limited_mean, pral::limited_mean(d, from[i]))
#undef PRAL_EVALUATION

pral_status pral_moments(const pral_distribution* distribution, pral_moment_values* out, pral_error* error) {
    return guarded(error, [&] {
        pral_moment_values& target = sized(out, "out");
        const pral::Moments moments = pral::moments(checked(distribution));
        target.mean = moments.mean;
        target.variance = moments.variance;
        target.skewness = moments.skewness;
        target.excess_kurtosis = moments.kurtosis;
    });
}

pral_status pral_mode(const pral_distribution* distribution, double* out, pral_error* error) {
    return guarded(error, [&] { required(out, "out") = pral::mode(checked(distribution)); });
}

pral_status pral_support(const pral_distribution* distribution, double* lower, double* upper,
                         pral_error* error) {
    return guarded(error, [&] {
        const auto [from, to] = checked(distribution).support();
        required(lower, "lower");
        required(upper, "upper");
        *lower = from;
        *upper = to;
    });
}
