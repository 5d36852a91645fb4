// The exported fits and likelihoods.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <string>

#include "base/turn.h"
#include "classic/call.h"
#include "classic/core_api.h"
#include "classic/fit_memory.h"
#include "classic/fits.h"
#include "classic/members.h"
#include "classic/short_cuts.h"
#include "classic/stream.h"
#include "distributions/families.h"
#include "distributions/real_counts.h"

namespace pral::classic {

namespace {

const fitting::FittedFamily& family_of(const FitDescriptor& descriptor) {
    const fitting::FittedFamily* family = fitted_family(descriptor.code);
    if (family == nullptr) throw std::invalid_argument(descriptor.name + " cannot be fitted");
    return *family;
}

/// Runs `body`; its failure leaves the text of the reason, where that has one.
template <class Body>
bool unless_failed(Body body) {
    try {
        body();
        return true;
    } catch (const fitting::Contradiction& bounds) {
        return fail_bounds(bounds.lower, bounds.upper, bounds.as_values);
    } catch (const fitting::Failure& failure) {
        return *failure.what() != '\0' && fail(failure.what());
    }
}

/// The parameters of a fit that is remembered, or that is made and remembered. Neither those with a shift nor those with
/// start values are: the key does not hold where they begin.
fitting::Parameters remembered_fit(const FitDescriptor& descriptor, std::span<const double> data,
                                   const FitCall& call, const fitting::Deadline& deadline) {
    FitMemory& memory = fit_memory();
    const bool kept = call.shift == nullptr && call.startValues == nullptr;
    const FitKey key = {call.key != nullptr ? call.key : descriptor.name,
                        descriptor.code,
                        call.uncertainty,
                        call.TruncMin.value_or(kNotGiven),
                        call.TruncMax.value_or(kNotGiven),
                        call.firstParameter.value_or(kNotGiven)};
    if (const fitting::Parameters* known = kept ? memory.results.find(key, data) : nullptr) return *known;
    const auto [parameters, evaluations] = fitting::fit(family_of(descriptor), data, call, deadline);
    memory.evaluations += evaluations;
    if (kept) memory.results.store(key, data, parameters);
    return parameters;
}

}  // namespace

FitDescriptor::FitDescriptor(int code_)
    : paramCount(catalogue()[static_cast<std::size_t>(code_)].parameter_count),
      name(catalogue()[static_cast<std::size_t>(code_)].name),
      code(code_) {
    clear();
}

bool FitDistribution(FitDescriptor& descriptor, std::span<const double> data, const FitCall& call) {
    const fitting::FittedFamily& family = family_of(descriptor);
    /// What a fit that fails, or ends by an exception, must leave behind.
    struct Undo {
        FitDescriptor& descriptor;
        double* shift;
        double shift_before = shift != nullptr ? *shift : 0;
        bool success = false;
        ~Undo() {
            if (success) return;
            descriptor.clear();
            if (shift != nullptr) *shift = shift_before;
        }
    } undo{descriptor, call.shift};
    if (data.empty()) return fail("Error: source array is not valid");
    std::vector<double> plain(data.begin(), data.end());
    for (double& value : plain) value += 0.0;  // no -0.0
    data = plain;
    try {
        undo.success = unless_failed([&] {
            const auto deadline = fitting::Deadline::in(fit_memory().timeout_seconds);
            descriptor.params = remembered_fit(descriptor, data, call, deadline);
            if (!call.uncertainty) return;
            const auto [parameters, evaluations] =
                fitting::refit(family, descriptor.params, data.size(), call, deadline, random_stream());
            descriptor.params = parameters;
            fit_memory().evaluations += evaluations;
        });
    } catch (const fitting::TimedOut&) {
        return fail(fitting::timeout_message(family));
    }
    return undo.success;
}

bool EvaluateFitted(const FitDescriptor& descriptor, std::span<double> out, std::optional<double> U,
                    std::optional<double> TruncMin, std::optional<double> TruncMax) {
    const double* const percentile = U ? &*U : nullptr;
    return unless_failed([&] {
        family_of(descriptor)
            .values(out, descriptor.params.data(), fitting::limits_of(TruncMin, TruncMax, kAboveMin),
                    percentile_given(percentile) ? percentile : nullptr, random_stream());
    });
}

bool FitAndEvaluate(FitDescriptor& descriptor, std::span<double> out, std::span<const double> data,
                    std::optional<double> U, const FitCall& call) {
    if (!within_bounds(data, call) || !FitDistribution(descriptor, data, call)) return false;
    if (!EvaluateFitted(descriptor, out, U, call.TruncMin, call.TruncMax)) return false;
    return out.empty() || std::fabs(out.front()) < numerics::kInfinity;
}

double FitLogLikelihood(const FitDescriptor& descriptor, std::span<const double> data,
                        std::optional<double> TruncMin, std::optional<double> TruncMax, double shift) {
    std::vector<double> moved(data.begin(), data.end());
    for (double& value : moved) value = value - shift + 0.0;  // no -0.0
    const double log = fitting::log_likelihood(family_of(descriptor), descriptor.params, Sample(moved),
                                               fitting::limits_of(TruncMin, TruncMax, kAboveMin));
    return numerics::finite_or_limit(log / numerics::kLn10);
}

namespace {

/// The arguments that all entry points share.
struct Data {
    const double* data;
    int n;
    bool uncertainty;
    double TruncMin, TruncMax;
    const char* key;

