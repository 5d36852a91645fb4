#include "distributions/continuous/kumaraswamy.h"

#include "numerics/each.h"

namespace pral {

double Kumaraswamy4::log_likelihood(std::span<const double> values) const {
    constexpr double kNearMax = 0.01,
                     kLargestShape = 100;  // larger ones would multiply the rounding of 1 - y^alpha
    if (std::fmax(alpha, beta) > kLargestShape || !axis_.is_plain())
        return sum_of_log_densities(*this, values);
    const double per_width = 1 / (max - min);
    const double total = numerics::sum_by_blocks(
        values, [](double x) { return x; },
        [=, this](std::span<double> block) {
            std::array<double, numerics::kSumBlock> missing, powers;
            // In the upper half the distance from the end tells what rounding has changed in y.
            for (std::size_t i = 0; i < block.size(); ++i) {
                const double y = (block[i] - min) * per_width, rest = (max - block[i]) * per_width;
                missing[i] = y < 0.5 ? 0 : ((1 - y) - rest) / y;
                block[i] = y;
            }
            numerics::log_each(block);
            for (std::size_t i = 0; i < block.size(); ++i) powers[i] = alpha * (block[i] += missing[i]);
            const double logs = numerics::interleaved_sum(block, [](double log) { return log; });
            std::copy_n(powers.begin(), block.size(), block.begin());
            numerics::exp_each(block);
            for (std::size_t i = 0; i < block.size(); ++i)
                block[i] = powers[i] > -kNearMax ? -numerics::expm1_fn(powers[i]) : 1 - block[i];
            const double rests = numerics::sum_of_logs(block, [](double rest) { return rest; });
            return (alpha - 1) * logs + (beta - 1) * rests;
        });
    return std::isfinite(total)
               ? total + static_cast<double>(values.size()) * (log_alpha_ + log_beta_ - log_width_)
               : sum_of_log_densities(*this, values);
}

}  // namespace pral
