#include "distributions/continuous/normal.h"

#include "distributions/quantile_search.h"
#include "numerics/gauss_legendre.h"
#include "numerics/sums.h"

namespace pral {

using namespace numerics;

double Normal::log_likelihood(std::span<const double> values) const {
    const double per_sigma = std::min(1 / sigma, kInfinity);  // 0 times it must stay 0
    const double squares = interleaved_sum(values, [=, this](double x) {
        const double z = (x - mu) * per_sigma;
        return z * z;
    });
    return -static_cast<double>(values.size()) * (std::log(sigma) + kLnSqrt2Pi) - 0.5 * squares;
}

void Normal::quantiles(std::span<double> p) const {
    normal_quantiles(p);
    for (double& value : p) value = mu + sigma * value;
}

double Normal::random(double u, RandomStream& stream) const {
    return mu + sigma * std::sqrt(-2 * std::log(u)) * std::cos(2 * kPi * stream.uniform());
}

LocationScale<Normal> NormalAlt::through(double value1, double prob1, double value2, double prob2) {
    const double z1 = normal_quantile(prob1), z2 = normal_quantile(prob2);
    const double size1 = std::fabs(z1), size2 = std::fabs(z2);
    if (size1 == kInfinity && size2 == kInfinity) return {0.5 * value1 + 0.5 * value2, 0};
    const double scale = std::max(size1, size2) < kInfinity ? (value2 - value1) / (z2 - z1) : 0;
    return size1 <= size2 ? LocationScale(value1, scale, Normal{-z1, 1})
                          : LocationScale(value2, scale, Normal{-z2, 1});
}

StandardNormalMix::StandardNormalMix(double excess_kurtosis_) : excess_kurtosis(excess_kurtosis_) {
    const double k = std::sqrt(excess_kurtosis / 3);
    wide_ = std::sqrt(1 + k);
    narrow_ = std::sqrt((3 - excess_kurtosis) / 3) / wide_;  // sqrt(1 - k) without cancellation
    log_wide_ = std::log(wide_);
    log_narrow_ = std::log(narrow_);
}

namespace {

/// ln((e^a + e^b)/2).
double log_mean(double a, double b) {
    const double larger = std::max(a, b);
    return larger == -HUGE_VAL ? larger : larger - kLn2 + log1p_fn(std::exp(std::min(a, b) - larger));
}

}  // namespace

double StandardNormalMix::log_cumulative(double z) const {
    if (z > 0) return log1p_fn(-survival(z));
    return log_mean(normal_log_cumulative(z / wide_), normal_log_cumulative(z / narrow_));
}

double StandardNormalMix::log_density(double z) const {
    const StandardNormal normal;
    return log_mean(normal.log_density(z / wide_) - log_wide_, normal.log_density(z / narrow_) - log_narrow_);
}

double StandardNormalMix::log_likelihood(std::span<const double> z) const {
    const double wide = -0.5 / (wide_ * wide_), narrow = -0.5 / (narrow_ * narrow_);
    const double logs = sum_of_logs(z, [=, this](double v) {
        const double square = v * v;
        return std::exp(wide * square) / wide_ + std::exp(narrow * square) / narrow_;
    });
    return logs - static_cast<double>(z.size()) * (kLnSqrt2Pi + kLn2);
}

/// The tail lies between a half and the whole of the wide component's.
double StandardNormalMix::quantile(double p) const {
    if (p > 0.5) return -quantile(1 - p);
    const double start = p < 0.1 ? wide_ * normal_quantile(2 * p) : narrow_ * normal_quantile(p);
    return search_quantile(*this, Side::lower, p, start);
}

/// Where F underflows: f(z) times the integral of f(z - s)/f(z) over s > 0, which is nearly exponential there.
double StandardSkewNormal::log_cumulative(double z) const {
    const double lower = cumulative(z);
    if (lower > DBL_MIN || std::isnan(lower)) {
        const double upper = survival(z);
        return upper < 0.5 ? log1p_fn(-upper) : std::log(lower);
    }
    const double at = log_density(z);
    if (!(z > -1e100)) return at;
    const double rate = -z + (alpha > 0 ? alpha / normal_mills_ratio(-alpha * z) : 0);
    const double integral =
        integrate(40, 2, [&](double s) { return std::exp(log_density(z - s / rate) - at); });
    return at + std::log(integral / rate);
}

double StandardSkewNormal::log_likelihood(std::span<const double> z) const {
    const double squares = interleaved_sum(z, [](double v) { return v * v; });
    const double logs = sum_by_blocks(
        z, [this](double v) { return alpha * v; },
        [](std::span<double> block) {
            normal_cumulatives(block);
            return sum_of_logs(block, [](double p) { return p; });
        });
    return logs - 0.5 * squares + static_cast<double>(z.size()) * (kLn2 - kLnSqrt2Pi);
}

/// Above 0 the density is nearly that of a half normal, below it falls as exp(-(1 + alpha^2) z^2/2), for alpha > 0.
double StandardSkewNormal::start(double p) const {
    if (alpha < 0) return normal_quantile(0.5 * p);
    const double below = 0.5 - std::atan(alpha) / kPi;  // F(0)
    if (p < below) return normal_quantile(0.5 * p / below) / slant_;
    return normal_quantile_from_median(0.5 * (p - below) / (1 - below));
}

double StandardSkewNormal::quantile(double p) const {
    if (p > 0.5) return quantile_upper(1 - p);
    return search_quantile(*this, Side::lower, p, start(p));
}

/// Phi(-z) + (phi(0) - phi(z))/z, a sum of positive terms.
double StandardSlash::tail(double z) {
    return z == 0 ? 0.5 : normal_survival(z) - kInvSqrt2Pi * expm1_fn(-0.5 * z * z) / z;
}

double StandardSlash::log_density(double z) const {
    const double size = std::fabs(z);
    if (size < 1e-100) return -kLnSqrt2Pi - kLn2;
    return std::log(-expm1_fn(-0.5 * size * size)) - 2 * std::log(size) - kLnSqrt2Pi;
}

double StandardSlash::quantile(double p) const {
    if (p > 0.5) return -quantile(1 - p);
    const double outermost = kInvSqrt2Pi / p;  // exact where phi(z) vanishes
    if (outermost > 39) return -outermost;
    return search_quantile(*this, Side::lower, p, -std::min(outermost, 2 * (0.5 - p) / kInvSqrt2Pi));
}

}  // namespace pral
