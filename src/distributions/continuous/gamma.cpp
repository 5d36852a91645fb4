#include "distributions/continuous/gamma.h"

#include "numerics/sums.h"

namespace pral {

double Gamma::log_likelihood(std::span<const double> values) const {
    // For large shapes the sums cancel; a term of its own is exact then.
    constexpr double kLargestShape = 100;
    // Where x/beta may be denormal its logarithm has lost digits.
    constexpr double kLargestScale = 1e200;
    if (alpha < kLargestShape && beta < kLargestScale) {
        const double per_beta = 1 / beta, count = static_cast<double>(values.size());
        const double sum = numerics::interleaved_sum(values, [=](double x) { return x * per_beta; });
        const double logs =
            alpha == 1 ? 0 : numerics::sum_of_logs(values, [=](double x) { return x * per_beta; });
        const double total = (alpha - 1) * logs - sum - count * (log_gamma_ - map.log_factor);
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

double LogGamma::log_likelihood(std::span<const double> values) const {
    constexpr double kLargestShape = 100;
    if (shape < kLargestShape) {
        const double per_scale = 1 / map.scale;
        double sum = 0;
        const double logs = numerics::sum_of_logs(values, [=, this, &sum](double x) {
            const double log = numerics::log1p_fn(x - map.end);
            sum += log;
            return log * per_scale;
        });
        const double total =
            (shape - 1) * logs - (per_scale + 1) * sum -
            static_cast<double>(values.size()) * (numerics::log_gamma(shape) - map.log_factor);
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

}  // namespace pral
