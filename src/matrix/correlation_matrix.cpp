#include "matrix/correlation_matrix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <vector>

#include "matrix/decomposition.h"
#include "matrix/matrix.h"

namespace pral::matrix {

namespace {

constexpr Message kEigenValuesFailed = "EigenValues calculation failed!";
constexpr Message kNotSemiDefinite = "Error: Matrix must be positive semi-definite";
constexpr Message kNotSymmetric = "Error: matrix is not symmetric";
constexpr Message kRepairFailed = "Error: Vectors FAIL!";

constexpr double kZeroEigenvalue = 1e-15;

/// Of any matrix: by the symmetric solver where the matrix, completed from one triangle, is symmetric.
std::optional<EigenDecomposition> eigen(const double* a, int n) {
    std::vector<double> matrix = copy_of(a, n);
    const bool symmetric = IsSymmetricMatrix(matrix.data(), n);
    return symmetric ? symmetric_eigen(matrix.data(), n) : general_eigen(matrix.data(), n);
}

/// Infinite elements become the largest finite ones; NaN stays.
void limit_infinities(std::vector<double>& elements) {
    for (double& element : elements) {
        if (std::isinf(element)) element = std::copysign(DBL_MAX, element);
    }
}

std::vector<double> diagonal_matrix(const std::vector<double>& diagonal) {
    const std::size_t n = diagonal.size();
    std::vector<double> matrix(n * n);
    for (std::size_t i = 0; i < n; ++i) matrix[i * n + i] = diagonal[i];
    return matrix;
}

/// T^1/2 S D^1/2 times its transpose, where D keeps the non-negative eigenvalues and the diagonal T makes the
/// diagonal of the product 1.
Message repaired(const EigenDecomposition& eigen, int n, double* out) {
    const std::vector<double>& S = eigen.vectors;
    std::vector<double> kept = eigen.values, scale(n);
    for (double& value : kept) value = std::max(value, 0.0);
    for (int i = 0; i < n; ++i) {
        double length = 0;
        for (int k = 0; k < n; ++k) {
            const double element = S[static_cast<std::size_t>(i) * n + k];
            length += element * element * kept[k];
        }
        scale[i] = 1 / length;
    }
    limit_infinities(scale);

    std::vector<double> root(element_count(n)), transposed(element_count(n));
    if (!MatrixSqrt(diagonal_matrix(kept).data(), n, root.data())) return kRepairFailed;
    const std::vector<double> scaled = MatMul(n, n, n, S.data(), root.data());
    if (!MatrixSqrt(diagonal_matrix(scale).data(), n, root.data())) return kRepairFailed;
    const std::vector<double> factor = MatMul(n, n, n, root.data(), scaled.data());
    for (std::size_t i = 0, size = n; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) transposed[j * size + i] = factor[i * size + j];
    }
    std::vector<double> product = MatMul(n, n, n, factor.data(), transposed.data());
    limit_infinities(product);
    for (std::size_t i = 0; i < product.size(); i += n + std::size_t{1}) {
        if (NearlyEqual(product[i], 1)) product[i] = 1;  // without the rounding
    }
    std::copy(product.begin(), product.end(), out);
    return nullptr;
}

}  // namespace

Message cholesky(const double* a, int n, double* out, bool* complete) {
    const std::size_t size = n, elements = element_count(n);
    const double first = a[0];
    if (first >= 0 && std::all_of(a, a + elements, [first](double element) { return element == first; })) {
        for (std::size_t i = 0; i < elements; ++i) out[i] = i % size == 0 ? std::sqrt(first) : 0;
        if (complete != nullptr) *complete = true;
        return nullptr;
    }

    std::vector<double> factor = copy_of(a, n), values(size);
    if (!IsSymmetricMatrix(factor.data(), n)) return kNotSymmetric;
    if (const Message problem = eigen_values(a, n, values.data())) return problem;
    if (!positive_semidefinite(values)) return kNotSemiDefinite;
    const bool reached_the_end = cholesky_upper(factor.data(), n);
    if (complete != nullptr) *complete = reached_the_end;
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) out[i * size + j] = j <= i ? factor[j * size + i] : 0;
    }
    return nullptr;
}

Message eigen_values(const double* a, int n, double* out) {
    const auto result = eigen(a, n);
    if (!result) return kEigenValuesFailed;
    std::transform(result->values.begin(), result->values.end(), out,
                   [](double value) { return std::fabs(value) < kZeroEigenvalue ? 0 : value; });
    return nullptr;
}

Message eigen_vectors(const double* a, int n, double* out) {
    const auto result = eigen(a, n);
    if (!result) return "EigenVectors calculation failed!";
    std::copy(result->vectors.begin(), result->vectors.end(), out);
    return nullptr;
}

Message valid_corrmat(double* a, int n, double* out) {
    complete_upper_triangle(a, n);
    std::vector<double> matrix = copy_of(a, n);
    if (!IsSymmetricMatrix(matrix.data(), n)) return kNotSymmetric;
    const auto eigen = symmetric_eigen(matrix.data(), n);
    if (!eigen) return kRepairFailed;
    if (!positive_semidefinite(eigen->values)) return repaired(*eigen, n, out);
    std::copy(matrix.begin(), matrix.end(), out);
    return nullptr;
}

Message cov_to_corr(const double* cov, int n, double* out) {
    const std::size_t size = std::max(n, 0);
    std::vector<double> matrix = copy_of(cov, n), values(size), variances(size);
    if (!IsSymmetricMatrix(matrix.data(), n)) return "Error: matrix not symmetric";
    if (eigen_values(cov, n, values.data()) != nullptr) return "Error: matrix is not valid";
    if (!positive_semidefinite(values)) return "Error: matrix not positive semidefinite";
    for (std::size_t i = 0; i < size; ++i) {
        variances[i] = cov[i * size + i];
        if (!(variances[i] > 0)) return "Error: diagonal elements must be >0";
    }
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
            const std::size_t at = i * size + j;
            out[at] = i == j ? 1 : cov[at] / std::sqrt(variances[i] * variances[j]);
        }
    }
    return nullptr;
}

Message corr_to_cov(const double* corr, const double* sd, int n, double* out) {
    constexpr Message kRefused = "Error: CorrMatrix not valid. Try applying PralValidCorrMat first.";
    std::vector<double> given = copy_of(corr, n), valid(given.size());
    if (valid_corrmat(given.data(), n, valid.data()) != nullptr) return kRefused;
    if (!std::equal(valid.begin(), valid.end(), given.begin(), NearlyEqual)) return kRefused;
    for (int i = 0; i < n; ++i) {
        if (!(sd[i] > 0)) return "Error: VarArray not valid";
    }
    for (std::size_t i = 0, size = n; i < size; ++i) {
        for (std::size_t j = i; j < size; ++j) {
            out[i * size + j] = out[j * size + i] = given[i * size + j] * sd[i] * sd[j];
        }
    }
    return nullptr;
}

}  // namespace pral::matrix
