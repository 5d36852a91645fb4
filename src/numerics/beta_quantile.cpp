#include "numerics/beta_quantile.h"

#include <algorithm>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/extended_log.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

UnitPoint from_odds(double odds) {
    if (odds <= 1) {
        const double x = odds / (1 + odds);
        return {x, 1 - x};
    }
    const double y = 1 / (1 + odds);
    return {1 - y, y};
}

/// The point whose logit is larger by `delta`; a small step is added to the smaller coordinate, whose rounding
/// alone is then left.
UnitPoint moved(UnitPoint at, double delta) {
    if (std::fabs(delta) > 0.1)
        return from_odds(at.x / at.y * std::exp(std::clamp(delta, -kExpLimit, kExpLimit)));
    const double e = expm1_fn(delta), change = at.x * at.y * e / (1 + at.x * e);
    if (at.x <= at.y) return {at.x + change, 1 - (at.x + change)};
    return {1 - (at.y - change), at.y - change};
}

UnitPoint swapped_if(bool swap, UnitPoint p) { return swap ? UnitPoint{p.y, p.x} : p; }

/// The root of ln(tail/p) as a function of the logit v of the distance x from the tail's own end. Log-concavity
/// of the tail in v makes Newton's step safe from everywhere but the far side, where the bracket catches it.
class TailInverse {
  public:
    /// p <= 1/2 is the tail at x = 0 (`lower`) or at x = 1, whose distance is x here.
    TailInverse(const BetaRatio& ratio, bool lower, double p)
        : ratio_(ratio),
          lower_(lower),
          p_(p),
          a_(lower ? ratio.a() : ratio.b()),
          b_(lower ? ratio.b() : ratio.a()) {}

    UnitPoint solve() {
        const double log_near = ratio_.log_leading(lower_, {p_, 0}).hi;
        if (log_near < 0 && std::exp(log_near) * (b_ + 1) < 0x1p-55) {
            const DoubleDouble l = ratio_.log_leading(lower_, {p_, 0});
            return from_small(std::exp(l.hi) * (1 + l.lo));
        }
        const DoubleDouble far = b_ < 1 ? ratio_.log_leading(!lower_, two_sum(1, -p_)) : DoubleDouble{0, 0};
        if (far.hi < 0 && std::exp(far.hi) * (a_ + 1) < 0x1p-55) {
            const UnitPoint point = from_small(std::exp(far.hi) * (1 + far.lo));
            return {point.y, point.x};
        }
        return iterate(start(log_near, far.hi));
    }

  private:
    const BetaRatio& ratio_;
    bool lower_;
    double p_, a_, b_;

    static UnitPoint from_small(double x) { return {x, 1 - x}; }

    /// The odds x/y of the first guess.
    double start(double log_near, double log_far) const {
        if (log_near < 0) {
            const double x = std::exp(log_near), correction = a_ * (1 - b_) * x / (a_ + 1);
            if (std::fabs(correction) < 0.3 && x < 0.6) {
                const double refined = x * std::exp(-std::log(1 + correction) / a_);
                if (refined < 0.9) return refined / (1 - refined);
            }
        }
        if (b_ < 1 && log_far < -0.5) {
            const double y = std::exp(log_far);
            return (1 - y) / y;
        }
        const double ra = 1 / (2 * a_ - 1), rb = 1 / (2 * b_ - 1);
        if (a_ > 0.6 && b_ > 0.6) {  // Abramowitz and Stegun 26.5.22
            const double z = -normal_quantile(p_), l = (z * z - 3) / 6, h = 2 / (ra + rb);
            if (h + l > 0) {
                const double w = z * std::sqrt(h + l) / h - (rb - ra) * (l + 5.0 / 6 - 2 / (3 * h));
                if (std::fabs(w) < 300) return a_ / b_ * std::exp(-2 * w);
            }
        }
        const double mean = a_ / b_;
        return log_near < 0 ? std::min(mean, std::exp(log_near)) : mean;
    }

