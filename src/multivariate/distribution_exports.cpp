// The exported multivariate distributions.
#include <algorithm>
#include <cmath>
#include <vector>

#include "boundary/core_api.h"
#include "distributions/families.h"
#include "distributions/members.h"
#include "matrix/matrix.h"
#include "multivariate/correlated_normals.h"
#include "multivariate/count_samplers.h"
#include "multivariate/densities.h"
#include "multivariate/vector_call.h"

using pral::fail;
using pral::given;
using pral::guarded;
using pral::Message;
using pral::Scale;
using pral::succeeded;
using pral::with_locked_array;
using pral::multivariate::guarded_vector;
using pral::multivariate::Vector;

namespace {

constexpr Message kTooSmall = "Error: the number of elements in otput array too small";
constexpr Message kCutOff = "Error: the number of elements in otput array must be equal w";

Vector vector_of(const double* values, int count) {
    return {values, static_cast<std::size_t>(std::max(count, 0))};
}

template <class Condition>
bool all(Vector values, Condition condition) {
    return std::all_of(values.begin(), values.end(), condition);
}
bool all_whole(Vector values) {
    return all(values, [](double value) { return value == std::floor(value) && !std::isinf(value); });
}
bool all_at_least_zero(Vector values) {
    return all(values, [](double value) { return value >= 0; });
}
bool all_probabilities(Vector values) {
    return all(values, [](double value) { return value >= 0 && value <= 1; });
}
bool all_within(Vector values, Vector limits) {
    return std::equal(values.begin(), values.end(), limits.begin(),
                      [](double a, double b) { return a <= b; });
}
bool sums_to_one(Vector p, double tolerance) {
    return std::fabs(pral::multivariate::excess_over_one(p)) <= tolerance;
}
bool sums_to_one(Vector p) { return sums_to_one(p, static_cast<double>(p.size()) * 1e-15); }

/// Writes a probability told by its natural logarithm, or its base-10 logarithm.
bool write_probability(double* result, double log, Scale scale) {
    *result = pral::numerics::finite_or_limit(scale == Scale::plain ? std::exp(log) : pral::base10(log));
    return true;
}

/// The items beyond the quotas, or the total number of items; empty counts come of a draw that failed.
bool write_excess(double* out, const std::vector<double>& counts, Vector quota) {
    if (counts.empty() && !quota.empty()) return false;
    for (std::size_t i = 0; i < counts.size(); ++i)
        out[i] = pral::numerics::finite_or_limit(counts[i] - quota[i]);
    return true;
}
bool write_total(double* out, const std::vector<double>& counts, Vector quota) {
    if (counts.empty() && !quota.empty()) return false;
    *out = pral::numerics::finite_or_limit(pral::multivariate::sum(counts));
    return true;
}

// -------------------------------------------------------------------------------------- Multivariate normal

bool multivariate_normal(double* out, const double* mu, int k, double* cov, int elements) {
    if (!given({{"mu", mu}}, k) || !given({{"cov", cov}}, elements)) return false;
    const Vector matrix = vector_of(cov, elements);
    const auto zero = [](double element) { return element == 0; };
    if (!matrix.empty() && matrix.size() < pral::matrix::element_count(k))
        return fail("Error: cov_matrix must have as many rows and columns as there are means");
    if (k <= 0) return true;
    if (all(matrix, zero)) {
        std::transform(mu, mu + k, out, pral::numerics::finite_or_limit);
        return true;
    }
    pral::multivariate::CovarianceFactor factor;
    if (!succeeded(factor.prepare(cov, k))) return false;
    std::vector<double> z(k);
    factor.draw(pral::random_stream(), z.data(), out);
    for (int i = 0; i < k; ++i) out[i] = pral::numerics::finite_or_limit(out[i] + mu[i]);
    return true;
}

/// The constant takes 2 pi once, whatever the dimension: always so here.
bool normal_density(double* result, const double* x, int nx, const double* mu, int nmu, double* cov,
                    int elements, Scale scale) {
    return guarded(result, 1, [&](int) {
        if (nx != nmu) return fail("Error: Data and Means arrays must contain same number of cells");
        if (!given({{"x", x}, {"mu", mu}, {"cov", cov}}, nx)) return false;
        if (static_cast<std::size_t>(std::max(elements, 0)) < pral::matrix::element_count(nx))
            return fail("Error: cov_matrix must have as many rows and columns as there are means");
        std::vector<double> whole;
        if (!succeeded(pral::multivariate::complete_covariance(cov, nx, whole))) return false;
        const auto form =
            pral::multivariate::quadratic_form(vector_of(x, nx), vector_of(mu, nmu), whole.data());
        if (!form) return fail("Error: cov_matrix is singular");
        const double log_constant = -0.5 * (std::log(2 * pral::numerics::kPi) + form->log_determinant);
        return write_probability(result, log_constant - 0.5 * form->value, scale);
    });
}

// ------------------------------------------------------------------------------------ Counts and proportions

bool multinomial(double* out, int size, double n, const double* p, int k) {
    if (size < k) return fail(kCutOff);
    if (!(n >= 0) || n != std::floor(n) || std::isinf(n)) return fail("Error: n must be a positive integer");
    if (!given({{"p", p}}, k)) return false;
    const Vector probabilities = vector_of(p, k);
    if (!all_probabilities(probabilities)) return fail("Error: p must be between [0,1]");
    if (!sums_to_one(probabilities)) return fail("Error: p must sum up to 1");
    return pral::multivariate::share_by_probability(n, probabilities, pral::multivariate::kNoGroup, out);
}

bool multinomial_probability(double* result, const double* counts, int ns, const double* probabilities,
                             int np, Scale scale) {
    return guarded(result, 1, [&](int) {
        if (ns != np) return fail("Error: s and p arrays must contain same number of cells");
        if (!given({{"s", counts}, {"p", probabilities}}, ns)) return false;
        const Vector s = vector_of(counts, ns), p = vector_of(probabilities, np);
        if (!all_probabilities(p)) return fail("Error: p values must all be on [0,1]");
        if (!all_at_least_zero(s)) return fail("Error: s values must not be negative");
        if (pral::multivariate::sum(s) == 0) return fail("Error: Sum(s) must >0");
        if (!sums_to_one(p)) return fail("Error: Sum(p) must =1");
        if (!all_whole(s)) return fail("Error: s values must be integers");
        return write_probability(result, pral::multivariate::log_multinomial(s, p), scale);
    });
}

bool dirichlet(double* out, int size, const double* alpha, int k) {
    if (size < k) return fail("Error: return array size must be >= {alpha} size ");
    if (!given({{"alpha", alpha}}, k)) return false;
    double total = 0, largest = 0;
    for (int i = 0; i < k; ++i) {
        if (!pral::draw(&out[i], pral::Gamma{alpha[i] + 1, 1})) return false;
        total += out[i];
        largest = std::max(largest, out[i]);
    }
    if (k > 0 && total == 0) return fail("Error: alpha values must be > -1");
    if (std::isinf(total)) {
        total = 0;
        for (int i = 0; i < k; ++i) total += out[i] /= largest;
    }
    for (int i = 0; i < k; ++i) out[i] /= total;
    return true;
}

bool dirichlet_density(double* result, const double* proportions, int nx, const double* shapes, int nalpha,
                       Scale scale) {
    return guarded(result, 1, [&](int) {
        if (nx != nalpha) return fail("Error: {x} and {alpha} must contain same number of elemens");
        if (!given({{"x", proportions}, {"alpha", shapes}}, nx)) return false;
        const Vector x = vector_of(proportions, nx), alpha = vector_of(shapes, nalpha);
        if (!all(alpha, [](double value) { return value > 0; }))
            return fail("Error: alpha values must be >0");
        if (!all(x, [](double value) { return value > 0 && value < 1; }))
            return fail("Error: x values must all be on (0,1)");
        if (!sums_to_one(x)) return fail("Error: Sum(x) must =1");
        return write_probability(result, pral::multivariate::log_dirichlet(x, alpha), scale);
    });
}

bool multivariate_hypergeometric(double* out, double n, const double* sizes, int k) {
    if (!given({{"D", sizes}}, k)) return false;
    const Vector D = vector_of(sizes, k);
    if (!all_whole(D)) return fail("Error: D values must be integers");
    if (!all_at_least_zero(D)) return fail("Error: D values must all be >0");
    if (!(n <= pral::multivariate::sum(D))) return fail("Error: n must be less than Sum({D})");
    return pral::multivariate::share_by_size(n, D, pral::multivariate::kNoGroup, out);
}

bool hypergeometric_probability(double* result, const double* counts, int ns, const double* sizes, int nD,
                                Scale scale) {
    return guarded(result, 1, [&](int) {
        if (ns != nD) return fail("Error: s and D arrays must contain same number of cells");
        if (!given({{"s", counts}, {"D", sizes}}, ns)) return false;
        const Vector s = vector_of(counts, ns), D = vector_of(sizes, nD);
        if (!all_whole(s)) return fail("Error: s values must be integers");
        if (!all_at_least_zero(s)) return fail("Error: s values must be >=0");
        if (!all_whole(D)) return fail("Error: D values must be integers");
        if (!all_at_least_zero(D)) return fail("Error: D values must all be >0");
        if (!all_within(s, D)) return fail("Error: s[i] must be <= D(i)");
        if (pral::multivariate::sum(s) == 0) return fail("Error: Sum(s) must >0");
        return write_probability(result, pral::multivariate::log_multivariate_hypergeometric(s, D), scale);
    });
}

// --------------------------------------------------------------------------------------------- Waiting times

bool urn_is_valid(const double* s, int ns, const double* D, int nD, Message too_many) {
    if (ns != nD) return fail("Error: the number of elements in {s} and {d} must be equal");
    if (!given({{"s", s}, {"D", D}}, ns)) return false;
    const Vector quota = vector_of(s, ns), sizes = vector_of(D, nD);
    if (!all_whole(quota)) return fail("Error: {s} values must be integers");
    if (!all_at_least_zero(quota)) return fail("Error: {s} values must be >=0");
    if (!all_whole(sizes)) return fail("Error: {d} values must be integers");
    if (!all_at_least_zero(sizes)) return fail("Error: {d} values must all be >0");
    return all_within(quota, sizes) || fail(too_many);
}

bool trials_are_valid(const double* s, int ns, const double* p, int np) {
    if (ns != np) return fail("Error: sizes of input arrays must be equal");
    if (!given({{"s", s}, {"p", p}}, ns)) return false;
    const Vector quota = vector_of(s, ns), probabilities = vector_of(p, np);
    if (!all_probabilities(probabilities)) return fail("Error: all p must be between [0,1]");
    if (!all_at_least_zero(quota)) return fail("Error: all s must be positive");
    if (!all_whole(quota)) return fail("Error: all s must be integer");
    return sums_to_one(probabilities, 1e-15) || fail("Error: sum(p) must equal to 1");
}

}  // namespace

