#include "matrix/decomposition.h"

#include <linalg.h>
#include <statistics.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "matrix/matrix.h"

namespace pral::matrix {

namespace {

bool all_finite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

alglib::real_2d_array to_alglib(const double* elements, int rows, int columns) {
    alglib::real_2d_array array;
    array.setcontent(rows, columns, elements);
    return array;
}

std::vector<double> from_alglib(const alglib::real_2d_array& array) {
    std::vector<double> elements;
    elements.reserve(static_cast<std::size_t>(array.rows()) * array.cols());
    for (alglib::ae_int_t i = 0; i < array.rows(); ++i) {
        elements.insert(elements.end(), array[i], array[i] + array.cols());
    }
    return elements;
}

std::vector<double> from_alglib(const alglib::real_1d_array& array) {
    return {array.getcontent(), array.getcontent() + array.length()};
}

/// Runs `body`, which returns an optional result; ALGLIB's exceptions, which are not std::exceptions, give none.
template <class Body>
auto with_alglib(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const alglib::ap_error&) {
        return std::nullopt;
    }
}

/// `solve` fills the values, their imaginary parts and the vectors, and returns whether it succeeded. ALGLIB does not look for NaN, and its
/// intermediate results may overflow: both show in the result.
template <class Solve>
std::optional<EigenDecomposition> eigen(const double* a, int n, Solve solve) {
    if (n < 1 || !all_finite(copy_of(a, n))) return std::nullopt;
    return with_alglib([&]() -> std::optional<EigenDecomposition> {
        const alglib::real_2d_array matrix = to_alglib(a, n, n);
        alglib::real_1d_array values, imaginary;
        alglib::real_2d_array vectors;
        if (!solve(matrix, values, imaginary, vectors)) return std::nullopt;
        EigenDecomposition result{from_alglib(values), from_alglib(vectors), from_alglib(imaginary)};
        if (!all_finite(result.values) || !all_finite(result.vectors) || !all_finite(result.imaginary))
            return std::nullopt;
        return result;
    });
}

}  // namespace

std::optional<EigenDecomposition> symmetric_eigen(const double* a, int n) {
    return eigen(a, n, [n](const auto& matrix, auto& values, auto&, auto& vectors) {
        const alglib::ae_int_t wanted = 1;
        const bool upper = true;
        return alglib::smatrixevd(matrix, n, wanted, upper, values, vectors);
    });
}

std::optional<EigenDecomposition> general_eigen(const double* a, int n) {
    return eigen(a, n, [n](const auto& matrix, auto& values, auto& imaginary, auto& vectors) {
        const alglib::ae_int_t right = 1;
        alglib::real_2d_array left_vectors;
        return alglib::rmatrixevd(matrix, n, right, values, imaginary, left_vectors, vectors);
    });
}

std::optional<Inverse> inverse(const double* a, int n) {
    if (n < 1 || !all_finite(copy_of(a, n))) return std::nullopt;
    return with_alglib([&]() -> std::optional<Inverse> {
        alglib::real_2d_array matrix = to_alglib(a, n, n);
        alglib::ae_int_t info = 0;
        alglib::matinvreport report;
        alglib::rmatrixinverse(matrix, n, info, report);
        if (info != 1) return std::nullopt;
        return Inverse{from_alglib(matrix), report.r1};
    });
}

bool MatrixSqrt(const double* a, int n, double* out) {
    const auto eigen = symmetric_eigen(a, n);
    if (!eigen) return false;
    const auto inverted = inverse(eigen->vectors.data(), n);
    if (!inverted) return false;
    std::vector<double> scaled = eigen->vectors;
    for (std::size_t i = 0; i < scaled.size(); ++i) scaled[i] *= std::sqrt(eigen->values[i % n]);
    MatMul(n, n, n, scaled.data(), inverted->elements.data(), out);
    return true;
}

bool cholesky_upper(double* a, int n) {
    const std::size_t size = std::max(n, 0);
    for (std::size_t j = 0; j < size; ++j) {
        double pivot = a[j * size + j];
        for (std::size_t k = 0; k < j; ++k) pivot -= a[k * size + j] * a[k * size + j];
        if (!(pivot > 0)) return false;
        const double root = std::sqrt(pivot);
        double* row = a + j * size;
        for (std::size_t k = 0; k < j; ++k) {
            const double factor = a[k * size + j];
            for (std::size_t i = j + 1; i < size; ++i) row[i] -= factor * a[k * size + i];
        }
        row[j] = root;
        for (std::size_t i = j + 1; i < size; ++i) row[i] /= root;
    }
    return true;
}

std::optional<double> rank_correlation(const double* x, const double* y, int count) {
    return with_alglib([&]() -> std::optional<double> {
        alglib::real_1d_array a, b;
        a.setcontent(count, x);
        b.setcontent(count, y);
        return alglib::spearmancorr2(a, b, count);
    });
}

std::optional<std::vector<double>> rank_correlations(const double* data, int observations, int variables) {
    return with_alglib([&]() -> std::optional<std::vector<double>> {
        alglib::real_2d_array correlations;
        alglib::spearmancorrm(to_alglib(data, observations, variables), observations, variables,
                              correlations);
        return from_alglib(correlations);
    });
}

}  // namespace pral::matrix