    bool check() const { return (data != nullptr && n > 0) || fail("Error: source array is not valid"); }
    std::span<const double> values() const { return {data, static_cast<std::size_t>(n)}; }
    FitCall call() const {
        FitCall request;
        request.uncertainty = uncertainty;
        request.TruncMin = if_given(TruncMin);
        request.TruncMax = if_given(TruncMax);
        request.key = key;
        return request;
    }
};

/// Fits share the time-out, the memory of results and the message of the last one that failed.
Turnstile fits;
constexpr Message kOverlap = "Error: another fit is running, and calls must not overlap";

bool is_set(const int* flag) { return flag != nullptr && *flag != 0; }

bool fit_values(int code, double* out, int count, const Data& data, double U) {
    return guarded(out, count, [&](int size) {
        if (!data.check()) return false;
        const Turnstile::Turn turn(fits);
        if (!turn) return fail(kOverlap);
        FitDescriptor descriptor(code);
        const std::span<double> values(out, static_cast<std::size_t>(size));
        const bool success = FitAndEvaluate(descriptor, values, data.values(), if_given(U), data.call());
        if (!success) std::ranges::fill(values, 0.0);
        return success;
    });
}

bool check_length(int given, int wanted) {
    if (given == wanted) return true;
    return fail("Error: Output array length(" + std::to_string(given) +
                ") must equal to number of distribution parameters(" + std::to_string(wanted) + ")");
}

bool fit_parameters(int code, double* out, int length, const Data& data, double* shift) {
    return guarded([&] {
        FitDescriptor descriptor(code);
        if (!check_length(length, descriptor.paramCount) || !pral::given({{"out", out}})) return false;
        std::copy_n(descriptor.params.begin(), length, out);  // -DBL_MAX: what a failure leaves
        if (!data.check()) return false;
        const Turnstile::Turn turn(fits);
        if (!turn) return fail(kOverlap);
        FitCall request = data.call();
        request.shift = shift;
        if (!FitDistribution(descriptor, data.values(), request)) return false;
        std::copy_n(descriptor.params.begin(), length, out);
        return true;
    });
}

/// One value, whatever the length of the array.
bool fit_values(int code, SAFEARRAY** out, const Data& data, double U) {
    if (!data.check()) return false;
    return with_locked_array(out, [&](double* locked, int elements) {
        return elements > 0 ? fit_values(code, locked, 1, data, U) : fail(kOutputArrayMessage);
    });
}

bool fit_parameters(int code, SAFEARRAY** out, const Data& data) {
    if (!data.check()) return false;
    return with_locked_array(out, [&](double* locked, int elements) {
        return fit_parameters(code, locked, elements, data, nullptr);
    });
}

/// Equal weights, or the spacings of sorted uniforms.
std::vector<double> weights_of(const Data& data) {
    std::vector<double> weights(data.values().size(), 1.0);
    if (data.uncertainty) {
        random_stream().fill(std::span(weights).first(weights.size() - 1));
        std::ranges::sort(weights);
        std::adjacent_difference(weights.begin(), weights.end(), weights.begin());
    }
    return weights;
}

/// The observations as a table, which may view the weights.
struct Empirical {
    const std::vector<double> weights;
    const Discrete table;
    explicit Empirical(const Data& data)
        : weights(weights_of(data)), table(data.data, data.n, weights.data(), data.n) {}
};

}  // namespace

}  // namespace pral::classic