bool PralMultiNormal_Core(double* out, int outN, const double* mu, int k, double* cov, int covN) {
    return guarded_vector(
        out, outN, [&] { return outN < k ? fail(kTooSmall) : multivariate_normal(out, mu, k, cov, covN); });
}

bool PralMultiNormalVB_Core(SAFEARRAY** out, const double* mu, int k, double* cov, int covN) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralMultiNormal_Core(data, size, mu, k, cov, covN); });
}

bool PralMultiNormalProb_Core(double* result, const double* x, int nx, const double* mu, int nmu, double* cov,
                              int covN) {
    return normal_density(result, x, nx, mu, nmu, cov, covN, Scale::plain);
}

bool PralMultiNormalProb10_Core(double* result, const double* x, int nx, const double* mu, int nmu,
                                double* cov, int covN) {
    return normal_density(result, x, nx, mu, nmu, cov, covN, Scale::natural_log);
}

bool PralMultinomial_Core(double* out, int outN, double n, const double* p, int k) {
    return guarded_vector(out, outN, [&] { return multinomial(out, outN, n, p, k); });
}

bool PralMultinomialVB_Core(SAFEARRAY** out, double n, const double* p, int k) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralMultinomial_Core(data, size, n, p, k); });
}

bool PralMultinomialProb_Core(double* result, const double* s, int ns, const double* p, int np) {
    return multinomial_probability(result, s, ns, p, np, Scale::plain);
}

