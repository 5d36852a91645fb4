// Lifetimes told by their hazard rate.
#pragma once

#include <algorithm>
#include <cmath>

#include "distributions/adapters.h"
#include "distributions/continuous/exponential.h"
#include "numerics/extended_log.h"

namespace pral {

/// Map: the time t at which the cumulative hazard of the rate a + b t + c t^2 reaches y; a, b, c >= 0.
struct RisingHazard {
    double a, b, c;

    double inverse(double t) const { return t * (a + t * (b / 2 + t * (c / 3))); }
    double forward(double y) const {
        // Leaving out a term makes the root larger; from above, Newton's steps on a convex function do not overshoot.
        double t = without_cube(y);
        if (!(c > 0) || !(t > 0)) return t;
        t = std::min(t, std::cbrt(3 / c) * std::cbrt(y));
        constexpr int kMaxSteps = 30;  // 7 when the three terms are alike
        for (int step = 0; step < kMaxSteps; ++step) {
            const double next = t - (inverse(t) - y) / (a + t * (b + t * c));
            if (!(next < t)) break;
            t = next;
        }
        return t;
    }
    double log_slope(double t) const { return std::log(a + t * (b + t * c)); }

  private:
    double without_cube(double y) const {
        const double square = std::sqrt(2 * b) * std::sqrt(y);
        const double large = std::max(a, square), ratio = std::min(a, square) / large;
        return 2 * y / (a + large * std::sqrt(1 + ratio * ratio));
    }
};

/// Hazard rate A + B t, A >= 0, B >= 0, not both 0; support [0, inf). F = 1 - exp(-(A t + B t^2/2)).
struct Lifetime2 : Transformed<StandardExponential, RisingHazard> {
    Lifetime2(double A, double B) : Transformed{{}, {A, B, 0}} {}
    Message check() const {
        if (!(map.a >= 0)) return "Error: A must be >= 0";
        if (!(map.b >= 0)) return "Error: B must be >= 0";
        if (!(map.a > 0 || map.b > 0)) return "Error: Max(A, B) must be >0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    /// Where the rate's slope is its square.
    double mode() const {
        const double root = std::sqrt(map.b);
        return map.a < root ? (1 - map.a / root) / root : 0;
    }
};

/// Map: the time t at which the cumulative hazard of the rate A + B t + C t^2 > 0 reaches y. With B < 0 the rate falls
/// until t = v = -B/(2 C), where m is left of it, and is written m + C (t - v)^2: all terms are >= 0 then.
struct QuadraticHazard {
    double A, B, C;

    QuadraticHazard(double A_, double B_, double C_)
        : A(A_),
          B(B_),
          C(C_),
          rising_{A_, std::max(B_, 0.0), C_},
          lowest_(std::max(-B_ / (2 * C_), 0.0)),
          root_(std::sqrt(C_)),
          least_rate_(B_ < 0 ? discriminant() : A_),
          hazard_at_lowest_(inverse(lowest_)) {}

    /// A - B^2/(4 C), the least rate if B < 0.
    double discriminant() const {
        const numerics::DoubleDouble half = numerics::divide({B / 2, 0}, {C, 0});
        const numerics::DoubleDouble product = numerics::multiply(half, {B / 2, 0});
        const double exact = A - product.hi - product.lo;
        return std::isfinite(product.lo) ? exact : A - (B / 2) * (B / (2 * C));
    }
    double rate(double t) const {
        if (!(B < 0)) return A + t * (B + t * C);
        const double offset = root_ * (t - lowest_);
        return least_rate_ + offset * offset;
    }
    double inverse(double t) const {
        if (!(B < 0)) return rising_.inverse(t);
        const double offset = root_ * (t - 1.5 * lowest_), rest = root_ * lowest_;
        return t * ((offset * offset + 0.75 * rest * rest) / 3 + least_rate_);
    }
    double forward(double y) const {
        if (!(B < 0)) return rising_.forward(y);
        const RisingHazard from_lowest = {least_rate_, 0, C};
        if (y >= hazard_at_lowest_) return lowest_ + from_lowest.forward(y - hazard_at_lowest_);
        // Until v the rate falls from A: y/A is below the root, and Newton's steps do not overshoot from there.
        double t = std::max(lowest_ - from_lowest.forward(hazard_at_lowest_ - y), y / A);
        constexpr int kMaxSteps = 4;  // for what the difference lost
        for (int step = 0; step < kMaxSteps; ++step) {
            const double move = (y - inverse(t)) / rate(t);
            t += move;
            if (!(std::fabs(move) > 2e-16 * t)) break;
        }
        return t;
    }
    double log_slope(double t) const { return std::log(rate(t)); }

