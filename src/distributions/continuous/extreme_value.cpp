#include "distributions/continuous/extreme_value.h"

#include "distributions/exports.h"
#include "numerics/sums.h"

namespace pral {

double GEV::log_likelihood(std::span<const double> values) const {
    constexpr double kNearEnd = 1e-3;  // there 1 + c z has lost digits to the 1
    const double per_b = 1 / map.b;
    const double sum = numerics::interleaved_sum(values, [=, this](double x) {
        const double cz = map.c * ((x - map.a) * per_b), rounded = 1 + cz;
        // What the rounding of the sum adds to its logarithm is about what it adds to 1 + c z.
        const double y = !(rounded > kNearEnd) ? map.inverse(x)
                                               : (std::log(rounded) + (cz - (rounded - 1)) / rounded) / map.c;
        return -(1 + map.c) * y - std::exp(-y);
    });
    return std::isfinite(sum) ? sum - static_cast<double>(values.size()) * log_b_
                              : sum_of_log_densities(*this, values);
}

}  // namespace pral

PRAL_EXPORT_FAMILY(ExtValueMax, (double a, double b), (a, b));
PRAL_EXPORT_FAMILY(ExtValueMin, (double a, double b), (a, b));
PRAL_EXPORT_FAMILY(GEV, (double a, double b, double c), (a, b, c));
