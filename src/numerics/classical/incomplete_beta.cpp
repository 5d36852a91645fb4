#include "numerics/classical/incomplete_beta.h"

#include <cmath>
#include <utility>

#include "numerics/classical/error_report.h"
#include "numerics/classical/reporting.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"
#include "numerics/toms708.h"

namespace pral::numerics {

namespace {

constexpr double kMachEp = 0x1p-53;
constexpr double kBelowOne = 0.9999999999999999;
constexpr double kBig = 0x1p52, kBigInverse = 0x1p-52;
constexpr double kMaxLog = 709.782712893384, kMinLog = -745.1332191019412;
constexpr double kMaxGamma = 171.6243769563027;
constexpr int kMaxFractionTerms = 300;
// b x <= 1 and x <= 0.95 need some 700; more only for arguments that the callers exclude.
constexpr int kMaxSeriesTerms = 10000;

double log_beta_inverse(double a, double b) { return lgam_quiet(a + b) - lgam_quiet(a) - lgam_quiet(b); }

/// The continued fraction with the partial numerators -z (a+m)(f+m)/((a+2m)(a+2m+1)) and
/// z (m+1)(g+m)/((a+2m+1)(a+2m+2)); `df`, `dg` = +1 or -1 is the direction in which f and g run.
double beta_fraction(double a, double f, double df, double g, double dg, double z) {
    double p0 = 0, q0 = 1, p1 = 1, q1 = 1, answer = 1, ratio = 1;
    for (int m = 0; m < kMaxFractionTerms; ++m) {
        const double even = a + 2 * m;
        const double odd_numerator = -(z * (a + m) * (f + df * m)) / (even * (even + 1));
        double p = p1 + p0 * odd_numerator, q = q1 + q0 * odd_numerator;
        p0 = p1, q0 = q1, p1 = p, q1 = q;
        const double even_numerator = z * (m + 1) * (g + dg * m) / ((even + 1) * (even + 2));
        p = p1 + p0 * even_numerator, q = q1 + q0 * even_numerator;
        p0 = p1, q0 = q1, p1 = p, q1 = q;

        if (q != 0) ratio = p / q;
        double change = 1;
        if (ratio != 0) {
            change = std::fabs((answer - ratio) / ratio);
            answer = ratio;
        }
        if (change < 3 * kMachEp) break;
        double scale = 1;
        if (std::fabs(q) + std::fabs(p) > kBig) scale = kBigInverse;
        if (std::fabs(q) < kBigInverse || std::fabs(p) < kBigInverse) scale = kBig;
        p0 *= scale, q0 *= scale, p1 *= scale, q1 *= scale;
    }
    return answer;
}

/// I_x(a, b) for x up to the mean a/(a + b), w = 1 - x.
double incomplete_beta_fraction(double a, double b, double x, double w) {
    double fraction;
    if ((a + b - 2) * x - (a - 1) < 0) {
        fraction = beta_fraction(a, a + b, 1, b - 1, -1, x);
    } else {
        fraction = beta_fraction(a, b - 1, -1, a + b, 1, x / w) / w;
    }
    const double log_xa = a * std::log(x), log_wb = b * std::log(w);
    if (a + b < kMaxGamma && std::fabs(log_xa) < kMaxLog && std::fabs(log_wb) < kMaxLog) {
        return std::pow(w, b) * std::pow(x, a) / a * fraction *
               (numerics::gamma(a + b) / (numerics::gamma(a) * gamma(b)));
    }
    const double t = log_beta_inverse(a, b) + log_xa + log_wb + std::log(fraction / a);
    // The threshold is the positive one: this branch yields 0.
    return t >= -kMinLog ? std::exp(t) : 0;
}

/// I_x(a, b) as the inverse sees it.
double evaluate(double a, double b, double x) {
    double w;
    return incomplete_beta_ratio(w, x, a, b) ? w : incomplete_beta(a, b, x);
}

/// The search of incbi: a bracket [x0, x1] with the values yl, yh, in the tail `swapped` says.
class InverseSearch {
  public:
    InverseSearch(double a, double b, double y) : a_given(a), b_given(b), y_given(y) { orient(false); }

