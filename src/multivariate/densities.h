// Logarithms of joint densities and probabilities of the multivariate distributions. The arguments have been checked;
// the results are natural logarithms, -inf for what is impossible.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace pral::multivariate {

using Vector = std::span<const double>;

/// The sum of the elements, less 1, without the rounding of the sum.
double excess_over_one(Vector p);

double sum(Vector values);

/// The multinomial probability of the counts s under the probabilities p: n!/prod s_i! prod p_i^s_i, n = sum s > 0.
double log_multinomial(Vector s, Vector p);

/// The Dirichlet density at x: Gamma(sum alpha)/prod Gamma(alpha_i) prod x_i^(alpha_i - 1).
double log_dirichlet(Vector x, Vector alpha);

/// The multivariate hypergeometric probability of the counts s out of the groups D: prod C(D_i, s_i)/C(M, n), n = sum
/// s > 0, M = sum D, s_i <= D_i.
double log_multivariate_hypergeometric(Vector s, Vector D);

/// What the multivariate normal density is made of: (x - mu)' C^-1 (x - mu) and ln |det C|.
struct QuadraticForm {
    double value, log_determinant;
};

/// By elimination with partial pivoting. None for a singular matrix: one with a pivot of at most 1.94233e-21, or with a
/// variable that the others determine to rounding, of which the pivot would be noise.
std::optional<QuadraticForm> quadratic_form(Vector x, Vector mu, const double* cov);

/// The normal density of so many dimensions: exp(-value/2) / sqrt((2 pi)^dimensions |det C|).
double log_normal(const QuadraticForm& form, std::size_t dimensions);

}  // namespace pral::multivariate
