// The normal distribution under its parameterisations, and what is made of it by mixing, skewing and division.
#pragma once

#include <numbers>

#include "distributions/adapters.h"
#include "distributions/sample.h"
#include "numerics/normal.h"
#include "numerics/owens_t.h"

namespace pral {

/// The standard normal distribution, for families that are made of it.
struct StandardNormal {
    static constexpr bool kUnitGaussian = true;
    Support support() const { return kReals; }
    double cumulative(double z) const { return numerics::normal_cumulative(z); }
    double survival(double z) const { return numerics::normal_survival(z); }
    double log_cumulative(double z) const { return numerics::normal_log_cumulative(z); }
    double log_survival(double z) const { return numerics::normal_log_cumulative(-z); }
    double log_density(double z) const { return -0.5 * z * z - numerics::kLnSqrt2Pi; }
    double quantile(double p) const { return numerics::normal_quantile(p); }
    double quantile_upper(double q) const { return numerics::normal_quantile_upper(q); }
    void quantiles(std::span<double> p) const { numerics::normal_quantiles(p); }
    Moments moments() const { return {0, 1, 0, 0}; }
    double mode() const { return 0; }
    double log_mgf(double t) const { return 0.5 * t * t; }
    double tilted_mode(double t) const { return -t; }
    double normal_deviation() const { return 1; }
};

/// Mean mu (any value), standard deviation sigma >= 0; sigma = 0 is a point mass at mu.
struct Normal {
    double mu, sigma;

    Message check() const {
        if (!(sigma >= 0)) return "Error: sigma must be >= 0";
        return nullptr;
    }
    Support support() const { return kReals; }
    std::optional<double> point_mass() const { return sigma == 0 ? std::optional(mu) : std::nullopt; }

    double cumulative(double x) const { return numerics::normal_cumulative((x - mu) / sigma); }
    double survival(double x) const { return numerics::normal_survival((x - mu) / sigma); }
    double log_cumulative(double x) const { return numerics::normal_log_cumulative((x - mu) / sigma); }
    double log_survival(double x) const { return numerics::normal_log_cumulative((mu - x) / sigma); }
    double log_density(double x) const { return log_likelihood({&x, 1}); }
    double log_likelihood(std::span<const double> values) const;
    double log_likelihood(const Sample& x) const {
        return x.count() * (log_density(x.mean()) - 0.5 * (x.variance() / sigma / sigma));
    }

    double quantile(double p) const { return mu + sigma * numerics::normal_quantile(p); }
    double quantile_upper(double q) const { return mu + sigma * numerics::normal_quantile_upper(q); }
    void quantiles(std::span<double> p) const;
    /// The cosine branch of Box and Muller (1958); its sine partner is not kept.
    double random(double u, RandomStream& stream) const;

    Moments moments() const { return {mu, sigma * sigma, 0, 0}; }
    double mode() const { return mu; }
    double log_mgf(double t) const { return t * (mu + 0.5 * sigma * sigma * t); }
    double tilted_mode(double t) const { return mu - sigma * sigma * t; }
    double normal_deviation() const { return sigma; }
};

/// The Normal whose cumulative is Prob1 at Value1 and Prob2 at Value2: the larger probability, within [0,1], belongs to
/// the larger value. A probability of 0 or 1 leaves a point mass at the other value, 0 and 1 together one halfway.
/// X = value + scale (Z - z) from the point nearer to the median, so that nothing is lost to a mean far from both.
struct NormalAlt : LocationScale<Normal> {
    double Value1, Prob1, Value2, Prob2;

    NormalAlt(double value1, double prob1, double value2, double prob2)
        : LocationScale(through(value1, prob1, value2, prob2)),
          Value1(value1),
          Prob1(prob1),
          Value2(value2),
          Prob2(prob2) {}
    Message check() const {
        if (!(Prob1 < Prob2 || Prob1 > Prob2)) return "Error: nProb1 must be >< nProb2";
        if (Prob1 < Prob2 && !(Value1 < Value2))
            return "Error: if Prob1 < Prob2 then Value1 must be < Value2";
        if (Prob1 > Prob2 && !(Value1 > Value2))
            return "Error: if Prob1 > Prob2 then Value1 must be > Value2";
        if (!(Prob2 >= 0 && Prob2 <= 1)) return "Error: nProb2 must be between [0,1]";
        if (!(Prob1 >= 0 && Prob1 <= 1)) return "Error: nProb1 must be between [0,1]";
        return nullptr;
    }

  private:
    static LocationScale<Normal> through(double value1, double prob1, double value2, double prob2);
};

/// Precision h > 0; support all reals. Normal(0, 1/(h sqrt(2))), so that F = (1 + erf(h x))/2.
struct Erf : LocationScale<StandardNormal> {
    double h;

    explicit Erf(double h_) : LocationScale(0, 1 / (h_ * std::numbers::sqrt2)), h(h_) {}
    Message check() const {
        if (!(h > 0)) return "Error: h must be > 0";
        return nullptr;
    }
    double log_likelihood(const Sample& x) const { return x.count() * log_density(x.root_mean_square()); }
};

/// The equal mixture of Normal(0, wide^2) and Normal(0, narrow^2), wide^2 + narrow^2 = 2, of a given excess kurtosis.
class StandardNormalMix {
  public:
    static constexpr bool kCostlyQuantiles = true;
    double excess_kurtosis;

