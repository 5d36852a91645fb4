// Every special function on hostile arguments: each must come back, at once.
#include <cstdio>

#include "input.h"
#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"
#include "numerics/classical/bessel.h"
#include "numerics/classical/gamma_quantile.h"
#include "numerics/classical/incomplete_beta.h"
#include "numerics/classical/incomplete_gamma.h"
#include "numerics/classical/poisson.h"
#include "numerics/classical/reporting.h"
#include "numerics/elementary.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"
#include "numerics/noncentral_beta.h"
#include "numerics/noncentral_chi_square.h"
#include "numerics/normal.h"
#include "numerics/owens_t.h"
#include "numerics/toms708.h"

namespace pral::numerics {
namespace {

using Input = fuzz::Input;

constexpr double (*kOneArgument[])(double) = {
    erf,
    erfc,
    normal_cumulative,
    normal_survival,
    normal_log_cumulative,
    normal_density,
    normal_quantile,
    normal_quantile_upper,
    gamma,
    classical::lgam,
    lgam_quiet,
    log_gamma_fn,
    gamma_fn,
    lgamma_correction,
    lgamma_1p,
    log_gamma,
    log1p_fn,
    expm1_fn,
    log1p_minus_x,
    stirling_error,
    digamma_708,
};

constexpr double (*kTwoArguments[])(double, double) = {
    gamma_lower,
    gamma_upper,
    log_gamma_lower,
    log_gamma_upper,
    gamma_density,
    log_gamma_density,
    gamma_lower_inverse,
    gamma_upper_inverse,
    incomplete_gamma_lower,
    incomplete_gamma_upper,
    log_incomplete_gamma_lower,
    log_incomplete_gamma_upper,
    binomial_deviance,
    log_beta,
    owens_t,
    skew_normal_cumulative,
    skew_normal_survival,
    student_lower,
    [](double x, double alpha) { return gamma_cdf(x, alpha, false, true); },
    student_quantile,
    log_bessel_i,
};

constexpr double (*kThreeArguments[])(double, double, double) = {
    incomplete_beta,
    incbi,
    noncentral_chi_square_lower,
    noncentral_chi_square_upper,
    noncentral_chi_square_log_density,
    [](double a, double b, double x) { return beta_lower(a, b, x, 1 - x); },
    [](double a, double b, double x) { return log_beta_upper(a, b, x, 1 - x); },
    [](double a, double b, double x) { return log_beta_density(a, b, x, 1 - x); },
    [](double a, double b, double p) { return beta_lower_inverse(a, b, p).x; },
    [](double a, double b, double q) { return beta_upper_inverse(a, b, q).y; },
    [](double a, double b, double x) {
        double w = 0;
        incomplete_beta_ratio(w, x, a, b);
        return w;
    },
    [](double p, double alpha, double scale) { return gamma_quantile(p, alpha, scale, true, false); },
};

double noncentral_beta_member(unsigned which, double a, double b, double lambda, double x) {
    const NoncentralBeta d(a, b, lambda);
    switch (which % 3) {
        case 0:
            return d.lower(x, 1 - x);
        case 1:
            return d.upper(x, 1 - x);
        default:
            return d.log_density(x, 1 - x);
    }
}

template <class Table>
auto pick(const Table& table, unsigned choice) {
    return table[choice % (sizeof table / sizeof *table)];
}

}  // namespace
}  // namespace pral::numerics

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pral::numerics;
    static const bool silent =
        std::freopen("/dev/null", "w", stdout) != nullptr;  // the classical routines report there
    Input input(data, size);
    const unsigned arity = silent ? input.byte() % 4 : 0, choice = input.byte();
    const double a = input.number(), b = input.number(), c = input.number(), d = input.number();
    volatile double result;
    if (arity == 0)
        result = pick(kOneArgument, choice)(a);
    else if (arity == 1)
        result = pick(kTwoArguments, choice)(a, b);
    else if (arity == 2)
        result = pick(kThreeArguments, choice)(a, b, c);
    else
        result = noncentral_beta_member(choice, a, b, c, d);
    (void)result;
    return 0;
}
