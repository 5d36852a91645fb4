#include "distributions/continuous/normal.h"

#include "distributions/exports.h"
#include "numerics/sums.h"

namespace pral {

double Normal::log_likelihood(std::span<const double> values) const {
    const double per_sigma = std::min(1 / sigma, numerics::kInfinity);  // 0 times it must stay 0
    const double squares = numerics::interleaved_sum(values, [=, this](double x) {
        const double z = (x - mu) * per_sigma;
        return z * z;
    });
    return -static_cast<double>(values.size()) * (std::log(sigma) + numerics::kLnSqrt2Pi) - 0.5 * squares;
}

void Normal::quantiles(std::span<double> p) const {
    numerics::normal_quantiles(p);
    for (double& value : p) value = mu + sigma * value;
}

double Normal::random(double u, RandomStream& stream) const {
    return mu + sigma * std::sqrt(-2 * std::log(u)) * std::cos(2 * numerics::kPi * stream.uniform());
}

}  // namespace pral

PRAL_EXPORT_FAMILY(Normal, (double mu, double sigma), (mu, sigma));
