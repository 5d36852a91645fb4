#include "multivariate/densities.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "distributions/discrete/binomial.h"
#include "matrix/decomposition.h"
#include "numerics/gamma_ratio.h"

namespace pral::multivariate {

double excess_over_one(Vector p) {
    double total = -1, lost = 0;
    for (const double value : p) {  // Knuth's exact addition
        const double next = total + value, back = next - total;
        lost += (total - (next - back)) + (value - back);
        total = next;
    }
    return total + lost;
}

double sum(Vector values) {
    double total = 0;
    for (const double value : values) total += value;
    return total;
}

/// The counts are those of independent Poisson variables with means n p_i, given their sum: no difference of large
/// log-gammas is left.
double log_multinomial(Vector s, Vector p) {
    const double n = sum(s);
    double log = n * excess_over_one(p) - numerics::log_gamma_density(n + 1, n);
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (p[i] == 0 && s[i] > 0) return -HUGE_VAL;
        if (p[i] > 0) log += numerics::log_gamma_density(s[i] + 1, n * p[i]);
    }
    return log;
}

/// The proportions are those of independent gamma variables, at A x_i with A = sum alpha, given their sum.
double log_dirichlet(Vector x, Vector alpha) {
    const double A = sum(alpha), others = static_cast<double>(x.size()) - 1;
    double log = A * excess_over_one(x) - numerics::log_gamma_density(A, A) + others * std::log(A);
    for (std::size_t i = 0; i < x.size(); ++i) log += numerics::log_gamma_density(alpha[i], A * x[i]);
    return log;
}

/// The counts are those of independent binomial variables given their sum, whatever their common p: n/M is the best.
double log_multivariate_hypergeometric(Vector s, Vector D) {
    const double n = sum(s), M = sum(D);
    if (n == M) return 0;
    const double p = n / M;
    double log = -Binomial(M, p).log_density(n);
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (D[i] > 0) log += Binomial(D[i], p).log_density(s[i]);
    }
    return log;
}

namespace {

/// Whether each variable has a part, of more than n units in the last place of its variance, that the ones before it do
/// not determine.
bool has_full_rank(const double* cov, std::size_t n) {
    std::vector<double> correlations(n * n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            const double scale = std::sqrt(cov[i * n + i]) * std::sqrt(cov[j * n + j]);
            correlations[i * n + j] = i == j ? 1 : cov[i * n + j] / scale;
        }
    }
    if (!matrix::cholesky_upper(correlations.data(), static_cast<int>(n))) return false;
    for (std::size_t i = 0; i < n; ++i) {
        const double root = correlations[i * n + i];
        if (!(root * root > static_cast<double>(n) * 2.3e-16)) return false;
    }
    return true;
}

}  // namespace

std::optional<QuadraticForm> quadratic_form(Vector x, Vector mu, const double* cov) {
    constexpr double kSingular = 1.94233e-21;
    const std::size_t n = x.size(), width = n + 1;
    if (!has_full_rank(cov, n)) return std::nullopt;
    std::vector<double> rows(n * width), difference(n);  // the matrix, and x - mu as its last column
    for (std::size_t i = 0; i < n; ++i) {
        std::copy_n(cov + i * n, n, &rows[i * width]);
        rows[i * width + n] = difference[i] = x[i] - mu[i];
    }
    QuadraticForm form{0, 0};
    for (std::size_t j = 0; j < n; ++j) {
        std::size_t best = j;
        for (std::size_t i = j + 1; i < n; ++i) {
            if (std::fabs(rows[i * width + j]) > std::fabs(rows[best * width + j])) best = i;
        }
        if (best != j) std::swap_ranges(&rows[j * width], &rows[j * width] + width, &rows[best * width]);
        const double* top = &rows[j * width];
        if (!(std::fabs(top[j]) > kSingular)) return std::nullopt;
        form.log_determinant += std::log(std::fabs(top[j]));
        for (std::size_t i = j + 1; i < n; ++i) {
            double* row = &rows[i * width];
            const double factor = row[j] / top[j];
            for (std::size_t k = j + 1; k < width; ++k) row[k] -= factor * top[k];
        }
    }
    for (std::size_t j = n; j-- > 0;) {
        double* row = &rows[j * width];
        for (std::size_t k = j + 1; k < n; ++k) row[n] -= row[k] * rows[k * width + n];
        row[n] /= row[j];
        form.value += row[n] * difference[j];
    }
    return form;
}

double log_normal(const QuadraticForm& form, std::size_t dimensions) {
    const double log_two_pi = std::log(2 * numerics::kPi);
    const double log_constant = -0.5 * (static_cast<double>(dimensions) * log_two_pi + form.log_determinant);
    return log_constant - 0.5 * form.value;
}

}  // namespace pral::multivariate
