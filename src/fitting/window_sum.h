// The probability between two bounds of a family on the integers whose tails are long sums: a short one of its masses.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "distributions/sample.h"
#include "distributions/truncated.h"

namespace pral::fitting {

namespace detail {

/// The family that zeros have been added to or taken from, which has the other masses up to a factor.
template <class D>
const auto& base_of(const D& d) {
    if constexpr (requires { d.base; })
        return d.base;
    else
        return d;
}

/// Its masses follow from one another by a ratio, and its tails are sums over them.
template <class D>
concept SumsByRatio = requires(const D& d) {
    base_of(d).mass_ratio(0.0);
    base_of(d).pivot();
};
/// It has masses by a recurrence.
template <class D>
concept SumsByMasses = requires(const D& d, std::span<double> out) {
    d.masses(0.0, out);
};

/// ln(e^a + e^b).
inline double log_of_sum(double a, double b) {
    return std::max(a, b) + numerics::log1p_fn(std::exp(-std::fabs(a - b)));
}

/// The logarithm of the sum of the masses from `first` to `last`.
template <class D>
double log_sum_of_masses(const D& d, double first, double last) {
    if constexpr (SumsByMasses<D>) {
        std::vector<double> masses(static_cast<std::size_t>(last - first) + 1);
        d.masses(first, masses);
        double sum = 0;
        for (const double mass : masses) sum += mass;
        return std::log(sum);
    } else {
        constexpr double kLarge = 0x1p600;
        double log_unit = d.log_density(first), sum = 0, mass = 1;
        for (double k = first;; k += 1) {
            sum += mass;
            if (k == last) return log_unit + std::log(sum);
            mass *= base_of(d).mass_ratio(k);
            if (mass > kLarge) {
                mass /= kLarge;
                sum /= kLarge;
                log_unit += std::log(kLarge);
            }
        }
    }
}

}  // namespace detail

/// ln(F(upper) - F(lower)) of a family for which a sum over the integers between is the quickest way to it; nothing for others,
/// or where there are too many integers between the bounds, or none.
template <Family D>
std::optional<double> log_window_mass(const D& d, const Limits& limits) {
    if constexpr (detail::SumsByRatio<D> || detail::SumsByMasses<D>) {
        constexpr double kMost = detail::SumsByMasses<D> ? 256 : 4096;
        if (!limits.given || limits.max_is_percentile || d.point_mass()) return std::nullopt;
        const auto [least, most] = d.support();
        const double after =
            limits.min_is_percentile ? -HUGE_VAL : first_integer(limits.min, limits.above_min);
        const double first = std::max(after, least), last = counted(limits.max);
        if (!(first <= last && last <= most && last - first < kMost && std::fabs(first) < 0x1p52))
            return std::nullopt;
        double log_mass = 0;
        if (requires { d.pi; } && first == 0) {  // with extra zeros, that are in no ratio
            log_mass = d.log_density(0);
            if (last > 0) log_mass = detail::log_of_sum(log_mass, detail::log_sum_of_masses(d, 1.0, last));
        } else {
            log_mass = detail::log_sum_of_masses(d, first, last);
        }
        if (std::isfinite(log_mass)) return log_mass;
    }
    return std::nullopt;
}

}  // namespace pral::fitting
