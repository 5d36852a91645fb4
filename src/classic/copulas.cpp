// The exported copulas. One call gives samples of one matrix or parameter; the factor of the last matrix is remembered.
#include <algorithm>
#include <cmath>

#include "classic/copulas.h"
#include "classic/core_api.h"
#include "classic/factor_memory.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "distributions/continuous/uniform.h"
#include "distributions/draws.h"
#include "matrix/matrix.h"
#include "multivariate/elliptical.h"
#include "multivariate/empirical_copula.h"

using pral::fail;
using pral::given;
using pral::Message;
using pral::random_stream;
using pral::succeeded;
using pral::classic::CutPiGumbel;
using pral::classic::guarded_vector;
using pral::classic::prepare_remembered;
using pral::multivariate::Clayton;
using pral::multivariate::CovarianceFactor;
using pral::multivariate::Frank;
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
        if (!succeeded(pral::draw(u, pral::Uniform{0, 1}, random_stream()))) return false;
        std::fill_n(out, size, u);
        return true;
    }
    CovarianceFactor factor;
    return succeeded(prepare_remembered(factor, correlation.matrix(), correlation.size())) &&
           succeeded(factor.standardise()) && sample(factor);
}

/// The factor of the matrix of one correlation.
Message factorise_pair(double rho, CovarianceFactor& factor) {
    double matrix[4] = {1, rho, rho, 1};
    return prepare_remembered(factor, matrix, 2);
}

bool normal_pair(double* out, int n, double rho) {
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

bool student_pair(double* out, int n, double nu, double rho) {
    return guarded_vector(out, n, [&] {
        if (n != 2) return fail(kNotAPair);
        CovarianceFactor factor;
        if (!succeeded(factorise_pair(rho, factor))) return false;
        if (std::isinf(nu)) return fail(kDegreesMessage);
        return succeeded(StudentCopula(nu, factor).sample_pair(out, random_stream()));
    });
}

bool normal(double* out, int outN, double* corr, int d, int nSamples) {
    return guarded_vector(out, outN, [&] {
        return elliptical(out, outN, corr, d, nSamples, [&](const CovarianceFactor& factor) {
            pral::multivariate::sample_normal_copula(factor, nSamples, out, random_stream());
            return true;
        });
    });
}

bool student(double* out, int outN, double nu, double* corr, int d, int nSamples) {
    return guarded_vector(out, outN, [&] {
        if (nu != std::floor(nu) || std::isinf(nu)) return fail(kDegreesMessage);
        return elliptical(out, outN, corr, d, nSamples, [&](const CovarianceFactor& factor) {
            return succeeded(StudentCopula(nu, factor).sample(nSamples, out, random_stream()));
        });
    });
}

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

PRAL_EXPORT_VECTOR(CopulaBiClayton, (double alpha, int direction), (alpha, direction),
                   bivariate<Clayton>(out, size, alpha, direction));

PRAL_EXPORT_VECTOR(CopulaBiGumbel, (double theta, int direction), (theta, direction),
                   bivariate<CutPiGumbel>(out, size, theta, direction));

PRAL_EXPORT_VECTOR(CopulaBiFrank, (double theta, int direction), (theta, direction),
                   bivariate<Frank>(out, size, theta, direction));

PRAL_EXPORT_VECTOR(CopulaMultiClayton, (double alpha, int nSamples), (alpha, nSamples),
                   multivariate<Clayton>(out, size, alpha, nSamples));

PRAL_EXPORT_VECTOR(CopulaMultiGumbel, (double theta, int nSamples), (theta, nSamples),
                   multivariate<CutPiGumbel>(out, size, theta, nSamples));

PRAL_EXPORT_VECTOR(CopulaMultiFrank, (double theta, int nSamples), (theta, nSamples),
                   multivariate<Frank>(out, size, theta, nSamples));

PRAL_EXPORT_VECTOR(CopulaBiNormal, (double rho), (rho), normal_pair(out, size, rho));

PRAL_EXPORT_VECTOR(CopulaBiT, (double nu, double rho), (nu, rho), student_pair(out, size, nu, rho));

PRAL_EXPORT_VECTOR(CopulaMultiNormal, (double* corr, int d, int nSamples), (corr, d, nSamples),
                   normal(out, size, corr, d, nSamples));

PRAL_EXPORT_VECTOR(CopulaMultiT, (double nu, double* corr, int d, int nSamples), (nu, corr, d, nSamples),
                   student(out, size, nu, corr, d, nSamples));

PRAL_EXPORT_VECTOR(CopulaData, (const double* data, int rows, int cols, int dataInRows),
                   (data, rows, cols, dataInRows), empirical(out, size, data, rows, cols, dataInRows, false));

PRAL_EXPORT_VECTOR(CopulaDataSeries, (const double* data, int rows, int cols, int dataInRows),
                   (data, rows, cols, dataInRows), empirical(out, size, data, rows, cols, dataInRows, true));
