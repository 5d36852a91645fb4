// Elementary functions of many values at once, two to four of them in one vector.
#pragma once

#include <span>

#include "numerics/sums.h"

namespace pral::numerics {

/// e^x of each element, in place.
void exp_each(std::span<double> x);

/// ln x of each element, in place.
void log_each(std::span<double> x);

/// e^x - 1, ln(1 + x), ln(1 + e^x) and, for x >= 0, ln(1 - e^-x) of each element, in place, with their digits next to 0: right
/// to 2 units in the last place.
void expm1_each(std::span<double> x);
void log1p_each(std::span<double> x);
void softplus_each(std::span<double> x);
void log1m_exp_each(std::span<double> x);

/// ln(x/y) of each x >= 0, in place, y an ordinary number; with its digits where the quotient is next to 1.
void log_ratio_each(std::span<double> x, double y);

/// ln t of each element t >= 0, or ln(1 - t) where `complement` has a number above 0; in place.
void log_tail_each(std::span<double> t, std::span<const double> complement);

/// The angle in (0, pi) whose cotangent is x, and the cotangent of pi x, 0 < x < 1; in place.
void acot_each(std::span<double> x);
void cot_pi_each(std::span<double> x);

/// Phi(z), ln Phi(z) and the z with Phi(z) = p of each element, in place (each_normal.cpp): as right as the functions of
/// normal.h, other last digits apart.
void normal_cumulative_each(std::span<double> z);
void normal_log_cumulative_each(std::span<double> z);
void normal_quantile_each(std::span<double> p);

/// The sum of e^exponent(value).
template <class Exponent>
double sum_of_exps(std::span<const double> values, Exponent exponent) {
    return sum_by_blocks(values, exponent, [](std::span<double> block) {
        exp_each(block);
        return interleaved_sum(block, [](double e) { return e; });
    });
}

}  // namespace pral::numerics
