// The empirical copula of a data matrix.
#pragma once

#include <cstddef>
#include <vector>

#include "base/random_stream.h"

namespace pral::multivariate {

/// A matrix of data, given by rows, with the values of each variable side by side.
std::vector<double> by_variable(const double* data, int rows, int cols, bool variables_in_rows);

/// An observation stands for the product of the cells that its ranks take of the unit interval: the k-th smallest of m
/// values has [(k - 1)/m, k/m], equal values share the union of theirs. A sample is uniform within the cell of an
/// observation drawn at random, so that every coordinate is uniform.
class EmpiricalCopula {
  public:
    /// From the data by variable, `d` of them with at least one observation.
    EmpiricalCopula(const std::vector<double>& by_variable, int d);

    /// `count` samples of d coordinates, one after another. Each takes a uniform for its observation and one for each
    /// coordinate. Of a series only the first observation is drawn: the others follow it in the order of the data,
    /// the first observation after the last.
    void sample(int count, bool series, double* out, RandomStream& stream) const;

  private:
    struct Cell {
        double low, width;
    };
    std::size_t d_, observations_;
    std::vector<Cell> cells_;  // d of them per observation
};

}  // namespace pral::multivariate
