#include "multivariate/correlated_normals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "distributions/continuous/normal.h"
#include "matrix/correlation_matrix.h"
#include "matrix/decomposition.h"
#include "matrix/matrix.h"

namespace pral::multivariate {

Message complete_covariance(double* cov, int n, std::vector<double>& whole) {
    whole.clear();
    if (n <= 0) return nullptr;
    matrix::complete_upper_triangle(cov, n);
    whole = matrix::copy_of(cov, n);
    if (!matrix::IsSymmetricMatrix(whole.data(), n)) return "Error: matrix is not symmetric";
    std::vector<double> values(static_cast<std::size_t>(n));
    if (const Message problem = matrix::eigen_values(whole.data(), n, values.data())) return problem;
    return matrix::positive_semidefinite(values) ? nullptr
                                                 : "Error: cov_matrix must be positive semi-definite";
}

Message CovarianceFactor::prepare(double* cov, int n) {
    std::vector<double> whole;
    if (const Message problem = complete_covariance(cov, n, whole)) return problem;
    return factorise(whole.data(), n);
}

Message CovarianceFactor::factorise(const double* cov, int n) {
    constexpr Message kRefused = "Error: Matrix must be positive semi-definite";
    n_ = n;
    const std::size_t size = n, elements = matrix::element_count(n);
    elements_.assign(elements, 0.0);
    if (std::all_of(cov, cov + elements, [cov](double element) { return element == cov[0]; }))
        return matrix::cholesky(cov, n, elements_.data(), &triangular_) == nullptr ? nullptr : kRefused;

    // The eigenvalues, which matrix::cholesky would compute once more, are known not to be negative.
    std::vector<double> upper = matrix::copy_of(cov, n);
    triangular_ = matrix::cholesky_upper(upper.data(), n);
    for (std::size_t i = 0; triangular_ && i < size; ++i) {
        for (std::size_t j = 0; j <= i; ++j) elements_[i * size + j] = upper[j * size + i];
    }
    if (triangular_) return nullptr;
    const auto eigen = matrix::symmetric_eigen(cov, n);
    if (!eigen) return kRefused;
    for (std::size_t i = 0; i < elements; ++i)
        elements_[i] = eigen->vectors[i] * std::sqrt(std::max(eigen->values[i % size], 0.0));
    return nullptr;
}

Message CovarianceFactor::standardise() {
    for (double* row = elements_.data(); row != elements_.data() + elements_.size(); row += n_) {
        const double variance = std::inner_product(row, row + n_, row, 0.0);
        if (!(variance > 0)) return "Error: diagonal elements must be >0";
        if (std::fabs(variance - 1) <= 1e-14) continue;  // a correlation matrix, but for rounding
        const double length = std::sqrt(variance);
        for (int j = 0; j < n_; ++j) row[j] /= length;
    }
    return nullptr;
}

void CovarianceFactor::correlate(const double* z, double* out) const {
    const double* row = elements_.data();
    for (int i = 0; i < n_; ++i, row += n_) {
        double sum = 0;
        for (int j = 0, end = triangular_ ? i + 1 : n_; j < end; ++j) sum += row[j] * z[j];
        out[i] = sum;
    }
}

void CovarianceFactor::draw(RandomStream& stream, double* z, double* out) const {
    const Normal standard{0, 1};
    for (int i = 0; i < n_; ++i) z[i] = standard.random(stream.uniform(), stream);
    correlate(z, out);
}

}  // namespace pral::multivariate
