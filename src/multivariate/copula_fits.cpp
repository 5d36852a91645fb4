#include "multivariate/copula_fits.h"

#include <algorithm>
#include <map>
#include <utility>

#include "distributions/continuous/student.h"
#include "distributions/truncated.h"
#include "matrix/correlation_matrix.h"
#include "matrix/decomposition.h"
#include "multivariate/empirical_copula.h"
#include "numerics/gamma.h"
#include "statistics/ranks.h"

namespace pral::multivariate {

RankedData::RankedData(std::vector<double> by_variable, int d)
    : d_(d), m_(by_variable.size() / d_), ranks_(std::move(by_variable)) {
    for (std::size_t j = 0; j < d_; ++j) statistics::ranks(variable(j), false, &ranks_[j * m_]);
}

double RankedData::tau(std::size_t a, std::size_t b) const {
    return statistics::kendalls_tau(variable(a), variable(b));
}

double RankedData::mean_tau() const {
    double sum = 0;
    for (std::size_t a = 0; a + 1 < d_; ++a) {
        for (std::size_t b = a + 1; b < d_; ++b) sum += (b + 1 < d_ ? 2 : 1) * tau(a, b);
    }
    const double last = static_cast<double>(d_) - 1;
    return std::clamp(sum / (last * last), -1.0, 1.0);
}

int RankedData::corner(double first_sign, double second_sign) const {
    const double mean = (static_cast<double>(m_) + 1) / 2;
    const auto x = variable(0), y = variable(1);
    double sum = 0;
    for (std::size_t i = 0; i < m_; ++i) {
        const double from_centre = first_sign * (x[i] - mean) + second_sign * (y[i] - mean);
        sum += from_centre * from_centre * from_centre;
    }
    return (sum > 0) - (sum < 0);
}

RankedData ranked_samples(const std::vector<double>& samples, int d) {
    const int count = static_cast<int>(samples.size() / static_cast<std::size_t>(d));
    return {by_variable(samples.data(), count, d, false), d};
}

std::vector<double> fit_correlations(const RankedData& data) {
    const std::size_t d = data.variables();
    std::vector<double> matrix(d * d, 1.0), valid(d * d);
    for (std::size_t a = 0; a < d; ++a) {
        for (std::size_t b = a + 1; b < d; ++b)
            matrix[a * d + b] = matrix[b * d + a] = std::sin(0.5 * numerics::kPi * data.tau(a, b));
    }
    if (matrix::valid_corrmat(matrix.data(), data.variables(), valid.data()) != nullptr) valid.clear();
    return valid;
}

namespace {

/// The profile of the t copula's log-likelihood in nu. The correlations enter by their eigen-decomposition, whose
/// smallest values are raised so that a singular matrix, too, has a density.
class StudentProfile {
  public:
    StudentProfile(const RankedData& data, const std::vector<double>& correlations)
        : data_(data), eigen_(*matrix::symmetric_eigen(correlations.data(), data.variables())) {
        constexpr double kLeast = 1e-8;
        for (double& value : eigen_.values) value = std::max(value, kLeast);
        // Observations share their ranks: a quantile for each rank, half ranks of ties included.
        used_.assign(2 * static_cast<std::size_t>(data.observations()) + 1, false);
        for (int j = 0; j < data.variables(); ++j) {
            for (const double rank : data.variable(j)) used_[twice(rank)] = true;
        }
    }

    double operator()(int nu) const {
        const std::size_t d = data_.variables(), m = data_.observations();
        const Student student{static_cast<double>(nu)};
        std::vector<double> quantile(used_.size(), 0.5), margin(used_.size());
        for (std::size_t i = 0; i < used_.size(); ++i) {
            if (used_[i]) quantile[i] = static_cast<double>(i) / 2 / (static_cast<double>(m) + 1);
        }
        Truncated<Student>(student).quantiles(quantile);
        for (std::size_t i = 0; i < used_.size(); ++i) {
            if (used_[i]) margin[i] = numerics::log1p_fn(quantile[i] * quantile[i] / nu);
        }
        double margins = 0, joint = 0;
        std::vector<double> t(d);
        for (std::size_t i = 0; i < m; ++i) {
            for (std::size_t j = 0; j < d; ++j) {
                const std::size_t rank = twice(data_.variable(j)[i]);
                t[j] = quantile[rank];
                margins += margin[rank];
            }
            joint += numerics::log1p_fn(squared_length(t) / nu);
        }
        const double half = 0.5 * nu, size = static_cast<double>(d);
        const double constant = numerics::log_gamma(half + 0.5 * size) +
                                (size - 1) * numerics::log_gamma(half) -
                                size * numerics::log_gamma(half + 0.5);
        return static_cast<double>(m) * constant - (half + 0.5 * size) * joint + (half + 0.5) * margins;
    }

  private:
    static std::size_t twice(double rank) { return static_cast<std::size_t>(2 * rank); }

    /// t' R^-1 t.
    double squared_length(const std::vector<double>& t) const {
        double sum = 0;
        for (std::size_t k = 0; k < t.size(); ++k) {
            double along = 0;
            for (std::size_t j = 0; j < t.size(); ++j) along += eigen_.vectors[j * t.size() + k] * t[j];
            sum += along * along / eigen_.values[k];
        }
        return sum;
    }

    const RankedData& data_;
    matrix::EigenDecomposition eigen_;
    std::vector<bool> used_;
};

}  // namespace

int fit_degrees(const RankedData& data, const std::vector<double>& correlations) {
    const StudentProfile profile(data, correlations);
    std::map<int, double> known;
    const auto likelihood = [&](int nu) {
        const auto [place, fresh] = known.try_emplace(nu, 0.0);
        if (fresh) place->second = profile(nu);
        return place->second;
    };
    // The profile rises to its maximum and falls: by powers of two next to it, then halving the steps.
    int best = 1;
    for (int nu = 2; nu <= kMostDegrees; nu *= 2) {
        if (likelihood(nu) > likelihood(best)) best = nu;
    }
    for (int step = std::max(best / 2, 1); step > 0; step /= 2) {
        const int centre = best;
        for (const int nu : {centre - step, centre + step}) {
            if (nu >= 1 && nu <= kMostDegrees && likelihood(nu) > likelihood(best)) best = nu;
        }
    }
    return best;
}

Message fit_elliptical(EllipticalFit& fit, const RankedData& data, bool student) {
    fit.correlations = fit_correlations(data);
    if (fit.correlations.empty()) return "Error: the correlation matrix cannot be repaired";
    fit.nu = student ? fit_degrees(data, fit.correlations) : 0;
    return nullptr;
}

Message refit_elliptical(EllipticalFit& fit, int variables, int observations, RandomStream& stream) {
    CovarianceFactor factor;
    if (const Message problem = factor.factorise(fit.correlations.data(), variables)) return problem;
    std::vector<double> samples(static_cast<std::size_t>(variables) * observations);
    if (fit.nu == 0)
        sample_normal_copula(factor, observations, samples.data(), stream);
    else if (const Message problem =
                 StudentCopula(fit.nu, factor).sample(observations, samples.data(), stream))
        return problem;
    return fit_elliptical(fit, ranked_samples(samples, variables), fit.nu != 0);
}

}  // namespace pral::multivariate