using namespace pral::classic;

#define PRAL_EXPORT_FIT_VALUES(X)                                                                          \
    bool Pral##X##Fit_Core(double* out, const double* data, int n, int* uncertainty, double TruncMin,      \
                           double TruncMax, double U, int count, const char* key, bool) {                  \
        static const int code = code_of("Pral" #X);                                                        \
        return fit_values(code, out, count, {data, n, is_set(uncertainty), TruncMin, TruncMax, key}, U);   \
    }                                                                                                      \
    bool Pral##X##FitVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty, double TruncMin, \
                             double TruncMax, double U) {                                                  \
        static const int code = code_of("Pral" #X);                                                        \
        return fit_values(code, out, {data, n, uncertainty != 0, TruncMin, TruncMax, nullptr}, U);         \
    }
#define PRAL_EXPORT_FIT_PARAMETERS(X)                                                                     \
    bool Pral##X##FitP_Core(double* out, int outLen, const double* data, int n, int* uncertainty,         \
                            double TruncMin, double TruncMax, double* shift, int, int, const char* key,   \
                            bool) {                                                                       \
        static const int code = code_of("Pral" #X);                                                       \
        return fit_parameters(code, out, outLen, {data, n, is_set(uncertainty), TruncMin, TruncMax, key}, \
                              shift);                                                                     \
    }
#define PRAL_EXPORT_FIT_PARAMETERS_VB(X)                                                                    \
    bool Pral##X##FitPVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty, double TruncMin, \
                              double TruncMax) {                                                            \
        static const int code = code_of("Pral" #X);                                                         \
        return fit_parameters(code, out, {data, n, uncertainty != 0, TruncMin, TruncMax, nullptr});         \
    }
#define PRAL_EXPORT_FIT(X)        \
    PRAL_EXPORT_FIT_VALUES(X)     \
    PRAL_EXPORT_FIT_PARAMETERS(X) \
    PRAL_EXPORT_FIT_PARAMETERS_VB(X)

PRAL_FITTED_FAMILIES(PRAL_EXPORT_FIT)
PRAL_EXPORT_FIT_VALUES(Uniform)
PRAL_EXPORT_FIT_PARAMETERS(Uniform)
PRAL_EXPORT_FIT_VALUES(Student3)
PRAL_EXPORT_FIT_PARAMETERS_VB(Student3)

bool PralFitLogLikelihood_Core(double* out, const char* distribution, const double* parameters, int count,
                               const double* data, int n, double TruncMin, double TruncMax,
                               const double* shift) {
    return pral::guarded(out, 1, [&](int) {
        if (!pral::given({{"distribution", distribution}, {"parameters", parameters}})) return false;
        const int code = code_of("Pral" + std::string(distribution));
        if (fitted_family(code) == nullptr)
            return pral::fail("Error: there is no fit of " + std::string(distribution));
        const Data given = {data, n, false, TruncMin, TruncMax, nullptr};
        FitDescriptor descriptor(code);
        if (!check_length(count, descriptor.paramCount) || !given.check()) return false;
        const pral::Turnstile::Turn turn(fits);
        if (!turn) return pral::fail(kOverlap);
        std::copy_n(parameters, count, descriptor.params.begin());
        *out = FitLogLikelihood(descriptor, given.values(), if_given(TruncMin), if_given(TruncMax),
                                shift != nullptr ? *shift : 0);
        if (*out > -pral::numerics::kInfinity) *out *= pral::numerics::kLn10;
        return true;
    });
}

void PralSetFitTimeout(double seconds) { fit_memory().timeout_seconds = std::fmax(seconds, 0); }

bool PralDiscreteFit_Core(double* out, const double* data, int n, int* uncertainty, double TruncMin,
                          double TruncMax, double U, int count, const char* key, bool) {
    return pral::guarded(out, count, [&](int size) {
        const Data given = {data, n, is_set(uncertainty), TruncMin, TruncMax, key};
        if (!given.check() || !within_bounds(given.values(), given.call())) return false;
        const pral::Limits limits =
            pral::fitting::limits_of(if_given(TruncMin), if_given(TruncMax), kAboveMin);
        const int mode =
            limits.given ? (limits.min_is_percentile ? 2 : 0) + (limits.max_is_percentile ? 1 : 0) : -1;
        return pral::array_member({out, static_cast<std::size_t>(size)}, Empirical(given).table,
                                  {U == kNotGiven ? nullptr : &U, &mode, &limits.min, &limits.max, nullptr});
    });
}

namespace {

bool empirical_probability(double* out, double* x, int count, const Data& data, const int* cumulative,
                           const pral::Modifiers& modifiers, pral::Scale scale) {
    return pral::guarded(out, 1, [&](int) {
        return data.check() &&
               pral::probability_member(out, x, count, Empirical(data).table, cumulative, modifiers, scale);
    });
}

}  // namespace

bool PralDiscreteFitProb_Core(double* out, double* x, int count, const double* data, int n,
                              const int* uncertainty, const int* cumulative, const int* boundsMode,
                              const double* boundsMin, const double* boundsMax, const double* shift) {
    return empirical_probability(out, x, count, {data, n, is_set(uncertainty), kNotGiven, kNotGiven, nullptr},
                                 cumulative, {nullptr, boundsMode, boundsMin, boundsMax, shift},
                                 pral::Scale::plain);
}
bool PralDiscreteFitProb10_Core(double* out, double* x, int count, const double* data, int n,
                                const int* uncertainty, const int* cumulative, const int* boundsMode,
                                const double* boundsMin, const double* boundsMax, const double* shift) {
    return empirical_probability(out, x, count, {data, n, is_set(uncertainty), kNotGiven, kNotGiven, nullptr},
                                 cumulative, {nullptr, boundsMode, boundsMin, boundsMax, shift},
                                 pral::Scale::natural_log);
}

// The likelihoods whose integer parameters may be real numbers.
#define PRAL_EXPORT_LIKELIHOOD(X, TYPE, PARAMETERS, ARGUMENTS)                                               \
    bool Pral##X##Prob10_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, \
                                      const int* cumulative, const int* boundsMode, const double* boundsMin, \
                                      const double* boundsMax, const double* shift) {                        \
        return pral::guarded(out, 1, [&](int) {                                                              \
            return pral::probability_member(out, x, count, pral::classic::Form<TYPE> ARGUMENTS, cumulative,  \
                                            {nullptr, boundsMode, boundsMin, boundsMax, shift},              \
                                            pral::Scale::natural_log);                                       \
        });                                                                                                  \
    }

