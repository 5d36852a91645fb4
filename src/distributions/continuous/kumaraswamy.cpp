#include "distributions/continuous/kumaraswamy.h"

#include "distributions/exports.h"
#include "numerics/sums.h"

namespace pral {

double Kumaraswamy4::log_likelihood(std::span<const double> values) const {
    constexpr double kNearMax = 0.01,
                     kLargestShape = 100;  // larger ones would multiply the rounding of 1 - y^alpha
    if (std::fmax(alpha, beta) > kLargestShape) return sum_of_log_densities(*this, values);
    const double per_width = 1 / (max - min);
    double logs = 0;
    const double rests = numerics::sum_of_logs(values, [&, this](double x) {
        const double y = (x - min) * per_width, rest = (max - x) * per_width;
        // In the upper half the distance from the end tells what rounding has changed in y.
        const double log = std::log(y) + (y < 0.5 ? 0 : ((1 - y) - rest) / y), power = alpha * log;
        logs += log;
        return power > -kNearMax ? -numerics::expm1_fn(power) : 1 - std::exp(power);
    });
    const double total = (alpha - 1) * logs + (beta - 1) * rests;
    return std::isfinite(total)
               ? total + static_cast<double>(values.size()) * (log_alpha_ + log_beta_ - log_width_)
               : sum_of_log_densities(*this, values);
}

}  // namespace pral

PRAL_EXPORT_FAMILY(Kumaraswamy, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(Kumaraswamy4, (double alpha, double beta, double min, double max),
                   (alpha, beta, min, max));
PRAL_EXPORT_FAMILY(Bradford, (double theta, double min, double max), (theta, min, max));
