// The shape of a function around a point, from its values.
#pragma once

#include <cstddef>
#include <vector>

#include "fitting/maximise.h"

namespace pral::inference {

/// A symmetric matrix of a handful of rows.
class SquareMatrix {
  public:
    SquareMatrix() = default;
    explicit SquareMatrix(std::size_t size) : size_(size), elements_(size * size) {}
    std::size_t size() const { return size_; }
    double& operator()(std::size_t i, std::size_t j) { return elements_[i * size_ + j]; }
    double operator()(std::size_t i, std::size_t j) const { return elements_[i * size_ + j]; }

  private:
    std::size_t size_ = 0;
    std::vector<double> elements_;
};

/// The inverse of a matrix whose eigenvalues all exceed `least` > 0; empty where it is none.
SquareMatrix inverse_of_definite(const SquareMatrix& a, double least);

/// Gradient and second derivatives by central differences of two widths (Richardson), in coordinates of which a step of 1
/// is a large one.
struct Curvature {
    std::vector<double> gradient;
    SquareMatrix hessian;
    bool valid = true;      ///< the function has a value all around
    bool all_below = true;  ///< no neighbour on the axes is higher, to rounding

    Curvature(const fitting::Objective& f, const fitting::Point& at);

    /// The largest part of the gradient.
    double slope() const;
    /// minus the Hessian is definite with eigenvalues above `least`: the inverse of it; empty otherwise.
    SquareMatrix inverse_information(double least) const;
    /// What a step of Newton's would gain.
    double promised_gain(const SquareMatrix& inverse) const;
};

}  // namespace pral::inference
