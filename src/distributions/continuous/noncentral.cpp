#include "distributions/continuous/noncentral.h"

#include "distributions/continuous/gamma.h"
#include "numerics/gauss_legendre.h"

namespace pral {

namespace {

/// The central chi-square of nu degrees of freedom times `factor` that has the mean and the variance of a noncentral one
/// (Patnaik 1949).
struct Patnaik {
    double factor, nu;
};
Patnaik patnaik(double nu, double noncentrality) {
    const double ratio = noncentrality / nu;
    return {(1 + 2 * ratio) / (1 + ratio), nu * ((1 + ratio) * ((1 + ratio) / (1 + 2 * ratio)))};
}

template <class Central>
double tail_quantile(const Central& central, Side side, double tail) {
    return side == Side::lower ? central.quantile(tail) : central.quantile_upper(tail);
}

/// ln of a tail that underflows: the integral of the density in y = ln x, where it falls at least as an exponential.
double log_far_tail(const NCChiSq& d, Side side, double x) {
    if (!(x > 0 && x <= numerics::kInfinity)) return -HUGE_VAL;
    const double outwards = side == Side::lower ? -1 : 1, here = d.log_density(x);
    const auto change = [&](double y) {
        const double factor = std::exp(outwards * y);
        return d.log_density(x * factor) - here + outwards * y;
    };
    constexpr double kStep = 0x1p-20;
    const double rate = (change(-kStep) - change(kStep)) / (2 * kStep);
    const double integral = numerics::integrate(40, 2, [&](double s) { return std::exp(change(s / rate)); });
    return here + std::log(x) + std::log(integral / rate);
}

}  // namespace

double NCChiSq::log_cumulative(double x) const {
    const double lower = cumulative(x);
    if (lower > 0.5) return numerics::log1p_fn(-survival(x));
    return lower > numerics::kLeastWithDigits || std::isnan(lower) ? std::log(lower)
                                                                   : log_far_tail(*this, Side::lower, x);
}

double NCChiSq::log_survival(double x) const {
    const double upper = survival(x);
    if (upper > 0.5) return numerics::log1p_fn(-cumulative(x));
    return upper > numerics::kLeastWithDigits || std::isnan(upper) ? std::log(upper)
                                                                   : log_far_tail(*this, Side::upper, x);
}

double NCChiSq::start(Side side, double tail) const {
    const auto [factor, central] = patnaik(nu, pnonc);
    return factor * tail_quantile(Gamma(0.5 * central, 2), side, tail);
}

double NCF::start(Side side, double tail) const {
    const auto [factor, central] = patnaik(nu1, ncp);
    return factor * (central / nu1) * tail_quantile(F(central, nu2), side, tail);
}

}  // namespace pral
