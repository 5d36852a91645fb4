#include "multivariate/correlated_normals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "distributions/continuous/normal.h"
#include "matrix/correlation_matrix.h"
#include "matrix/decomposition.h"
#include "matrix/matrix.h"

namespace pral::multivariate {

Message complete_covariance(double* cov, int n) {
    if (n <= 0) return nullptr;
    matrix::complete_upper_triangle(cov, n);
    std::vector<double> values(static_cast<std::size_t>(n));
    if (const Message problem = matrix::eigen_values(cov, n, values.data())) return problem;
    if (matrix::smallest(values) < 0) return "Error: cov_matrix must be positive semi-definite";
    return nullptr;
}

namespace {

/// The matrix of the call before and its factor: spreadsheets ask for one vector at a time.
struct {
    std::vector<double> matrix;
    CovarianceFactor factor;
} last;
constexpr int kMostRemembered = 128;  // rows

}  // namespace

Message CovarianceFactor::prepare(double* cov, int n) {
    matrix::complete_upper_triangle(cov, n);
    const std::size_t elements = matrix::element_count(n);
    if (elements > 0 && last.matrix.size() == elements &&
        std::memcmp(last.matrix.data(), cov, elements * sizeof *cov) == 0) {
        *this = last.factor;
        return nullptr;
    }
    if (const Message problem = complete_covariance(cov, n)) return problem;
    if (const Message problem = factorise(cov, n)) return problem;
    if (n <= kMostRemembered) {
        last.matrix.clear();  // should memory run out, nothing is remembered
        last.factor = *this;
        last.matrix.assign(cov, cov + elements);
    }
    return nullptr;
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
    if (!matrix::IsSymmetricMatrix(upper.data(), n)) return kRefused;
    const std::vector<double> symmetric = upper;
    triangular_ = matrix::cholesky_upper(upper.data(), n);
    for (std::size_t i = 0; triangular_ && i < size; ++i) {
        for (std::size_t j = 0; j <= i; ++j) elements_[i * size + j] = upper[j * size + i];
    }
    if (triangular_) return nullptr;
    const auto eigen = matrix::symmetric_eigen(symmetric.data(), n);
    if (!eigen) return kRefused;
    for (std::size_t i = 0; i < elements; ++i)
        elements_[i] = eigen->vectors[i] * std::sqrt(std::max(eigen->values[i % size], 0.0));
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
