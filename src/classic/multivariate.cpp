// The exported multivariate distributions.
#include <algorithm>
#include <cmath>
#include <vector>

#include "classic/core_api.h"
#include "classic/factor_memory.h"
#include "classic/members.h"
#include "classic/short_cuts.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "matrix/matrix.h"
#include "multivariate/count_samplers.h"
#include "multivariate/densities.h"
#include "multivariate/dirichlet.h"

using pral::fail;
using pral::given;
using pral::guarded;
using pral::Message;
using pral::random_stream;
using pral::Scale;
using pral::succeeded;
using pral::with_locked_array;
using pral::classic::guarded_vector;
using pral::multivariate::sample_dirichlet;
using pral::multivariate::share_by_probability;
using pral::multivariate::share_by_size;
using pral::multivariate::Vector;
using pral::multivariate::wait_for_trials;
using pral::multivariate::wait_for_urn;

namespace {

template <class Count>
Message draw_count(double& out, double number, double p, pral::RandomStream& stream) {
    return pral::draw(out, pral::classic::Form<Count>(number, p), stream);
}
/// Large counts are approximated here, too.
constexpr pral::multivariate::CountDraws kDraws = {draw_count<pral::Binomial>, draw_count<pral::NegBin>};

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

/// The items beyond the quotas, or the total number of items, when the draws succeed.
bool write_excess(double* out, Message objection, const std::vector<double>& counts, Vector quota) {
    if (!succeeded(objection)) return false;
    for (std::size_t i = 0; i < counts.size(); ++i)
        out[i] = pral::numerics::finite_or_limit(counts[i] - quota[i]);
    return true;
}
bool write_total(double* out, Message objection, const std::vector<double>& counts) {
    if (!succeeded(objection)) return false;
    *out = pral::numerics::finite_or_limit(pral::multivariate::sum(counts));
    return true;
}

// -------------------------------------------------------------------------------------- Multivariate normal

bool multivariate_normal(double* out, int size, const double* mu, int k, double* cov, int elements) {
    if (size < k) return fail(kTooSmall);
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
    if (!succeeded(pral::classic::prepare_remembered(factor, cov, k))) return false;
    std::vector<double> z(k);
    factor.draw(random_stream(), z.data(), out);
    for (int i = 0; i < k; ++i) out[i] = pral::numerics::finite_or_limit(out[i] + mu[i]);
    return true;
}

/// Classic densities have sqrt(2 pi) once, whatever the dimension: k - 1 such factors are missing.
double log_normal_with_one_two_pi(const pral::multivariate::QuadraticForm& form) {
    return pral::multivariate::log_normal(form, 1);
}

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
        return write_probability(result, log_normal_with_one_two_pi(*form), scale);
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
    return succeeded(
        share_by_probability(n, probabilities, pral::multivariate::kNoGroup, out, random_stream(), kDraws));
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

/// Classic samples are of the shapes alpha + 1; the density takes alpha as it is.
bool dirichlet(double* out, int size, const double* alpha, int k) {
    if (size < k) return fail("Error: return array size must be >= {alpha} size ");
    if (!given({{"alpha", alpha}}, k)) return false;
    std::vector<double> shapes;
    for (const double value : vector_of(alpha, k)) shapes.push_back(value + 1);
    const Message problem = sample_dirichlet(shapes, out, random_stream());
    return succeeded(problem == pral::multivariate::kNoProportions ? "Error: alpha values must be > -1"
                                                                   : problem);
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
    return succeeded(share_by_size(n, D, pral::multivariate::kNoGroup, out, random_stream()));
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

bool urn_excess(double* out, int size, const double* s, int ns, const double* D, int nD) {
    return guarded_vector(out, size, [&] {
        if (!urn_is_valid(s, ns, D, nD, "Error: each s(i) must be <= D(i)")) return false;
        if (size < ns) return fail(kCutOff);
        const Vector quota = vector_of(s, ns);
        std::vector<double> counts;
        const Message objection = wait_for_urn(quota, vector_of(D, nD), counts, random_stream());
        return write_excess(out, objection, counts, quota);
    });
}

bool trials_excess(double* out, int size, const double* s, int ns, const double* p, int np) {
    return guarded_vector(out, size, [&] {
        if (!trials_are_valid(s, ns, p, np)) return false;
        if (size < ns) return fail(kTooSmall);
        const Vector quota = vector_of(s, ns);
        std::vector<double> counts;
        const Message objection = wait_for_trials(quota, vector_of(p, np), counts, random_stream(), kDraws);
        return write_excess(out, objection, counts, quota);
    });
}

}  // namespace

PRAL_EXPORT_VECTOR(MultiNormal, (const double* mu, int k, double* cov, int covN), (mu, k, cov, covN),
                   guarded_vector(out, size,
                                  [&] { return multivariate_normal(out, size, mu, k, cov, covN); }));

bool PralMultiNormalProb_Core(double* result, const double* x, int nx, const double* mu, int nmu, double* cov,
                              int covN) {
    return normal_density(result, x, nx, mu, nmu, cov, covN, Scale::plain);
}

bool PralMultiNormalProb10_Core(double* result, const double* x, int nx, const double* mu, int nmu,
                                double* cov, int covN) {
    return normal_density(result, x, nx, mu, nmu, cov, covN, Scale::natural_log);
}

PRAL_EXPORT_VECTOR(Multinomial, (double n, const double* p, int k), (n, p, k),
                   guarded_vector(out, size, [&] { return multinomial(out, size, n, p, k); }));

bool PralMultinomialProb_Core(double* result, const double* s, int ns, const double* p, int np) {
    return multinomial_probability(result, s, ns, p, np, Scale::plain);
}

bool PralMultinomialProb10_Core(double* result, const double* s, int ns, const double* p, int np) {
    return multinomial_probability(result, s, ns, p, np, Scale::natural_log);
}

PRAL_EXPORT_VECTOR(Dirichlet, (const double* alpha, int k), (alpha, k),
                   guarded_vector(out, size, [&] { return dirichlet(out, size, alpha, k); }));

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
        std::vector<double> counts;
        const Message objection = wait_for_urn(vector_of(s, ns), vector_of(D, nD), counts, random_stream());
        return write_total(out, objection, counts);
    });
}

PRAL_EXPORT_VECTOR(InvMultiHypergeo2, (const double* s, int ns, const double* D, int nD), (s, ns, D, nD),
                   urn_excess(out, size, s, ns, D, nD));

bool PralNegMultinomial_Core(double* out, const double* s, int ns, const double* p, int np) {
    return guarded(out, 1, [&](int) {
        if (!trials_are_valid(s, ns, p, np)) return false;
        std::vector<double> counts;
        const Message objection =
            wait_for_trials(vector_of(s, ns), vector_of(p, np), counts, random_stream(), kDraws);
        return write_total(out, objection, counts);
    });
}

PRAL_EXPORT_VECTOR(NegMultinomial2, (const double* s, int ns, const double* p, int np), (s, ns, p, np),
                   trials_excess(out, size, s, ns, p, np));
