#include "matrix/matrix.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace pral::matrix {

namespace {

/// A number as "%.15g" prints it. std::to_chars does not depend on the platform or its locale.
struct Print {
    explicit Print(double value)
        : end(std::to_chars(text, text + sizeof text, value, std::chars_format::general, 15).ptr) {
        const char* e = std::find(text, end, 'e');
        if (e == end) {
            mantissa = value;
            return;
        }
        std::from_chars(text, e, mantissa);
        std::from_chars(e[1] == '+' ? e + 2 : e + 1, end, exponent);
    }
    std::string_view view() const { return {text, static_cast<std::size_t>(end - text)}; }

    char text[32];
    char* end;
    double mantissa = 0, exponent = 1;
};

/// Whether the strict upper (or lower) triangle is all 0; a NaN is not.
bool triangle_is_zero(const double* a, int n, bool upper) {
    for (std::size_t i = 0, size = std::max(n, 0); i < size; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (!((upper ? a[j * size + i] : a[i * size + j]) == 0)) return false;
        }
    }
    return true;
}

void mirror(double* a, int n, bool lower_into_upper) {
    for (std::size_t i = 0, size = std::max(n, 0); i < size; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            double &below = a[i * size + j], &above = a[j * size + i];
            (lower_into_upper ? above : below) = lower_into_upper ? below : above;
        }
    }
}

}  // namespace

bool NearlyEqual(double x, double y) {
    if (x == y) return true;
    if (std::isnan(x) || std::isnan(y)) return std::isnan(x) && std::isnan(y);
    const Print a(x), b(y);
    if (a.view() == b.view()) return true;
    return a.exponent == b.exponent && std::fabs(a.mantissa - b.mantissa) <= 1 / 1e14;
}

void complete_upper_triangle(double* a, int n) {
    if (triangle_is_zero(a, n, true)) mirror(a, n, true);
}

bool IsSymmetricMatrix(double* a, int n) {
    constexpr double kRounding = 1e-14;
    const bool no_upper = triangle_is_zero(a, n, true), no_lower = triangle_is_zero(a, n, false);
    if (no_upper != no_lower) mirror(a, n, no_upper);
    const std::size_t size = std::max(n, 0);
    std::vector<double> scale(size);  // the standard deviations, should the matrix be a covariance
    for (std::size_t i = 0; i < size; ++i) scale[i] = std::sqrt(std::fabs(a[i * size + i]));
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = i + 1; j < size; ++j) {
            const double x = a[i * size + j], y = a[j * size + i];
            if (!(std::fabs(x - y) <= kRounding * scale[i] * scale[j]) && !NearlyEqual(x, y)) return false;
        }
    }
    return true;
}

bool positive_semidefinite(const std::vector<double>& eigenvalues) {
    const auto [least, largest] = std::minmax_element(eigenvalues.begin(), eigenvalues.end());
    const double rounding = static_cast<double>(eigenvalues.size()) * 2.3e-16 * *largest;
    return *least >= -std::max(1e-15, rounding);
}

void MatMul(int m, int k, int n, const double* A, const double* B, double* out) {
    for (std::size_t i = 0, rows = m, inner = k, columns = n; i < rows; ++i) {
        double* row = out + i * columns;
        std::fill_n(row, columns, 0.0);
        for (std::size_t l = 0; l < inner; ++l) {  // the middle index outermost: rows are read in order
            const double factor = A[i * inner + l];
            for (std::size_t j = 0; j < columns; ++j) row[j] += factor * B[l * columns + j];
        }
    }
}

std::vector<double> MatMul(int m, int k, int n, const double* A, const double* B) {
    std::vector<double> product(static_cast<std::size_t>(m) * n);
    MatMul(m, k, n, A, B, product.data());
    return product;
}

}  // namespace pral::matrix