bool PralMultinomialProb10_Core(double* result, const double* s, int ns, const double* p, int np) {
    return multinomial_probability(result, s, ns, p, np, Scale::natural_log);
}

bool PralDirichlet_Core(double* out, int outN, const double* alpha, int k) {
    return guarded_vector(out, outN, [&] { return dirichlet(out, outN, alpha, k); });
}

bool PralDirichletVB_Core(SAFEARRAY** out, const double* alpha, int k) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralDirichlet_Core(data, size, alpha, k); });
}

bool PralDirichletProb_Core(double* result, const double* x, int nx, const double* alpha, int nalpha) {
    return dirichlet_density(result, x, nx, alpha, nalpha, Scale::plain);
}

bool PralDirichletProb10_Core(double* result, const double* x, int nx, const double* alpha, int nalpha) {
    return dirichlet_density(result, x, nx, alpha, nalpha, Scale::natural_log);
}

bool PralMultiHypergeo_Core(double* out, int, double n, const double* D, int k) {
    return guarded_vector(out, k, [&] { return multivariate_hypergeometric(out, n, D, k); });
}

bool PralMultiHypergeoVB_Core(SAFEARRAY** out, double n, const double* D, int k) {
    return with_locked_array(out, [=](double* data, int size) {
        if (size < k) return fail(pral::kOutputArrayMessage);
        return PralMultiHypergeo_Core(data, size, n, D, k);
    });
}

