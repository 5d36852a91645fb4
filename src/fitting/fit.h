// Maximum-likelihood fits of the catalogue's distributions, and the evaluation of what was fitted.
#pragma once

#include <span>
#include <string>

#include "fitting/fitted_family.h"

namespace pral::fitting {

/// Stands for a bound, a percentile or a first parameter that is not given. The sampling functions have -DBL_MAX and null
/// pointers for this; 1e100 is a convention of the classic calls.
inline constexpr double kNotGiven = 1e100;
inline bool given(double bound) { return bound != kNotGiven; }

/// The bounds of a fit as the members of the families take them: a side that is not given is a percentile at its end.
class Bounds {
  public:
    Bounds(double lower, double upper)
        : mode_((fitting::given(lower) ? 0 : 2) + (fitting::given(upper) ? 0 : 1)),
          min_(fitting::given(lower) ? lower : 0),
          max_(fitting::given(upper) ? upper : 1) {}

    Modifiers modifiers(const double* U = nullptr) const {
        return given() ? Modifiers{U, &mode_, &min_, &max_, nullptr}
                       : Modifiers{U, nullptr, nullptr, nullptr, nullptr};
    }

  private:
    bool given() const { return mode_ != 3; }
    int mode_;
    double min_, max_;
};

/// The distribution to be fitted and its parameters: -DBL_MAX before a fit and after one that has failed.
struct FitDescriptor {
    Parameters params;
    int paramCount;
    std::string name;
    int code;

    /// For the catalogue row of that index.
    explicit FitDescriptor(int code);
    void clear() { params.fill(-numerics::kInfinity); }
};

/// How to fit. Bounds tell that the data are a truncated sample.
struct FitRequest {
    /// A replicate of the parameters by the parametric bootstrap instead of the fit.
    bool uncertainty = false;
    double TruncMin = kNotGiven, TruncMax = kNotGiven;
    /// Fitted as well, from this start; bounds hold before the shift is added.
    double* shift = nullptr;
    /// In addition to the estimator's.
    const double* startValues = nullptr;
    /// Fixes the count of families that begin with one; receives the count used.
    double* firstParameter = nullptr;
    /// In the cache of results, in place of the name.
    const char* key = nullptr;
};

/// Fits in place. False, with the error text: the data contradict the bounds, no start values, no likelihood, time-out.
bool FitDistribution(FitDescriptor& descriptor, std::span<const double> data, const FitRequest& request);

/// Whether all data lie within the bounds that are given.
bool within_bounds(std::span<const double> data, const FitRequest& request);

/// Fits and fills `out` with values of the fitted distribution: at percentile U, or draws when U is kNotGiven. Data outside
/// the bounds fail without a message.
bool FitAndEvaluate(FitDescriptor& descriptor, std::span<double> out, std::span<const double> data, double U,
                    const FitRequest& request);

/// The base-10 log-likelihood of the data at the descriptor's parameters, which may be real numbers where the distribution
/// has integers; -DBL_MAX where there is none.
double FitLogLikelihood(const FitDescriptor& descriptor, std::span<const double> data, double TruncMin,
                        double TruncMax, double shift = 0);

/// Fills `out` with values of the distribution at the descriptor's parameters; draws when U is null.
bool EvaluateFitted(const FitDescriptor& descriptor, std::span<double> out, const double* U, double TruncMin,
                    double TruncMax);

/// A fit may take this long, 60 s unless told otherwise; not a number and negative values count as 0.
void set_timeout(double seconds);

/// The message of the last fit that failed.
const std::string& last_message();

/// How often a likelihood has been evaluated since the library was loaded.
long evaluations();

}  // namespace pral::fitting
