// Student's t distribution.
#pragma once

#include <algorithm>
#include <cmath>

#include "distributions/adapters.h"
#include "numerics/beta_quantile.h"
#include "numerics/gamma.h"

namespace pral {

/// Student's t with nu > 0 degrees of freedom: for t < 0, F = I_x(nu/2, 1/2)/2, x = nu/(nu + t^2).
struct StandardStudent {
    double nu, log_peak;

    explicit StandardStudent(double nu_)
        : nu(std::min(nu_, 1e30)),  // beyond, the normal distribution to every digit
          log_peak(-0.5 * std::log(nu) - numerics::log_beta(0.5 * nu, 0.5)) {}

    Support support() const { return kReals; }
    double cumulative(double t) const { return numerics::student_lower(nu, t); }
    double survival(double t) const { return numerics::student_lower(nu, -t); }
    double log_cumulative(double t) const {
        const double lower = cumulative(t);
        if (lower > 0.5) return numerics::log1p_fn(-survival(t));
        return lower > numerics::kLeastWithDigits ? std::log(lower)
                                                  : log_far_tail(std::fabs(t) / std::sqrt(nu));
    }
    double log_survival(double t) const { return log_cumulative(-t); }
    double log_density(double t) const {
        const double r = std::fabs(t) / std::sqrt(nu);
        return log_peak - (nu + 1) * (r < 1e100 ? 0.5 * numerics::log1p_fn(r * r) : std::log(r));
    }
    double log_likelihood(std::span<const double> t) const {
        constexpr double kLargest =
            1000;  // more degrees of freedom would multiply the rounding of 1 + t^2/nu
        if (nu > kLargest) return sum_of_log_densities(*this, t);
        return static_cast<double>(t.size()) * log_peak -
               0.5 * (nu + 1) *
                   numerics::sum_of_logs(t, [per_nu = 1 / nu](double v) { return 1 + v * v * per_nu; });
    }
    double quantile(double p) const { return numerics::student_quantile(nu, p); }
    double quantile_upper(double q) const { return -numerics::student_quantile(nu, q); }

    Moments moments() const { return {0, nu / (nu - 2), 0, 6 / (nu - 4)}; }
    double moment_limit(Side) const { return nu; }
    double mode() const { return 0; }
    LogDensitySlope log_density_slope() const { return {{0, -(nu + 1), 0}, {nu, 0, 1}}; }

  private:
    /// ln F at t = -r sqrt(nu), where F underflows.
    double log_far_tail(double r) const {
        const numerics::BetaRatio ratio(0.5 * nu, 0.5);
        if (r < 1e100) return ratio.log_lower(1 / (1 + r * r), r * r / (1 + r * r)) - numerics::kLn2;
        return -nu * (std::log(r) + 0.5 * ratio.log_leading(true, {1, 0}).hi) - numerics::kLn2;
    }
};

/// Degrees of freedom nu, a positive integer; support all reals.
struct Student : LocationScale<StandardStudent> {
    double nu;

    explicit Student(double nu_) : LocationScale(0, 1, StandardStudent(nu_)), nu(nu_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return nu == std::floor(nu) ? nullptr : kMessage;
    }
    Message check_range() const { return nu > 0 ? nullptr : kMessage; }

  private:
    static constexpr Message kMessage = "Error: nu must be a positive integer";
};

/// Location mu, scale sigma >= 0, 0 being a point mass at mu, degrees of freedom nu >= 3, an integer: mu + sigma Student(nu).
struct Student3 : LocationScale<StandardStudent> {
    double nu;

    Student3(double mu, double sigma, double nu_) : LocationScale(mu, sigma, StandardStudent(nu_)), nu(nu_) {}
    Message check() const {
        if (const Message objection = check_range()) return objection;
        return nu == std::floor(nu) ? nullptr : kMessage;
    }
    Message check_range() const {
        if (!(scale >= 0)) return "Error: sigma must be >= 0";
        return nu >= 3 ? nullptr : kMessage;
    }

  private:
    static constexpr Message kMessage = "Error: nu must be a positive integer >=3";
};

}  // namespace pral