bool PralMultiHypergeoProb_Core(double* result, const double* s, int ns, const double* D, int nD) {
    return hypergeometric_probability(result, s, ns, D, nD, Scale::plain);
}

bool PralMultiHypergeoProb10_Core(double* result, const double* s, int ns, const double* D, int nD) {
    return hypergeometric_probability(result, s, ns, D, nD, Scale::natural_log);
}

bool PralInvMultiHypergeo_Core(double* out, const double* s, int ns, const double* D, int nD) {
    return guarded(out, 1, [&](int) {
        if (!urn_is_valid(s, ns, D, nD, "Error: each s(i) must less than d(i)")) return false;
        const Vector quota = vector_of(s, ns);
        return write_total(out, pral::multivariate::wait_for_urn(quota, vector_of(D, nD)), quota);
    });
}

bool PralInvMultiHypergeo2_Core(double* out, int outN, const double* s, int ns, const double* D, int nD) {
    return guarded_vector(out, outN, [&] {
        if (!urn_is_valid(s, ns, D, nD, "Error: each s(i) must be <= D(i)")) return false;
        if (outN < ns) return fail(kCutOff);
        const Vector quota = vector_of(s, ns);
        return write_excess(out, pral::multivariate::wait_for_urn(quota, vector_of(D, nD)), quota);
    });
}

bool PralInvMultiHypergeo2VB_Core(SAFEARRAY** out, const double* s, int ns, const double* D, int nD) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralInvMultiHypergeo2_Core(data, size, s, ns, D, nD); });
}

bool PralNegMultinomial_Core(double* out, const double* s, int ns, const double* p, int np) {
    return guarded(out, 1, [&](int) {
        if (!trials_are_valid(s, ns, p, np)) return false;
        const Vector quota = vector_of(s, ns);
        return write_total(out, pral::multivariate::wait_for_trials(quota, vector_of(p, np)), quota);
    });
}

bool PralNegMultinomial2_Core(double* out, int outN, const double* s, int ns, const double* p, int np) {
    return guarded_vector(out, outN, [&] {
        if (!trials_are_valid(s, ns, p, np)) return false;
        if (outN < ns) return fail(kTooSmall);
        const Vector quota = vector_of(s, ns);
        return write_excess(out, pral::multivariate::wait_for_trials(quota, vector_of(p, np)), quota);
    });
}

bool PralNegMultinomial2VB_Core(SAFEARRAY** out, const double* s, int ns, const double* p, int np) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralNegMultinomial2_Core(data, size, s, ns, p, np); });
}
