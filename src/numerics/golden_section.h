// Minimisation of a function of one variable without derivatives.
#pragma once

#include <cmath>

namespace pral::numerics {

/// The abscissa of a minimum of `f` between a and b (Brent 1973, chapter 5: golden section and successive parabolic
/// interpolation), within about tol/3 + 1.5e-8 |x|. The constant is the rounded golden ratio 0.381966. At most 1000
/// evaluations; a NaN end comes back as it is.
template <class Function>
double golden_section_minimise(Function&& f, double a, double b, double tol) {
    constexpr double kGolden = 0.381966;
    constexpr double kRelative = 0x1p-26;
    constexpr int kMaxSteps = 1000;
    double x = a + kGolden * (b - a), w = x, v = x;
    if (std::isnan(x)) return x;
    double d = 0, e = 0;
    double fx = f(x), fw = fx, fv = fx;
    for (int i = 0; i < kMaxSteps; ++i) {
        const double middle = 0.5 * (a + b);
        const double near = kRelative * std::fabs(x) + tol / 3, apart = 2 * near;
        if (!(std::fabs(x - middle) > apart - 0.5 * (b - a))) break;
        double p = 0, q = 0, before_last = 0;
        if (std::fabs(e) > near) {  // a parabola through the three best points
            const double r = (x - w) * (fx - fv);
            q = (x - v) * (fx - fw);
            p = (x - v) * q - (x - w) * r;
            q = 2 * (q - r);
            if (q > 0) p = -p;
            q = std::fabs(q);
            before_last = e;
            e = d;
        }
        if (std::fabs(p) >= std::fabs(0.5 * q * before_last) || p <= q * (a - x) || p >= q * (b - x)) {
            e = (x < middle ? b : a) - x;
            d = kGolden * e;
        } else {
            d = p / q;
            const double u = x + d;
            if (u - a < apart || b - u < apart) d = x < middle ? near : -near;
        }
        const double u = x + (std::fabs(d) >= near ? d : d > 0 ? near : -near);
        const double fu = f(u);
        if (fu <= fx) {
            (u < x ? b : a) = x;
            v = w, fv = fw;
            w = x, fw = fx;
            x = u, fx = fu;
            continue;
        }
        (u < x ? a : b) = u;
        if (fu <= fw || w == x) {
            v = w, fv = fw;
            w = u, fw = fu;
        } else if (fu <= fv || v == x || v == w) {
            v = u, fv = fu;
        }
    }
    return x;
}

}  // namespace pral::numerics
