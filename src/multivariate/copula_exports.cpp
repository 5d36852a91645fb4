// The exported copulas.
#include <cmath>

#include "boundary/core_api.h"
#include "distributions/families.h"
#include "distributions/members.h"
#include "matrix/matrix.h"
#include "multivariate/archimedean.h"
#include "multivariate/elliptical.h"
#include "multivariate/empirical_copula.h"
#include "multivariate/vector_call.h"

using pral::fail;
using pral::given;
using pral::Message;
using pral::random_stream;
using pral::succeeded;
using pral::with_locked_array;
using pral::multivariate::Clayton;
using pral::multivariate::CovarianceFactor;
using pral::multivariate::Frank;
using pral::multivariate::guarded_vector;
using pral::multivariate::Gumbel;
using pral::multivariate::StudentCopula;

namespace {

constexpr Message kNotAPair = "Error: output array size must be =2";
constexpr Message kDegreesMessage = "Error: nu must be a positive integer";
constexpr Message kSizeMessage = "Error: output array size is not valid";

template <class Copula>
bool bivariate(double* out, int n, double parameter, int direction) {
    return guarded_vector(out, n, [&] {
        if (n != 2) return fail(kNotAPair);
        if (const Message objection = pral::multivariate::refuse_direction<Copula>(direction))
            return fail(objection);
        if (!Copula::bivariate_range(parameter)) return fail(Copula::kBivariate);
        pral::multivariate::sample<Copula>(parameter, 2, 1, out, random_stream());
        pral::multivariate::apply_direction(direction, out);
        return true;
    });
}

template <class Copula>
bool multivariate(double* out, int size, double parameter, int samples) {
    return guarded_vector(out, size, [&] {
        const int d = samples > 0 ? size / samples : 0;
        if (d < 2) return fail(kSizeMessage);
        if (d == 2 && !Copula::bivariate_range(parameter)) return fail(Copula::kPair);
        if (d > 2 && !Copula::multivariate_range(parameter)) return fail(Copula::kMultivariate);
        pral::multivariate::sample<Copula>(parameter, d, samples, out, random_stream());
        return true;
    });
}

/// The correlation matrix of an elliptical copula, as its callers give it: d x d elements or, with d = 1 and two
/// outputs a sample, one correlation.
class GivenCorrelation {
  public:
    GivenCorrelation(double* corr, int d, int size, int samples) : matrix_(corr), d_(d) {
        const long long count = samples, outputs = size;
        valid_ = d >= 1 && samples >= 0 && (d * count == outputs || (d == 1 && 2 * count == outputs));
        if (!valid_ || corr == nullptr || d * count == outputs) return;
        pair_[0] = pair_[3] = 1;
        pair_[1] = pair_[2] = *corr;
        matrix_ = pair_;
        d_ = 2;
    }
    GivenCorrelation(const GivenCorrelation&) = delete;
    GivenCorrelation& operator=(const GivenCorrelation&) = delete;

    Message check_size() const {
        return valid_ ? nullptr
                      : "Error: number of elements in the output must equal to the size of the matrix";
    }
    /// All correlations are one, or all elements the same number >= 0.
    bool constant() const {
        const std::size_t elements = pral::matrix::element_count(d_);
        return matrix_[0] >= 0 && std::all_of(matrix_, matrix_ + elements,
                                              [this](double element) { return element == matrix_[0]; });
    }
    double* matrix() { return matrix_; }
    int size() const { return d_; }

  private:
    double* matrix_;
    int d_;
    bool valid_;
    double pair_[4];
};

/// The frame of both elliptical copulas; `sample` gets the factor of the matrix.
template <class Sample>
bool elliptical(double* out, int size, double* corr, int d, int samples, Sample sample) {
    GivenCorrelation correlation(corr, d, size, samples);
    if (!succeeded(correlation.check_size()) || !given({{"corr", corr}})) return false;
    if (correlation.constant()) {
        double u = 0;
        if (!pral::draw(&u, pral::Uniform{0, 1})) return false;
        std::fill_n(out, size, u);
        return true;
    }
    CovarianceFactor factor;
    return succeeded(factor.prepare(correlation.matrix(), correlation.size())) &&
           succeeded(factor.standardise()) && sample(factor);
}

/// The factor of the matrix of one correlation.
Message factorise_pair(double rho, CovarianceFactor& factor) {
    double matrix[4] = {1, rho, rho, 1};
    return factor.prepare(matrix, 2);
}

}  // namespace

bool PralCopulaBiClayton_Core(double* out, int n, double alpha, int direction) {
    return bivariate<Clayton>(out, n, alpha, direction);
}

bool PralCopulaBiClaytonVB_Core(SAFEARRAY** out, double alpha, int direction) {
    return with_locked_array(
        out, [=](double* data, int size) { return bivariate<Clayton>(data, size, alpha, direction); });
}

bool PralCopulaBiGumbel_Core(double* out, int n, double theta, int direction) {
    return bivariate<Gumbel>(out, n, theta, direction);
}

bool PralCopulaBiGumbelVB_Core(SAFEARRAY** out, double theta, int direction) {
    return with_locked_array(
        out, [=](double* data, int size) { return bivariate<Gumbel>(data, size, theta, direction); });
}

bool PralCopulaBiFrank_Core(double* out, int n, double theta, int direction) {
    return bivariate<Frank>(out, n, theta, direction);
}

bool PralCopulaBiFrankVB_Core(SAFEARRAY** out, double theta, int direction) {
    return with_locked_array(
        out, [=](double* data, int size) { return bivariate<Frank>(data, size, theta, direction); });
}