  private:
    RisingHazard rising_;
    double lowest_, root_, least_rate_, hazard_at_lowest_;
};

/// Hazard rate A + B t + C t^2, A > 0, C > 0, A - B^2/(4 C) > 0, so that it is positive; support [0, inf).
struct Lifetime3 : Transformed<StandardExponential, QuadraticHazard> {
    Lifetime3(double A, double B, double C) : Transformed{{}, {A, B, C}} {}
    Message check() const {
        if (!(map.A > 0)) return "Error: A must be > 0";
        if (!(map.C > 0)) return "Error: C must be > 0";
        if (!(map.discriminant() > 0)) return "Error: A-B^2/(4*C) must be >0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
};

/// Map: the time t at which the cumulative hazard of the rate e^(A + B t), e^A (e^(B t) - 1)/B, reaches y. The exponents
/// are carried exactly: far out a rounding of B t would count several hundred times.
struct ExponentialHazard {
    double A, B;

    ExponentialHazard(double A_, double B_) : ExponentialHazard(A_, B_, std::exp(A_), 0) {}
    /// Of the rate `start` at 0.
    static ExponentialHazard from(double start, double B) {
        if (!(start > 0 && start <= DBL_MAX)) return {std::log(start), B, start, 0};
        const numerics::DoubleDouble log = numerics::extended_log({start, 0});
        return {log.hi, B, start, log.lo};
    }

    double inverse(double t) const {
        if (t == 0) return 0;
        const double growth = B * t;
        if (growth > DBL_MAX) return HUGE_VAL;
        const bool usable = start_ >= DBL_MIN && start_ <= DBL_MAX;
        if (growth < 1e-17 && usable) return start_ * t;
        const double rounding = std::max(B, t) < 1e290 ? numerics::two_product(B, t).lo : 0;
        if (growth < numerics::kExpLimit && usable) {
            const double factor = numerics::expm1_fn(growth);
            return start_ * ((factor + rounding * (1 + factor)) / B);
        }
        const numerics::DoubleDouble log_growth =
            growth > 40
                ? numerics::DoubleDouble{growth, rounding}
                : numerics::DoubleDouble{
                      growth < 1e-17 ? std::log(B) + std::log(t) : std::log(numerics::expm1_fn(growth)), 0};
        return numerics::scaled_exp(
            1, numerics::add(numerics::add({A, A_rest_}, log_growth), numerics::negated(log_B_)));
    }
    double forward(double y) const {
        if (start_ > DBL_MAX) return std::exp(std::log(y) - A);  // nothing outlives so high a rate for long
        const double ratio = B * y / start_;
        if (ratio < 1e-17 && start_ >= DBL_MIN) return y / start_;
        if (ratio <= DBL_MAX) return numerics::log1p_fn(ratio) / B;
        return (log_B_.hi + std::log(y) - A) / B;
    }
    double log_slope(double t) const { return A + B * t; }

  private:
    ExponentialHazard(double A_, double B_, double start, double A_rest)
        : A(A_), B(B_), start_(start), A_rest_(A_rest) {
        if (B_ > 0 && B_ <= DBL_MAX) log_B_ = numerics::extended_log({B_, 0});
    }

    double start_, A_rest_;
    numerics::DoubleDouble log_B_ = {numerics::kNaN, 0};
};

/// Hazard rate exp(A + B t), B > 0; support [0, inf). F = 1 - exp(-(exp(A + B t) - exp(A))/B) (Gompertz).
struct LifetimeExp : Transformed<StandardExponential, ExponentialHazard> {
    LifetimeExp(double A, double B) : Transformed{{}, {A, B}} {}
    Message check() const {
        if (!(map.B > 0)) return "Error: B must be > 0";
        return nullptr;
    }
    double mode() const { return std::max((std::log(map.B) - map.A) / map.B, 0.0); }
    Support support() const { return kPositiveReals; }
};

/// Hazard rate a e^(b x), a > 0, b > 0; support [0, inf). F = 1 - exp(-a (e^(b x) - 1)/b).
struct Gompertz : Transformed<StandardExponential, ExponentialHazard> {
    Gompertz(double a, double b) : Transformed{{}, ExponentialHazard::from(a, b)}, rate_(a) {}
    Message check() const {
        if (!(rate_ > 0)) return "Error: a must be > 0";
        if (!(map.B > 0)) return "Error: b must be > 0";
        return nullptr;
    }
    double mode() const { return rate_ < map.B ? numerics::log_ratio(map.B, rate_) / map.B : 0; }
    Support support() const { return kPositiveReals; }

  private:
    double rate_;
};

}  // namespace pral