    UnitPoint iterate(double odds) const {
        constexpr int kMaxIterations = 100;  // bisection of the exponent range alone needs 60
        double low = 0x1p-1022, high = 0x1p1022;
        UnitPoint at = from_odds(std::clamp(odds, 0x1p-1020, 0x1p1020));
        for (int i = 0; i < kMaxIterations; ++i) {
            const auto step = lower_ ? ratio_.step(true, at.x, at.y, p_) : ratio_.step(false, at.y, at.x, p_);
            const double h = step.log_ratio, r = step.hazard;
            if (h == 0) break;
            (h < 0 ? low : high) = at.x / at.y;
            // Series of the root: h + r (d + c2 d^2 + c3 d^3), r' = r (lambda - r), lambda' = -(a + b) x y.
            const double lambda = a_ * at.y - b_ * at.x, kappa = (a_ + b_) * at.x * at.y, e = lambda - r;
            const double c2 = 0.5 * e, c3 = (e * e - kappa - r * e) / 6;
            const double newton = -h / r, bend = c2 * newton;
            double delta = newton;
            if (std::fabs(bend) < 0.2) {
                delta = newton * (1 - bend + (2 * c2 * c2 - c3) * newton * newton);
            } else if (4 * bend > -0.9) {
                delta = 2 * newton / (1 + std::sqrt(1 + 4 * bend));
            }
            const UnitPoint next = moved(at, delta);
            const double next_odds = next.x / next.y;
            if (!(next_odds > low && next_odds < high)) {
                if (std::fabs(delta) < 0x1p-50 || high / low - 1 < 0x1p-50) break;
                at = from_odds(std::sqrt(low) * std::sqrt(high));
                continue;
            }
            at = next;
            // Fourth order: what this step leaves is below the rounding of the ratio.
            if ((std::fabs(e) + r + std::sqrt(kappa)) * std::fabs(delta) < 3e-5) break;
        }
        return at;
    }
};

/// The point where the tail at x = 0 (`lower`) or at x = 1 is p.
UnitPoint inverse(const BetaRatio& ratio, bool lower, double p) {
    if (std::isnan(p) || !(ratio.a() > 0 && ratio.b() > 0)) return {kNaN, kNaN};
    if (p <= 0) return swapped_if(!lower, {0, 1});
    if (p >= 1) return swapped_if(!lower, {1, 0});
    if (p > 0.5) {
        lower = !lower;
        p = 1 - p;
    }
    return swapped_if(!lower, TailInverse(ratio, lower, p).solve());
}

}  // namespace

UnitPoint beta_lower_inverse(const BetaRatio& ratio, double p) { return inverse(ratio, true, p); }
UnitPoint beta_upper_inverse(const BetaRatio& ratio, double q) { return inverse(ratio, false, q); }
UnitPoint beta_lower_inverse(double a, double b, double p) { return inverse(BetaRatio(a, b), true, p); }
UnitPoint beta_upper_inverse(double a, double b, double q) { return inverse(BetaRatio(a, b), false, q); }

double student_lower(double nu, double t) {
    if (std::isnan(nu) || std::isnan(t)) return kNaN;
    if (!(std::fabs(t) < kInfinity)) return t > 0 ? 1 : 0;
    // x = nu/(nu + t^2) by the ratio t/sqrt(nu), which neither overflows nor underflows early.
    const double r = std::fabs(t / std::sqrt(nu)), r2 = r * r;
    const BetaRatio ratio(0.5 * nu, 0.5);
    double tail;
    if (r > 1e100) {  // x may underflow: the leading term alone
        const DoubleDouble log_r = extended_log({r, 0}), at_one = ratio.log_leading(true, {1, 0});
        tail = std::exp(0.5 * nu * add({-2 * log_r.hi, -2 * log_r.lo}, negated(at_one)).hi);
    } else {
        tail = ratio.lower(1 / (1 + r2), r2 / (1 + r2));
    }
    return t <= 0 ? 0.5 * tail : 1 - 0.5 * tail;
}

double student_quantile(double nu, double p) {
    if (std::isnan(nu) || std::isnan(p) || !(nu > 0)) return kNaN;
    if (p <= 0) return -kInfinity;
    if (p >= 1) return kInfinity;
    const double tail = 2 * std::min(p, 1 - p);
    const BetaRatio ratio(0.5 * nu, 0.5);
    const DoubleDouble log_x = ratio.log_leading(true, {tail, 0});
    double t;
    if (log_x.hi < -80) {  // x may underflow where t does not overflow
        t = std::sqrt(nu) * std::exp(-0.5 * log_x.hi) * (1 - 0.5 * log_x.lo);
    } else {
        const UnitPoint at = beta_lower_inverse(ratio, tail);
        t = std::sqrt(nu) * std::sqrt(at.y) / std::sqrt(at.x);
    }
    return finite_or_limit(p < 0.5 ? -t : t);
}

}  // namespace pral::numerics