bool PralCopulaMultiClayton_Core(double* out, int outN, double alpha, int nSamples) {
    return multivariate<Clayton>(out, outN, alpha, nSamples);
}

bool PralCopulaMultiClaytonVB_Core(SAFEARRAY** out, double alpha, int nSamples) {
    return with_locked_array(
        out, [=](double* data, int size) { return multivariate<Clayton>(data, size, alpha, nSamples); });
}

bool PralCopulaMultiGumbel_Core(double* out, int outN, double theta, int nSamples) {
    return multivariate<Gumbel>(out, outN, theta, nSamples);
}

bool PralCopulaMultiGumbelVB_Core(SAFEARRAY** out, double theta, int nSamples) {
    return with_locked_array(
        out, [=](double* data, int size) { return multivariate<Gumbel>(data, size, theta, nSamples); });
}

bool PralCopulaMultiFrank_Core(double* out, int outN, double theta, int nSamples) {
    return multivariate<Frank>(out, outN, theta, nSamples);
}

bool PralCopulaMultiFrankVB_Core(SAFEARRAY** out, double theta, int nSamples) {
    return with_locked_array(
        out, [=](double* data, int size) { return multivariate<Frank>(data, size, theta, nSamples); });
}

bool PralCopulaBiNormal_Core(double* out, int n, double rho) {
    return guarded_vector(out, n, [&] {
        if (n != 2) return fail(kNotAPair);
        if (rho == 1 || rho == -1) {
            const double u = random_stream().uniform();
            out[0] = u;
            out[1] = rho > 0 ? u : 1 - u;
            return true;
        }
        CovarianceFactor factor;
        if (!succeeded(factorise_pair(rho, factor))) return false;
        pral::multivariate::sample_normal_copula(factor, 1, out, random_stream());
        return true;
    });
}

bool PralCopulaBiNormalVB_Core(SAFEARRAY** out, double rho) {
    return with_locked_array(
        out, [=](double* data, int size) { return PralCopulaBiNormal_Core(data, size, rho); });
}

bool PralCopulaBiT_Core(double* out, int n, double nu, double rho) {
    return guarded_vector(out, n, [&] {
        if (n != 2) return fail(kNotAPair);
        CovarianceFactor factor;
        if (!succeeded(factorise_pair(rho, factor))) return false;
        if (std::isinf(nu)) return fail(kDegreesMessage);
        return StudentCopula(nu, factor).sample_pair(out, random_stream());
    });
}

bool PralCopulaBiTVB_Core(SAFEARRAY** out, double nu, double rho) {
    return with_locked_array(out,
                             [=](double* data, int size) { return PralCopulaBiT_Core(data, size, nu, rho); });
}

bool PralCopulaMultiNormal_Core(double* out, int outN, double* corr, int d, int nSamples) {
    return guarded_vector(out, outN, [&] {
        return elliptical(out, outN, corr, d, nSamples, [&](const CovarianceFactor& factor) {
            pral::multivariate::sample_normal_copula(factor, nSamples, out, random_stream());
            return true;
        });
    });
}

bool PralCopulaMultiNormalVB_Core(SAFEARRAY** out, double* corr, int d, int nSamples) {
    return with_locked_array(out, [=](double* data, int size) {
        return PralCopulaMultiNormal_Core(data, size, corr, d, nSamples);
    });
}

bool PralCopulaMultiT_Core(double* out, int outN, double nu, double* corr, int d, int nSamples) {
    return guarded_vector(out, outN, [&] {
        if (nu != std::floor(nu) || std::isinf(nu)) return fail(kDegreesMessage);
        return elliptical(out, outN, corr, d, nSamples, [&](const CovarianceFactor& factor) {
            return StudentCopula(nu, factor).sample(nSamples, out, random_stream());
        });
    });
}

bool PralCopulaMultiTVB_Core(SAFEARRAY** out, double nu, double* corr, int d, int nSamples) {
    return with_locked_array(out, [=](double* data, int size) {
        return PralCopulaMultiT_Core(data, size, nu, corr, d, nSamples);
    });
}

namespace {

bool empirical(double* out, int size, const double* data, int rows, int cols, int in_rows, bool series) {
    return guarded_vector(out, size, [&] {
        const int d = in_rows != 0 ? rows : cols, observations = in_rows != 0 ? cols : rows;
        if (observations < 2) return fail("Error: {data} array length must be >=2");
        if (d < 1 || size < d) return fail(kSizeMessage);
        if (!given({{"data", data}})) return false;
        const auto variables = pral::multivariate::by_variable(data, rows, cols, in_rows != 0);
        const pral::multivariate::EmpiricalCopula copula(variables, d);
        copula.sample(size / d, series, out, random_stream());
        return true;
    });
}

}  // namespace

bool PralCopulaData_Core(double* out, int outN, const double* data, int rows, int cols, int dataInRows) {
    return empirical(out, outN, data, rows, cols, dataInRows, false);
}

bool PralCopulaDataVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows) {
    return with_locked_array(out, [=](double* elements, int size) {
        return empirical(elements, size, data, rows, cols, dataInRows, false);
    });
}

bool PralCopulaDataSeries_Core(double* out, int outN, const double* data, int rows, int cols,
                               int dataInRows) {
    return empirical(out, outN, data, rows, cols, dataInRows, true);
}

bool PralCopulaDataSeriesVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows) {
    return with_locked_array(out, [=](double* elements, int size) {
        return empirical(elements, size, data, rows, cols, dataInRows, true);
    });
}
