// Maximum-likelihood fits of univariate families, and the evaluation of what was fitted. Nothing is kept between calls:
// time, numbers of a stream and memory are the caller's.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "fitting/failure.h"
#include "fitting/fitted_family.h"

namespace pral::fitting {

/// Stands for a bound or a first parameter that is not given.
inline constexpr double kNotGiven = 1e100;
inline bool given(double bound) { return bound != kNotGiven; }

/// The bounds of a fit: a side that is not given is a percentile at its end.
inline Limits limits_of(double lower, double upper) {
    const bool below = given(lower), above = given(upper);
    if (!below && !above) return {};
    return {below ? lower : 0, above ? upper : 1, !below, !above, true};
}

/// What is needed to fit the family of that name; null where it cannot be fitted.
const FittedFamily* fitted_family(std::string_view name);

/// How to fit. Bounds tell that the data are a truncated sample.
struct FitRequest {
    double TruncMin = kNotGiven, TruncMax = kNotGiven;
    /// Fitted as well, from this start; bounds hold before the shift is added.
    double* shift = nullptr;
    /// In addition to the estimator's.
    const double* startValues = nullptr;
    /// Fixes the count of families that begin with one; receives the count used.
    double* firstParameter = nullptr;
};

struct FitResult {
    /// -DBL_MAX in the places that the family does not use.
    Parameters parameters;
    /// How often the likelihood has been evaluated.
    long evaluations;
};

/// Fits. Throws Failure when the data contradict the bounds, or give no start values or no likelihood, and TimedOut at the
/// deadline.
FitResult fit(const FittedFamily& family, std::span<const double> data, const FitRequest& request,
              const Deadline& deadline);

/// A replicate of fitted parameters by the parametric bootstrap: the fit to as many draws as there were data. Of `request`
/// it takes bounds and shift.
FitResult refit(const FittedFamily& family, const Parameters& fitted, std::size_t count,
                const FitRequest& request, const Deadline& deadline, RandomStream& stream);

/// What a fit that has reached its deadline has to say.
std::string timeout_message(const FittedFamily& family);

/// Whether all data lie within the bounds that are given.
bool within_bounds(std::span<const double> data, const FitRequest& request);

/// The natural log-likelihood of the data, which may be at real numbers where the family has integers; -inf where there is none.
double log_likelihood(const FittedFamily& family, const Parameters& parameters, const Sample& x,
                      const Limits& limits);

}  // namespace pral::fitting
