// Maximum-likelihood fits of univariate families, and the evaluation of what was fitted. Nothing is kept between calls:
// time, numbers of a stream and memory are the caller's.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "fitting/failure.h"
#include "fitting/fitted_family.h"

namespace pral::fitting {

/// The bounds of a fit: a side that is not given is a percentile at its end.
inline Limits limits_of(std::optional<double> lower, std::optional<double> upper, bool above_lower = false) {
    if (!lower && !upper) return {};
    return {lower.value_or(0), upper.value_or(1), !lower, !upper, true, above_lower};
}

/// What is needed to fit the family of that name; null where it cannot be fitted.
const FittedFamily* fitted_family(std::string_view name);

/// How to fit. Bounds tell that the data are a truncated sample.
struct FitRequest {
    std::optional<double> TruncMin, TruncMax;
    /// Counts have been observed above TruncMin, not from it on.
    bool above_min = false;
    /// Fitted as well, from this start; bounds hold before the shift is added.
    double* shift = nullptr;
    /// In addition to the estimator's.
    const double* startValues = nullptr;
    /// Fixes the count of families that begin with one.
    std::optional<double> firstParameter;
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
