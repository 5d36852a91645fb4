// The logarithmic series distribution.
#pragma once

#include "distributions/discrete/mass_sum.h"
#include "numerics/exponential_integral.h"

namespace pral {

/// 0 < theta < 1: f(k) = -theta^k/(k ln(1 - theta)), k >= 1 (Fisher, Corbet and Williams 1943).
struct Logarithmic : SummedTails<Logarithmic> {
    static constexpr Tie kTie = Tie::stay;
    double theta;

    explicit Logarithmic(double theta_)
        : theta(theta_),
          log_theta_(theta_ > 0.5 ? numerics::log1p_fn(-(1 - theta_)) : std::log(theta_)),
          log_scale_(std::log(-numerics::log1p_fn(-theta_))) {}
    /// The one with ln(1 - theta) = -rate. Near 1 theta itself has few digits of 1 - theta, or none.
    static Logarithmic with_rate(double rate) {
        Logarithmic result(-numerics::expm1_fn(-rate));
        if (result.theta > 0.5) result.log_theta_ = numerics::log1p_fn(-std::exp(-rate));
        result.log_scale_ = std::log(rate);
        return result;
    }
    Message check() const { return theta > 0 && theta < 1 ? nullptr : "Error: theta must be between (0,1)"; }
    Support support() const { return {1, numerics::kInfinity}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double log_density(double k) const { return k * log_theta_ - std::log(k) - log_scale_; }
    double mass_ratio(double k) const { return theta * (k / (k + 1)); }
    double pivot() const { return 1; }
    /// From the factorial moments (k - 1)! a y^k, which cancel for small theta.
    std::optional<Moments> moments() const {
        if (theta < 0.02) return std::nullopt;
        const double a = std::exp(-log_scale_), y = theta / (1 - theta), mean = a * y;
        const double variance = mean * (1 + y * (1 - a));
        const double third = mean * (1 + y * (3 - 3 * a + y * (2 - a * (3 - 2 * a))));
        const double fourth =
            mean * (1 + y * (7 - 4 * a + y * (12 - a * (12 - 6 * a) + y * (6 - a * (8 - a * (6 - 3 * a))))));
        return Moments{mean, variance, third / (variance * std::sqrt(variance)),
                       fourth / (variance * variance) - 3};
    }
    double mode() const { return 1; }
    double up_to(double k) const {
        if (!near_one() || k <= kFew) return SummedTails::up_to(k);
        return 1 - above(k);
    }
    double above(double k) const {
        if (!near_one()) return SummedTails::above(k);
        double sum = k < kFew ? tail_from(kFew + 1) : tail_from(k + 1);
        for (double j = kFew; j > k; j -= 1) sum += std::exp(j * log_theta_) / j;
        return sum * std::exp(-log_scale_);
    }
    /// Small theta: the first value has nearly everything, and the walk is short. Else the tail is that of E1.
    double start(double u) const {
        const double scale = std::exp(log_scale_);
        if (!near_one()) return std::floor(std::exp(u * scale));
        const double x = numerics::exponential_integral_inverse_estimate((1 - u) * scale);
        return std::floor(x / -log_theta_ + 0.5);
    }

  private:
    static constexpr double kFew = 20;
    /// Sums of theta^j/j take many terms, unless by the Euler-Maclaurin formula.
    bool near_one() const { return theta > 0.9; }

    /// The sum of theta^j/j from j = m on, for m > kFew: E1 and the derivatives of e^(-qx)/x at x = m - 1/2, where
    /// -ln theta = q; n! e^(-y)/x^(n + 1) sum_(i <= n) y^i/i!, y = qx, is the n-th of them but for its sign.
    double tail_from(double m) const {
        // (1 - 2^(1 - 2r)) |B_2r|/2r
        constexpr double kMidpoint[] = {1.0 / 24, 7.0 / 960, 31.0 / 8064, 127.0 / 30720, 511.0 / 67584};
        const double x = m - 0.5, y = -log_theta_ * x;
        if (y > 800) return 0;
        double correction = 0, sum = 1, term = 1, power = 1, sign = 1;
        for (int n = 1; n <= 9; ++n) {
            term *= y / n;
            sum += term;
            power /= x;
            if (n % 2 == 0) continue;
            correction += sign * kMidpoint[n / 2] * power * sum;
            sign = -sign;
        }
        return numerics::exponential_integral(y) - correction * std::exp(-y) / x;
    }

    double log_theta_, log_scale_;
};

}  // namespace pral
