#include "distributions/data/tables.h"

namespace pral::data {

void running_sums(std::span<const double> terms, std::span<double> sums) {
    constexpr std::size_t kBlock = 64, kTogether = 4;
    double before = 0;
    std::size_t start = 0;
    for (; start + kBlock * kTogether <= terms.size(); start += kBlock * kTogether) {
        double local[kTogether] = {};
        for (std::size_t i = 0; i < kBlock; ++i) {
            for (std::size_t b = 0; b < kTogether; ++b) {
                local[b] += terms[start + b * kBlock + i];
                sums[start + b * kBlock + i] = local[b];
            }
        }
        for (std::size_t b = 0; b < kTogether; ++b) {
            for (std::size_t i = 0; i < kBlock; ++i) sums[start + b * kBlock + i] += before;
            before = sums[start + b * kBlock + kBlock - 1];
        }
    }
    for (; start < terms.size(); start += kBlock) {
        const std::size_t end = std::min(start + kBlock, terms.size());
        double local = 0;
        for (std::size_t i = start; i < end; ++i) sums[i] = before + (local += terms[i]);
        before = sums[end - 1];
    }
}

std::vector<double> running_sums_from_above(std::span<const double> terms) {
    std::vector<double> reversed(terms.rbegin(), terms.rend());
    std::vector<double> sums(terms.size());
    running_sums(reversed, sums);
    std::ranges::reverse(sums);
    return sums;
}

std::vector<double> scaled_copy(std::span<const double> weights, double factor) {
    std::vector<double> copy(weights.begin(), weights.end());
    for (double& weight : copy) weight = numerics::finite_or_limit(weight) * factor;
    return copy;
}

}  // namespace pral::data
