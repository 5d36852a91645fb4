#include "inference/curvature.h"

#include <algorithm>
#include <cmath>

namespace pral::inference {

SquareMatrix inverse_of_definite(const SquareMatrix& a, double least) {
    const std::size_t n = a.size();
    // The smallest eigenvalue exceeds `least` when A less that much on the diagonal has a factor.
    const auto factor = [&](double less) {
        SquareMatrix l(n);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = a(i, j) - (i == j ? less : 0);
                for (std::size_t k = 0; k < j; ++k) sum -= l(i, k) * l(j, k);
                if (i == j && !(sum > 0)) return SquareMatrix();
                l(i, j) = i == j ? std::sqrt(sum) : sum / l(j, j);
            }
        }
        return l;
    };
    if (n > 0 && factor(least).size() == 0) return SquareMatrix();
    const SquareMatrix l = factor(0);
    SquareMatrix inverse(n);
    for (std::size_t column = 0; column < n; ++column) {
        std::vector<double> x(n);
        for (std::size_t i = column; i < n; ++i) {
            x[i] = i == column;
            for (std::size_t k = column; k < i; ++k) x[i] -= l(i, k) * x[k];
            x[i] /= l(i, i);
        }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t k = i + 1; k < n; ++k) x[i] -= l(k, i) * x[k];
            x[i] /= l(i, i);
        }
        for (std::size_t i = 0; i < n; ++i) inverse(i, column) = x[i];
    }
    return inverse;
}

namespace {

/// The function at a point moved along one axis, or two.
class Moved {
  public:
    Moved(const fitting::Objective& f, const fitting::Point& at) : f_(f), at_(at), x_(at) {}
    double operator()(std::size_t i, double a) {
        x_[i] = at_[i] + a;
        const double value = f_(x_);
        x_[i] = at_[i];
        return value;
    }
    double operator()(std::size_t i, double a, std::size_t j, double b) {
        x_[j] = at_[j] + b;
        const double value = (*this)(i, a);
        x_[j] = at_[j];
        return value;
    }

  private:
    const fitting::Objective& f_;
    const fitting::Point& at_;
    fitting::Point x_;
};

}  // namespace

Curvature::Curvature(const fitting::Objective& f, const fitting::Point& at)
    : gradient(at.size()), hessian(at.size()) {
    constexpr double kProbe = 1e-3, kDrop = 0.02, kShortest = 1e-4, kLongest = 0.05;
    const std::size_t n = at.size();
    const double value = f(at), rounding = 1e-13 * (1 + std::fabs(value));
    Moved moved(f, at);
    // Steps over which the function drops by about the same.
    std::vector<double> steps(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double above = moved(i, kProbe), below = moved(i, -kProbe);
        valid = valid && std::isfinite(above) && std::isfinite(below);
        all_below = all_below && above <= value + rounding && below <= value + rounding;
        const double bend = std::fabs(above - 2 * value + below) / (kProbe * kProbe);
        steps[i] = std::clamp(std::sqrt(kDrop / bend), kShortest, kLongest);
    }
    const auto slope = [&](std::size_t i, double step) {
        return (moved(i, step) - moved(i, -step)) / (2 * step);
    };
    const auto differences = [&](double share, SquareMatrix& bends) {
        for (std::size_t i = 0; i < n; ++i) {
            const double a = share * steps[i];
            bends(i, i) = (moved(i, a) - 2 * value + moved(i, -a)) / (a * a);
            for (std::size_t j = 0; j < i; ++j) {
                const double b = share * steps[j];
                bends(i, j) = bends(j, i) =
                    (moved(i, a, j, b) - moved(i, a, j, -b) - moved(i, -a, j, b) + moved(i, -a, j, -b)) /
                    (4 * a * b);
            }
        }
    };
    // A first difference bears shorter steps than a second one.
    constexpr double kForSlopes = 0.1;
    SquareMatrix fine_bends(n);
    differences(1, hessian);
    differences(0.5, fine_bends);
    for (std::size_t i = 0; i < n; ++i) {
        const double step = kForSlopes * steps[i];
        gradient[i] = (4 * slope(i, 0.5 * step) - slope(i, step)) / 3;
        for (std::size_t j = 0; j < n; ++j) {
            hessian(i, j) = (4 * fine_bends(i, j) - hessian(i, j)) / 3;
            valid = valid && std::isfinite(hessian(i, j));
        }
    }
}

double Curvature::slope() const {
    double largest = 0;
    for (const double g : gradient) largest = std::max(largest, std::isnan(g) ? HUGE_VAL : std::fabs(g));
    return largest;
}

SquareMatrix Curvature::inverse_information(double least) const {
    SquareMatrix information(hessian.size());
    for (std::size_t i = 0; i < information.size(); ++i) {
        for (std::size_t j = 0; j < information.size(); ++j) information(i, j) = -hessian(i, j);
    }
    return valid ? inverse_of_definite(information, least) : SquareMatrix();
}

double Curvature::promised_gain(const SquareMatrix& inverse) const {
    double gain = 0;
    for (std::size_t i = 0; i < gradient.size(); ++i) {
        for (std::size_t j = 0; j < gradient.size(); ++j)
            gain += 0.5 * gradient[i] * inverse(i, j) * gradient[j];
    }
    return gain;
}

}  // namespace pral::inference
