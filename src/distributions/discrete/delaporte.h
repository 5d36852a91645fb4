// The Delaporte distribution.
#pragma once

#include "distributions/discrete/mass_sum.h"
#include "distributions/discrete/negative_binomial.h"
#include "distributions/discrete/poisson.h"
#include "numerics/double_double.h"

namespace pral {

/// The sum of Polya(alpha, beta) and Poisson(lambda), alpha, beta, lambda >= 0: a Poisson count whose rate has a gamma part
/// and a constant one. alpha or beta 0 leaves the Poisson, lambda 0 the Polya, both a point mass at 0.
///
/// The masses follow from f(0) = e^-lambda (1 + beta)^-alpha by sums of positive terms (De Pril 1986): with q = beta/(1 + beta),
///   h(k) = q (h(k - 1) + f(k - 1)), k f(k) = lambda f(k - 1) + alpha h(k).
/// Where that takes thousands of steps a value is the convolution of the two parts, as a sum or an integral. Integers beyond
/// 2^53 cannot be told from their neighbours, and where the Poisson part is below them it is as good as constant. With a lambda
/// next to them and a Polya part of large alpha the sum is the shifted gamma distribution with the same first three moments;
/// with a mean above 1e30, whose roots doubles cannot tell, it is the rate itself, lambda and a gamma variable.
struct Delaporte : SummedTails<Delaporte> {
    /// Masses and their ratios are no cheaper than tails: the walk leaves its steps to Newton's.
    static constexpr int kWalk = 2;
    static constexpr bool kExactLogarithms = true;
    double alpha, beta, lambda;

    Delaporte(double alpha_, double beta_, double lambda_);
    Message check() const {
        if (!(alpha >= 0)) return "Error: alpha must be >= 0";
        if (!(beta >= 0)) return "Error: beta must be >= 0";
        if (!(lambda >= 0)) return "Error: lambda must be >= 0";
        return nullptr;
    }
    Support support() const { return kPositiveReals; }
    std::optional<double> point_mass() const {
        return no_polya() && lambda == 0 ? std::optional(0.0) : std::nullopt;
    }

    double pivot() const { return alpha * beta + lambda; }
    Moments moments() const {
        if (no_polya()) return poisson_.moments();
        return poisson_mixture(linear(gamma_moments(alpha, beta), 1, lambda));
    }
    double up_to(double k) const;
    double above(double k) const;
    double log_density(double k) const;
    double log_survival(double k) const;
    double mass_ratio(double k) const;
    void masses(double first, std::span<double> out) const;
    double start(double p) const;

  private:
    /// The recurrence at one k, with f and h in the unit that it was begun with.
    struct Masses {
        double k, f, h;
        double next(const Delaporte& d);
    };

    struct ShiftedGamma {
        double shape, scale, origin;
        double standardised(double k) const {
            return k < origin ? 0 : std::max(k - origin, 1e-17 * k) / scale;
        }
    };

    /// Whether the distribution is as good as limit_.
    bool is_continuous() const {
        return lambda > kLargeRate && !no_polya() && (alpha > 1e6 || pivot() > kRoundedMean);
    }
    bool no_polya() const { return alpha < 1e-300 || beta == 0; }  // so small an alpha does not count
    bool no_poisson() const { return lambda < 1e-300; }
    /// Whether k is so far above the Poisson part that only lambda of it counts.
    bool is_beyond_poisson(double k) const {
        return k > 0x1p53 && (lambda <= kLargeRate || k - lambda > 1e9 * (alpha + 1) * std::sqrt(lambda));
    }
    /// Whether the recurrence from 0 reaches k in few steps.
    bool is_near(double k) const { return few_ && k <= kFewSteps; }
    Masses from_zero(double k) const;

    static constexpr double kFewSteps = 4096, kLargeRate = 1e15, kRoundedMean = 1e30;

    Polya polya_;
    Poisson poisson_;
    ShiftedGamma limit_;
    double unit_ = 1;  // sqrt(f(0)), so that neither f(0) nor the largest mass is out of range in this unit
    bool few_ = false;
};

}  // namespace pral
