// Whether a sample of integers has the distribution that it should have.
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <span>

#include "numerics/gamma_ratio.h"

namespace pral::test {

/// The p-value of Pearson's chi-square test of a sample of integers against cumulative(k) = P(X <= k), in cells of
/// consecutive integers with at least 20 expected values each. Of a correct generator it is uniform on (0, 1).
inline double chi_square_p_value(std::span<const double> sample,
                                 const std::function<double(double)>& cumulative) {
    std::map<double, int> counts;
    for (const double value : sample) ++counts[value];
    const double size = static_cast<double>(sample.size());
    double statistic = 0, below = 0, observed = 0, left = size;
    int cells = 0;
    const auto close_cell = [&](double up_to) {
        const double expected = size * (up_to - below);
        statistic += (observed - expected) * (observed - expected) / expected;
        left -= observed;
        below = up_to;
        observed = 0;
        ++cells;
    };
    for (double k = counts.begin()->first; k <= counts.rbegin()->first; ++k) {
        if (const auto found = counts.find(k); found != counts.end()) observed += found->second;
        const double up_to = cumulative(k);
        if (size * (1 - up_to) < 20) break;
        if (size * (up_to - below) >= 20) close_cell(up_to);
    }
    observed = left;
    close_cell(1);
    return numerics::gamma_upper(0.5 * (cells - 1), 0.5 * statistic);
}

}  // namespace pral::test
