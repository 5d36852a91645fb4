// Distributions on an interval with elementary cumulatives: Kumaraswamy's and Bradford's.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "distributions/continuous/linear_axis.h"
#include "distributions/family.h"
#include "numerics/gamma.h"

namespace pral {

/// Shapes alpha > 0 and beta > 0, min <= max, equal being a point mass; support [min, max].
/// F = 1 - (1 - y^alpha)^beta, y = (x - min)/(max - min). Everything is computed from ln y and ln(1 - y^alpha).
struct Kumaraswamy4 {
    double alpha, beta, min, max;

    Kumaraswamy4(double alpha_, double beta_, double min_, double max_)
        : alpha(alpha_),
          beta(beta_),
          min(min_),
          max(max_),
          log_alpha_(std::log(alpha_)),
          log_beta_(std::log(beta_)),
          axis_(LinearAxis::over(min_, max_)),
          width_(axis_.distance(min_, max_)),
          log_width_(std::log(width_) + axis_.log_unit) {}
    Message check() const {
        if (!(alpha > 0)) return "Error: alpha must be > 0";
        if (!(beta > 0)) return "Error: beta must be > 0";
        if (!(max >= min)) return "Error: max must be >= min";
        return nullptr;
    }
    Support support() const { return {min, max}; }
    std::optional<double> point_mass() const { return min == max ? std::optional(min) : std::nullopt; }

    double cumulative(double x) const { return -numerics::expm1_fn(beta * log_rest(log_y(x))); }
    double survival(double x) const { return std::exp(beta * log_rest(log_y(x))); }
    double log_cumulative(double x) const {
        const double log_power = alpha * log_y(x);
        // Where 1 - (1 - y^alpha)^beta is beta y^alpha to all digits, which may underflow.
        if (log_power < -40 && log_beta_ + log_power < -40) return log_beta_ + log_power;
        return numerics::log1m_exp(-beta * log_rest(log_y(x)));
    }
    double log_survival(double x) const { return beta * log_rest(log_y(x)); }
    double log_density(double x) const {
        const double y = log_y(x);
        const auto times = [](double power, double log) { return power == 0 ? 0 : power * log; };
        return log_alpha_ + log_beta_ - log_width_ + times(alpha - 1, y) + times(beta - 1, log_rest(y));
    }
    double log_likelihood(std::span<const double> values) const;
    double quantile(double p) const { return from_hazard(-numerics::log1p_fn(-p)); }
    double quantile_upper(double q) const { return from_hazard(-std::log(q)); }
    /// E y^k = beta B(1 + k/alpha, beta)
    std::optional<Moments> moments() const {
        const auto log_power = [this](double k) {
            return log_beta_ + numerics::log_beta(1 + k / alpha, beta);
        };
        const auto relative = exponential_moments(log_power);
        if (!relative) return std::nullopt;
        return axis_.moments(*relative, min, width_ * std::exp(log_power(1)));
    }
    double mode() const {
        if (!(alpha > 1 && beta > 1)) return beta_mode(alpha, beta, min, max);  // an end
        return axis_.move(min, width_ * std::exp(std::log((alpha - 1) / (alpha * beta - 1)) / alpha));
    }

  private:
    double log_y(double x) const {
        const double y = axis_.distance(min, x) / width_;
        return y < 0.5 ? std::log(y) : numerics::log1p_fn(-(axis_.distance(x, max) / width_));
    }
    /// ln(1 - y^alpha).
    double log_rest(double log_y) const { return numerics::log1m_exp(-alpha * log_y); }

    /// The x where the survival is e^-hazard.
    double from_hazard(double hazard) const {
        const double part = hazard / beta;
        const double log_power = part < 1e-20 ? std::log(hazard) - log_beta_ : numerics::log1m_exp(part);
        const double log_y = log_power / alpha;
        return log_y < -numerics::kLn2 ? axis_.move(min, width_ * std::exp(log_y))
                                       : axis_.move(max, width_ * numerics::expm1_fn(log_y));
    }

    double log_alpha_, log_beta_;
    LinearAxis axis_;
    double width_, log_width_;
};

/// Shapes alpha > 0 and beta > 0; support [0, 1]. F = 1 - (1 - x^alpha)^beta.
struct Kumaraswamy : Kumaraswamy4 {
    Kumaraswamy(double alpha_, double beta_) : Kumaraswamy4(alpha_, beta_, 0, 1) {}
};

/// Shape theta > 0, min < max; support [min, max]. F = ln(1 + theta y)/ln(1 + theta), y = (x - min)/(max - min); 1 - F is
/// the same function of (1 - y)/(1 + theta y).
struct Bradford {
    double theta, min, max;

    Bradford(double theta_, double min_, double max_)
        : theta(theta_),
          min(min_),
          max(max_),
          curvature_(
              std::clamp(theta_, 1e-100, DBL_MAX)),  // below, the distribution is uniform to every digit
          log_(numerics::log1p_fn(curvature_)),
          slope_(curvature_ / log_),
          axis_(LinearAxis::over(min_, max_)),
          width_(axis_.distance(min_, max_)),
          log_peak_(std::log(slope_) - std::log(width_) - axis_.log_unit) {}
    Message check() const {
        if (!(theta > 0)) return "Error: theta must be > 0";
        if (!(min < max)) return "Error: minimum must be < Maximum";
        return nullptr;
    }
    Support support() const { return {min, max}; }
    std::optional<double> point_mass() const { return std::nullopt; }

    double cumulative(double x) const { return part(position(x)); }
    double survival(double x) const {
        return part(axis_.distance(x, max) / width_ / (1 + curvature_ * position(x)));
    }
    double log_density(double x) const { return log_peak_ - numerics::log1p_fn(curvature_ * position(x)); }
    double quantile(double p) const { return from_tails(p, 1 - p); }
    double quantile_upper(double q) const { return from_tails(1 - q, q); }
    double mode() const { return min; }

  private:
    double position(double x) const { return axis_.distance(min, x) / width_; }
    double part(double y) const {
        const double rise = curvature_ * y;
        return rise < 1e-17 ? slope_ * y : numerics::log1p_fn(rise) / log_;
    }
    double inverse_part(double p) const {
        const double rise = p * log_;
        return rise < 1e-17 ? p / slope_ : numerics::expm1_fn(rise) / curvature_;
    }
    double from_tails(double p, double q) const {
        const double y = inverse_part(p);
        if (y < 0.5) return axis_.move(min, width_ * y);
        const double rest = inverse_part(q);
        return axis_.move(max, -(width_ * (rest * (1 + curvature_) / (1 + curvature_ * rest))));
    }

    double curvature_, log_, slope_;
    LinearAxis axis_;
    double width_, log_peak_;
};

}  // namespace pral