    explicit StandardNormalMix(double excess_kurtosis);
    Support support() const { return kReals; }
    double cumulative(double z) const {
        return 0.5 * (numerics::normal_cumulative(z / wide_) + numerics::normal_cumulative(z / narrow_));
    }
    double survival(double z) const { return cumulative(-z); }
    double log_cumulative(double z) const;
    double log_survival(double z) const { return log_cumulative(-z); }
    double log_density(double z) const;
    double log_likelihood(std::span<const double> z) const;
    double quantile(double p) const;
    double quantile_upper(double q) const { return -quantile(q); }
    Moments moments() const { return {0, 1, 0, excess_kurtosis}; }
    double mode() const { return 0; }

  private:
    double wide_, narrow_, log_wide_, log_narrow_;
};

/// Mean mu, standard deviation sigma >= 0, 0 being a point mass at mu, excess kurtosis 0 <= excessKurt < 3; support all
/// reals. The equal mixture of Normal(mu, sigma sqrt(1 + k)) and Normal(mu, sigma sqrt(1 - k)), k = sqrt(excessKurt/3).
struct NormalMix : LocationScale<StandardNormalMix> {
    NormalMix(double mu, double sigma, double excessKurt)
        : LocationScale(mu, sigma, StandardNormalMix(excessKurt)) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: Sigma must be >= 0";
        if (!(standard.excess_kurtosis >= 0 && standard.excess_kurtosis < 3))
            return "Error: ExcessKurt must be >= 0 and <3";
        return nullptr;
    }
};

/// f = 2 phi(z) Phi(alpha z) (Azzalini 1985).
class StandardSkewNormal {
  public:
    static constexpr bool kCostlyQuantiles = true;
    double alpha;

    explicit StandardSkewNormal(double alpha_) : alpha(alpha_), slant_(std::sqrt(1 + alpha_ * alpha_)) {}
    Support support() const { return kReals; }
    double cumulative(double z) const { return numerics::skew_normal_cumulative(z, alpha); }
    double survival(double z) const { return numerics::skew_normal_survival(z, alpha); }
    double log_cumulative(double z) const;
    double log_survival(double z) const { return StandardSkewNormal(-alpha).log_cumulative(-z); }
    double log_density(double z) const {
        if (std::isinf(z)) return -HUGE_VAL;
        return numerics::kLn2 - numerics::kLnSqrt2Pi - 0.5 * z * z +
               numerics::normal_log_cumulative(alpha * z);
    }
    double log_likelihood(std::span<const double> z) const;
    double quantile(double p) const;
    double quantile_upper(double q) const { return -StandardSkewNormal(-alpha).quantile(q); }
    Moments moments() const {
        const double mean = alpha / slant_ * std::sqrt(2 / numerics::kPi), variance = 1 - mean * mean;
        const double ratio = mean / std::sqrt(variance);
        return {mean, variance, 0.5 * (4 - numerics::kPi) * ratio * ratio * ratio,
                2 * (numerics::kPi - 3) * ratio * ratio * ratio * ratio};
    }

  private:
    double start(double p) const;  // near the quantile p <= 1/2

    double slant_;
};

/// Location mu, scale sigma >= 0, 0 being a point mass at mu, shape -100 <= alpha <= 100; support all reals.
/// f = (2/sigma) phi(z) Phi(alpha z), z = (x - mu)/sigma.
struct SkewNormal : LocationScale<StandardSkewNormal> {
    SkewNormal(double mu, double sigma, double alpha) : LocationScale(mu, sigma, StandardSkewNormal(alpha)) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: Sigma must be >= 0";
        if (!(standard.alpha >= -100 && standard.alpha <= 100))
            return "Error: Alpha must be >= -100 and <=100";
        return nullptr;
    }
};

/// A standard normal variable over an independent uniform one (Rogers and Tukey 1972).
struct StandardSlash {
    static constexpr bool kCostlyQuantiles = true;
    Support support() const { return kReals; }
    double cumulative(double z) const { return z < 0 ? tail(-z) : 1 - tail(z); }
    double survival(double z) const { return cumulative(-z); }
    double log_density(double z) const;
    double quantile(double p) const;
    double quantile_upper(double q) const { return -quantile(q); }
    Moments moments() const { return kNoMoments; }
    double moment_limit(Side) const { return 1; }
    double mode() const { return 0; }

  private:
    static double tail(double z);  // the probability above z >= 0
};

/// Location mu, scale >= 0, 0 being a point mass at mu; support all reals. mu + scale N/V, N standard normal, V uniform:
/// f = (phi(0) - phi(z))/(scale z^2), F = Phi(z) - (phi(0) - phi(z))/z.
struct Slash : LocationScale<StandardSlash> {
    Slash(double mu, double scale_) : LocationScale(mu, scale_) {}
    Message check() const {
        if (!(scale >= 0)) return "Error: Scale must be >= 0";
        return nullptr;
    }
};

}  // namespace pral
