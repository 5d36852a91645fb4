#include "statistics/markov.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numeric>
#include <optional>
#include <vector>

#include "matrix/decomposition.h"
#include "matrix/matrix.h"
#include "numerics/beta_ratio.h"

namespace pral::statistics {

namespace {

constexpr Message kFailed = "Error: MarkovMatrix calculation failed!";
constexpr Message kRowSums = "Error: Matrix elements across rows must sum to 1";

/// How far the sum of a row may be from 1; a little more than 1e-5, since 1.00001 - 1 is.
constexpr double kRowSumTolerance = 1e-5 + 1e-12;

/// Eigenvalues this close to 1 count as 1 in the long run.
constexpr double kStayingEigenvalue = 1 - 1e-9;

/// Below these conditions of the eigenvectors V D V^-1 is not used: where multiplication can take over, as soon as it
/// is clearly the better; else when more than half of the digits are lost and the matrix is, to rounding, one without
/// a basis of eigenvectors.
constexpr double kGoodCondition = 1e-5, kUsableCondition = 1e-9;

using Elements = std::vector<double>;

double row_sum(const double* row, int n) { return std::accumulate(row, row + n, 0.0); }

/// Divides each row by its sum where that is not 1. False when a sum is 0 or not finite.
bool normalise_rows(Elements& a, int n) {
    for (double* row = a.data(); row != a.data() + a.size(); row += n) {
        const double sum = row_sum(row, n);
        if (!(sum > 0 && sum <= DBL_MAX)) return false;
        if (sum == 1) continue;
        for (int j = 0; j < n; ++j) row[j] /= sum;
    }
    return true;
}

bool rows_sum_to_one(const double* a, int n, double tolerance) {
    for (int i = 0; i < n; ++i) {
        if (!(std::fabs(row_sum(a + static_cast<std::size_t>(i) * n, n) - 1) <= tolerance)) return false;
    }
    return true;
}

Elements identity(int n) {
    Elements result(matrix::element_count(n));
    for (std::size_t i = 0; i < result.size(); i += static_cast<std::size_t>(n) + 1) result[i] = 1;
    return result;
}

/// P^t for whole t by repeated squaring. Sums of non-negative products lose at most n units in the last place
/// per multiplication in whatever order they are multiplied. Where the rows of P sum to 1 to rounding, those of
/// the powers are kept there, so that the rounding does not grow with t.
Elements whole_power(Elements P, int n, double t) {
    const bool stochastic = rows_sum_to_one(P.data(), n, 1e-12);
    Elements result = identity(n);
    bool started = false;
    for (; t > 0; t = std::floor(t / 2)) {  // at most 1024 times
        if (std::fmod(t, 2) == 1) {
            result = started ? matrix::MatMul(n, n, n, result.data(), P.data()) : P;
            started = true;
        }
        if (t < 2) break;
        P = matrix::MatMul(n, n, n, P.data(), P.data());
        if (stochastic) normalise_rows(P, n);
    }
    return result;
}

/// The limit of P^(2^k), for a chain without periods.
Elements limit_by_squaring(Elements P, int n) {
    for (int k = 0; k < 60; ++k) {
        Elements square = matrix::MatMul(n, n, n, P.data(), P.data());
        if (!normalise_rows(square, n) || square == P) break;
        P.swap(square);
    }
    return P;
}

/// V D^t of the real columns V: those of a complex pair a +- bi span a plane in which the matrix turns by the angle of
/// a + bi and stretches by its length, and its principal power by t times the angle and the t-th power of the length.
Elements scaled_by_powers(const matrix::EigenDecomposition& eigen, int n, double t) {
    Elements scaled = eigen.vectors;
    for (int k = 0; k < n; ++k) {
        const double value = eigen.values[k];
        const bool forever = t >= DBL_MAX, turns = eigen.imaginary[k] > 0;
        if (forever || !turns) {
            const double limit = value < kStayingEigenvalue ? 0 : std::max(value, 1.0);
            const double power = forever ? limit : std::pow(value, t);
            for (double* row = scaled.data(); row != scaled.data() + scaled.size(); row += n) row[k] *= power;
            continue;
        }
        const std::complex<double> pair(value, eigen.imaginary[k]);
        const std::complex<double> power = std::polar(std::pow(std::abs(pair), t), std::arg(pair) * t);
        for (double* row = scaled.data(); row != scaled.data() + scaled.size(); row += n) {
            const double real = row[k], imaginary = row[k + 1];
            row[k] = real * power.real() - imaginary * power.imag();
            row[k + 1] = real * power.imag() + imaginary * power.real();
        }
        ++k;  // the other one of the pair
    }
    return scaled;
}

/// V D^t V^-1, made a matrix of probabilities again. Empty when the eigenvectors are (nearly) dependent.
std::optional<Elements> spectral_power(const matrix::EigenDecomposition& eigen, int n, double t,
                                       double condition) {
    const auto inverted = matrix::inverse(eigen.vectors.data(), n);
    if (!inverted || !(inverted->reciprocal_condition >= condition)) return std::nullopt;
    const Elements scaled = scaled_by_powers(eigen, n, t);
    Elements result = matrix::MatMul(n, n, n, scaled.data(), inverted->elements.data());
    for (double& element : result) element = std::max(element, 0.0);
    if (!normalise_rows(result, n)) return std::nullopt;
    return result;
}

/// P^t for t other than 0 and 1, of checked P.
Message power(Elements P, int n, double t, double* out) {
    const bool forever = t >= DBL_MAX, whole = !forever && t == std::floor(t);
    if (forever) normalise_rows(P, n);  // a sum a little off 1 would take the limit to 0 or infinity
    auto eigen = matrix::general_eigen(P.data(), n);
    if (!eigen) return kFailed;
    for (double& value : eigen->values) {
        if (std::fabs(value) < 1e-15 * n) value = 0;  // the sign of rounding
    }
    const bool turns = std::any_of(eigen->imaginary.begin(), eigen->imaginary.end(),
                                   [](double imaginary) { return imaginary != 0; });
    std::optional<Elements> result;
    if (std::none_of(eigen->values.begin(), eigen->values.end(), [](double value) { return value < 0; })) {
        if (!(whole && turns))
            result = spectral_power(*eigen, n, t, whole || forever ? kGoodCondition : kUsableCondition);
        if (!result && forever) result = limit_by_squaring(P, n);
    } else if (!whole) {
        return "Error: Matrix must be positive semi-definite";
    }
    if (!result && whole) result = whole_power(std::move(P), n, t);
    if (!result) return kFailed;
    std::copy(result->begin(), result->end(), out);
    return nullptr;
}

/// A Binomial(n, p) number by inversion: the smallest k with F(k) >= u, F(k) = I_{1-p}(n - k, k + 1), by bisection.
/// n <= 2^53 bounds it to 54 steps.
double draw_binomial(double n, double p, RandomStream& stream) {
    if (n == 0 || p <= 0) return 0;
    if (p >= 1) return n;
    const double u = stream.uniform();
    double below = -1, enough = n;
    while (enough - below > 1) {
        const double k = std::floor(below + (enough - below) / 2);
        (numerics::beta_lower(n - k, k + 1, 1 - p, p) >= u ? enough : below) = k;
    }
    return enough;
}

}  // namespace

Message markov_matrix(double* P, int rows, int cols, double t, double* out) {
    if (!(t >= 0)) return "Error: T must be >=0";
    if (rows != cols) return "Error: Input Matrix must be square";
    const int n = rows;
    if (n < 1) return kFailed;
    matrix::complete_upper_triangle(P, n);
    double* const end = P + matrix::element_count(n);
    if (std::any_of(P, end, [](double element) { return element < 0; }))
        return "Error: matrix elements must be >=0";
    if (t == 1) {
        std::copy(P, end, out);
        return nullptr;
    }
    if (!rows_sum_to_one(P, n, kRowSumTolerance)) return kRowSums;
    if (t == 0) {
        const Elements one = identity(n);
        std::copy(one.begin(), one.end(), out);
        return nullptr;
    }
    return power(matrix::copy_of(P, n), n, t, out);
}

Message markov_sample(const double* population, int states, double* P, int rows, int cols, double t,
                      double* out, RandomStream& stream) {
    if (rows != cols) return "Error: The width of the Matrix must be equal to its height";
    if (states != rows) return "Error: the number of states must be equal to the size of the Matrix";
    double total = 0;
    for (int i = 0; i < states; ++i) {
        if (!(population[i] >= 0 && population[i] == std::floor(population[i])))
            return "Error: the numbers of individuals must be whole and >=0";
        total += population[i];
    }
    if (!(total <= 0x1p53)) return "Error: there must be at most 2^53 individuals";
    Elements moved(matrix::element_count(states)), numbers(std::max(states, 0));
    if (const Message problem = markov_matrix(P, rows, cols, t, moved.data())) return problem;
    if (!rows_sum_to_one(P, rows, kRowSumTolerance)) return kRowSums;  // t = 1 has not asked

    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const double* row = moved.data() + i * numbers.size();
        Elements rest(row, row + numbers.size());  // the probability of this state or a later one
        for (std::size_t j = rest.size() - 1; j-- > 0;) rest[j] += rest[j + 1];
        double left = population[i];
        for (std::size_t j = 0; j < numbers.size() && left > 0; ++j) {
            const double going = draw_binomial(left, row[j] / rest[j], stream);
            numbers[j] += going;
            left -= going;
        }
    }
    std::copy(numbers.begin(), numbers.end(), out);
    return nullptr;
}

}  // namespace pral::statistics
