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

/// The profile of the t copula's log-likelihood in nu, of every `stride`-th observation. The correlations enter by their
/// eigen-decomposition, whose smallest values are raised so that a singular matrix, too, has a density.
class StudentProfile {
  public:
    StudentProfile(const RankedData& data, const std::vector<double>& correlations, std::size_t stride)
        : data_(data),
          stride_(stride),
          end_(2 * (static_cast<std::size_t>(data.observations()) + 1)),
          eigen_(*matrix::symmetric_eigen(correlations.data(), data.variables())) {
        constexpr double kLeast = 1e-8;
        for (double& value : eigen_.values) value = std::max(value, kLeast);
        // Observations share their ranks: a quantile for each, half ranks of ties included, and one for both tails.
        std::vector<bool> used(end_ / 2 + 1, false);
        for (int j = 0; j < data.variables(); ++j) {
            const auto ranks = data.variable(static_cast<std::size_t>(j));
            for (std::size_t i = 0; i < ranks.size(); i += stride_) used[depth(twice(ranks[i]))] = true;
        }
        for (std::size_t i = 0; i < used.size(); ++i) {
            if (used[i]) depths_.push_back(i);
        }
        scores_.resize(used.size());
    }

    double operator()(int nu) {
        fill_scores(nu);
        const std::size_t d = data_.variables(), m = data_.observations();
        double margins = 0, joint = 0, count = 0;
        std::vector<double> t(d);
        for (std::size_t i = 0; i < m; i += stride_) {
            for (std::size_t j = 0; j < d; ++j) {
                const std::size_t rank = twice(data_.variable(j)[i]);
                const auto& [quantile, margin] = scores_[depth(rank)];
                t[j] = 2 * rank > end_ ? -quantile : quantile;
                margins += margin;
            }
            joint += numerics::log1p_fn(squared_length(t) / nu);
            count += 1;
        }
        const double half = 0.5 * nu, size = static_cast<double>(d);
        const double constant = numerics::log_gamma(half + 0.5 * size) +
                                (size - 1) * numerics::log_gamma(half) -
                                size * numerics::log_gamma(half + 0.5);
        return count * constant - (half + 0.5 * size) * joint + (half + 0.5) * margins;
    }

  private:
    /// What a rank contributes: its quantile in the lower tail, and the logarithm in the density there.
    struct Score {
        double quantile, margin;
    };

    static std::size_t twice(double rank) { return static_cast<std::size_t>(2 * rank); }
    /// The same distance from the nearer end, which twice m + 1 is the other one of.
    std::size_t depth(std::size_t twice_rank) const { return std::min(twice_rank, end_ - twice_rank); }

    void fill_scores(int nu) {
        const Student student{static_cast<double>(nu)};
        std::vector<double> quantiles(depths_.size());
        for (std::size_t i = 0; i < depths_.size(); ++i)
            quantiles[i] = static_cast<double>(depths_[i]) / static_cast<double>(end_);
        Truncated<Student>(student).quantiles(quantiles);
        for (std::size_t i = 0; i < depths_.size(); ++i) {
            const double t = quantiles[i];
            scores_[depths_[i]] = {t, numerics::log1p_fn(t * t / nu)};
        }
    }

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
    std::size_t stride_, end_;
    matrix::EigenDecomposition eigen_;
    std::vector<std::size_t> depths_;
    std::vector<Score> scores_;
};

/// The search for the whole number of greatest likelihood. The profile rises to its maximum and falls.
class DegreesSearch {
  public:
    DegreesSearch(const RankedData& data, const std::vector<double>& correlations, std::size_t stride = 1)
        : profile_(data, correlations, stride) {}

    /// By powers of two next to it, then halving the steps.
    int from_all() {
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

    /// By parabolas through three neighbours, from a number that is nearly the best; the end is higher than both of its own.
    int from(int nu) {
        constexpr int kMostSteps = 8;
        for (int i = 0; i < kMostSteps; ++i) {
            nu = std::clamp(nu, 2, kMostDegrees - 1);
            const double below = likelihood(nu - 1), here = likelihood(nu), above = likelihood(nu + 1);
            if (here >= below && here >= above) return nu;
            const bool up = above > below;
            const int end = up ? kMostDegrees : 1;
            if (nu + (up ? 1 : -1) == end) return end;
            const int next = vertex(nu, below, here, above);
            nu = (next > nu) == up && next != nu ? next : nu + (up ? 2 : -2);
        }
        return from_all();
    }

  private:
    double likelihood(int nu) {
        const auto [place, fresh] = known_.try_emplace(nu, 0.0);
        if (fresh) place->second = profile_(nu);
        return place->second;
    }

    /// The top of the parabola in 1/nu, of which the profile nearly is one; at most half or twice nu.
    static int vertex(int nu, double below, double here, double above) {
        const double x = 1.0 / nu, to_below = 1.0 / (nu - 1) - x, to_above = 1.0 / (nu + 1) - x;
        const double first = (below - here) / to_below, second = (above - here) / to_above;
        const double curvature = (first - second) / (to_below - to_above),
                     slope = first - curvature * to_below;
        const double top = curvature < 0 ? x - 0.5 * slope / curvature : (above > below ? 0 : 1);
        return static_cast<int>(std::lround(1 / std::clamp(top, 0.5 * x, 2 * x)));
    }

    StudentProfile profile_;
    std::map<int, double> known_;
};

}  // namespace

int fit_degrees(const RankedData& data, const std::vector<double>& correlations) {
    constexpr std::size_t kPart = 20000;  // tells nearly where the maximum of all lies
    const std::size_t stride = static_cast<std::size_t>(data.observations()) / kPart;
    DegreesSearch all(data, correlations);
    if (stride < 2) return all.from_all();
    return all.from(DegreesSearch(data, correlations, stride).from_all());
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