    double run() {
        bool halving = true;
        double tolerance = 1e-6;
        if (a_given <= 1 || b_given <= 1) {
            move_to(a / (a + b));
        } else {
            tolerance = 1e-4;
            const Next next = start_from_normal();
            if (next == Next::done) return finish();
            halving = next == Next::halve;
        }
        if (halving && halve(tolerance) == Next::done) return finish();
        // Newton runs once; where it fails, halving alone finishes with a tight tolerance.
        if (newton() == Next::halve) halve(256 * kMachEp);
        return finish();
    }

  private:
    enum class Next { halve, newton, done };

    double a_given, b_given, y_given;
    bool swapped = false;
    double a = 0, b = 0, target = 0, x = 0, y = 0;
    double x0 = 0, yl = 0, x1 = 1, yh = 1;

    void orient(bool to_swapped) {
        swapped = to_swapped;
        a = swapped ? b_given : a_given;
        b = swapped ? a_given : b_given;
        target = swapped ? 1 - y_given : y_given;
    }

    void move_to(double new_x) {
        x = new_x;
        y = evaluate(a, b, x);
    }

    double finish() const {
        if (!swapped) return x;
        return x <= kMachEp ? kBelowOne : 1 - x;
    }

    Next underflow() {
        math_error_report("incbi", MathError::underflow);
        x = 0;
        return Next::done;
    }

    Next start_from_normal() {
        double deviate = -normal_quantile(y_given);
        if (y_given > 0.5) {
            orient(true);
            deviate = -deviate;
        }
        const double l = (deviate * deviate - 3) / 6, ra = 1 / (2 * a - 1), rb = 1 / (2 * b - 1);
        const double h = 2 / (ra + rb);
        const double d = 2 * (deviate * std::sqrt(h + l) / h - (rb - ra) * (l + 5.0 / 6 - 2 / (3 * h)));
        if (d < kMinLog) return underflow();
        move_to(a / (a + b * std::exp(d)));
        return std::fabs((y - target) / target) < 0.2 ? Next::newton : Next::halve;
    }

    Next halve(double tolerance) {
        // The tails are exchanged once in each direction at most when the ratio is monotone.
        constexpr int kMaxRestarts = 4, kMaxHalvings = 100;
        for (int restart = 0; restart <= kMaxRestarts; ++restart) {
            int direction = 0;
            double fraction = 0.5;
            bool exchanged = false;
            for (int i = 0; i < kMaxHalvings && !exchanged; ++i) {
                if (i > 0) {
                    double next = x0 + fraction * (x1 - x0);
                    if (next == 1) next = kBelowOne;
                    if (next == 0) {
                        fraction = 0.5;
                        next = x0 + fraction * (x1 - x0);
                        if (next == 0) return underflow();
                    }
                    move_to(next);
                    if (std::fabs((x1 - x0) / (x1 + x0)) < tolerance) return Next::newton;
                    if (std::fabs((y - target) / target) < tolerance) return Next::newton;
                }
                if (y < target) {
                    x0 = x, yl = y;
                    fraction = raised(fraction, direction);
                    if (x0 > 0.75) {
                        exchange_tails();
                        exchanged = true;
                    }
                } else {
                    x1 = x;
                    if (swapped && x1 < kMachEp) {
                        x = 0;
                        return Next::done;
                    }
                    yh = y;
                    fraction = lowered(fraction, direction);
                }
            }
            if (!exchanged) break;
        }
        if (x0 >= kBelowOne) {
            math_error_report("incbi", MathError::partial_loss);
            x = 1 - kMachEp;
            return Next::done;
        }
        return x <= 0 ? underflow() : Next::newton;
    }

