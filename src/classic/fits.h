// Classic fits: those of fitting/ with the time-out, the memory of results, the random stream and the error text of the
// process.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "classic/catalogue.h"
#include "classic/forms.h"
#include "fitting/fit.h"

namespace pral::classic {

/// Stands for a bound, a percentile or a first parameter that is not given.
inline constexpr double kNotGiven = 1e100;
inline std::optional<double> if_given(double number) {
    return number != kNotGiven ? std::optional(number) : std::nullopt;
}

/// The distribution to be fitted and its parameters: -DBL_MAX before a fit and after one that has failed.
struct FitDescriptor {
    fitting::Parameters params;
    int paramCount;
    std::string name;
    int code;

    /// For the catalogue row of that index.
    explicit FitDescriptor(int code);
    void clear() { params.fill(-numerics::kInfinity); }
};

struct FitCall : fitting::FitRequest {
    FitCall() { above_min = kAboveMin; }
    /// A replicate of the parameters by the parametric bootstrap instead of the fit.
    bool uncertainty = false;
    /// In the memory of results, in place of the name.
    const char* key = nullptr;
};

/// Fits in place. False, with the error text, when the fit has failed or reached the time-out; start values that a family
/// refuses without a message leave the text as it is.
bool FitDistribution(FitDescriptor& descriptor, std::span<const double> data, const FitCall& call);

/// Fits and fills `out` with values of the fitted distribution: at percentile U, or draws without one, or with -1. Data outside
/// the bounds fail without a message.
bool FitAndEvaluate(FitDescriptor& descriptor, std::span<double> out, std::span<const double> data,
                    std::optional<double> U, const FitCall& call);

/// The base-10 log-likelihood of the data at the descriptor's parameters, which may be real numbers where the distribution
/// has integers; -DBL_MAX where there is none.
double FitLogLikelihood(const FitDescriptor& descriptor, std::span<const double> data,
                        std::optional<double> TruncMin, std::optional<double> TruncMax, double shift = 0);

/// Fills `out` with values of the distribution at the descriptor's parameters, likewise.
bool EvaluateFitted(const FitDescriptor& descriptor, std::span<double> out, std::optional<double> U,
                    std::optional<double> TruncMin, std::optional<double> TruncMax);

}  // namespace pral::classic
