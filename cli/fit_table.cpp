// The fits of the public header's list.
#include "fit_table.h"

#include <pral_core/automation.h>
#include <pral_core/core_api.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "classic_table.h"
#include "errors.h"

namespace cli {

namespace {

using FitFunction = decltype(&PralNormalFitP_Core);

struct FreeArray {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};

/// Student3 gives its parameters in an automation array only, and takes no shift: it has a location of its own.
bool fit_student3(double* out, int length, const double* data, int n, int* uncertainty, double min,
                  double max, double* /*shift*/, int, int, const char*, bool) {
    const auto elements = static_cast<unsigned>(length);
    const std::unique_ptr<SAFEARRAY, FreeArray> array(SafeArrayCreateVector(VT_R8, 0, elements));
    if (!array) throw std::bad_alloc();
    SAFEARRAY* target = array.get();
    const bool replicate = uncertainty && *uncertainty != 0;
    const bool success = PralStudent3FitPVB_Core(&target, data, n, replicate, min, max);
    std::copy_n(static_cast<const double*>(array->pvData), length, out);
    return success;
}

const std::map<std::string, FitFunction, std::less<>>& fit_functions() {
#define PRAL_FIT_ELEMENT(X) {#X, Pral##X##FitP_Core},
    static const std::map<std::string, FitFunction, std::less<>> functions = {
        PRAL_FITTED_FAMILIES(PRAL_FIT_ELEMENT) PRAL_FIT_ELEMENT(Uniform){"Student3", fit_student3}};
#undef PRAL_FIT_ELEMENT
    return functions;
}

/// To the fits a bound of 1e100 is one that was not given; `none` is the infinity that bounds nothing.
double bound_or_none(const std::optional<double>& bound, double none) {
    constexpr double kNone = 1e100;
    return bound.value_or(none) == none ? kNone : classic_number(*bound);
}

}  // namespace

bool can_be_fitted(const Family& family) { return fit_functions().contains(family.name); }

int free_parameters(const Family& family) {
    // Any base of the logarithm gives the same distributions.
    const bool has_base = family.name == "LognormalB";
    return static_cast<int>(family.parameters.size()) - (has_base ? 1 : 0);
}

Fitted fit(const Family& family, const FitData& data) {
    const FitFunction function = fit_functions().at(family.name);
    const int n = static_cast<int>(data.values.size()), count = static_cast<int>(family.parameters.size());
    const double min = bound_or_none(data.min, -INFINITY), max = bound_or_none(data.max, INFINITY);
    Fitted fitted = {std::vector<double>(family.parameters.size()), std::nullopt, 0};
    if (data.shift && function != fit_student3) fitted.shift = 0;
    double* const shift = fitted.shift ? &*fitted.shift : nullptr;
    require(function(fitted.parameters.data(), count, data.values.data(), n, nullptr, min, max, shift, 0, 0,
                     nullptr, false));
    require(PralFitLogLikelihood_Core(&fitted.log_likelihood, family.name.c_str(), fitted.parameters.data(),
                                      count, data.values.data(), n, min, max, shift));
    return fitted;
}

}  // namespace cli
