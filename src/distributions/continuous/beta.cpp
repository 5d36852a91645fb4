#include "distributions/continuous/beta.h"

#include "numerics/gamma.h"
#include "numerics/sums.h"

namespace pral {

double BetaOnInterval::log_likelihood(std::span<const double> values) const {
    // For large shapes the sums cancel; a term of its own is exact then.
    constexpr double kLargestShapes = 100;
    const double a = ratio.a(), b = ratio.b();
    if (a + b < kLargestShapes && map.axis.is_plain()) {
        const double per_width = 1 / map.width;
        const auto logs = [&](double power, auto distance) {
            return power == 0 ? 0 : power * numerics::sum_of_logs(values, distance);
        };
        const double total = logs(a - 1, [=, low = map.min](double x) { return (x - low) * per_width; }) +
                             logs(b - 1, [=, high = map.max](double x) { return (high - x) * per_width; }) -
                             static_cast<double>(values.size()) * (numerics::log_beta(a, b) + map.log_width);
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

double BetaOdds::log_likelihood(std::span<const double> values) const {
    constexpr double kLargestShapes = 100;
    const double a = ratio.a(), b = ratio.b();
    if (a + b < kLargestShapes) {
        const double per_scale = 1 / map.scale.hi;
        const double odds = numerics::sum_of_logs(values, [=](double x) { return x * per_scale; });
        const double rest = numerics::sum_of_logs(values, [=](double x) { return 1 + x * per_scale; });
        const double total = (a - 1) * odds - (a + b) * rest -
                             static_cast<double>(values.size()) * (numerics::log_beta(a, b) + map.log_scale);
        if (std::isfinite(total)) return total;
    }
    return sum_of_log_densities(*this, values);
}

}  // namespace pral
