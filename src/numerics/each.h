// Elementary functions of many values at once, two to four of them in one vector.
#pragma once

#include <span>

#include "numerics/sums.h"

namespace pral::numerics {

/// e^x of each element, in place.
void exp_each(std::span<double> x);

/// ln x of each element, in place.
void log_each(std::span<double> x);

/// The sum of e^exponent(value).
template <class Exponent>
double sum_of_exps(std::span<const double> values, Exponent exponent) {
    return sum_by_blocks(values, exponent, [](std::span<double> block) {
        exp_each(block);
        return interleaved_sum(block, [](double e) { return e; });
    });
}

}  // namespace pral::numerics