    double raised(double fraction, int& direction) const {
        const int count = direction++;
        if (count < 0) {
            direction = 1;
            return 0.5;
        }
        if (count > 3) return 1 - (1 - fraction) * (1 - fraction);
        return count > 1 ? 0.5 * fraction + 0.5 : (target - y) / (yh - yl);
    }

    double lowered(double fraction, int& direction) const {
        const int count = direction--;
        if (count > 0) {
            direction = -1;
            return 0.5;
        }
        if (count < -3) return fraction * fraction;
        return count < -1 ? 0.5 * fraction : (y - target) / (yh - yl);
    }

    void exchange_tails() {
        orient(!swapped);
        move_to(1 - x);
        x0 = 0, yl = 0, x1 = 1, yh = 1;
    }

    Next newton() {
        constexpr int kMaxSteps = 8;
        const double log_factor = classical::lgam(a + b) - classical::lgam(a) - classical::lgam(b);
        for (int i = 0; i < kMaxSteps; ++i) {
            if (i > 0) y = evaluate(a, b, x);
            if (y < yl) {
                x = x0, y = yl;
            } else if (y > yh) {
                x = x1, y = yh;
            } else if (y < target) {
                x0 = x, yl = y;
            } else {
                x1 = x, yh = y;
            }
            if (x == 1 || x == 0) break;
            const double log_slope = (a - 1) * std::log(x) + (b - 1) * std::log(1 - x) + log_factor;
            if (log_slope < kMinLog) return Next::done;
            if (log_slope > kMaxLog) break;
            const double step = (y - target) / std::exp(log_slope);
            double next = x - step;
            if (next <= x0) {
                next = x0 + 0.5 * ((x - x0) / (x1 - x0)) * (x - x0);
                if (next <= 0) break;
            }
            if (next >= x1) {
                next = x1 - 0.5 * ((x1 - x) / (x1 - x0)) * (x1 - x);
                if (next >= 1) break;
            }
            x = next;
            if (std::fabs(step / x) < 128 * kMachEp) return Next::done;
        }
        return Next::halve;
    }
};

}  // namespace

double incomplete_beta_series(double a, double b, double x) {
    const double inverse_a = 1 / a;
    double t = (1 - b) * x;
    const double first = t / (a + 1);
    double term = first, sum = 0;
    for (int n = 2; n < kMaxSeriesTerms && std::fabs(term) > kMachEp * inverse_a; ++n) {
        t *= (n - b) * x / n;
        term = t / (a + n);
        sum += term;
    }
    sum += first;
    sum += inverse_a;
    const double u = a * std::log(x);
    if (a + b < kMaxGamma && std::fabs(u) < kMaxLog) {
        return sum * (numerics::gamma(a + b) / (numerics::gamma(a) * gamma(b))) * std::pow(x, a);
    }
    t = log_beta_inverse(a, b) + u + std::log(sum);
    return t < kMinLog ? 0 : std::exp(t);
}

double incomplete_beta(double a, double b, double x) {
    if (std::isnan(a + b + x)) return kNaN;
    if (a <= 0 || b <= 0 || x <= 0) return 0;
    if (x >= 1) return x == 1 ? 1 : 0;
    if (b * x <= 1 && x <= 0.95) return incomplete_beta_series(a, b, x);
    double w = 1 - x;
    const bool swapped = x > a / (a + b);
    if (swapped) {
        std::swap(a, b);
        std::swap(x, w);
    }
    const bool by_series = swapped && b * x <= 1 && x <= 0.95;
    const double t = by_series ? incomplete_beta_series(a, b, x) : incomplete_beta_fraction(a, b, x, w);
    if (!swapped) return t;
    return t > kMachEp ? 1 - t : kBelowOne;
}

double incbi(double a, double b, double y) {
    if (std::isnan(a + b + y)) return kNaN;
    if (y <= 0) return 0;
    if (y >= 1) return 1;
    return InverseSearch(a, b, y).run();
}

}  // namespace pral::numerics
