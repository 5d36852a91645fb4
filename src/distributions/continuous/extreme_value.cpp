#include "distributions/continuous/extreme_value.h"

namespace pral {

double GEV::log_likelihood(std::span<const double> values) const {
    constexpr double kNearEnd = 1e-3;  // there 1 + c z has lost digits to the 1
    const double scaled = map.c / map.b;
    const double sum = numerics::sum_by_blocks(
        values, [=, this](double x) { return scaled * (x - map.a); },
        [this](std::span<double> block) {
            // What the rounding of 1 + c z adds to its logarithm is about what it adds to 1 + c z.
            std::array<double, numerics::kSumBlock> missing;
            bool distant = true;
            for (std::size_t i = 0; i < block.size(); ++i) {
                const double rounded = 1 + block[i];
                missing[i] = (block[i] - (rounded - 1)) / rounded;
                block[i] = rounded;
                distant &= rounded > kNearEnd;
            }
            if (!distant) return numerics::kNaN;
            numerics::log_each(block);
            for (std::size_t i = 0; i < block.size(); ++i) block[i] = (block[i] + missing[i]) / map.c;
            const double logs = numerics::interleaved_sum(block, [](double y) { return y; });
            return -(1 + map.c) * logs - numerics::sum_of_exps(block, [](double y) { return -y; });
        });
    return std::isfinite(sum) ? sum - static_cast<double>(values.size()) * log_b_
                              : sum_of_log_densities(*this, values);
}

}  // namespace pral
