#include "distributions/continuous/noncentral.h"

#include "distributions/continuous/gamma.h"
#include "distributions/exports.h"

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

}  // namespace

double NCChiSq::start(Side side, double tail) const {
    const auto [factor, central] = patnaik(nu, pnonc);
    return factor * tail_quantile(Gamma(0.5 * central, 2), side, tail);
}

double NCF::start(Side side, double tail) const {
    const auto [factor, central] = patnaik(nu1, ncp);
    return factor * (central / nu1) * tail_quantile(F(central, nu2), side, tail);
}

}  // namespace pral

PRAL_EXPORT_FAMILY(NCChiSq, (double nu, double pnonc), (nu, pnonc));
PRAL_EXPORT_FAMILY(NCF, (double nu1, double nu2, double ncp), (nu1, nu2, ncp));
