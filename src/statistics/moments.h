// Moments of data: of samples (corrected for bias), of values as a population, of a table of probabilities.
#pragma once

#include <span>

namespace pral::statistics {

using Data = std::span<const double>;

/// The sample moments, by sums from left to right over all values, with s^2 = sum (x - mean)^2 / (n - 1). They
/// need 1, 2, 2, 3 and 3 values; with fewer the result is not a number.
double mean(Data x);
double variance(Data x);
double standard_deviation(Data x);

/// n / ((n - 1)(n - 2)) sum ((x - mean)/s)^3.
double skewness(Data x);

/// n (n + 1) / ((n - 1)(n - 2)(n - 3)) sum ((x - mean)/s)^4 + 3 - 3 (n - 1)^2 / ((n - 2)(n - 3)): about 3 for
/// normal data, not finite for three values.
double kurtosis(Data x);

struct Moments {
    double mean = 0, variance = 0, skewness = 0, kurtosis = 0;
};

/// The moments of the values as a population.
Moments population_moments(Data x);

/// The moments of the discrete distribution with values x and probabilities p, which are used as given: by their power
/// sums, which are those of a distribution with what is missing of 1 at the value 0. A sum within 1e-15 of 1 for each
/// probability is 1. Summation stops at the first zero probability beyond the middle.
Moments table_moments(Data x, Data p);

}  // namespace pral::statistics