PRAL_EXPORT_LIKELIHOOD(Erlang, pral::RealCounts<pral::Erlang>, (double m, double beta), (m, beta))
PRAL_EXPORT_LIKELIHOOD(ChiSq, pral::RealCounts<pral::ChiSq>, (double nu), (nu))
PRAL_EXPORT_LIKELIHOOD(Chi, pral::RealCounts<pral::Chi>, (double nu), (nu))
PRAL_EXPORT_LIKELIHOOD(Student, pral::RealCounts<pral::Student>, (double nu), (nu))
PRAL_EXPORT_LIKELIHOOD(Student3, pral::RealCounts<pral::Student3>, (double mu, double sigma, double nu),
                       (mu, sigma, nu))
PRAL_EXPORT_LIKELIHOOD(NCF, pral::NCF, (double nu1, double nu2, double ncp), (nu1, nu2, ncp))
PRAL_EXPORT_LIKELIHOOD(Binomial, pral::RealCounts<pral::Binomial>, (double n, double p), (n, p))
PRAL_EXPORT_LIKELIHOOD(NegBin, pral::RealCounts<pral::NegBin>, (double s, double p), (s, p))
PRAL_EXPORT_LIKELIHOOD(BetaBinomial, pral::RealCounts<pral::BetaBinomial>,
                       (double n, double alpha, double beta), (n, alpha, beta))
